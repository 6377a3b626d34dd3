#include "libui/paper/viewshadow.h"

#include <QImage>
#include <QPainter>
#include <QTest>

namespace {

QImage shadowed(QSize size, const QRect &area, const QRect &rect)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setClipRect(rect);
    UI::paintViewShadow(&painter, rect, area);
    return image;
}

QImage shadowed(QSize size, const QRect &area)
{
    return shadowed(size, area, QRect(QPoint(), size));
}

} // namespace

class tst_ViewShadow : public QObject
{
    Q_OBJECT

private slots:
    void fallsOffFromEveryEdge();
    void isTheSameOnAllSides();
    void cornersJoinTheEdges();
    void liesWithinItsArea();
    void smallAreaIsShadedToItsMiddle();
    void emptyAreaIsLeftAlone();
    void partsAreThoseOfTheWhole();
};

void tst_ViewShadow::fallsOffFromEveryEdge()
{
    const QImage image = shadowed({200, 160}, QRect(0, 0, 200, 160));
    for (int x = 1; x < 100; ++x)
        QVERIFY(qGray(image.pixel(x, 80)) >= qGray(image.pixel(x - 1, 80)));
    QVERIFY(qGray(image.pixel(0, 80)) < 215);
    QCOMPARE(qGray(image.pixel(40, 80)), 255);
}

void tst_ViewShadow::isTheSameOnAllSides()
{
    const QImage image = shadowed({200, 160}, QRect(0, 0, 200, 160));
    for (int depth = 0; depth < 60; ++depth) {
        const int tone = qGray(image.pixel(depth, 80));
        QVERIFY(std::abs(qGray(image.pixel(199 - depth, 80)) - tone) <= 1);
        QVERIFY(std::abs(qGray(image.pixel(100, depth)) - tone) <= 1);
        QVERIFY(std::abs(qGray(image.pixel(100, 159 - depth)) - tone) <= 1);
    }
}

void tst_ViewShadow::cornersJoinTheEdges()
{
    const QImage image = shadowed({200, 160}, QRect(0, 0, 200, 160));
    // Along a line at any depth there is no step where a corner ends.
    for (const int depth : {0, 5, 16, 25}) {
        for (int x = 28; x < 36; ++x)
            QVERIFY(std::abs(qGray(image.pixel(x, depth)) - qGray(image.pixel(x + 1, depth))) <= 3);
    }
}

void tst_ViewShadow::liesWithinItsArea()
{
    const QImage image = shadowed({200, 160}, QRect(20, 40, 150, 100));
    for (const QPoint outside : {QPoint(19, 90), QPoint(170, 90), QPoint(100, 39), QPoint(100, 140), QPoint(10, 10)})
        QCOMPARE(image.pixelColor(outside), QColor(Qt::white));
    for (const QPoint inside : {QPoint(20, 90), QPoint(169, 90), QPoint(100, 40), QPoint(100, 139)})
        QVERIFY(qGray(image.pixel(inside)) < 215);
}

void tst_ViewShadow::smallAreaIsShadedToItsMiddle()
{
    // Half of the shorter side is 10.
    const QImage image = shadowed({100, 20}, QRect(0, 0, 100, 20));
    QVERIFY(qGray(image.pixel(50, 0)) < 215);
    QVERIFY(qGray(image.pixel(50, 9)) >= 250);
    QVERIFY(qGray(image.pixel(12, 10)) >= 250);
}

void tst_ViewShadow::emptyAreaIsLeftAlone()
{
    QImage white({50, 50}, QImage::Format_RGB32);
    white.fill(Qt::white);
    QCOMPARE(shadowed({50, 50}, QRect()), white);
    QCOMPARE(shadowed({50, 50}, QRect(10, 10, 20, 0)), white);
}

void tst_ViewShadow::partsAreThoseOfTheWhole()
{
    const QRect area(0, 0, 200, 160);
    const QImage whole = shadowed({200, 160}, area);
    for (const QRect part :
         {QRect(5, 5, 40, 13), QRect(80, 0, 17, 160), QRect(190, 150, 10, 10), QRect(60, 60, 9, 9)}) {
        const QImage image = shadowed({200, 160}, area, part);
        QCOMPARE(image.copy(part), whole.copy(part));
        QCOMPARE(image.pixelColor(part.right() + 1 < 200 ? part.right() + 1 : part.left() - 1, part.top()),
                 QColor(Qt::white));
    }
}

QTEST_MAIN(tst_ViewShadow)
#include "tst_viewshadow.moc"
