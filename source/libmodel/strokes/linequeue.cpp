#include "libmodel/strokes/linequeue.h"

#include "libmodel/strokes/compositing.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/ownpixels.h"
#include "libmodel/strokes/roundcap.h"
#include "libmodel/strokes/segment.h"

#include <optional>

namespace Model {

namespace {

/// About 200 MB of them; a hand needs a quarter of an hour for one line of as many.
constexpr qsizetype mostVertices = 5'000'000;

/// Where a line goes on smoothly, two caps lie on each other; one will do, and caps are most of the work.
bool isCapNeeded(const std::optional<RoundCap> &start, const Segment *previous)
{
    if (!start || !previous)
        return start.has_value();
    const std::optional<RoundCap> drawn = previous->endCap();
    return !drawn || !start->coversTheSameAs(*drawn);
}

} // namespace

/// What one window shows.
struct LineQueue::Tile
{
    OffscreenRenderer::WindowPass pass;
    QPoint origin; ///< The window's first pixel, in own pixels of the line.
    QPoint place;  ///< And in pixels of the image.
};

LineQueue::LineQueue(QImage &image) : m_image(image)
{
}

LineQueue::~LineQueue()
{
    finish();
}

void LineQueue::add(const Line &line, QRect rect, const LineView &view)
{
    // Rows are counted from the lower edge of the framebuffers, also where a line is drawn for the first time.
    const bool oddRowPairs = OffscreenRenderer::instance()->size().height() % 2 != 0;
    const OwnPixels own(line.bounds, view.transform, view.renderScale, oddRowPairs);
    const QRect wanted = (rect & m_image.rect()).translated(-own.origin) & own.bounds;
    if (wanted.isEmpty())
        return;
    const QRect needed = collectPieces(line, own, wanted, view.renderScale);
    const QSize size = OffscreenRenderer::windowSize();
    for (int y = needed.top() / size.height() * size.height(); y <= needed.bottom(); y += size.height()) {
        for (int x = needed.left() / size.width() * size.width(); x <= needed.right(); x += size.width()) {
            const QPoint origin(x, y);
            const QPoint place = origin + own.origin;
            const QTransform toWindow = own.toOwn * QTransform::fromTranslate(-x, -y);
            drawTile(line, {{line.style, view.textureOffset + place, float(view.renderScale),
                             (needed & QRect(origin, size)).translated(-origin), toWindow},
                            origin,
                            place});
        }
    }
}

// Fills m_pieces with those that reach into wanted, and tells the part of it that they cover.
QRect LineQueue::collectPieces(const Line &line, const OwnPixels &own, QRect wanted, double renderScale)
{
    const QRect firstWindow(QPoint(0, 0), OffscreenRenderer::windowSize());
    // A line that is all wanted and goes into one window need not be looked at piece by piece.
    const bool isTakenWhole = wanted == own.bounds && firstWindow.contains(own.bounds);
    m_pieces.clear();
    QRect needed;
    for (size_t i = 0; i < line.segments.size(); ++i) {
        const QRect bounds =
            isTakenWhole ? wanted : grownByRim(mappedBounds(own.toOwn, line.segments[i]->boundingRect()), renderScale);
        if (!bounds.intersects(wanted))
            continue;
        m_pieces.push_back({i, bounds});
        needed |= bounds & wanted;
    }
    return needed;
}

void LineQueue::drawTile(const Line &line, const Tile &tile)
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    OffscreenRenderer::WindowPass pass = tile.pass;
    const QRect asked = pass.rect.translated(tile.origin);
    QRect needed;
    for (const Piece &piece : m_pieces)
        needed |= piece.bounds & asked;
    if (needed.isEmpty())
        return;
    pass.rect = needed.translated(-tile.origin);
    if (!renderer->beginWindow(pass)) {
        finish();
        if (!renderer->beginWindow(pass))
            return;
    }
    m_waiting.push_back({tile.place + pass.rect.topLeft(), line.isPen});
    const CapView view(pass.transform, OffscreenRenderer::feather(pass.renderScale), pass.rect);
    m_vertices.clear();
    for (const Piece &piece : m_pieces) {
        if (!piece.bounds.intersects(needed))
            continue;
        // A line of so many segments that their vertices would fill the memory is put together from several drawings.
        if (m_vertices.vertexCount() >= mostVertices) {
            renderer->drawInWindow(m_vertices);
            m_vertices.clear();
        }
        addPiece(line, piece.index, view);
    }
    renderer->drawInWindow(m_vertices);
}

// Which caps there are must not depend on what is asked for: the caps of two segments that count as the same may differ
// in a last bit.
void LineQueue::addPiece(const Line &line, size_t index, const CapView &view)
{
    const Segment &segment = *line.segments[index];
    const std::optional<RoundCap> start = segment.startCap();
    if (isCapNeeded(start, index > 0 ? line.segments[index - 1].get() : nullptr))
        addVisibleRoundCap(*start, view, m_vertices);
    segment.addBody(m_vertices);
    if (const std::optional<RoundCap> end = segment.endCap())
        addVisibleRoundCap(*end, view, m_vertices);
}

void LineQueue::finish()
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    for (const Waiting &waiting : m_waiting) {
        const QImage drawn = renderer->takeWindow();
        composite(m_image, drawn, drawn.rect(), waiting.isPen, waiting.topLeft);
    }
    m_waiting.clear();
}

} // namespace Model
