#include "libmodel/strokes/mappedbounds.h"

#include <QtTest>

#include <limits>

using namespace Model;

class tst_MappedBounds : public QObject
{
    Q_OBJECT

private slots:
    void fractionsAreRoundedOutwards();
    void emptyStaysNull();
    void rotatedRectIsEnclosed();
    void hugeNumbersAreClipped();
    void undefinedNumbersGiveNull();
    void rotatedRectMissesWhatItsBoundsHit();
    void rimGrowsWithTheScale();
};

void tst_MappedBounds::fractionsAreRoundedOutwards()
{
    QCOMPARE(mappedBounds(QTransform::fromTranslate(0.25, -0.25), QRect(10, 10, 5, 5)), QRect(10, 9, 6, 6));
}

void tst_MappedBounds::emptyStaysNull()
{
    QVERIFY(mappedBounds(QTransform::fromScale(3, 3), QRect()).isNull());
    QVERIFY(mappedBounds(QTransform::fromScale(0, 3), QRect(0, 0, 4, 4)).isNull());
    QVERIFY(grownByRim(QRect(), 1.0).isNull());
}

void tst_MappedBounds::rotatedRectIsEnclosed()
{
    // A square of 10 on its corner is 10 * sqrt(2) = 14.14 wide and high.
    const QRect bounds = mappedBounds(QTransform().rotate(45), QRect(0, 0, 10, 10));
    QCOMPARE(bounds, QRect(QPoint(-8, 0), QPoint(7, 14)));
}

void tst_MappedBounds::hugeNumbersAreClipped()
{
    const QRect bounds = mappedBounds(QTransform::fromScale(1e30, 1e30), QRect(-1, -1, 2, 2));
    QCOMPARE(bounds.left(), -coordinateLimit);
    QCOMPARE(bounds.width(), 2 * coordinateLimit);
}

void tst_MappedBounds::undefinedNumbersGiveNull()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    QVERIFY(alignedBounds(QRectF(nan, 0, 1, 1)).isNull());
    QVERIFY(alignedBounds(QRectF(0, 0, std::numeric_limits<double>::infinity(), 1)).isNull());
}

void tst_MappedBounds::rotatedRectMissesWhatItsBoundsHit()
{
    const QTransform turned = QTransform().rotate(45);
    const QRect corner(-7, 0, 2, 2);
    QVERIFY(mappedBounds(turned, QRect(0, 0, 10, 10)).intersects(corner));
    QVERIFY(!mappedRectMeets(turned, QRect(0, 0, 10, 10), corner));
    QVERIFY(mappedRectMeets(turned, QRect(0, 0, 10, 10), QRect(-1, 6, 2, 2)));
}

void tst_MappedBounds::rimGrowsWithTheScale()
{
    QCOMPARE(grownByRim(QRect(0, 0, 2, 2), 0.25), QRect(-1, -1, 4, 4));
    QCOMPARE(grownByRim(QRect(0, 0, 2, 2), 1.0), QRect(-1, -1, 4, 4));
    QCOMPARE(grownByRim(QRect(0, 0, 2, 2), 2.5), QRect(-3, -3, 8, 8));
}

QTEST_APPLESS_MAIN(tst_MappedBounds)
#include "tst_mappedbounds.moc"
