#pragma once

#include "libmodel/strokes/inktiles.h"

#include <QImage>
#include <QPixmap>
#include <QRect>
#include <QSize>

class QPainter;

namespace Model {

/// A picture that is composed when somebody looks at it, as far as it has gone stale by then.
///
///     markStale() ... markStale() ... | look: begin(), paint into canvas(), addInk() | paint(), pixmap()
///
/// It knows the tiles that may hold anything but transparency, so that emptying and painting it cost what its ink
/// costs. Rectangles are in its pixels.
class PictureCache
{
public:
    /// All of it, or what lies in \a rect, has to be composed anew.
    void markStale();
    void markStale(QRect rect);

    /// Makes what has gone stale transparent and current, for being painted: the picture then has the size \a size.
    /// \return the rectangle to be painted; null if there is nothing to do.
    [[nodiscard]] QRect begin(QSize size);
    /// Frees the picture, which is all stale then.
    void release();

    /// Format_ARGB32_Premultiplied.
    [[nodiscard]] QImage &canvas() { return m_image; }
    [[nodiscard]] const QImage &image() const { return m_image; }
    /// Tells that something was painted in \a rect, or in those tiles of \a ink that meet it.
    void addInk(QRect rect) { m_ink.add(rect); }
    void addInk(const InkTiles &ink, QRect rect) { m_ink.add(ink, rect); }
    /// Where the picture may not be transparent.
    [[nodiscard]] const InkTiles &ink() const { return m_ink; }

    /// Paints what lies in \a rect at its place.
    void paint(QPainter *painter, QRect rect) const;
    /// The picture. Shares its pixels until it is composed anew.
    [[nodiscard]] QPixmap pixmap() const;

private:
    QImage m_image;
    InkTiles m_ink;
    QRect m_stale;
    bool m_isAllStale = true;
};

} // namespace Model
