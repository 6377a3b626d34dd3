#include "libui/paper/overlaypainter.h"

#include "libui/paper/clipping.h"
#include "libui/paper/paperpictures.h"
#include "libui/paper/pixelgrid.h"

#include <QLineF>
#include <QPainter>
#include <QPen>
#include <QPixmap>

#include <optional>

namespace UI {

namespace {

/// The blue that animators' pencils for construction lines have: seen on every paper from white to black, and like no
/// drawing's line, being half transparent and a hair thin at any zoom.
constexpr QColor gridColor(66, 150, 214, 128);
constexpr QColor lassoColor(77, 163, 77, 205);
constexpr double lassoWidth = 0.8;
/// Room around lines for their width and antialiasing.
constexpr double lineRoom = 4.0;

QRectF grown(const QRect &rect)
{
    return QRectF(rect).adjusted(-lineRoom, -lineRoom, lineRoom, lineRoom);
}

void paintPicture(QPainter *painter, const QRect &rect, const QString &name, const QRect &place)
{
    if (!place.intersects(rect))
        return;
    const QPixmap picture = paperPicture(name, place.size(), painter->device()->devicePixelRatioF());
    if (picture.isNull())
        return;
    const QTransform &toDevice = painter->deviceTransform();
    painter->drawPixmap(toDevice.inverted().map(QPointF(toDevice.map(QPointF(place.topLeft())).toPoint())), picture);
}

} // namespace

void paintGrid(QPainter *painter, const QRect &rect, const PaperOverlay &overlay, const QTransform &paperToWidget,
               const QRect &view)
{
    if (overlay.grid.isEmpty())
        return;
    const QTransform toDevice = painter->deviceTransform();
    painter->setPen(QPen(gridColor, 1.0 / toDevice.m11(), Qt::SolidLine, Qt::FlatCap));
    const QPainterPath grid = paperToWidget.map(overlay.grid);
    QPointF from;
    for (int i = 0; i < grid.elementCount(); ++i) {
        const QPainterPath::Element &element = grid.elementAt(i);
        if (element.isLineTo()) {
            // Cut to the view first: a line that began at the painted part would take other pixels on its way.
            const std::optional<QLineF> visible = clippedLine(crispLine({from, element}, toDevice), grown(view));
            if (visible && clippedLine(*visible, grown(rect)))
                painter->drawLine(*visible);
        }
        from = element;
    }
}

void paintSymbol(QPainter *painter, const QRect &rect, const PaperOverlay &overlay)
{
    paintPicture(painter, rect, symbolName(overlay.symbol), symbolBounds(overlay));
}

void paintOffPegsButton(QPainter *painter, const QRect &rect, const PaperOverlay &overlay)
{
    paintPicture(painter, rect, buttonName(overlay.button), buttonBounds(overlay));
}

void paintLasso(QPainter *painter, const QRect &rect, const PaperOverlay &overlay)
{
    if (!lassoBounds(overlay).intersects(rect))
        return;
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(lassoColor, lassoWidth, Qt::DashLine, Qt::RoundCap, Qt::RoundJoin));
    painter->drawPath(overlay.lasso);
}

} // namespace UI
