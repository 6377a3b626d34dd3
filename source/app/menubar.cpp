#include "app/menubar.h"

#include "app/catalogueaction.h"
#include "app/menutable.h"
#include "app/recentfilesmenu.h"

#include <QCoreApplication>
#include <QShortcut>

#include <utility>

namespace {

/// The fixed zooms beside 100 percent, each on Ctrl and its digit.
constexpr int firstFixedZoom = 2;
constexpr int lastFixedZoom = 9;

/// A direction for the top of the sheet. The digit of the number pad lies in that direction of the pad's middle.
struct Direction
{
    const char *text;
    Qt::Key digit;
    double degrees;
};

#define TEXT(text) QT_TRANSLATE_NOOP("MenuBar", text)

constexpr Direction directions[] = {
    {TEXT("Top Up (0°)"), Qt::Key_8, 0},       {TEXT("Top Up and Right (45°)"), Qt::Key_9, -45},
    {TEXT("Top Right (90°)"), Qt::Key_6, -90}, {TEXT("Top Down and Right (135°)"), Qt::Key_3, -135},
    {TEXT("Top Down (180°)"), Qt::Key_2, 180}, {TEXT("Top Down and Left (225°)"), Qt::Key_1, 135},
    {TEXT("Top Left (270°)"), Qt::Key_4, 90},  {TEXT("Top Up and Left (315°)"), Qt::Key_7, 45},
};

#undef TEXT

/// What one step of rotation goes to the next multiple of.
constexpr double rotationStep = 15;

} // namespace

MenuBar::MenuBar(RecentFilesMenu *recentFiles, QWidget *parent) : QMenuBar(parent)
{
    setObjectName(QStringLiteral("menubar"));
    setAccessibleName(tr("Menus"));
    QMenu *topMenu = nullptr;
    QMenu *current = nullptr;
    for (const MenuEntry &entry : menuTable()) {
        switch (entry.kind) {
        case MenuEntry::Kind::Menu:
            topMenu = current = addTitledMenu(nullptr, entry.title);
            break;
        case MenuEntry::Kind::SubMenu:
            current = addTitledMenu(topMenu, entry.title);
            break;
        case MenuEntry::Kind::EndOfSubMenu:
            current = topMenu;
            break;
        case MenuEntry::Kind::Action:
            current->addAction(catalogueAction(entry.action));
            break;
        case MenuEntry::Kind::Separator:
            current->addSeparator();
            break;
        case MenuEntry::Kind::OpenRecent:
            current->addMenu(recentFiles);
            break;
        case MenuEntry::Kind::FixedZooms:
            addFixedZooms(current);
            break;
        case MenuEntry::Kind::Rotations:
            addRotations(current);
            break;
        case MenuEntry::Kind::PutOnPegs:
            m_putOnPegs = current->addAction(tr("Put Frame On the Pegs"), this, &MenuBar::putOnPegsChosen);
            break;
        }
    }
    connect(catalogueAction(MR::Action::ViewToX1), &QAction::changed, this, &MenuBar::actualizeViewEntries);
    actualizeViewEntries();
    connect(new QShortcut(Qt::Key_F10, this), &QShortcut::activated, this, &MenuBar::openFirstMenu);
}

QMenu *MenuBar::addTitledMenu(QMenu *parent, const char *title)
{
    const QString text = QCoreApplication::translate("MenuBar", title);
    QMenu *menu = parent ? parent->addMenu(text) : addMenu(text);
    // An action that cannot be used tells in its tool tip what it lacks.
    menu->setToolTipsVisible(true);
    menu->setProperty("Menu Marks", true);
    return menu;
}

void MenuBar::addFixedZooms(QMenu *menu)
{
    for (int zoom = firstFixedZoom; zoom <= lastFixedZoom; ++zoom) {
        const QAction *action = addViewEntry(menu, tr("X%1 (%2%)").arg(zoom).arg(100 * zoom),
                                             QKeySequence(Qt::CTRL | Qt::Key(Qt::Key_0 + zoom)));
        connect(action, &QAction::triggered, this, [this, zoom] { emit zoomChosen(zoom); });
    }
}

void MenuBar::addRotations(QMenu *menu)
{
    for (const Direction &direction : directions) {
        const QAction *action = addViewEntry(menu, QCoreApplication::translate("MenuBar", direction.text),
                                             QKeySequence(Qt::KeypadModifier | direction.digit));
        connect(action, &QAction::triggered, this,
                [this, degrees = direction.degrees] { emit rotationChosen(degrees); });
    }
    menu->addSeparator();
    const auto addStep = [this, menu](const QString &text, Qt::Key key, double degrees) {
        const QAction *action = addViewEntry(menu, text, QKeySequence(Qt::CTRL | key));
        connect(action, &QAction::triggered, this, [this, degrees] { emit rotationStepChosen(degrees); });
    };
    addStep(tr("Turn Left (%1°)").arg(rotationStep), Qt::Key_BracketLeft, rotationStep);
    addStep(tr("Turn Right (%1°)").arg(rotationStep), Qt::Key_BracketRight, -rotationStep);
}

QAction *MenuBar::addViewEntry(QMenu *menu, const QString &text, const QKeySequence &key)
{
    QAction *entry = menu->addAction(text);
    entry->setShortcut(key);
    m_viewEntries.append(entry);
    return entry;
}

void MenuBar::actualizeViewEntries()
{
    const Model::ActionRecord &model = *Model::ActionManager::instance()->mrAction(MR::Action::ViewToX1);
    for (QAction *entry : std::as_const(m_viewEntries)) {
        entry->setEnabled(model.action->isEnabled());
        entry->setToolTip(model.obstacle.isEmpty() ? QString()
                                                   : entry->iconText() + QLatin1Char('\n') + model.obstacle);
    }
    const QString obstacle =
        !model.obstacle.isEmpty() || m_isFrameOffPegs ? model.obstacle : tr("The frame is on its pegs");
    m_putOnPegs->setEnabled(model.action->isEnabled() && m_isFrameOffPegs);
    m_putOnPegs->setToolTip(obstacle.isEmpty() ? QString() : m_putOnPegs->iconText() + QLatin1Char('\n') + obstacle);
}

void MenuBar::setFrameOffPegs(bool isOffPegs)
{
    m_isFrameOffPegs = isOffPegs;
    actualizeViewEntries();
}

void MenuBar::openFirstMenu()
{
    setActiveAction(actions().constFirst());
}
