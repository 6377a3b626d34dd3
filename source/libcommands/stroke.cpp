#include "libcommands/stroke.h"

#include "libmodel/base/settings.h"
#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/compositing.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/rendereffort.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QMap>
#include <QPointer>
#include <QSet>
#include <QUuid>

#include <algorithm>

namespace Commands {

namespace {

using CopyIds = QMap<QModelIndex, QUuid>;

bool isValid(const QModelIndex &cell)
{
    return cell.row() >= 0 && cell.column() >= 0 && cell.model();
}

bool isEraser(const Model::Stroke &stroke)
{
    const auto *single = dynamic_cast<const Model::SingleStroke *>(&stroke);
    return single && single->isEraser();
}

/// The cell of the original whose drawing \a cell shows; \a cell itself where there is no such original any more.
QModelIndex originalOf(const Model::SceneModel &model, const QModelIndex &cell)
{
    const Model::Scene &scene = *model.scene();
    int layerIdx = -1;
    int frameId = -1;
    if (!scene.findItem(scene.originOfFrame(cell.column(), cell.row() + 1), &layerIdx, &frameId))
        return cell;
    return model.index(frameId - 1, layerIdx);
}

/// Of \a cells those that a stroke goes to: one for each drawing, its original.
QModelIndexList drawingCells(const Model::SceneModel &model, const QModelIndexList &cells)
{
    const bool clonesLocked = Model::Settings::instance()->clonesLockedForDrawing();
    QModelIndexList originals;
    QSet<const Model::Drawing *> drawings;
    for (const QModelIndex &cell : cells) {
        if (!isValid(cell) || (clonesLocked && cell.data(Model::SceneModel::LocalCloneRole).toBool()))
            continue;
        const std::shared_ptr<Model::Drawing> drawing = model.drawing(cell);
        if (!drawing || drawings.contains(drawing.get()))
            continue;
        drawings.insert(drawing.get());
        originals.append(originalOf(model, cell));
    }
    return originals;
}

/// Gives \a drawing the identifier that \a copyIds has for \a cell, if any.
void restoreCopyId(Model::Drawing &drawing, const CopyIds &copyIds, const QModelIndex &cell)
{
    if (const QUuid copyId = copyIds.value(cell); !copyId.isNull())
        drawing.setCopyId(copyId);
}

/// Would \a drawing (may be null) take \a stroke as it stands?
bool takesStroke(const Model::Drawing *drawing, const Model::Stroke &stroke)
{
    const auto *strokes = dynamic_cast<const Model::StrokeDrawing *>(drawing);
    return strokes && !(isEraser(stroke) && strokes->isEmpty());
}

/// Can all of \a compound be drawn in \a rect, in a time in which every drawing would draw all of it?
bool isDrawable(const Model::CompoundStroke &compound, QRect rect)
{
    constexpr qint64 mostEffort = qint64(1) << 32; // some seconds
    if (Model::needsRenderer(compound) && !Model::OffscreenRenderer::instance()->isInitialized())
        return false;
    return Model::drawableChildren(compound, rect, mostEffort) == compound.count();
}

/// Draws \a stroke once, as far as it shows on a frame of \a frameSize, for all drawings that will take it.
void preparePicture(Model::Stroke &stroke, QSize frameSize)
{
    constexpr double paperScale = 1.0;
    auto *compound = dynamic_cast<Model::CompoundStroke *>(&stroke);
    if (!compound || !compound->picture().isNull())
        return;
    const QRect rect = Model::grownByRim(compound->boundingRect(), paperScale) & QRect(QPoint(0, 0), frameSize);
    if (rect.isEmpty() || !isDrawable(*compound, rect))
        return;
    Model::CoveragePart part(rect);
    compound->render(part.image, part.image.rect(), QTransform::fromTranslate(-part.origin.x(), -part.origin.y()),
                     part.origin, paperScale);
    compound->setPicture(part.image, QRect(part.origin, part.image.size()));
}

} // namespace

class Stroke::Private
{
public:
    Private(Model::MRScene *strokeScene, std::unique_ptr<Model::Stroke> addedStroke)
        : scene(strokeScene), stroke(std::move(addedStroke))
    {
    }

    /// Can this command do anything at all?
    bool isUsable() const { return scene && stroke && !cells.isEmpty(); }

    /// Would any drawing take the stroke as things stand? Asked of a usable command.
    bool isTaken() const;

    /// A stroke for a drawing to keep, with the pixels that the user saw while drawing.
    std::unique_ptr<Model::Stroke> strokeForDrawing() const;
    /// Keeps only the inked part of the stroke's image: a step on the undo stack costs what it drew, not a frame.
    void shelveImage();

    QPointer<Model::MRScene> scene;
    std::unique_ptr<Model::Stroke> stroke;
    QModelIndexList cells;
    QModelIndexList strokedCells; ///< those of cells whose drawing took the stroke
    CopyIds undoCopyIds;          ///< of the drawings as they were before the stroke
    CopyIds redoCopyIds;          ///< of the drawings with the stroke, when it was last taken off

private:
    QImage m_shelved; ///< what shelveImage() has cut out of the image
    QPoint m_shelvedAt;
    QSize m_imageSize;
};

bool Stroke::Private::isTaken() const
{
    const Model::SceneModel &model = *scene->sceneModel();
    return std::any_of(cells.begin(), cells.end(),
                       [&](const QModelIndex &cell) { return takesStroke(model.drawing(cell).get(), *stroke); });
}

std::unique_ptr<Model::Stroke> Stroke::Private::strokeForDrawing() const
{
    std::unique_ptr<Model::Stroke> copy = stroke->clone();
    if (!m_shelved.isNull()) {
        QImage image = Model::blankCoverage(m_imageSize);
        Model::compositeMax(image, m_shelved, m_shelved.rect(), m_shelvedAt);
        dynamic_cast<Model::SingleStroke &>(*copy).setImage(image);
    }
    return copy;
}

void Stroke::Private::shelveImage()
{
    auto *single = dynamic_cast<Model::SingleStroke *>(stroke.get());
    if (!single || single->image().isNull())
        return;
    const QImage image = single->takeImage();
    const QRect inked = single->boundingRect() & image.rect();
    m_imageSize = image.size();
    m_shelvedAt = inked.topLeft();
    // A copy of an empty part would be one of the whole.
    m_shelved = inked.isEmpty() ? QImage() : image.copy(inked);
}

Stroke::Stroke(Model::MRScene *scene, const QModelIndex &cell, std::unique_ptr<Model::Stroke> stroke)
    : Stroke(scene, cell, std::move(stroke), nullptr)
{
    if (d->stroke)
        setText(isEraser(*d->stroke) ? tr("Erase") : tr("Draw"));
}

Stroke::Stroke(Model::MRScene *scene, const QModelIndex &cell, std::unique_ptr<Model::Stroke> stroke,
               QUndoCommand *parent)
    : QUndoCommand(tr("Append stroke"), parent), d(std::make_unique<Private>(scene, std::move(stroke)))
{
    if (isValid(cell))
        d->cells = {cell};
    setObsolete(!d->isUsable() || (!parent && !d->isTaken()));
}

Stroke::Stroke(Model::MRScene *scene, const QModelIndexList &cells, std::unique_ptr<Model::Stroke> stroke,
               QUndoCommand *parent)
    : QUndoCommand(tr("Append stroke"), parent), d(std::make_unique<Private>(scene, std::move(stroke)))
{
    if (scene && d->stroke)
        d->cells = drawingCells(*scene->sceneModel(), cells);
    setObsolete(!d->isUsable() || (!parent && !d->isTaken()));
}

Stroke::~Stroke() = default;

void Stroke::redo()
{
    if (!d->isUsable())
        return;
    d->undoCopyIds.clear();
    d->strokedCells.clear();
    if (d->cells.size() > 1)
        preparePicture(*d->stroke, d->scene->scene()->frameSize());
    Model::SceneModel &model = *d->scene->sceneModel();
    for (const QModelIndex &cell : std::as_const(d->cells)) {
        const std::shared_ptr<Model::Drawing> drawing = model.drawing(cell);
        if (!drawing)
            continue;
        d->undoCopyIds.insert(cell, drawing->copyId());
        if (!model.addStroke(cell, d->strokeForDrawing()))
            continue;
        d->strokedCells.append(cell);
        restoreCopyId(*drawing, d->redoCopyIds, cell);
    }
    d->shelveImage();
    if (d->strokedCells.isEmpty())
        setObsolete(true);
}

void Stroke::undo()
{
    if (!d->isUsable())
        return;
    d->redoCopyIds.clear();
    Model::SceneModel &model = *d->scene->sceneModel();
    for (const QModelIndex &cell : std::as_const(d->strokedCells)) {
        const std::shared_ptr<Model::Drawing> drawing = model.drawing(cell);
        if (!drawing)
            continue;
        d->redoCopyIds.insert(cell, drawing->copyId());
        model.removeLastStroke(cell);
        restoreCopyId(*drawing, d->undoCopyIds, cell);
    }
}

} // namespace Commands
