#include "paperstage.h"

#include "libmodel/layers/strokelayer.h"
#include "libmodel/tools/toolmanager.h"

#include <QCoreApplication>
#include <QPointingDevice>
#include <QScreen>
#include <QTest>
#include <QWindow>
#include <qpa/qwindowsysteminterface.h>

#include <algorithm>

namespace TestSupport {

namespace {

constexpr unsigned long eventInterval = 5;

/// One for all stages: the toolkit keeps it to the end.
QPointingDevice *touchScreen()
{
    static QPointingDevice *const device = QTest::createTouchDevice();
    return device;
}

/// Where a point of a window is for the platform, which counts in the screen's pixels.
struct Place
{
    Place(QPointF position, const QWindow &window)
        : local(position * window.devicePixelRatio()),
          global((position + window.position()) * window.devicePixelRatio())
    {
    }

    QPointF local;
    QPointF global;
};

} // namespace

PaperStage::PaperStage(QSize frameSize, QSize widgetSize)
    : mrScene(std::make_unique<Model::MRScene>()),
      paper(std::make_unique<UI::Paper>()),
      m_pen(std::make_unique<QPointingDevice>(
          QStringLiteral("stage pen"), 77, QInputDevice::DeviceType::Stylus, QPointingDevice::PointerType::Pen,
          QInputDevice::Capability::Position | QInputDevice::Capability::Pressure | QInputDevice::Capability::Hover, 1,
          3)),
      m_touchpad(std::make_unique<QPointingDevice>(
          QStringLiteral("stage touchpad"), 78, QInputDevice::DeviceType::TouchPad,
          QPointingDevice::PointerType::Finger, QInputDevice::Capability::Position, 2, 0)),
      m_touchScreen(touchScreen())
{
    QWindowSystemInterface::registerInputDevice(m_pen.get());
    QWindowSystemInterface::registerInputDevice(m_touchpad.get());
    scene()->setFrameSize(frameSize, MR::FitMode::FitModeIgnore);
    scene()->insertLayer(std::make_shared<Model::StrokeLayer>(QColor(40, 97, 184), frameSize), 0);
    scene()->setActiveFrameAndLayer(1, 0, Model::Scene::KeepFrameOnDrawing);
    QObject::connect(paper.get(), &UI::Paper::strokeEnded, paper.get(),
                     [this] { strokes.push_back(scene()->takeStroke()); });
    useTool(Model::Tool::Type::Pen);
    paper->setWindowFlags(Qt::FramelessWindowHint);
    paper->setGeometry(QRect({40, 30}, widgetSize));
    paper->setCurrentScene(mrScene.get());
    paper->show();
    (void)QTest::qWaitForWindowExposed(paper.get());
}

PaperStage::~PaperStage()
{
    // The toolkit remembers pen and fingers beyond the stage.
    penRelease({});
    touch({});
    useTool(Model::Tool::Type::Pen);
}

void PaperStage::useTool(Model::Tool::Type type, int mode)
{
    Model::ToolManager::instance()->setCurrentTool(type, mode);
}

void PaperStage::pen(QPointF position, double pressure, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers)
{
    m_clock += eventInterval;
    QWindow *window = paper->windowHandle();
    const Place place(position, *window);
    QWindowSystemInterface::handleTabletEvent(window, m_clock, m_pen.get(), place.local, place.global, buttons,
                                              pressure, 0, 0, 0.0, 0.0, 0, modifiers);
    QWindowSystemInterface::flushWindowSystemEvents();
}

void PaperStage::penPress(QPointF position, double pressure, Qt::KeyboardModifiers modifiers)
{
    pen(position, pressure, Qt::LeftButton, modifiers);
}

void PaperStage::penMove(QPointF position, double pressure)
{
    pen(position, pressure, Qt::LeftButton);
}

void PaperStage::penRelease(QPointF position)
{
    pen(position, 0.0, Qt::NoButton);
}

void PaperStage::penLeavesRange()
{
    m_clock += eventInterval;
    QWindowSystemInterface::handleTabletEnterLeaveProximityEvent(paper->windowHandle(), m_clock, m_pen.get(), false);
    QWindowSystemInterface::flushWindowSystemEvents();
}

void PaperStage::penLine(const std::vector<QPointF> &points, double pressure)
{
    penPress(points.front(), pressure);
    for (size_t i = 1; i < points.size(); ++i)
        penMove(points[i], pressure);
    penRelease(points.back());
}

void PaperStage::mouse(QPointF position, QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons,
                       Qt::KeyboardModifiers modifiers)
{
    m_clock += eventInterval;
    QWindow *window = paper->windowHandle();
    const Place place(position, *window);
    QWindowSystemInterface::handleMouseEvent(window, m_clock, place.local, place.global, buttons, button, type,
                                             modifiers);
    QWindowSystemInterface::flushWindowSystemEvents();
}

void PaperStage::mousePress(QPointF position, Qt::MouseButton button, Qt::KeyboardModifiers modifiers)
{
    mouse(position, QEvent::MouseButtonPress, button, button, modifiers);
}

void PaperStage::mouseMove(QPointF position, Qt::MouseButton button)
{
    mouse(position, QEvent::MouseMove, Qt::NoButton, button);
}

void PaperStage::mouseRelease(QPointF position, Qt::MouseButton button)
{
    mouse(position, QEvent::MouseButtonRelease, button, Qt::NoButton);
}

void PaperStage::mouseLine(const std::vector<QPointF> &points)
{
    mousePress(points.front());
    for (size_t i = 1; i < points.size(); ++i)
        mouseMove(points[i]);
    mouseRelease(points.back());
}

void PaperStage::hover(QPointF position)
{
    mouse(position, QEvent::MouseMove, Qt::NoButton, Qt::NoButton);
}

void PaperStage::wheel(QPointF position, QPoint pixelDelta, QPoint angleDelta, Qt::KeyboardModifiers modifiers)
{
    m_clock += eventInterval;
    QWindow *window = paper->windowHandle();
    const Place place(position, *window);
    QWindowSystemInterface::handleWheelEvent(window, m_clock, place.local, place.global, pixelDelta, angleDelta,
                                             modifiers);
    QWindowSystemInterface::flushWindowSystemEvents();
}

void PaperStage::nativeGesture(Qt::NativeGestureType type, double value, QPointF position, QPointF delta)
{
    m_clock += eventInterval;
    QWindow *window = paper->windowHandle();
    const Place place(position, *window);
    QWindowSystemInterface::handleGestureEventWithValueAndDelta(window, m_clock, m_touchpad.get(), type, value, delta,
                                                                place.local, place.global);
    QWindowSystemInterface::flushWindowSystemEvents();
}

void PaperStage::touch(const std::vector<QPoint> &fingers)
{
    auto sequence = QTest::touchEvent(paper.get(), m_touchScreen, false);
    for (std::size_t i = 0; i < std::max(fingers.size(), m_fingers.size()); ++i) {
        const int id = static_cast<int>(i);
        if (i >= fingers.size())
            sequence.release(id, m_fingers[i], paper.get());
        else if (i >= m_fingers.size())
            sequence.press(id, fingers[i], paper.get());
        else
            sequence.move(id, fingers[i], paper.get());
    }
    sequence.commit();
    m_fingers = fingers;
}

QImage PaperStage::screen() const
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    return paper->screen()->grabWindow(paper->winId()).toImage().convertToFormat(QImage::Format_RGB32);
}

QImage PaperStage::repainted() const
{
    return paper->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

} // namespace TestSupport
