#include "scenebuilder.h"
#include "sheetfixture.h"

#include <QPersistentModelIndex>
#include <QTest>

#include <climits>

using namespace Model;
using namespace TestSupport;

namespace {

constexpr auto Slide = FrameRangeModel::SlideMode;
constexpr auto AddClones = FrameRangeModel::AddClonesMode;
constexpr auto NoDrag = FrameRangeModel::NoDrag;

} // namespace

class tst_FrameRangeModelDrag : public QObject
{
    Q_OBJECT

private slots:
    void dragIsRefused_data();
    void dragIsRefused();
    void refusedDragEndsTheOneThatRuns_data();
    void refusedDragEndsTheOneThatRuns();
    void frameOneOfTheRangeCanSlideWhenItIsNotThatOfTheScene();
    void slideIsBoundedByTheHoldsOfTheRange();
    void slideBeyondTheBoundsStopsThere();
    void addClonesUpwardsFromAnOriginalCannotShrink();
    void shrinkStopsAtTheStartOfTheHold();
    void shrinkOfLinkedLayersStopsWhereOneHasNoHold();
    void linkedLayerThatEndsBeforeDoesNotStopTheShrink();
    void shrinkStopsAtTheRange();
    void addClonesHasNoBoundDownwards();
    void slideIsShownWhileItRuns();
    void slideFromTheRangeStartHoldsTheFrameBeforeIt();
    void newHoldsAreNoKeyDrawings();
    void addedClonesAreShownInLinkedLayersAlone();
    void addedBandHasNoNotes();
    void addedBandTakesNoNotes();
    void removedHoldsAreSkipped();
    void rangeThatMovesUpAltogetherKeepsItsRows();
    void offsetsRemainAfterTheEnd();
    void endShowsTheSceneAsItStands();
    void changedCellsAreToldDuringADrag();
    void changeOfTheSceneEndsTheDrag_data();
    void changeOfTheSceneEndsTheDrag();
    void persistentIndexesAreNeverStaleDuringADrag();
};

void tst_FrameRangeModelDrag::dragIsRefused_data()
{
    // Column 0 is o.o.., 1 is audio, 2 annotations; the range is all of it.
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("column");
    QTest::addColumn<bool>("begins");
    QTest::newRow("slide an original") << int(Slide) << 3 << 0 << true;
    QTest::newRow("slide a clone") << int(Slide) << 4 << 0 << false;
    QTest::newRow("slide frame 1") << int(Slide) << 1 << 0 << false;
    QTest::newRow("slide the after-last cell") << int(Slide) << 6 << 0 << false;
    QTest::newRow("slide a sound") << int(Slide) << 2 << 1 << false;
    QTest::newRow("slide a note") << int(Slide) << 2 << 2 << false;
    QTest::newRow("slide nothing") << int(Slide) << 9 << 0 << false;
    QTest::newRow("add clones to frame 1") << int(AddClones) << 1 << 0 << true;
    QTest::newRow("add clones to a clone") << int(AddClones) << 5 << 0 << true;
    QTest::newRow("add clones to the after-last cell") << int(AddClones) << 6 << 0 << false;
    QTest::newRow("add clones to a sound") << int(AddClones) << 2 << 1 << false;
    QTest::newRow("add clones to a note") << int(AddClones) << 2 << 2 << false;
    QTest::newRow("no mode") << int(NoDrag) << 3 << 0 << false;
    QTest::newRow("unknown mode") << 3 << 3 << 0 << false;
}

void tst_FrameRangeModelDrag::dragIsRefused()
{
    QFETCH(int, mode);
    QFETCH(int, frame);
    QFETCH(int, column);
    QFETCH(bool, begins);
    Sheet sheet;
    sheet.addColumn("o.o..");
    sheet.addAudio();
    sheet.addAnnotations();
    sheet.setRange(1, 5);
    const auto dragMode = static_cast<FrameRangeModel::DragMode>(mode);
    QCOMPARE(sheet.model.beginDrag(dragMode, sheet.cell(frame, column)), begins);
    QCOMPARE(sheet.model.dragMode(), begins ? dragMode : NoDrag);
    QCOMPARE(sheet.model.offset(), 0);
    sheet.model.setDragOffset(1);
    QCOMPARE(sheet.model.offset(), begins ? 1 : 0);
}

void tst_FrameRangeModelDrag::refusedDragEndsTheOneThatRuns_data()
{
    // The sheet is that of dragIsRefused().
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("column");
    QTest::newRow("a clone") << int(Slide) << 4 << 0;
    QTest::newRow("the after-last cell") << int(AddClones) << 8 << 0;
    QTest::newRow("a note") << int(AddClones) << 2 << 2;
    QTest::newRow("nothing") << int(Slide) << 20 << 0;
    QTest::newRow("no mode") << int(NoDrag) << 3 << 0;
    QTest::newRow("unknown mode") << 3 << 3 << 0;
}

void tst_FrameRangeModelDrag::refusedDragEndsTheOneThatRuns()
{
    QFETCH(int, mode);
    QFETCH(int, frame);
    QFETCH(int, column);
    Sheet sheet;
    sheet.addColumn("o.o..");
    sheet.addAudio();
    sheet.addAnnotations();
    sheet.setRange(1, 5);
    QVERIFY(sheet.model.beginDrag(AddClones, sheet.cell(3, 0)));
    sheet.model.setDragOffset(2);
    QCOMPARE(sheet.shown(0), "o.o...._");
    QVERIFY(!sheet.model.beginDrag(static_cast<FrameRangeModel::DragMode>(mode), sheet.cell(frame, column)));
    QCOMPARE(sheet.model.dragMode(), NoDrag);
    QCOMPARE(sheet.shown(0), "o.o.._");
    QCOMPARE(sheet.model.offset(), 0);
    QCOMPARE(sheet.model.highestOffset(), 0);
}

void tst_FrameRangeModelDrag::frameOneOfTheRangeCanSlideWhenItIsNotThatOfTheScene()
{
    Sheet sheet;
    sheet.addColumn("o.o..");
    sheet.setRange(3, 5);
    QVERIFY(sheet.model.beginDrag(Slide, sheet.cell(3, 0)));
    QCOMPARE(sheet.model.minimumOffset(), 0);
    QCOMPARE(sheet.model.maximumOffset(), 2);
}

void tst_FrameRangeModelDrag::slideIsBoundedByTheHoldsOfTheRange()
{
    Sheet sheet;
    // Frames 3 to 9: behind the dragged cell at 6 stand the holds 7 and 9, before it 3 and 5.
    sheet.addColumn("o..o.o.o..o.");
    sheet.setRange(3, 9);
    QVERIFY(sheet.model.beginDrag(Slide, sheet.cell(6, 0)));
    QCOMPARE(sheet.model.minimumOffset(), -2);
    QCOMPARE(sheet.model.maximumOffset(), 2);
}

void tst_FrameRangeModelDrag::slideBeyondTheBoundsStopsThere()
{
    Sheet sheet;
    sheet.addColumn("o.o..");
    sheet.setRange(1, 5);
    sheet.model.beginDrag(Slide, sheet.cell(3, 0));
    sheet.model.setDragOffset(INT_MAX);
    QCOMPARE(sheet.model.offset(), 2);
    QCOMPARE(sheet.model.highestOffset(), 2);
    QCOMPARE(sheet.model.lowestOffset(), 0);
    sheet.model.setDragOffset(INT_MIN);
    QCOMPARE(sheet.model.offset(), -1);
    QCOMPARE(sheet.model.highestOffset(), 2);
    QCOMPARE(sheet.model.lowestOffset(), -1);
}

void tst_FrameRangeModelDrag::addClonesUpwardsFromAnOriginalCannotShrink()
{
    Sheet sheet;
    sheet.addColumn("o..o");
    sheet.setRange(1, 4);
    QVERIFY(sheet.model.beginDrag(AddClones, sheet.cell(4, 0)));
    QCOMPARE(sheet.model.minimumOffset(), 0);
    sheet.model.setDragOffset(-3);
    QCOMPARE(sheet.model.offset(), 0);
}

void tst_FrameRangeModelDrag::shrinkStopsAtTheStartOfTheHold()
{
    Sheet sheet;
    sheet.addColumn("oo...o");
    sheet.setRange(1, 6);
    QVERIFY(sheet.model.beginDrag(AddClones, sheet.cell(5, 0)));
    QCOMPARE(sheet.model.minimumOffset(), -3);
    sheet.model.setDragOffset(-9);
    QCOMPARE(sheet.model.offset(), -3);
    QCOMPARE(sheet.shown(0), "ooo_");
}

void tst_FrameRangeModelDrag::shrinkOfLinkedLayersStopsWhereOneHasNoHold()
{
    Sheet sheet;
    sheet.addColumn("o.....", true);
    sheet.addColumn("o..o..", true);
    sheet.addColumn("oooooo");
    sheet.setRange(1, 6);
    QVERIFY(sheet.model.beginDrag(AddClones, sheet.cell(6, 0)));
    QCOMPARE(sheet.model.minimumOffset(), -2);
    // From a hold of the one beside an original of the other nothing can be taken.
    QVERIFY(sheet.model.beginDrag(AddClones, sheet.cell(4, 0)));
    QCOMPARE(sheet.model.minimumOffset(), 0);
}

void tst_FrameRangeModelDrag::linkedLayerThatEndsBeforeDoesNotStopTheShrink()
{
    Sheet sheet;
    sheet.addColumn("o.....", true);
    sheet.addColumn("o..o", true);
    sheet.setRange(1, 6);
    QVERIFY(sheet.model.beginDrag(AddClones, sheet.cell(6, 0)));
    QCOMPARE(sheet.model.minimumOffset(), -2);
}

void tst_FrameRangeModelDrag::shrinkStopsAtTheRange()
{
    Sheet sheet;
    sheet.addColumn("o.....");
    sheet.setRange(4, 6);
    QVERIFY(sheet.model.beginDrag(AddClones, sheet.cell(6, 0)));
    QCOMPARE(sheet.model.minimumOffset(), -3);
}

void tst_FrameRangeModelDrag::addClonesHasNoBoundDownwards()
{
    Sheet sheet;
    sheet.addColumn("oo");
    sheet.setRange(1, 2);
    sheet.model.beginDrag(AddClones, sheet.cell(2, 0));
    sheet.model.setDragOffset(5000);
    QCOMPARE(sheet.model.offset(), 5000);
    QCOMPARE(sheet.model.rowCount(), 5003);
    QCOMPARE(sheet.model.displayedLastFrame(), 5002);
    // More than a layer takes at all is not shown either.
    sheet.model.setDragOffset(INT_MAX);
    QCOMPARE(sheet.model.offset(), Layer::maximumFrames - 2);
}

void tst_FrameRangeModelDrag::slideIsShownWhileItRuns()
{
    Sheet sheet;
    sheet.addColumn("o..oo..o");
    sheet.addColumn("oooooooo");
    sheet.setRange(1, 8);
    sheet.model.beginDrag(Slide, sheet.cell(5, 0));
    QCOMPARE(sheet.shown(0), "o..oo..o_");
    sheet.model.setDragOffset(2);
    QCOMPARE(sheet.shown(0), "o..o..oo_");
    sheet.model.setDragOffset(-1);
    QCOMPARE(sheet.shown(0), "o.oo...o_");
    // Passing the neighbour has taken one of its holds.
    sheet.model.setDragOffset(0);
    QCOMPARE(sheet.shown(0), "o.o.o..o_");
    QCOMPARE(sheet.shown(1), "oooooooo_");
}

void tst_FrameRangeModelDrag::slideFromTheRangeStartHoldsTheFrameBeforeIt()
{
    Sheet sheet;
    sheet.addColumn("oo..o");
    sheet.scene.addStroke(0, 1, block(QRect(5, 5, 30, 20)));
    sheet.setRange(2, 5);
    sheet.model.beginDrag(Slide, sheet.cell(2, 0));
    sheet.model.setDragOffset(1);
    QCOMPARE(sheet.shown(0), ".o.o_");
    QCOMPARE(sheet.source.drawing(sheet.model.mapToSource(sheet.cell(2, 0))), sheet.scene.item(0, 1)->drawing);
    QVERIFY(!sheet.model.thumbnail(sheet.cell(2, 0), QSize(30, 20)).isNull());
}

void tst_FrameRangeModelDrag::newHoldsAreNoKeyDrawings()
{
    Sheet sheet;
    sheet.addColumn("o.o..");
    for (int frameId = 1; frameId <= 5; ++frameId)
        sheet.scene.setKeyDrawing(0, frameId, true);
    sheet.setRange(1, 5);
    sheet.model.beginDrag(Slide, sheet.cell(3, 0));
    QCOMPARE(sheet.shown(0), "O:O::_");
    sheet.model.setDragOffset(1);
    QCOMPARE(sheet.shown(0), "O:.O:_");
    sheet.model.beginDrag(AddClones, sheet.cell(3, 0));
    sheet.model.setDragOffset(2);
    QCOMPARE(sheet.shown(0), "O:O..::_");
}

void tst_FrameRangeModelDrag::addedClonesAreShownInLinkedLayersAlone()
{
    Sheet sheet;
    sheet.addColumn("oooo", true);
    sheet.addColumn("o.oo", true);
    sheet.addColumn("oooo");
    sheet.addColumn("o", true);
    sheet.setRange(1, 4);
    sheet.model.beginDrag(AddClones, sheet.cell(2, 0));
    sheet.model.setDragOffset(2);
    QCOMPARE(sheet.shown(0), "oo..oo_");
    QCOMPARE(sheet.shown(1), "o...oo_");
    QCOMPARE(sheet.shown(2), "oooo_  ");
    QCOMPARE(sheet.shown(3), "o_     ");
    QCOMPARE(sheet.model.displayedLastFrame(), 6);
    // Seen from a layer that is not linked, it is alone.
    sheet.model.beginDrag(AddClones, sheet.cell(1, 2));
    sheet.model.setDragOffset(1);
    QCOMPARE(sheet.shown(0), "oooo_ ");
    QCOMPARE(sheet.shown(2), "o.ooo_");
}

void tst_FrameRangeModelDrag::addedBandHasNoNotes()
{
    Sheet sheet;
    sheet.addColumn("ooo", true);
    const int notes = sheet.addAnnotations(true);
    QImage note(4, 3, QImage::Format_Indexed8);
    note.setColorCount(256);
    for (int frameId = 1; frameId <= 3; ++frameId) {
        note.fill(frameId);
        sheet.scene.setAnnotation(frameId, note);
    }
    sheet.setRange(1, 3);
    sheet.model.beginDrag(AddClones, sheet.cell(2, 0));
    sheet.model.setDragOffset(1);
    const auto noteAt = [&](int frameId) {
        const auto image = sheet.cell(frameId, notes).data(SceneModel::AnnotationImageRole).value<QImage>();
        return image.isNull() ? 0 : image.pixelIndex(0, 0);
    };
    QCOMPARE(noteAt(2), 2);
    QCOMPARE(noteAt(3), 0);
    QCOMPARE(noteAt(4), 3);
    QVERIFY(!sheet.model.thumbnail(sheet.cell(2, notes), QSize(8, 6)).isNull());
    QVERIFY(sheet.model.thumbnail(sheet.cell(3, notes), QSize(8, 6)).isNull());
    QVERIFY(!sheet.model.thumbnail(sheet.cell(4, notes), QSize(8, 6)).isNull());
    // An added cell can't be written on, as it is not there yet: notes that do not go along can.
    sheet.scene.setLayerLinked(notes, false);
    sheet.model.beginDrag(AddClones, sheet.cell(2, 0));
    sheet.model.setDragOffset(1);
    QCOMPARE(noteAt(3), 3);
}

void tst_FrameRangeModelDrag::addedBandTakesNoNotes()
{
    Sheet sheet;
    sheet.addColumn("ooo", true);
    const int notes = sheet.addAnnotations(true);
    QImage note(4, 3, QImage::Format_Indexed8);
    note.setColorCount(256);
    note.fill(2);
    QVERIFY(sheet.scene.setAnnotation(2, note));
    sheet.setRange(1, 3);
    QVERIFY(sheet.model.beginDrag(AddClones, sheet.cell(2, 0)));
    sheet.model.setDragOffset(2);
    QImage other(note);
    other.fill(9);
    for (const int added : {3, 4})
        QVERIFY(!sheet.model.setData(sheet.cell(added, notes), other, SceneModel::AnnotationImageRole));
    QCOMPARE(sheet.source.index(1, notes).data(SceneModel::AnnotationImageRole).value<QImage>(), note);
    QCOMPARE(sheet.model.dragMode(), AddClones);
    // Behind the band stands frame 3.
    QVERIFY(sheet.model.setData(sheet.cell(5, notes), other, SceneModel::AnnotationImageRole));
    QCOMPARE(sheet.source.index(2, notes).data(SceneModel::AnnotationImageRole).value<QImage>(), other);
}

void tst_FrameRangeModelDrag::removedHoldsAreSkipped()
{
    Sheet sheet;
    sheet.addColumn("o...oo");
    sheet.setRange(1, 6);
    sheet.model.beginDrag(AddClones, sheet.cell(3, 0));
    sheet.model.setDragOffset(-2);
    QCOMPARE(sheet.shown(0), "o.oo_");
    QCOMPARE(sheet.model.mapToSource(sheet.cell(2, 0)).row(), 3);
    QVERIFY(!sheet.model.mapFromSource(sheet.source.index(1, 0)).isValid());
    QVERIFY(!sheet.model.mapFromSource(sheet.source.index(2, 0)).isValid());
    QCOMPARE(sheet.model.mapFromSource(sheet.source.index(3, 0)), sheet.cell(2, 0));
}

void tst_FrameRangeModelDrag::rangeThatMovesUpAltogetherKeepsItsRows()
{
    Sheet sheet;
    sheet.addColumn("oooo...oo");
    sheet.setRange(5, 6);
    const QPersistentModelIndex first(sheet.cell(5, 0));
    const QPersistentModelIndex second(sheet.cell(6, 0));
    // Frame 7 stands in the row after the range; with it go both frames of the range.
    QVERIFY(sheet.model.beginDrag(AddClones, sheet.cell(7, 0)));
    QCOMPARE(sheet.model.minimumOffset(), -3);
    for (const int offset : {-1, -2, -3}) {
        sheet.model.setDragOffset(offset);
        QVERIFY(sheet.model.rowCount() >= 2);
        QCOMPARE(QModelIndex(first), sheet.model.index(0, 0));
        QCOMPARE(QModelIndex(second), sheet.model.index(1, 0));
    }
    // What were frames 8 and 9.
    QCOMPARE(sheet.shown(0), "oo");
    QCOMPARE(sheet.model.mapToSource(first).row(), 7);
    QCOMPARE(sheet.model.mapToSource(second).row(), 8);
    sheet.model.endDrag();
    QCOMPARE(QModelIndex(first), sheet.cell(5, 0));
    QCOMPARE(QModelIndex(second), sheet.cell(6, 0));
    QCOMPARE(sheet.model.rowCount(), 3);
}

void tst_FrameRangeModelDrag::offsetsRemainAfterTheEnd()
{
    Sheet sheet;
    sheet.addColumn("o.o..");
    sheet.setRange(1, 5);
    sheet.model.beginDrag(Slide, sheet.cell(3, 0));
    sheet.model.setDragOffset(2);
    sheet.model.setDragOffset(-1);
    sheet.model.setDragOffset(1);
    sheet.model.endDrag();
    QCOMPARE(sheet.model.offset(), 1);
    QCOMPARE(sheet.model.lowestOffset(), -1);
    QCOMPARE(sheet.model.highestOffset(), 2);
    sheet.model.setDragOffset(0);
    QCOMPARE(sheet.model.offset(), 1);
    sheet.model.beginDrag(AddClones, sheet.cell(3, 0));
    QCOMPARE(sheet.model.offset(), 0);
    QCOMPARE(sheet.model.lowestOffset(), 0);
    QCOMPARE(sheet.model.highestOffset(), 0);
}

void tst_FrameRangeModelDrag::endShowsTheSceneAsItStands()
{
    Sheet sheet;
    sheet.addColumn("o.o..");
    sheet.setRange(1, 5);
    sheet.model.beginDrag(AddClones, sheet.cell(3, 0));
    sheet.model.setDragOffset(4);
    QCOMPARE(sheet.shown(0), "o.o......_");
    sheet.model.endDrag();
    QCOMPARE(sheet.shown(0), "o.o.._");
    QCOMPARE(sheet.model.dragMode(), NoDrag);
    QCOMPARE(kinds(sheet.scene, 0), "ococc");
}

void tst_FrameRangeModelDrag::changedCellsAreToldDuringADrag()
{
    Sheet sheet;
    sheet.addColumn("oo.");
    sheet.setRange(1, 3);
    sheet.model.beginDrag(AddClones, sheet.cell(2, 0));
    sheet.model.setDragOffset(2);
    QSignalSpy changed(&sheet.model, &QAbstractItemModel::dataChanged);
    sheet.scene.setKeyDrawing(0, 2, true);
    QCOMPARE(changed.size(), 1);
    // The new holds of the cell show it too.
    QCOMPARE(changed.first().at(0).toModelIndex().row(), 0);
    QCOMPARE(changed.first().at(1).toModelIndex().row(), 5);
}

void tst_FrameRangeModelDrag::changeOfTheSceneEndsTheDrag_data()
{
    QTest::addColumn<int>("change");
    QTest::newRow("a cell comes") << 0;
    QTest::newRow("a layer comes") << 1;
    QTest::newRow("a layer goes") << 2;
    QTest::newRow("the range") << 3;
    QTest::newRow("another scene") << 4;
}

void tst_FrameRangeModelDrag::changeOfTheSceneEndsTheDrag()
{
    QFETCH(int, change);
    Sheet sheet;
    sheet.addColumn("oo.");
    sheet.addColumn("oo.");
    sheet.setRange(1, 3);
    QVERIFY(sheet.model.beginDrag(AddClones, sheet.cell(2, 1)));
    sheet.model.setDragOffset(2);
    switch (change) {
    case 0:
        sheet.scene.addBlankDrawing(0, 1);
        break;
    case 1:
        sheet.addColumn("o");
        break;
    case 2:
        sheet.scene.removeLayer(0);
        break;
    case 3:
        sheet.setRange(2, 3);
        break;
    default:
        sheet.source.setScene(nullptr);
        break;
    }
    QCOMPARE(sheet.model.dragMode(), NoDrag);
    QCOMPARE(sheet.model.offset(), 0);
    QCOMPARE(sheet.model.displayedLastFrame(), sheet.scene.rangeLast());
}

void tst_FrameRangeModelDrag::persistentIndexesAreNeverStaleDuringADrag()
{
    Sheet sheet;
    sheet.addColumn("oo...o");
    sheet.setRange(1, 6);
    QList<QPersistentModelIndex> held;
    for (int row = 0; row < sheet.model.rowCount(); ++row)
        held += QPersistentModelIndex(sheet.model.index(row, 0));
    sheet.model.beginDrag(AddClones, sheet.cell(5, 0));
    for (const int offset : {2, -1, -3, 4}) {
        sheet.model.setDragOffset(offset);
        for (const QPersistentModelIndex &index : std::as_const(held))
            QCOMPARE(QModelIndex(index), sheet.model.index(index.row(), index.column()));
    }
    sheet.model.endDrag();
    QCOMPARE(held.at(3).row(), 3);
    QVERIFY(!held.at(6).isValid());
}

QTEST_MAIN(tst_FrameRangeModelDrag)
#include "tst_framerangemodel_drag.moc"
