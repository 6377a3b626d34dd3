#include "monkey.h"

#include "app/mainwindow.h"
#include "app/pickup.h"
#include "libmodel/actions/actionmanager.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/floatingselection.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libui/paper/paper.h"
#include "libui/paper/viewtransform.h"

#include <QAction>
#include <QApplication>
#include <QItemSelectionModel>
#include <QMetaEnum>
#include <QUndoStack>
#include <QWindow>
#include <qpa/qwindowsysteminterface.h>

#include <cmath>
#include <limits>
#include <utility>

using Model::Scene;

namespace {

/// A scene beyond this is left for a new one, so that every step stays quick.
constexpr int mostFrames = 40;
constexpr int mostLayers = 7;
constexpr int mostHeldKeys = 3;

using Sync = QWindowSystemInterface::SynchronousDelivery;

} // namespace

Monkey::Monkey(MainWindow &window, quint64 seed)
    : m_window(window),
      m_paper(*window.findChild<UI::Paper *>()),
      m_random(seed),
      m_pen(QStringLiteral("monkey's pen"), 91, QInputDevice::DeviceType::Stylus, QPointingDevice::PointerType::Pen,
            QInputDevice::Capability::Position | QInputDevice::Capability::Pressure, 1, 3)
{
    QWindowSystemInterface::registerInputDevice(&m_pen);
    m_mouse = m_paper.rect().center();
}

bool Monkey::isTaboo(MR::Action action)
{
    switch (action) {
    case MR::Action::Quit:
    case MR::Action::NonDrawingAction:
    // The window manager's answers come when they come.
    case MR::Action::FullScreen:
    // A larger or smaller font lays the whole window out anew, some hundred times as slow as any other step.
    case MR::Action::UIScale75:
    case MR::Action::UIScale100:
    case MR::Action::UIScale125:
    case MR::Action::UIScale150:
        return true;
    default:
        return false;
    }
}

QString Monkey::step()
{
    m_clock += 7;
    if (sceneIsLarge())
        return beginAnew();
    // What floats is not left alone for long.
    if (!m_window.currentScene()->floatingSelection().isNull() && m_random.chance(35))
        return m_random.chance(60) ? dragSelection() : handleDrawings();
    const int choice = m_random.between(0, 999);
    if (choice < 370)
        return triggerSomething();
    if (choice < 650)
        return pressOrReleaseKey();
    if (choice < 760)
        return drawStroke();
    if (choice < 775)
        return adjustPen();
    if (choice < 820)
        return dragMouse();
    if (choice < 860)
        return leadLasso();
    if (choice < 900)
        return handleDrawings();
    if (choice < 930)
        return turnWheel();
    if (choice < 955)
        return gesture();
    if (choice < 985)
        return selectCells();
    if (choice < 998)
        return loseFocus();
    return beginAnew();
}

QString Monkey::triggerOneOf(const QList<MR::Action> &actions)
{
    QList<MR::Action> enabled;
    for (const MR::Action id : actions) {
        const QAction *action = Model::ActionManager::instance()->action(id);
        if (action && action->isEnabled())
            enabled << id;
    }
    if (enabled.isEmpty())
        return QStringLiteral("nothing: all disabled");
    const MR::Action id = m_random.oneOf(enabled);
    m_triggered << id;
    Model::ActionManager::instance()->action(id)->trigger();
    return QStringLiteral("action %1").arg(QLatin1String(QMetaEnum::fromType<MR::Action>().valueToKey(int(id))));
}

QString Monkey::triggerSomething()
{
    const QMetaEnum names = QMetaEnum::fromType<MR::Action>();
    QList<MR::Action> all;
    for (int i = 0; i < names.keyCount(); ++i) {
        const auto id = MR::Action(names.value(i));
        if (id != MR::Action::NoAction && id != MR::Action::Toggle1Or3Drawings && !isTaboo(id))
            all << id;
    }
    return triggerOneOf(all);
}

/// What is done to drawings as a whole and to what floats over them.
QString Monkey::handleDrawings()
{
    using enum MR::Action;
    return triggerOneOf({StampFloatingSelection, StampFloatingSelectionKeepFloating, StampFloatingSelectionKeepFloating,
                         DropFloatingSelection, GetLatestFloatingSelectionBack, FloatingSelection,
                         PickUpAllOfThisDrawing, CollapseVectorData, CutDrawing, CopyDrawing, PasteDrawing, StepForward,
                         StepBack, Undo, Redo});
}

QString Monkey::pressOrReleaseKey()
{
    if (!m_heldKeys.isEmpty() && (m_heldKeys.size() >= mostHeldKeys || m_random.chance(55))) {
        const int index = m_random.between(0, int(m_heldKeys.size()) - 1);
        if (m_random.chance(20)) {
            sendKey(QEvent::KeyPress, m_heldKeys[index], true);
            return QStringLiteral("repeat of key %1").arg(m_heldKeys[index].key, 0, 16);
        }
        const Key key = m_heldKeys.takeAt(index);
        sendKey(QEvent::KeyRelease, key);
        return QStringLiteral("release of key %1").arg(key.key, 0, 16);
    }
    static const QList<Key> keys = {
        {Qt::Key_Space, {}, QStringLiteral(" ")},
        {Qt::Key_Return, {}, QStringLiteral("\r")},
        {Qt::Key_Enter, Qt::KeypadModifier, QStringLiteral("\r")},
        {Qt::Key_Escape, {}, QStringLiteral("\x1b")},
        {Qt::Key_D, {}, QStringLiteral("d")},
        {Qt::Key_E, {}, QStringLiteral("e")},
        {Qt::Key_Q, {}, QStringLiteral("q")},
        {Qt::Key_W, {}, QStringLiteral("w")},
        {Qt::Key_S, {}, QStringLiteral("s")},
        {Qt::Key_Z, {}, QStringLiteral("z")},
        {Qt::Key_H, {}, QStringLiteral("h")},
        {Qt::Key_R, {}, QStringLiteral("r")},
        {Qt::Key_C, {}, QStringLiteral("c")},
        {Qt::Key_A, {}, QStringLiteral("a")},
        {Qt::Key_L, {}, QStringLiteral("l")},
        {Qt::Key_X, {}, QStringLiteral("x")},
        {Qt::Key_V, {}, QStringLiteral("v")},
        {Qt::Key_Control, {}, {}},
        {Qt::Key_Alt, {}, {}},
        {Qt::Key_Shift, {}, {}},
        {Qt::Key_Left, {}, {}},
        {Qt::Key_Right, {}, {}},
        {Qt::Key_Up, {}, {}},
        {Qt::Key_Down, {}, {}},
        {Qt::Key_K, {}, QStringLiteral("k")},
        {Qt::Key_G, {}, QStringLiteral("g")},
        {Qt::Key_Y, {}, QStringLiteral("y")},
        {Qt::Key_Tab, {}, QStringLiteral("\t")},
        {Qt::Key_Apostrophe, {}, QStringLiteral("'")},
        {Qt::Key_Period, {}, QStringLiteral(".")},
        {Qt::Key_BracketLeft, {}, QStringLiteral("[")},
        {Qt::Key_8, Qt::KeypadModifier, QStringLiteral("8")},
        {Qt::Key_3, Qt::KeypadModifier, QStringLiteral("3")},
    };
    const Key key = m_random.oneOf(keys);
    if (isDown(key.key))
        return QStringLiteral("nothing: the key is down");
    if (wouldQuit(key.key))
        return QStringLiteral("nothing: the key would quit");
    sendKey(QEvent::KeyPress, key);
    m_heldKeys << key;
    return QStringLiteral("press of key %1").arg(key.key, 0, 16);
}

QString Monkey::drawStroke()
{
    QPointF position = somewhere();
    const int samples = m_random.between(1, 12);
    const bool lifts = m_random.chance(95);
    sendPen(position, 0.0, Qt::NoButton);
    const Qt::MouseButtons button = m_random.chance(95) ? Qt::LeftButton : Qt::RightButton;
    for (int i = 0; i < samples; ++i) {
        sendPen(position, m_random.between(1, 100) / 100.0, button);
        position += QPointF(m_random.between(-30, 30), m_random.between(-30, 30));
    }
    m_penDown = !lifts;
    if (lifts)
        sendPen(position, 0.0, Qt::NoButton);
    return QStringLiteral("pen, %1 samples%2").arg(samples).arg(lifts ? QString() : QStringLiteral(", stays down"));
}

/// Presses with Ctrl, and mostly has something float before the pen is lifted again.
QString Monkey::adjustPen()
{
    using enum MR::Action;
    if (m_random.chance(70))
        triggerOneOf({Draw, Erase});
    QPointF position = somewhere();
    const Qt::KeyboardModifiers modifiers = heldModifiers() | Qt::ControlModifier;
    sendPen(position, 0.0, Qt::NoButton, modifiers);
    for (int i = m_random.between(1, 4); i > 0; --i) {
        sendPen(position, 0.5, Qt::LeftButton, modifiers);
        position += QPointF(m_random.between(-30, 30), m_random.between(-30, 30));
    }
    QStringList meanwhile;
    for (int i = m_random.between(0, 2); i > 0; --i) {
        meanwhile << triggerOneOf({PickUpAllOfThisDrawing, PickUpAllOfThisDrawing, GetLatestFloatingSelectionBack,
                                   FloatingSelection, StampFloatingSelection, DropFloatingSelection, Undo, Redo});
    }
    m_penDown = m_random.chance(20);
    if (!m_penDown)
        sendPen(position, 0.0, Qt::NoButton, modifiers);
    return QStringLiteral("pen adjusted; meanwhile: %1").arg(meanwhile.join(QStringLiteral(", ")));
}

QString Monkey::dragMouse()
{
    const Qt::MouseButton button = m_random.oneOf(
        QList<Qt::MouseButton>{Qt::LeftButton, Qt::LeftButton, Qt::LeftButton, Qt::MiddleButton, Qt::RightButton});
    if (m_heldButtons & button) {
        sendMouse(QEvent::MouseButtonRelease, m_mouse, button);
        return QStringLiteral("mouse release");
    }
    sendMouse(QEvent::MouseMove, somewhere(), Qt::NoButton);
    sendMouse(QEvent::MouseButtonPress, m_mouse, button);
    for (int i = m_random.between(0, 5); i > 0; --i) {
        sendMouse(QEvent::MouseMove, m_mouse + QPointF(m_random.between(-40, 40), m_random.between(-40, 40)),
                  Qt::NoButton);
    }
    if (m_random.chance(85))
        sendMouse(QEvent::MouseButtonRelease, m_mouse, button);
    return QStringLiteral("mouse drag, button %1").arg(int(button));
}

/// Around anything, with lasso or cutter.
QString Monkey::leadLasso()
{
    // Every now and then the drawing is a heavy one, however busy the machine.
    m_window.findChild<PickUp *>()->setHeavyLimit(m_random.chance(15) ? -1 : std::numeric_limits<int>::max());
    const MR::Action which = m_random.chance(50) ? MR::Action::Lasso : MR::Action::Cutter;
    QAction *action = Model::ActionManager::instance()->action(which);
    if (!action->isEnabled())
        return QStringLiteral("nothing: no lasso to be had");
    if (!action->isChecked()) {
        m_triggered << which;
        action->trigger();
    }
    QPointF middle = somewhere();
    const Model::Scene &scene = *m_window.currentScene()->scene();
    const auto cell = scene.item(scene.activeLayerIdx(), scene.activeFrame());
    const auto *drawing = cell ? dynamic_cast<const Model::StrokeDrawing *>(cell->drawing.get()) : nullptr;
    if (drawing && !drawing->isEmpty() && m_random.chance(80)) {
        const QPointF inked = m_paper.view().paperToWidget().map(QRectF(drawing->inkedRect()).center());
        if (QRectF(m_paper.rect()).contains(inked))
            middle = inked + QPointF(m_random.between(-20, 20), m_random.between(-20, 20));
    }
    const double radius = m_random.between(3, 150);
    QList<QPointF> way;
    constexpr int pieces = 14;
    for (int i = 0; i <= pieces; ++i) {
        const double angle = 2.0 * M_PI * i / pieces;
        way << middle + QPointF(radius * std::cos(angle), 0.7 * radius * std::sin(angle)) +
                   QPointF(m_random.between(-8, 8), m_random.between(-8, 8));
    }
    dragAlong(way);
    return QStringLiteral("%1 of radius %2").arg(action->text()).arg(radius);
}

/// By one of its handles, from its inside or from its outside.
QString Monkey::dragSelection()
{
    const Model::FloatingSelection &selection = m_window.currentScene()->floatingSelection();
    if (selection.isNull())
        return QStringLiteral("nothing: no selection");
    const QRectF rect = selection.rect();
    const QTransform toWidget = selection.transform().contentToPaper() * m_paper.view().paperToWidget();
    const QPointF content =
        m_random.oneOf(QList<QPointF>{rect.topLeft(), rect.topRight(), rect.bottomLeft(), rect.bottomRight(),
                                      rect.center(), rect.center(), selection.transform().pivot});
    const QPointF from = toWidget.map(content) + QPointF(m_random.between(-16, 16), m_random.between(-16, 16));
    if (!QRectF(m_paper.rect()).contains(from))
        return QStringLiteral("nothing: the handle is out of sight");
    QList<QPointF> way{from};
    for (int i = m_random.between(1, 4); i > 0; --i)
        way << way.last() + QPointF(m_random.between(-40, 40), m_random.between(-40, 40));
    dragAlong(way);
    return QStringLiteral("drag from %1 %2").arg(from.x()).arg(from.y());
}

void Monkey::dragAlong(const QList<QPointF> &way)
{
    if (m_heldButtons & Qt::LeftButton)
        sendMouse(QEvent::MouseButtonRelease, m_mouse, Qt::LeftButton);
    sendMouse(QEvent::MouseMove, way.first(), Qt::NoButton);
    sendMouse(QEvent::MouseButtonPress, m_mouse, Qt::LeftButton);
    for (const QPointF &at : way)
        sendMouse(QEvent::MouseMove, at, Qt::NoButton);
    if (m_random.chance(92))
        sendMouse(QEvent::MouseButtonRelease, m_mouse, Qt::LeftButton);
}

QString Monkey::turnWheel()
{
    const QPointF position = m_paper.mapTo(&m_window, somewhere());
    const QPoint notches(0, 120 * m_random.between(-3, 3));
    QWindowSystemInterface::handleWheelEvent(m_window.windowHandle(), m_clock, position, m_window.mapToGlobal(position),
                                             {}, notches, m_random.chance(50) ? Qt::ControlModifier : heldModifiers());
    QWindowSystemInterface::flushWindowSystemEvents();
    return QStringLiteral("wheel");
}

QString Monkey::gesture()
{
    const QPointF position = m_paper.mapTo(&m_window, somewhere());
    const QPointF global = m_window.mapToGlobal(position);
    QWindow *window = m_window.windowHandle();
    const auto send = [&](Qt::NativeGestureType type, double value) {
        QWindowSystemInterface::handleGestureEventWithRealValue(
            window, m_clock++, QPointingDevice::primaryPointingDevice(), type, value, position, global);
        QWindowSystemInterface::flushWindowSystemEvents();
    };
    send(Qt::BeginNativeGesture, 0.0);
    for (int i = m_random.between(0, 4); i > 0; --i) {
        if (m_random.chance(50))
            send(Qt::ZoomNativeGesture, m_random.between(-50, 50) / 100.0);
        else
            send(Qt::RotateNativeGesture, m_random.between(-20, 20));
    }
    if (m_random.chance(20))
        send(Qt::SmartZoomNativeGesture, m_random.between(0, 1));
    send(Qt::EndNativeGesture, 0.0);
    return QStringLiteral("native gesture");
}

QString Monkey::selectCells()
{
    Model::MRScene *scene = m_window.currentScene();
    const QAbstractItemModel *cells = scene->frameRangeModel();
    if (m_random.chance(30)) {
        scene->clearSelection();
        return QStringLiteral("nothing selected");
    }
    const int column = m_random.between(0, cells->columnCount() - 1);
    int first = m_random.between(0, cells->rowCount() - 1);
    int last = m_random.between(0, cells->rowCount() - 1);
    if (first > last)
        std::swap(first, last);
    scene->selectionModel()->select(QItemSelection(cells->index(first, column), cells->index(last, column)),
                                    QItemSelectionModel::ClearAndSelect);
    return QStringLiteral("rows %1 to %2 of column %3 selected").arg(first).arg(last).arg(column);
}

/// The window loses the keyboard with all that is down, and gets it back: whoever took it has the releases.
QString Monkey::loseFocus()
{
    QWindowSystemInterface::handleWindowActivated<Sync>(nullptr, Qt::ActiveWindowFocusReason);
    m_heldKeys.clear();
    QWindowSystemInterface::handleWindowActivated<Sync>(m_window.windowHandle(), Qt::ActiveWindowFocusReason);
    return QStringLiteral("focus lost and back");
}

QString Monkey::beginAnew()
{
    m_window.currentScene()->scene()->undoStack()->setClean();
    m_window.newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    return QStringLiteral("new scene");
}

void Monkey::letGo()
{
    while (!m_heldKeys.isEmpty())
        sendKey(QEvent::KeyRelease, m_heldKeys.takeLast());
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::MiddleButton, Qt::RightButton}) {
        if (m_heldButtons & button)
            sendMouse(QEvent::MouseButtonRelease, m_mouse, button);
    }
    // The toolkit keeps a release to itself where a dialog or another device has come over the press. No pen and no
    // mouse stand still for ever, though.
    m_penDown = false;
    sendPen(m_paper.rect().center(), 0.0, Qt::NoButton);
    sendPen(m_paper.rect().center() + QPoint(1, 1), 0.0, Qt::NoButton);
    sendMouse(QEvent::MouseMove, m_paper.rect().center(), Qt::NoButton);
}

void Monkey::sendKey(QEvent::Type type, const Key &key, bool repeated)
{
    Qt::KeyboardModifiers modifiers = heldModifiers() | key.modifiers;
    if (key.key == Qt::Key_Shift)
        modifiers |= type == QEvent::KeyRelease ? Qt::ShiftModifier : Qt::NoModifier;
    QWindowSystemInterface::handleKeyEvent<Sync>(m_window.windowHandle(), m_clock, type, key.key, modifiers, key.text,
                                                 repeated);
}

void Monkey::sendMouse(QEvent::Type type, QPointF position, Qt::MouseButton button)
{
    m_mouse = position;
    if (button != Qt::NoButton)
        m_heldButtons.setFlag(button, type == QEvent::MouseButtonPress);
    const QPointF inWindow = m_paper.mapTo(&m_window, position);
    QWindowSystemInterface::handleMouseEvent<Sync>(m_window.windowHandle(), m_clock++, inWindow,
                                                   m_window.mapToGlobal(inWindow), m_heldButtons, button, type,
                                                   heldModifiers());
}

void Monkey::sendPen(QPointF position, double pressure, Qt::MouseButtons buttons)
{
    sendPen(position, pressure, buttons, heldModifiers());
}

void Monkey::sendPen(QPointF position, double pressure, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers)
{
    const QPointF inWindow = m_paper.mapTo(&m_window, position);
    QWindowSystemInterface::handleTabletEvent(m_window.windowHandle(), m_clock, &m_pen, inWindow,
                                              m_window.mapToGlobal(inWindow), buttons, pressure, 0, 0, 0.0, 0.0, 0,
                                              modifiers);
    m_clock += 5;
    QWindowSystemInterface::flushWindowSystemEvents();
}

QPointF Monkey::somewhere()
{
    return {double(m_random.between(0, m_paper.width() - 1)), double(m_random.between(0, m_paper.height() - 1))};
}

Qt::KeyboardModifiers Monkey::heldModifiers() const
{
    Qt::KeyboardModifiers modifiers;
    for (const Key &key : m_heldKeys) {
        modifiers.setFlag(Qt::ControlModifier, modifiers.testFlag(Qt::ControlModifier) || key.key == Qt::Key_Control);
        modifiers.setFlag(Qt::AltModifier, modifiers.testFlag(Qt::AltModifier) || key.key == Qt::Key_Alt);
        modifiers.setFlag(Qt::ShiftModifier, modifiers.testFlag(Qt::ShiftModifier) || key.key == Qt::Key_Shift);
    }
    return modifiers;
}

bool Monkey::isDown(int key) const
{
    return std::any_of(m_heldKeys.cbegin(), m_heldKeys.cend(), [key](const Key &held) { return held.key == key; });
}

/// What is taboo as an action is so as a shortcut.
bool Monkey::wouldQuit(int key) const
{
    return (key == Qt::Key_Q && isDown(Qt::Key_Control)) || (key == Qt::Key_Control && isDown(Qt::Key_Q));
}

bool Monkey::sceneIsLarge() const
{
    const Scene *scene = m_window.currentScene()->scene();
    return scene->maximumFrameNumber() > mostFrames || scene->layerCount() > mostLayers;
}
