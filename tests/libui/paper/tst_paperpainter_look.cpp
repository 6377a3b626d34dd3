// Tones: what has to stand out, and what must not.

#include "libui/paper/paperbrushes.h"
#include "libui/style/colors.h"
#include "libui/uistartup.h"
#include "paintedview.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <iterator>

using TestSupport::deskColor;
using TestSupport::PaintedView;
using TestSupport::paperColor;

namespace {

/// Relative luminance, 0 for black to 1 for white.
double luminance(QRgb color)
{
    const auto linear = [](int channel) {
        const double value = channel / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) + 0.0722 * linear(qBlue(color));
}

/// 1 for equal tones, 21 for black and white.
double contrast(double a, double b)
{
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// What a paper filled with \a brush shows at \a x, \a y of itself.
QRgb toneAt(const QBrush &brush, int x, int y)
{
    if (brush.style() != Qt::TexturePattern)
        return brush.color().rgb();
    const QImage tile = brush.textureImage();
    return tile.pixel(x % tile.width(), y % tile.height());
}

void addPapers()
{
    QTest::addColumn<MR::TransparencyType>("type");
    using enum MR::TransparencyType;
    QTest::addRow("small checkers, light") << TransparencySmallCheckersLight;
    QTest::addRow("small checkers, dark") << TransparencySmallCheckersDark;
    QTest::addRow("large checkers, light") << TransparencyLargeCheckersLight;
    QTest::addRow("large checkers, dark") << TransparencyLargeCheckersDark;
    QTest::addRow("white") << TransparencyWhite;
    QTest::addRow("light grey") << TransparencyLightGrey;
    QTest::addRow("dark grey") << TransparencyDarkGrey;
    QTest::addRow("black") << TransparencyBlack;
}

/// Those of \a pixels that are neither desk nor paper.
QList<QColor> edgesAmong(const QList<QColor> &pixels)
{
    QList<QColor> edges;
    std::ranges::copy_if(pixels, std::back_inserter(edges),
                         [](const QColor &color) { return color != deskColor && color != paperColor; });
    return edges;
}

} // namespace

class tst_PaperPainterLook : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void papersStandOutFromTheLinen_data() { addPapers(); }
    void papersStandOutFromTheLinen();
    void diagonalsAreJustVisible_data() { addPapers(); }
    void diagonalsAreJustVisible();
    void outlineIsOnePixelOfItsColour_data();
    void outlineIsOnePixelOfItsColour();
    void checkersAreSharpOnDenseScreens_data();
    void checkersAreSharpOnDenseScreens();
    void runningZoomDecidesOnSmoothing_data();
    void runningZoomDecidesOnSmoothing();
    void paperIsThatOfTheFrameOnShow();
};

void tst_PaperPainterLook::initTestCase()
{
    UI::startUp();
}

void tst_PaperPainterLook::papersStandOutFromTheLinen()
{
    QFETCH(MR::TransparencyType, type);
    const QImage linen = UI::deskBrush().textureImage();
    QVERIFY(!linen.isNull());
    double sum = 0.0;
    for (int y = 0; y < linen.height(); ++y) {
        for (int x = 0; x < linen.width(); ++x)
            sum += luminance(linen.pixel(x, y));
    }
    const double desk = sum / (double(linen.width()) * linen.height());
    const QBrush paper = UI::paperBrush(type);
    for (const QPoint at : {QPoint(0, 0), QPoint(25, 0), QPoint(10, 0)}) {
        const double found = contrast(luminance(toneAt(paper, at.x(), at.y())), desk);
        QVERIFY2(found > 1.5, qPrintable(QString::number(found)));
    }
}

void tst_PaperPainterLook::diagonalsAreJustVisible()
{
    QFETCH(MR::TransparencyType, type);
    PaintedView stage; // the sheet covers (50, 50) to (450, 350): the diagonals fall or rise 3 in 4
    stage.paper = UI::paperBrush(type);
    const QImage image = stage.painted();
    for (const int along : {60, 101, 150, 320}) {
        for (const int rise : {3 * along / 4, 300 - 3 * along / 4}) {
            double strongest = 1.0;
            for (int y = rise - 2; y <= rise + 2; ++y)
                strongest = std::max(strongest, contrast(luminance(image.pixel(50 + along, 50 + y)),
                                                         luminance(toneAt(stage.paper, along, y))));
            // Ink is seen from about 3 on.
            QVERIFY2(strongest > 1.06 && strongest < 1.5, qPrintable(QString::number(strongest)));
        }
    }
}

void tst_PaperPainterLook::outlineIsOnePixelOfItsColour_data()
{
    QTest::addColumn<double>("ratio");
    for (const double ratio : {1.0, 1.5, 2.0})
        QTest::addRow("ratio %g", ratio) << ratio;
}

void tst_PaperPainterLook::outlineIsOnePixelOfItsColour()
{
    QFETCH(double, ratio);
    PaintedView stage;
    stage.view.setDeviceRatio(ratio);
    stage.view.setZoomLevel(ratio); // the sheet covers (50, 50) to (450, 350) again
    const QImage image = stage.painted();
    // A row and a column that begin on the desk and end on the sheet, clear of the shadow and of the diagonals.
    QList<QColor> row;
    QList<QColor> column;
    for (int i = int(40 * ratio); i < int(60 * ratio); ++i) {
        row.append(image.pixelColor(i, int(110 * ratio)));
        column.append(image.pixelColor(int(150 * ratio), i));
    }
    QCOMPARE(edgesAmong(row), QList<QColor>{UI::Colors::hairline});
    QCOMPARE(edgesAmong(column), QList<QColor>{UI::Colors::hairline});
}

void tst_PaperPainterLook::checkersAreSharpOnDenseScreens_data()
{
    outlineIsOnePixelOfItsColour_data();
}

void tst_PaperPainterLook::checkersAreSharpOnDenseScreens()
{
    QFETCH(double, ratio);
    PaintedView stage;
    stage.paper = UI::paperBrush(MR::TransparencyType::TransparencySmallCheckersDark);
    stage.view.setDeviceRatio(ratio);
    stage.view.setZoomLevel(ratio); // the sheet covers (50, 50) to (450, 350) again
    const QImage image = stage.painted();
    const int first = int(200 * ratio);
    const int y = int(60 * ratio);
    const QRgb tones[] = {toneAt(stage.paper, 0, 0), toneAt(stage.paper, 8, 0)};
    int turns = 0;
    for (int x = first; x < first + int(80 * ratio); ++x) {
        QVERIFY(image.pixel(x, y) == tones[0] || image.pixel(x, y) == tones[1]);
        turns += image.pixel(x, y) != image.pixel(x - 1, y) ? 1 : 0;
    }
    QCOMPARE(turns, 10); // squares of 8 in 80 logical pixels
}

void tst_PaperPainterLook::runningZoomDecidesOnSmoothing_data()
{
    QTest::addColumn<double>("settled");
    QTest::addColumn<QPointF>("way");
    QTest::addColumn<bool>("squares");
    QTest::addRow("in past the limit") << 1.7 << QPointF(120, 120) << true;
    QTest::addRow("out past the limit") << 4.0 << QPointF(-250, -250) << false;
    QTest::addRow("in, not so far") << 1.1 << QPointF(40, 40) << false;
    QTest::addRow("out, not so far") << 6.0 << QPointF(-40, -40) << true;
}

void tst_PaperPainterLook::runningZoomDecidesOnSmoothing()
{
    QFETCH(double, settled);
    QFETCH(QPointF, way);
    QFETCH(bool, squares);
    PaintedView stage;
    for (int x = 100; x < 300; x += 2)
        stage.ink(QRect(x, 20, 1, 100)); // clear of where the diagonals cross the middle
    stage.view.setZoomLevel(settled);
    stage.view.panTo(stage.view.paperToWidget().map(QPointF(200, 70)), {250, 200});
    stage.view.setZoomDelta({250, 200}, QPointF(250, 200) + way);
    QCOMPARE(stage.view.shownZoomLevel() >= 2.0, squares);
    QCOMPARE(stage.view.zoomLevel(), settled);
    const QImage image = stage.painted();
    int between = 0;
    for (int x = 220; x < 280; ++x) {
        const QColor color = image.pixelColor(x, 200);
        between += color != paperColor && color != QColor(40, 97, 184) ? 1 : 0;
    }
    QVERIFY2(squares ? between == 0 : between > 10, qPrintable(QString::number(between)));
}

void tst_PaperPainterLook::paperIsThatOfTheFrameOnShow()
{
    PaintedView stage({500, 400}, {400, 300}, 2);
    stage.scene.setActiveFrameAndLayer(3, 0, Model::Scene::AllowFrameAfterLast);
    QVERIFY(!stage.scene.activeCellHasDrawing());
    const QPoint at(250, 80);
    QCOMPARE(stage.painted().pixelColor(at), UI::Colors::lightPanel);
    stage.scene.setScrubFrame(2);
    QCOMPARE(stage.painted().pixelColor(at), paperColor);
    stage.scene.unsetScrubFrame();
    QCOMPARE(stage.painted().pixelColor(at), UI::Colors::lightPanel);
    // And the other way: a shorter layer has no drawing at the frame that is shown for the moment.
    stage.addLayer(QColor(200, 30, 30), 1);
    stage.scene.setActiveFrameAndLayer(1, 1, Model::Scene::KeepFrameOnDrawing);
    QCOMPARE(stage.painted().pixelColor(at), paperColor);
    stage.scene.setScrubFrame(2);
    QCOMPARE(stage.painted().pixelColor(at), UI::Colors::lightPanel);
}

QTEST_MAIN(tst_PaperPainterLook)
#include "tst_paperpainter_look.moc"
