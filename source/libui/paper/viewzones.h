#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QRect>
#include <QRectF>

namespace UI {

/// Where on the paper the tools that work by zones do what. Widget coordinates.
class ViewZones
{
public:
    /// What the tool for zooming, panning and rotating does; None while nothing is pressed.
    enum class Zpr { Pan = 0, Rotate = 1, Zoom = 2, None = 3 };
    /// What the off-pegs tool does; Button only while the frame is off its pegs.
    enum class OffPegs { Rotate = 0, Pan = 1, Button = 2 };

    ViewZones() = default;
    /// Zones of the usable rectangle \a usable at the interface scale \a scale (1.0 for 100 percent).
    ViewZones(const QRect &usable, double scale);

    [[nodiscard]] Zpr zprZoneAt(QPointF position) const;
    /// \a isOffPegs: the frame is off its pegs, so there is a button that puts it back.
    [[nodiscard]] OffPegs offPegsZoneAt(QPointF position, bool isOffPegs) const;

    /// Inside it the one tool pans.
    [[nodiscard]] const QPainterPath &innerPath() const { return m_inner; }
    /// Inside it, and outside innerPath(), the one tool rotates.
    [[nodiscard]] const QPainterPath &outerPath() const { return m_outer; }
    /// Inside it the off-pegs tool pans.
    [[nodiscard]] const QPainterPath &offPegsEllipse() const { return m_ellipse; }
    /// The button that puts the frame back.
    [[nodiscard]] const QRectF &button() const { return m_button; }
    /// The middle of the paths, about which the view rotates.
    [[nodiscard]] QPointF center() const { return m_center; }

private:
    QPainterPath m_inner;
    QPainterPath m_outer;
    QPainterPath m_ellipse;
    QRectF m_button;
    QPointF m_center;
};

} // namespace UI
