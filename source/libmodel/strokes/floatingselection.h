#pragma once

#include "libmodel/strokes/stroke.h"

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QTransform>

#include <memory>

namespace Model {

class CompoundStroke;
class Progress;

/// A copy of strokes that lives above the active drawing until it is stamped into one or dropped.
///
/// A value with one shared private part; a null one has no content. Coordinates are paper pixels. Content stays where
/// it was picked up; its transform says where it lies now.
class FloatingSelection
{
public:
    /// Where the selection lies. Transforms are kept in the direction of input: they map from the paper to the place
    /// where the content was picked up, the scale first.
    struct Transform
    {
        QTransform scale;
        QTransform rotation;
        QTransform translation;
        /// The fixed point of rotation and scale.
        QPointF pivot;

        /// scale, rotation and translation in one: paper to content.
        [[nodiscard]] QTransform paperToContent() const { return scale * rotation * translation; }
        /// The inverse of that, without a trace of perspective; identity where there is none.
        [[nodiscard]] QTransform contentToPaper() const;
        /// All numbers are usable coordinates, there is no perspective, and paperToContent() can be inverted.
        [[nodiscard]] bool isUsable() const;
        bool operator==(const Transform &) const = default;
    };

    /// A null selection.
    FloatingSelection();
    ~FloatingSelection();
    FloatingSelection(const FloatingSelection &other);
    FloatingSelection &operator=(const FloatingSelection &other);

    /// A selection of \a content, which it owns, in a frame of \a frameSize; its pivot is the middle of rect(). Content
    /// that is null or can have no ink makes it null.
    FloatingSelection(std::unique_ptr<Stroke> content, QSize frameSize);

    [[nodiscard]] bool isNull() const;
    /// The selected strokes; null for a null selection. Owned by the selection.
    [[nodiscard]] const Stroke *content() const;
    /// The content's bounds, before the transform; empty for a null selection.
    [[nodiscard]] QRectF rect() const;
    /// The content's coverage (QImage::Format_Alpha8) within imageRect(), rendered when first asked for and then shared
    /// by all copies; null if there is nothing in imageRect(). Without a renderer it is blank.
    [[nodiscard]] QImage image() const;
    /// Where image() lies, before the transform, in whole pixels. It may reach out of the frame, by as much again on
    /// each side: what was drawn there comes into sight when the selection is moved.
    [[nodiscard]] QRect imageRect() const;
    /// 0 to 1; what the view shows it with.
    [[nodiscard]] double opacity() const;
    /// \a opacity is limited to 0 to 1. Nothing for what is no number, and for a null selection.
    void setOpacity(double opacity);
    [[nodiscard]] Transform transform() const;
    /// Nothing for a transform that isUsable() says no to, and for a null selection.
    void setTransform(const Transform &transform);
    /// Stamps of it are to be collapsed into a bitmap.
    [[nodiscard]] bool collapsesOnStamp() const;
    void setCollapsesOnStamp(bool collapses);
    /// Its strokes were cut out of a drawing and have not been stamped since: they are nowhere else.
    [[nodiscard]] bool isCutOut() const;
    void setCutOut(bool cutOut);

    /// What a stamp adds to a drawing, as it lies now: the content under its transform, collapsed with \a collapseScale
    /// pixels of the bitmap per paper pixel where collapsesOnStamp(). That is done once for each place, with steps of
    /// \a progress (may be null), and kept. It knows its CompoundStroke::picture() where that could be told or was
    /// prepared. \return null for a null selection and when it was cancelled.
    [[nodiscard]] std::unique_ptr<CompoundStroke> stampStroke(int collapseScale, Progress *progress) const;

    /// Makes the picture of the stamp ahead, some of it with every call, as far as it shows on the frame: the next
    /// stampStroke() at this place has it. Stops after about \a milliseconds. \return true when there is nothing more
    /// to prepare. A change of the place begins anew.
    bool prepareStamp(int milliseconds) const;

private:
    struct Private;

    Private *detached();

    std::shared_ptr<Private> d;
};

} // namespace Model
