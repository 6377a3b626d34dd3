#include "libui/paper/paperpainter.h"

#include "libmodel/base/settings.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/uistartup.h"
#include "paperstage.h"
#include "support/glfixture.h"

#include <QPainter>
#include <QTest>

#include <algorithm>
#include <cmath>

using Model::Tool;
using TestSupport::PaperStage;

namespace {

constexpr QColor layerColor(40, 97, 184);

bool isAbout(QColor color, QColor expected, int within)
{
    return std::abs(color.red() - expected.red()) <= within && std::abs(color.green() - expected.green()) <= within &&
           std::abs(color.blue() - expected.blue()) <= within;
}

int largestDifference(const QImage &a, const QImage &b)
{
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            largest = std::max(
                {largest, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))});
        }
    }
    return largest;
}

/// The number of pixels in which the two differ by more than \a tolerance in a channel.
int strayPixels(const QImage &a, const QImage &b, int tolerance)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            count += isAbout(a.pixelColor(x, y), b.pixelColor(x, y), tolerance) ? 0 : 1;
    }
    return count;
}

/// Draws a level line of the opaque brush at full pressure; the last stroke is put into the drawing.
void drawOpaqueLine(PaperStage &stage, QPointF from, QPointF to)
{
    Model::ToolManager::instance()->setCurrentPenType(Tool::PenType::Brush);
    std::vector<QPointF> points;
    for (int i = 0; i <= 20; ++i)
        points.push_back(from + (to - from) * (i / 20.0));
    stage.penLine(points, 1.0);
    stage.scene()->addStroke(0, 1, std::move(stage.strokes.back()));
}

} // namespace

class tst_PaperPainter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void noSceneIsBlankWhite();
    void paperIsWhiteInsideAndDeskLiesOutside();
    void plainTransparencyTypesFillTheSheet_data();
    void plainTransparencyTypesFillTheSheet();
    void checkersAreTwoTonesInSquares_data();
    void checkersAreTwoTonesInSquares();
    void settingOfTransparencyIsFollowed();
    void positionWithoutDrawingIsGrey();
    void strokeShowsInTheLayersColour();
    void strokeInProgressShows();
    void strokeLooksTheSameOnceItIsInTheDrawing_data();
    void strokeLooksTheSameOnceItIsInTheDrawing();
    void strokeIsSeenWhereItWasDrawn_data();
    void strokeIsSeenWhereItWasDrawn();
    void fullSizeShowsThePixelsAsTheyAre();
    void pixelsAreSquaresFromLevelTwoOn();
    void pixelsAreSmoothedBelowLevelTwo();
    void partialRepaintsGiveTheWholePicture_data();
    void partialRepaintsGiveTheWholePicture();
    void paintsNothingOutsideTheRectangle();
    void sheetIsOutlined();
    void sheetShowsItsDiagonals();
    void edgesOfTheViewAreShaded();
    void deskMovesWithTheView();
    void hugeZoomOfAHugeSheetPaintsPaperToTheEdges();
};

void tst_PaperPainter::initTestCase()
{
    UI::startUp();
    QVERIFY(TestSupport::startRenderer({1920, 1080}));
}

void tst_PaperPainter::cleanup()
{
    Model::ToolManager::instance()->setCurrentPenType(Tool::PenType::Pencil);
}

void tst_PaperPainter::noSceneIsBlankWhite()
{
    PaperStage stage;
    stage.paper->setCurrentScene(nullptr);
    QImage white(stage.paper->size(), QImage::Format_RGB32);
    white.fill(Qt::white);
    QCOMPARE(stage.screen(), white);
}

void tst_PaperPainter::paperIsWhiteInsideAndDeskLiesOutside()
{
    PaperStage stage; // the sheet covers (50, 50) to (450, 350)
    const QImage screen = stage.screen();
    for (const QPoint inside : {QPoint(60, 100), QPoint(440, 100), QPoint(250, 60), QPoint(250, 340)})
        QCOMPARE(screen.pixelColor(inside), QColor(255, 255, 255));
    for (const QPoint outside : {QPoint(40, 200), QPoint(459, 200), QPoint(250, 40), QPoint(250, 359)}) {
        const QColor linen = screen.pixelColor(outside);
        QVERIFY2(linen.red() > 70 && linen.red() < 140, qPrintable(linen.name()));
        QVERIFY2(linen.red() >= linen.green() && linen.green() >= linen.blue(), qPrintable(linen.name()));
    }
}

void tst_PaperPainter::plainTransparencyTypesFillTheSheet_data()
{
    QTest::addColumn<MR::TransparencyType>("type");
    QTest::addColumn<int>("lowest");
    QTest::addColumn<int>("highest");
    QTest::addRow("white") << MR::TransparencyType::TransparencyWhite << 255 << 255;
    QTest::addRow("light grey") << MR::TransparencyType::TransparencyLightGrey << 160 << 225;
    QTest::addRow("dark grey") << MR::TransparencyType::TransparencyDarkGrey << 60 << 130;
    QTest::addRow("black") << MR::TransparencyType::TransparencyBlack << 0 << 0;
}

void tst_PaperPainter::plainTransparencyTypesFillTheSheet()
{
    QFETCH(MR::TransparencyType, type);
    QFETCH(int, lowest);
    QFETCH(int, highest);
    PaperStage stage;
    stage.paper->setTransparencyType(type);
    const QImage screen = stage.screen();
    const QColor color = screen.pixelColor(100, 200);
    QVERIFY(color.green() >= lowest && color.green() <= highest);
    QCOMPARE(screen.pixelColor(400, 200), color);
    QCOMPARE(screen.pixelColor(250, 60), color);
}

void tst_PaperPainter::checkersAreTwoTonesInSquares_data()
{
    QTest::addColumn<MR::TransparencyType>("type");
    QTest::addRow("small light") << MR::TransparencyType::TransparencySmallCheckersLight;
    QTest::addRow("small dark") << MR::TransparencyType::TransparencySmallCheckersDark;
    QTest::addRow("large light") << MR::TransparencyType::TransparencyLargeCheckersLight;
    QTest::addRow("large dark") << MR::TransparencyType::TransparencyLargeCheckersDark;
}

void tst_PaperPainter::checkersAreTwoTonesInSquares()
{
    QFETCH(MR::TransparencyType, type);
    PaperStage stage;
    stage.paper->setTransparencyType(type);
    const QImage screen = stage.screen();
    // Along a row of the sheet clear of the diagonals, the runs of one tone are all as long.
    std::vector<int> runs(1, 0);
    for (int x = 180; x < 320; ++x) {
        if (x > 180 && screen.pixel(x, 70) != screen.pixel(x - 1, 70))
            runs.push_back(0);
        ++runs.back();
    }
    QVERIFY(runs.size() > 4);
    for (size_t i = 2; i + 1 < runs.size(); ++i)
        QCOMPARE(runs[i], runs[1]);
    // A square down, the tones are swapped.
    QVERIFY(screen.pixel(250, 70) != screen.pixel(250 + runs[1], 70));
    QCOMPARE(screen.pixel(250 + runs[1], 70 + runs[1]), screen.pixel(250, 70));
}

void tst_PaperPainter::settingOfTransparencyIsFollowed()
{
    PaperStage stage;
    auto *settings = Model::Settings::instance();
    const MR::TransparencyType before = settings->transparencyType();
    settings->setTransparencyType(MR::TransparencyType::TransparencyBlack);
    const QColor black = stage.screen().pixelColor(100, 200);
    settings->setTransparencyType(before);
    QCOMPARE(black, QColor(0, 0, 0));
}

void tst_PaperPainter::positionWithoutDrawingIsGrey()
{
    PaperStage stage;
    stage.scene()->setActiveFrameAndLayer(2, 0, Model::Scene::AllowFrameAfterLast);
    QVERIFY(!stage.scene()->activeCellHasDrawing());
    QCOMPARE(stage.screen().pixelColor(100, 200), QColor(221, 216, 213));
    stage.scene()->setActiveFrameAndLayer(1, 0, Model::Scene::KeepFrameOnDrawing);
    QCOMPARE(stage.screen().pixelColor(100, 200), QColor(255, 255, 255));
}

void tst_PaperPainter::strokeShowsInTheLayersColour()
{
    PaperStage stage;
    drawOpaqueLine(stage, {150, 250}, {350, 250});
    const QImage screen = stage.screen();
    for (const int x : {170, 250, 330}) {
        QVERIFY(isAbout(screen.pixelColor(x, 250), layerColor, 3));
        QCOMPARE(screen.pixelColor(x, 235), QColor(255, 255, 255));
        QCOMPARE(screen.pixelColor(x, 265), QColor(255, 255, 255));
    }
}

void tst_PaperPainter::strokeInProgressShows()
{
    PaperStage stage;
    Model::ToolManager::instance()->setCurrentPenType(Tool::PenType::Brush);
    stage.penPress({150, 250}, 1.0);
    for (int x = 155; x <= 350; x += 5)
        stage.penMove({double(x), 250}, 1.0);
    QVERIFY(isAbout(stage.screen().pixelColor(250, 250), layerColor, 3));
    stage.penRelease({350, 250});
    // Taken by nobody who puts it into the drawing: it is gone from the screen.
    QCOMPARE(stage.screen().pixelColor(250, 250), QColor(255, 255, 255));
}

void tst_PaperPainter::strokeLooksTheSameOnceItIsInTheDrawing_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("degrees");
    QTest::addRow("plain") << 1.0 << 0.0;
    QTest::addRow("zoomed in") << 2.5 << 0.0;
    QTest::addRow("zoomed out") << 0.8 << 0.0;
    QTest::addRow("rotated") << 1.0 << 30.0;
    QTest::addRow("small") << 0.4 << 0.0;
    QTest::addRow("small, rotated") << 0.2 << -70.0;
}

void tst_PaperPainter::strokeLooksTheSameOnceItIsInTheDrawing()
{
    QFETCH(double, level);
    QFETCH(double, degrees);
    PaperStage stage;
    stage.paper->rotatePaperTo(degrees);
    stage.paper->setZoomLevel(level);
    Model::ToolManager::instance()->setCurrentPenType(Tool::PenType::Brush);
    const QPointF from = stage.toWidget({60, 80});
    const QPointF to = stage.toWidget({340, 200});
    stage.penPress(from, 1.0);
    for (int i = 1; i <= 40; ++i)
        stage.penMove(from + (to - from) * (i / 40.0), 1.0);
    QTest::qWait(50);
    const QImage inProgress = stage.repainted();
    stage.penRelease(to);
    stage.scene()->addStroke(0, 1, std::move(stage.strokes.back()));
    const QImage inDrawing = stage.repainted();
    // But for its last part, which the pen has not yet led to its end.
    const QRect part = QRectF(from, stage.toWidget({200, 140})).normalized().toAlignedRect().adjusted(-9, -9, 9, 9);
    const QRect seen = part & stage.paper->rect();
    // The painter steps through a turned picture in fractions of a pixel, from where it begins.
    const int different = largestDifference(inProgress.copy(seen), inDrawing.copy(seen));
    QVERIFY2(different <= (degrees != 0.0 ? 8 : 2), qPrintable(QString::number(different)));
    QVERIFY(isAbout(inDrawing.pixelColor(((from + stage.toWidget({200, 140})) / 2.0).toPoint()), layerColor, 90));
}

void tst_PaperPainter::strokeIsSeenWhereItWasDrawn_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("degrees");
    QTest::addColumn<bool>("mirrored");
    QTest::addRow("plain") << 1.0 << 0.0 << false;
    QTest::addRow("zoomed in") << 2.5 << 0.0 << false;
    QTest::addRow("zoomed out") << 0.8 << 0.0 << false;
    QTest::addRow("rotated") << 1.0 << 30.0 << false;
    QTest::addRow("mirrored") << 1.0 << 0.0 << true;
    QTest::addRow("all of it") << 1.5 << -65.0 << true;
}

void tst_PaperPainter::strokeIsSeenWhereItWasDrawn()
{
    QFETCH(double, level);
    QFETCH(double, degrees);
    QFETCH(bool, mirrored);
    PaperStage stage;
    stage.paper->setMirrorView(mirrored);
    stage.paper->rotatePaperTo(degrees);
    stage.paper->setZoomLevel(level);
    drawOpaqueLine(stage, {220, 230}, {320, 180});
    const QImage screen = stage.screen();
    QVERIFY(isAbout(screen.pixelColor(240, 220), layerColor, 12));
    QVERIFY(isAbout(screen.pixelColor(270, 205), layerColor, 12));
    QVERIFY(isAbout(screen.pixelColor(300, 190), layerColor, 12));
}

void tst_PaperPainter::fullSizeShowsThePixelsAsTheyAre()
{
    PaperStage stage({400, 300}, {501, 401}); // the sheet's place is half a pixel off
    drawOpaqueLine(stage, {150, 250}, {350, 260});
    const QImage screen = stage.screen();
    QImage expected(400, 300, QImage::Format_RGB32);
    expected.fill(Qt::white);
    QPainter painter(&expected);
    stage.scene()->paintFrame(&painter, expected.rect());
    painter.end();
    // Around the line, which is at most a pixel off; the same offset holds for all of it. The diagonals run elsewhere.
    const QRect part(150, 190, 95, 40);
    int smallest = 255;
    for (const QPoint offset : {QPoint(50, 50), QPoint(51, 50), QPoint(50, 51), QPoint(51, 51)})
        smallest = std::min(smallest, largestDifference(screen.copy(part.translated(offset)), expected.copy(part)));
    QVERIFY2(smallest <= 2, qPrintable(QString::number(smallest)));
}

void tst_PaperPainter::pixelsAreSquaresFromLevelTwoOn()
{
    PaperStage stage;
    drawOpaqueLine(stage, {150, 230}, {350, 260});
    stage.paper->setZoomLevel(4.0);
    const QImage screen = stage.screen();
    // (250, 200) is a pixel's corner; each block of 4 x 4 has one colour. Clear of the diagonals, below the middle.
    int edges = 0;
    for (int y = 300; y < 360; y += 4) {
        for (int x = 222; x < 278; x += 4) {
            QCOMPARE(screen.pixel(x + 3, y), screen.pixel(x, y));
            QCOMPARE(screen.pixel(x + 3, y + 3), screen.pixel(x, y));
            edges += screen.pixel(x, y) != screen.pixel(x, y + 4) ? 1 : 0;
        }
    }
    QVERIFY(edges > 0);
}

void tst_PaperPainter::pixelsAreSmoothedBelowLevelTwo()
{
    PaperStage stage;
    drawOpaqueLine(stage, {150, 230}, {350, 260});
    stage.paper->setZoomLevel(1.9);
    const QImage smooth = stage.screen();
    stage.paper->setZoomLevel(2.0);
    const QImage squares = stage.screen();
    const auto tones = [](const QImage &image) {
        QSet<QRgb> found;
        for (int y = 200; y < 330; ++y)
            found.insert(image.pixel(250, y));
        return found.size();
    };
    QVERIFY(tones(smooth) > tones(squares));
}

void tst_PaperPainter::partialRepaintsGiveTheWholePicture_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("degrees");
    QTest::addColumn<bool>("mirrored");
    QTest::addColumn<QPointF>("pan");
    // On a turned sheet whose pixels are squares, the rasteriser's fixed-point steps decide now and then which of two
    // pixels a point at their border takes; that depends on where the painted part begins.
    QTest::addColumn<int>("strays");
    QTest::addRow("plain") << 1.0 << 0.0 << false << QPointF() << 0;
    QTest::addRow("plain, between pixels") << 1.0 << 0.0 << false << QPointF(-170.5, -130.5) << 0;
    QTest::addRow("mirrored, between pixels") << 1.0 << 0.0 << true << QPointF(-170.3, 30.5) << 0;
    QTest::addRow("quarter turn") << 1.0 << 90.0 << false << QPointF(0.3, 0.5) << 0;
    QTest::addRow("zoomed out") << 0.37 << 0.0 << false << QPointF(3.3, 1.7) << 0;
    QTest::addRow("far out") << 0.12 << 0.0 << false << QPointF(3.3, 1.7) << 0;
    QTest::addRow("far out, rotated") << 0.2 << 33.0 << true << QPointF(3.3, 1.7) << 0;
    QTest::addRow("zoomed in a little") << 1.63 << 0.0 << false << QPointF(3.3, 1.7) << 0;
    QTest::addRow("zoomed in") << 5.3 << 0.0 << false << QPointF(-3.3, 21.7) << 0;
    QTest::addRow("rotated") << 0.9 << 33.0 << false << QPointF(3.3, 1.7) << 0;
    QTest::addRow("all of it") << 2.7 << -128.0 << true << QPointF(-33.3, 1.7) << 100;
}

void tst_PaperPainter::partialRepaintsGiveTheWholePicture()
{
    QFETCH(double, level);
    QFETCH(double, degrees);
    QFETCH(bool, mirrored);
    QFETCH(QPointF, pan);
    QFETCH(int, strays);
    PaperStage stage;
    stage.paper->setMirrorView(mirrored);
    stage.paper->rotatePaperTo(degrees);
    stage.paper->setZoomLevel(level);
    stage.wheel({250, 200}, pan.toPoint(), {});
    stage.useTool(Tool::Type::Hand);
    stage.penLine({{100, 100}, QPointF(100, 100) + (pan - pan.toPoint())});
    stage.useTool(Tool::Type::Pen);
    (void)stage.screen();
    stage.penPress({80, 90}, 0.6);
    for (int i = 1; i <= 60; ++i) {
        stage.penMove({80.0 + 6.0 * i, 200.0 + 110.0 * std::cos(0.25 * i)}, 0.6);
        QCoreApplication::processEvents();
    }
    QVERIFY2(strayPixels(stage.screen(), stage.repainted(), 3) <= strays, "with the stroke in progress");
    stage.penRelease({440, 200});
    stage.scene()->addStroke(0, 1, std::move(stage.strokes.back()));
    QVERIFY2(strayPixels(stage.screen(), stage.repainted(), 3) <= strays, "with the stroke in the drawing");
}

void tst_PaperPainter::paintsNothingOutsideTheRectangle()
{
    PaperStage stage;
    const UI::PaperPainter::Look look{Qt::white, Qt::darkGray};
    const UI::PaperPainter painter(stage.paper->view(), stage.scene(), look);
    constexpr QRect rect(30, 30, 77, 55); // over the sheet's corner and the shadow
    QImage image(500, 400, QImage::Format_RGB32);
    image.fill(Qt::magenta);
    QPainter on(&image);
    painter.paint(&on, rect);
    on.end();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            QCOMPARE(image.pixelColor(x, y) != QColor(Qt::magenta), rect.contains(x, y));
    }
}

void tst_PaperPainter::sheetIsOutlined()
{
    PaperStage stage;
    const QImage screen = stage.screen();
    // Between the white of the sheet and the linen there is something darker than both.
    int darkest = 255;
    for (int x = 47; x < 54; ++x)
        darkest = std::min(darkest, qGray(screen.pixel(x, 200)));
    QVERIFY(darkest < qGray(screen.pixel(45, 200)) - 5);
}

void tst_PaperPainter::sheetShowsItsDiagonals()
{
    PaperStage stage; // from (50, 50) to (450, 350): the diagonals fall or rise 3 in 4
    const QImage screen = stage.screen();
    const auto darkestAround = [&](int x, int y) {
        int darkest = 255;
        for (int dy = -2; dy <= 2; ++dy)
            darkest = std::min(darkest, qGray(screen.pixel(x, y + dy)));
        return darkest;
    };
    for (const int x : {110, 150, 330, 390}) {
        const int y = 50 + 3 * (x - 50) / 4;
        QVERIFY(darkestAround(x, y) < 255);
        QVERIFY(darkestAround(x, 400 - y) < 255);
        QCOMPARE(darkestAround(x, y < 200 ? y + 10 : y - 10), 255);
    }
}

void tst_PaperPainter::edgesOfTheViewAreShaded()
{
    PaperStage stage({900, 800}); // the sheet covers all of the view
    const QImage screen = stage.screen();
    const auto tone = [&](int x, int y) { return qGray(screen.pixel(x, y)); };
    QCOMPARE(tone(150, 200), 255);
    for (const QPoint edge : {QPoint(0, 200), QPoint(499, 200), QPoint(150, 0), QPoint(150, 399), QPoint(0, 0)}) {
        const int shaded = tone(edge.x(), edge.y());
        QVERIFY(shaded > 150 && shaded < 210);
    }
    QVERIFY(tone(4, 200) < tone(20, 200));
}

void tst_PaperPainter::deskMovesWithTheView()
{
    PaperStage stage({60, 60}, {500, 400});
    const QImage before = stage.screen();
    stage.wheel({60, 60}, {13, 7}, {});
    const QImage after = stage.screen();
    // Clear of the sheet and of the shadows.
    QCOMPARE(after.copy(60, 60, 100, 80), before.copy(60 - 13, 60 - 7, 100, 80));
}

void tst_PaperPainter::hugeZoomOfAHugeSheetPaintsPaperToTheEdges()
{
    PaperStage stage({8192, 8192});
    stage.paper->setZoomLevel(16.0);
    const QImage middle = stage.screen();
    for (const QPoint point : {QPoint(100, 60), QPoint(400, 60), QPoint(60, 200)})
        QVERIFY(isAbout(middle.pixelColor(point), Qt::white, 0));
    // To the lower right corner of the sheet.
    for (int i = 0; i < 30; ++i)
        stage.wheel({250, 200}, {-65536 / 30, -65536 / 30}, {});
    const QPointF corner = stage.toWidget({8192, 8192});
    const QImage screen = stage.screen();
    const QPoint inside = (corner - QPointF(30, 60)).toPoint();
    const QPoint outside = (corner + QPointF(30, 30)).toPoint();
    QVERIFY(stage.paper->rect().contains(inside) && stage.paper->rect().contains(outside));
    QVERIFY(isAbout(screen.pixelColor(inside), Qt::white, 0));
    QVERIFY(qGray(screen.pixel(outside)) < 160);
}

QTEST_MAIN(tst_PaperPainter)
#include "tst_paperpainter.moc"
