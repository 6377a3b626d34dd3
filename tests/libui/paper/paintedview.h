#pragma once

#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libui/paper/paperpainter.h"
#include "libui/paper/viewtransform.h"

#include <QColor>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <vector>

namespace TestSupport {

inline constexpr QColor paperColor(255, 255, 255);
inline constexpr QColor deskColor(100, 90, 80);

/// A paper's picture without the widget: a scene of one frame or more, how it lies, and what lies on top.
///
/// The scene has one layer of (40, 97, 184) with a blank drawing in each of its frames; the backlight is off, the sheet
/// lies upright in the middle at 100 %.
struct PaintedView
{
    explicit PaintedView(QSize widget = {500, 400}, QSize frame = {400, 300}, int frames = 1)
    {
        scene.setFrameSize(frame, MR::FitMode::FitModeIgnore);
        addLayer(QColor(40, 97, 184), frames);
        scene.setFrameRange(1, frames, 1, 0);
        Model::BacklightSettings backlight;
        backlight.on = false;
        scene.setBacklightSettings(backlight);
        view.setUsableRect(QRect(QPoint(), widget));
        view.setPaperRect(QRectF(QPointF(), frame));
        view.reset();
    }

    /// Adds a layer below all others. \return its index.
    int addLayer(QColor color, int frames = 1)
    {
        auto layer = std::make_shared<Model::StrokeLayer>(color, scene.frameSize());
        for (int frameId = 1; frameId < frames; ++frameId)
            layer->insertBlankAfter(frameId);
        return scene.insertLayer(layer, scene.layerCount());
    }

    /// Fills \a rect of a drawing.
    void ink(QRect rect, int layerIdx = 0, int frameId = 1)
    {
        QImage coverage(rect.size(), QImage::Format_Alpha8);
        coverage.fill(255);
        scene.addStroke(layerIdx, frameId, std::make_unique<Model::BitmapStroke>(coverage, rect));
    }

    [[nodiscard]] QRect widgetRect() const { return view.usableRect() | QRect(0, 0, 1, 1); }

    /// Paints \a rects, one after the other, on a ground of \a ground.
    [[nodiscard]] QImage painted(const std::vector<QRect> &rects, QColor ground = Qt::magenta)
    {
        const double ratio = view.deviceRatio();
        QImage image((QSizeF(widgetRect().size()) * ratio).toSize(), QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        image.fill(ground);
        const UI::PaperPainter::Look look{paper, desk};
        const UI::PaperPainter painter(view, hasScene ? &scene : nullptr, look, overlay);
        QPainter on(&image);
        for (const QRect &rect : rects)
            painter.paint(&on, rect);
        return image;
    }
    [[nodiscard]] QImage painted() { return painted({widgetRect()}); }

    Model::Scene scene;
    UI::ViewTransform view;
    UI::PaperOverlay overlay;
    QBrush paper = paperColor;
    QBrush desk = deskColor;
    bool hasScene = true;
};

/// The largest difference of two pixels in a channel.
inline int difference(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

/// The largest difference of two images of one size in a channel of a pixel, within \a part.
inline int largestDifference(const QImage &a, const QImage &b, QRect part)
{
    int largest = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x)
            largest = std::max(largest, difference(a.pixel(x, y), b.pixel(x, y)));
    }
    return largest;
}

} // namespace TestSupport
