#include "app/recentfilesmenu.h"

#include "libmodel/base/settings.h"

#include <QDir>
#include <QFileInfo>
#include <QTextDocument>

namespace {

/// One spelling per file, so that it cannot stand in the list twice.
QString storedForm(const QString &filename)
{
    return QFileInfo(filename).absoluteFilePath();
}

} // namespace

RecentFilesMenu::RecentFilesMenu(QWidget *parent) : QMenu(tr("Open Recent"), parent)
{
    setToolTipsVisible(true);
    setProperty("Menu Marks", true);
    connect(this, &QMenu::aboutToShow, this, &RecentFilesMenu::rebuild);
    rebuild();
}

void RecentFilesMenu::add(const QString &filename)
{
    auto *settings = Model::Settings::instance();
    settings->addRecentScene(storedForm(filename));
    settings->setRecentScenes(settings->recentScenes().mid(0, maximumCount));
}

void RecentFilesMenu::remove(const QString &filename)
{
    Model::Settings::instance()->removeRecentScene(storedForm(filename));
}

void RecentFilesMenu::rebuild()
{
    clear();
    const QStringList files = Model::Settings::instance()->recentScenes();
    for (const QString &filename : files) {
        // A name may hold an ampersand, which a menu would take for a mnemonic.
        QAction *action = addAction(QFileInfo(filename).fileName().replace(QLatin1Char('&'), QLatin1String("&&")));
        const QString path = QDir::toNativeSeparators(filename);
        // A tool tip takes what looks like markup for markup.
        action->setToolTip(Qt::mightBeRichText(path) ? path.toHtmlEscaped() : path);
        connect(action, &QAction::triggered, this, [this, filename] { emit fileChosen(filename); });
    }
    if (files.isEmpty())
        addAction(tr("No Recent Scenes"))->setEnabled(false);
}
