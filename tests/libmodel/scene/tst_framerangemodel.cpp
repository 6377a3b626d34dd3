#include "scenebuilder.h"
#include "sheetfixture.h"

#include <QPersistentModelIndex>
#include <QTest>

#include <climits>

using namespace Model;
using namespace TestSupport;

namespace {

/// Notes what is written to its headers.
class RecordingSource : public SceneModel
{
public:
    struct Written
    {
        int section;
        Qt::Orientation orientation;
        QVariant value;
        int role;
        bool operator==(const Written &other) const = default;
    };
    QList<Written> written;

    bool setHeaderData(int section, Qt::Orientation orientation, const QVariant &value, int role) override
    {
        written += {section, orientation, value, role};
        return true;
    }
};

} // namespace

class tst_FrameRangeModel : public QObject
{
    Q_OBJECT

private slots:
    void withoutASceneAllIsEmpty();
    void aDestroyedSceneLeavesTheModelEmpty();
    void aDestroyedSourceLeavesTheModelEmpty();
    void rowsAreTheRangeAndOneMore();
    void columnsAreThoseOfTheSource();
    void indexesAreValidByTheKindOfTheLayer_data();
    void indexesAreValidByTheKindOfTheLayer();
    void cellsMapBothWays();
    void framesOutsideTheRangeMapToNothing();
    void indexesOfOtherModelsMapToNothing();
    void flagsAreThoseOfTheCell();
    void rolesAreThoseOfTheCell();
    void cellsCanBeWrittenThroughTheRange();
    void rowHeadersAreThoseOfTheirFrames();
    void lastRowAtTheEndOfTheSceneShowsItsBacklight();
    void columnHeadersPassThrough();
    void headersCanBeSet();
    void rowHeadersAreSetAtTheirFrames();
    void audioHasASourceAsFarAsItsSoundGoes();
    void thumbnailIsThePictureOfTheCell();
    void changedCellsAreToldAtTheirRows();
    void changedFramesAreToldWithinTheRange();
    void changedSizesAreToldWhateverTheRange();
    void changedSizesAreToldWhereALayerReachesTheRange();
    void columnsComeAndGoWithLayers();
    void persistentIndexesKeepTheirFrameWhenTheRangeChanges();
    void persistentIndexOfAFrameThatLeavesTheRangeBecomesInvalid();
    void persistentIndexOfADeletedCellBecomesInvalid();
    void rangeIsToldOnceWhateverTheOrderOfConnections();
};

void tst_FrameRangeModel::withoutASceneAllIsEmpty()
{
    FrameRangeModel model;
    QCOMPARE(model.scene(), nullptr);
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.columnCount(), 0);
    QCOMPARE(model.displayedLastFrame(), 0);
    QVERIFY(!model.index(0, 0).isValid());
    QVERIFY(!model.mapToSource({}).isValid());
    QVERIFY(!model.mapFromSource({}).isValid());
    QVERIFY(!model.data({}, SceneModel::OriginalDrawingRole).isValid());
    QVERIFY(!model.headerData(0, Qt::Horizontal).isValid());
    QVERIFY(!model.headerData(0, Qt::Vertical, SceneModel::ScrubFrameRole).isValid());
    QVERIFY(!model.setHeaderData(0, Qt::Horizontal, "x", Qt::DisplayRole));
    QVERIFY(model.thumbnail({}, QSize(10, 10)).isNull());
    QVERIFY(!model.hasChildren());
    QVERIFY(!model.beginDrag(FrameRangeModel::AddClonesMode, {}));
    model.setDragOffset(3);
    model.endDrag();
    QCOMPARE(model.offset(), 0);

    SceneModel source;
    model.setSourceModel(&source);
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.columnCount(), 0);
}

void tst_FrameRangeModel::aDestroyedSceneLeavesTheModelEmpty()
{
    SceneModel source;
    FrameRangeModel model;
    auto scene = std::make_unique<Scene>();
    addUsualLayers(*scene, 3);
    model.setSourceModel(&source);
    model.setScene(scene.get());
    source.setScene(scene.get());
    const QPersistentModelIndex held(model.index(1, 0));
    QVERIFY(held.isValid());
    scene.reset();
    QCOMPARE(model.scene(), nullptr);
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.columnCount(), 0);
    QVERIFY(!held.isValid());
}

void tst_FrameRangeModel::aDestroyedSourceLeavesTheModelEmpty()
{
    Scene scene;
    addUsualLayers(scene, 3);
    auto source = std::make_unique<SceneModel>();
    source->setScene(&scene);
    FrameRangeModel model;
    model.setSourceModel(source.get());
    model.setScene(&scene);
    QCOMPARE(model.columnCount(), 3);
    source.reset();
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.columnCount(), 0);
    scene.addBlankDrawing(0, 1);
    QVERIFY(!model.index(0, 0).isValid());
}

void tst_FrameRangeModel::rowsAreTheRangeAndOneMore()
{
    Sheet sheet;
    sheet.addColumn("oooooooo");
    sheet.setRange(1, 8);
    QCOMPARE(sheet.model.rowCount(), 9);
    QCOMPARE(sheet.model.displayedLastFrame(), 8);
    sheet.setRange(3, 6);
    QCOMPARE(sheet.model.rowCount(), 5);
    QCOMPARE(sheet.model.displayedLastFrame(), 6);
    QCOMPARE(sheet.model.rowCount(sheet.model.index(0, 0)), 0);
}

void tst_FrameRangeModel::columnsAreThoseOfTheSource()
{
    Sheet sheet;
    sheet.addColumn("oo");
    sheet.addAudio();
    sheet.addAnnotations();
    QCOMPARE(sheet.model.columnCount(), 3);
    QCOMPARE(sheet.model.columnCount(sheet.model.index(0, 0)), 0);
}

void tst_FrameRangeModel::indexesAreValidByTheKindOfTheLayer_data()
{
    // Column 0 has 8 frames, 1 has 4, 2 is audio without a sound, 3 annotations; the range is frames 3 to 6.
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("column");
    QTest::addColumn<bool>("valid");
    const auto row = [](int r, int c, bool valid) { QTest::addRow("row %d column %d", r, c) << r << c << valid; };
    row(0, 0, true);
    row(3, 0, true);
    row(4, 0, true); // frame 7 stands in the row after the range
    row(5, 0, false);
    row(1, 1, true);
    row(2, 1, true); // after its last cell
    row(3, 1, false);
    row(0, 2, true);
    row(3, 2, true);
    row(4, 2, false);
    row(3, 3, true);
    row(4, 3, false);
    row(-1, 0, false);
    row(0, -1, false);
    row(0, 4, false);
    row(INT_MIN, 3, false);
    row(INT_MAX, 0, false);
    row(0, INT_MAX, false);
}

void tst_FrameRangeModel::indexesAreValidByTheKindOfTheLayer()
{
    QFETCH(int, row);
    QFETCH(int, column);
    QFETCH(bool, valid);
    Sheet sheet;
    sheet.addColumn("oooooooo");
    sheet.addColumn("oooo");
    sheet.addAudio();
    sheet.addAnnotations();
    sheet.setRange(3, 6);
    const QModelIndex index = sheet.model.index(row, column);
    QCOMPARE(index.isValid(), valid);
    QVERIFY(!index.parent().isValid());
}

void tst_FrameRangeModel::cellsMapBothWays()
{
    Sheet sheet;
    sheet.addColumn("oooooooo");
    sheet.addAnnotations();
    sheet.setRange(3, 6);
    for (int column = 0; column < 2; ++column) {
        for (int row = 0; row < 4; ++row) {
            const QModelIndex index = sheet.model.index(row, column);
            QCOMPARE(sheet.model.mapToSource(index), sheet.source.index(row + 2, column));
            QCOMPARE(sheet.model.mapFromSource(sheet.source.index(row + 2, column)), index);
        }
    }
}

void tst_FrameRangeModel::framesOutsideTheRangeMapToNothing()
{
    Sheet sheet;
    sheet.addColumn("oooooooo");
    sheet.addAnnotations();
    sheet.setRange(3, 6);
    QVERIFY(!sheet.model.mapFromSource(sheet.source.index(1, 0)).isValid());
    // The row after the range has cells of visual layers only.
    QVERIFY(sheet.model.mapFromSource(sheet.source.index(6, 0)).isValid());
    QVERIFY(!sheet.model.mapFromSource(sheet.source.index(6, 1)).isValid());
    QVERIFY(!sheet.model.mapFromSource(sheet.source.index(7, 0)).isValid());
}

void tst_FrameRangeModel::indexesOfOtherModelsMapToNothing()
{
    Sheet sheet;
    sheet.addColumn("ooo");
    sheet.setRange(1, 3);
    SceneModel other;
    other.setScene(&sheet.scene);
    QVERIFY(!sheet.model.mapFromSource(other.index(0, 0)).isValid());
    QVERIFY(!sheet.model.mapToSource(sheet.source.index(0, 0)).isValid());
    QVERIFY(!sheet.model.data(sheet.source.index(0, 0), SceneModel::OriginalDrawingRole).isValid());
    QVERIFY(!sheet.model.beginDrag(FrameRangeModel::AddClonesMode, sheet.source.index(0, 0)));
}

void tst_FrameRangeModel::flagsAreThoseOfTheCell()
{
    Sheet sheet;
    sheet.addColumn("ooo");
    sheet.addAudio();
    sheet.addAnnotations();
    sheet.setRange(1, 3);
    QVERIFY(sheet.cell(2, 0).flags() & Qt::ItemIsSelectable);
    QVERIFY(!(sheet.cell(4, 0).flags() & Qt::ItemIsSelectable));
    for (const int column : {1, 2}) {
        QVERIFY(!(sheet.cell(2, column).flags() & (Qt::ItemIsSelectable | Qt::ItemIsEditable)));
        QVERIFY(sheet.cell(2, column).flags() & Qt::ItemIsEnabled);
    }
    QVERIFY(!sheet.model.hasChildren(sheet.cell(2, 1)));
}

void tst_FrameRangeModel::rolesAreThoseOfTheCell()
{
    Sheet sheet;
    sheet.addColumn("oo..o");
    sheet.scene.makeDistantClone(0, 5, sheet.source.originOfCell(sheet.source.index(0, 0)));
    sheet.scene.setKeyDrawing(0, 3, true);
    sheet.setRange(2, 5);
    QCOMPARE(sheet.shown(0), "o:.d_");
    QCOMPARE(sheet.cell(3, 0).data(Qt::ToolTipRole).toString(), "3");
}

void tst_FrameRangeModel::cellsCanBeWrittenThroughTheRange()
{
    Sheet sheet;
    sheet.addColumn("ooooo");
    const int notes = sheet.addAnnotations();
    sheet.setRange(3, 5);
    QImage note(4, 3, QImage::Format_Indexed8);
    note.setColorCount(256);
    note.fill(7);
    QVERIFY(sheet.model.setData(sheet.cell(4, notes), note, SceneModel::AnnotationImageRole));
    QCOMPARE(sheet.source.index(3, notes).data(SceneModel::AnnotationImageRole).value<QImage>(), note);
    QCOMPARE(sheet.cell(4, notes).data(SceneModel::AnnotationImageRole).value<QImage>(), note);
}

void tst_FrameRangeModel::rowHeadersAreThoseOfTheirFrames()
{
    Sheet sheet;
    sheet.addColumn("oooooo");
    sheet.setRange(3, 5);
    sheet.scene.setScrubFrame(4);
    for (int row = 0; row < 3; ++row)
        QCOMPARE(sheet.model.headerData(row, Qt::Vertical, SceneModel::ScrubFrameRole), QVariant(row == 1));
    QVERIFY(!sheet.model.headerData(4, Qt::Vertical, SceneModel::ScrubFrameRole).isValid());
    QVERIFY(!sheet.model.headerData(-1, Qt::Vertical, SceneModel::ScrubFrameRole).isValid());
}

void tst_FrameRangeModel::lastRowAtTheEndOfTheSceneShowsItsBacklight()
{
    Sheet sheet;
    sheet.addColumn("oooo");
    BacklightSettings settings;
    settings.on = true;
    settings.settingA.opacityLevelsBefore = {0.3};
    sheet.scene.setBacklightSettings(settings);
    sheet.setRange(2, 4);
    QCOMPARE(sheet.model.rowCount(), 4);
    QCOMPARE(sheet.model.headerData(3, Qt::Vertical, SceneModel::FrameBacklitRole), QVariant(false));
    QCOMPARE(sheet.model.headerData(3, Qt::Vertical, Qt::SizeHintRole), QVariant(sheet.source.drawingCellSize()));
    QSignalSpy changed(&sheet.model, &QAbstractItemModel::headerDataChanged);
    sheet.scene.setActiveFrameAndLayer(5, 0, Scene::AllowFrameAfterLast);
    QVERIFY(!changed.isEmpty());
    QCOMPARE(changed.last().at(0).value<Qt::Orientation>(), Qt::Vertical);
    QCOMPARE(changed.last().at(1).toInt(), 0);
    QCOMPARE(changed.last().at(2).toInt(), 3);
    // Frame 5 is the active one, and frame 4 shines through.
    for (int row = 0; row < 4; ++row)
        QCOMPARE(sheet.model.headerData(row, Qt::Vertical, SceneModel::FrameBacklitRole), QVariant(row >= 2));
    QVERIFY(!sheet.model.headerData(4, Qt::Vertical, SceneModel::FrameBacklitRole).isValid());
}

void tst_FrameRangeModel::columnHeadersPassThrough()
{
    Sheet sheet;
    sheet.addColumn("oooooo");
    sheet.scene.setLayerName(0, "Body");
    sheet.setRange(3, 5);
    QCOMPARE(sheet.model.headerData(0, Qt::Horizontal).toString(), "Body");
    QCOMPARE(sheet.model.headerData(0, Qt::Horizontal, SceneModel::LayerLastFrameRole).toInt(), 7);
}

void tst_FrameRangeModel::headersCanBeSet()
{
    Sheet sheet;
    sheet.addColumn("oooooo");
    sheet.setRange(3, 5);
    QVERIFY(sheet.model.setHeaderData(0, Qt::Horizontal, true, SceneModel::LayerLinkedRole));
    QVERIFY(sheet.scene.layer(0)->isLinked());
    QVERIFY(!sheet.model.setHeaderData(0, Qt::Vertical, true, SceneModel::ScrubFrameRole));
}

void tst_FrameRangeModel::rowHeadersAreSetAtTheirFrames()
{
    Sheet sheet;
    sheet.addColumn("oooooo");
    sheet.setRange(3, 5);
    RecordingSource source;
    source.setScene(&sheet.scene);
    FrameRangeModel model;
    model.setSourceModel(&source);
    model.setScene(&sheet.scene);
    QVERIFY(model.setHeaderData(1, Qt::Vertical, 7, SceneModel::ScrubFrameRole));
    QVERIFY(model.setHeaderData(1, Qt::Horizontal, "x", Qt::DisplayRole));
    // Row 1 is frame 4, row 3 of the source.
    QCOMPARE(source.written.size(), 2);
    QVERIFY(source.written.at(0) == (RecordingSource::Written{3, Qt::Vertical, 7, SceneModel::ScrubFrameRole}));
    QVERIFY(source.written.at(1) == (RecordingSource::Written{1, Qt::Horizontal, "x", Qt::DisplayRole}));
}

void tst_FrameRangeModel::audioHasASourceAsFarAsItsSoundGoes()
{
    Sheet sheet;
    sheet.addColumn("ooooo");
    const int audio = sheet.scene.insertLayer(std::make_shared<Sound>(1, 3), 1);
    sheet.setRange(2, 5);
    for (int row = 0; row < 4; ++row) {
        const QModelIndex index = sheet.model.index(row, audio);
        QVERIFY(index.isValid());
        // Rows 0 and 1 are frames 2 and 3.
        QCOMPARE(sheet.model.mapToSource(index).isValid(), row < 2);
        if (row < 2) {
            QCOMPARE(sheet.model.mapToSource(index), sheet.source.index(row + 1, audio));
            QCOMPARE(sheet.model.mapFromSource(sheet.source.index(row + 1, audio)), index);
        }
        QVERIFY(!(index.flags() & (Qt::ItemIsSelectable | Qt::ItemIsEditable)));
    }
    QVERIFY(!sheet.model.index(4, audio).isValid());
    QCOMPARE(sheet.model.headerData(audio, Qt::Horizontal), QVariant(3.0));
}

void tst_FrameRangeModel::thumbnailIsThePictureOfTheCell()
{
    Sheet sheet;
    sheet.addColumn("ooo");
    const int audio = sheet.addAudio();
    const int notes = sheet.addAnnotations();
    sheet.scene.addStroke(0, 3, block(QRect(5, 5, 30, 20)));
    QImage note(4, 3, QImage::Format_Indexed8);
    note.setColorCount(256);
    note.fill(7);
    sheet.scene.setAnnotation(2, note);
    sheet.setRange(2, 3);
    QVERIFY(!sheet.model.thumbnail(sheet.cell(3, 0), QSize(30, 20)).isNull());
    QCOMPARE(sheet.model.thumbnail(sheet.cell(3, 0), QSize(30, 20)),
             sheet.scene.visualLayer(0)->frameImage(3, QSize(30, 20)));
    QVERIFY(sheet.model.thumbnail(sheet.cell(4, 0), QSize(30, 20)).isNull());
    QCOMPARE(sheet.model.thumbnail(sheet.cell(2, notes), QSize(8, 6)).size(), QSize(8, 6));
    QVERIFY(sheet.model.thumbnail(sheet.cell(3, notes), QSize(8, 6)).isNull());
    QVERIFY(sheet.model.thumbnail(sheet.cell(2, audio), QSize(8, 6)).isNull());
}

void tst_FrameRangeModel::changedCellsAreToldAtTheirRows()
{
    Sheet sheet;
    sheet.addColumn("ooo.o");
    sheet.setRange(3, 5);
    QSignalSpy changed(&sheet.model, &QAbstractItemModel::dataChanged);
    sheet.scene.addStroke(0, 3, block(QRect(3, 4, 5, 6)));
    QCOMPARE(changed.size(), 2);
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(changed.at(i).at(0).toModelIndex(), sheet.model.index(i, 0));
        QCOMPARE(changed.at(i).at(1).toModelIndex(), sheet.model.index(i, 0));
    }
    sheet.scene.addStroke(0, 2, block(QRect(3, 4, 5, 6)));
    QCOMPARE(changed.size(), 2);
}

void tst_FrameRangeModel::changedFramesAreToldWithinTheRange()
{
    Sheet sheet;
    sheet.addColumn("oooooooooo");
    sheet.setRange(4, 6);
    QSignalSpy changed(&sheet.model, &QAbstractItemModel::headerDataChanged);
    sheet.scene.setScrubFrame(2);
    QCOMPARE(changed.size(), 0);
    sheet.scene.setScrubFrame(5);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().at(0).value<Qt::Orientation>(), Qt::Vertical);
    QCOMPARE(changed.first().at(1).toInt(), 0);
    QCOMPARE(changed.first().at(2).toInt(), 1);
    sheet.scene.setScrubFrame(9);
    QCOMPARE(changed.size(), 2);
    QCOMPARE(changed.last().at(1).toInt(), 1);
    QCOMPARE(changed.last().at(2).toInt(), 3);
}

void tst_FrameRangeModel::changedSizesAreToldWhateverTheRange()
{
    Sheet sheet;
    sheet.addColumn("oooooooooo");
    sheet.setRange(4, 6);
    sheet.scene.setThumbnailSize(MR::ThumbnailSize::ThumbnailTiny);
    QSignalSpy changed(&sheet.model, &QAbstractItemModel::dataChanged);
    sheet.scene.setThumbnailSize(MR::ThumbnailSize::ThumbnailLarge);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().at(0).toModelIndex(), sheet.model.index(0, 0));
    QCOMPARE(changed.first().at(2).value<QList<int>>(), QList<int>{Qt::SizeHintRole});
}

void tst_FrameRangeModel::changedSizesAreToldWhereALayerReachesTheRange()
{
    Sheet sheet;
    sheet.addColumn("oo");
    sheet.addColumn("oooooooooo");
    sheet.addColumn("oooooooooo");
    sheet.setRange(4, 6);
    sheet.scene.setThumbnailSize(MR::ThumbnailSize::ThumbnailTiny);
    QSignalSpy changed(&sheet.model, &QAbstractItemModel::dataChanged);
    sheet.scene.setThumbnailSize(MR::ThumbnailSize::ThumbnailLarge);
    // Frame 4 is behind the after-last cell of column 0.
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().at(0).toModelIndex(), sheet.model.index(0, 1));
    QCOMPARE(changed.first().at(1).toModelIndex(), sheet.model.index(0, 1));
    QCOMPARE(changed.first().at(2).value<QList<int>>(), QList<int>{Qt::SizeHintRole});
}

void tst_FrameRangeModel::columnsComeAndGoWithLayers()
{
    Sheet sheet;
    sheet.addColumn("ooo");
    sheet.addColumn("ooo");
    sheet.setRange(1, 3);
    const QPersistentModelIndex held(sheet.cell(2, 1));
    QSignalSpy inserted(&sheet.model, &QAbstractItemModel::columnsInserted);
    QSignalSpy removed(&sheet.model, &QAbstractItemModel::columnsRemoved);
    sheet.scene.insertLayer(std::make_shared<StrokeLayer>(Qt::red, sheet.scene.frameSize()), 1);
    QCOMPARE(inserted.size(), 1);
    QCOMPARE(inserted.first().at(1).toInt(), 1);
    QCOMPARE(held.column(), 2);
    sheet.scene.removeLayer(0);
    QCOMPARE(removed.size(), 1);
    QCOMPARE(removed.first().at(1).toInt(), 0);
    QCOMPARE(held.column(), 1);
    sheet.scene.removeLayer(1);
    QVERIFY(!held.isValid());
}

void tst_FrameRangeModel::persistentIndexesKeepTheirFrameWhenTheRangeChanges()
{
    Sheet sheet;
    sheet.addColumn("oooooooo");
    sheet.setRange(1, 8);
    const QPersistentModelIndex held(sheet.cell(5, 0));
    sheet.setRange(3, 6);
    QCOMPARE(QModelIndex(held), sheet.cell(5, 0));
    QCOMPARE(held.row(), 2);
    sheet.setRange(2, 8);
    QCOMPARE(QModelIndex(held), sheet.cell(5, 0));
    QCOMPARE(held.row(), 3);
}

void tst_FrameRangeModel::persistentIndexOfAFrameThatLeavesTheRangeBecomesInvalid()
{
    Sheet sheet;
    sheet.addColumn("oooooooo");
    sheet.setRange(1, 8);
    const QPersistentModelIndex before(sheet.cell(2, 0));
    const QPersistentModelIndex behind(sheet.cell(8, 0));
    const QPersistentModelIndex afterRange(sheet.cell(7, 0));
    sheet.setRange(3, 6);
    QVERIFY(!before.isValid());
    QVERIFY(!behind.isValid());
    QCOMPARE(afterRange.row(), 4);
}

void tst_FrameRangeModel::persistentIndexOfADeletedCellBecomesInvalid()
{
    Sheet sheet;
    sheet.addColumn("oooo");
    sheet.addColumn("oooo");
    sheet.setRange(1, 4);
    const QPersistentModelIndex last(sheet.cell(4, 0));
    const QPersistentModelIndex afterLast(sheet.cell(5, 0));
    sheet.scene.deleteFrame(0, 2);
    // Frame 4 is the place behind the last cell now.
    QVERIFY(last.isValid());
    QVERIFY(last.data(SceneModel::BeyondLastRole).toBool());
    QVERIFY(!afterLast.isValid());
}

void tst_FrameRangeModel::rangeIsToldOnceWhateverTheOrderOfConnections()
{
    Scene scene;
    addUsualLayers(scene, 8);
    SceneModel source;
    FrameRangeModel model;
    model.setSourceModel(&source);
    // The model hears of the range before its source does.
    model.setScene(&scene);
    source.setScene(&scene);
    const QPersistentModelIndex held(model.index(5, 0));
    scene.setFrameRange(3, 7, 3, 0);
    QCOMPARE(held.row(), 3);
    scene.setFrameRange(1, 8, 3, 0);
    QCOMPARE(held.row(), 5);
}

QTEST_MAIN(tst_FrameRangeModel)
#include "tst_framerangemodel.moc"
