#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QRectF>

#include <array>

class QPainter;

namespace UI {

/// What lies under a point of a floating selection, in the order in which it is looked for: what is smaller lies on
/// top. The numbers are those by which the zones are known, see FloatingSelectionView.
enum class FloatingZone {
    Pivot = 1,
    Scale = 3,
    Rotate = 2,
    ScaleRotate = 4,
    HorizontalEdge = 5,
    VerticalEdge = 6,
    Move = 0,
    Outside = 7,
};

/// The handles around a floating selection, as plain geometry in widget coordinates.
///
/// They stand at the corners of the selection's rectangle and turn with it, but keep their size and their shape on the
/// screen. At each corner, from the inside out:
///
///            |
///     -------[s].....      [s] scales, on the corner
///            :   ,-. :     (r) rotates
///            :  ( r ):     the rounded square around both scales and rotates
///            : . `-\' :
///
/// The middles of the sides carry marks, and there is a pivot. A rectangle with little room on the screen has neither,
/// and its handles stand around a larger one with the same middle.
class FloatingHandles
{
public:
    /// The corners of a rectangle, in their order.
    enum Corner { TopLeft, TopRight, BottomRight, BottomLeft };
    using Corners = std::array<QPointF, 4>;

    /// The least length of a side that handles are laid out around, at an interface scale of 100 percent.
    static constexpr double leastSpan = 70.0;
    /// Rectangles with a side shorter than this times the span have neither pivot nor marks.
    static constexpr double roomForAll = 1.75;

    static constexpr double pivotDiameter = 9.0;
    static constexpr double scaleSide = 10.0;
    static constexpr double rotateDiameter = 14.0;
    static constexpr double scaleRotateSide = 25.0;

    /// No handles; everything is outside.
    FloatingHandles() = default;
    /// Around the rectangle with these \a corners (a parallelogram, turned or mirrored as it may be), for the interface
    /// scale \a scale (1.0 for 100 percent).
    FloatingHandles(const Corners &corners, QPointF pivot, double scale);

    [[nodiscard]] bool isEmpty() const { return m_frame.isEmpty(); }
    /// False where there is too little room for it.
    [[nodiscard]] bool isPivotShown() const { return !m_pivot.isEmpty(); }
    [[nodiscard]] FloatingZone zoneAt(QPointF position) const;
    [[nodiscard]] Corner cornerNear(QPointF position) const;
    /// Where the corner near \a position points to, away from the rectangle: degrees clockwise on the screen, 0 to the
    /// right.
    [[nodiscard]] double angleAt(QPointF position) const;
    /// The corners that the handles stand at: those of the rectangle, or of a larger one.
    [[nodiscard]] const Corners &corners() const { return m_corners; }
    /// All that paint() touches.
    [[nodiscard]] QRectF bounds() const;

    /// Legible on any ground.
    void paint(QPainter *painter) const;

private:
    void buildCorner(Corner corner, QPointF outwardX, QPointF outwardY);
    void buildMarks(QPointF alongX, QPointF alongY);

    Corners m_corners;
    std::array<QPointF, 4> m_outward; ///< which way the corners point
    double m_scale = 1.0;
    QPainterPath m_frame;
    QPainterPath m_pivot; ///< with its cross to paint, without it to press
    QPainterPath m_pivotCross;
    QPainterPath m_scaleSquares;
    QPainterPath m_rotateCircles;
    QPainterPath m_rings; ///< those circles as they are painted
    QPainterPath m_scaleRotateSquares;
    QPainterPath m_horizontalMarks;
    QPainterPath m_verticalMarks;
};

} // namespace UI
