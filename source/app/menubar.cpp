#include "app/menubar.h"

#include "app/recentfilesmenu.h"
#include "libmodel/actions/actionmanager.h"

#include <QCoreApplication>

namespace {

/// One line of the table of menus.
struct Entry
{
    enum class Kind { Menu, SubMenu, EndOfSubMenu, Action, Separator, OpenRecent, FixedZooms };
    Kind kind;
    const char *title = nullptr;
    MR::Action action = MR::Action::NoAction;
};

constexpr Entry menu(const char *title)
{
    return {Entry::Kind::Menu, title};
}

constexpr Entry subMenu(const char *title)
{
    return {Entry::Kind::SubMenu, title};
}

constexpr Entry action(MR::Action action)
{
    return {Entry::Kind::Action, nullptr, action};
}

constexpr Entry separator = {Entry::Kind::Separator};
constexpr Entry endOfSubMenu = {Entry::Kind::EndOfSubMenu};
constexpr Entry openRecent = {Entry::Kind::OpenRecent};
constexpr Entry fixedZooms = {Entry::Kind::FixedZooms};

/// The fixed zooms beside 100 percent, each on Ctrl and its digit.
constexpr int firstFixedZoom = 2;
constexpr int lastFixedZoom = 9;

constexpr Entry entries[] = {
    menu(QT_TRANSLATE_NOOP("MenuBar", "File")),
    action(MR::Action::NewScene),
    action(MR::Action::OpenScene),
    openRecent,
    separator,
    action(MR::Action::SaveScene),
    action(MR::Action::SaveSceneAs),
    separator,
    subMenu(QT_TRANSLATE_NOOP("MenuBar", "Export")),
    action(MR::Action::ExportFrames),
    endOfSubMenu,
    separator,
    action(MR::Action::Quit),

    menu(QT_TRANSLATE_NOOP("MenuBar", "Edit")),
    action(MR::Action::Undo),
    action(MR::Action::Redo),

    menu(QT_TRANSLATE_NOOP("MenuBar", "Draw")),
    action(MR::Action::Draw),
    action(MR::Action::Erase),
    action(MR::Action::DrawEraseToggle),
    separator,
    subMenu(QT_TRANSLATE_NOOP("MenuBar", "Drawing Tools")),
    action(MR::Action::Pencil),
    action(MR::Action::Marker),
    action(MR::Action::Brush),
    endOfSubMenu,
    subMenu(QT_TRANSLATE_NOOP("MenuBar", "Erasing Tools")),
    action(MR::Action::KneadedEraser),
    action(MR::Action::RubberEraser),
    action(MR::Action::VinylEraser),
    endOfSubMenu,
    separator,
    action(MR::Action::ResetDrawingUserSettings),
    action(MR::Action::ResetErasingUserSettings),
    separator,
    action(MR::Action::ToggleCursor),

    menu(QT_TRANSLATE_NOOP("MenuBar", "Light Table")),
    subMenu(QT_TRANSLATE_NOOP("MenuBar", "Zoom View")),
    action(MR::Action::Pan),
    separator,
    action(MR::Action::ResetView),
    action(MR::Action::FitPaperToView),
    separator,
    action(MR::Action::ZoomIn),
    action(MR::Action::ZoomOut),
    action(MR::Action::ViewToX1),
    fixedZooms,
    endOfSubMenu,

    menu(QT_TRANSLATE_NOOP("MenuBar", "&Help")),
    action(MR::Action::About),
};

} // namespace

MenuBar::MenuBar(RecentFilesMenu *recentFiles, QWidget *parent) : QMenuBar(parent)
{
    setObjectName(QStringLiteral("menubar"));
    const auto title = [](const Entry &entry) { return QCoreApplication::translate("MenuBar", entry.title); };
    QMenu *topMenu = nullptr;
    QMenu *current = nullptr;
    for (const Entry &entry : entries) {
        switch (entry.kind) {
        case Entry::Kind::Menu:
            topMenu = current = addMenu(title(entry));
            break;
        case Entry::Kind::SubMenu:
            current = topMenu->addMenu(title(entry));
            break;
        case Entry::Kind::EndOfSubMenu:
            current = topMenu;
            break;
        case Entry::Kind::Action:
            if (QAction *shared = Model::ActionManager::instance()->action(entry.action))
                current->addAction(shared);
            break;
        case Entry::Kind::Separator:
            current->addSeparator();
            break;
        case Entry::Kind::OpenRecent:
            current->addMenu(recentFiles);
            break;
        case Entry::Kind::FixedZooms:
            addFixedZooms(current);
            break;
        }
    }
}

void MenuBar::addFixedZooms(QMenu *menu)
{
    for (int zoom = firstFixedZoom; zoom <= lastFixedZoom; ++zoom) {
        QAction *action = menu->addAction(tr("X%1 (%2%)").arg(zoom).arg(100 * zoom));
        action->setShortcut(QKeySequence(Qt::CTRL | Qt::Key(Qt::Key_0 + zoom)));
        connect(action, &QAction::triggered, this, [this, zoom] { emit zoomChosen(zoom); });
    }
}
