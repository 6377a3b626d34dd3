// The frame off its pegs: what stays, what moves, and what lies around both.

#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/style/colors.h"
#include "paintedview.h"
#include "support/glfixture.h"

#include <QRandomGenerator>
#include <QTest>

using TestSupport::deskColor;
using TestSupport::difference;
using TestSupport::largestDifference;
using TestSupport::PaintedView;
using TestSupport::paperColor;

namespace {

constexpr QColor sheetBeneath(232, 232, 232);
constexpr QColor layerColor(40, 97, 184);

/// A frame that was moved by (\a dx, \a dy) paper pixels. Transforms go from the desk to the paper.
QTransform moved(double dx, double dy)
{
    return QTransform::fromTranslate(-dx, -dy);
}

/// Two frames, the first being the active one, with the second shining through untinted.
void shineSecondThrough(PaintedView &stage)
{
    Model::BacklightSettings settings;
    settings.on = true;
    settings.settingA.opacityLevelsAfter = {1.0};
    settings.settingA.opacityLevelsBefore = {};
    settings.settingA.hueShift = Model::BacklightSetting::HueShift::NoHueShift;
    stage.scene.setBacklightSettings(settings);
}

} // namespace

class tst_PaperPainterOffPegs : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void sheetBeneathShowsWhereTheFrameHasLeft();
    void framesPaperLiesOverTheSheet();
    void deskLiesOutsideOfBoth();
    void layersOfTheFrameMoveTogether();
    void neighboursStayOnThePegs();
    void neighboursShowThroughTheFramesPaper();
    void strokeInProgressMovesWithTheFrame();
    void sheetsOwnOutlineIsDashed();
    void dashesStayOnTheSheetWhenTheViewMoves();
    void outlineGoesAroundTheFrame();
    void diagonalsAreThoseOfTheFrame();
    void emptyCellGreysTheFrameOnly();
    void gridLiesOnTheFrame();
    void isThePictureOnThePegsWhereNothingMoved();
    void frameFarAwayLeavesTheSheetBare();
    void deskNeverLiesOnAPaper_data();
    void deskNeverLiesOnAPaper();
    void partsAreThoseOfTheWhole_data();
    void partsAreThoseOfTheWhole();
    void scrubFrameLiesOnTheMovedPaper();
};

void tst_PaperPainterOffPegs::initTestCase()
{
    QVERIFY(TestSupport::startRenderer({800, 600}));
}

// In a widget of 500 x 400 the sheet covers (50, 50) to (450, 350); moved by (30, 20) the frame covers (80, 70) to
// (480, 370).

void tst_PaperPainterOffPegs::sheetBeneathShowsWhereTheFrameHasLeft()
{
    PaintedView stage;
    stage.view.setOffPegs(moved(30, 20));
    const QImage image = stage.painted();
    for (const QPoint at : {QPoint(60, 60), QPoint(70, 300), QPoint(400, 60), QPoint(65, 200)})
        QCOMPARE(image.pixelColor(at), sheetBeneath);
}

void tst_PaperPainterOffPegs::framesPaperLiesOverTheSheet()
{
    PaintedView stage;
    stage.view.setOffPegs(moved(30, 20));
    const QImage image = stage.painted();
    // Over the sheet, and beyond it over the desk.
    for (const QPoint at : {QPoint(100, 200), QPoint(300, 90), QPoint(460, 200), QPoint(300, 360)})
        QCOMPARE(image.pixelColor(at), paperColor);
}

void tst_PaperPainterOffPegs::deskLiesOutsideOfBoth()
{
    PaintedView stage;
    stage.view.setOffPegs(moved(30, 20));
    const QImage image = stage.painted();
    // Clear of the shadow at the edges, which is 32 wide.
    for (const QPoint at : {QPoint(42, 200), QPoint(200, 42), QPoint(465, 60), QPoint(60, 362)})
        QCOMPARE(image.pixelColor(at), deskColor);
}

void tst_PaperPainterOffPegs::layersOfTheFrameMoveTogether()
{
    PaintedView stage;
    const int lower = stage.addLayer(QColor(200, 30, 30));
    stage.ink(QRect(100, 100, 20, 20));
    stage.ink(QRect(200, 150, 20, 20), lower);
    stage.view.setOffPegs(moved(30, 20));
    const QImage image = stage.painted();
    QCOMPARE(image.pixelColor(50 + 30 + 110, 50 + 20 + 110), layerColor);
    QCOMPARE(image.pixelColor(50 + 30 + 210, 50 + 20 + 160), QColor(200, 30, 30));
    QCOMPARE(image.pixelColor(50 + 105, 50 + 105), paperColor);
}

void tst_PaperPainterOffPegs::neighboursStayOnThePegs()
{
    PaintedView stage({500, 400}, {400, 300}, 2);
    shineSecondThrough(stage);
    stage.ink(QRect(100, 100, 20, 20), 0, 2);
    const QImage onPegs = stage.painted();
    QCOMPARE(onPegs.pixelColor(50 + 110, 50 + 110), layerColor);
    stage.view.setOffPegs(moved(30, 20));
    const QImage image = stage.painted();
    QCOMPARE(image.pixelColor(50 + 110, 50 + 110), layerColor);
    QCOMPARE(image.pixelColor(50 + 30 + 115, 50 + 20 + 115), paperColor);
}

void tst_PaperPainterOffPegs::neighboursShowThroughTheFramesPaper()
{
    PaintedView stage({500, 400}, {400, 300}, 2);
    shineSecondThrough(stage);
    // One under the frame's paper, one where the frame has left, and the frame's own ink over both.
    stage.ink(QRect(100, 100, 40, 20), 0, 2);
    stage.ink(QRect(5, 100, 10, 20), 0, 2);
    const int lower = stage.addLayer(QColor(200, 30, 30), 2);
    stage.ink(QRect(90, 80, 20, 20), lower, 1);
    stage.view.setOffPegs(moved(30, 20));
    const QImage image = stage.painted();
    QCOMPARE(image.pixelColor(50 + 110, 50 + 110), layerColor);
    QCOMPARE(image.pixelColor(50 + 10, 50 + 110), layerColor);
    QCOMPARE(image.pixelColor(80 + 100, 70 + 90), QColor(200, 30, 30));
}

void tst_PaperPainterOffPegs::strokeInProgressMovesWithTheFrame()
{
    PaintedView stage;
    auto *tools = Model::ToolManager::instance();
    tools->setCurrentTool(Model::Tool::Type::Pen, 0);
    tools->setCurrentPenType(Model::Tool::PenType::Brush);
    stage.view.setOffPegs(moved(30, 20));
    stage.scene.beginStroke({QPointF(100, 100), 1.0, 0});
    for (unsigned i = 1; i <= 20; ++i)
        stage.scene.addSample({QPointF(100 + 8 * i, 100), 1.0, i * 5});
    QCoreApplication::processEvents();
    const QImage image = stage.painted();
    stage.scene.takeStroke().reset();
    tools->setCurrentPenType(Model::Tool::PenType::Pencil);
    QVERIFY(difference(image.pixel(80 + 150, 70 + 100), layerColor.rgb()) <= 3);
    QCOMPARE(image.pixelColor(50 + 150, 50 + 100), paperColor);
}

void tst_PaperPainterOffPegs::sheetsOwnOutlineIsDashed()
{
    PaintedView stage;
    stage.view.setOffPegs(moved(30, 20));
    const QImage image = stage.painted();
    // Along the upper edge, which has the desk above and the sheet below: dark dashes and light gaps.
    int dashes = 0;
    int gaps = 0;
    for (int x = 60; x < 440; ++x) {
        const int tone = qGray(image.pixel(x, 50));
        dashes += tone < 180 ? 1 : 0;
        gaps += tone > 220 ? 1 : 0;
    }
    QVERIFY2(dashes > 100, qPrintable(QString::number(dashes)));
    QVERIFY2(gaps > 100, qPrintable(QString::number(gaps)));
}

void tst_PaperPainterOffPegs::dashesStayOnTheSheetWhenTheViewMoves()
{
    PaintedView stage({500, 400}, {2000, 300}); // both ends of the upper edge are out of sight
    stage.view.setOffPegs(moved(0, 5000));
    const QImage before = stage.painted();
    stage.view.panTo({0, 0}, {13, 7});
    const QImage after = stage.painted();
    QVERIFY(after.copy(100, 47, 300, 20) == before.copy(87, 40, 300, 20));
    QVERIFY(before.copy(87, 40, 300, 20) != before.copy(88, 40, 300, 20));
}

void tst_PaperPainterOffPegs::outlineGoesAroundTheFrame()
{
    PaintedView stage;
    stage.view.setOffPegs(moved(30, 20));
    const QImage image = stage.painted();
    // The frame's left edge is at 80, on the sheet beneath; its line has no gaps.
    for (int y = 80; y < 340; ++y)
        QVERIFY(qGray(image.pixel(79, y)) < 200 || qGray(image.pixel(80, y)) < 200);
}

void tst_PaperPainterOffPegs::diagonalsAreThoseOfTheFrame()
{
    PaintedView stage;
    stage.view.setOffPegs(moved(30, 20));
    const QImage image = stage.painted();
    // From (80, 70): falling 3 in 4.
    for (const int along : {60, 150, 320}) {
        int darkest = 255;
        for (int dy = -2; dy <= 2; ++dy)
            darkest = std::min(darkest, qGray(image.pixel(80 + along, 70 + 3 * along / 4 + dy)));
        QVERIFY(darkest < 255);
        QCOMPARE(qGray(image.pixel(80 + along, 70 + 3 * along / 4 + 9)), 255);
    }
}

void tst_PaperPainterOffPegs::emptyCellGreysTheFrameOnly()
{
    PaintedView stage;
    stage.scene.setActiveFrameAndLayer(2, 0, Model::Scene::AllowFrameAfterLast);
    QVERIFY(!stage.scene.activeCellHasDrawing());
    stage.view.setOffPegs(moved(30, 20));
    const QImage image = stage.painted();
    QCOMPARE(image.pixelColor(300, 90), UI::Colors::lightPanel);
    QCOMPARE(image.pixelColor(60, 200), sheetBeneath);
}

void tst_PaperPainterOffPegs::gridLiesOnTheFrame()
{
    PaintedView stage;
    stage.overlay.grid.moveTo(200, 0);
    stage.overlay.grid.lineTo(200, 300);
    stage.view.setOffPegs(moved(30, 20));
    const QImage image = stage.painted();
    QVERIFY(image.pixelColor(80 + 200, 100) != paperColor);
    QCOMPARE(image.pixelColor(50 + 200, 100), paperColor);
}

void tst_PaperPainterOffPegs::isThePictureOnThePegsWhereNothingMoved()
{
    PaintedView stage({500, 400}, {400, 300}, 2);
    shineSecondThrough(stage);
    stage.ink(QRect(100, 100, 40, 20), 0, 2);
    stage.ink(QRect(120, 90, 30, 60), 0, 1);
    const QImage onPegs = stage.painted();
    // Off its pegs, but by less than shows: the same picture, but for the edge, which is dashed and at the frame's end.
    stage.view.setOffPegs(moved(1e-7, 0));
    const QImage off = stage.painted();
    QVERIFY(largestDifference(off, onPegs, QRect(55, 55, 390, 290)) <= 1);
    QVERIFY(largestDifference(off, onPegs, QRect(0, 0, 500, 45)) <= 1);
}

void tst_PaperPainterOffPegs::frameFarAwayLeavesTheSheetBare()
{
    PaintedView stage;
    stage.view.setOffPegs(moved(1e6, -3e5));
    const QImage image = stage.painted();
    QCOMPARE(image.pixelColor(250, 200), sheetBeneath);
    QCOMPARE(image.pixelColor(60, 340), sheetBeneath);
    QCOMPARE(image.pixelColor(42, 200), deskColor);
}

void tst_PaperPainterOffPegs::deskNeverLiesOnAPaper_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= 30; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

/// Ten random views each: turned, zoomed, mirrored, the frame moved and turned.
void tst_PaperPainterOffPegs::deskNeverLiesOnAPaper()
{
    QFETCH(int, seed);
    QRandomGenerator random{quint32(seed)};
    const auto between = [&random](double low, double high) { return low + (high - low) * random.generateDouble(); };
    for (int i = 0; i < 10; ++i) {
        PaintedView stage({640, 400}, {768, 432});
        stage.view.fit();
        stage.view.setMirrored(random.bounded(2) == 1);
        stage.view.rotateTo(between(-180, 180));
        if (i % 2 == 1)
            stage.view.setZoomLevel(between(0.2, 2.5));
        stage.view.setOffPegs(QTransform().translate(between(-120, 120), between(-80, 80)).rotate(between(-20, 20)));
        const QImage image = stage.painted();
        const QTransform toFrame = stage.view.paperToWidget().inverted();
        const QTransform toSheet = stage.view.deskToWidget().inverted();
        const double edge = 3.0 * stage.view.shownZoomScale(); // outlines and their smoothing
        const QRectF inside = stage.view.paperRect().adjusted(edge, edge, -edge, -edge);
        const QRectF around = stage.view.paperRect().adjusted(-edge, -edge, edge, edge);
        for (int y = 36; y < 364; y += 5) { // clear of the shadow
            for (int x = 36; x < 604; x += 5) {
                const QPointF onFrame = toFrame.map(QPointF(x + 0.5, y + 0.5));
                const QPointF onSheet = toSheet.map(QPointF(x + 0.5, y + 0.5));
                const bool isDesk = difference(image.pixel(x, y), deskColor.rgb()) <= 2;
                const QByteArray where = QStringLiteral("view %1 at %2, %3").arg(i).arg(x).arg(y).toLocal8Bit();
                if (inside.contains(onFrame) || inside.contains(onSheet))
                    QVERIFY2(!isDesk, where);
                if (!around.contains(onFrame) && !around.contains(onSheet))
                    QVERIFY2(isDesk, where);
            }
        }
        std::vector<QRect> parts;
        for (int y = 0; y < 400; y += 83) {
            for (int x = 0; x < 640; x += 97)
                parts.push_back(QRect(x, y, 97, 83) & stage.widgetRect());
        }
        const QImage pieced = stage.painted(parts);
        int strays = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                strays += difference(pieced.pixel(x, y), image.pixel(x, y)) > 8 ? 1 : 0;
        }
        // Where an edge goes through the very corner of a part, the rasteriser may lose it there.
        QVERIFY2(strays <= 3, qPrintable(QString::number(strays)));
    }
}

void tst_PaperPainterOffPegs::partsAreThoseOfTheWhole_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("degrees");
    QTest::addColumn<bool>("mirrored");
    QTest::addColumn<double>("frameDegrees");
    QTest::addRow("plain") << 1.0 << 0.0 << false << 0.0;
    QTest::addRow("frame turned") << 1.0 << 0.0 << false << 11.0;
    QTest::addRow("small") << 0.3 << 0.0 << false << 11.0;
    QTest::addRow("large") << 3.0 << 0.0 << false << -5.0;
    QTest::addRow("turned, mirrored") << 0.8 << 40.0 << true << -15.0;
}

void tst_PaperPainterOffPegs::partsAreThoseOfTheWhole()
{
    QFETCH(double, level);
    QFETCH(double, degrees);
    QFETCH(bool, mirrored);
    QFETCH(double, frameDegrees);
    PaintedView stage({500, 400}, {400, 300}, 2);
    shineSecondThrough(stage);
    stage.ink(QRect(100, 100, 140, 20), 0, 2);
    stage.ink(QRect(120, 90, 30, 160), 0, 1);
    stage.view.setMirrored(mirrored);
    stage.view.rotateTo(degrees);
    stage.view.setZoomLevel(level);
    stage.view.setOffPegs(QTransform().translate(-30, 15).rotate(frameDegrees));
    const QImage whole = stage.painted();
    for (const QRect part : {QRect(70, 60, 41, 23), QRect(200, 150, 64, 64), QRect(0, 0, 120, 400),
                             QRect(251, 199, 1, 1), QRect(180, 110, 200, 31)}) {
        const QImage image = stage.painted({part});
        int strays = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                // The painter steps through a turned picture in fractions of a pixel, from where it begins.
                if (part.contains(x, y))
                    strays += difference(image.pixel(x, y), whole.pixel(x, y)) > 8 ? 1 : 0;
                else
                    QCOMPARE(image.pixelColor(x, y), QColor(Qt::magenta));
            }
        }
        // Squares that a pixel's middle falls between may go either way.
        QVERIFY2(strays <= (level > 2.0 ? 8 : 0), qPrintable(QString::number(strays)));
    }
}

void tst_PaperPainterOffPegs::scrubFrameLiesOnTheMovedPaper()
{
    PaintedView stage({500, 400}, {400, 300}, 2);
    stage.ink(QRect(100, 100, 20, 20), 0, 2);
    stage.scene.setScrubFrame(2);
    stage.view.setOffPegs(moved(30, 20));
    QCOMPARE(stage.painted().pixelColor(80 + 110, 70 + 110), layerColor);
}

QTEST_MAIN(tst_PaperPainterOffPegs)
#include "tst_paperpainter_offpegs.moc"
