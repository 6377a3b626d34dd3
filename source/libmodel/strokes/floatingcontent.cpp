#include "libmodel/strokes/floatingcontent.h"

#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/strokes/compositing.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/rendereffort.h"

#include <QRegion>
#include <QTransform>

#include <utility>

namespace Model {

namespace {

constexpr double paperScale = 1.0;

/// What of \a compound is drawn in \a rect: as a rule all of it, which null stands for. Content of a file could take
/// any time, so then the oldest strokes have to do.
std::unique_ptr<Stroke> drawablePart(const CompoundStroke &compound, QRect rect)
{
    constexpr qint64 mostEffort = qint64(1) << 33; // some seconds
    const int drawable = drawableChildren(compound, rect, mostEffort);
    if (drawable == compound.count())
        return nullptr;
    auto oldest = std::make_unique<CompoundStroke>(compound);
    oldest->keepOldest(drawable);
    return oldest;
}

} // namespace

FloatingContent::FloatingContent(std::unique_ptr<Stroke> content, QSize frameSize)
    : m_stroke(std::move(content)),
      m_frameSize(frameSize),
      m_imageRect(grownByRim(m_stroke->boundingRect(), paperScale) & reach())
{
}

QRect FloatingContent::reach() const
{
    return frame().adjusted(-m_frameSize.width(), -m_frameSize.height(), m_frameSize.width(), m_frameSize.height());
}

const QImage &FloatingContent::image()
{
    if (!m_image.isNull() || m_imageRect.isEmpty())
        return m_image;
    m_image = blankCoverage(m_imageRect.size());
    QRegion unknown(m_imageRect);
    if (m_stroke->type() == Stroke::Type::Compound) {
        const auto &compound = static_cast<const CompoundStroke &>(*m_stroke);
        useKnownPicture(compound);
        unknown -= compound.pictureRect();
    }
    for (const QRect &rect : unknown)
        render(rect);
    return m_image;
}

bool FloatingContent::isImageWhole()
{
    (void)image();
    return m_isImageWhole;
}

void FloatingContent::useKnownPicture(const CompoundStroke &compound)
{
    const QRect rect = compound.pictureRect();
    composite(m_image, compound.picture(), QRect(QPoint(0, 0), rect.size()), true,
              rect.topLeft() - m_imageRect.topLeft());
}

void FloatingContent::render(QRect rect)
{
    if (needsRenderer(*m_stroke) && !OffscreenRenderer::instance()->isInitialized()) {
        m_isImageWhole = false;
        return;
    }
    std::unique_ptr<Stroke> part;
    if (m_stroke->type() == Stroke::Type::Compound)
        part = drawablePart(static_cast<const CompoundStroke &>(*m_stroke), rect);
    m_isImageWhole = m_isImageWhole && !part;
    const Stroke &drawn = part ? *part : *m_stroke;
    const QPoint origin = m_imageRect.topLeft();
    drawn.render(m_image, rect.translated(-origin), QTransform::fromTranslate(-origin.x(), -origin.y()), origin,
                 paperScale);
}

} // namespace Model
