#include "libui/paper/gridpaths.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

/// A sheet away from the origin, so that nothing comes right by accident.
constexpr QRectF sheet(100.0, 50.0, 1920.0, 1080.0);

using Lines = std::vector<QLineF>;

/// The lines of a path that holds nothing but lines of two points each.
Lines linesOf(const QPainterPath &path)
{
    Lines lines;
    for (int i = 0; i + 1 < path.elementCount(); i += 2) {
        if (path.elementAt(i).isMoveTo() && path.elementAt(i + 1).isLineTo())
            lines.emplace_back(path.elementAt(i), path.elementAt(i + 1));
    }
    return lines;
}

bool isNear(QPointF a, QPointF b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) < 1e-6;
}

bool holds(const Lines &lines, const QLineF &wanted)
{
    return std::ranges::any_of(lines, [&](const QLineF &line) {
        return (isNear(line.p1(), wanted.p1()) && isNear(line.p2(), wanted.p2())) ||
               (isNear(line.p1(), wanted.p2()) && isNear(line.p2(), wanted.p1()));
    });
}

QLineF column(double x)
{
    return {x, 50.0, x, 1130.0};
}

QLineF row(double y)
{
    return {100.0, y, 2020.0, y};
}

/// The sides of the rectangle that lies \a dx and \a dy inside of the sheet.
Lines inset(double dx, double dy)
{
    const QPointF topLeft(100.0 + dx, 50.0 + dy);
    const QPointF topRight(2020.0 - dx, 50.0 + dy);
    const QPointF bottomLeft(100.0 + dx, 1130.0 - dy);
    const QPointF bottomRight(2020.0 - dx, 1130.0 - dy);
    return {{topLeft, topRight}, {topRight, bottomRight}, {bottomRight, bottomLeft}, {bottomLeft, topLeft}};
}

const QLineF falling(100.0, 50.0, 2020.0, 1130.0);
const QLineF rising(100.0, 1130.0, 2020.0, 50.0);

Lines fieldGuide()
{
    Lines lines = inset(96.0, 54.0);
    for (int i = 0; i <= 30; ++i) {
        lines.push_back(column(100.0 + 64.0 * i));
        lines.push_back(row(50.0 + 36.0 * i));
    }
    lines.push_back(falling);
    lines.push_back(rising);
    return lines;
}

Lines safety()
{
    // Marks of 21.6 to each side: 2 % of the height. The middle of the sheet is (1060, 590).
    Lines lines = inset(96.0, 54.0);
    const Lines narrow = inset(192.0, 108.0);
    lines.insert(lines.end(), narrow.begin(), narrow.end());
    for (const double y : {104.0, 158.0, 590.0, 1022.0, 1076.0})
        lines.emplace_back(1060.0, y - 21.6, 1060.0, y + 21.6);
    for (const double x : {196.0, 292.0, 1060.0, 1828.0, 1924.0})
        lines.emplace_back(x - 21.6, 590.0, x + 21.6, 590.0);
    return lines;
}

Lines thirds()
{
    return {column(100.0), column(740.0), column(1380.0), column(2020.0),
            row(50.0),     row(410.0),    row(770.0),     row(1130.0)};
}

/// The foot of the perpendicular from \a point onto \a line, by projection.
QPointF footOf(QPointF point, const QLineF &line)
{
    const QPointF along = line.p2() - line.p1();
    const double part = QPointF::dotProduct(point - line.p1(), along) / QPointF::dotProduct(along, along);
    return line.p1() + along * part;
}

Lines diagonals()
{
    Lines lines{falling, rising, column(676.0), column(1444.0), row(374.0), row(806.0)};
    lines.emplace_back(falling.p1(), footOf(falling.p1(), rising));
    lines.emplace_back(falling.p2(), footOf(falling.p2(), rising));
    lines.emplace_back(rising.p1(), footOf(rising.p1(), falling));
    lines.emplace_back(rising.p2(), footOf(rising.p2(), falling));
    return lines;
}

Lines renaissance()
{
    Lines lines;
    for (int i = 0; i <= 4; ++i) {
        lines.push_back(column(100.0 + 480.0 * i));
        lines.push_back(row(50.0 + 270.0 * i));
    }
    // Around the corners.
    lines.emplace_back(580.0, 50.0, 100.0, 320.0);
    lines.emplace_back(1540.0, 50.0, 2020.0, 320.0);
    lines.emplace_back(580.0, 1130.0, 100.0, 860.0);
    lines.emplace_back(1540.0, 1130.0, 2020.0, 860.0);
    // Across the sheet.
    lines.emplace_back(580.0, 50.0, 2020.0, 860.0);
    lines.emplace_back(100.0, 320.0, 1540.0, 1130.0);
    lines.emplace_back(1540.0, 50.0, 100.0, 860.0);
    lines.emplace_back(2020.0, 320.0, 580.0, 1130.0);
    return lines;
}

} // namespace

class tst_GridPaths : public QObject
{
    Q_OBJECT

private slots:
    void gridHasTheseLinesAndNoOthers_data();
    void gridHasTheseLinesAndNoOthers();
    void gridsStayOnTheSheet_data();
    void gridsStayOnTheSheet();
    void emptySheetHasNoGrid();
    void diagonalsParallelTheSheetsOwnOnTheRenaissanceGrid();
};

void tst_GridPaths::gridHasTheseLinesAndNoOthers_data()
{
    QTest::addColumn<MR::GridType>("type");
    QTest::addColumn<Lines>("wanted");
    QTest::addRow("field guide") << MR::GridType::FieldGuide << fieldGuide();
    QTest::addRow("safety") << MR::GridType::Safety << safety();
    QTest::addRow("thirds") << MR::GridType::Thirds << thirds();
    QTest::addRow("diagonals") << MR::GridType::Diagonals << diagonals();
    QTest::addRow("renaissance") << MR::GridType::Renaissance << renaissance();
}

void tst_GridPaths::gridHasTheseLinesAndNoOthers()
{
    QFETCH(MR::GridType, type);
    QFETCH(Lines, wanted);
    const QPainterPath path = UI::gridPath(type, sheet);
    const Lines lines = linesOf(path);
    QCOMPARE(int(lines.size()) * 2, path.elementCount());
    for (const QLineF &line : wanted)
        QVERIFY2(holds(lines, line), qPrintable(QStringLiteral("missing: (%1, %2) to (%3, %4)")
                                                    .arg(line.x1())
                                                    .arg(line.y1())
                                                    .arg(line.x2())
                                                    .arg(line.y2())));
    for (const QLineF &line : lines)
        QVERIFY2(holds(wanted, line), qPrintable(QStringLiteral("not wanted: (%1, %2) to (%3, %4)")
                                                     .arg(line.x1())
                                                     .arg(line.y1())
                                                     .arg(line.x2())
                                                     .arg(line.y2())));
}

void tst_GridPaths::gridsStayOnTheSheet_data()
{
    QTest::addColumn<QRectF>("rect");
    QTest::addRow("wide") << QRectF(0.0, 0.0, 4096.0, 16.0);
    QTest::addRow("tall") << QRectF(-7.0, 3.0, 16.0, 4096.0);
    QTest::addRow("square") << QRectF(0.0, 0.0, 512.0, 512.0);
    QTest::addRow("a pixel") << QRectF(0.0, 0.0, 1.0, 1.0);
}

void tst_GridPaths::gridsStayOnTheSheet()
{
    QFETCH(QRectF, rect);
    for (const MR::GridType type : {MR::GridType::FieldGuide, MR::GridType::Safety, MR::GridType::Thirds,
                                    MR::GridType::Diagonals, MR::GridType::Renaissance}) {
        const QRectF covered = UI::gridPath(type, rect).controlPointRect();
        QVERIFY(!covered.isEmpty());
        QVERIFY(rect.adjusted(-1e-9, -1e-9, 1e-9, 1e-9).contains(covered));
    }
}

void tst_GridPaths::emptySheetHasNoGrid()
{
    QVERIFY(UI::gridPath(MR::GridType::FieldGuide, {}).isEmpty());
    QVERIFY(UI::gridPath(MR::GridType::Thirds, QRectF(10.0, 10.0, 0.0, 100.0)).isEmpty());
    QVERIFY(UI::gridPath(MR::GridType::Diagonals, QRectF(0.0, 0.0, -5.0, 8.0)).isEmpty());
}

void tst_GridPaths::diagonalsParallelTheSheetsOwnOnTheRenaissanceGrid()
{
    const double slope = sheet.height() / sheet.width();
    int diagonalCount = 0;
    for (const QLineF &line : linesOf(UI::gridPath(MR::GridType::Renaissance, sheet))) {
        if (line.dx() == 0.0 || line.dy() == 0.0)
            continue;
        ++diagonalCount;
        QVERIFY(std::abs(std::abs(line.dy() / line.dx()) - slope) < 1e-9);
    }
    QCOMPARE(diagonalCount, 8);
}

QTEST_APPLESS_MAIN(tst_GridPaths)
#include "tst_gridpaths.moc"
