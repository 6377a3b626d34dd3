#include "libui/paper/paperpictures.h"

#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <cmath>

namespace UI {

namespace {

/// Side of a symbol at the interface scale 1, logical pixels.
constexpr double symbolSide = 64.0;
/// Room for the antialiased edge of a line as thin as the lasso's.
constexpr double lassoRoom = 2.0;

QPixmap drawn(const QString &filename, QSize pixels, double ratio)
{
    QSvgRenderer renderer(filename);
    if (!renderer.isValid())
        return {};
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QPixmap picture(pixels);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    renderer.render(&painter);
    painter.end();
    picture.setDevicePixelRatio(ratio);
    return picture;
}

} // namespace

QPixmap paperPicture(const QString &name, QSizeF size, double ratio)
{
    const QString filename = QStringLiteral(":/paper/%1.svg").arg(name);
    const QSize pixels(int(std::lround(size.width() * ratio)), int(std::lround(size.height() * ratio)));
    if (name.isEmpty() || pixels.isEmpty() || !QFile::exists(filename))
        return {};
    const QString key = QStringLiteral("%1@%2x%3@%4").arg(filename).arg(pixels.width()).arg(pixels.height()).arg(ratio);
    QPixmap picture;
    if (QPixmapCache::find(key, &picture))
        return picture;
    picture = drawn(filename, pixels, ratio);
    QPixmapCache::insert(key, picture);
    return picture;
}

QString symbolName(PaperOverlay::Symbol symbol)
{
    switch (symbol) {
    case PaperOverlay::Symbol::None:
        break;
    case PaperOverlay::Symbol::Pan:
        return QStringLiteral("papersymbol-pan");
    case PaperOverlay::Symbol::Zoom:
        return QStringLiteral("papersymbol-zoom");
    case PaperOverlay::Symbol::Rotate:
        return QStringLiteral("papersymbol-rotate");
    case PaperOverlay::Symbol::OffPegsPan:
        return QStringLiteral("papersymbol-offpegs-pan");
    case PaperOverlay::Symbol::OffPegsRotate:
        return QStringLiteral("papersymbol-offpegs-rotate");
    }
    return {};
}

QString buttonName(PaperOverlay::Button button)
{
    switch (button) {
    case PaperOverlay::Button::Hidden:
        break;
    case PaperOverlay::Button::Normal:
        return QStringLiteral("offPegs_button");
    case PaperOverlay::Button::Hover:
        return QStringLiteral("offPegs_button-hover");
    case PaperOverlay::Button::Click:
        return QStringLiteral("offPegs_button-click");
    }
    return {};
}

QRect symbolBounds(const PaperOverlay &overlay)
{
    if (overlay.symbol == PaperOverlay::Symbol::None)
        return {};
    const int side = int(std::lround(symbolSide * overlay.scale));
    const QPoint middle = overlay.symbolPosition.toPoint();
    return {middle.x() - side / 2, middle.y() - side / 2, side, side};
}

QRect buttonBounds(const PaperOverlay &overlay)
{
    return overlay.button == PaperOverlay::Button::Hidden ? QRect() : overlay.buttonRect.toRect();
}

QRect lassoBounds(const PaperOverlay &overlay)
{
    if (overlay.lasso.isEmpty())
        return {};
    return overlay.lasso.controlPointRect().adjusted(-lassoRoom, -lassoRoom, lassoRoom, lassoRoom).toAlignedRect();
}

} // namespace UI
