#include "libmodel/strokes/colortable.h"

#include <QColor>
#include <QtTest>

#include <cmath>

using Model::colorTable;

class tst_ColorTable : public QObject
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

void tst_ColorTable::alphaRisesWithTheEntry()
{
    const QList<QRgb> table = colorTable(Qt::black);
    QCOMPARE(table.size(), 256);
    for (int i = 0; i < 256; ++i)
        QCOMPARE(table[i], qRgba(0, 0, 0, i));
}

void tst_ColorTable::factorIsRounded()
{
    const QList<QRgb> table = colorTable(Qt::black, 0.3);
    for (int i = 0; i < 256; ++i)
        QCOMPARE(qAlpha(table[i]), int(std::floor(i * 0.3 + 0.5)));
}

void tst_ColorTable::colourIsTheSameInAllEntries()
{
    const QColor color(12, 201, 77);
    for (const QRgb entry : colorTable(color))
        QCOMPARE(entry & 0xffffff, color.rgb() & 0xffffff);
}

void tst_ColorTable::hueIsShifted_data()
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

void tst_ColorTable::hueIsShifted()
{
    QFETCH(int, shift);
    QFETCH(QColor, expected);
    QCOMPARE(colorTable(Qt::red, 1.0, shift).last(), expected.rgba());
}

void tst_ColorTable::greyStaysGrey()
{
    QCOMPARE(colorTable(QColor(90, 90, 90), 1.0, 77).last(), qRgba(90, 90, 90, 255));
}

QTEST_APPLESS_MAIN(tst_ColorTable)
#include "tst_colortable.moc"
