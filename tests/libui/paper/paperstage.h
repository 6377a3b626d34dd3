#pragma once

#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/tool.h"
#include "libui/paper/paper.h"
#include "libui/paper/viewtransform.h"

#include <QImage>
#include <QPointF>

#include <memory>
#include <vector>

class QPointingDevice;

namespace TestSupport {

/// A paper on screen over a scene of one stroke layer, with a pen and a mouse whose events go the whole way through the
/// toolkit. Answers strokeEnded() as the main window does, but keeps the strokes instead of making commands.
///
/// The clock is its own: every event comes 5 ms after the one before, pause() adds more.
class PaperStage
{
public:
    explicit PaperStage(QSize frameSize = {400, 300}, QSize widgetSize = {500, 400});
    ~PaperStage();

    Model::Scene *scene() const { return mrScene->scene(); }

    void useTool(Model::Tool::Type type, int mode = 0);

    /// Positions are widget coordinates. The pen's \a buttons after the event: the tip is the left one.
    void pen(QPointF position, double pressure, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers = {});
    void penPress(QPointF position, double pressure = 0.7, Qt::KeyboardModifiers modifiers = {});
    void penMove(QPointF position, double pressure = 0.7);
    void penRelease(QPointF position);
    /// The pen is lifted out of the tablet's range, which only the application is told.
    void penLeavesRange();
    /// Presses at the first point, moves along the others, and releases.
    void penLine(const std::vector<QPointF> &points, double pressure = 0.7);

    void mouse(QPointF position, QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons,
               Qt::KeyboardModifiers modifiers = {});
    void mousePress(QPointF position, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers modifiers = {});
    void mouseMove(QPointF position, Qt::MouseButton button = Qt::LeftButton);
    void mouseRelease(QPointF position, Qt::MouseButton button = Qt::LeftButton);
    void mouseLine(const std::vector<QPointF> &points);
    void hover(QPointF position);

    void wheel(QPointF position, QPoint pixelDelta, QPoint angleDelta, Qt::KeyboardModifiers modifiers = {});

    /// A gesture that a touchpad reports ready-made.
    void nativeGesture(Qt::NativeGestureType type, double value, QPointF position, QPointF delta = {});
    /// Fingers on a touch screen, where they are from now on, whole pixels; none: all are lifted.
    void touch(const std::vector<QPoint> &fingers);

    void pause(unsigned long milliseconds) { m_clock += milliseconds; }
    /// What is on screen, painted as far as was asked for until now.
    QImage screen() const;
    /// What a complete repaint shows.
    QImage repainted() const;

    QPointF toPaper(QPointF widget) const { return paper->view().widgetToPaper().map(widget); }
    QPointF toWidget(QPointF onPaper) const { return paper->view().paperToWidget().map(onPaper); }

    std::unique_ptr<Model::MRScene> mrScene;
    std::unique_ptr<UI::Paper> paper;
    /// The strokes that ended, as the scene gave them; null where it had none.
    std::vector<std::unique_ptr<Model::SingleStroke>> strokes;

private:
    std::unique_ptr<QPointingDevice> m_pen;
    std::unique_ptr<QPointingDevice> m_touchpad;
    QPointingDevice *m_touchScreen;
    std::vector<QPoint> m_fingers;
    unsigned long m_clock = 1000;
};

} // namespace TestSupport
