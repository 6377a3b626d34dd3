#pragma once

#include <QBrush>
#include <QPolygonF>
#include <QRect>
#include <QTransform>

class QPainter;

namespace Model {
class Scene;
}

namespace UI {

class ViewTransform;

/// Paints the desk, the sheet on it and the drawing on the sheet, in widget coordinates.
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

    /// All are borrowed for the painter's life. A null \a scene gives blank white.
    PaperPainter(const ViewTransform &view, Model::Scene *scene, const Look &look);

    /// Paints \a rect of the widget and nothing outside it. The painter's state comes back as it was.
    void paint(QPainter *painter, const QRect &rect) const;

    /// Paper to widget as it is painted: moved to whole device pixels where a pixel of the one is a pixel of the other,
    /// so that lines stay crisp at 100 %. At most half a device pixel from the exact one.
    static QTransform paperToWidget(const ViewTransform &view);

private:
    bool liesInside(const QRectF &rect) const;
    void paintSheet(QPainter *painter, const QRect &rect) const;
    void paintContent(QPainter *painter, const QRect &rect) const;
    void paintDesk(QPainter *painter, const QRect &rect) const;
    void paintOutline(QPainter *painter, const QRect &rect) const;
    void paintDiagonals(QPainter *painter, const QRect &rect) const;
    void paintShadows(QPainter *painter, const QRect &rect) const;

    const ViewTransform &m_view;
    Model::Scene *m_scene;
    const Look &m_look;
    QTransform m_paperToWidget;
    QTransform m_widgetToPaper;
    /// The sheet's four corners in the widget.
    QPolygonF m_sheet;
};

} // namespace UI
