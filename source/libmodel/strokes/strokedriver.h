#pragma once

#include "libmodel/strokes/sample.h"

#include <QObject>
#include <QRect>
#include <QSize>
#include <QTimer>

#include <memory>
#include <optional>

namespace Model {

class SingleStroke;
class Tool;

/// Feeds a stroke with samples, and keeps it chasing the pen between them.
///
///     state      event                    next
///     1 none     begin                    2
///     2 chasing  500 ms without a sample  3, finished up to the last sample
///     2 chasing  sample                   2
///     3 resting  sample                   2
///     2, 3       end                      1, the stroke goes to the caller
///     2, 3       begin                    2, the former stroke is dropped
///
/// While chasing, a tick every 20 ms fits one more segment towards the last sample.
class StrokeDriver : public QObject
{
    Q_OBJECT

public:
    static constexpr int chaseInterval = 20; ///< Milliseconds between two ticks while chasing.
    static constexpr int idleInterval = 500; ///< Milliseconds without a sample until the stroke rests.

    explicit StrokeDriver(QObject *parent = nullptr);
    ~StrokeDriver() override;

    /// Starts a stroke with an image of \a imageSize (pixels) and \a tool (not owned, outlives the stroke). With
    /// \a previousPoint, the pen's position just before, the stroke may start with a direction. A stroke still active
    /// is finished and dropped. Nothing for a sample that is no place on paper.
    void begin(QSize imageSize, const Tool *tool, const Sample &sample,
               std::optional<QPointF> previousPoint = std::nullopt);

    /// Adds \a sample. \return false if there is no stroke, or the pen has not moved by a pixel.
    bool update(const Sample &sample);

    /// Finishes the stroke and hands it over; null if there is none.
    std::unique_ptr<SingleStroke> end();

    [[nodiscard]] bool hasActiveStroke() const;

    /// The active stroke, null if there is none.
    [[nodiscard]] const SingleStroke *stroke() const;
    [[nodiscard]] SingleStroke *stroke();

signals:
    void hasActiveStrokeChanged(bool hasActiveStroke);

    /// The pixels of the stroke's image to repaint; may be empty.
    void rectChanged(QRect rect);

private:
    void chase();
    void rest();
    void startTimers();
    void stopTimers();
    void renderLatest();

    std::unique_ptr<SingleStroke> m_stroke;
    QTimer m_chaseTimer{this};
    QTimer m_idleTimer{this};
};

} // namespace Model
