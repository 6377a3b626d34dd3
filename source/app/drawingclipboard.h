#pragma once

#include "app/cellselection.h"
#include "app/clipboardcontent.h"
#include "app/scenefollower.h"
#include "libmodel/base/dialogprogress.h"

#include <memory>
#include <optional>

class QMimeData;
class QUndoCommand;
class QWidget;

namespace Commands {
class PasteDrawing;
}

namespace Model {
class DrawingClipReader;
}

/// Drawings to and from the system's clipboard, each edit one undo step: the selected cells, or without any the one at
/// the active position. Of cells in several layers those of one are taken, see cellsByLayer().
class DrawingClipboard : public SceneFollower
{
    Q_OBJECT

public:
    /// \a window is the parent of dialogs.
    explicit DrawingClipboard(QWidget *window);

    /// Copies, and discards the selected cells: what lies between them is copied only.
    void cut();
    void copy();
    /// Puts in what the clipboard has: drawings for layers of their kind, or else a picture for reference layers. Over
    /// the selected cells, which are not selected any more then; or into new cells at the active position. The user is
    /// told where a picture or drawings cannot be had, or only in part.
    void paste();

    /// What was on the clipboard when it last changed.
    [[nodiscard]] const ClipboardContent &content() const { return m_content; }

    /// The cells that a copy in \a scene takes: those of the first layer of cellsByLayer() that has any and is of a
    /// kind that is copied, from the first to the last of them. Nothing where there is no such layer.
    [[nodiscard]] static std::optional<CellSelection::Span> toCopy(const Model::MRScene &scene);

    /// Has the dialog of a paste come after \a milliseconds, as for files at first.
    void setProgressDelay(int milliseconds) { m_progressDelayMs = milliseconds; }

signals:
    /// content() is another one.
    void contentChanged();

private:
    void onClipboardChanged();
    [[nodiscard]] bool copyToClipboard(const CellSelection::Span &cells) const;
    [[nodiscard]] bool pasteDrawings(const QMimeData &data);
    void pastePicture(const QMimeData &data);
    [[nodiscard]] std::unique_ptr<Commands::PasteDrawing> pasteCommand(const PasteTarget &target,
                                                                       const Model::DrawingClipReader &clip) const;
    void push(std::unique_ptr<QUndoCommand> command, const PasteTarget &target) const;
    void tell(const QString &text) const;

    QWidget *m_window;
    ClipboardContent m_content;
    int m_progressDelayMs = Model::DialogProgress::fileDurationMs;
};
