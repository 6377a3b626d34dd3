#include "libcommands/stroke.h"

#include "libmodel/base/settings.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/pentool.h"
#include "support/glfixture.h"

#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

#include <malloc.h>

using namespace Model;

namespace {

constexpr QSize frameSize(64, 48);

const QUuid idA = QUuid::fromString(QStringLiteral("{0000000a-0000-4000-8000-000000000000}"));
const QUuid idB = QUuid::fromString(QStringLiteral("{0000000b-0000-4000-8000-000000000000}"));

/// What is allocated now; 0 where the allocator does not tell.
size_t allocatedBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

std::unique_ptr<Stroke> block(QRect rect, int value)
{
    QImage image(rect.size(), QImage::Format_Alpha8);
    image.fill(value);
    return std::make_unique<BitmapStroke>(image, rect);
}

/// A stroke as the paper hands it over: active, with its pixels.
std::unique_ptr<SingleStroke> drawn(const Tool &tool, QPointF from, QPointF to)
{
    auto stroke = std::make_unique<SingleStroke>(frameSize, &tool);
    stroke->addSample({from, 0.5, 1});
    stroke->renderLatestSegment();
    stroke->addSample({to, 0.5, 2});
    stroke->renderLatestSegment();
    stroke->finish();
    stroke->renderLatestSegment();
    return stroke;
}

std::unique_ptr<SingleStroke> penStroke()
{
    static const PenTool tool(Tool::PenType::Marker);
    return drawn(tool, {10, 10}, {50, 30});
}

std::unique_ptr<SingleStroke> eraserStroke()
{
    static const EraserTool tool(Tool::EraserType::RubberEraser);
    return drawn(tool, {10, 30}, {50, 10});
}

/// A scene of two layers. Layer 0: original, hold, original, distant clone of the first. Layer 1: one original.
class TestScene
{
public:
    TestScene()
    {
        scene().setFrameSize(frameSize, MR::FitMode::FitModeIgnore);
        const auto layer = std::make_shared<StrokeLayer>(QColor(Qt::black), frameSize);
        layer->insertCloneAfter(1);
        layer->insertBlankAfter(2);
        layer->insertBlankAfter(3);
        LayerItem &distant = *layer->item(4);
        LayerItem &original = *layer->item(1);
        distant.type = LayerItem::Type::DistantClone;
        distant.drawing = original.drawing;
        distant.origin = {layer->identifier(), original.identifier};
        original.clones = {{layer->identifier(), distant.identifier}};
        scene().insertLayer(layer, 0);
        scene().insertLayer(std::make_shared<StrokeLayer>(QColor(Qt::red), frameSize), 1);
        scene().setFrameRange(1, 4, 1, 0);
    }

    Scene &scene() { return *m_scene.scene(); }
    MRScene *mrScene() { return &m_scene; }
    QUndoStack &stack() { return *scene().undoStack(); }
    QModelIndex cell(int frameId, int layerIdx = 0) { return m_scene.sceneModel()->index(frameId - 1, layerIdx); }
    StrokeDrawing &drawing(int frameId, int layerIdx = 0)
    {
        return dynamic_cast<StrokeDrawing &>(*scene().item(layerIdx, frameId)->drawing);
    }
    int strokeCount(int frameId, int layerIdx = 0) { return drawing(frameId, layerIdx).strokes().count(); }

    void push(const QModelIndex &at, std::unique_ptr<Stroke> stroke)
    {
        stack().push(new Commands::Stroke(mrScene(), at, std::move(stroke)));
    }
    void push(const QModelIndexList &at, std::unique_ptr<Stroke> stroke)
    {
        stack().push(new Commands::Stroke(mrScene(), at, std::move(stroke), nullptr));
    }

private:
    MRScene m_scene;
};

/// Keeps holds locked for drawing for as long as it lives.
class LockedClones
{
public:
    LockedClones() : m_before(Settings::instance()->clonesLockedForDrawing())
    {
        Settings::instance()->setClonesLockedForDrawing(true);
    }
    ~LockedClones() { Settings::instance()->setClonesLockedForDrawing(m_before); }
    Q_DISABLE_COPY_MOVE(LockedClones)

private:
    bool m_before;
};

} // namespace

class tst_Stroke : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void textTellsTheTool();
    void invalidArgumentsMakeItObsolete_data();
    void invalidArgumentsMakeItObsolete();
    void obsoleteCommandNeverRunsAndLeavesTheCleanState();
    void redoAndUndoLandOnTheSamePictures();
    void eraserUndoneBringsThePixelsBack();
    void lastUndoLeavesNoImage();
    void redrawnStrokeIsTheDrawnOneByteForByte();
    void strokeOutsideTheFrameKeepsNoFrame();
    void eraserOnAnEmptyDrawingLeavesNoUndoStep();
    void eraserOnAnEmptyDrawingLeavesWhatCanBeRedone();
    void eraserErasesWhatAnEarlierPartOfACompositeDraws();
    void cellBehindTheLastLeavesNoUndoStep();
    void viewsHearOfRedoAndUndo();
    void undoGivesTheCopyIdBack();
    void redoGivesTheCopyIdOfThePreviousRedoBack();
    void copyIdsAreKeptPerCell();
    void strokeOnACellWithACloneLandsOnTheOriginalOnce();
    void distantClonesCountThroughTheirOriginal();
    void lockedHoldsAreLeftOut();
    void unusableCellsAreFiltered();
    void nothingLeftOfSeveralCellsMakesItObsolete();
    void undoTakesNothingFromDrawingsThatTookNoStroke();
    void worksAsAPartOfAComposite();
    void sceneThatIsGoneLeavesItWithoutEffect();
};

void tst_Stroke::initTestCase()
{
    QVERIFY(TestSupport::startRenderer());
}

void tst_Stroke::cleanup()
{
    MRScene::setCurrent(nullptr);
}

void tst_Stroke::textTellsTheTool()
{
    TestScene test;
    QCOMPARE(Commands::Stroke(test.mrScene(), test.cell(1), penStroke()).text(), QString("Draw"));
    QCOMPARE(Commands::Stroke(test.mrScene(), test.cell(1), eraserStroke()).text(), QString("Erase"));
    QCOMPARE(Commands::Stroke(test.mrScene(), test.cell(1), block({0, 0, 4, 4}, 9)).text(), QString("Draw"));
    QCOMPARE(Commands::Stroke(test.mrScene(), test.cell(1), eraserStroke(), nullptr).text(), QString("Append stroke"));
    QCOMPARE(Commands::Stroke(test.mrScene(), {test.cell(1)}, penStroke(), nullptr).text(), QString("Append stroke"));
}

void tst_Stroke::invalidArgumentsMakeItObsolete_data()
{
    QTest::addColumn<bool>("hasScene");
    QTest::addColumn<bool>("hasCell");
    QTest::addColumn<bool>("hasStroke");
    QTest::newRow("no scene") << false << true << true;
    QTest::newRow("no cell") << true << false << true;
    QTest::newRow("no stroke") << true << true << false;
}

void tst_Stroke::invalidArgumentsMakeItObsolete()
{
    QFETCH(bool, hasScene);
    QFETCH(bool, hasCell);
    QFETCH(bool, hasStroke);
    TestScene test;
    const auto stroke = [hasStroke]() -> std::unique_ptr<Stroke> {
        return hasStroke ? block({0, 0, 4, 4}, 9) : nullptr;
    };
    MRScene *scene = hasScene ? test.mrScene() : nullptr;
    const QModelIndex cell = hasCell ? test.cell(1) : QModelIndex();
    Commands::Stroke drawCommand(scene, cell, stroke());
    Commands::Stroke single(scene, cell, stroke(), nullptr);
    Commands::Stroke several(scene, QModelIndexList{cell}, stroke(), nullptr);
    for (Commands::Stroke *command : {&drawCommand, &single, &several}) {
        QVERIFY(command->isObsolete());
        command->redo();
        command->undo();
    }
    QVERIFY(test.drawing(1).isEmpty());
}

void tst_Stroke::obsoleteCommandNeverRunsAndLeavesTheCleanState()
{
    TestScene test;
    test.stack().setClean();
    QSignalSpy changes(&test.scene(), &Scene::drawingsChanged);
    test.push(QModelIndex(), block({0, 0, 4, 4}, 9));
    QCOMPARE(test.stack().count(), 0);
    QVERIFY(test.stack().isClean());
    QCOMPARE(changes.count(), 0);
}

void tst_Stroke::redoAndUndoLandOnTheSamePictures()
{
    TestScene test;
    test.push(test.cell(1), block({2, 2, 20, 20}, 100));
    const QImage first = test.drawing(1).image().copy();
    test.push(test.cell(1), block({10, 10, 20, 20}, 200));
    const QImage second = test.drawing(1).image().copy();
    test.push(test.cell(1), block({0, 0, 64, 12}, 50));
    const QImage third = test.drawing(1).image().copy();
    QVERIFY(first != second && second != third);
    for (int round = 0; round < 2; ++round) {
        test.stack().undo();
        QCOMPARE(test.drawing(1).image(), second);
        test.stack().undo();
        QCOMPARE(test.drawing(1).image(), first);
        test.stack().redo();
        QCOMPARE(test.drawing(1).image(), second);
        test.stack().redo();
        QCOMPARE(test.drawing(1).image(), third);
        QCOMPARE(test.strokeCount(1), 3);
    }
}

void tst_Stroke::eraserUndoneBringsThePixelsBack()
{
    TestScene test;
    test.push(test.cell(1), block({0, 0, 64, 48}, 255));
    const QImage before = test.drawing(1).image().copy();
    test.push(test.cell(1), eraserStroke());
    QVERIFY(test.drawing(1).image() != before);
    test.stack().undo();
    QCOMPARE(test.drawing(1).image(), before);
    QCOMPARE(test.strokeCount(1), 1);
}

void tst_Stroke::lastUndoLeavesNoImage()
{
    TestScene test;
    test.push(test.cell(1), penStroke());
    QVERIFY(!test.drawing(1).image().isNull());
    test.stack().undo();
    QVERIFY(test.drawing(1).image().isNull());
    QVERIFY(test.drawing(1).isEmpty());
}

void tst_Stroke::redrawnStrokeIsTheDrawnOneByteForByte()
{
    TestScene test;
    auto stroke = penStroke();
    const QImage pixels = stroke->image().copy();
    test.push(test.cell(1), std::move(stroke));
    QCOMPARE(test.drawing(1).image(), pixels);
    test.stack().undo();
    test.stack().redo();
    QCOMPARE(test.drawing(1).image(), pixels);
}

void tst_Stroke::eraserOnAnEmptyDrawingLeavesNoUndoStep()
{
    TestScene test;
    test.stack().setClean();
    test.push(test.cell(1), eraserStroke());
    QCOMPARE(test.stack().count(), 0);
    QVERIFY(test.stack().isClean());
    QVERIFY(test.drawing(1).isEmpty());
}

void tst_Stroke::cellBehindTheLastLeavesNoUndoStep()
{
    TestScene test;
    QVERIFY(test.cell(5).isValid());
    test.push(test.cell(5), penStroke());
    QCOMPARE(test.stack().count(), 0);
    QCOMPARE(test.scene().lastFrame(0), 4);
}

void tst_Stroke::viewsHearOfRedoAndUndo()
{
    TestScene test;
    QSignalSpy changes(&test.scene(), &Scene::drawingsChanged);
    test.push(test.cell(2), penStroke());
    QCOMPARE(changes.count(), 1);
    // The original, its hold, and its distant clone.
    using Cells = QList<std::pair<int, int>>;
    const Cells shown{{1, 0}, {2, 0}, {4, 0}};
    QCOMPARE(changes.at(0).at(0).value<Cells>(), shown);
    test.stack().undo();
    QCOMPARE(changes.count(), 2);
    QCOMPARE(changes.at(1).at(0).value<Cells>(), shown);
}

void tst_Stroke::undoGivesTheCopyIdBack()
{
    TestScene test;
    test.push(test.cell(1), penStroke());
    test.drawing(1).setCopyId(idA);
    test.push(test.cell(1), block({0, 0, 9, 9}, 80));
    QVERIFY(test.drawing(1).copyId().isNull());
    test.stack().undo();
    QCOMPARE(test.drawing(1).copyId(), idA);
}

void tst_Stroke::redoGivesTheCopyIdOfThePreviousRedoBack()
{
    TestScene test;
    test.push(test.cell(1), penStroke());
    test.drawing(1).setCopyId(idA);
    test.push(test.cell(1), block({0, 0, 9, 9}, 80));
    test.drawing(1).setCopyId(idB); // it was copied in this state
    for (int round = 0; round < 2; ++round) {
        test.stack().undo();
        QCOMPARE(test.drawing(1).copyId(), idA);
        test.stack().redo();
        QCOMPARE(test.drawing(1).copyId(), idB);
    }
}

void tst_Stroke::copyIdsAreKeptPerCell()
{
    TestScene test;
    test.drawing(1).setCopyId(idA);
    test.drawing(1, 1).setCopyId(idB);
    test.push({test.cell(1), test.cell(3), test.cell(1, 1)}, block({0, 0, 9, 9}, 80));
    QVERIFY(test.drawing(1).copyId().isNull());
    test.stack().undo();
    QCOMPARE(test.drawing(1).copyId(), idA);
    QVERIFY(test.drawing(3).copyId().isNull());
    QCOMPARE(test.drawing(1, 1).copyId(), idB);
}

void tst_Stroke::strokeOnACellWithACloneLandsOnTheOriginalOnce()
{
    TestScene test;
    test.push({test.cell(2), test.cell(1)}, block({0, 0, 9, 9}, 80));
    QCOMPARE(test.strokeCount(1), 1);
    QCOMPARE(test.strokeCount(3), 0);
    test.stack().undo();
    QVERIFY(test.drawing(1).isEmpty());
}

void tst_Stroke::distantClonesCountThroughTheirOriginal()
{
    TestScene test;
    test.push({test.cell(4), test.cell(2), test.cell(3)}, block({0, 0, 9, 9}, 80));
    QCOMPARE(test.strokeCount(1), 1);
    QCOMPARE(test.strokeCount(3), 1);
    QCOMPARE(test.drawing(1).image().pixelColor(8, 8).alpha(), 80);
}

void tst_Stroke::lockedHoldsAreLeftOut()
{
    TestScene test;
    const LockedClones locked;
    test.push(QModelIndexList{test.cell(2)}, block({0, 0, 9, 9}, 80));
    QCOMPARE(test.stack().count(), 0);
    test.push({test.cell(2), test.cell(3)}, block({0, 0, 9, 9}, 80));
    QCOMPARE(test.strokeCount(1), 0);
    QCOMPARE(test.strokeCount(3), 1);
}

void tst_Stroke::unusableCellsAreFiltered()
{
    TestScene test;
    test.push({QModelIndex(), test.cell(5), test.cell(3)}, block({0, 0, 9, 9}, 80));
    QCOMPARE(test.stack().count(), 1);
    QCOMPARE(test.strokeCount(3), 1);
}

void tst_Stroke::nothingLeftOfSeveralCellsMakesItObsolete()
{
    TestScene test;
    QVERIFY(Commands::Stroke(test.mrScene(), QModelIndexList{QModelIndex(), test.cell(5)}, penStroke(), nullptr)
                .isObsolete());
    QVERIFY(Commands::Stroke(test.mrScene(), QModelIndexList(), penStroke(), nullptr).isObsolete());
}

void tst_Stroke::undoTakesNothingFromDrawingsThatTookNoStroke()
{
    TestScene test;
    test.push(test.cell(3), block({0, 0, 64, 48}, 255));
    // The first drawing is empty and does not take the eraser; the other does.
    test.push({test.cell(1), test.cell(3)}, eraserStroke());
    QCOMPARE(test.strokeCount(1), 0);
    QCOMPARE(test.strokeCount(3), 2);
    test.stack().undo();
    QCOMPARE(test.strokeCount(3), 1);
    QCOMPARE(test.strokeCount(1), 0);
}

void tst_Stroke::worksAsAPartOfAComposite()
{
    TestScene test;
    auto *composite = new QUndoCommand(QStringLiteral("Two at once"));
    new Commands::Stroke(test.mrScene(), test.cell(1), block({0, 0, 9, 9}, 80), composite);
    new Commands::Stroke(test.mrScene(), QModelIndexList{test.cell(3)}, block({0, 0, 9, 9}, 80), composite);
    test.stack().push(composite);
    QCOMPARE(test.strokeCount(1), 1);
    QCOMPARE(test.strokeCount(3), 1);
    test.stack().undo();
    QCOMPARE(test.strokeCount(1), 0);
    QCOMPARE(test.strokeCount(3), 0);
}

void tst_Stroke::sceneThatIsGoneLeavesItWithoutEffect()
{
    auto test = std::make_unique<TestScene>();
    Commands::Stroke command(test->mrScene(), test->cell(1), penStroke());
    command.redo();
    QCOMPARE(test->strokeCount(1), 1);
    test.reset();
    command.undo();
    command.redo();
}

void tst_Stroke::eraserOnAnEmptyDrawingLeavesWhatCanBeRedone()
{
    TestScene test;
    MRScene::setCurrent(test.mrScene());
    MRScene::pushCommand(new Commands::Stroke(test.mrScene(), test.cell(1), penStroke()));
    test.stack().setClean();
    test.stack().undo();
    MRScene::pushCommand(new Commands::Stroke(test.mrScene(), test.cell(1), eraserStroke()));
    MRScene::pushCommand(new Commands::Stroke(test.mrScene(), {test.cell(1), test.cell(3)}, eraserStroke(), nullptr));
    QVERIFY(test.stack().canRedo());
    test.stack().redo();
    QVERIFY(test.stack().isClean());
    QCOMPARE(test.strokeCount(1), 1);
}

void tst_Stroke::eraserErasesWhatAnEarlierPartOfACompositeDraws()
{
    TestScene test;
    auto *composite = new QUndoCommand(QStringLiteral("Draw and erase"));
    new Commands::Stroke(test.mrScene(), test.cell(1), block({0, 0, 64, 48}, 255), composite);
    new Commands::Stroke(test.mrScene(), test.cell(1), eraserStroke(), composite);
    test.stack().push(composite);
    QCOMPARE(test.strokeCount(1), 2);
}

void tst_Stroke::strokeOutsideTheFrameKeepsNoFrame()
{
    TestScene test;
    constexpr QSize large(4000, 2000);
    test.scene().setFrameSize(large, MR::FitMode::FitModeIgnore);
    static const PenTool tool(Tool::PenType::Marker);
    const size_t before = allocatedBytes();
    auto stroke = std::make_unique<SingleStroke>(large, &tool);
    stroke->addSample({QPointF(-500, -500), 0.5, 1});
    stroke->addSample({QPointF(-400, -450), 0.5, 2});
    stroke->finish();
    test.push(test.cell(1), std::move(stroke));
    QCOMPARE(test.strokeCount(1), 1);
    test.stack().undo();
    QVERIFY(test.drawing(1).image().isNull());
    // The drawing holds no image now; what the command keeps must be far from the 8 MB of a frame.
    QVERIFY(allocatedBytes() < before + 1'000'000);
    test.stack().redo();
    QCOMPARE(test.strokeCount(1), 1);
}

QTEST_MAIN(tst_Stroke)
#include "tst_stroke.moc"
