#include "app/scenefiles.h"

#include "app/recentfilesmenu.h"
#include "libmodel/base/diskfile.h"
#include "libmodel/base/settings.h"
#include "libmodel/files/scenefile.h"
#include "libmodel/files/scenereader.h"
#include "libmodel/files/scenewriter.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QUndoStack>

#include <algorithm>

namespace {

const QString suffix = QStringLiteral("mr");

/// The most damages of a file that are told one by one: a message box has to fit on the screen.
constexpr qsizetype mostDamagesTold = 10;

/// The first damages that \a reader found, a line each, and how many more there are.
QString shortDamages(const Model::SceneReader &reader)
{
    const qsizetype told = std::min(reader.damageCount(), mostDamagesTold);
    QString text = reader.damages().first(told).join(QLatin1Char('\n'));
    if (told < reader.damageCount())
        text += QLatin1Char('\n') + SceneFiles::tr("... and %1 more").arg(reader.damageCount() - told);
    return text;
}

QString folderOf(const QString &filename)
{
    return QFileInfo(filename).absolutePath();
}

} // namespace

SceneFiles::SceneFiles(QWidget *window) : QObject(window), m_window(window)
{
}

QString SceneFiles::askForOpenName() const
{
    return QFileDialog::getOpenFileName(m_window, tr("Open Scene"), Model::Settings::instance()->defaultSaveDir(),
                                        tr("MR Files (*.mr)"));
}

std::unique_ptr<Model::MRScene> SceneFiles::read(const QString &filename) const
{
    const QString shownName = QDir::toNativeSeparators(filename);
    QFile file(filename);
    const bool canBeRead = !Model::isPipeOrDevice(filename); // which may let wait for ever
    if (!canBeRead || !file.open(QIODevice::ReadOnly)) {
        const QString reason = canBeRead ? file.errorString() : tr("It is no ordinary file");
        tell(QMessageBox::Warning, tr("Cannot read file %1:\n%2.").arg(shownName, reason), {},
             QFileInfo(filename).fileName());
        RecentFilesMenu::remove(filename);
        return nullptr;
    }

    auto scene = std::make_unique<Model::MRScene>();
    Model::SceneReader reader(scene->scene(), m_window);
    const Model::FileResult result = reader.read(&file);
    if (result == Model::FileResult::Error) {
        tell(QMessageBox::Information, tr("Parse error in file %1:\n\n%2").arg(shownName, reader.errorString()));
    }
    if (result != Model::FileResult::Success)
        return nullptr;
    if (reader.damageCount() > 0)
        tell(QMessageBox::Warning,
             tr("The file %1 is damaged. What could be read was opened:\n\n%2").arg(shownName, shortDamages(reader)));

    scene->scene()->setFilename(filename);
    scene->scene()->undoStack()->setClean();
    RecentFilesMenu::add(filename);
    Model::Settings::instance()->setDefaultSaveDir(folderOf(filename));
    return scene;
}

bool SceneFiles::save(Model::MRScene &scene) const
{
    const QString filename = scene.scene()->filename();
    if (filename.isEmpty())
        return saveAs(scene);
    if (!isPrepared())
        return false;
    if (scene.scene()->undoStack()->isClean())
        return true;
    return write(scene, filename);
}

bool SceneFiles::saveAs(Model::MRScene &scene) const
{
    const QString filename = askForSaveName(scene);
    if (filename.isEmpty() || !isPrepared())
        return false;
    // The name counts from now on, also if the file cannot be written: the next attempt goes there.
    scene.scene()->setFilename(filename);
    if (!write(scene, filename)) {
        // What was saved lies under the former name.
        scene.scene()->undoStack()->resetClean();
        return false;
    }
    Model::Settings::instance()->setDefaultSaveDir(folderOf(filename));
    return true;
}

bool SceneFiles::maybeSave(Model::MRScene &scene) const
{
    if (scene.scene()->undoStack()->isClean())
        return true;
    QMessageBox box(QMessageBox::Warning, tr("Save"),
                    tr("\"%1\" has been modified.\n\nSave the scene?").arg(scene.scene()->displayName()),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, m_window);
    box.setTextFormat(Qt::PlainText); // as in tell()
    const int answer = box.exec();
    if (answer == QMessageBox::Save)
        return save(scene);
    return answer == QMessageBox::Discard;
}

QString SceneFiles::askForSaveName(const Model::MRScene &scene) const
{
    const QString current = scene.scene()->filename();
    const QDir folder(current.isEmpty() ? Model::Settings::instance()->defaultSaveDir() : folderOf(current));
    const QString name =
        current.isEmpty() ? scene.scene()->name() + QLatin1Char('.') + suffix : QFileInfo(current).fileName();

    QFileDialog dialog(m_window, tr("Save Scene"), folder.path(), tr("MR Files (*.mr)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(suffix);
    dialog.selectFile(folder.filePath(name));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}

bool SceneFiles::write(Model::MRScene &scene, const QString &filename) const
{
    const QString shownName = QDir::toNativeSeparators(filename);
    const Model::SaveOutcome outcome = [&] {
        Model::SceneWriter writer(scene.scene(), m_window);
        return Model::saveSceneFile(writer, filename);
    }(); // the progress dialog is gone by now
    if (outcome.result == Model::FileResult::Cancelled)
        return false;
    if (outcome.result == Model::FileResult::Error) {
        if (outcome.stage == Model::SaveOutcome::Stage::Document)
            tell(QMessageBox::Warning, tr("Cannot write file %1").arg(shownName), outcome.reason);
        else
            tell(QMessageBox::Warning, tr("Cannot write file %1:\n%2.").arg(shownName, outcome.reason));
        return false;
    }
    scene.scene()->undoStack()->setClean();
    RecentFilesMenu::add(filename);
    return true;
}

void SceneFiles::tell(QMessageBox::Icon icon, const QString &text, const QString &reason, const QString &title) const
{
    QMessageBox box(icon, title.isEmpty() ? QGuiApplication::applicationDisplayName() : title, text, QMessageBox::Ok,
                    m_window);
    box.setTextFormat(Qt::PlainText); // names of files, and what stands in them, may look like markup
    box.setInformativeText(reason);
    box.exec();
}
