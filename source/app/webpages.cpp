#include "app/webpages.h"

#include "libui/paper/inputsuspension.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>

namespace {

struct Place
{
    const char *path;
    const char *bundled;
};

Place placeOf(WebPages::Page page)
{
    switch (page) {
    case WebPages::Page::KeyboardShortcuts:
        return {"/mirelle-keyboard-shortcuts-for-pc/", "keyboard-shortcuts.html"};
    case WebPages::Page::CommunityForum:
        return {"/forums/forum/community/", "forum.html"};
    case WebPages::Page::ProvideFeedback:
        return {"/forums/forum/provide-feedback/", "feedback.html"};
    case WebPages::Page::VideoTutorials:
        return {"/tutorials/", "tutorials.html"};
    case WebPages::Page::Collapsing:
        return {"/mirelle-collapsing/", "collapsing.html"};
    }
    return {};
}

void tell(QWidget *parent, const QString &text)
{
    // A modal box keeps out the mouse, but not a pen.
    const UI::InputSuspension suspension;
    QMessageBox::warning(parent, QGuiApplication::applicationDisplayName(), text);
}

} // namespace

WebPages::WebPages() : WebPages(QStringLiteral(MIRELLE_WEB_HOST), bundledFolders())
{
}

WebPages::WebPages(const QString &host, const QStringList &folders) : m_host(host), m_folders(folders)
{
}

QUrl WebPages::url(Page page) const
{
    const Place place = placeOf(page);
    if (!m_host.isEmpty())
        return QUrl(QStringLiteral("https://%1%2").arg(m_host, QLatin1String(place.path)), QUrl::StrictMode);
    for (const QString &folder : m_folders) {
        const QFileInfo file(QDir(folder), QString::fromLatin1(place.bundled));
        if (file.isFile())
            return QUrl::fromLocalFile(file.absoluteFilePath());
    }
    return {};
}

bool WebPages::open(Page page, QWidget *parent) const
{
    const QUrl target = url(page);
    if (!target.isValid() && !m_host.isEmpty()) {
        tell(parent, QCoreApplication::translate("WebPages", "%1 is no host that web pages could be on.\n"
                                                             "The program was built with that address.")
                         .arg(m_host));
        return false;
    }
    if (!target.isValid()) {
        // An installation has its pages in the last of the folders.
        const QString folder = m_folders.value(m_folders.size() - 1);
        tell(parent, QCoreApplication::translate("WebPages", "Cannot find the page %1. It belongs in this folder:\n%2")
                         .arg(QLatin1String(placeOf(page).bundled), QDir::toNativeSeparators(folder)));
        return false;
    }
    if (!QDesktopServices::openUrl(target)) {
        tell(parent, QCoreApplication::translate("WebPages", "Cannot open the page %1.\nIs there a web browser?")
                         .arg(target.isLocalFile() ? QDir::toNativeSeparators(target.toLocalFile())
                                                   : target.toDisplayString()));
        return false;
    }
    return true;
}

QStringList WebPages::bundledFolders()
{
    const QDir program(QCoreApplication::applicationDirPath());
    return {program.filePath(QStringLiteral("help")),
            QDir::cleanPath(program.filePath(QStringLiteral(MIRELLE_HELP_FOLDER)))};
}
