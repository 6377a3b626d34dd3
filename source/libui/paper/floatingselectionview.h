#pragma once

#include "libmodel/strokes/floatingselection.h"
#include "libmodel/strokes/inktiles.h"
#include "libui/paper/floatinghandles.h"

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRect>
#include <QTransform>
#include <Qt>

class QPainter;

namespace UI {

class ViewTransform;

/// A floating selection as the paper shows it and as a pointer moves it: its picture, the handles around it, and where
/// it lies, settled and with what a running drag adds. Plain state; the paper tells it of presses and moves and
/// repaints.
///
/// | zone           | where                              | drag                                     |
/// |----------------|------------------------------------|------------------------------------------|
/// | Pivot          | the pivot, where it is shown       | moves the pivot                          |
/// | Scale          | squares on the corners             | that corner follows, scaling about the   |
/// |                |                                    | pivot; evenly with Shift                 |
/// | Rotate         | circles outside the corners        | rotates about the pivot                  |
/// | ScaleRotate    | rounded squares around those two   | both at once; evenly with or without     |
/// |                |                                    | Shift                                    |
/// | ...Edge        | marks in the middles of the sides  | none                                     |
/// | Move           | the rest of the rectangle          | moves                                    |
/// | Outside        | all else                           | none: a press there stamps               |
///
/// Whichever corner is dragged away from the pivot makes the selection larger.
class FloatingSelectionView
{
public:
    using Zone = FloatingZone;

    /// Takes \a selection over; what was running is dropped.
    void setSelection(const Model::FloatingSelection &selection);
    [[nodiscard]] bool isNull() const { return m_selection.isNull(); }
    [[nodiscard]] const Model::FloatingSelection &selection() const { return m_selection; }

    /// The settled transform; setting it drops what is running. Nothing for one that can't be used.
    [[nodiscard]] const Model::FloatingSelection::Transform &transform() const { return m_settled; }
    void setTransform(const Model::FloatingSelection::Transform &transform);
    /// With what is running.
    [[nodiscard]] const Model::FloatingSelection::Transform &shownTransform() const { return m_shown; }

    /// Lays the handles out for \a view at the interface scale \a scale (1.0 for 100 percent). To be called after every
    /// change of either; changes of the selection and its transforms are followed without it.
    void rebuildHandles(const ViewTransform &view, double scale);
    [[nodiscard]] const FloatingHandles &handles() const { return m_handles; }
    [[nodiscard]] Zone zoneAt(QPointF widgetPosition) const { return m_handles.zoneAt(widgetPosition); }
    /// How the handle at \a widgetPosition is turned, degrees clockwise on the screen, 0 for one to the right.
    [[nodiscard]] double handleAngleAt(QPointF widgetPosition) const { return m_handles.angleAt(widgetPosition); }

    /// A drag begins, as the view is at this moment; a former one that has not ended is dropped.
    void beginDrag(Zone zone, QPointF widgetPosition);
    [[nodiscard]] bool isDragging() const { return m_isDragging; }
    /// The zone of the running or the last drag.
    [[nodiscard]] Zone draggedZone() const { return m_zone; }
    /// Takes what is running from the way from the press to \a widgetPosition, which may lie in another \a view than
    /// the press: with Shift among \a modifiers a scale is even. Nothing without a drag.
    void dragTo(QPointF widgetPosition, Qt::KeyboardModifiers modifiers, const ViewTransform &view);
    /// Settles what is running. \return true if that has changed anything.
    bool endDrag();

    /// The part of the widget that paint() may touch.
    [[nodiscard]] QRect bounds(const ViewTransform &view) const;
    /// Paints the selection in \a color and the handles, within \a rect, both in widget coordinates. Like the rest of
    /// the paper, pixels are smoothed only below a zoom level of 2, and an untouched selection looks as the drawing
    /// beneath it does.
    void paint(QPainter *painter, const QRect &rect, const ViewTransform &view, QColor color) const;

private:
    void layOutHandles();
    [[nodiscard]] QPointF contentCorner(FloatingHandles::Corner corner) const;
    /// How many pixels side by side are averaged to one, across and down, ahead of all else.
    struct Squeeze
    {
        int across = 1;
        int down = 1;
        bool operator==(const Squeeze &) const = default;
    };
    [[nodiscard]] static Squeeze squeezeFor(const QPainter *painter);
    [[nodiscard]] const QImage &tinted(QColor color, Squeeze squeeze) const;
    void paintContent(QPainter *painter, const QRect &rect, const ViewTransform &view, QColor color) const;

    Model::FloatingSelection m_selection;
    Model::FloatingSelection::Transform m_settled;
    Model::FloatingSelection::Transform m_shown;
    QTransform m_paperToWidget; ///< of the view that the handles are laid out for
    double m_scale = 1.0;
    FloatingHandles m_handles;

    Zone m_zone = Zone::Outside;
    FloatingHandles::Corner m_corner = FloatingHandles::BottomRight;
    QPointF m_pressOnPaper;
    bool m_isDragging = false;

    /// The selection's picture in the colour in which it was painted last, and where it lies in the content: whatever
    /// it is averaged down by, the same pixels come together as in the drawing. It is squeezed where it is shown scaled
    /// more in one direction than in the other.
    mutable QImage m_tinted;
    mutable QRect m_tintedRect; ///< in pixels of m_tinted, squeezed as that is
    mutable Squeeze m_squeeze;
    mutable QRgb m_tint = 0;
    mutable Model::InkTiles m_ink; ///< where in that picture there is anything
};

} // namespace UI
