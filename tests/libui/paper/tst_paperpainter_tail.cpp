// The dotted tail between the end of a line in progress and the pen that runs ahead of it.

#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/toolmanager.h"
#include "paintedview.h"
#include "support/glfixture.h"

#include <QTest>

using TestSupport::PaintedView;

namespace {

/// The pen has come from the left end to the right one at a stroke, on this row of the paper.
constexpr QPointF penDown(20, 60);
constexpr QPointF pen(230, 60);

/// A line in progress; it has taken up six tenths of the pen's way at most, the rest is tail.
struct Stage : PaintedView
{
    Stage() : PaintedView({500, 400}, {400, 300}, 2)
    {
        auto *tools = Model::ToolManager::instance();
        tools->setCurrentTool(Model::Tool::Type::Pen, 0);
        tools->setCurrentPenType(Model::Tool::PenType::Brush);
    }
    ~Stage() { scene.takeStroke().reset(); }

    void draw()
    {
        scene.beginStroke({penDown, 1.0, 0});
        scene.addSample({pen, 1.0, 5});
    }

    /// By how much each of the 16 columns that end at the pen is darker with \a image than with \a without, summed up
    /// over the rows around the pen: 1 is a whole pixel of white turned black.
    [[nodiscard]] std::vector<double> darkness(const QImage &image, const QImage &without) const
    {
        const QPoint at = view.paperToWidget().map(pen).toPoint();
        std::vector<double> columns;
        for (int x = at.x() - 16; x < at.x(); ++x) {
            double sum = 0.0;
            for (int y = at.y() - 6; y <= at.y() + 6; ++y)
                sum += (qGray(without.pixel(x, y)) - qGray(image.pixel(x, y))) / 255.0;
            columns.push_back(sum);
        }
        return columns;
    }
};

} // namespace

class tst_PaperPainterTail : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void isDotted();
    void isAsWideOnTheScreenAtAnyZoom_data();
    void isAsWideOnTheScreenAtAnyZoom();
    void movesWithTheFrameOffItsPegs();
    void isNotThereWhileAnotherFrameIsOnShow();
    void isNotThereWhileItsLayerIsHidden();
};

void tst_PaperPainterTail::initTestCase()
{
    QVERIFY(TestSupport::startRenderer({800, 600}));
}

void tst_PaperPainterTail::cleanup()
{
    Model::ToolManager::instance()->setCurrentPenType(Model::Tool::PenType::Pencil);
}

void tst_PaperPainterTail::isDotted()
{
    Stage stage;
    const QImage without = stage.painted();
    stage.draw();
    const std::vector<double> columns = stage.darkness(stage.painted(), without);
    QVERIFY(std::ranges::count_if(columns, [](double sum) { return sum > 0.5; }) >= 4);
    QVERIFY(std::ranges::count_if(columns, [](double sum) { return sum < 0.1; }) >= 2);
}

void tst_PaperPainterTail::isAsWideOnTheScreenAtAnyZoom_data()
{
    QTest::addColumn<double>("level");
    QTest::addRow("small") << 0.25;
    QTest::addRow("large") << 4.0;
}

void tst_PaperPainterTail::isAsWideOnTheScreenAtAnyZoom()
{
    QFETCH(double, level);
    const auto widthAt = [](double zoomLevel) {
        Stage stage;
        stage.view.setZoomLevel(zoomLevel);
        stage.view.panTo(stage.view.paperToWidget().map(pen), {250, 200});
        const QImage without = stage.painted();
        stage.draw();
        const std::vector<double> columns = stage.darkness(stage.painted(), without);
        return *std::ranges::max_element(columns);
    };
    const double plain = widthAt(1.0);
    QVERIFY2(plain > 0.8, qPrintable(QString::number(plain)));
    const double width = widthAt(level);
    QVERIFY2(std::abs(width - plain) < 0.15 * plain, qPrintable(QStringLiteral("%1, %2").arg(width).arg(plain)));
}

void tst_PaperPainterTail::movesWithTheFrameOffItsPegs()
{
    Stage stage;
    stage.view.setOffPegs(QTransform::fromTranslate(-30, -20)); // from desk to paper
    const QImage without = stage.painted();
    stage.draw();
    const QImage image = stage.painted();
    // The sheet lies at (50, 50) of the widget, the frame 30 to the right and 20 down.
    const QPoint at = QPoint(50 + 30, 50 + 20) + pen.toPoint();
    QCOMPARE(stage.view.paperToWidget().map(pen).toPoint(), at);
    const std::vector<double> columns = stage.darkness(image, without);
    QVERIFY(*std::ranges::max_element(columns) > 0.5);
    const QRect onThePegs(at.x() - 46, at.y() - 24, 16, 8);
    QCOMPARE(image.copy(onThePegs), without.copy(onThePegs));
}

void tst_PaperPainterTail::isNotThereWhileAnotherFrameIsOnShow()
{
    Stage stage;
    stage.scene.setScrubFrame(2);
    const QImage without = stage.painted();
    stage.draw();
    QVERIFY(stage.scene.hasActiveStroke());
    QCOMPARE(stage.painted(), without);
}

void tst_PaperPainterTail::isNotThereWhileItsLayerIsHidden()
{
    Stage stage;
    stage.scene.setLayerVisible(0, false);
    const QImage without = stage.painted();
    stage.draw();
    QVERIFY(stage.scene.hasActiveStroke());
    QCOMPARE(stage.painted(), without);
}

QTEST_MAIN(tst_PaperPainterTail)
#include "tst_paperpainter_tail.moc"
