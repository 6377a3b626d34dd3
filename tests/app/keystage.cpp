#include "keystage.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/scene/firstlayers.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/toolmanager.h"

#include <QApplication>
#include <QCursor>
#include <QTest>
#include <QVBoxLayout>
#include <QWindow>
#include <qpa/qwindowsysteminterface.h>

using Model::Tool;

namespace {

constexpr int frameCount = 10;
constexpr unsigned long eventIntervalMs = 20;

/// The release of a key of the keyboard that was down for so long is believed only after a moment.
constexpr unsigned long repeatDelayMs = 150;
constexpr int beliefMs = 30;

/// The Alt key is called Meta while Shift is down.
constexpr quint32 altScanCode = 64;

Qt::KeyboardModifiers modifierOf(const StageKey &key)
{
    if (key.scanCode == altScanCode)
        return Qt::AltModifier;
    switch (key.key) {
    case Qt::Key_Shift:
        return Qt::ShiftModifier;
    case Qt::Key_Control:
        return Qt::ControlModifier;
    case Qt::Key_Alt:
        return Qt::AltModifier;
    case Qt::Key_Meta:
        return Qt::MetaModifier;
    default:
        return {};
    }
}

QString textOf(int key)
{
    return key >= Qt::Key_Space && key <= Qt::Key_AsciiTilde ? QString(QChar(key)).toLower() : QString();
}

} // namespace

KeyStage::KeyStage()
{
    makeWindow();
    makeScene();
    toolSwitch = std::make_unique<ToolSwitch>(nullptr);
    playback = std::make_unique<PlaybackController>();
    scrubbing = std::make_unique<Scrubbing>(paper, toolSwitch.get(), nullptr);
    scrubbing->setCurrentScene(mrScene.get());
    gestures = std::make_unique<KeyGestures>(&window, paper, toolSwitch.get(), playback.get(), scrubbing.get());

    const auto goTo = [this](int frameId) {
        scene()->setActiveFrameAndLayer(frameId, 0, Model::Scene::KeepFrameOnDrawing);
        scene()->unsetScrubFrame();
    };
    QObject::connect(paper, &UI::Paper::panHeldChanged, toolSwitch.get(), &ToolSwitch::setPanHeld);
    QObject::connect(toolSwitch.get(), &ToolSwitch::aboutToChangeTool, &window, [this] { commit(); });
    QObject::connect(gestures.get(), &KeyGestures::aboutToAct, &window, [this] { commit(); });
    QObject::connect(paper, &UI::Paper::strokeEnded, &window, [this] { commit(); });
    QObject::connect(scrubbing.get(), &Scrubbing::landed, &window, goTo);
    QObject::connect(playback.get(), &PlaybackController::showFrame, &window,
                     [this](int frameId) { scene()->setScrubFrame(frameId); });
    QObject::connect(playback.get(), &PlaybackController::updateActiveFrame, &window, goTo);
    QObject::connect(scene(), &Model::Scene::activeFrameAndLayerChanged, playback.get(),
                     &PlaybackController::setActiveFrame);
    QObject::connect(action(MR::Action::Play), &QAction::triggered, playback.get(),
                     &PlaybackController::togglePlayback);
    playback->setFrameRange(1, frameCount);
    playback->setActiveFrame(scene()->activeFrame());

    window.show();
    (void)QTest::qWaitForWindowExposed(&window);
    reset();
}

KeyStage::~KeyStage()
{
    playback->stopPlayback();
    gestures.reset();
    paper->setCurrentScene(nullptr);
    useTool(Tool::Type::Pen);
}

void KeyStage::makeWindow()
{
    auto *middle = new QWidget(&window);
    auto *layout = new QVBoxLayout(middle);
    paper = new UI::Paper(middle);
    field = new QLineEdit(middle);
    button = new QPushButton(QStringLiteral("Button"), middle);
    layout->addWidget(paper, 1);
    layout->addWidget(field);
    layout->addWidget(button);
    window.setCentralWidget(middle);
    menu = window.menuBar()->addMenu(QStringLiteral("Menu"));
    menu->addAction(QStringLiteral("Entry"));
    window.addActions(Model::ActionManager::instance()->actions());
    window.resize(640, 520);
}

void KeyStage::makeScene()
{
    mrScene = std::make_unique<Model::MRScene>();
    scene()->setFrameSize({320, 240}, MR::FitMode::FitModeIgnore);
    Model::addMissingLayers(*scene());
    scene()->appendCloneDrawings(0, 1, frameCount - 1);
    scene()->setFrameRange(1, frameCount, 5, 0);
    Model::MRScene::setCurrent(mrScene.get());
    paper->setCurrentScene(mrScene.get());
}

QAction *KeyStage::action(MR::Action which)
{
    return Model::ActionManager::instance()->action(which);
}

Tool::Type KeyStage::tool()
{
    return Model::ToolManager::instance()->currentToolType();
}

void KeyStage::useTool(Tool::Type type)
{
    Model::ToolManager::instance()->setCurrentTool(type, 0);
}

void KeyStage::commit()
{
    if (scene()->takeStroke())
        ++commits;
}

void KeyStage::sendKey(QEvent::Type type, const StageKey &key, bool autoRepeat)
{
    m_clock += eventIntervalMs;
    QWindowSystemInterface::handleExtendedKeyEvent(window.windowHandle(), m_clock, type, key.key, m_modifiers,
                                                   key.scanCode, 0, key.nativeModifiers, textOf(key.key), autoRepeat);
    QWindowSystemInterface::flushWindowSystemEvents();
}

void KeyStage::repeatInHalves(const StageKey &key)
{
    sendKey(QEvent::KeyRelease, key, false);
    m_clock -= eventIntervalMs;
    sendKey(QEvent::KeyPress, key, false);
}

void KeyStage::press(const StageKey &key, bool autoRepeat)
{
    sendKey(QEvent::KeyPress, key, autoRepeat);
    m_modifiers |= modifierOf(key);
    if (!autoRepeat)
        m_pressTime = m_clock;
}

void KeyStage::release(const StageKey &key, bool autoRepeat)
{
    releaseAtOnce(key, autoRepeat);
    if (!autoRepeat && key.scanCode != 0 && m_clock - m_pressTime >= repeatDelayMs)
        QTest::qWait(beliefMs);
}

void KeyStage::releaseAtOnce(const StageKey &key, bool autoRepeat)
{
    sendKey(QEvent::KeyRelease, key, autoRepeat);
    m_modifiers &= ~modifierOf(key);
}

void KeyStage::tap(const StageKey &key)
{
    press(key);
    release(key);
}

void KeyStage::repeat(const StageKey &key)
{
    for (int i = 0; i < 3; ++i) {
        sendKey(QEvent::KeyRelease, key, true);
        sendKey(QEvent::KeyPress, key, true);
    }
    for (int i = 0; i < 3; ++i)
        sendKey(QEvent::KeyPress, key, true);
}

QPointF KeyStage::inWindow(QPointF offset) const
{
    return paper->mapTo(&window, paper->rect().center()) + offset;
}

void KeyStage::sendMouse(QPointF position, QEvent::Type type, Qt::MouseButton mouseButton, Qt::MouseButtons buttons)
{
    m_clock += eventIntervalMs;
    QWindow *handle = window.windowHandle();
    QWindowSystemInterface::handleMouseEvent(handle, m_clock, position, handle->mapToGlobal(position), buttons,
                                             mouseButton, type, m_modifiers);
    QWindowSystemInterface::flushWindowSystemEvents();
}

void KeyStage::hover(QPointF offset)
{
    sendMouse(inWindow(offset), QEvent::MouseMove, Qt::NoButton, Qt::NoButton);
}

void KeyStage::hoverElsewhere()
{
    sendMouse(field->mapTo(&window, field->rect().center()), QEvent::MouseMove, Qt::NoButton, Qt::NoButton);
}

void KeyStage::mousePress(QPointF offset, Qt::MouseButton mouseButton)
{
    // Far enough from the last one in time to be no double click.
    m_clock += 1000;
    sendMouse(inWindow(offset), QEvent::MouseButtonPress, mouseButton, mouseButton);
}

void KeyStage::mouseMove(QPointF offset, Qt::MouseButton mouseButton)
{
    sendMouse(inWindow(offset), QEvent::MouseMove, Qt::NoButton, mouseButton);
}

void KeyStage::mouseRelease(QPointF offset, Qt::MouseButton mouseButton)
{
    sendMouse(inWindow(offset), QEvent::MouseButtonRelease, mouseButton, Qt::NoButton);
}

void KeyStage::reset(Tool::Type base)
{
    gestures->endAll();
    playback->stopPlayback();
    m_modifiers = {};
    paper->setFocus();
    window.activateWindow();
    (void)QTest::qWaitForWindowActive(&window);
    // The real pointer too: the window system tells of it when windows come and go.
    QCursor::setPos(paper->mapToGlobal(paper->rect().center()));
    QCoreApplication::processEvents();
    hover({0, 0});
    useTool(Tool::Type::Pen);
    useTool(base);
    commit();
    commits = 0;
    scene()->setActiveFrameAndLayer(5, 0, Model::Scene::KeepFrameOnDrawing);
    scene()->unsetScrubFrame();
}
