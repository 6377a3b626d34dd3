#pragma once

#include "libmodel/scene/drawingclip.h"

#include <QByteArray>
#include <QList>
#include <QSize>

#include <functional>
#include <vector>

namespace Model {

class MemoryBudget;
class Progress;
class WorkBudget;

/// What came of reading a clip.
struct DrawingClipContent
{
    QList<DrawingClip::Frame> frames; ///< Empty where the clip is refused, and if the user cancelled.
    bool isCancelled = false;
    bool exceedsMemory = false; ///< It was refused as its pictures need more memory than there is.
    bool isShownInPart = false; ///< Drawings have strokes that do not show (DecodedStrokes), though all are there.
};

/// Reads drawings from the clipboard, which may come from anyone.
///
/// Every number is checked here, and trusted afterwards. A clip of which anything is damaged, missing or too large is
/// refused as a whole.
class DrawingClipReader
{
public:
    /// Looks at the private form \a clip, but not at the drawings in it yet.
    explicit DrawingClipReader(const QByteArray &clip);

    /// Does \a copyId name a drawing that need not be read?
    using Knows = std::function<bool(const QUuid &copyId)>;

    /// Is the clip made up as one is, as far as can be told without its drawings?
    [[nodiscard]] bool isWellFormed() const { return !m_blocks.empty(); }
    /// Of the layer that the drawings come from: Layer::Stroke or Layer::Reference; 0 unless isWellFormed().
    [[nodiscard]] int layerType() const { return isWellFormed() ? m_layerType : 0; }

    /// The frames, with all drawings that they need and that \a knows says no to, made for a frame of \a frameSize
    /// (pixels). The strokes of a drawing of another size stay where they are. \a progress (may be null) is told of
    /// each drawing, and can end it there.
    [[nodiscard]] DrawingClipContent read(QSize frameSize, const Knows &knows, Progress *progress = nullptr) const;
    /// The same with no more memory for pictures than \a memory allows for.
    [[nodiscard]] DrawingClipContent read(QSize frameSize, const Knows &knows, MemoryBudget &memory,
                                          Progress *progress = nullptr) const;

    /// layerType() as the first bytes of \a clip tell it, whatever follows; 0 where they cannot be those of a clip.
    [[nodiscard]] static int layerTypeIn(const QByteArray &clip);

private:
    /// A frame with the bytes of its drawing.
    struct Block
    {
        DrawingClip::Frame frame;
        bool hasDrawing = false;
        QByteArray drawing;
    };

    [[nodiscard]] static bool readHead(QDataStream &stream, int &layerType, int &count);
    [[nodiscard]] static bool readBlock(QDataStream &stream, Block &block);
    /// Null where the drawing is refused.
    [[nodiscard]] std::shared_ptr<Drawing> drawing(const QByteArray &bytes, QSize frameSize, MemoryBudget &memory,
                                                   WorkBudget &work, DrawingClipContent &notes) const;

    int m_layerType = 0;
    std::vector<Block> m_blocks; ///< empty for a clip that is refused
};

} // namespace Model
