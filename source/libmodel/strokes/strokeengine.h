#pragma once

#include "libmodel/strokes/sample.h"
#include "libmodel/strokes/strokedriver.h"

#include <QObject>
#include <QRect>

#include <memory>

namespace Model {

class SingleStroke;
class Tool;

/// Draws a stroke in a rectangle of somebody's coordinates, such as those of the exposure sheet.
///
/// The stroke itself lies in coordinates of the rectangle, its image has the rectangle's size.
class StrokeEngine : public QObject
{
    Q_OBJECT

public:
    explicit StrokeEngine(QObject *parent = nullptr);
    ~StrokeEngine() override;

    /// Starts a stroke in \a rect with \a sample (both in the caller's coordinates). \a tool (not owned, outlives the
    /// stroke) may be null for the current one. A stroke still active is finished and dropped.
    void begin(QRect rect, const Sample &sample, const Tool *tool = nullptr);

    /// Adds \a sample (the caller's coordinates); does nothing without a stroke or if the pen has not moved by a pixel.
    void update(const Sample &sample);

    /// Finishes the stroke and hands it over, in coordinates of the rectangle; null if there is none.
    std::unique_ptr<SingleStroke> end();

    [[nodiscard]] bool hasActiveStroke() const;

    /// The active stroke in coordinates of the rectangle, null if there is none.
    [[nodiscard]] const SingleStroke *stroke() const;

    /// The rectangle given to begin().
    [[nodiscard]] QRect rect() const;

signals:
    void hasActiveStrokeChanged(bool hasActiveStroke);

    /// The pixels to repaint, in the caller's coordinates; may be empty.
    void rectChanged(QRect rect);

private:
    [[nodiscard]] Sample toRect(Sample sample) const;
    void forwardRect(QRect changed);

    StrokeDriver m_driver;
    QRect m_rect;
};

} // namespace Model
