// Lasso, cutter, stamp and drop on drawings with lines, as far as the scene and the commands decide.

#include "libcommands/collapsevectordata.h"
#include "libcommands/stroke.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/pentool.h"
#include "libmodel/tools/toolmanager.h"
#include "pickupstage.h"
#include "support/glfixture.h"
#include "support/scenesnapshot.h"

#include <QTest>

#include <limits>

using namespace Model;
using namespace TestSupport;

namespace {

const QUuid idA = QUuid::fromString(QStringLiteral("{0000000a-0000-4000-8000-000000000000}"));

template<class DrawingTool>
std::unique_ptr<SingleStroke> line(const DrawingTool &tool, QPointF from, QPointF to)
{
    auto stroke = std::make_unique<SingleStroke>(&tool);
    stroke->addSample({from, 1.0, 1});
    stroke->addSample({to, 1.0, 2});
    stroke->finish();
    return stroke;
}

std::unique_ptr<SingleStroke> pen(QPointF from, QPointF to)
{
    return line(PenTool(Tool::PenType::Marker), from, to);
}

std::unique_ptr<SingleStroke> eraser(QPointF from, QPointF to)
{
    return line(EraserTool(Tool::EraserType::VinylEraser), from, to);
}

QPainterPath rectPath(double x, double y, double width, double height)
{
    QPainterPath path;
    path.addRect(x, y, width, height);
    return path;
}

int coverage(const QImage &image, int x, int y)
{
    return image.isNull() ? 0 : image.constScanLine(y)[x];
}

/// All single strokes of a tree, oldest first.
QList<const SingleStroke *> singleStrokes(const CompoundStroke &compound)
{
    QList<const SingleStroke *> all;
    for (int i = 0; i < compound.count(); ++i) {
        if (const auto *group = dynamic_cast<const CompoundStroke *>(&compound.at(i)))
            all += singleStrokes(*group);
        else if (const auto *single = dynamic_cast<const SingleStroke *>(&compound.at(i)))
            all += single;
    }
    return all;
}

/// The outermost compound of the tree that is limited by a mask; null for none.
const CompoundStroke *masked(const CompoundStroke &compound)
{
    if (!compound.keepPath().isEmpty() || !compound.cutPath().isEmpty())
        return &compound;
    for (int i = 0; i < compound.count(); ++i) {
        const auto *group = dynamic_cast<const CompoundStroke *>(&compound.at(i));
        if (const CompoundStroke *found = group ? masked(*group) : nullptr)
            return found;
    }
    return nullptr;
}

/// A line from left to right across the lasso of 60 pixels in the middle of the frame.
const QPainterPath middle = rectPath(130, 90, 60, 60);
void addLineAcross(PickUpStage &stage)
{
    stage.drawing().addStroke(pen({40, 120}, {280, 120}));
}

} // namespace

class tst_PickUpCommands : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(startRenderer(pickUpFrame)); }
    void lassoAroundNothingGivesNoSelectionNoCommandNoToolChange_data();
    void lassoAroundNothingGivesNoSelectionNoCommandNoToolChange();
    void lassoOnABlankDrawingGivesNoSelection();
    void noSelectionFromWhereNothingCanBePickedUp_data();
    void noSelectionFromWhereNothingCanBePickedUp();
    void selectionOfAHoldIsOfTheDrawingItShows();
    void emptyPathIsTheWholeDrawing();
    void lassoFarBeyondThePaperTakesAll();
    void cutterLeavesTheLinesTwoHalves();
    void strokeAcrossIsMaskedOnBothSidesAndNeverSplit();
    void lassoAloneLeavesTheDrawing();
    void selfCrossingLassoTakesAllThatItGoesAround();
    void newStrokeAcrossTheCutIsFullyVisible();
    void stampOnSeveralCellsIsOneStep();
    void stampOnOneCellIsOneStep();
    void stampOnAnOriginalAndItsHoldsLandsOnce();
    void lastSelectionCanBeHadBackAfterStampAndDrop();
    void pickUpWalksBackAndForthExactly_data();
    void pickUpWalksBackAndForthExactly();
    void cutThatTakesAllLeavesABlankDrawing();
    void onlyErasersCollapseToNothing();
    void collapsedDrawingLooksTheSameAndCanBeCutFurther();
    void copyMadeInAStateIsFoundAgainAfterUndoAndRedo();
    void selectionUnderAnUnusableTransformStaysWhereItIs();
};

void tst_PickUpCommands::lassoAroundNothingGivesNoSelectionNoCommandNoToolChange_data()
{
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    QTest::addColumn<QPainterPath>("path");
    QTest::newRow("beside the line") << rectPath(130, 20, 60, 60);
    QTest::newRow("outside the paper") << rectPath(-500, -500, 100, 100);
    QTest::newRow("no width") << rectPath(150, 90, 0, 60);
    QPainterPath straight(QPointF(150, 90));
    straight.lineTo(150, 150);
    QTest::newRow("no area") << straight;
    QTest::newRow("no number") << QTransform(1, 0, 0, 1, notANumber, 0).map(middle);
    QTest::newRow("huge") << QTransform::fromScale(1e300, 1e300).map(middle);
    QTest::newRow("beyond all coordinates") << rectPath(-1e9, -1e9, 2e9, 2e9);
}

void tst_PickUpCommands::lassoAroundNothingGivesNoSelectionNoCommandNoToolChange()
{
    QFETCH(QPainterPath, path);
    PickUpStage stage;
    addLineAcross(stage);
    // Bounds around what is empty inside: the path lies within them.
    stage.drawing().addStroke(pen({60, 10}, {60, 230}));
    auto corner = std::make_unique<CompoundStroke>();
    corner->append(pen({70, 5}, {310, 5}));
    corner->append(pen({70, 5}, {70, 100}));
    stage.drawing().addStroke(std::move(corner));
    const SceneSnapshot before(*stage.mrScene());
    const Tool::Type tool = ToolManager::instance()->currentToolType();
    QVERIFY(stage.scene().floatingSelectionFrom(path).isNull());
    QVERIFY(!stage.pickUp(path, true));
    QCOMPARE(stage.stack().count(), 0);
    QCOMPARE(ToolManager::instance()->currentToolType(), tool);
    QCOMPARE(before.diff(SceneSnapshot(*stage.mrScene())), QString());
}

void tst_PickUpCommands::lassoOnABlankDrawingGivesNoSelection()
{
    PickUpStage stage;
    QVERIFY(stage.scene().floatingSelectionFrom(middle).isNull());
    QVERIFY(stage.scene().floatingSelectionFrom(QPainterPath()).isNull());
}

void tst_PickUpCommands::noSelectionFromWhereNothingCanBePickedUp_data()
{
    QTest::addColumn<QString>("where");
    for (const char *where :
         {"hidden layer", "layer without opacity", "reference layer", "behind the last", "no layer"})
        QTest::newRow(where) << QString::fromLatin1(where);
}

void tst_PickUpCommands::noSelectionFromWhereNothingCanBePickedUp()
{
    QFETCH(QString, where);
    PickUpStage stage;
    addLineAcross(stage);
    QVERIFY(!stage.scene().floatingSelectionFrom(middle).isNull());
    if (where == "hidden layer")
        stage.scene().setLayerVisible(0, false);
    else if (where == "layer without opacity")
        stage.scene().setLayerOpacity(0, 0.0);
    else if (where == "behind the last")
        stage.scene().setActiveFrameAndLayer(2, 0, Scene::AllowFrameAfterLast);
    else if (where == "no layer")
        stage.scene().removeLayer(0);
    else
        stage.scene().setActiveFrameAndLayer(
            1, stage.scene().insertLayer(std::make_shared<ReferenceLayer>(pickUpFrame), 1), Scene::KeepFrameOnDrawing);
    QVERIFY(stage.scene().floatingSelectionFrom(middle).isNull());
    QVERIFY(stage.scene().floatingSelectionFrom(QPainterPath()).isNull());
    for (const int layerIdx : {-1, 1, 2, std::numeric_limits<int>::max()}) {
        for (const int frameId : {-1, 0, 1, 2, std::numeric_limits<int>::max()})
            QVERIFY(stage.scene().cutPath(layerIdx, frameId, middle).isEmpty());
    }
}

void tst_PickUpCommands::selectionOfAHoldIsOfTheDrawingItShows()
{
    PickUpStage stage;
    addLineAcross(stage);
    stage.scene().addCloneDrawings(0, 1, 2);
    stage.scene().setActiveFrameAndLayer(3, 0, Scene::KeepFrameOnDrawing);
    QVERIFY(stage.pickUp(middle, true));
    QCOMPARE(&stage.drawing(3), &stage.drawing(1));
    QCOMPARE(coverage(stage.image(1), 160, 120), 0);
    QVERIFY(coverage(stage.image(1), 80, 120) > 200);
}

void tst_PickUpCommands::emptyPathIsTheWholeDrawing()
{
    PickUpStage stage;
    addLineAcross(stage);
    QVERIFY(stage.pickUp(QPainterPath(), true));
    QVERIFY(stage.drawing().isEmpty());
    QCOMPARE(stage.selection().rect(), QRectF(pen({40, 120}, {280, 120})->boundingRect()));
    stage.stack().undo();
    QCOMPARE(stage.drawing().strokes().count(), 1);
}

void tst_PickUpCommands::lassoFarBeyondThePaperTakesAll()
{
    PickUpStage stage;
    addLineAcross(stage);
    const QImage before = stage.image();
    QVERIFY(stage.pickUp(rectPath(-5000, -5000, 10000, 10000), true));
    QVERIFY(stage.drawing().isEmpty());
    stage.stamp();
    QCOMPARE(stage.image(), before);
    stage.stack().undo();
    stage.stack().undo();
    QCOMPARE(stage.image(), before);
}

void tst_PickUpCommands::cutterLeavesTheLinesTwoHalves()
{
    PickUpStage stage;
    addLineAcross(stage);
    QVERIFY(stage.pickUp(middle, true));
    const QImage left = stage.image();
    for (const int x : {60, 100, 127, 193, 220, 260})
        QVERIFY2(coverage(left, x, 120) > 200, qPrintable(QString::number(x)));
    for (int x = 132; x < 188; ++x)
        QCOMPARE(coverage(left, x, 120), 0);
    // Picked up is the inside only.
    const QRect rect = stage.selection().imageRect();
    const QImage inside = stage.selection().image();
    QVERIFY(QRect(128, 88, 64, 64).contains(stage.selection().rect().toRect()));
    QVERIFY(coverage(inside, 160 - rect.x(), 120 - rect.y()) > 200);
}

void tst_PickUpCommands::strokeAcrossIsMaskedOnBothSidesAndNeverSplit()
{
    PickUpStage stage;
    addLineAcross(stage);
    const QRect bounds = stage.drawing().strokes().boundingRect();
    QVERIFY(stage.pickUp(middle, true));
    const auto *picked = dynamic_cast<const CompoundStroke *>(stage.selection().content());
    QVERIFY(picked);
    // The line is in both, whole.
    const auto inside = singleStrokes(*picked);
    const auto outside = singleStrokes(stage.drawing().strokes());
    QCOMPARE(inside.size(), 1);
    QCOMPARE(outside.size(), 1);
    QCOMPARE(inside.at(0)->boundingRect(), bounds);
    QCOMPARE(outside.at(0)->boundingRect(), bounds);
    QCOMPARE(inside.at(0)->segments(), outside.at(0)->segments());
    // What limits them is the lasso: it is kept of the one and cut from the other.
    QVERIFY(masked(*picked));
    QCOMPARE(masked(*picked)->keepPath().boundingRect(), middle.boundingRect());
    QVERIFY(masked(*picked)->cutPath().isEmpty());
    QVERIFY(masked(stage.drawing().strokes()));
    QCOMPARE(masked(stage.drawing().strokes())->cutPath().boundingRect(), middle.boundingRect());
    QVERIFY(masked(stage.drawing().strokes())->keepPath().isEmpty());
}

void tst_PickUpCommands::lassoAloneLeavesTheDrawing()
{
    PickUpStage stage;
    addLineAcross(stage);
    const StrokeDrawing *drawing = &stage.drawing();
    const QImage before = stage.image();
    QVERIFY(stage.pickUp(middle, false));
    QCOMPARE(&stage.drawing(), drawing);
    QCOMPARE(stage.image(), before);
    QVERIFY(!stage.selection().isCutOut());
    QCOMPARE(ToolManager::instance()->currentToolType(), Tool::Type::FloatingSelection);
}

void tst_PickUpCommands::selfCrossingLassoTakesAllThatItGoesAround()
{
    PickUpStage stage;
    addLineAcross(stage);
    // Twice around the middle, in one direction: nothing is out because it was gone around twice.
    QPainterPath twice;
    twice.moveTo(100, 90);
    for (const QPointF corner : {QPointF(190, 90), QPointF(190, 150), QPointF(130, 150), QPointF(130, 80),
                                 QPointF(220, 80), QPointF(220, 160), QPointF(100, 160)})
        twice.lineTo(corner);
    twice.closeSubpath();
    twice.setFillRule(Qt::WindingFill);
    QVERIFY(stage.pickUp(twice.simplified(), true));
    for (int x = 102; x < 218; ++x)
        QCOMPARE(coverage(stage.image(), x, 120), 0);
    QVERIFY(coverage(stage.image(), 96, 120) > 200);
    QVERIFY(coverage(stage.image(), 224, 120) > 200);
}

void tst_PickUpCommands::newStrokeAcrossTheCutIsFullyVisible()
{
    PickUpStage stage;
    addLineAcross(stage);
    QVERIFY(stage.pickUp(middle, true));
    MRScene::pushCommand(new Commands::Stroke(stage.mrScene(), stage.cell(1), pen({160, 40}, {160, 200})));
    for (int y = 50; y < 190; ++y)
        QVERIFY(coverage(stage.image(), 160, y) > 200);
}

void tst_PickUpCommands::stampOnSeveralCellsIsOneStep()
{
    PickUpStage stage(4);
    addLineAcross(stage);
    QVERIFY(stage.pickUp(middle, false));
    const SceneSnapshot before(*stage.mrScene());
    stage.stamp({stage.cell(2), stage.cell(3), stage.cell(4)});
    QCOMPARE(stage.stack().index(), 2);
    QCOMPARE(stage.stack().undoText(), QString("Stamp Floating Selection"));
    for (const int frameId : {2, 3, 4})
        QVERIFY(coverage(stage.image(frameId), 160, 120) > 200);
    QCOMPARE(stage.drawing(1).strokes().count(), 1);
    const SceneSnapshot after(*stage.mrScene());
    stage.stack().undo();
    QCOMPARE(before.diff(SceneSnapshot(*stage.mrScene())), QString());
    QCOMPARE(ToolManager::instance()->currentToolType(), Tool::Type::FloatingSelection);
    stage.stack().redo();
    QCOMPARE(after.diff(SceneSnapshot(*stage.mrScene())), QString());
    QCOMPARE(ToolManager::instance()->currentToolType(), Tool::Type::Pen);
}

void tst_PickUpCommands::stampOnOneCellIsOneStep()
{
    PickUpStage stage;
    addLineAcross(stage);
    QVERIFY(stage.pickUp(middle, true));
    QCOMPARE(stage.stack().undoText(), QString("New Floating Selection"));
    stage.stamp();
    QCOMPARE(stage.stack().index(), 2);
    QCOMPARE(stage.stack().undoText(), QString("Stamp Floating Selection"));
    QVERIFY(coverage(stage.image(), 160, 120) > 200);
}

void tst_PickUpCommands::stampOnAnOriginalAndItsHoldsLandsOnce()
{
    PickUpStage stage;
    addLineAcross(stage);
    stage.scene().addCloneDrawings(0, 1, 2);
    QVERIFY(stage.pickUp(middle, false));
    stage.stamp({stage.cell(1), stage.cell(2), stage.cell(3)});
    QCOMPARE(stage.drawing().strokes().count(), 2);
    stage.stack().undo();
    QCOMPARE(stage.drawing().strokes().count(), 1);
}

void tst_PickUpCommands::lastSelectionCanBeHadBackAfterStampAndDrop()
{
    PickUpStage stage;
    addLineAcross(stage);
    QVERIFY(stage.pickUp(middle, true));
    const Stroke *content = stage.selection().content();
    stage.stamp();
    // Only the tool is another; the selection is still the scene's.
    QCOMPARE(stage.selection().content(), content);
    stage.stack().undo();
    stage.drop();
    QVERIFY(stage.selection().isNull());
    stage.stack().undo();
    QCOMPARE(stage.selection().content(), content);
    QCOMPARE(ToolManager::instance()->currentToolType(), Tool::Type::FloatingSelection);
}

void tst_PickUpCommands::pickUpWalksBackAndForthExactly_data()
{
    QTest::addColumn<bool>("whole");
    QTest::addColumn<bool>("cut");
    QTest::addColumn<bool>("collapses");
    QTest::newRow("lasso") << false << false << false;
    QTest::newRow("lasso, collapsed") << false << false << true;
    QTest::newRow("cutter") << false << true << false;
    QTest::newRow("cutter, collapsed") << false << true << true;
    QTest::newRow("all") << true << true << false;
    QTest::newRow("all, collapsed") << true << true << true;
}

void tst_PickUpCommands::pickUpWalksBackAndForthExactly()
{
    QFETCH(bool, whole);
    QFETCH(bool, cut);
    QFETCH(bool, collapses);
    PickUpStage stage;
    addLineAcross(stage);
    stage.drawing().addStroke(eraser({100, 110}, {100, 130}));
    const SceneSnapshot before(*stage.mrScene());
    QVERIFY(stage.pickUp(whole ? QPainterPath() : middle, cut, collapses));
    const SceneSnapshot pickedUp(*stage.mrScene());
    stage.stamp();
    const SceneSnapshot stamped(*stage.mrScene());
    QCOMPARE(stage.stack().index(), 2);
    for (int round = 0; round < 2; ++round) {
        stage.stack().undo();
        QCOMPARE(pickedUp.diff(SceneSnapshot(*stage.mrScene())), QString());
        stage.stack().undo();
        QCOMPARE(before.diff(SceneSnapshot(*stage.mrScene())), QString());
        QCOMPARE(ToolManager::instance()->currentToolType(), Tool::Type::Pen);
        stage.stack().redo();
        QCOMPARE(pickedUp.diff(SceneSnapshot(*stage.mrScene())), QString());
        QCOMPARE(ToolManager::instance()->currentToolType(), Tool::Type::FloatingSelection);
        stage.stack().redo();
        QCOMPARE(stamped.diff(SceneSnapshot(*stage.mrScene())), QString());
    }
}

void tst_PickUpCommands::cutThatTakesAllLeavesABlankDrawing()
{
    PickUpStage stage;
    addLineAcross(stage);
    const QImage before = stage.image();
    QVERIFY(stage.pickUp(rectPath(10, 10, 300, 220), true));
    QVERIFY(stage.drawing().isEmpty());
    stage.stamp();
    QCOMPARE(stage.image(), before);
}

void tst_PickUpCommands::onlyErasersCollapseToNothing()
{
    PickUpStage stage;
    auto erasers = std::make_unique<CompoundStroke>();
    erasers->append(eraser({150, 100}, {150, 220}));
    stage.drawing().addStroke(std::move(erasers));
    QCOMPARE(stage.drawing().strokes().boundingRect(), QRect());
    const SceneSnapshot before(*stage.mrScene());
    MRScene::pushCommand(new Commands::CollapseVectorData(stage.mrScene(), stage.cell(1), nullptr));
    QCOMPARE(stage.stack().count(), 1);
    const CompoundStroke &left = stage.drawing().strokes();
    QCOMPARE(left.boundingRect(), QRect());
    QCOMPARE(left.count(), 1);
    QCOMPARE(left.at(0).type(), Stroke::Type::Bitmap);
    QVERIFY(left.at(0).isEmpty());
    stage.stack().undo();
    QCOMPARE(before.diff(SceneSnapshot(*stage.mrScene())), QString());
}

void tst_PickUpCommands::collapsedDrawingLooksTheSameAndCanBeCutFurther()
{
    PickUpStage stage;
    addLineAcross(stage);
    stage.drawing().addStroke(eraser({100, 110}, {100, 130}));
    const QImage before = stage.image();
    QVERIFY(stage.pickUp(rectPath(20, 20, 40, 200), false, true));
    QCOMPARE(stage.drawing().strokes().count(), 1);
    QCOMPARE(stage.drawing().strokes().at(0).type(), Stroke::Type::Bitmap);
    for (const int x : {60, 80, 120, 160, 270})
        QVERIFY(std::abs(coverage(stage.image(), x, 120) - coverage(before, x, 120)) <= 2);
    QVERIFY(coverage(stage.image(), 100, 120) <= 2);
    QVERIFY(stage.pickUp(middle, true));
    QCOMPARE(coverage(stage.image(), 160, 120), 0);
    QVERIFY(coverage(stage.image(), 80, 120) > 200);
}

void tst_PickUpCommands::copyMadeInAStateIsFoundAgainAfterUndoAndRedo()
{
    PickUpStage stage;
    addLineAcross(stage);
    MRScene::pushCommand(new Commands::Stroke(stage.mrScene(), stage.cell(1), pen({160, 40}, {160, 200})));
    stage.drawing().setCopyId(idA); // it was copied in this state
    QVERIFY(stage.pickUp(middle, true));
    stage.stamp();
    QVERIFY(!stage.scene().findOriginalByCopyId(idA));
    stage.stack().undo();
    stage.stack().undo();
    QVERIFY(stage.scene().findOriginalByCopyId(idA));
    stage.stack().undo();
    QVERIFY(!stage.scene().findOriginalByCopyId(idA));
    stage.stack().redo();
    QVERIFY(stage.scene().findOriginalByCopyId(idA));
}

void tst_PickUpCommands::selectionUnderAnUnusableTransformStaysWhereItIs()
{
    PickUpStage stage;
    addLineAcross(stage);
    const QImage before = stage.image();
    QVERIFY(stage.pickUp(middle, true));
    const FloatingSelection::Transform place = stage.selection().transform();
    FloatingSelection::Transform nowhere = place;
    nowhere.scale = QTransform::fromScale(0, 1);
    stage.place(nowhere);
    QCOMPARE(stage.stack().index(), 1);
    QCOMPARE(stage.selection().transform(), place);
    stage.stamp();
    QVERIFY(differenceOutside(bandAround(middle), stage.image(), before) <= 2);
}

QTEST_MAIN(tst_PickUpCommands)
#include "tst_pickup_commands.moc"
