#include "app/drawingclipboard.h"

#include "app/behindlast.h"
#include "app/catalogueaction.h"
#include "libcommands/discarddrawing.h"
#include "libcommands/pastedrawing.h"
#include "libcommands/pasteimage.h"
#include "libmodel/layers/layer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QTimer>

#include <algorithm>

using CellSelection::Span;
using Model::Layer;
using Model::MRScene;

namespace {

bool isCopied(int layerType)
{
    return layerType == Layer::Stroke || layerType == Layer::Reference;
}

} // namespace

DrawingClipboard::DrawingClipboard(QObject *parent) : SceneFollower(parent)
{
    onTriggered(MR::Action::CutDrawing, this, &DrawingClipboard::cut);
    onTriggered(MR::Action::CopyDrawing, this, &DrawingClipboard::copy);
    onTriggered(MR::Action::PasteDrawing, this, &DrawingClipboard::paste);
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this, &DrawingClipboard::onClipboardChanged);
    // Whoever has the clipboard may take its time to tell what is on it: not before there is a window.
    QTimer::singleShot(0, this, &DrawingClipboard::onClipboardChanged);
}

void DrawingClipboard::onClipboardChanged()
{
    const QClipboard *clipboard = QGuiApplication::clipboard();
    const ClipboardContent content = ClipboardContent::of(clipboard->mimeData(), clipboard->ownsClipboard());
    if (content == m_content)
        return;
    m_content = content;
    emit contentChanged();
}

std::optional<Span> DrawingClipboard::toCopy(const MRScene &mrScene)
{
    const Model::Scene &scene = *mrScene.scene();
    const QList<Span> spans = CellSelection::toEdit(mrScene);
    if (spans.isEmpty())
        return {};
    const auto inActive = std::ranges::find(spans, scene.activeLayerIdx(), &Span::layerIdx);
    Span copied = inActive != spans.end() ? *inActive : spans.constFirst();
    for (const Span &span : spans) {
        if (span.layerIdx == copied.layerIdx) {
            copied.firstFrame = std::min(copied.firstFrame, span.firstFrame);
            copied.lastFrame = std::max(copied.lastFrame, span.lastFrame);
        }
    }
    const bool isThere = scene.item(copied.layerIdx, copied.firstFrame) != nullptr;
    return isThere && isCopied(scene.layer(copied.layerIdx)->layerType()) ? std::optional(copied) : std::nullopt;
}

bool DrawingClipboard::copyToClipboard(const Span &cells) const
{
    QMimeData *data = mrScene()->sceneModel()->copyToMimeData(CellSelection::indexes(*mrScene(), {cells}));
    if (data)
        QGuiApplication::clipboard()->setMimeData(data);
    return data != nullptr;
}

void DrawingClipboard::copy()
{
    if (!mrScene())
        return;
    if (const auto cells = toCopy(*mrScene()))
        (void)copyToClipboard(*cells);
}

void DrawingClipboard::cut()
{
    if (!mrScene())
        return;
    const auto cells = toCopy(*mrScene());
    // What could not be copied must not be gone.
    if (!cells || !copyToClipboard(*cells))
        return;
    auto *command = new Commands::DiscardDrawing(mrScene(), CellSelection::indexes(*mrScene(), {*cells}));
    command->setText(tr("Cut Drawing"));
    MRScene::pushCommand(command);
}

void DrawingClipboard::paste()
{
    if (!mrScene())
        return;
    const PasteTarget target = PasteTarget::of(*mrScene());
    QUndoCommand *command = target.cells.isEmpty() ? nullptr : pasteCommand(target);
    if (!command)
        return;
    if (!target.isSelection && BehindLast::isActive(*mrScene()) && !command->isObsolete())
        BehindLast::push(*mrScene(), command);
    else
        MRScene::pushCommand(command);
    if (target.isSelection)
        mrScene()->clearSelection();
}

/// \return null where nothing on the clipboard suits \a target.
QUndoCommand *DrawingClipboard::pasteCommand(const PasteTarget &target) const
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    if (!data)
        return nullptr;
    MRScene *scene = mrScene();
    if (m_content.hasDrawingsFor(target.layerType) && Commands::PasteDrawing::canPaste(data, target.layerType)) {
        return target.isSelection ? new Commands::PasteDrawing(scene, target.cells, data)
                                  : new Commands::PasteDrawing(scene, target.cells.constFirst(), data);
    }
    if (!target.hasReferenceLayer || !data->hasImage())
        return nullptr;
    const auto image = qvariant_cast<QImage>(data->imageData());
    if (image.isNull())
        return nullptr;
    return target.isSelection ? new Commands::PasteImage(scene, target.cells, image)
                              : new Commands::PasteImage(scene, target.cells.constFirst(), image);
}
