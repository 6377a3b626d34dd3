// Drawings on the clipboard, as another program may claim to have them.

#include "fuzzharness.h"
#include "pixelbytes.h"
#include "support/randomnumbers.h"
#include "support/sceneinvariants.h"
#include "support/scenesnapshot.h"

#include "libcommands/pastedrawing.h"
#include "libmodel/files/drawingclipreader.h"
#include "libmodel/files/memorybudget.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/drawingclip.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QMimeData>
#include <QUndoStack>

#include <memory>
#include <vector>

using namespace Model;
using TestSupport::RandomNumbers;
using TestSupport::require;
using TestSupport::requireNothingWrong;
using TestSupport::SceneSnapshot;

namespace {

constexpr QSize frame(64, 48);
constexpr int strokes = 0;
constexpr int pictures = 1;
constexpr int cells = 5;

/// The copy identifier of the drawing at \a row; the seeds have the same ones (seedclips.cpp).
QUuid knownCopyId(int row)
{
    return QUuid(uint(row) + 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
}

/// A layer of strokes and one of pictures, with an original, a hold, two more originals and a distant clone of the
/// first each.
void build(Scene &scene)
{
    scene.setFrameSize(frame, MR::FitMode::FitModeIgnore);
    scene.insertLayer(std::make_shared<StrokeLayer>(Qt::black, frame), strokes);
    scene.insertLayer(std::make_shared<ReferenceLayer>(frame), pictures);
    for (const int layerIdx : {strokes, pictures}) {
        scene.addCloneDrawing(layerIdx, 1);
        while (scene.lastFrame(layerIdx) < cells)
            scene.addBlankDrawing(layerIdx, scene.lastFrame(layerIdx));
        scene.makeDistantClone(layerIdx, cells, scene.originOfFrame(layerIdx, 1));
        for (int frameId = 1; frameId < cells; ++frameId)
            scene.item(layerIdx, frameId)->drawing->setCopyId(knownCopyId(frameId));
    }
    scene.setFrameRange(1, cells, 1, strokes);
}

qint64 bytesHeld(const Drawing &drawing)
{
    if (const auto *picture = dynamic_cast<const ImageDrawing *>(&drawing))
        return picture->image().sizeInBytes();
    const auto &lines = dynamic_cast<const StrokeDrawing &>(drawing);
    return TestSupport::bytesHeld(lines.strokes()) + lines.image().sizeInBytes();
}

/// What is read where there is little memory has been asked for.
void readWithinLimits(const QByteArray &clip)
{
    constexpr qint64 fewBytes = 1 << 16;
    MemoryBudget memory(fewBytes);
    const DrawingClipReader reader(clip);
    const auto content = reader.read(
        frame, [](const QUuid &copyId) { return copyId == knownCopyId(1); }, memory);
    const QList<DrawingClip::Frame> &frames = content.frames;
    require(reader.isWellFormed() || frames.isEmpty(), "what is not well formed is refused");
    require(reader.layerType() == 0 || DrawingClipReader::layerTypeIn(clip) == reader.layerType(),
            "a clip that can be read can be told by its head");
    qint64 held = 0;
    for (const DrawingClip::Frame &told : frames) {
        require(!told.copyId.isNull(), "all frames name their drawings");
        require(!told.drawing || told.drawing->copyId() == told.copyId, "a drawing has its copy identifier");
        held += told.drawing ? bytesHeld(*told.drawing) : 0;
    }
    require(held <= fewBytes - memory.bytesLeft(), "what is held has been taken from the budget");
}

std::unique_ptr<QUndoCommand> paste(MRScene &mrScene, const QMimeData &data, RandomNumbers &random)
{
    const SceneModel &model = *mrScene.sceneModel();
    const int layerIdx = random.chance(50) ? strokes : pictures;
    if (random.chance(50))
        return std::make_unique<Commands::PasteDrawing>(&mrScene, model.index(random.between(0, cells), layerIdx),
                                                        &data);
    QModelIndexList selection;
    for (int row = random.between(0, cells - 1); row < cells; ++row) {
        if (selection.isEmpty() || random.chance(60))
            selection.append(model.index(row, layerIdx));
    }
    return std::make_unique<Commands::PasteDrawing>(&mrScene, selection, &data);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray clip(reinterpret_cast<const char *>(data), qsizetype(size));
    readWithinLimits(clip);

    MRScene mrScene;
    Scene &scene = *mrScene.scene();
    build(scene);
    QMimeData mimeData;
    mimeData.setData(DrawingClip::mimeType, clip);
    // Where it is pasted follows from what is pasted, so that an input always does the same.
    RandomNumbers random(size == 0 ? 0 : data[size - 1] * 256U + data[size / 2]);
    std::vector<SceneSnapshot> states{SceneSnapshot(scene)};
    for (int i = 0; i < 3; ++i) {
        scene.undoStack()->push(paste(mrScene, mimeData, random).release());
        requireNothingWrong(TestSupport::brokenInvariant(scene));
        const SceneSnapshot after(scene);
        if (scene.undoStack()->count() == int(states.size()))
            states.push_back(after);
        else
            requireNothingWrong(states.back().diff(after)); // refused, or nothing to do
    }
    QUndoStack &stack = *scene.undoStack();
    for (const bool back : {true, false, true}) {
        while (back ? stack.canUndo() : stack.canRedo()) {
            back ? stack.undo() : stack.redo();
            requireNothingWrong(TestSupport::brokenInvariant(scene));
            requireNothingWrong(states.at(std::size_t(stack.index())).diff(SceneSnapshot(scene)));
        }
    }
    require(!scene.framePixmap().isNull(), "a scene has a picture");
    return 0;
}
