// A floating selection as the paper shows it: like the drawing it came from, in parts like in one go.

#include "libmodel/strokes/floatingselection.h"
#include "libui/paper/floatingselectionview.h"
#include "paintedview.h"
#include "support/lineart.h"

#include <QTest>

#include <cstring>

using TestSupport::difference;
using TestSupport::PaintedView;

namespace {

constexpr QSize frameSize(640, 360);
constexpr QRect content(72, 32, 496, 296);

std::unique_ptr<Model::Stroke> drawing()
{
    return std::make_unique<Model::BitmapStroke>(TestSupport::lineArt(content.size(), 3), content);
}

void lay(PaintedView &stage, double ratio, double level, double degrees, bool mirrored)
{
    stage.view.setDeviceRatio(ratio);
    stage.view.reset();
    stage.view.setMirrored(mirrored);
    stage.view.rotateTo(degrees);
    stage.view.setZoomLevel(level);
    stage.view.panTo({}, {0.3, 0.2});
}

void addViews()
{
    QTest::addColumn<double>("ratio");
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("degrees");
    QTest::addColumn<bool>("mirrored");
    for (const double ratio : {1.0, 1.5, 2.0}) {
        for (const double level : {0.12, 0.25, 0.5, 0.8, 1.0, 3.0}) {
            for (const bool mirrored : {false, true}) {
                const char *side = mirrored ? ", mirrored" : "";
                QTest::addRow("ratio %g, %g%s", ratio, level, side) << ratio << level << 0.0 << mirrored;
            }
        }
        QTest::addRow("ratio %g, 0.25, turned", ratio) << ratio << 0.25 << 20.0 << false;
        QTest::addRow("ratio %g, 0.8, turned, mirrored", ratio) << ratio << 0.8 << 20.0 << true;
    }
}

} // namespace

class tst_PaperPainterSelection : public QObject
{
    Q_OBJECT

private slots:
    void untouchedLooksAsItsDrawing_data() { addViews(); }
    void untouchedLooksAsItsDrawing();
    void scaledSmallItsLinesStayWhole();
    void partsAreThoseOfTheWhole_data() { addViews(); }
    void partsAreThoseOfTheWhole();
};

void tst_PaperPainterSelection::untouchedLooksAsItsDrawing()
{
    QFETCH(double, ratio);
    QFETCH(double, level);
    QFETCH(double, degrees);
    QFETCH(bool, mirrored);
    // An odd height puts the sheet between pixels.
    PaintedView drawn({800, 601}, frameSize);
    drawn.scene.addStroke(0, 1, drawing());
    lay(drawn, ratio, level, degrees, mirrored);
    const QImage wanted = drawn.painted();

    PaintedView stage({800, 601}, frameSize);
    lay(stage, ratio, level, degrees, mirrored);
    UI::FloatingSelectionView floating;
    floating.setSelection(Model::FloatingSelection(drawing(), frameSize));
    // Its handles are laid out for another view, out of the way.
    UI::ViewTransform elsewhere = stage.view;
    elsewhere.panTo({}, {5000, 5000});
    floating.rebuildHandles(elsewhere, 1.0);
    stage.overlay.floating = &floating;
    const QImage image = stage.painted();

    double sum = 0.0;
    int ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            sum += difference(image.pixel(x, y), wanted.pixel(x, y));
            ink += qBlue(wanted.pixel(x, y)) - qRed(wanted.pixel(x, y)) > 60 ? 1 : 0;
        }
    }
    QVERIFY(ink > 100);
    // Diagonals and shadows lie over the drawing and under the selection; that is all.
    const double mean = sum / ink;
    QVERIFY2(mean < 3.0, qPrintable(QString::number(mean)));
}

void tst_PaperPainterSelection::scaledSmallItsLinesStayWhole()
{
    // Level lines one pixel wide, four apart: at a quarter of the size they are an even quarter of ink.
    PaintedView stage({800, 601}, frameSize);
    // Clear of the diagonals.
    constexpr QRect where(400, 16, 320, 80);
    QImage lines(where.size(), QImage::Format_Alpha8);
    lines.fill(0);
    for (int y = 0; y < lines.height(); y += 4)
        std::memset(lines.scanLine(y), 255, size_t(lines.width()));
    Model::FloatingSelection selection(std::make_unique<Model::BitmapStroke>(lines, where), frameSize);
    Model::FloatingSelection::Transform transform = selection.transform();
    transform.scale = QTransform::fromScale(4.0, 4.0); // from the paper to the content
    selection.setTransform(transform);
    UI::FloatingSelectionView floating;
    floating.setSelection(selection);
    UI::ViewTransform elsewhere = stage.view;
    elsewhere.panTo({}, {5000, 5000});
    floating.rebuildHandles(elsewhere, 1.0);
    stage.overlay.floating = &floating;
    const QImage image = stage.painted();
    const QRect seen =
        (floating.shownTransform().contentToPaper() * stage.view.paperToWidget()).mapRect(where).adjusted(4, 4, -4, -4);
    QVERIFY(seen.width() > 60 && seen.height() > 10);
    // Of (40, 97, 184) on white a quarter is 255 - (255 - 40) / 4 red.
    for (int y = seen.top(); y <= seen.bottom(); ++y) {
        for (int x = seen.left(); x <= seen.right(); ++x)
            QVERIFY2(std::abs(qRed(image.pixel(x, y)) - 201) <= 8,
                     qPrintable(QString::number(qRed(image.pixel(x, y)))));
    }
}

void tst_PaperPainterSelection::partsAreThoseOfTheWhole()
{
    QFETCH(double, ratio);
    QFETCH(double, level);
    QFETCH(double, degrees);
    QFETCH(bool, mirrored);
    PaintedView stage({400, 300}, frameSize);
    lay(stage, ratio, level, degrees, mirrored);
    UI::FloatingSelectionView floating;
    Model::FloatingSelection selection(drawing(), frameSize);
    Model::FloatingSelection::Transform transform = selection.transform();
    transform.translation = QTransform::fromTranslate(3.3, -7.8);
    transform.rotation = QTransform().rotate(11.0);
    selection.setTransform(transform);
    floating.setSelection(selection);
    floating.rebuildHandles(stage.view, 1.0);
    stage.overlay.floating = &floating;
    const QImage whole = stage.painted();
    std::vector<QRect> parts;
    for (int y = 0; y < 300; y += 47) {
        for (int x = 0; x < 400; x += 53)
            parts.push_back(QRect(x, y, 53, 47) & stage.widgetRect());
    }
    const QImage pieced = stage.painted(parts);
    // The painter steps through a turned picture in fractions of a pixel, from where it begins: that shifts tones a
    // little, and where pixels are squares some at their borders go the other way.
    int strays = 0;
    for (int y = 0; y < whole.height(); ++y) {
        for (int x = 0; x < whole.width(); ++x)
            strays += difference(pieced.pixel(x, y), whole.pixel(x, y)) > 16 ? 1 : 0;
    }
    QVERIFY2(strays <= (level > 2.0 ? whole.width() : 0), qPrintable(QString::number(strays)));
}

QTEST_MAIN(tst_PaperPainterSelection)
#include "tst_paperpainter_selection.moc"
