#pragma once

#include "libmodel/base/mr.h"
#include "libmodel/strokes/floatingselection.h"
#include "libmodel/tools/tool.h"

#include <QPainterPath>
#include <QTransform>
#include <QWidget>

#include <memory>

class QGestureEvent;
class QNativeGestureEvent;
class QTouchEvent;

namespace Model {
class MRScene;
}

namespace UI {

class ViewTransform;
struct PointerEvent;

/// The drawing canvas: a sheet of paper lying on a desk.
///
/// It shows the current frame, holds how the sheet lies (ViewTransform) and turns pen, mouse and touch into strokes on
/// the current scene and motions of the sheet, by the current tool. It owns no drawing data. Pen and mouse take one way
/// through it: an event becomes a PointerEvent, PointerFilter keeps a contact that arrives as both from counting twice,
/// and the tool's type picks what is done:
///
/// | tool               | press              | move              | release              | double tap          |
/// |--------------------|--------------------|-------------------|----------------------|---------------------|
/// | pen, eraser        | begin stroke       | add a sample      | strokeEnded          | as a press          |
/// |   with Ctrl        | adjust the pen     | adjust            | back to the pen      | as a press          |
/// | hand               | remember           | pan               | settle               | centre the sheet    |
/// | zoom               | remember           | zoom              | settle               | 100 percent         |
/// | rotate             | remember           | rotate            | settle               | upright             |
/// | all of these       | fix the zone       | by the zone       | settle               | by the zone         |
/// | off pegs           | fix the zone       | move the frame    | settle and tell      | as a press          |
/// |   on its button    | push it            |                   | put back, if on it   | as a press          |
/// | lasso, cutter      | begin the line     | lead it on        | lassoingCompleted    | as a press          |
/// | floating selection | fix the zone       | drag              | settle and tell      | as a press          |
/// |   outside of it    | ...Stamped         |                   |                      | as a press          |
/// | scrubbing          | remember           | scrubOffset       | hold to the limits   | as a press          |
/// | pen adjustment     | remember           | adjust            | back to the pen      | as a press          |
///
/// A stroke is begun and fed here, and taken from the scene by whoever answers strokeEnded(). A gesture always ends: on
/// release, or when the pen leaves the tablet's range; where the release can't come (focus lost, widget hidden, window
/// inactive or blocked); where the scene goes, and where another tool is taken up. What was drawn or moved by then
/// stays; only the line of a lasso that is not finished is dropped, and with a scene that goes what was to be done to
/// it. A lasso and a drag of the floating selection can be given up, too. On a layer that cannot be picked up from no
/// lasso begins, as the cursor says.
///
/// The scene's floating selection is seen while it floats: while the tool for it is the chosen one, also under a tool
/// that is borrowed for the moment (Model::ToolManager::latestPaperToolType()), and while no other frame is on show
/// than the active one.
///
/// A press that begins an edit is told ahead, by aboutToBeginEdit(), and then looked at as if it came just now: the
/// frame on show may be another one. An edit is for the active frame, and none begins while another is on show. A frame
/// that holds a drawing is drawn on as the one that it holds: the stroke shows in all of the drawing's exposures.
class Paper : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(double zoomLevel READ zoomLevel WRITE setZoomLevel NOTIFY zoomLevelChanged)
    Q_PROPERTY(double zoomLevelToFit READ zoomLevelToFit NOTIFY zoomLevelToFitChanged)
    Q_PROPERTY(bool mirrorView READ mirrorView WRITE setMirrorView NOTIFY mirrorViewChanged)
    Q_PROPERTY(bool devicePressed READ isDevicePressed NOTIFY devicePressedChanged)

public:
    explicit Paper(QWidget *parent = nullptr);
    ~Paper() override;

    /// Device pixels per paper pixel, 1/16 to 16; that on show, while a gesture runs.
    double zoomLevel() const;
    /// The level at which the whole sheet fits the view.
    double zoomLevelToFit() const;
    bool mirrorView() const;
    /// A pen or a mouse button is down on the paper, or fingers move it.
    bool isDevicePressed() const;
    /// How the sheet lies, a running gesture included.
    const ViewTransform &view() const;

    /// Is a lasso led around something, or the floating selection dragged?
    bool isPickingUp() const;
    /// Does away with the lasso or the drag that goes on, as if it had not begun; nothing else. The contact stays down
    /// and does nothing more.
    void giveUpPickingUp();

    /// Logical pixels at the top that something else covers: the sheet is centred in the rest. 0 at first.
    void setTopBarHeight(int height);

    QSize sizeHint() const override;

public slots:
    /// Shows \a scene (not owned; null for none: blank white) and follows its signals. One that is deleted is none.
    void setCurrentScene(Model::MRScene *scene);
    /// Turns the sheet to \a degrees.
    void rotatePaperTo(double degrees);
    /// Turns the sheet one step of \a degrees, from the nearest multiple of it.
    void rotatePaperToNext(double degrees);
    /// Zooms about the view's centre; held to the limits.
    void setZoomLevel(double level);
    /// Zooms about the middle of the sheet.
    void setZoomLevelCenteringOnOrigin(double level);
    /// Flips what is seen, left for right; drawings stay as they are.
    void setMirrorView(bool mirror);
    /// Takes over the scene's frame size, keeping the sheet's place.
    void updateFrameSize();
    /// Centred, upright, 100 %.
    void resetView();
    /// Centred, as large as fits, at the present rotation.
    void fitToView();
    /// Takes over the screen's device pixel ratio, keeping the zoom level.
    void updateDevicePixelRatio();
    /// What the sheet is filled with. Follows the setting of that name by itself.
    void setTransparencyType(MR::TransparencyType type);
    /// Shows or hides the grid.
    void setGridStatus(MR::GridStatus status);
    /// Which grid. Follows the setting of that name by itself.
    void setGridType(MR::GridType type);
    /// Where the current frame lies off its pegs (desk to paper), for a frame that nobody is moving. Follows the scene
    /// by itself.
    void setOffPegsTransform(const QTransform &transform);
    /// Where the floating selection lies. Follows the scene by itself.
    void setFloatingSelectionTransform(const Model::FloatingSelection::Transform &transform);
    /// How far a scrub may go from the frame that it begins at, in frames; at its end it is held to that.
    void setMinMaxScrubOffset(int minOffset, int maxOffset);
    /// Ends a running drag of a frame off its pegs or of the floating selection where it stands, and tells of it: for
    /// whoever is about to change the scene or its history. The contact stays down and does nothing more.
    void settleEdits();
    /// Takes the keyboard back from the menu that a return flip was chosen in.
    void returnFlip_Menu();

signals:
    /// The zoom or the rotation changed; so may have the level that fits.
    void zoomLevelChanged(double level);
    void zoomLevelToFitChanged(double level);
    void mirrorViewChanged(bool mirror);
    void devicePressedChanged(bool pressed);
    /// The middle button pans from now on, or not any more. Comes ahead of the action Pan's being triggered for it, and
    /// after that has been toggled back or, disabled meanwhile, could not be.
    void panHeldChanged(bool held);
    /// The right button or the pen's barrel button was pressed with no contact down.
    void rightButtonPressed(Qt::KeyboardModifiers modifiers);
    /// A drag with the off-pegs tool has ended: the current frame is to lie there (desk to paper), identity to put it
    /// back on its pegs.
    void offPegsTransformChanged(const QTransform &transform);
    /// A line was drawn around something, closed; paper coordinates. \a cutLassoPath: with the cutter.
    void lassoingCompleted(const QPainterPath &path, bool cutLassoPath);
    /// A press outside of the floating selection: it is to be stamped.
    void floatingSelectionStamped(Qt::KeyboardModifiers modifiers);
    /// A drag of the floating selection has ended there.
    void floatingSelectionTransformChanged(const Model::FloatingSelection::Transform &transform);
    /// The running or just ended scrub stands at \a offset frames from where it began.
    void scrubOffsetChanged(int offset);
    /// A press is about to begin an edit: a stroke, a lasso, a move of the frame off its pegs or back, a drag or stamp
    /// of the floating selection. Whoever shows another frame than the active one, as playback does, ends that now.
    void aboutToBeginEdit();
    /// A stroke is about to begin, after aboutToBeginEdit(). What must be there for it (a drawing in the active cell)
    /// is made by who answers; if it is still missing then, no stroke begins.
    void aboutToBeginStroke();
    /// The stroke in progress is complete, to be taken from the scene and committed.
    void strokeEnded();

protected:
    bool event(QEvent *event) override;
    /// Watches the application for the pen that leaves the tablet's range.
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void tabletEvent(QTabletEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    class Private;

    /// How a contact ends: lifted, or no longer to be had, or its scene no longer to be changed.
    enum class Ending { Released, Lost, SceneLeft };

    // Contacts of pen and mouse.
    void buttonPressed(Qt::MouseButton button, const PointerEvent &pointer);
    void buttonReleased(Qt::MouseButton button, const PointerEvent &pointer);
    void pointerPressed(Qt::MouseButton button, const PointerEvent &pointer, QPointF hover);
    void pointerMoved(const PointerEvent &pointer, Qt::MouseButtons buttons);
    void pointerHovered(const PointerEvent &pointer);
    void dropStaleContact(const PointerEvent &pointer);
    void endContact(Ending ending);
    void setPanToolOn(bool on);
    void announcePressed();
    bool mayEdit() const;
    bool announce(void (Paper::*signal)());

    // What they do.
    void moveGesture(const PointerEvent &pointer);
    void endGesture(Ending ending);
    void onToolChanged(Model::Tool::Type current);
    void beginStroke(const PointerEvent &pointer, QPointF hover);
    bool takeDoubleTap(QPointF position);
    void beginViewDrag(QPointF position);
    void beginPan(QPointF position);
    void endViewDrag();
    void beginOffPegs(QPointF position);
    void endOffPegs(Ending ending);
    void endPutBack(Ending ending);
    void tellOffPegs();
    void beginLasso(const PointerEvent &pointer);
    void leadLasso(const PointerEvent &pointer);
    void endLasso(Ending ending);
    void beginScrub(QPointF position);
    void endScrub();
    void beginPenAdjustment(QPointF position);
    void movePenAdjustment(QPointF position);
    void endPenAdjustment();

    // Floating selection and zones under the pointer.
    void takeFloatingSelection();
    void followFloating();
    void layFloatingAt(const Model::FloatingSelection::Transform &transform);
    void beginFloating(const PointerEvent &pointer);
    void dragFloating(QPointF position, Qt::KeyboardModifiers modifiers);
    void endFloating(Ending ending);
    void followView();
    void scrollAtEdge();
    void shiftChanged(bool isDown);
    void updateZone();
    void showZone(QPointF position);
    void setOverButton(bool over);
    bool showToolTip(QPoint position, QPoint globalPosition);

    // Touch.
    void nativeGesture(QNativeGestureEvent *event);
    void touchGesture(QGestureEvent *event);
    void measureFingers(const QTouchEvent &event);
    void endTouch();

    // Scene and view.
    void takeScene(Model::MRScene *scene);
    void connectScene();
    void followOffPegs();
    void updateRegion(const QRect &paperRect);
    void updateUsableRect();
    void setInterfaceScale(int percent);
    void showCursor(const QCursor &cursor);
    void setForbidden(bool forbidden);
    /// The view to be changed, running gestures settled. They go on from where the pointer is, so that what lies under
    /// it after the change stays there.
    ViewTransform settledView();
    /// Takes over a changed view: repaints and announces what differs.
    void setView(const ViewTransform &view);

    std::unique_ptr<Private> d;
};

} // namespace UI
