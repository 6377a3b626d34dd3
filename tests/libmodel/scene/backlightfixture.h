#pragma once

#include "pictureprobes.h"
#include "scenebuilder.h"

#include <QColor>
#include <QImage>

#include <array>
#include <cmath>

namespace TestSupport {

/// Red, green, blue and alpha from 0 to 1, premultiplied.
using Pixel = std::array<double, 4>;

inline Pixel ink(const QColor &color, double alpha)
{
    return {color.redF() * alpha, color.greenF() * alpha, color.blueF() * alpha, alpha};
}

inline Pixel over(const Pixel &above, const Pixel &below)
{
    Pixel result;
    for (int i = 0; i < 4; ++i)
        result[i] = above[i] + below[i] * (1 - above[3]);
    return result;
}

/// Is the pixel what it is to be, but for roundings?
inline bool isLike(const QImage &picture, QPoint at, const Pixel &wanted)
{
    const QRgb found = reinterpret_cast<const QRgb *>(picture.constScanLine(at.y()))[at.x()];
    const std::array<int, 4> channels{qRed(found), qGreen(found), qBlue(found), qAlpha(found)};
    for (int i = 0; i < 4; ++i) {
        if (std::abs(channels[i] - wanted[i] * 255) > 3)
            return false;
    }
    return true;
}

inline bool isClear(const QImage &picture, QPoint at)
{
    return picture.pixel(at) == 0;
}

/// A transparent picture of the size of the small frames.
inline QImage blankFrame()
{
    return blankFrame(sceneFrame);
}

/// One level on each side, without limits of time or tint but for what \a change makes of it.
template<typename Change>
void setBacklight(Model::Scene &scene, const Change &change)
{
    Model::BacklightSettings settings;
    settings.settingA.opacityLevelsBefore = {0.4};
    settings.settingA.opacityLevelsAfter = {0.2};
    settings.settingB.opacityLevelsBefore = {0.8};
    settings.settingB.opacityLevelsAfter = {};
    change(settings);
    scene.setBacklightSettings(settings);
}

inline void setBacklight(Model::Scene &scene)
{
    setBacklight(scene, [](Model::BacklightSettings &) {});
}

/// The place of frame \a frameId's ink: a square of 6 x 6 of its own.
inline QRect placeOf(int frameId)
{
    return {8 * frameId, 8, 6, 6};
}

inline QPoint spot(int frameId)
{
    return placeOf(frameId).center();
}

/// A red layer of five drawings, each with its square, on its third frame.
inline void addFiveFrames(Model::Scene &scene)
{
    makeSmall(scene);
    const int idx = addStrokeLayer(scene, 5, Qt::red);
    for (int frameId = 1; frameId <= 5; ++frameId)
        scene.addStroke(idx, frameId, block(placeOf(frameId)));
    scene.setFrameRange(1, 5, 3, 0);
}

/// What the red layer's neighbours shine in, before and after.
inline const QColor redTurnedBack(QColor::fromHsv(330, 255, 255));
inline const QColor redTurnedOn(QColor::fromHsv(30, 255, 255));

} // namespace TestSupport
