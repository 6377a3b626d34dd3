#pragma once

#include "libmodel/base/mr.h"

#include <QWidget>

#include <memory>

namespace Model {
class MRScene;
}

namespace UI {

class ViewTransform;
struct PointerEvent;

/// The drawing canvas: a sheet of paper lying on a desk.
///
/// It shows the current frame, holds how the sheet lies (ViewTransform) and turns pen and mouse into strokes on the
/// current scene and motions of the sheet, by the current tool. It owns no drawing data. Pen and mouse take one way
/// through it: an event becomes a PointerEvent, PointerFilter keeps a contact that arrives as both from counting twice,
/// and the tool's type picks what is done:
///
/// | tool           | press         | move           | release      | double tap         |
/// |----------------|---------------|----------------|--------------|--------------------|
/// | pen, eraser    | begin stroke  | add a sample   | strokeEnded  | as a press         |
/// | hand           | remember      | pan            | settle       | centre the sheet   |
///
/// A stroke is begun and fed here, and taken from the scene by whoever answers strokeEnded(). It always ends: on
/// release, and where the release can't come (focus lost, widget hidden, window inactive, scene changed, pen out of the
/// tablet's range).
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

    /// Device pixels per paper pixel, 1/16 to 16.
    double zoomLevel() const;
    /// The level at which the whole sheet fits the view.
    double zoomLevelToFit() const;
    bool mirrorView() const;
    /// A pen or a mouse button is down on the paper.
    bool isDevicePressed() const;
    /// How the sheet lies, a running gesture included.
    const ViewTransform &view() const;

    /// Logical pixels at the top that something else covers: the sheet is centred in the rest. 0 at first.
    void setTopBarHeight(int height);

    QSize sizeHint() const override;

public slots:
    /// Shows \a scene (not owned; null for none: blank white) and follows its signals.
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

signals:
    /// The zoom or the rotation changed; so may have the level that fits.
    void zoomLevelChanged(double level);
    void zoomLevelToFitChanged(double level);
    void mirrorViewChanged(bool mirror);
    void devicePressedChanged(bool pressed);
    /// The right button or the pen's barrel button was pressed with no contact down.
    void rightButtonPressed(Qt::KeyboardModifiers modifiers);
    /// A stroke is about to begin. What must be there for it (a drawing in the active cell) is made by who answers; if
    /// it is still missing then, no stroke begins.
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

private:
    class Private;

    void buttonPressed(Qt::MouseButton button, const PointerEvent &pointer);
    void buttonReleased(Qt::MouseButton button, const PointerEvent &pointer);
    void pointerPressed(Qt::MouseButton button, const PointerEvent &pointer, QPointF hover);
    void beginPan(QPointF position);
    void dropStaleContact(const PointerEvent &pointer);
    void pointerMoved(const PointerEvent &pointer, Qt::MouseButtons buttons);
    void beginStroke(const PointerEvent &pointer, QPointF hover);
    void endContact();
    void setPanToolOn(bool on);
    void announcePressed();

    void connectScene();
    void updateRegion(const QRect &paperRect);
    void updateUsableRect();
    void showCursor(const QCursor &cursor);
    /// The view to be changed, a running pan settled. The pan goes on from where the pointer is, so that what lies
    /// under it after the change stays there.
    ViewTransform settledView();
    /// Takes over a changed view: repaints and announces what differs.
    void setView(const ViewTransform &view);

    std::unique_ptr<Private> d;
};

} // namespace UI
