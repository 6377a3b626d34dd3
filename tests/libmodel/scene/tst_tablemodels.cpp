// Both table models under everything that can happen to a scene: what they announce must be true, and no index that is
// held may be stale.

#include "scenebuilder.h"
#include "sheetfixture.h"
#include "support/modelwatch.h"
#include "support/randomnumbers.h"
#include "support/scenegenerator.h"

#include <QAbstractItemModelTester>
#include <QTest>

using namespace Model;
using namespace TestSupport;

namespace {

/// One random edit of timing, layers, range or attributes.
void edit(Sheet &sheet, RandomNumbers &random, QList<std::shared_ptr<Layer>> &removed, QList<SceneChange> &changes)
{
    Scene &scene = sheet.scene;
    const int column = random.between(0, scene.layerCount() - 1);
    const int frame = random.between(1, scene.maximumFrameNumber());
    switch (random.between(0, 16)) {
    case 0:
        changes = scene.addBlankDrawing(column, frame);
        break;
    case 1:
        changes = scene.insertBlankDrawing(column, frame);
        break;
    case 2:
        changes = scene.addCloneDrawings(column, frame, random.between(1, 4));
        break;
    case 3:
        changes = scene.deleteFrame(column, frame);
        break;
    case 4:
        changes = scene.deleteFrames(column, frame, random.between(1, 3));
        break;
    case 5:
        changes = scene.loseDrawing(column, frame);
        break;
    case 6:
        changes = scene.turnCloneIntoOriginal(column, frame);
        break;
    case 7:
        changes = scene.undoChanges(changes);
        break;
    case 8:
        scene.setFrameRange(frame, random.between(frame, scene.maximumFrameNumber()), frame, column);
        break;
    case 9:
        scene.moveLayer(column, random.between(0, scene.layerCount() - 1));
        break;
    case 10:
        if (scene.layerCount() > 1) {
            removed += scene.removeLayer(column);
            changes.clear();
        }
        break;
    case 11:
        if (!removed.isEmpty()) {
            scene.insertLayer(removed.takeLast(), column);
            changes.clear();
        }
        break;
    case 12:
        scene.setScrubFrame(frame);
        break;
    case 13:
        scene.setLayerLinked(column, random.chance(70));
        break;
    case 14:
        scene.setThumbnailSize(static_cast<MR::ThumbnailSize>(random.between(0, 3)));
        scene.setLayerColor(column, Qt::green);
        break;
    case 15:
        scene.setKeyDrawing(column, frame, random.chance(50));
        break;
    default:
        if (sheet.model.beginDrag(random.chance(50) ? FrameRangeModel::SlideMode : FrameRangeModel::AddClonesMode,
                                  sheet.cell(frame, column))) {
            sheet.model.setDragOffset(random.between(-4, 4));
            sheet.model.setDragOffset(random.between(-4, 4));
            if (random.chance(60))
                sheet.model.endDrag();
        }
        break;
    }
}

} // namespace

class tst_TableModels : public QObject
{
    Q_OBJECT

private slots:
    void testerIsContentWithColumnsOfOneLength();
    void testerIsContentWithDrags();
    void announcementsAreTrueUnderRandomEdits_data();
    void announcementsAreTrueUnderRandomEdits();
};

void tst_TableModels::testerIsContentWithColumnsOfOneLength()
{
    Sheet sheet;
    const QAbstractItemModelTester source(&sheet.source, QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QAbstractItemModelTester model(&sheet.model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    sheet.addColumn("o.o..", true);
    sheet.addColumn("ooo.o", true);
    sheet.addColumn("o....", true);
    sheet.setRange(1, 5);
    QList<QList<SceneChange>> done;
    done += sheet.scene.addBlankDrawing(0, 5);
    done += sheet.scene.insertBlankDrawing(1, 1);
    done += sheet.scene.addCloneDrawings(2, 3, 4);
    done += sheet.scene.deleteFrames(0, 5, 2);
    done += sheet.scene.slideOriginalDrawing(1, 3, 0, 0, 1);
    sheet.setRange(2, 4);
    sheet.scene.setScrubFrame(3);
    sheet.scene.moveLayer(0, 2);
    sheet.scene.setLayerColor(0, Qt::red);
    sheet.scene.setLayerOpacity(0, 0.5);
    sheet.scene.setKeyDrawing(0, 3, true);
    sheet.scene.addStroke(0, 3, block(QRect(5, 5, 9, 9)));
    sheet.scene.setThumbnailSize(MR::ThumbnailSize::ThumbnailTiny);
    sheet.scene.setThumbnailSize(MR::ThumbnailSize::ThumbnailLarge);
    const auto layer = sheet.scene.removeLayer(1);
    sheet.scene.insertLayer(layer, 0);
    sheet.scene.moveLayer(0, 0);
    sheet.setRange(1, sheet.scene.maximumFrameNumber());
    const auto back = sheet.scene.removeLayer(0);
    sheet.scene.insertLayer(back, 1);
    while (!done.isEmpty())
        sheet.scene.undoChanges(done.takeLast());
    QCOMPARE(kinds(sheet.scene, 0), "ococc");
    QCOMPARE(kinds(sheet.scene, 1), "oooco");
    sheet.model.setScene(nullptr);
    sheet.model.setScene(&sheet.scene);
    sheet.source.setScene(nullptr);
}

void tst_TableModels::testerIsContentWithDrags()
{
    Sheet sheet;
    sheet.addColumn("o.o..o", true);
    sheet.addColumn("o...oo", true);
    sheet.setRange(2, 5);
    const QAbstractItemModelTester model(&sheet.model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QVERIFY(sheet.model.beginDrag(FrameRangeModel::SlideMode, sheet.cell(3, 0)));
    for (const int offset : {1, 2, -1, 0})
        sheet.model.setDragOffset(offset);
    sheet.model.endDrag();
    QVERIFY(sheet.model.beginDrag(FrameRangeModel::AddClonesMode, sheet.cell(4, 0)));
    for (const int offset : {3, 1, -1, 0, 12})
        sheet.model.setDragOffset(offset);
    // A change from outside in the midst of it.
    sheet.scene.addCloneDrawings(0, 1, 2);
    QCOMPARE(sheet.model.dragMode(), FrameRangeModel::NoDrag);
}

void tst_TableModels::announcementsAreTrueUnderRandomEdits_data()
{
    QTest::addColumn<quint64>("seed");
    for (quint64 seed = 1; seed <= 150; ++seed)
        QTest::addRow("seed %d", int(seed)) << seed;
}

void tst_TableModels::announcementsAreTrueUnderRandomEdits()
{
    QFETCH(quint64, seed);
    RandomNumbers random(seed);
    Sheet sheet;
    fillScene(sheet.scene, random);
    ModelWatch source(&sheet.source);
    ModelWatch model(&sheet.model);
    QList<std::shared_ptr<Layer>> removed;
    QList<SceneChange> changes;
    for (int step = 0; step < 60; ++step) {
        edit(sheet, random, removed, changes);
        QCOMPARE(source.broken(), QString());
        QCOMPARE(model.broken(), QString());
        if (sheet.model.dragMode() == FrameRangeModel::NoDrag)
            QCOMPARE(sheet.model.rowCount(), sheet.scene.rangeLast() - sheet.scene.rangeFirst() + 2);
    }
}

QTEST_MAIN(tst_TableModels)
#include "tst_tablemodels.moc"
