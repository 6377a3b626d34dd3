#include "libmodel/scene/slidemap.h"

#include <QTest>

#include <vector>

using namespace Model;

namespace {

/// A column as letters: a capital is a cell with a drawing of that name, a dot a hold.
bool isHold(const QString &column, int position)
{
    return column.at(position) == '.';
}

SlideMap slid(const QString &column, int dragged, int offset, int lowest, int highest)
{
    return SlideMap([&column](int position) { return isHold(column, position); }, static_cast<int>(column.size()),
                    dragged, offset, lowest, highest);
}

/// What the map shows, as letters.
QString shown(const SlideMap &map, const QString &column)
{
    QString text;
    for (int position = 0; position < column.size(); ++position) {
        const ShownCell cell = map.at(position);
        text += cell.isNewHold ? '.' : column.at(cell.source);
    }
    return text;
}

/// A cell of the model that the map is held against.
struct Cell
{
    char drawing = 0; ///< shown, holds included
    int source = -1;  ///< where it stood, -1 for one made anew
    bool hold = false;
};

std::vector<Cell> cellsOf(const QString &column)
{
    std::vector<Cell> cells;
    for (int position = 0; position < column.size(); ++position) {
        const bool hold = isHold(column, position);
        const char drawing = hold ? cells.back().drawing : column.at(position).toLatin1();
        cells.push_back({drawing, position, hold});
    }
    return cells;
}

/// The slide as a person does it with cards on a table: holds are taken away one by one, then put down again.
std::vector<Cell> slidByHand(std::vector<Cell> cells, int dragged, int offset, int lowest, int highest)
{
    for (int i = 0; i < highest; ++i) {
        int at = dragged + 1;
        while (!cells.at(at).hold)
            ++at;
        cells.erase(cells.begin() + at);
    }
    for (int i = 0; i < -lowest; ++i) {
        int at = dragged - 1;
        while (!cells.at(at).hold)
            --at;
        cells.erase(cells.begin() + at);
        --dragged;
    }
    const int inFront = offset - lowest;
    const int behind = highest - offset;
    cells.insert(cells.begin() + dragged + 1, behind, {cells.at(dragged).drawing, -1, true});
    cells.insert(cells.begin() + dragged, inFront, {cells.at(dragged - 1).drawing, -1, true});
    return cells;
}

/// All columns of \a length cells, each but the first a hold or not.
QStringList columnsOf(int length)
{
    QStringList columns;
    for (int pattern = 0; pattern < 1 << (length - 1); ++pattern) {
        QString column = "A";
        for (int position = 1; position < length; ++position)
            column += pattern >> (position - 1) & 1 ? QChar('.') : QChar('A' + position);
        columns += column;
    }
    return columns;
}

} // namespace

class tst_SlideMap : public QObject
{
    Q_OBJECT

private slots:
    void cellsStandWhereTheyStoodAtFirst();
    void holdsAreDealtOutAnew_data();
    void holdsAreDealtOutAnew();
    void badArgumentsLeaveAllInPlace_data();
    void badArgumentsLeaveAllInPlace();
    void positionOfACellThatIsTakenOutIsNone();
    void everyShortColumnIsSlidAsByHand_data();
    void everyShortColumnIsSlidAsByHand();
};

void tst_SlideMap::cellsStandWhereTheyStoodAtFirst()
{
    const SlideMap map;
    QVERIFY(map.isIdentity());
    for (const int position : {0, 1, 1000000}) {
        QCOMPARE(map.at(position), (ShownCell{position, false}));
        QCOMPARE(map.positionOf(position), position);
    }
}

void tst_SlideMap::holdsAreDealtOutAnew_data()
{
    QTest::addColumn<QString>("column");
    QTest::addColumn<int>("dragged");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("lowest");
    QTest::addColumn<int>("highest");
    QTest::addColumn<QString>("result");
    QTest::newRow("to the right") << "A.X.." << 2 << 1 << 0 << 1 << "A..X.";
    QTest::newRow("to the left") << "A..X." << 3 << -2 << -2 << 0 << "AX...";
    QTest::newRow("there and back gives the hold to its owner again") << "A.X.." << 2 << 0 << 0 << 1 << "A.X..";
    QTest::newRow("over a neighbour") << "A..BX..C" << 4 << -1 << -1 << 0 << "A.BX...C";
    QTest::newRow("over a neighbour and back takes its hold") << "A..BX..C" << 4 << 0 << -1 << 0 << "A.B.X..C";
    QTest::newRow("both neighbours lose holds") << "A..XB.C" << 3 << 0 << -2 << 1 << "A..X.BC";
    QTest::newRow("from the second frame") << "AX.." << 1 << 2 << 0 << 2 << "A..X";
    QTest::newRow("beyond a neighbour behind") << "AXB." << 1 << 1 << 0 << 1 << "A.XB";
}

void tst_SlideMap::holdsAreDealtOutAnew()
{
    QFETCH(QString, column);
    QFETCH(int, dragged);
    QFETCH(int, offset);
    QFETCH(int, lowest);
    QFETCH(int, highest);
    QFETCH(QString, result);
    const SlideMap map = slid(column, dragged, offset, lowest, highest);
    QCOMPARE(shown(map, column), result);
    QCOMPARE(map.positionOf(dragged), dragged + offset);
    QVERIFY(!map.isIdentity());
}

void tst_SlideMap::badArgumentsLeaveAllInPlace_data()
{
    QTest::addColumn<int>("dragged");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("lowest");
    QTest::addColumn<int>("highest");
    QTest::newRow("the first cell") << 0 << 1 << 0 << 1;
    QTest::newRow("a hold") << 1 << 1 << 0 << 1;
    QTest::newRow("in front of the column") << -1 << 0 << 0 << 1;
    QTest::newRow("behind the column") << 5 << 0 << -1 << 0;
    QTest::newRow("too few holds behind") << 2 << 0 << 0 << 3;
    QTest::newRow("too few holds before") << 2 << 0 << -2 << 0;
    QTest::newRow("above the highest") << 2 << 2 << 0 << 1;
    QTest::newRow("below the lowest") << 2 << -1 << 0 << 1;
    QTest::newRow("a lowest to the right") << 2 << 1 << 1 << 2;
    QTest::newRow("a highest to the left") << 2 << -1 << -1 << -1;
    QTest::newRow("no way at all") << 2 << 0 << 0 << 0;
}

void tst_SlideMap::badArgumentsLeaveAllInPlace()
{
    QFETCH(int, dragged);
    QFETCH(int, offset);
    QFETCH(int, lowest);
    QFETCH(int, highest);
    const QString column = "A.X..";
    const SlideMap map = slid(column, dragged, offset, lowest, highest);
    QVERIFY(map.isIdentity());
    QCOMPARE(shown(map, column), column);
}

void tst_SlideMap::positionOfACellThatIsTakenOutIsNone()
{
    // Of A..BX..C the hold at 2 goes, and the one at 6 stays where X moves in front of it.
    const SlideMap map = slid("A..BX..C", 4, -1, -1, 0);
    QCOMPARE(map.positionOf(1), 1);
    QCOMPARE(map.positionOf(2), -1);
    QCOMPARE(map.positionOf(3), 2);
    QCOMPARE(map.positionOf(4), 3);
    QCOMPARE(map.positionOf(5), 5);
    QCOMPARE(map.positionOf(7), 7);
}

void tst_SlideMap::everyShortColumnIsSlidAsByHand_data()
{
    QTest::addColumn<int>("length");
    for (int length = 2; length <= 8; ++length)
        QTest::addRow("%d cells", length) << length;
}

void tst_SlideMap::everyShortColumnIsSlidAsByHand()
{
    QFETCH(int, length);
    int slides = 0;
    const auto check = [&](const QString &column, int dragged, int offset, int lowest, int highest) {
        const SlideMap map = slid(column, dragged, offset, lowest, highest);
        const std::vector<Cell> before = cellsOf(column);
        const std::vector<Cell> expected = slidByHand(before, dragged, offset, lowest, highest);
        const QString what =
            QStringLiteral("%1 %2: %3 in %4..%5").arg(column).arg(dragged).arg(offset).arg(lowest).arg(highest);
        QCOMPARE(expected.size(), before.size());
        for (int position = 0; position < length; ++position) {
            const ShownCell cell = map.at(position);
            const Cell &wanted = expected.at(position);
            QVERIFY2(cell.isNewHold == (wanted.source < 0), qPrintable(what));
            QVERIFY2(before.at(cell.source).drawing == wanted.drawing, qPrintable(what));
            if (!cell.isNewHold) {
                QVERIFY2(cell.source == wanted.source, qPrintable(what));
                QVERIFY2(map.positionOf(cell.source) == position, qPrintable(what));
            }
        }
        ++slides;
    };
    const QStringList columns = columnsOf(length);
    for (const QString &column : columns) {
        for (int dragged = 1; dragged < length; ++dragged) {
            if (isHold(column, dragged))
                continue;
            const int before = static_cast<int>(column.left(dragged).count('.'));
            const int behind = static_cast<int>(column.mid(dragged).count('.'));
            for (int lowest = -before; lowest <= 0; ++lowest) {
                for (int highest = 0; highest <= behind; ++highest) {
                    for (int offset = lowest; offset <= highest; ++offset)
                        check(column, dragged, offset, lowest, highest);
                }
            }
        }
    }
    QVERIFY(slides >= length - 1);
}

QTEST_APPLESS_MAIN(tst_SlideMap)
#include "tst_slidemap.moc"
