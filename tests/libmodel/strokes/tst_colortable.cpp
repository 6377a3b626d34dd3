#include "libmodel/strokes/colortable.h"

#include <QColor>
#include <QtTest>

#include <cmath>

using Model::colorTable;

class TestColorTable : public QObject
{
    Q_OBJECT

private slots:
    void alphaRisesWithTheEntry();
    void factorIsRounded();
    void colourIsTheSameInAllEntries();
    void hueIsShifted_data();
    void hueIsShifted();
    void greyStaysGrey();
};

void TestColorTable::alphaRisesWithTheEntry()
{
    const QList<QRgb> table = colorTable(Qt::black);
    QCOMPARE(table.size(), 256);
    for (int i = 0; i < 256; ++i)
        QCOMPARE(table[i], qRgba(0, 0, 0, i));
}

void TestColorTable::factorIsRounded()
{
    const QList<QRgb> table = colorTable(Qt::black, 0.3);
    for (int i = 0; i < 256; ++i)
        QCOMPARE(qAlpha(table[i]), int(std::floor(i * 0.3 + 0.5)));
}

void TestColorTable::colourIsTheSameInAllEntries()
{
    const QColor color(12, 201, 77);
    for (const QRgb entry : colorTable(color))
        QCOMPARE(entry & 0xffffff, color.rgb() & 0xffffff);
}

void TestColorTable::hueIsShifted_data()
{
    QTest::addColumn<int>("shift");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("a third") << 120 << QColor(0, 255, 0);
    QTest::newRow("back through zero") << -120 << QColor(0, 0, 255);
    QTest::newRow("a turn back") << -360 << QColor(255, 0, 0);
    QTest::newRow("two turns and more back") << -750 << QColor(255, 0, 128);
    QTest::newRow("two turns and more") << 750 << QColor(255, 128, 0);
    QTest::newRow("a turn") << 360 << QColor(255, 0, 0);
}

void TestColorTable::hueIsShifted()
{
    QFETCH(int, shift);
    QFETCH(QColor, expected);
    QCOMPARE(colorTable(Qt::red, 1.0, shift).last(), expected.rgba());
}

void TestColorTable::greyStaysGrey()
{
    QCOMPARE(colorTable(QColor(90, 90, 90), 1.0, 77).last(), qRgba(90, 90, 90, 255));
}

QTEST_APPLESS_MAIN(TestColorTable)
#include "tst_colortable.moc"
