#pragma once

#include "app/cellselection.h"
#include "app/clipboardcontent.h"
#include "app/scenefollower.h"

#include <optional>

class QWidget;

/// Drawings to and from the system's clipboard, each edit one undo step: the selected cells, or without any the one at
/// the active position.
class DrawingClipboard : public SceneFollower
{
    Q_OBJECT

public:
    explicit DrawingClipboard(QObject *parent);

    void cut();
    void copy();
    /// Puts in what the clipboard has: drawings for layers of their kind, or else a picture for reference layers. Over
    /// the selected cells, which are not selected any more then; or into new cells at the active position.
    void paste();

    /// What was on the clipboard when it last changed.
    [[nodiscard]] const ClipboardContent &content() const { return m_content; }

    /// The cells that a copy in \a scene takes: selected ones of one layer, which is the active one if any is selected
    /// there, from the first to the last of them; or the active cell. Nothing where there is no cell, or a layer of a
    /// kind that is not copied.
    [[nodiscard]] static std::optional<CellSelection::Span> toCopy(const Model::MRScene &scene);

signals:
    /// content() is another one.
    void contentChanged();

private:
    void onClipboardChanged();
    [[nodiscard]] bool copyToClipboard(const CellSelection::Span &cells) const;
    [[nodiscard]] QUndoCommand *pasteCommand(const PasteTarget &target) const;

    ClipboardContent m_content;
};
