#include "app/editactions.h"

#include "app/behindlast.h"
#include "app/catalogueaction.h"
#include "app/cellselection.h"
#include "libcommands/addblankdrawing.h"
#include "libcommands/addclonedrawings.h"
#include "libcommands/cleardrawingmakingblank.h"
#include "libcommands/cloneeachselecteddrawingonce.h"
#include "libcommands/cycleselecteddrawingsonce.h"
#include "libcommands/deleteclonedrawing.h"
#include "libcommands/discarddrawing.h"
#include "libcommands/insertblankdrawing.h"
#include "libcommands/losedrawingmakinghold.h"
#include "libcommands/markaskeydrawing.h"
#include "libcommands/setactiveframeandlayer.h"
#include "libcommands/turncloneintooriginal.h"
#include "libcommands/unmarkallkeydrawings.h"
#include "libmodel/actions/actiontable.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QItemSelectionModel>

#include <algorithm>
#include <memory>

using Model::MRScene;

namespace {

using Maker = QUndoCommand *(*)(MRScene *, const QModelIndexList &);

/// A command on one cell or on a selection, which have texts of their own.
template<typename Command>
QUndoCommand *make(MRScene *scene, const QModelIndexList &cells)
{
    return cells.size() == 1 ? new Command(scene, cells.constFirst()) : new Command(scene, cells);
}

template<typename Command>
QUndoCommand *makeForSelection(MRScene *scene, const QModelIndexList &cells)
{
    return new Command(scene, cells);
}

QUndoCommand *makeClones(MRScene *scene, const QModelIndexList &cells)
{
    constexpr int count = 1;
    return cells.size() == 1 ? new Commands::AddCloneDrawings(scene, cells.constFirst(), count)
                             : new Commands::AddCloneDrawings(scene, cells, count);
}

struct EditAction
{
    MR::Action action;
    Maker make;
    /// Behind the last cell it works on that one.
    bool addsBehind = false;
};

constexpr EditAction editActions[] = {
    {MR::Action::AddCloneDrawing, makeClones, true},
    {MR::Action::AddBlankDrawing, make<Commands::AddBlankDrawing>, true},
    {MR::Action::InsertBlankDrawing, make<Commands::InsertBlankDrawing>},
    {MR::Action::TurnCloneIntoOriginal, make<Commands::TurnCloneIntoOriginal>},
    {MR::Action::ClearDrawingMakingBlank, make<Commands::ClearDrawingMakingBlank>},
    {MR::Action::LoseDrawingMakingHold, make<Commands::LoseDrawingMakingHold>},
    {MR::Action::DiscardDrawing, make<Commands::DiscardDrawing>},
    {MR::Action::DeleteCloneDrawing, make<Commands::DeleteCloneDrawing>},
    {MR::Action::CloneEachSelectedDrawingOnce, makeForSelection<Commands::CloneEachSelectedDrawingOnce>},
    {MR::Action::CycleSelectedDrawingsOnce, makeForSelection<Commands::CycleSelectedDrawingsOnce>},
};

/// Of the second faces only that of playing tells of something else than several cells.
bool hasFaceForSeveral(MR::Action action)
{
    return action != MR::Action::Play && Model::secondFace(action);
}

} // namespace

EditActions::EditActions(QObject *parent) : SceneFollower(parent)
{
    for (const EditAction &entry : editActions)
        onTriggered(entry.action, this, [this, action = entry.action] { edit(action); });
    onTriggered(MR::Action::BackDeleteDrawing, this, &EditActions::backDelete);
    onTriggered(MR::Action::SelectAllDrawings, this, &EditActions::selectAllDrawings);
    onTriggered(MR::Action::MarkAsKeyDrawing, this, &EditActions::toggleKeyDrawing);
    onTriggered(MR::Action::UnmarkAllKeyDrawings, this, &EditActions::unmarkAllKeyDrawings);
}

void EditActions::connectScene(MRScene &scene)
{
    follow(connect(scene.selectionModel(), &QItemSelectionModel::selectionChanged, this, &EditActions::actualize));
    follow(connect(scene.scene(), &Model::Scene::frameRangeChanged, this, &EditActions::actualize));
    follow(connect(scene.frameRangeModel(), &QAbstractItemModel::layoutChanged, this, &EditActions::actualize));
}

void EditActions::actualize()
{
    const int count = mrScene() ? CellSelection::count(CellSelection::selected(*mrScene())) : 0;
    if (count == m_shownCount)
        return;
    m_shownCount = count;
    for (const Model::ActionRow &row : Model::actionTable()) {
        if (hasFaceForSeveral(row.action))
            Model::ActionManager::instance()->setActionFace(row.action, count > 1 ? 1 : 0, count);
    }
}

void EditActions::edit(MR::Action action)
{
    if (!mrScene())
        return;
    const EditAction &entry = *std::ranges::find(editActions, action, &EditAction::action);
    QList<CellSelection::Span> spans = CellSelection::toEdit(*mrScene());
    if (entry.addsBehind && CellSelection::selected(*mrScene()).isEmpty() && BehindLast::isActive(*mrScene())) {
        const int last = scene()->lastFrame(scene()->activeLayerIdx());
        spans = {{scene()->activeLayerIdx(), last, last}};
        BehindLast::push(*mrScene(), entry.make(mrScene(), CellSelection::indexes(*mrScene(), spans)));
        return;
    }
    MRScene::pushCommand(entry.make(mrScene(), CellSelection::indexes(*mrScene(), spans)));
}

// As the key of that name does in a text: what lies before the position goes, and one stands where it stood.
void EditActions::backDelete()
{
    if (!mrScene())
        return;
    if (CellSelection::count(CellSelection::selected(*mrScene())) > 1) {
        edit(MR::Action::DiscardDrawing);
        return;
    }
    const CellSelection::Span cell = CellSelection::toEdit(*mrScene()).value(0);
    const int doomed = std::min(cell.firstFrame, scene()->lastFrame(cell.layerIdx));
    auto command = std::make_unique<QUndoCommand>(tr("Back-delete Drawing"));
    new Commands::DiscardDrawing(mrScene(), mrScene()->sceneModel()->index(doomed - 1, cell.layerIdx), command.get());
    new Commands::SetActiveFrameAndLayer(mrScene(), std::max(1, cell.firstFrame - 1), cell.layerIdx,
                                         Model::Scene::AllowFrameAfterLast, command.get());
    MRScene::pushCommand(command.release());
}

void EditActions::selectAllDrawings()
{
    if (!mrScene())
        return;
    const Model::FrameRangeModel *sheet = mrScene()->frameRangeModel();
    QItemSelection all;
    for (int layerIdx = 0; layerIdx < scene()->layerCount(); ++layerIdx) {
        const int last = std::min(scene()->rangeLast(), scene()->lastFrame(layerIdx));
        if (scene()->visualLayer(layerIdx) && last >= scene()->rangeFirst())
            all.select(sheet->index(0, layerIdx), sheet->index(last - scene()->rangeFirst(), layerIdx));
    }
    mrScene()->selectionModel()->select(all, QItemSelectionModel::ClearAndSelect);
}

void EditActions::toggleKeyDrawing()
{
    if (!mrScene())
        return;
    const auto cell = scene()->item(scene()->activeLayerIdx(), scene()->activeFrame());
    if (cell)
        MRScene::pushCommand(new Commands::MarkAsKeyDrawing(mrScene(), !cell->keyDrawing));
}

void EditActions::unmarkAllKeyDrawings()
{
    if (mrScene())
        MRScene::pushCommand(new Commands::UnmarkAllKeyDrawings(mrScene()));
}
