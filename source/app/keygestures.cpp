#include "app/keygestures.h"

#include "app/catalogueaction.h"
#include "app/keyowner.h"
#include "app/playbackcontroller.h"
#include "app/scrubbing.h"
#include "app/toolswitch.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/inputsuspension.h"
#include "libui/paper/paper.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QWindow>

#include <utility>

using Model::Tool;
using Model::ToolManager;

namespace {

/// How long a key is held before its settings show, and Space away from the paper before it means the paper.
constexpr int holdMs = 200;

/// No keyboard repeats a key that has not been down for so long.
constexpr quint64 shortestRepeatDelayMs = 150;
/// How long after a release the press may be seen that makes a repetition of it.
constexpr int doubtMs = 20;

constexpr MR::Action viewToolActions[] = {MR::Action::Pan, MR::Action::Zoom, MR::Action::Rotate, MR::Action::OffPegs};

bool isEnabled(MR::Action which)
{
    const QAction *action = catalogueAction(which);
    return action && action->isEnabled();
}

bool isChecked(MR::Action which)
{
    const QAction *action = catalogueAction(which);
    return action && action->isChecked();
}

/// \return whether it could be.
bool trigger(MR::Action which)
{
    if (!isEnabled(which))
        return false;
    catalogueAction(which)->trigger();
    return true;
}

Qt::KeyboardModifiers realModifiers(Qt::KeyboardModifiers modifiers)
{
    return modifiers & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
}

bool isModifierKey(int key)
{
    return HeldModifiers::modifierOf(key) != Qt::NoModifier || key == Qt::Key_AltGr || key == Qt::Key_CapsLock ||
           key == Qt::Key_NumLock;
}

bool isBorrowedByAction()
{
    for (const MR::Action action : viewToolActions) {
        if (isChecked(action))
            return true;
    }
    return false;
}

/// While the middle button pans, the tool is the button's.
bool isMiddleButtonDown()
{
    return QGuiApplication::mouseButtons().testFlag(Qt::MiddleButton);
}

} // namespace

KeyGestures::KeyGestures(QWidget *window, UI::Paper *paper, ToolSwitch *toolSwitch, PlaybackController *playback,
                         Scrubbing *scrubbing)
    : m_window(window), m_paper(paper), m_toolSwitch(toolSwitch), m_playback(playback), m_scrubbing(scrubbing)
{
    for (QTimer *timer : {&m_settingsTimer, &m_viewTimer}) {
        timer->setSingleShot(true);
        timer->setInterval(holdMs);
    }
    m_doubtTimer.setSingleShot(true);
    m_doubtTimer.setInterval(doubtMs);
    connect(&m_doubtTimer, &QTimer::timeout, this, &KeyGestures::believeRelease);
    connect(&m_settingsTimer, &QTimer::timeout, this, &KeyGestures::showSettings);
    connect(&m_viewTimer, &QTimer::timeout, this, &KeyGestures::takeUpView);
    // Who begins to draw with the key still down does not want the settings in the way.
    connect(paper, &UI::Paper::devicePressedChanged, &m_settingsTimer, &QTimer::stop);
    connect(playback, &PlaybackController::playbackChanged, this, [this](bool playing) { m_flips &= playing; });
    connect(qApp, &QApplication::focusChanged, this, [this](const QWidget *, const QWidget *now) {
        if (!now || now->window() != m_window || takesKeys(now))
            endAll();
    });
    qApp->installEventFilter(this);
}

bool KeyGestures::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return watched->isWidgetType() && keyEvent(watched, static_cast<QKeyEvent *>(event));
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::TabletMove:
    case QEvent::TabletPress:
        if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::TabletPress)
            believeRelease();
        m_pointer = static_cast<QSinglePointEvent *>(event)->globalPosition();
        m_isPaperEntered |= watched == m_paper;
        // Who comes to the paper with Space down means the paper, and must not begin to draw.
        if (m_viewTimer.isActive() && isPointerOverPaper()) {
            m_viewTimer.stop();
            takeUpView();
        }
        break;
    case QEvent::Leave:
        m_isPaperEntered &= watched != m_paper;
        break;
    case QEvent::WindowDeactivate:
    case QEvent::WindowBlocked:
    case QEvent::Hide:
        if (watched == m_window || watched == m_window->windowHandle())
            endAll();
        break;
    case QEvent::FocusOut:
        if (watched == m_window->windowHandle())
            endAll();
        break;
    case QEvent::Show:
        if (const auto *widget = qobject_cast<const QWidget *>(watched); widget && widget->windowType() == Qt::Popup)
            endAll();
        break;
    default:
        break;
    }
    return false;
}

bool KeyGestures::keyEvent(const QObject *watched, QKeyEvent *event)
{
    if (isHandedOn(watched, *event))
        return false;
    if (isOtherHalf(*event)) {
        holdOn(event);
        return true;
    }
    believeRelease();
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        return lookAhead(watched, event);
    case QEvent::KeyPress:
        return keyPressed(watched, event);
    default:
        return keyReleased(event);
    }
}

/// A widget that leaves a key alone hands it on to its parent; to us it counts once.
bool KeyGestures::isHandedOn(const QObject *watched, const QKeyEvent &event)
{
    const Passed last = std::exchange(m_passed, {watched, &event, event.type(), event.key(), event.timestamp()});
    if (last.event != &event || last.type != event.type() || last.key != event.key() ||
        last.timestamp != event.timestamp() || last.receiver == watched)
        return false;
    for (const QObject *child = QApplication::focusWidget(); child; child = child->parent()) {
        if (child == watched)
            return true;
    }
    return false;
}

/// Only a keyboard's keys have a place, and only they repeat.
bool KeyGestures::mayRepeat(const QKeyEvent &release) const
{
    return release.nativeScanCode() != 0 && m_latestPress.key.isSameAs(KeyIdentity::of(release)) &&
           release.timestamp() - m_latestPress.timestamp >= shortestRepeatDelayMs;
}

bool KeyGestures::isOtherHalf(const QKeyEvent &event) const
{
    return m_doubtful && event.type() != QEvent::KeyRelease && event.timestamp() == m_doubtful->timestamp &&
           m_doubtful->key.isSameAs(KeyIdentity::of(event));
}

/// The key has been down all the time, and repeats.
void KeyGestures::holdOn(QKeyEvent *press)
{
    press->accept();
    if (press->type() != QEvent::KeyPress)
        return;
    const KeyGesture held = m_held.gestureOf(m_doubtful->key);
    m_doubtTimer.stop();
    m_doubtful.reset();
    if (held == KeyGesture::StepBack || held == KeyGesture::StepForward)
        begin(held, *press);
}

void KeyGestures::believeRelease()
{
    m_doubtTimer.stop();
    if (m_doubtful)
        end(m_held.release(std::exchange(m_doubtful, std::nullopt)->key));
}

bool KeyGestures::areKeysSeen(const QObject *watched) const
{
    const auto *widget = static_cast<const QWidget *>(watched);
    // What a text field leaves over goes on to the widgets around it.
    return widget->window() == m_window && !takesKeys(widget) && !takesKeys(QApplication::focusWidget()) &&
           !QApplication::activeModalWidget() && !QApplication::activePopupWidget() && !UI::InputSuspension::isActive();
}

bool KeyGestures::hasMeaningNow(KeyGesture gesture) const
{
    switch (gesture) {
    case KeyGesture::None:
        return false;
    case KeyGesture::Escape:
        return m_paper->isPickingUp() || m_playback->isActive() || m_settingsShown || isBorrowedByAction() ||
               (ToolManager::instance()->currentToolType() == Tool::Type::ZPR && !m_held.isHeld(KeyGesture::View));
    case KeyGesture::View:
    case KeyGesture::Flip:
        return !isButtonFocused();
    default:
        return true;
    }
}

/// Every key that is pressed passes here first, and what is not accepted may be somebody's shortcut.
bool KeyGestures::lookAhead(const QObject *watched, QKeyEvent *event)
{
    if (belongsToWidget(*event)) {
        event->accept();
        return true;
    }
    if (!areKeysSeen(watched))
        return false;
    otherKeyPressed(*event);
    // What a held key repeats is its gesture's, whichever modifiers have joined it since.
    const KeyGesture gesture = gestureOf(*event);
    if (m_held.gestureOf(KeyIdentity::of(*event)) == KeyGesture::None && !hasMeaningNow(gesture)) {
        if (gesture == KeyGesture::Escape)
            hideSettings();
        return false;
    }
    event->accept();
    return true;
}

bool KeyGestures::keyPressed(const QObject *watched, QKeyEvent *event)
{
    if (!areKeysSeen(watched))
        return false;
    dropStaleModifiers(*event);
    if (isModifierKey(event->key())) {
        if (!event->isAutoRepeat())
            modifierPressed(*event);
        return false;
    }
    const KeyIdentity key = KeyIdentity::of(*event);
    const KeyGesture held = m_held.gestureOf(key);
    if (held != KeyGesture::None && event->isAutoRepeat()) {
        if (held == KeyGesture::StepBack || held == KeyGesture::StepForward)
            begin(held, *event);
        return true;
    }
    // Its release was lost.
    if (held != KeyGesture::None)
        end(m_held.release(key));
    const KeyGesture gesture = gestureOf(*event);
    if (!hasMeaningNow(gesture))
        return false;
    if (!event->isAutoRepeat()) {
        m_held.press(key, gesture);
        m_latestPress = {key, event->timestamp()};
        begin(gesture, *event);
    }
    return true;
}

bool KeyGestures::keyReleased(QKeyEvent *event)
{
    if (isModifierKey(event->key())) {
        if (!event->isAutoRepeat())
            modifierReleased(*event);
        return false;
    }
    const KeyIdentity key = KeyIdentity::of(*event);
    if (m_held.gestureOf(key) == KeyGesture::None)
        return false;
    if (event->isAutoRepeat())
        return true;
    if (mayRepeat(*event)) {
        m_doubtful = {key, event->timestamp()};
        m_doubtTimer.start();
    } else {
        end(m_held.release(key));
    }
    return true;
}

void KeyGestures::otherKeyPressed(const QKeyEvent &event)
{
    if (isModifierKey(event.key()) || event.isAutoRepeat())
        return;
    // Shift was meant for this key.
    m_scrubbing->end(false);
    if (gestureOf(event) == KeyGesture::None && realModifiers(event.modifiers()) == Qt::NoModifier)
        hideSettings();
}

/// The window manager's own keys (Alt and Tab, for one) may swallow the release of a modifier.
void KeyGestures::dropStaleModifiers(const QKeyEvent &event)
{
    // Only a keyboard's keys have a place, and only with those the modifiers are sure to be stated.
    if (event.nativeScanCode() == 0)
        return;
    // Of its own modifier a modifier key tells nothing: it may have a second key.
    m_modifiers.keepOnly(event.modifiers() | HeldModifiers::modifierOf(event.key()));
    if (m_holdsOffPegs && !m_modifiers.modifiers().testFlags(Qt::ControlModifier | Qt::AltModifier))
        endOffPegs();
}

void KeyGestures::modifierPressed(const QKeyEvent &event)
{
    m_modifiers.press(KeyIdentity::of(event));
    const Qt::KeyboardModifiers down = m_modifiers.modifiers() | realModifiers(event.modifiers());
    if (down != Qt::ShiftModifier)
        m_scrubbing->end(false);
    else
        beginScrubbing();
    if (down == (Qt::ControlModifier | Qt::AltModifier) && !m_holdsOffPegs && isEnabled(MR::Action::OffPegs) &&
        !isChecked(MR::Action::OffPegs) && !isMiddleButtonDown()) {
        m_holdsOffPegs = true;
        emit aboutToAct();
        if (m_holdsOffPegs)
            m_toolSwitch->holdTool(Tool::Type::OffPegs);
    }
}

void KeyGestures::modifierReleased(const QKeyEvent &event)
{
    m_modifiers.release(KeyIdentity::of(event));
    const Qt::KeyboardModifiers down = m_modifiers.modifiers();
    if (!down.testFlag(Qt::ShiftModifier))
        m_scrubbing->end(isPointerOverPaper());
    if (event.key() != Qt::Key_Shift && !(down.testFlag(Qt::ControlModifier) && down.testFlag(Qt::AltModifier)))
        endOffPegs();
}

void KeyGestures::begin(KeyGesture gesture, const QKeyEvent &event)
{
    switch (gesture) {
    case KeyGesture::Escape:
        return escape();
    case KeyGesture::Flip:
        return beginFlip();
    case KeyGesture::View:
        return beginView();
    case KeyGesture::Draw:
        return beginSettings(gesture, MR::Action::Draw);
    case KeyGesture::Erase:
        return beginSettings(gesture, MR::Action::Erase);
    case KeyGesture::StepBack:
        return step(-1, event);
    case KeyGesture::StepForward:
        return step(1, event);
    case KeyGesture::SpeedDial:
        trigger(event.modifiers().testFlag(Qt::ShiftModifier) ? MR::Action::SecondarySpeedDial
                                                              : MR::Action::PrimarySpeedDial);
        return;
    case KeyGesture::Zoom:
        return takeUp(Tool::Type::Zoom, MR::Action::Zoom);
    case KeyGesture::Pan:
        return takeUp(Tool::Type::Hand, MR::Action::Pan);
    case KeyGesture::Rotate:
        return takeUp(Tool::Type::Rotate, MR::Action::Rotate);
    case KeyGesture::Palette:
        trigger(MR::Action::Palette);
        return;
    case KeyGesture::None:
        return;
    }
}

void KeyGestures::end(KeyGesture gesture)
{
    switch (gesture) {
    case KeyGesture::Flip:
        if (std::exchange(m_flips, false))
            m_playback->startReturnFlip();
        return;
    case KeyGesture::View:
        m_viewTimer.stop();
        m_toolSwitch->releaseTool(Tool::Type::ZPR);
        return;
    case KeyGesture::Draw:
    case KeyGesture::Erase:
        return endSettings(gesture);
    case KeyGesture::SpeedDial:
        emit speedDialHidingRequested();
        return;
    case KeyGesture::Zoom:
        m_toolSwitch->releaseTool(Tool::Type::Zoom);
        return;
    case KeyGesture::Pan:
        m_toolSwitch->releaseTool(Tool::Type::Hand);
        return;
    case KeyGesture::Rotate:
        m_toolSwitch->releaseTool(Tool::Type::Rotate);
        return;
    case KeyGesture::Palette:
        emit paletteHidingRequested();
        return;
    case KeyGesture::None:
    case KeyGesture::Escape:
    case KeyGesture::StepBack:
    case KeyGesture::StepForward:
        return;
    }
}

void KeyGestures::endAll()
{
    m_doubtTimer.stop();
    m_doubtful.reset();
    m_modifiers.releaseAll();
    for (const KeyGesture gesture : m_held.releaseAll())
        end(gesture);
    m_scrubbing->end(false);
    endOffPegs();
}

void KeyGestures::escape()
{
    if (m_paper->isPickingUp()) {
        m_paper->giveUpPickingUp();
        return;
    }
    const bool wasRunning = m_playback->isActive();
    const bool wereSettingsShown = m_settingsShown;
    m_playback->stopPlayback();
    hideSettings();
    if (wasRunning || wereSettingsShown)
        return;
    for (const MR::Action action : viewToolActions) {
        if (isChecked(action))
            trigger(action);
    }
    // Its action has no check, but it can be left in the same way.
    if (!m_held.isHeld(KeyGesture::View))
        m_toolSwitch->setTool(Tool::Type::ZPR, false);
}

void KeyGestures::beginFlip()
{
    if (ToolManager::instance()->currentToolType() == Tool::Type::FloatingSelection) {
        trigger(MR::Action::StampFloatingSelection);
        return;
    }
    emit aboutToAct();
    if (!m_held.isHeld(KeyGesture::Flip))
        return;
    if (m_playback->isFlipping()) {
        m_playback->allowSwitchFlipDirection();
        m_flips = true;
    } else if (m_playback->isActive()) {
        m_playback->stopPlayback();
    } else if (isEnabled(MR::Action::ReturnFlip)) {
        m_playback->startFlipBack();
        m_flips = m_playback->isActive();
    }
}

void KeyGestures::beginView()
{
    if (m_playback->isActive()) {
        trigger(MR::Action::Play);
        return;
    }
    if (!isEnabled(MR::Action::ZPR) || isMiddleButtonDown())
        return;
    const bool isForPaper = m_paper->isDevicePressed() || isPointerOverPaper();
    emit aboutToAct();
    if (!isForPaper)
        m_viewTimer.start();
    else
        takeUpView();
}

void KeyGestures::takeUpView()
{
    if (!m_doubtful && m_held.isHeld(KeyGesture::View))
        m_toolSwitch->holdTool(Tool::Type::ZPR);
}

void KeyGestures::beginSettings(KeyGesture gesture, MR::Action action)
{
    const QPoint position = QCursor::pos();
    if (!trigger(action) || !m_held.isHeld(gesture))
        return;
    if (m_settingsShown)
        hideSettings();
    m_settings = gesture;
    m_settingsPosition = position;
    m_settingsTimer.start();
}

void KeyGestures::showSettings()
{
    if (m_doubtful || m_paper->isDevicePressed())
        return;
    m_settingsShown = true;
    if (m_settings == KeyGesture::Draw)
        emit drawSettingsRequested(m_settingsPosition);
    else
        emit eraseSettingsRequested(m_settingsPosition);
}

void KeyGestures::endSettings(KeyGesture gesture)
{
    // The other key may have taken over.
    if (gesture != m_settings)
        return;
    m_settings = KeyGesture::None;
    hideSettings();
}

void KeyGestures::hideSettings()
{
    m_settingsTimer.stop();
    m_settingsShown = false;
    emit settingsHidingRequested();
}

void KeyGestures::step(int direction, const QKeyEvent &event)
{
    const bool byKeyDrawings = stepsByKeyDrawings(event);
    const MR::Action back = byKeyDrawings ? MR::Action::SkipBackToKeyDrawing : MR::Action::StepBackSkippingLocalClones;
    const MR::Action forward =
        byKeyDrawings ? MR::Action::SkipForwardToKeyDrawing : MR::Action::StepForwardSkippingLocalClones;
    if (!isEnabled(direction < 0 ? back : forward))
        return;
    emit aboutToAct();
    if (byKeyDrawings)
        emit keyDrawingStepRequested(direction);
    else
        emit drawingStepRequested(direction);
}

void KeyGestures::takeUp(Tool::Type tool, MR::Action action)
{
    if (!isEnabled(action) || isMiddleButtonDown())
        return;
    if (isChecked(action))
        trigger(action);
    else
        m_toolSwitch->holdTool(tool);
}

void KeyGestures::beginScrubbing()
{
    const Tool::Type tool = ToolManager::instance()->currentToolType();
    if (m_paper->isDevicePressed() || m_playback->isActive() || !m_held.isEmpty() || m_holdsOffPegs ||
        tool == Tool::Type::FloatingSelection || tool == Tool::Type::PenAdjustment)
        return;
    emit aboutToAct();
    if (m_modifiers.modifiers() == Qt::ShiftModifier)
        m_scrubbing->begin();
}

void KeyGestures::endOffPegs()
{
    if (std::exchange(m_holdsOffPegs, false))
        m_toolSwitch->releaseTool(Tool::Type::OffPegs);
}

/// While a contact is down the paper is not left, and a pen may leave it without a word: the place has to be right,
/// too.
bool KeyGestures::isPointerOverPaper() const
{
    return m_isPaperEntered && m_paper->rect().contains(m_paper->mapFromGlobal(m_pointer).toPoint());
}
