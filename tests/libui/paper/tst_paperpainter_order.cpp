// What lies over what, and what the sheet is made of.

#include "libmodel/strokes/floatingselection.h"
#include "libui/paper/floatingselectionview.h"
#include "libui/paper/gridpaths.h"
#include "libui/paper/paperbrushes.h"
#include "libui/style/colors.h"
#include "libui/uistartup.h"
#include "paintedview.h"

#include <QTest>

#include <array>
#include <cmath>

using TestSupport::deskColor;
using TestSupport::difference;
using TestSupport::PaintedView;
using TestSupport::paperColor;

namespace {

constexpr QColor layerColor(40, 97, 184);

std::unique_ptr<Model::Stroke> block(QRect rect)
{
    QImage coverage(rect.size(), QImage::Format_Alpha8);
    coverage.fill(255);
    return std::make_unique<Model::BitmapStroke>(coverage, rect);
}

/// The two tones of the sheet around its upper left corner.
std::array<QRgb, 2> tonesOf(const QImage &image, QPoint corner, int square)
{
    const int half = square / 2;
    return {image.pixel(corner + QPoint(half, half)), image.pixel(corner + QPoint(square + half, half))};
}

} // namespace

class tst_PaperPainterOrder : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void withoutASceneOnlyTheRectangleIsWhite();
    void deskLiesOverWhatReachesBeyondTheSheet();
    void outlineLiesOverTheDesk();
    void diagonalsLieOverTheDrawing();
    void shadowLiesOverTheDrawing();
    void gridLiesOverTheShadow();
    void symbolLiesOverTheShadow();
    void floatingSelectionLiesOverSymbolAndGrid();
    void lassoLiesOverTheFloatingSelection();
    void nullSelectionChangesNothing();
    void shadowIsOnTheUsablePart();

    void transparencyTypes_data();
    void transparencyTypes();
    void linenIsAsFineAsTheScreen();
    void checkersMoveWithTheSheet();
    void checkersKeepTheirSizeAtAnyZoom();
    void positionWithoutACellHidesTheCheckers();
    void checkersOffPegsMoveWithTheFrame();
    void painterComesBackAsItWas();
    void partsLeaveNoSeamsBetweenPixels_data();
    void partsLeaveNoSeamsBetweenPixels();
    void drawingIsCrispInAWidgetBetweenPixels_data();
    void drawingIsCrispInAWidgetBetweenPixels();
};

void tst_PaperPainterOrder::initTestCase()
{
    UI::startUp();
}

void tst_PaperPainterOrder::withoutASceneOnlyTheRectangleIsWhite()
{
    PaintedView stage;
    stage.hasScene = false;
    const QRect part(30, 40, 50, 60);
    const QImage image = stage.painted({part});
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            QCOMPARE(image.pixelColor(x, y), part.contains(x, y) ? QColor(Qt::white) : QColor(Qt::magenta));
    }
}

void tst_PaperPainterOrder::deskLiesOverWhatReachesBeyondTheSheet()
{
    PaintedView stage;
    stage.ink(QRect(0, 100, 400, 50)); // from edge to edge
    stage.view.rotateTo(20.0);
    const QImage image = stage.painted();
    const QTransform toWidget = stage.view.paperToWidget();
    QCOMPARE(image.pixelColor(toWidget.map(QPointF(4, 125)).toPoint()), layerColor);
    QCOMPARE(image.pixelColor(toWidget.map(QPointF(-4, 125)).toPoint()), deskColor);
    QCOMPARE(image.pixelColor(toWidget.map(QPointF(404, 125)).toPoint()), deskColor);
}

void tst_PaperPainterOrder::outlineLiesOverTheDesk()
{
    PaintedView stage;
    const QImage image = stage.painted();
    // The sheet covers (50, 50) to (450, 350): one line of pixels within it, the other one beyond.
    for (const int y : {100, 200, 300}) {
        QCOMPARE(image.pixelColor(50, y), UI::Colors::hairline);
        QCOMPARE(image.pixelColor(450, y), UI::Colors::hairline);
    }
}

void tst_PaperPainterOrder::diagonalsLieOverTheDrawing()
{
    PaintedView stage;
    stage.ink(QRect(80, 60, 40, 30)); // the falling diagonal goes through its middle
    const QImage image = stage.painted();
    int touched = 0;
    for (int y = 115; y < 135; ++y)
        touched += image.pixelColor(150, y) != layerColor ? 1 : 0;
    QVERIFY(touched >= 1 && touched <= 4);
}

void tst_PaperPainterOrder::shadowLiesOverTheDrawing()
{
    PaintedView stage({300, 200});
    stage.ink(QRect(0, 0, 400, 300));
    const QImage image = stage.painted();
    QCOMPARE(image.pixelColor(140, 90), layerColor);
    QVERIFY(image.pixelColor(0, 90).blue() < layerColor.blue() - 20);
    QVERIFY(image.pixelColor(140, 199).blue() < layerColor.blue() - 20);
}

void tst_PaperPainterOrder::gridLiesOverTheShadow()
{
    // One level line through the shadow: what it adds is the same part of what lies beneath, shadow or not.
    PaintedView stage({300, 200}); // shows (50, 50) to (350, 250) of the sheet
    const QImage without = stage.painted();
    stage.overlay.grid.moveTo(0, 170);
    stage.overlay.grid.lineTo(400, 170);
    const QImage with = stage.painted();
    const auto opacityAt = [&](int x) {
        // Of red, which the grid's blue has least of: seen = (1 - a) * beneath + a * line, and the line's red is 66.
        const double beneath = qRed(without.pixel(x, 120));
        return (beneath - qRed(with.pixel(x, 120))) / (beneath - 66.0);
    };
    const double inTheOpen = opacityAt(120);
    QVERIFY(inTheOpen > 0.2);
    for (const int x : {0, 1, 4, 10, 295, 299})
        QVERIFY(std::abs(opacityAt(x) - inTheOpen) < 0.03);
}

void tst_PaperPainterOrder::symbolLiesOverTheShadow()
{
    PaintedView stage;
    stage.overlay.symbol = UI::PaperOverlay::Symbol::Pan;
    stage.overlay.symbolPosition = {32, 200};
    const QImage atTheEdge = stage.painted();
    // Its sign is opaque: as light over the shadow as elsewhere.
    stage.overlay.symbolPosition = {132, 200};
    const QImage inTheOpen = stage.painted();
    int lightest = 0;
    int lightestInTheOpen = 0;
    for (int x = 2; x < 16; ++x) {
        for (int y = 170; y < 230; ++y) {
            lightest = std::max(lightest, qGray(atTheEdge.pixel(x, y)));
            lightestInTheOpen = std::max(lightestInTheOpen, qGray(inTheOpen.pixel(x + 100, y)));
        }
    }
    QVERIFY(lightest >= lightestInTheOpen - 25);
}

void tst_PaperPainterOrder::floatingSelectionLiesOverSymbolAndGrid()
{
    PaintedView stage;
    stage.overlay.symbol = UI::PaperOverlay::Symbol::Pan;
    stage.overlay.symbolPosition = {250, 200};
    stage.overlay.grid = UI::gridPath(MR::GridType::FieldGuide, stage.view.paperRect());
    UI::FloatingSelectionView floating;
    floating.setSelection(Model::FloatingSelection(block(QRect(120, 80, 160, 140)), {400, 300}));
    floating.rebuildHandles(stage.view, 1.0);
    stage.overlay.floating = &floating;
    const QImage image = stage.painted();
    // Clear of its pivot in the middle and its edges: all the active layer's colour, whatever lies beneath.
    for (int y = 150; y < 180; ++y) {
        for (int x = 190; x < 235; ++x)
            QVERIFY(difference(image.pixel(x, y), layerColor.rgb()) <= 1);
    }
}

void tst_PaperPainterOrder::lassoLiesOverTheFloatingSelection()
{
    PaintedView stage;
    UI::FloatingSelectionView floating;
    floating.setSelection(Model::FloatingSelection(block(QRect(120, 80, 160, 140)), {400, 300}));
    floating.rebuildHandles(stage.view, 1.0);
    stage.overlay.floating = &floating;
    const QImage without = stage.painted();
    stage.overlay.lasso.moveTo(190, 165.5);
    stage.overlay.lasso.lineTo(235, 165.5);
    const QImage with = stage.painted();
    int touched = 0;
    for (int x = 190; x < 235; ++x)
        touched += with.pixel(x, 165) != without.pixel(x, 165) ? 1 : 0;
    QVERIFY(touched > 20);
}

void tst_PaperPainterOrder::nullSelectionChangesNothing()
{
    PaintedView stage;
    const QImage without = stage.painted();
    const UI::FloatingSelectionView none;
    stage.overlay.floating = &none;
    QCOMPARE(stage.painted(), without);
}

void tst_PaperPainterOrder::shadowIsOnTheUsablePart()
{
    PaintedView stage({900, 700}, {1000, 800});
    stage.view.setUsableRect(QRect(0, 60, 900, 640));
    const QImage image = stage.painted();
    // Above it is paper as everywhere, for what covers it may be seen through.
    QCOMPARE(image.pixelColor(450, 30), paperColor);
    QVERIFY(qGray(image.pixel(450, 60)) < 215);
}

void tst_PaperPainterOrder::transparencyTypes_data()
{
    QTest::addColumn<MR::TransparencyType>("type");
    QTest::addColumn<int>("square");
    QTest::addColumn<bool>("dark");
    using enum MR::TransparencyType;
    QTest::addRow("small checkers, light") << TransparencySmallCheckersLight << 8 << false;
    QTest::addRow("small checkers, dark") << TransparencySmallCheckersDark << 8 << true;
    QTest::addRow("large checkers, light") << TransparencyLargeCheckersLight << 20 << false;
    QTest::addRow("large checkers, dark") << TransparencyLargeCheckersDark << 20 << true;
    QTest::addRow("white") << TransparencyWhite << 0 << false;
    QTest::addRow("light grey") << TransparencyLightGrey << 0 << false;
    QTest::addRow("dark grey") << TransparencyDarkGrey << 0 << true;
    QTest::addRow("black") << TransparencyBlack << 0 << true;
}

void tst_PaperPainterOrder::transparencyTypes()
{
    QFETCH(MR::TransparencyType, type);
    QFETCH(int, square);
    QFETCH(bool, dark);
    PaintedView stage;
    stage.paper = UI::paperBrush(type);
    const QImage image = stage.painted();
    // Along the top of the sheet, clear of its outline and its diagonals.
    std::vector<int> turns;
    for (int x = 201; x < 300; ++x) {
        QCOMPARE(qGray(image.pixel(x, 56)) < 128, dark);
        if (image.pixel(x, 56) != image.pixel(x - 1, 56))
            turns.push_back(x - 50);
    }
    QCOMPARE(turns.empty(), square == 0);
    for (const int turn : turns)
        QCOMPARE(turn % square, 0);
    if (square > 0) {
        QCOMPARE(int(turns.size()), (249 / square) - (150 / square));
        // 5 % lighter and 5 % darker than one base.
        const auto [first, second] = tonesOf(image, {50 + 4 * square, 50}, square);
        const double ratio = QColor(second).valueF() / QColor(first).valueF();
        QVERIFY(std::abs(ratio - 1.05 * 1.05) < 0.02);
    }
}

void tst_PaperPainterOrder::linenIsAsFineAsTheScreen()
{
    // A weave of one pixel dark, one light.
    QImage weave(2, 2, QImage::Format_RGB32);
    weave.fill(QColor(90, 90, 90));
    weave.setPixelColor(1, 0, QColor(140, 140, 140));
    weave.setPixelColor(1, 1, QColor(140, 140, 140));
    for (const double ratio : {1.0, 2.0}) {
        PaintedView stage({400, 300}, {60, 40});
        stage.desk = QBrush(weave);
        stage.view.setDeviceRatio(ratio);
        stage.view.reset();
        const QImage image = stage.painted();
        const int y = int(60 * ratio);
        for (int x = int(60 * ratio); x < int(100 * ratio); ++x)
            QCOMPARE(difference(image.pixel(x, y), image.pixel(x + 1, y)), 50);
    }
}

void tst_PaperPainterOrder::checkersMoveWithTheSheet()
{
    PaintedView stage;
    stage.paper = UI::paperBrush(MR::TransparencyType::TransparencyLargeCheckersLight);
    const QImage before = stage.painted();
    stage.view.panTo({0, 0}, {13, 7});
    const QImage after = stage.painted();
    QCOMPARE(after.copy(150, 100, 100, 60), before.copy(137, 93, 100, 60));
}

void tst_PaperPainterOrder::checkersKeepTheirSizeAtAnyZoom()
{
    PaintedView stage;
    stage.paper = UI::paperBrush(MR::TransparencyType::TransparencyLargeCheckersLight);
    for (const double level : {0.7, 3.0}) {
        stage.view.setZoomLevel(level);
        const QImage image = stage.painted();
        int turns = 0;
        for (int x = 151; x <= 351; ++x)
            turns += difference(image.pixel(x, 290), image.pixel(x - 1, 290)) > 10 ? 1 : 0;
        QVERIFY2(turns >= 9 && turns <= 11, qPrintable(QString::number(turns)));
    }
}

void tst_PaperPainterOrder::positionWithoutACellHidesTheCheckers()
{
    PaintedView stage;
    stage.paper = UI::paperBrush(MR::TransparencyType::TransparencyLargeCheckersDark);
    stage.scene.setActiveFrameAndLayer(2, 0, Model::Scene::AllowFrameAfterLast);
    const QImage image = stage.painted();
    for (int x = 150; x < 350; ++x)
        QCOMPARE(image.pixelColor(x, 80), QColor(221, 216, 213));
}

void tst_PaperPainterOrder::checkersOffPegsMoveWithTheFrame()
{
    PaintedView stage;
    stage.paper = UI::paperBrush(MR::TransparencyType::TransparencyLargeCheckersLight);
    const QImage before = stage.painted();
    stage.view.setOffPegs(QTransform::fromTranslate(-33, -11));
    const QImage after = stage.painted();
    QCOMPARE(after.copy(250, 81, 90, 30), before.copy(250 - 33, 70, 90, 30));
}

void tst_PaperPainterOrder::painterComesBackAsItWas()
{
    PaintedView stage;
    stage.overlay.grid = UI::gridPath(MR::GridType::Safety, stage.view.paperRect());
    stage.overlay.lasso.addEllipse(100, 100, 80, 60);
    stage.view.setOffPegs(QTransform::fromTranslate(-33, -11));
    QImage image(500, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setPen(QPen(Qt::red, 3.0));
    painter.setBrush(Qt::green);
    painter.translate(5, 6);
    const UI::PaperPainter::Look look{stage.paper, stage.desk};
    UI::PaperPainter(stage.view, &stage.scene, look, stage.overlay).paint(&painter, QRect(0, 0, 300, 300));
    QCOMPARE(painter.pen(), QPen(Qt::red, 3.0));
    QCOMPARE(painter.brush(), QBrush(Qt::green));
    QCOMPARE(painter.transform(), QTransform::fromTranslate(5, 6));
    QVERIFY(!painter.hasClipping());
    QVERIFY(!painter.testRenderHint(QPainter::Antialiasing));
}

void tst_PaperPainterOrder::partsLeaveNoSeamsBetweenPixels_data()
{
    QTest::addColumn<double>("ratio");
    QTest::addColumn<double>("level");
    for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
        for (const double level : {0.4, 1.0, 1.7})
            QTest::addRow("ratio %g, level %g", ratio, level) << ratio << level;
    }
}

void tst_PaperPainterOrder::partsLeaveNoSeamsBetweenPixels()
{
    QFETCH(double, ratio);
    QFETCH(double, level);
    PaintedView stage({400, 300});
    stage.view.setDeviceRatio(ratio);
    stage.view.setZoomLevel(level);
    stage.overlay.grid = UI::gridPath(MR::GridType::Thirds, stage.view.paperRect());
    stage.overlay.symbol = UI::PaperOverlay::Symbol::Zoom;
    stage.overlay.symbolPosition = {151, 133};
    stage.ink(QRect(100, 80, 170, 90));
    const QImage whole = stage.painted();
    // Of sides that no such ratio makes whole pixels of.
    std::vector<QRect> parts;
    for (int y = 0; y < 300; y += 27) {
        for (int x = 0; x < 400; x += 33)
            parts.push_back(QRect(x, y, 33, 27) & stage.widgetRect());
    }
    const QImage pieced = stage.painted(parts);
    QVERIFY(TestSupport::largestDifference(pieced, whole, whole.rect()) <= 4);
}

void tst_PaperPainterOrder::drawingIsCrispInAWidgetBetweenPixels_data()
{
    QTest::addColumn<bool>("mirrored");
    QTest::addColumn<double>("degrees");
    QTest::addRow("plain") << false << 0.0;
    QTest::addRow("mirrored") << true << 0.0;
    QTest::addRow("upside down") << false << 180.0;
}

void tst_PaperPainterOrder::drawingIsCrispInAWidgetBetweenPixels()
{
    QFETCH(bool, mirrored);
    QFETCH(double, degrees);
    // A widget at (5, 3) of its window, at one and a half pixels to a logical one, 100 %.
    PaintedView stage({400, 300});
    stage.view.setDeviceRatio(1.5);
    stage.view.reset();
    stage.view.setMirrored(mirrored);
    stage.view.rotateTo(degrees);
    for (int x = 100; x < 300; x += 2)
        stage.ink(QRect(x, 100, 1, 100));
    QImage window(700, 500, QImage::Format_RGB32);
    window.setDevicePixelRatio(1.5);
    window.fill(Qt::magenta);
    QPainter painter(&window);
    painter.translate(5, 3);
    const UI::PaperPainter::Look look{stage.paper, stage.desk};
    UI::PaperPainter(stage.view, &stage.scene, look, stage.overlay).paint(&painter, QRect(0, 0, 400, 300));
    painter.end();
    const QPointF middle = (stage.view.paperToWidget().map(QPointF(200, 180)) + QPointF(5, 3)) * 1.5;
    for (int x = int(middle.x()) - 30; x < int(middle.x()) + 30; ++x) {
        const QRgb pixel = window.pixel(x, int(middle.y()));
        QVERIFY(difference(pixel, layerColor.rgb()) <= 12 || difference(pixel, paperColor.rgb()) <= 12);
        QVERIFY(difference(pixel, window.pixel(x + 1, int(middle.y()))) > 100);
    }
}

QTEST_MAIN(tst_PaperPainterOrder)
#include "tst_paperpainter_order.moc"
