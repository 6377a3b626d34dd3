#include "libui/paper/overlaypainter.h"

#include "libui/paper/gridpaths.h"
#include "libui/paper/paperbrushes.h"
#include "libui/paper/paperpictures.h"
#include "libui/uistartup.h"
#include "paintedview.h"

#include <QTest>

#include <cmath>

using TestSupport::difference;
using TestSupport::PaintedView;
using Button = UI::PaperOverlay::Button;
using Symbol = UI::PaperOverlay::Symbol;

namespace {

constexpr QColor lassoColor(77, 163, 77);

/// The pixels that differ, as a rectangle.
QRect changed(const QImage &a, const QImage &b)
{
    QRect rect;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (a.pixel(x, y) != b.pixel(x, y))
                rect |= QRect(x, y, 1, 1);
        }
    }
    return rect;
}

} // namespace

class tst_OverlayPainter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void gridLinesLieWhereTheSheetHasThem();
    void levelGridLinesAreOnePixelWideAtAnyZoom_data();
    void levelGridLinesAreOnePixelWideAtAnyZoom();
    void gridTurnsWithTheView();
    void gridCanBeSeenOnEveryPaper_data();
    void gridCanBeSeenOnEveryPaper();
    void gridLeavesDrawingsRecognisable();
    void gridLiesOverTheDrawing();

    void symbolIsAtThePressPosition_data();
    void symbolIsAtThePressPosition();
    void symbolFollowsTheInterfaceScale();
    void symbolLiesOverTheGrid();
    void noSymbolChangesNothing();

    void buttonFillsItsRectangle_data();
    void buttonFillsItsRectangle();
    void statesOfTheButtonLookDifferent();

    void lassoIsADashedGreenLine();
    void lassoLiesOnTop();
    void lassoStaysWithinItsBounds();

    void partsAreThoseOfTheWhole_data();
    void partsAreThoseOfTheWhole();
    void picturesAreSharpOnDenseScreens();
};

void tst_OverlayPainter::initTestCase()
{
    UI::startUp();
}

void tst_OverlayPainter::gridLinesLieWhereTheSheetHasThem()
{
    PaintedView stage; // the sheet covers (50, 50) to (450, 350)
    const QImage without = stage.painted();
    stage.overlay.grid = UI::gridPath(MR::GridType::Thirds, stage.view.paperRect());
    const QImage with = stage.painted();
    // Columns at 400 / 3 and 800 / 3, rows at 100 and 200.
    for (int y = 60; y < 340; ++y) {
        for (int x = 60; x < 440; ++x) {
            const bool isOnLine = x == 50 + 133 || x == 50 + 266 || y == 50 + 100 || y == 50 + 200;
            QCOMPARE(with.pixel(x, y) != without.pixel(x, y), isOnLine);
        }
    }
}

void tst_OverlayPainter::levelGridLinesAreOnePixelWideAtAnyZoom_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("ratio");
    for (const double level : {0.31, 1.0, 1.7, 6.3}) {
        for (const double ratio : {1.0, 2.0})
            QTest::addRow("%g at ratio %g", level, ratio) << level << ratio;
    }
}

void tst_OverlayPainter::levelGridLinesAreOnePixelWideAtAnyZoom()
{
    QFETCH(double, level);
    QFETCH(double, ratio);
    PaintedView stage;
    stage.view.setDeviceRatio(ratio);
    stage.view.setZoomLevel(level);
    const QImage without = stage.painted();
    stage.overlay.grid.moveTo(0, 157);
    stage.overlay.grid.lineTo(400, 157);
    stage.overlay.grid.moveTo(211, 0);
    stage.overlay.grid.lineTo(211, 300);
    const QImage image = stage.painted();
    const QPointF cross = stage.view.paperToWidget().map(QPointF(211, 157)) * ratio;
    const QPoint pixel(int(std::floor(cross.x())), int(std::floor(cross.y())));
    const auto isLine = [&](int x, int y) { return image.pixel(x, y) != without.pixel(x, y); };
    for (int step = -4; step <= 4; ++step) {
        QCOMPARE(isLine(pixel.x() + step, pixel.y() + 12), step == 0);
        QCOMPARE(isLine(pixel.x() + 12, pixel.y() + step), step == 0);
    }
}

void tst_OverlayPainter::gridTurnsWithTheView()
{
    PaintedView stage;
    stage.view.rotateTo(30.0);
    const QImage without = stage.painted();
    stage.overlay.grid.moveTo(0, 100);
    stage.overlay.grid.lineTo(400, 100);
    const QImage with = stage.painted();
    const auto pixelAt = [&](double x, double y) {
        const QPointF at = stage.view.paperToWidget().map(QPointF(x, y));
        return QPoint(int(std::floor(at.x())), int(std::floor(at.y())));
    };
    for (const double along : {80.0, 200.0, 320.0}) {
        const QPoint on = pixelAt(along, 100);
        const QPoint beside = pixelAt(along, 104);
        QVERIFY(with.pixel(on) != without.pixel(on));
        QCOMPARE(with.pixel(beside), without.pixel(beside));
    }
}

void tst_OverlayPainter::gridCanBeSeenOnEveryPaper_data()
{
    QTest::addColumn<int>("type");
    for (int type = 0; type < 8; ++type)
        QTest::addRow("%d", type) << type;
}

void tst_OverlayPainter::gridCanBeSeenOnEveryPaper()
{
    QFETCH(int, type);
    PaintedView stage;
    stage.paper = UI::paperBrush(static_cast<MR::TransparencyType>(type));
    const QImage without = stage.painted();
    stage.overlay.grid.moveTo(200, 0);
    stage.overlay.grid.lineTo(200, 300);
    const QImage with = stage.painted();
    for (int y = 60; y < 340; ++y)
        QVERIFY(difference(with.pixel(250, y), without.pixel(250, y)) >= 25);
}

void tst_OverlayPainter::gridLeavesDrawingsRecognisable()
{
    PaintedView stage;
    stage.ink(QRect(100, 100, 200, 100));
    const QImage without = stage.painted();
    stage.overlay.grid.moveTo(200, 0);
    stage.overlay.grid.lineTo(200, 300);
    const QImage with = stage.painted();
    // On the ink the line is nearer to the ink than to the paper.
    const QRgb line = with.pixel(250, 200);
    QVERIFY(difference(line, without.pixel(250, 200)) < difference(line, TestSupport::paperColor.rgb()));
}

void tst_OverlayPainter::gridLiesOverTheDrawing()
{
    PaintedView stage;
    stage.ink(QRect(100, 100, 200, 100));
    const QImage without = stage.painted();
    stage.overlay.grid.moveTo(200, 0);
    stage.overlay.grid.lineTo(200, 300);
    QVERIFY(stage.painted().pixel(250, 200) != without.pixel(250, 200));
}

void tst_OverlayPainter::symbolIsAtThePressPosition_data()
{
    QTest::addColumn<Symbol>("symbol");
    QTest::addColumn<QPointF>("position");
    QTest::addRow("pan") << Symbol::Pan << QPointF(150, 170);
    QTest::addRow("zoom") << Symbol::Zoom << QPointF(300, 90);
    QTest::addRow("rotate") << Symbol::Rotate << QPointF(250, 300);
    QTest::addRow("off pegs, pan") << Symbol::OffPegsPan << QPointF(120, 250);
    QTest::addRow("off pegs, rotate") << Symbol::OffPegsRotate << QPointF(390, 200);
}

void tst_OverlayPainter::symbolIsAtThePressPosition()
{
    QFETCH(Symbol, symbol);
    QFETCH(QPointF, position);
    PaintedView stage;
    const QImage without = stage.painted();
    stage.overlay.symbol = symbol;
    stage.overlay.symbolPosition = position;
    const QRect touched = changed(stage.painted(), without);
    QVERIFY(!touched.isEmpty());
    QVERIFY(std::abs(QRectF(touched).center().x() - position.x()) <= 3.0);
    QVERIFY(std::abs(QRectF(touched).center().y() - position.y()) <= 3.0);
    QVERIFY(touched.width() > 40 && touched.width() <= 64);
    QVERIFY(UI::symbolBounds(stage.overlay).contains(touched));
}

void tst_OverlayPainter::symbolFollowsTheInterfaceScale()
{
    PaintedView stage;
    const QImage without = stage.painted();
    stage.overlay.symbol = Symbol::Pan;
    stage.overlay.symbolPosition = {250, 200};
    const QRect plain = changed(stage.painted(), without);
    stage.overlay.scale = 1.5;
    const QRect large = changed(stage.painted(), without);
    QVERIFY(std::abs(large.width() - 1.5 * plain.width()) <= 2.0);
    QVERIFY(std::abs(large.height() - 1.5 * plain.height()) <= 2.0);
}

void tst_OverlayPainter::symbolLiesOverTheGrid()
{
    PaintedView stage;
    stage.overlay.symbol = Symbol::Pan;
    stage.overlay.symbolPosition = {250, 200};
    const QImage without = stage.painted();
    stage.overlay.grid.moveTo(200, 0);
    stage.overlay.grid.lineTo(200, 300);
    const QImage with = stage.painted();
    // Somewhere the symbol hides the line, which can be seen above and below it.
    int hidden = 0;
    for (int y = 172; y < 228; ++y)
        hidden += with.pixel(250, y) == without.pixel(250, y) ? 1 : 0;
    QVERIFY(hidden > 0);
    QVERIFY(with.pixel(250, 150) != without.pixel(250, 150));
}

void tst_OverlayPainter::noSymbolChangesNothing()
{
    PaintedView stage;
    const QImage without = stage.painted();
    stage.overlay.symbolPosition = {250, 200};
    stage.overlay.buttonRect = QRectF(100, 100, 96, 32);
    QCOMPARE(stage.painted(), without);
}

void tst_OverlayPainter::buttonFillsItsRectangle_data()
{
    QTest::addColumn<Button>("button");
    QTest::addColumn<QRectF>("rect");
    QTest::addRow("normal") << Button::Normal << QRectF(200, 300, 96, 32);
    QTest::addRow("hover") << Button::Hover << QRectF(200, 300, 96, 32);
    QTest::addRow("click, large") << Button::Click << QRectF(150, 280, 144, 48);
}

void tst_OverlayPainter::buttonFillsItsRectangle()
{
    QFETCH(Button, button);
    QFETCH(QRectF, rect);
    PaintedView stage;
    const QImage without = stage.painted();
    stage.overlay.button = button;
    stage.overlay.buttonRect = rect;
    const QImage with = stage.painted();
    const QRect touched = changed(with, without);
    QVERIFY(rect.toRect().contains(touched));
    QVERIFY(touched.width() >= rect.width() - 6.0);
    QVERIFY(touched.height() >= rect.height() - 6.0);
    QVERIFY(with.pixel(rect.center().toPoint()) != without.pixel(rect.center().toPoint()));
}

void tst_OverlayPainter::statesOfTheButtonLookDifferent()
{
    PaintedView stage;
    stage.overlay.buttonRect = QRectF(200, 300, 96, 32);
    std::vector<QImage> looks;
    for (const Button button : {Button::Hidden, Button::Normal, Button::Hover, Button::Click}) {
        stage.overlay.button = button;
        looks.push_back(stage.painted().copy(200, 300, 96, 32));
    }
    for (size_t i = 0; i < looks.size(); ++i) {
        for (size_t j = 0; j < i; ++j)
            QVERIFY(looks[i] != looks[j]);
    }
}

void tst_OverlayPainter::lassoIsADashedGreenLine()
{
    PaintedView stage;
    stage.overlay.lasso.moveTo(100, 200.5);
    stage.overlay.lasso.lineTo(400, 200.5);
    const QImage image = stage.painted();
    // 0.8 of a pixel at alpha 205 over white; dashes with gaps between.
    const double strength = 0.8 * 205.0 / 255.0;
    const int red = int(std::lround(255.0 + (lassoColor.red() - 255.0) * strength));
    const int green = int(std::lround(255.0 + (lassoColor.green() - 255.0) * strength));
    int dashes = 0;
    int gaps = 0;
    for (int x = 110; x < 390; ++x) {
        const QColor pixel = image.pixelColor(x, 200);
        dashes += std::abs(pixel.red() - red) <= 10 && std::abs(pixel.green() - green) <= 10 ? 1 : 0;
        gaps += pixel.red() > 245 ? 1 : 0;
        QCOMPARE(pixel.red(), pixel.blue());
    }
    QVERIFY2(dashes > 80 && gaps > 20, qPrintable(QStringLiteral("%1 %2").arg(dashes).arg(gaps)));
}

void tst_OverlayPainter::lassoLiesOnTop()
{
    PaintedView stage;
    stage.overlay.symbol = Symbol::Pan;
    stage.overlay.symbolPosition = {250, 200};
    const QImage without = stage.painted();
    stage.overlay.lasso.moveTo(225, 200.5);
    stage.overlay.lasso.lineTo(275, 200.5);
    QVERIFY(changed(stage.painted(), without).width() > 30);
}

void tst_OverlayPainter::lassoStaysWithinItsBounds()
{
    PaintedView stage;
    const QImage without = stage.painted();
    stage.overlay.lasso.moveTo(100, 120);
    stage.overlay.lasso.cubicTo(180, 60, 300, 220, 310, 180);
    stage.overlay.lasso.lineTo(120, 260);
    const QRect touched = changed(stage.painted(), without);
    QVERIFY(UI::lassoBounds(stage.overlay).contains(touched));
    QVERIFY(touched.contains(QRect(101, 121, 18, 138)));
}

void tst_OverlayPainter::partsAreThoseOfTheWhole_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("degrees");
    QTest::addRow("plain") << 1.0 << 0.0;
    QTest::addRow("turned") << 0.9 << 33.0;
    QTest::addRow("large") << 3.3 << 0.0;
}

void tst_OverlayPainter::partsAreThoseOfTheWhole()
{
    QFETCH(double, level);
    QFETCH(double, degrees);
    PaintedView stage;
    stage.view.rotateTo(degrees);
    stage.view.setZoomLevel(level);
    stage.overlay.grid = UI::gridPath(MR::GridType::Renaissance, stage.view.paperRect());
    stage.overlay.symbol = Symbol::Rotate;
    stage.overlay.symbolPosition = {180.4, 160.7};
    stage.overlay.button = Button::Hover;
    stage.overlay.buttonRect = QRectF(202.3, 310.6, 96, 32);
    stage.overlay.lasso.moveTo(100, 120);
    stage.overlay.lasso.cubicTo(180, 60, 300, 220, 310, 180);
    const QImage whole = stage.painted();
    for (const QRect part : {QRect(150, 130, 33, 27), QRect(250, 100, 64, 120), QRect(190, 300, 30, 30),
                             QRect(0, 0, 500, 90), QRect(333, 211, 1, 1)}) {
        const QImage image = stage.painted({part});
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (part.contains(x, y))
                    QVERIFY(difference(image.pixel(x, y), whole.pixel(x, y)) <= 3);
                else
                    QCOMPARE(image.pixelColor(x, y), QColor(Qt::magenta));
            }
        }
    }
}

void tst_OverlayPainter::picturesAreSharpOnDenseScreens()
{
    PaintedView stage;
    stage.overlay.symbol = Symbol::Pan;
    stage.overlay.symbolPosition = {250, 200};
    const QImage plain = stage.painted().copy(218, 168, 64, 64);
    stage.view.setDeviceRatio(2.0);
    const QImage dense = stage.painted().copy(436, 336, 128, 128);
    // Twice the pixels hold more than the plain ones repeated.
    QImage repeated = plain.scaled(128, 128, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    repeated.setDevicePixelRatio(dense.devicePixelRatio());
    int differing = 0;
    for (int y = 0; y < 128; ++y) {
        for (int x = 0; x < 128; ++x)
            differing += difference(dense.pixel(x, y), repeated.pixel(x, y)) > 20 ? 1 : 0;
    }
    QVERIFY(differing > 50);
}

QTEST_MAIN(tst_OverlayPainter)
#include "tst_overlaypainter.moc"
