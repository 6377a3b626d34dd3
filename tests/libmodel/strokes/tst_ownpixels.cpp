#include "libmodel/strokes/ownpixels.h"

#include <QtTest>

using namespace Model;

class tst_OwnPixels : public QObject
{
    Q_OBJECT

private slots:
    void holdTheMappedBoundsAndTheirRim();
    void originIsEvenOnThePaper();
    void originIsOddOnThePaperWhereRowPairsAre();
    void wholePixelsMoveNothingButTheOrigin_data();
    void wholePixelsMoveNothingButTheOrigin();
    void nothingHasNoPixels();
    void endlessTransformsHaveNoPixels();
};

void tst_OwnPixels::holdTheMappedBoundsAndTheirRim()
{
    const OwnPixels own(QRect(10, 20, 30, 40), QTransform::fromScale(2, 2), 2.0);
    // Mapped: 20 to 80 and 40 to 120, with a rim of 2.
    QCOMPARE(own.bounds.translated(own.origin), QRect(QPoint(18, 38), QPoint(81, 121)));
    QCOMPARE(own.toOwn.map(QPointF(10, 20)), QPointF(20, 40) - own.origin);
    QVERIFY(own.bounds.left() >= 0 && own.bounds.left() <= 1);
    QVERIFY(own.bounds.top() >= 0 && own.bounds.top() <= 1);
}

void tst_OwnPixels::originIsEvenOnThePaper()
{
    for (int shift = 0; shift < 4; ++shift) {
        const OwnPixels own(QRect(11 + shift, 20 + shift, 5, 5), {}, 1.0);
        QCOMPARE(own.origin.x() % 2, 0);
        QCOMPARE(own.origin.y() % 2, 0);
        const OwnPixels moved(QRect(11, 20, 5, 5), QTransform::fromTranslate(shift, shift), 1.0);
        QCOMPARE((moved.origin.x() - shift) % 2, 0);
    }
}

void tst_OwnPixels::originIsOddOnThePaperWhereRowPairsAre()
{
    for (int shift = 0; shift < 4; ++shift) {
        const OwnPixels own(QRect(11, 20 + shift, 5, 5), {}, 1.0, true);
        QCOMPARE(own.origin.x() % 2, 0);
        QCOMPARE(own.origin.y() % 2, 1);
    }
}

void tst_OwnPixels::wholePixelsMoveNothingButTheOrigin_data()
{
    QTest::addColumn<QTransform>("transform");
    QTest::newRow("none") << QTransform();
    QTest::newRow("moved") << QTransform::fromTranslate(0.1, -1000.7);
    QTest::newRow("turned") << QTransform().translate(700.3, 20.9).rotate(31);
    QTest::newRow("scaled") << QTransform(1.0 / 3.0, 0, 0, 0.7, 12.34567, -98.7654321);
    QTest::newRow("mirrored") << QTransform(-1.2, 0.1, 0.2, 0.9, 801.2, 3.3);
}

void tst_OwnPixels::wholePixelsMoveNothingButTheOrigin()
{
    QFETCH(QTransform, transform);
    const QRect bounds(-17, 33, 210, 95);
    const OwnPixels own(bounds, transform, 1.0);
    for (const QPoint shift : {QPoint(1, 0), QPoint(-3, 7), QPoint(1920, -1080), QPoint(100'001, 65'537)}) {
        const OwnPixels moved(bounds, transform * QTransform::fromTranslate(shift.x(), shift.y()), 1.0);
        QCOMPARE(moved.origin, own.origin + shift);
        QCOMPARE(moved.bounds, own.bounds);
        // Not nearly, but to the last bit.
        QVERIFY(moved.toOwn.dx() == own.toOwn.dx() && moved.toOwn.dy() == own.toOwn.dy());
        QVERIFY(moved.toOwn.m11() == own.toOwn.m11() && moved.toOwn.m21() == own.toOwn.m21());
    }
}

void tst_OwnPixels::nothingHasNoPixels()
{
    QVERIFY(OwnPixels(QRect(), QTransform::fromScale(3, 3), 1.0).bounds.isNull());
}

void tst_OwnPixels::endlessTransformsHaveNoPixels()
{
    QVERIFY(OwnPixels(QRect(0, 0, 10, 10), QTransform::fromTranslate(qInf(), 0), 1.0).bounds.isEmpty());
    QVERIFY(OwnPixels(QRect(0, 0, 10, 10), QTransform::fromScale(qQNaN(), 1), 1.0).bounds.isEmpty());
    QVERIFY(OwnPixels(QRect(0, 0, 10, 10), QTransform::fromTranslate(1.0e300, 1.0e300), 1.0).bounds.isEmpty());
}

QTEST_APPLESS_MAIN(tst_OwnPixels)
#include "tst_ownpixels.moc"
