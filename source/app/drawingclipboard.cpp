#include "app/drawingclipboard.h"

#include "app/catalogueaction.h"
#include "app/clipboardpicture.h"
#include "libcommands/discarddrawing.h"
#include "libcommands/pastedrawing.h"
#include "libcommands/pasteimage.h"
#include "libmodel/files/drawingclipreader.h"
#include "libmodel/files/memorybudget.h"
#include "libmodel/layers/layer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libui/paper/inputsuspension.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMessageBox>
#include <QMimeData>
#include <QTimer>

#include <algorithm>
#include <utility>

using CellSelection::Span;
using Model::Layer;
using Model::MRScene;

namespace {

/// The cells of one layer that are copied; none where no layer has any.
std::optional<LayerCells> copiedCells(const MRScene &mrScene)
{
    const QList<LayerCells> layers = cellsByLayer(mrScene);
    const auto found = std::ranges::find_if(layers, [&mrScene](const LayerCells &cells) {
        const bool isCopied = cells.layerType == Layer::Stroke || cells.layerType == Layer::Reference;
        return isCopied && mrScene.scene()->item(cells.layerIdx, cells.spans.constFirst().firstFrame);
    });
    return found != layers.end() ? std::optional(*found) : std::nullopt;
}

} // namespace

DrawingClipboard::DrawingClipboard(QWidget *window) : SceneFollower(window), m_window(window)
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
    const std::optional<LayerCells> cells = copiedCells(mrScene);
    if (!cells)
        return {};
    Span stretch = cells->spans.constFirst();
    for (const Span &span : cells->spans)
        stretch.lastFrame = std::max(stretch.lastFrame, span.lastFrame);
    return stretch;
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
    const auto cells = copiedCells(*mrScene());
    // What could not be copied must not be gone.
    if (!cells || !copyToClipboard(*toCopy(*mrScene())))
        return;
    auto *command = new Commands::DiscardDrawing(mrScene(), CellSelection::indexes(*mrScene(), cells->spans));
    command->setText(tr("Cut Drawing"));
    MRScene::pushCommand(command);
}

void DrawingClipboard::paste()
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    if (mrScene() && data && !pasteDrawings(*data))
        pastePicture(*data);
}

/// \return false where \a data has no drawings for any of the cells.
bool DrawingClipboard::pasteDrawings(const QMimeData &data)
{
    if (!data.hasFormat(Model::DrawingClip::mimeType))
        return false;
    const Model::DrawingClipReader clip(data.data(Model::DrawingClip::mimeType));
    const PasteTarget target = PasteTarget::of(*mrScene(), clip.layerType());
    if (target.cells.isEmpty())
        return false;
    const QPointer<MRScene> pastedInto = mrScene();
    std::unique_ptr<Commands::PasteDrawing> command = pasteCommand(target, clip);
    // The user may have had time to open another scene.
    if (command->isCancelled() || !pastedInto || pastedInto != mrScene())
        return true;
    if (command->exceedsMemory()) {
        tell(tr("The drawings on the clipboard cannot be pasted:\nThey need more memory than there is."));
        return true;
    }
    const bool isIncomplete = command->isIncomplete();
    push(std::move(command), target);
    if (isIncomplete)
        tell(tr("Some of the pasted drawings are shown only in part, as drawing all of them would take too long."));
    return true;
}

std::unique_ptr<Commands::PasteDrawing> DrawingClipboard::pasteCommand(const PasteTarget &target,
                                                                       const Model::DrawingClipReader &clip) const
{
    const UI::InputSuspension suspension;
    Model::DialogProgress progress(m_window, tr("Pasting drawings"), tr("Cancel"), m_progressDelayMs);
    if (target.isSelection)
        return std::make_unique<Commands::PasteDrawing>(mrScene(), target.cells, clip, &progress);
    return std::make_unique<Commands::PasteDrawing>(mrScene(), target.cells.constFirst(), clip, &progress);
}

void DrawingClipboard::pastePicture(const QMimeData &data)
{
    const PasteTarget target = PasteTarget::of(*mrScene(), Layer::Reference);
    if (target.cells.isEmpty() || !ClipboardPicture::isOn(data))
        return;
    Model::MemoryBudget memory;
    const auto [image, problem] = ClipboardPicture::of(data, memory);
    if (!problem.isEmpty()) {
        tell(problem);
        return;
    }
    if (target.isSelection)
        push(std::make_unique<Commands::PasteImage>(mrScene(), target.cells, image), target);
    else
        push(std::make_unique<Commands::PasteImage>(mrScene(), target.cells.constFirst(), image), target);
}

void DrawingClipboard::push(std::unique_ptr<QUndoCommand> command, const PasteTarget &target) const
{
    MRScene::pushCommand(command.release());
    if (target.isSelection)
        mrScene()->clearSelection();
}

void DrawingClipboard::tell(const QString &text) const
{
    // A modal box keeps out the mouse, but not a pen.
    const UI::InputSuspension suspension;
    QMessageBox box(QMessageBox::Warning, QGuiApplication::applicationDisplayName(), text, QMessageBox::Ok, m_window);
    box.setTextFormat(Qt::PlainText); // formats are named by other programs
    box.exec();
}
