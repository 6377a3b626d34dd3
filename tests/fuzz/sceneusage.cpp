#include "sceneusage.h"

#include "fuzzharness.h"
#include "support/randomnumbers.h"
#include "support/sceneinvariants.h"
#include "support/scenesnapshot.h"

#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/drawing.h"

#include <algorithm>
#include <memory>
#include <vector>

using namespace Model;

namespace TestSupport {

namespace {

constexpr int mostCells = 300;
constexpr qint64 mostPixels = qint64(1) << 18; // of all cells
constexpr int editCount = 6;

/// Only what undoing the changes alone gives back: range and active position are restored by whoever made them.
SceneSnapshot contentOf(const Scene &scene)
{
    SceneSnapshot snapshot(scene);
    snapshot.rangeFirst = snapshot.rangeLast = snapshot.activeFrame = snapshot.activeLayerIdx = 0;
    return snapshot;
}

bool isSmall(const Scene &scene)
{
    qint64 cells = 0;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx)
        cells += scene.visualLayer(layerIdx) ? scene.lastFrame(layerIdx) : 1;
    const QSize frame = scene.frameSize();
    return cells <= mostCells && scene.maximumFrameNumber() <= mostCells &&
           cells * frame.width() * frame.height() <= mostPixels;
}

/// Some cell of the scene, as operations name it.
CellRef anyCell(const Scene &scene, RandomNumbers &random)
{
    const int layerIdx = random.between(0, scene.layerCount() - 1);
    const auto cell = scene.item(layerIdx, random.between(1, std::max(scene.lastFrame(layerIdx), 1)));
    return cell ? CellRef{scene.layer(layerIdx)->identifier(), cell->identifier} : CellRef();
}

QList<SceneChange> edit(Scene &scene, RandomNumbers &random)
{
    const int layerIdx = random.between(0, scene.layerCount() - 1);
    const int frameId = random.between(0, scene.lastFrame(layerIdx) + 1);
    switch (random.between(0, 8)) {
    case 0:
        return scene.addBlankDrawing(layerIdx, frameId);
    case 1:
        return scene.insertBlankDrawing(layerIdx, frameId);
    case 2:
        return scene.addCloneDrawings(layerIdx, frameId, random.between(1, 3));
    case 3:
        return scene.deleteFrames(layerIdx, frameId, random.between(1, 3));
    case 4:
        return scene.loseDrawing(layerIdx, frameId);
    case 5:
        return scene.turnCloneIntoOriginal(layerIdx, frameId);
    case 6:
        return scene.makeDistantClone(layerIdx, frameId, anyCell(scene, random));
    case 7: {
        const auto cell = scene.item(layerIdx, frameId);
        return cell ? scene.replaceDrawing(layerIdx, frameId, cell->drawing->clone(), random.chance(50))
                    : QList<SceneChange>();
    }
    default: {
        const int offset = random.between(-2, 2);
        return scene.slideOriginalDrawing(layerIdx, frameId, offset, std::min(offset, 0), std::max(offset, 0));
    }
    }
}

/// The scene has all that it had before, references that lead nowhere included.
void requireRestored(const Scene &scene, const SceneSnapshot &before)
{
    requireNothingWrong(brokenAfterReading(scene));
    requireNothingWrong(before.diff(contentOf(scene)));
}

/// Edits, one after the other, and back again.
void editAndUndo(Scene &scene, RandomNumbers &random)
{
    struct Step
    {
        SceneSnapshot before;
        QList<SceneChange> changes;
    };
    std::vector<Step> steps;
    for (int i = 0; i < editCount; ++i) {
        Step step{contentOf(scene), {}};
        step.changes = edit(scene, random);
        requireNothingWrong(brokenAfterReading(scene));
        if (!step.changes.isEmpty())
            steps.push_back(std::move(step));
    }
    for (; !steps.empty(); steps.pop_back()) {
        scene.undoChanges(steps.back().changes);
        requireRestored(scene, steps.back().before);
    }
}

/// A layer goes and comes back, with all links of its cells.
void removeAndInsert(Scene &scene, RandomNumbers &random)
{
    const SceneSnapshot before = contentOf(scene);
    const int layerIdx = random.between(0, scene.layerCount() - 1);
    const int place = scene.visualIndex(layerIdx);
    const std::shared_ptr<Layer> layer = scene.removeLayer(layerIdx);
    if (!layer)
        return;
    requireNothingWrong(brokenAfterReading(scene));
    require(scene.insertLayer(layer, layerIdx) == layerIdx, "a layer that was there can come back");
    scene.moveLayer(layerIdx, place);
    requireRestored(scene, before);
}

} // namespace

QString brokenAfterReading(const Scene &scene)
{
    return brokenInvariant(scene, DanglingLinks::Allowed);
}

void use(Scene &scene, quint64 seed)
{
    if (!isSmall(scene))
        return;
    RandomNumbers random(seed);
    require(!scene.framePixmap().isNull(), "a scene has a picture");
    editAndUndo(scene, random);
    if (scene.layerCount() > 1)
        removeAndInsert(scene, random);
    (void)scene.framePixmap();
}

} // namespace TestSupport
