#include "libcommands/pastedrawing.h"

#include "libcommands/changesteps.h"
#include "libcommands/framedeletion.h"
#include "libmodel/files/drawingclipreader.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QMimeData>

#include <algorithm>
#include <iterator>
#include <utility>

namespace Commands {

namespace {

QByteArray privateForm(const QMimeData *data)
{
    return data ? data->data(Model::DrawingClip::mimeType) : QByteArray();
}

} // namespace

PasteDrawing::PasteDrawing(Model::MRScene *scene, const QModelIndexList &selection, const QMimeData *data,
                           QUndoCommand *parent)
    : PasteDrawing(scene, selection, Model::DrawingClipReader(privateForm(data)), nullptr, parent)
{
}

PasteDrawing::PasteDrawing(Model::MRScene *scene, const QModelIndex &cell, const QMimeData *data, QUndoCommand *parent)
    : PasteDrawing(scene, cell, Model::DrawingClipReader(privateForm(data)), nullptr, parent)
{
}

PasteDrawing::PasteDrawing(Model::MRScene *scene, const QModelIndexList &selection,
                           const Model::DrawingClipReader &clip, Model::Progress *progress, QUndoCommand *parent)
    : CellCommand(scene, selection, hasCell, parent), m_place(Place::OverCells)
{
    take(clip, progress);
}

PasteDrawing::PasteDrawing(Model::MRScene *scene, const QModelIndex &cell, const Model::DrawingClipReader &clip,
                           Model::Progress *progress, QUndoCommand *parent)
    : CellCommand(scene, QModelIndexList{cell}, hasCellOrEndsBefore, parent), m_place(Place::BeforeCell)
{
    take(clip, progress);
}

PasteDrawing::~PasteDrawing() = default;

bool PasteDrawing::canPaste(const QMimeData *data, int layerType)
{
    return layerType > 0 && Model::DrawingClipReader::layerTypeIn(privateForm(data)) == layerType;
}

void PasteDrawing::take(const Model::DrawingClipReader &clip, Model::Progress *progress)
{
    setText(tr("Paste Drawing"));
    if (isObsolete())
        return;
    const int column = indexes().constFirst().column();
    std::copy_if(indexes().begin(), indexes().end(), std::back_inserter(m_cells),
                 [column](const QModelIndex &cell) { return cell.column() == column; });
    read(clip, progress);
    m_count = int(m_frames.size());
    // While the user was shown the progress, the scene may have gone.
    setObsolete(m_frames.isEmpty() || !mrScene() || changesNothing());
}

void PasteDrawing::read(const Model::DrawingClipReader &clip, Model::Progress *progress)
{
    const int layerType = scene()->layer(m_cells.constFirst().column())->layerType();
    if (clip.layerType() != layerType)
        return;
    m_known = knownDrawings(*scene(), layerType);
    Model::DrawingClipContent content = clip.read(
        scene()->frameSize(), [this](const QUuid &copyId) { return m_known.contains(copyId); }, progress);
    m_frames = std::move(content.frames);
    m_isCancelled = content.isCancelled;
    m_exceedsMemory = content.exceedsMemory;
    m_isIncomplete = content.isShownInPart && !m_frames.isEmpty();
}

bool PasteDrawing::changesNothing() const
{
    return m_place == Place::OverCells && m_count == 1 && m_cells.size() == 1 &&
           isFilledAlready(*mrScene()->sceneModel(), m_cells.constFirst(), m_frames.constFirst());
}

// Brings about as many cells as there are frames. False where the layer has no room for them.
bool PasteDrawing::makeRoom(Model::SceneModel &model, ChangeSteps &steps) const
{
    const auto made = [&steps](const QList<Model::SceneChange> &changes) {
        steps.add(changes);
        return !changes.isEmpty();
    };
    if (m_place == Place::BeforeCell) {
        const int row = m_cells.constFirst().row();
        const int column = m_cells.constFirst().column();
        return made(model.insertBlankDrawing(m_cells.constFirst())) &&
               (m_count == 1 || made(model.addCloneDrawings(model.index(row, column), m_count - 1)));
    }
    const int selected = int(m_cells.size());
    if (selected > m_count)
        return made(deleteFramesOf(model, m_cells.mid(m_count)));
    return selected == m_count || made(model.addCloneDrawings(m_cells.constLast(), m_count - selected));
}

QList<Model::SceneChange> PasteDrawing::run(Model::SceneModel &model)
{
    QList<Model::DrawingClip::Frame> frames = std::exchange(m_frames, {});
    KnownDrawings known = std::exchange(m_known, {});
    ChangeSteps steps;
    if (!makeRoom(model, steps)) {
        model.undoChanges(steps.lastFirst());
        before().restore(*model.scene());
        return {};
    }
    ClipFiller filler(model, m_cells.constFirst().column(), std::move(known));
    steps.add(filler.fill(m_cells.constFirst().row(), std::move(frames)));
    return steps.lastFirst();
}

void PasteDrawing::moveOn(Model::Scene &scene)
{
    const int column = m_cells.constFirst().column();
    const int first = m_cells.constFirst().row() + 1;
    const int last = first + m_count - 1;
    // The range grows with what comes into it. What was pasted far behind it has to be seen as well.
    if (last > scene.rangeLast())
        scene.setFrameRange(scene.rangeFirst(), last, first, column);
    scene.setActiveFrameAndLayer(first, column, Model::Scene::KeepFrameOnDrawing);
}

} // namespace Commands
