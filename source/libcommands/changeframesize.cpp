#include "libcommands/changeframesize.h"

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QProgressDialog>
#include <QSet>
#include <QTransform>
#include <QUuid>

#include <algorithm>
#include <vector>

namespace Commands {

namespace {

/// Shorter work shows no progress.
constexpr int progressAfterMs = 2000;

int cellCount(const Model::Scene &scene)
{
    int count = 0;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        if (const Model::VisualLayer *layer = scene.visualLayer(layerIdx))
            count += layer->numFrames();
    }
    return count;
}

} // namespace

/// What fitting the scene's pictures to another size and back does not bring back.
class ChangeFrameSize::Remembered
{
public:
    explicit Remembered(const Model::Scene &scene);

    /// Puts it back into \a scene, whose pictures have the size that they had.
    void restore(Model::Scene &scene) const;

private:
    struct DrawingState
    {
        std::shared_ptr<Model::Drawing> drawing;
        QUuid copyId;
        QSize size;
        QTransform transform; ///< of all that is drawn
    };
    struct CellState
    {
        int layerIdx;
        int frameId;
        QTransform offPegsTransform;
    };

    void remember(const std::shared_ptr<Model::Drawing> &drawing);

    std::vector<DrawingState> m_drawings;
    std::vector<CellState> m_cells; ///< those that are off their pegs
};

ChangeFrameSize::Remembered::Remembered(const Model::Scene &scene)
{
    QSet<const Model::Drawing *> known;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        const Model::VisualLayer *layer = scene.visualLayer(layerIdx);
        for (int frameId = 1; layer && frameId <= layer->numFrames(); ++frameId) {
            const std::shared_ptr<Model::LayerItem> cell = layer->item(frameId);
            if (!cell->offPegsTransform.isIdentity())
                m_cells.push_back({layerIdx, frameId, cell->offPegsTransform});
            if (known.contains(cell->drawing.get()))
                continue;
            known.insert(cell->drawing.get());
            remember(cell->drawing);
        }
    }
}

void ChangeFrameSize::Remembered::remember(const std::shared_ptr<Model::Drawing> &drawing)
{
    DrawingState state{drawing, drawing->copyId(), {}, {}};
    if (const auto *strokes = dynamic_cast<const Model::StrokeDrawing *>(drawing.get())) {
        state.size = strokes->size();
        state.transform = strokes->strokes().transform();
    }
    m_drawings.push_back(state);
}

void ChangeFrameSize::Remembered::restore(Model::Scene &scene) const
{
    for (const DrawingState &state : m_drawings) {
        if (auto *strokes = dynamic_cast<Model::StrokeDrawing *>(state.drawing.get())) {
            // A drawing that came from another scene may have had a size of its own.
            if (strokes->size() != state.size)
                strokes->resize(state.size, MR::FitMode::FitModeIgnore);
            strokes->restoreTransform(state.transform);
        }
        state.drawing->setCopyId(state.copyId);
    }
    for (const CellState &cell : m_cells)
        scene.setOffPegsTransform(cell.frameId, cell.layerIdx, cell.offPegsTransform);
    scene.refreshDrawings();
}

ChangeFrameSize::ChangeFrameSize(QWidget *dialogParent, Model::MRScene *scene, QSize size, MR::FitMode fitMode,
                                 QUndoCommand *parent)
    : SceneCommand(scene, parent), m_dialogParent(dialogParent), m_new(size), m_fitMode(fitMode)
{
    setText(tr("Change frame size"));
    if (!scene)
        return;
    m_old = scene->scene()->frameSize();
    setObsolete(m_new.isEmpty() || m_new == m_old ||
                std::max(m_new.width(), m_new.height()) > Model::Scene::maximumFrameSide);
}

ChangeFrameSize::~ChangeFrameSize() = default;

void ChangeFrameSize::redo()
{
    Model::Scene *model = scene();
    if (!model)
        return;
    if (!m_before)
        m_before = std::make_unique<Remembered>(*model);
    resize(m_new, m_fitMode);
    if (m_after)
        m_after->restore(*model);
}

void ChangeFrameSize::undo()
{
    Model::Scene *model = scene();
    if (!model || !m_before)
        return;
    m_after = std::make_unique<Remembered>(*model);
    // What was made smaller to fit is enlarged by the opposite rule, which gives it its framing back.
    resize(m_old, m_fitMode == MR::FitMode::FitModeKeepAspect ? MR::FitMode::FitModeKeepAspectByExpanding : m_fitMode);
    m_before->restore(*model);
}

void ChangeFrameSize::resize(QSize size, MR::FitMode fitMode)
{
    QProgressDialog dialog(m_dialogParent);
    dialog.setModal(true);
    dialog.setLabelText(tr("Resizing all frames..."));
    dialog.setCancelButton(nullptr);
    dialog.setMinimumDuration(progressAfterMs);
    dialog.setFixedSize(dialog.sizeHint());
    dialog.setRange(0, cellCount(*scene()) + 1);
    dialog.setValue(0);
    scene()->setFrameSize(size, fitMode, &dialog);
}

} // namespace Commands
