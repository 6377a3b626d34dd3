#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/viewzones.h"
#include "libui/uistartup.h"
#include "paperstage.h"
#include "support/glfixture.h"

#include <QPaintEvent>
#include <QTest>

#include <algorithm>
#include <cstdlib>
#include <utility>

using Model::Tool;
using TestSupport::PaperStage;

namespace {

/// What of a paper was painted since the last look.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(UI::Paper *paper) { paper->installEventFilter(this); }

    QRect taken()
    {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        return std::exchange(m_region, QRegion()).boundingRect();
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            m_region += static_cast<QPaintEvent *>(event)->region();
        return false;
    }

private:
    QRegion m_region;
};

/// Levels by which the same pixel may differ when another part of the widget is painted at once.
constexpr int rounding = 4;

/// Empty if the screen of \a stage shows what a whole repaint does, or else where and by how much it differs.
QString traces(const PaperStage &stage)
{
    const QImage shown = stage.screen();
    const QImage wanted = stage.repainted();
    int worst = 0;
    QRect where;
    for (int y = 0; y < wanted.height(); ++y) {
        for (int x = 0; x < wanted.width(); ++x) {
            const QRgb a = shown.pixel(x, y);
            const QRgb b = wanted.pixel(x, y);
            const int difference =
                std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
            if (difference > rounding)
                where |= QRect(x, y, 1, 1);
            worst = std::max(worst, difference);
        }
    }
    if (where.isNull())
        return {};
    return QStringLiteral("%1 levels within (%2, %3) to (%4, %5)")
        .arg(worst)
        .arg(where.left())
        .arg(where.top())
        .arg(where.right())
        .arg(where.bottom());
}

QRect around(QPointF point, int reach)
{
    return QRect(point.toPoint() - QPoint(reach, reach), QSize(2 * reach + 1, 2 * reach + 1));
}

} // namespace

/// The paper repaints what has changed, all of it and little else.
class tst_PaperRepaint : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void gesturesLeaveNoTraces_data();
    void gesturesLeaveNoTraces();
    void neighbourOfAFrameOffItsPegsIsRepaintedOnThePegs();
    void otherLayersFadeAndComeBackWithTheTool_data();
    void otherLayersFadeAndComeBackWithTheTool();
    void pressShowsItsSymbolAlone();
    void releaseTakesTheSymbolAwayAlone();
    void buttonIsRepaintedAlone();
    void pointerThatLeavesTheButtonUncoversIt();
    void lassoRepaintsItsNewPieces();
    void draggedSelectionRepaintsWhereItWasAndIs();
    void unchangedViewIsNotRepainted();
    void gridIsShownAndHidden();
};

void tst_PaperRepaint::initTestCase()
{
    UI::startUp();
    QVERIFY(TestSupport::startRenderer({1920, 1080}));
}

void tst_PaperRepaint::gesturesLeaveNoTraces_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("isOffPegs");
    for (int type = 0; type <= 10; ++type) {
        QTest::addRow("%d on the pegs", type) << type << false;
        QTest::addRow("%d off the pegs", type) << type << true;
    }
}

void tst_PaperRepaint::gesturesLeaveNoTraces()
{
    QFETCH(int, type);
    QFETCH(bool, isOffPegs);
    PaperStage stage;
    QObject::connect(stage.paper.get(), &UI::Paper::offPegsTransformChanged, stage.paper.get(),
                     [&](const QTransform &transform) { stage.scene()->setCurrentDrawingOffPegsTransform(transform); });
    if (isOffPegs)
        stage.scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(30, 20).rotate(5));
    QImage block(120, 90, QImage::Format_Alpha8);
    block.fill(255);
    if (type == int(Tool::Type::FloatingSelection))
        stage.mrScene->setFloatingSelection(
            {std::make_unique<Model::BitmapStroke>(block, QRect(120, 90, 120, 90)), QSize(400, 300)});
    stage.useTool(static_cast<Tool::Type>(type));
    (void)stage.screen();
    const std::vector<QPointF> way = {{230, 190}, {246, 199}, {270, 215}, {261, 240}, {222, 236}};
    stage.hover(way[0] - QPointF(3, 3));
    QCOMPARE(traces(stage), QString());
    stage.penPress(way[0]);
    QCOMPARE(traces(stage), QString());
    for (std::size_t i = 1; i < way.size(); ++i) {
        stage.penMove(way[i]);
        QCOMPARE(traces(stage), QString());
    }
    stage.penRelease(way.back());
    QCOMPARE(traces(stage), QString());
    stage.useTool(Tool::Type::Pen);
    QCOMPARE(traces(stage), QString());
}

void tst_PaperRepaint::neighbourOfAFrameOffItsPegsIsRepaintedOnThePegs()
{
    PaperStage stage;
    Model::Scene *scene = stage.scene();
    scene->addBlankDrawing(0, 1);
    scene->setFrameRange(1, 2, 1, 0);
    // So far off that the two places of what changes have nothing in common.
    scene->setOffPegsTransform(1, QTransform::fromTranslate(0, 150));
    const QImage blank = stage.screen();
    QImage block(60, 40, QImage::Format_Alpha8);
    block.fill(255);
    const auto stroke = [&block] { return std::make_unique<Model::BitmapStroke>(block, QRect(100, 200, 60, 40)); };
    QVERIFY(scene->addStroke(0, 2, stroke()));
    QVERIFY(stage.screen() != blank);
    QCOMPARE(traces(stage), QString());
    // And what is drawn on the frame itself, where that lies.
    QVERIFY(scene->addStroke(0, 1, stroke()));
    QCOMPARE(traces(stage), QString());
}

void tst_PaperRepaint::otherLayersFadeAndComeBackWithTheTool_data()
{
    QTest::addColumn<bool>("startsOffPegs");
    QTest::addColumn<bool>("lassoFirst");
    for (const bool startsOffPegs : {false, true}) {
        for (const bool lassoFirst : {false, true}) {
            const char *place = startsOffPegs ? "off the pegs" : "on, then off the pegs";
            QTest::addRow("%s, %s", place, lassoFirst ? "lasso first" : "pen first") << startsOffPegs << lassoFirst;
        }
    }
}

void tst_PaperRepaint::otherLayersFadeAndComeBackWithTheTool()
{
    QFETCH(bool, startsOffPegs);
    QFETCH(bool, lassoFirst);
    const QTransform offPegs = QTransform::fromTranslate(30, 20).rotate(5);
    PaperStage stage;
    auto other = std::make_shared<Model::StrokeLayer>(QColor(200, 30, 30), QSize(400, 300));
    const int otherIdx = stage.scene()->insertLayer(other, stage.scene()->layerCount());
    QImage block(120, 90, QImage::Format_Alpha8);
    block.fill(255);
    stage.scene()->addStroke(otherIdx, 1, std::make_unique<Model::BitmapStroke>(block, QRect(60, 40, 120, 90)));
    stage.scene()->setActiveFrameAndLayer(1, 1 - otherIdx, Model::Scene::KeepFrameOnDrawing);
    if (startsOffPegs)
        stage.scene()->setCurrentDrawingOffPegsTransform(offPegs);
    stage.useTool(lassoFirst ? Tool::Type::Lasso : Tool::Type::Pen);
    QCOMPARE(traces(stage), QString());
    if (!startsOffPegs)
        stage.scene()->setCurrentDrawingOffPegsTransform(offPegs);
    QCOMPARE(traces(stage), QString());
    for (const auto type : {Tool::Type::Pen, Tool::Type::Lasso, Tool::Type::Pen, Tool::Type::Cutter, Tool::Type::Pen}) {
        stage.useTool(type);
        QCOMPARE(traces(stage), QString());
    }
    stage.useTool(Tool::Type::Lasso);
    const QImage faded = stage.screen();
    stage.useTool(Tool::Type::Pen);
    QVERIFY(stage.screen() != faded);
}

void tst_PaperRepaint::pressShowsItsSymbolAlone()
{
    PaperStage stage;
    for (const auto type :
         {Tool::Type::Hand, Tool::Type::Zoom, Tool::Type::Rotate, Tool::Type::ZPR, Tool::Type::OffPegs}) {
        stage.useTool(type);
        const QImage before = stage.screen();
        PaintWatch watch(stage.paper.get());
        stage.pause(2000);
        stage.penPress({230, 190});
        const QRect painted = watch.taken();
        QVERIFY(painted.contains(230, 190));
        QVERIFY2(around({230, 190}, 60).contains(painted), qPrintable(QString::number(painted.width())));
        QVERIFY(stage.screen() != before);
        stage.penRelease({230, 190});
        QCOMPARE(stage.screen(), before);
    }
}

void tst_PaperRepaint::releaseTakesTheSymbolAwayAlone()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Hand);
    stage.penPress({230, 190});
    stage.penMove({260, 200});
    (void)stage.screen();
    PaintWatch watch(stage.paper.get());
    stage.penRelease({260, 200});
    // It stays where the press was, on the screen.
    QVERIFY(around({230, 190}, 60).contains(watch.taken()));
}

void tst_PaperRepaint::buttonIsRepaintedAlone()
{
    PaperStage stage;
    stage.scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(30, 20));
    stage.useTool(Tool::Type::OffPegs);
    const QRectF button = UI::ViewZones(stage.paper->view().usableRect(), 1.0).button();
    const QRect room = button.toAlignedRect().adjusted(-4, -4, 4, 4);
    stage.hover({100, 100});
    const QImage plain = stage.screen();
    PaintWatch watch(stage.paper.get());
    stage.hover(button.center());
    QVERIFY(room.contains(watch.taken()));
    const QImage hovered = stage.screen();
    QVERIFY(hovered != plain);
    stage.hover(button.center() + QPointF(2, 0));
    QVERIFY(watch.taken().isEmpty());
    stage.mousePress(button.center());
    QVERIFY(room.contains(watch.taken()));
    QVERIFY(stage.screen() != hovered && stage.screen() != plain);
    stage.mouseMove({100, 100});
    QCOMPARE(stage.screen(), plain);
    stage.mouseRelease({100, 100});
    QVERIFY(room.contains(watch.taken()));
    QCOMPARE(stage.screen(), plain);
}

void tst_PaperRepaint::pointerThatLeavesTheButtonUncoversIt()
{
    PaperStage stage;
    stage.scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(30, 20));
    stage.useTool(Tool::Type::OffPegs);
    stage.hover({100, 100});
    const QImage plain = stage.screen();
    stage.hover(UI::ViewZones(stage.paper->view().usableRect(), 1.0).button().center());
    QVERIFY(stage.screen() != plain);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(stage.paper.get(), &leave);
    QCOMPARE(stage.screen(), plain);
}

void tst_PaperRepaint::lassoRepaintsItsNewPieces()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Lasso);
    stage.penPress({120, 120});
    for (int i = 1; i <= 10; ++i)
        stage.penMove({120.0 + 12 * i, 120});
    (void)stage.screen();
    PaintWatch watch(stage.paper.get());
    stage.penMove({252, 120});
    const QRect painted = watch.taken();
    QVERIFY(!painted.isEmpty());
    QVERIFY2(painted.width() < 60 && painted.height() < 40, qPrintable(QString::number(painted.width())));
    stage.penRelease({252, 120});
}

void tst_PaperRepaint::draggedSelectionRepaintsWhereItWasAndIs()
{
    PaperStage stage;
    QImage block(100, 90, QImage::Format_Alpha8);
    block.fill(255);
    stage.mrScene->setFloatingSelection(
        {std::make_unique<Model::BitmapStroke>(block, QRect(60, 50, 100, 90)), QSize(400, 300)});
    stage.useTool(Tool::Type::FloatingSelection);
    stage.penPress({140, 130});
    (void)stage.screen();
    PaintWatch watch(stage.paper.get());
    stage.penMove({150, 140});
    const QRect painted = watch.taken();
    // The block is at (110, 100) of the widget, with some room for its handles.
    QVERIFY(painted.contains(QRect(110, 100, 110, 100)));
    QVERIFY(QRect(110, 100, 110, 100).adjusted(-45, -45, 45, 45).contains(painted));
    stage.penRelease({150, 140});
}

void tst_PaperRepaint::unchangedViewIsNotRepainted()
{
    PaperStage stage;
    (void)stage.screen();
    PaintWatch watch(stage.paper.get());
    stage.paper->resetView();
    stage.paper->setMirrorView(false);
    stage.scene()->setActiveFrameAndLayer(1, 0, Model::Scene::KeepFrameOnDrawing);
    stage.hover({100, 100});
    stage.hover({300, 300});
    QVERIFY(watch.taken().isEmpty());
}

void tst_PaperRepaint::gridIsShownAndHidden()
{
    PaperStage stage;
    const QImage plain = stage.screen();
    stage.paper->setGridStatus(MR::GridStatus::GridOn);
    QList<QImage> seen = {plain};
    for (int type = 0; type <= 4; ++type) {
        stage.paper->setGridType(static_cast<MR::GridType>(type));
        const QImage grid = stage.screen();
        QVERIFY(!seen.contains(grid));
        QCOMPARE(stage.repainted(), grid);
        seen.append(grid);
    }
    // Another frame size has a grid of its own.
    stage.scene()->setFrameSize({360, 320}, MR::FitMode::FitModeIgnore);
    const QImage larger = stage.screen();
    stage.paper->setGridType(MR::GridType::Renaissance);
    QCOMPARE(stage.screen(), larger);
    stage.paper->setGridStatus(MR::GridStatus::GridOff);
    QVERIFY(stage.screen() != larger);
    stage.scene()->setFrameSize({400, 300}, MR::FitMode::FitModeIgnore);
    stage.paper->resetView();
    QCOMPARE(stage.screen(), plain);
}

QTEST_MAIN(tst_PaperRepaint)
#include "tst_paperrepaint.moc"
