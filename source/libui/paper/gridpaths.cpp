#include "libui/paper/gridpaths.h"

#include <QLineF>

#include <algorithm>

namespace UI {

namespace {

constexpr double narrowMargin = 0.05;
constexpr double wideMargin = 0.1;
constexpr double nearEdge = 0.3;
constexpr double quarter = 0.25;
/// Arm of a centre mark as a part of the shorter side.
constexpr double markLength = 0.02;

/// Collects lines that are given in parts of a rectangle: (0, 0) is its top left corner, (1, 1) its bottom right.
class Lines
{
public:
    explicit Lines(const QRectF &rect) : m_rect(rect) {}

    [[nodiscard]] QPointF at(double x, double y) const
    {
        return {m_rect.left() + x * m_rect.width(), m_rect.top() + y * m_rect.height()};
    }

    void add(const QLineF &line)
    {
        m_path.moveTo(line.p1());
        m_path.lineTo(line.p2());
    }
    void add(double x1, double y1, double x2, double y2) { add({at(x1, y1), at(x2, y2)}); }
    void addColumn(double x) { add(x, 0.0, x, 1.0); }
    void addRow(double y) { add(0.0, y, 1.0, y); }

    /// The edges and \a count columns and rows between them.
    void addDivision(int count)
    {
        for (int i = 0; i <= count; ++i) {
            addColumn(double(i) / count);
            addRow(double(i) / count);
        }
    }
    void addDiagonals()
    {
        add(0.0, 0.0, 1.0, 1.0);
        add(1.0, 0.0, 0.0, 1.0);
    }
    void addMargin(double part)
    {
        const double end = 1.0 - part;
        add(part, part, end, part);
        add(end, part, end, end);
        add(end, end, part, end);
        add(part, end, part, part);
    }
    /// A cross whose arms are \a length long in paper pixels.
    void addMark(QPointF middle, double length)
    {
        add({middle - QPointF(length, 0.0), middle + QPointF(length, 0.0)});
        add({middle - QPointF(0.0, length), middle + QPointF(0.0, length)});
    }

    [[nodiscard]] const QPainterPath &path() const { return m_path; }

private:
    QRectF m_rect;
    QPainterPath m_path;
};

void addSafety(Lines &lines, const QRectF &rect)
{
    const double arm = markLength * std::min(rect.width(), rect.height());
    for (const double margin : {narrowMargin, wideMargin}) {
        lines.addMargin(margin);
        for (const QPointF middle : {QPointF(0.5, margin), QPointF(0.5, 1.0 - margin)}) {
            const QPointF side = lines.at(middle.x(), middle.y());
            lines.add({side - QPointF(0.0, arm), side + QPointF(0.0, arm)});
        }
        for (const QPointF middle : {QPointF(margin, 0.5), QPointF(1.0 - margin, 0.5)}) {
            const QPointF side = lines.at(middle.x(), middle.y());
            lines.add({side - QPointF(arm, 0.0), side + QPointF(arm, 0.0)});
        }
    }
    lines.addMark(rect.center(), arm);
}

/// From \a corner the shortest way to \a line.
void addPerpendicular(Lines &lines, QPointF corner, const QLineF &line)
{
    const QLineF across(corner, corner + QPointF(-line.dy(), line.dx()));
    QPointF foot;
    if (across.intersects(line, &foot) != QLineF::NoIntersection)
        lines.add({corner, foot});
}

void addDiagonalGuide(Lines &lines)
{
    lines.addDiagonals();
    for (const double part : {nearEdge, 1.0 - nearEdge}) {
        lines.addColumn(part);
        lines.addRow(part);
    }
    const QLineF falling(lines.at(0.0, 0.0), lines.at(1.0, 1.0));
    const QLineF rising(lines.at(0.0, 1.0), lines.at(1.0, 0.0));
    addPerpendicular(lines, lines.at(0.0, 0.0), rising);
    addPerpendicular(lines, lines.at(1.0, 1.0), rising);
    addPerpendicular(lines, lines.at(1.0, 0.0), falling);
    addPerpendicular(lines, lines.at(0.0, 1.0), falling);
}

void addRenaissance(Lines &lines)
{
    lines.addDivision(4);
    constexpr double far = 1.0 - quarter;
    // Each point at a quarter of a side has two: a short one around the corner, and a long one across the sheet.
    lines.add(quarter, 0.0, 0.0, quarter);
    lines.add(far, 0.0, 1.0, quarter);
    lines.add(quarter, 1.0, 0.0, far);
    lines.add(far, 1.0, 1.0, far);
    lines.add(quarter, 0.0, 1.0, far);
    lines.add(0.0, quarter, far, 1.0);
    lines.add(far, 0.0, 0.0, far);
    lines.add(1.0, quarter, quarter, 1.0);
}

} // namespace

QPainterPath gridPath(MR::GridType type, const QRectF &paperRect)
{
    if (paperRect.isEmpty())
        return {};
    Lines lines(paperRect);
    switch (type) {
    case MR::GridType::FieldGuide:
        lines.addDivision(30);
        lines.addDiagonals();
        lines.addMargin(narrowMargin);
        break;
    case MR::GridType::Safety:
        addSafety(lines, paperRect);
        break;
    case MR::GridType::Thirds:
        lines.addDivision(3);
        break;
    case MR::GridType::Diagonals:
        addDiagonalGuide(lines);
        break;
    case MR::GridType::Renaissance:
        addRenaissance(lines);
        break;
    }
    return lines.path();
}

} // namespace UI
