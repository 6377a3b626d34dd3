#include "libmodel/files/drawingclipreader.h"

#include "libmodel/base/progress.h"
#include "libmodel/files/contentblocks.h"
#include "libmodel/files/memorybudget.h"
#include "libmodel/files/pictureblock.h"
#include "libmodel/files/workbudget.h"
#include "libmodel/layers/identifierhash.h"
#include "libmodel/layers/layer.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QDataStream>
#include <QIODevice>

#include <utility>

namespace Model {

namespace {

/// The kind of a cell, the copy identifier of its drawing, and whether that follows.
constexpr int blockHeadBytes = sizeof(qint32) + sizeof(QUuid) + sizeof(qint8);
/// The length of a block in front of it.
constexpr int lengthBytes = sizeof(quint32);

/// Does a paste want the drawing of the frame at \a position? A hold shows what stands before it.
bool needsDrawing(const DrawingClip::Frame &frame, size_t position)
{
    return position == 0 || frame.kind != LayerItem::Type::Clone;
}

} // namespace

DrawingClipReader::DrawingClipReader(const QByteArray &clip)
{
    QDataStream stream(clip);
    int count = 0;
    if (!readHead(stream, m_layerType, count))
        return;
    std::vector<Block> blocks(static_cast<size_t>(count));
    for (Block &block : blocks) {
        if (!readBlock(stream, block))
            return;
    }
    m_blocks = std::move(blocks);
}

int DrawingClipReader::layerTypeIn(const QByteArray &clip)
{
    QDataStream stream(clip);
    int layerType = 0;
    int count = 0;
    return readHead(stream, layerType, count) ? layerType : 0;
}

bool DrawingClipReader::readHead(QDataStream &stream, int &layerType, int &count)
{
    stream >> layerType >> count;
    const bool isKind = layerType == Layer::Stroke || layerType == Layer::Reference;
    return stream.status() == QDataStream::Ok && isKind && count >= 1 && count <= Layer::maximumFrames &&
           count <= stream.device()->bytesAvailable() / (lengthBytes + blockHeadBytes);
}

bool DrawingClipReader::readBlock(QDataStream &stream, Block &block)
{
    quint32 length = 0;
    stream >> length;
    if (stream.status() != QDataStream::Ok || length < blockHeadBytes || length > stream.device()->bytesAvailable())
        return false;
    qint32 kind = 0;
    stream >> kind >> block.frame.copyId >> block.hasDrawing;
    block.drawing = stream.device()->read(qint64(length) - blockHeadBytes);
    block.frame.kind = static_cast<LayerItem::Type>(kind);
    const bool isKind = kind >= int(LayerItem::Type::Original) && kind <= int(LayerItem::Type::DistantClone);
    return isKind && !block.frame.copyId.isNull();
}

DrawingClipContent DrawingClipReader::read(QSize frameSize, const Knows &knows, Progress *progress) const
{
    MemoryBudget memory;
    return read(frameSize, knows, memory, progress);
}

DrawingClipContent DrawingClipReader::read(QSize frameSize, const Knows &knows, MemoryBudget &memory,
                                           Progress *progress) const
{
    WorkBudget work;
    IdentifierSet met;
    DrawingClipContent content;
    const auto goesOn = [this, progress](size_t done) {
        if (!progress)
            return true;
        progress->setSteps(int(m_blocks.size()), int(done));
        progress->poll();
        return !progress->wasCancelled();
    };
    for (size_t i = 0; i < m_blocks.size(); ++i) {
        const Block &block = m_blocks[i];
        content.frames.append(block.frame);
        if (!needsDrawing(block.frame, i) || met.contains(block.frame.copyId) || knows(block.frame.copyId))
            continue;
        content.isCancelled = !goesOn(i);
        const auto read = block.hasDrawing && !content.isCancelled
                              ? drawing(block.drawing, frameSize, memory, work, content)
                              : nullptr;
        if (!read) {
            content.frames.clear();
            break;
        }
        read->setCopyId(block.frame.copyId);
        content.frames.last().drawing = read;
        met.insert(block.frame.copyId);
    }
    if (progress && !content.isCancelled)
        progress->finish();
    return content;
}

std::shared_ptr<Drawing> DrawingClipReader::drawing(const QByteArray &bytes, QSize frameSize, MemoryBudget &memory,
                                                    WorkBudget &work, DrawingClipContent &notes) const
{
    if (m_layerType == Layer::Reference) {
        const DecodedImage decoded = decodePicture(bytes, memory);
        notes.exceedsMemory |= decoded.exceedsMemory;
        if (decoded.isDamaged || decoded.exceedsMemory)
            return nullptr;
        return std::make_shared<ImageDrawing>(decoded.image);
    }
    work.earn(bytes.size());
    const DecodedStrokes decoded = decodeStrokeBlock(bytes, frameSize, memory, work);
    notes.exceedsMemory |= decoded.exceedsMemory;
    notes.isShownInPart |= decoded.isShownInPart || decoded.isUnrendered;
    return decoded.isDamaged || decoded.exceedsMemory ? nullptr : decoded.drawing;
}

} // namespace Model
