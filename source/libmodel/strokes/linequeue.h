#pragma once

#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/render/vertexstreams.h"

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QTransform>

#include <memory>
#include <vector>

namespace Model {

class Segment;
struct CapView;
struct OwnPixels;

/// A line as it is to be drawn.
struct Line
{
    const std::vector<std::shared_ptr<const Segment>> &segments;
    QRect bounds;      ///< Around all segments and their rims, in paper pixels.
    int style = 0;     ///< OffscreenRenderer::styleOf().
    bool isPen = true; ///< It adds coverage; else it takes it away.
};

/// How an image shows lines.
struct LineView
{
    QTransform transform;     ///< From paper coordinates to pixels of the image.
    QPoint textureOffset;     ///< Of the image's first pixel, as OffscreenRenderer has it.
    double renderScale = 1.0; ///< As OffscreenRenderer has it.
};

/// Draws lines into an image, one on the other, several of them on their way at a time.
///
/// A line is drawn in windows that lie side by side from its own first pixel on (see OwnPixels), and the windows are
/// composited with the image in the order of the lines. Each pixel of a line under a transform is the same byte always:
///
///     what is asked for              the windows that are drawn, and of them what is read
///     +---------+                    +-----+-----+-----+
///     |  (part) |  of  ~~~~~~~       |     |  xx | xx  |
///     +---------+                    +-----+-----+-----+
///
/// While a queue holds lines, nobody else may use the renderer's windows, nor the image. Without a renderer nothing is
/// drawn.
class LineQueue
{
public:
    /// \a image (QImage::Format_Alpha8, not owned) gets the lines.
    explicit LineQueue(QImage &image);
    ~LineQueue();

    LineQueue(const LineQueue &) = delete;
    LineQueue &operator=(const LineQueue &) = delete;

    /// Draws what of \a line lies in \a rect (pixels of the image), now or later.
    void add(const Line &line, QRect rect, const LineView &view);

    /// All lines that were added are in the image then.
    void finish();

private:
    struct Tile;

    /// A window that is being drawn, and where it goes.
    struct Waiting
    {
        QPoint topLeft;
        bool isPen;
    };

    /// The piece of a line that segment number \a index makes.
    struct Piece
    {
        size_t index;
        QRect bounds; ///< Own pixels.
    };

    QRect collectPieces(const Line &line, const OwnPixels &own, QRect wanted, double renderScale);
    void drawTile(const Line &line, const Tile &tile);
    void addPiece(const Line &line, size_t index, const CapView &view);

    QImage &m_image;
    std::vector<Waiting> m_waiting;
    std::vector<Piece> m_pieces; ///< Of the line at hand, where it is asked for.
    VertexStreams m_vertices;    ///< For its memory.
};

} // namespace Model
