#include "app/helpactions.h"

#include "app/catalogueaction.h"
#include "libui/paper/inputsuspension.h"

#include <QGuiApplication>
#include <QMessageBox>

namespace {

struct PageAction
{
    MR::Action action;
    WebPages::Page page;
};

constexpr PageAction pageActions[] = {
    {MR::Action::VideoTutorials, WebPages::Page::VideoTutorials},
    {MR::Action::KeyboardShortcuts, WebPages::Page::KeyboardShortcuts},
    {MR::Action::CommunityForum, WebPages::Page::CommunityForum},
    {MR::Action::ProvideFeedback, WebPages::Page::ProvideFeedback},
};

} // namespace

HelpActions::HelpActions(QWidget *window) : QObject(window), m_window(window)
{
    for (const PageAction &entry : pageActions)
        onTriggered(entry.action, this, [this, page = entry.page] { m_pages.open(page, m_window); });
    onTriggered(MR::Action::About, this, &HelpActions::showAbout);
}

void HelpActions::showAbout()
{
    const UI::InputSuspension suspension;
    const QString name = QGuiApplication::applicationDisplayName();
    QMessageBox::about(
        m_window, tr("About %1").arg(name),
        tr("%1 %2\n\nHand-drawn, frame-by-frame 2D animation.").arg(name, QStringLiteral(MIRELLE_VERSION)));
}
