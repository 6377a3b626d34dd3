#pragma once

#include "pictureprobes.h"
#include "scenebuilder.h"

#include <QColor>
#include <QList>

#include <algorithm>

namespace TestSupport {

/// Several tiles of the map of ink beside and below each other.
inline constexpr QSize wideFrame(200, 50);

/// Two levels on each side.
inline Model::BacklightSettings shining()
{
    Model::BacklightSettings settings;
    settings.settingA.opacityLevelsBefore = {0.5, 0.4};
    settings.settingA.opacityLevelsAfter = {0.6, 0.3};
    return settings;
}

/// Two layers of five drawings each, red over blue, each drawing with a block of its own; on frame 3 of the first.
inline void addTwoLayers(Model::Scene &scene)
{
    makeSmall(scene);
    scene.setFrameSize(wideFrame, MR::FitMode::FitModeIgnore);
    for (const QColor &color : {QColor(Qt::red), QColor(Qt::blue)}) {
        const int idx = addStrokeLayer(scene, 5, color);
        for (int frameId = 1; frameId <= 5; ++frameId)
            scene.addStroke(idx, frameId, block(QRect(30 * frameId, 5 + 20 * idx, 60, 18)));
    }
    scene.setFrameRange(1, 5, 3, 0);
}

/// The frames that shine through, in ascending order.
inline QList<int> shiningFrames(const Model::Scene &scene)
{
    QList<int> frames;
    for (const Model::BacklightFrame &frame : scene.backlightFrames())
        frames.append(frame.frameId);
    std::sort(frames.begin(), frames.end());
    return frames;
}

} // namespace TestSupport
