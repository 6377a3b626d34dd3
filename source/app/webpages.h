#pragma once

#include <QStringList>
#include <QUrl>

class QWidget;

/// The pages that entries of the Help menu and links of dialogs open: on the web, or those that come with the program.
///
/// Which it is, the build decides: with a host (MIRELLE_WEB_HOST) they are that host's, without one the bundled pages.
/// A value.
class WebPages
{
public:
    enum class Page {
        KeyboardShortcuts,
        CommunityForum,
        ProvideFeedback,
        VideoTutorials,
        Collapsing,
    };

    /// The pages of this build.
    WebPages();
    /// The pages of \a host, to which a port may be added; if that is empty, those found in the first of \a folders
    /// that has them. The last one is where an installation has them.
    WebPages(const QString &host, const QStringList &folders);

    /// Where \a page is; invalid if it should be among the bundled pages but is not, or if the host cannot be one.
    [[nodiscard]] QUrl url(Page page) const;

    /// Shows \a page in the desktop's browser. Tells the user, over \a parent, which page it is that cannot be shown.
    /// \return whether it was handed over.
    bool open(Page page, QWidget *parent) const;

    /// Where bundled pages are looked for: beside the program as it is built, and where an installation has them.
    static QStringList bundledFolders();

private:
    QString m_host;
    QStringList m_folders;
};
