#include "libmodel/tools/cursors.h"

#include "libmodel/tools/tipcursors.h"

#include <QGuiApplication>
#include <QImage>
#include <QSvgRenderer>
#include <QTest>

using namespace Model;

class tst_Cursors : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void pictureIsAsLargeAsItsViewBox_data();
    void pictureIsAsLargeAsItsViewBox();
    void picturesAreDecodedOnce();
    void hotSpotIsTheMiddleWithoutAMark();
    void hotSpotComesFromTheMark();
    void missingPointerIsTheArrowAndReportedOnce();
    void rotatedCursorIsTwiceTheViewBox();
    void rotatingByAHalfTurnTurnsThePicture();
    void opacityHalvesStandForTheRange();

    void screenWithPlainCursorsGetsThemPixelByPixel();
    void shapesStayForEveryScreen();
};

void tst_Cursors::initTestCase()
{
    Q_INIT_RESOURCE(model);
    loadCursors();
}

void tst_Cursors::pictureIsAsLargeAsItsViewBox_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"hand", "zoom", "rotate", "lasso", "cutter", "scrub", "drawFixedFaint", "drawFixedOpaque",
                             "eraseFixedFaint", "eraseFixedOpaque", "move", "scale", "scaleRotate", "skewHorizontal",
                             "skewVertical", "squashStretch", "stamp"})
        QTest::newRow(name) << QStringLiteral("pointer-") + QLatin1String(name);
}

void tst_Cursors::pictureIsAsLargeAsItsViewBox()
{
    QFETCH(QString, name);
    QSvgRenderer renderer(QStringLiteral(":/pointers/%1.svg").arg(name));
    QVERIFY(renderer.isValid());
    QCOMPARE(cursorPixmap(name).size(), renderer.viewBox().size());
    QVERIFY(cursorPixmap(name).hasAlphaChannel());
    QCOMPARE(namedCursor(name, QPoint(3, 4)).hotSpot(), QPoint(3, 4));
}

void tst_Cursors::picturesAreDecodedOnce()
{
    const QString name = QStringLiteral("pointer-hand");
    QCOMPARE(cursorPixmap(name).cacheKey(), cursorPixmap(name).cacheKey());
    QCOMPARE(cursorRenderer(name), cursorRenderer(name));
}

void tst_Cursors::hotSpotIsTheMiddleWithoutAMark()
{
    const QString name = QStringLiteral("pointer-move");
    const QSize size = cursorPixmap(name).size();
    QCOMPARE(namedCursor(name).hotSpot(), QPoint(size.width() / 2, size.height() / 2));
}

void tst_Cursors::hotSpotComesFromTheMark()
{
    const QString name = QStringLiteral("pointer-squashStretch");
    const QRectF mark = cursorRenderer(name)->boundsOnElement(QStringLiteral("hotspot"));
    QVERIFY(mark.isValid());
    QVERIFY(mark.contains(namedCursor(name).hotSpot()));
}

void tst_Cursors::missingPointerIsTheArrowAndReportedOnce()
{
    QTest::ignoreMessage(QtWarningMsg, "The pointer \"pointer-none\" is missing");
    QCOMPARE(namedCursor(QStringLiteral("pointer-none"), QPoint(1, 1)).shape(), Qt::ArrowCursor);
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
    QCOMPARE(namedCursor(QStringLiteral("pointer-none")).shape(), Qt::ArrowCursor);
    QCOMPARE(rotatedCursor(QStringLiteral("pointer-none"), 10.0).shape(), Qt::ArrowCursor);
}

void tst_Cursors::rotatedCursorIsTwiceTheViewBox()
{
    const QString name = QStringLiteral("pointer-scaleRotate");
    const QSize viewBox = cursorPixmap(name).size();
    const QCursor cursor = rotatedCursor(name, 30.0);
    QCOMPARE(cursor.pixmap().size(), viewBox * 2);
    QCOMPARE(cursor.pixmap().devicePixelRatio(), 2.0);
    QCOMPARE(cursor.hotSpot(), QPoint(viewBox.width() / 2, viewBox.height() / 2));
}

void tst_Cursors::rotatingByAHalfTurnTurnsThePicture()
{
    const QString name = QStringLiteral("pointer-rotate");
    const QImage upright = rotatedCursor(name, 0.0).pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
    const QImage turned = rotatedCursor(name, 180.0).pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
    QVERIFY(upright != turned);
    const QImage expected = upright.mirrored(true, true);
    qint64 difference = 0;
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x)
            difference += std::abs(qAlpha(expected.pixel(x, y)) - qAlpha(turned.pixel(x, y)));
    }
    // Rounding of the rasteriser only: on average less than two of 255 per pixel.
    QVERIFY(difference < 2 * expected.width() * expected.height());
}

void tst_Cursors::opacityHalvesStandForTheRange()
{
    const auto coverage = [](const QCursor &cursor, bool left) {
        const QImage picture = cursor.pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
        qint64 sum = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width() / 2; ++x)
                sum += qAlpha(picture.pixel(left ? x : picture.width() - 1 - x, y));
        }
        return sum;
    };
    for (const bool erasing : {false, true}) {
        const QCursor none = opacityRangeCursor(0.0, 0.0, erasing);
        const QCursor upper = opacityRangeCursor(0.0, 1.0, erasing);
        const QCursor both = opacityRangeCursor(1.0, 1.0, erasing);
        QCOMPARE(coverage(upper, true), coverage(none, true));
        QVERIFY(coverage(upper, false) > coverage(none, false));
        QVERIFY(coverage(both, true) > coverage(upper, true));
        QCOMPARE(coverage(both, false), coverage(upper, false));
    }
}

void tst_Cursors::screenWithPlainCursorsGetsThemPixelByPixel()
{
    // The tests run on X11, which is such a screen.
    QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
    const QCursor cursor = penTipCursor(10.0, 40.0, 2.0, false);
    QCOMPARE(cursor.pixmap().size(), QSize(188, 188));
    const QCursor plain = cursorForScreen(cursor, 1.0);
    QCOMPARE(plain.pixmap().size(), QSize(94, 94));
    QCOMPARE(plain.pixmap().devicePixelRatio(), 1.0);
    QCOMPARE(plain.hotSpot(), cursor.hotSpot());
    // The hot spot is the pixel in the middle of the ring: the ring is as far to its left as to its right.
    const QImage picture = plain.pixmap().toImage();
    const int y = plain.hotSpot().y() - 20;
    int left = plain.hotSpot().x();
    int right = left;
    while (left > 0 && qAlpha(picture.pixel(left - 5, y)) == 0)
        --left;
    while (right < picture.width() && qAlpha(picture.pixel(right + 5, y)) == 0)
        ++right;
    QCOMPARE(plain.hotSpot().x() - left, right - plain.hotSpot().x());

    const QCursor dense = cursorForScreen(cursor, 2.0);
    QCOMPARE(dense.pixmap().size(), QSize(188, 188));
    QCOMPARE(dense.hotSpot(), cursor.hotSpot() * 2);
}

void tst_Cursors::shapesStayForEveryScreen()
{
    QCOMPARE(cursorForScreen(QCursor(Qt::CrossCursor), 1.5).shape(), Qt::CrossCursor);
}

QTEST_MAIN(tst_Cursors)
#include "tst_cursors.moc"
