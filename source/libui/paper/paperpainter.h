#pragma once

#include "libui/paper/paperoverlay.h"

#include <QBrush>
#include <QColor>
#include <QPolygonF>
#include <QRect>
#include <QTransform>

class QPainter;

namespace Model {
class Scene;
}

namespace UI {

class ViewTransform;

/// Paints the desk, the sheet on it, the drawing on the sheet and what lies on top, in widget coordinates.
///
///     on the pegs     the frame's paper is the sheet; all of the picture lies on it
///     off the pegs    the sheet stays on the pegs with the frames that shine through, and the current frame with the
///                     stroke in progress lies over it on a paper of its own
///
/// The cost follows the rectangle that is asked for: what doesn't touch it is left out. All of the rectangle is painted
/// over. A painter lives for one paint event; the view and the scene must stay as they are meanwhile.
class PaperPainter
{
public:
    /// What the sheet and the desk are filled with; brushes have their origin at (0, 0).
    struct Look
    {
        QBrush paper;
        QBrush desk;
    };

    /// \a view, \a scene and \a look are borrowed for the painter's life. A null \a scene gives blank white.
    PaperPainter(const ViewTransform &view, Model::Scene *scene, const Look &look, const PaperOverlay &overlay = {});

    /// Paints \a rect of the widget and nothing outside it. The painter's state comes back as it was.
    void paint(QPainter *painter, const QRect &rect) const;

    /// Paper to widget as it is painted: moved to whole device pixels where a pixel of the one is a pixel of the other,
    /// so that lines stay crisp at 100 %. At most half a device pixel from the exact one.
    static QTransform paperToWidget(const ViewTransform &view);
    /// The same for what stays on the pegs.
    static QTransform deskToWidget(const ViewTransform &view);

private:
    void paintSheet(QPainter *painter, const QRect &rect) const;
    void paintContent(QPainter *painter, const QRect &rect) const;
    void paintDesk(QPainter *painter, const QRect &rect) const;
    void paintOutlines(QPainter *painter, const QRect &rect) const;
    void paintDiagonals(QPainter *painter, const QRect &rect) const;
    void paintOverlay(QPainter *painter, const QRect &rect) const;

    void drawLine(QPainter *painter, const QRect &rect, const QLineF &line) const;
    [[nodiscard]] QBrush framePaper() const;
    [[nodiscard]] QRect widgetRect() const;
    [[nodiscard]] QColor inkColor() const;

    const ViewTransform &m_view;
    Model::Scene *m_scene;
    const Look &m_look;
    PaperOverlay m_overlay;
    QTransform m_paperToWidget;
    QTransform m_deskToWidget;
    /// The four corners, in the widget, of the frame's paper and of the sheet on the pegs.
    QPolygonF m_frame;
    QPolygonF m_sheet;
    bool m_isOffPegs;
};

} // namespace UI
