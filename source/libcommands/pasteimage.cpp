#include "libcommands/pasteimage.h"

#include "libcommands/changesteps.h"
#include "libcommands/framedeletion.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/imagedrawing.h"

#include <utility>

namespace Commands {

namespace {

bool hasPictures(const Model::VisualLayer &layer)
{
    return layer.layerType() == Model::Layer::Reference;
}

/// \a image as large as it fits into \a frame.
QImage fitted(const QImage &image, QSize frame)
{
    if (image.isNull() || image.size().scaled(frame, Qt::KeepAspectRatio).width() == image.width())
        return image;
    return image.scaled(frame, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace

PasteImage::PasteImage(Model::MRScene *scene, const QModelIndexList &selection, const QImage &image,
                       QUndoCommand *parent)
    : CellCommand(
          scene, selection,
          [](const Model::VisualLayer &layer, int frameId) { return hasPictures(layer) && hasCell(layer, frameId); },
          parent),
      m_place(Place::OverCells)
{
    take(scene, image);
}

PasteImage::PasteImage(Model::MRScene *scene, const QModelIndex &cell, const QImage &image, QUndoCommand *parent)
    : CellCommand(
          scene, QModelIndexList{cell},
          [](const Model::VisualLayer &layer, int frameId) {
              return hasPictures(layer) && hasCellOrEndsBefore(layer, frameId);
          },
          parent),
      m_place(Place::BeforeCell)
{
    take(scene, image);
}

void PasteImage::take(const Model::MRScene *scene, const QImage &image)
{
    setText(tr("Paste Image"));
    if (isObsolete())
        return;
    m_image = fitted(image, scene->scene()->frameSize());
    setObsolete(m_image.isNull());
}

QList<Model::SceneChange> PasteImage::run(Model::SceneModel &model)
{
    const auto drawing = std::make_shared<Model::ImageDrawing>(std::exchange(m_image, {}));
    const int row = firstRow();
    const int column = indexes().constFirst().column();
    ChangeSteps steps;
    if (m_place == Place::OverCells)
        steps.add(deleteFramesOf(model, indexes()));
    const QList<Model::SceneChange> inserted = model.insertBlankDrawing(model.index(row, column));
    if (inserted.isEmpty()) {
        model.undoChanges(steps.lastFirst());
        before().restore(*model.scene());
        return {};
    }
    steps.add(inserted);
    steps.add(model.replaceDrawing(model.index(row, column), drawing, true, false));
    return steps.lastFirst();
}

void PasteImage::moveOn(Model::Scene &scene)
{
    const int frameId = firstRow() + 1;
    const int column = indexes().constFirst().column();
    if (frameId > scene.rangeLast())
        scene.setFrameRange(scene.rangeFirst(), frameId, frameId, column);
    scene.setActiveFrameAndLayer(frameId, column, Model::Scene::KeepFrameOnDrawing);
}

} // namespace Commands
