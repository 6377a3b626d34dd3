#include "support/scenepictures.h"

#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/inktiles.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QPixmap>

#include <algorithm>
#include <cstdlib>

using namespace Model;

namespace TestSupport {

namespace {

constexpr QSize sheetSize(8, 6);

/// Levels of a channel by which an imported picture, which is scaled to the frame, may come out elsewhere when a part
/// of it is painted anew: smooth scaling rounds by where the part begins. Backlights lay several on each other.
constexpr int roundingOfParts = 4;

/// The largest difference of a channel of a pixel, and where; empty if it is no more than rounding.
QString difference(const QString &what, const QPixmap &kept, const QPixmap &anew)
{
    const QImage one = kept.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage other = anew.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (one == other)
        return {};
    int largest = 256;
    QPoint where;
    for (int y = 0; one.size() == other.size() && y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            const int here = std::max({std::abs(qAlpha(a) - qAlpha(b)), std::abs(qRed(a) - qRed(b)),
                                       std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
            if (largest == 256 || here > largest) {
                largest = here;
                where = {x, y};
            }
        }
    }
    if (largest <= roundingOfParts)
        return {};
    return QStringLiteral("%1, by %2 at %3, %4").arg(what).arg(largest).arg(where.x()).arg(where.y());
}

QString staleComposition(Scene &scene)
{
    const QPixmap frame = scene.framePixmap();
    const QPixmap current = scene.currentFramePixmap();
    const QPixmap backlight = scene.backlightPixmap();
    scene.updateCachedFramePixmap(true);
    QString stale = difference(QStringLiteral("the composed picture"), frame, scene.framePixmap());
    if (stale.isEmpty())
        stale = difference(QStringLiteral("the current frame"), current, scene.currentFramePixmap());
    if (stale.isEmpty())
        stale = difference(QStringLiteral("the neighbouring frames"), backlight, scene.backlightPixmap());
    return stale;
}

bool hasInkOutside(const QImage &coverage, QRect inked)
{
    for (int y = 0; y < coverage.height(); ++y) {
        for (int x = 0; x < coverage.width(); ++x) {
            if (coverage.constScanLine(y)[x] != 0 && !inked.contains(x, y))
                return true;
        }
    }
    return false;
}

bool hasInkOutside(const QImage &coverage, const InkTiles &ink)
{
    QImage left = coverage.copy();
    ink.forEachRun(coverage.rect(), [&left](QRect run) {
        for (int y = run.top(); y <= run.bottom(); ++y)
            std::fill_n(left.scanLine(y) + run.left(), run.width(), uchar(0));
    });
    return hasInkOutside(left, QRect());
}

QString staleDrawing(const VisualLayer &layer, int frameId)
{
    const std::shared_ptr<Drawing> drawing = layer.item(frameId)->drawing;
    if (const auto *strokes = dynamic_cast<const StrokeDrawing *>(drawing.get())) {
        const std::shared_ptr<Drawing> copy = strokes->clone();
        auto &anew = dynamic_cast<StrokeDrawing &>(*copy);
        anew.rebuild(QRect(QPoint(0, 0), anew.size()));
        if (anew.image() != strokes->image())
            return QStringLiteral("the coverage");
        if (hasInkOutside(strokes->image(), strokes->inkedRect()))
            return QStringLiteral("the inked part");
        if (hasInkOutside(strokes->image(), strokes->ink()))
            return QStringLiteral("the map of the ink");
    }
    const QImage picture = layer.frameImage(frameId, sheetSize);
    drawing->clearThumbnails();
    return layer.frameImage(frameId, sheetSize) == picture ? QString() : QStringLiteral("the picture in the sheet");
}

} // namespace

QString stalePicture(Scene &scene)
{
    if (const QString stale = staleComposition(scene); !stale.isEmpty())
        return stale;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        const VisualLayer *layer = scene.visualLayer(layerIdx);
        for (int frameId = 1; layer && frameId <= layer->numFrames(); ++frameId) {
            const QString stale = layer->item(frameId)->isClone() ? QString() : staleDrawing(*layer, frameId);
            if (!stale.isEmpty())
                return stale + QStringLiteral(" of %1/%2").arg(layerIdx).arg(frameId);
        }
    }
    return {};
}

} // namespace TestSupport
