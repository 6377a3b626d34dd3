#include "scenebuilder.h"
#include "sheetfixture.h"

#include "libmodel/scene/scenemodel.h"

#include <QTest>

#include <climits>

using namespace Model;
using namespace TestSupport;

class tst_SceneModel : public QObject
{
    Q_OBJECT

private slots:
    void withoutASceneAllIsEmpty();
    void aDestroyedSceneLeavesTheModelEmpty();
    void rowsAreFramesAndColumnsAreLayers();
    void indexesAreValidByTheKindOfTheLayer_data();
    void indexesAreValidByTheKindOfTheLayer();
    void audioTakesTheRowsOfItsSound_data();
    void audioTakesTheRowsOfItsSound();
    void cellBehindTheLongestLayerIsValidThoughBeyondTheRows();
    void flagsFollowTheKindOfThePosition();
    void kindsOfCellsAreToldByRole();
    void notesAreReadAndWritten();
    void whatIsNoImageIsNoNote_data();
    void whatIsNoImageIsNoNote();
    void toolTipIsTheLabelOfTheFrame();
    void itemAndDrawingOfAnIndex();
    void strokesGoThrough();
    void indexesOfOtherModelsAreRefused();
    void changedDrawingsAreToldCellByCell();
    void columnsComeAndGoWithLayers();
    void persistentIndexesKeepTheirRows();
    void persistentIndexBehindTheLastCellBecomesInvalid();
    void modelStaysConsistentUnderEdits();
};

void tst_SceneModel::withoutASceneAllIsEmpty()
{
    SceneModel model;
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.columnCount(), 0);
    QVERIFY(!model.index(0, 0).isValid());
    QVERIFY(!model.data({}, SceneModel::BeyondLastRole).isValid());
    QVERIFY(!model.headerData(0, Qt::Horizontal, SceneModel::LayerIsVisualRole).isValid());
    QVERIFY(!model.item({}));
    QVERIFY(!model.drawing({}));
    QVERIFY(!model.addStroke({}, block(QRect(0, 0, 1, 1))));
    QVERIFY(!model.removeLastStroke({}));
}

void tst_SceneModel::aDestroyedSceneLeavesTheModelEmpty()
{
    SceneModel model;
    auto scene = std::make_unique<Scene>();
    addUsualLayers(*scene, 2);
    model.setScene(scene.get());
    QCOMPARE(model.columnCount(), 3);
    scene.reset();
    QCOMPARE(model.scene(), nullptr);
    QCOMPARE(model.columnCount(), 0);
}

void tst_SceneModel::rowsAreFramesAndColumnsAreLayers()
{
    Scene scene;
    SceneModel model;
    model.setScene(&scene);
    addUsualLayers(scene, 4);
    addStrokeLayer(scene, 7);
    QCOMPARE(model.rowCount(), 7);
    QCOMPARE(model.columnCount(), 4);
    QCOMPARE(model.rowCount(model.index(0, 0)), 0);
    QCOMPARE(model.columnCount(model.index(0, 0)), 0);
}

void tst_SceneModel::indexesAreValidByTheKindOfTheLayer_data()
{
    // Column 0 is a stroke layer of 4 frames, 1 audio without a sound, 2 annotation, 3 a stroke layer of 7 frames.
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("column");
    QTest::addColumn<bool>("valid");
    const auto row = [](int r, int c, bool valid) { QTest::addRow("row %d column %d", r, c) << r << c << valid; };
    row(0, 0, true);
    row(3, 0, true);
    row(4, 0, true);
    row(5, 0, false);
    row(0, 1, false);
    row(0, 2, true);
    row(6, 2, true);
    row(100, 2, true);
    row(Layer::maximumFrames - 1, 2, true);
    row(Layer::maximumFrames, 2, false);
    row(INT_MAX, 2, false);
    row(6, 3, true);
    row(7, 3, true);
    row(8, 3, false);
    for (const int column : {INT_MIN, -1, 4, INT_MAX})
        row(0, column, false);
    for (const int r : {INT_MIN, -1, INT_MAX})
        row(r, 0, false);
    row(-1, 2, false);
}

void tst_SceneModel::indexesAreValidByTheKindOfTheLayer()
{
    QFETCH(int, row);
    QFETCH(int, column);
    QFETCH(bool, valid);
    Scene scene;
    addUsualLayers(scene, 4);
    addStrokeLayer(scene, 7);
    SceneModel model;
    model.setScene(&scene);
    QCOMPARE(model.index(row, column).isValid(), valid);
}

void tst_SceneModel::audioTakesTheRowsOfItsSound_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::newRow("from frame 1") << 1 << 3;
    QTest::newRow("from frame 2") << 2 << 3;
    QTest::newRow("longer than all layers") << 1 << 8;
}

void tst_SceneModel::audioTakesTheRowsOfItsSound()
{
    QFETCH(int, first);
    QFETCH(int, last);
    Sheet sheet;
    sheet.addColumn("ooooo");
    const int audio = sheet.scene.insertLayer(std::make_shared<Sound>(first, last), 1);
    for (int row = -1; row < 10; ++row)
        QCOMPARE(sheet.source.index(row, audio).isValid(), row + 1 >= first && row + 1 <= last);
    QVERIFY(!sheet.source.index(INT_MAX, audio).isValid());
}

void tst_SceneModel::cellBehindTheLongestLayerIsValidThoughBeyondTheRows()
{
    Scene scene;
    addUsualLayers(scene, 4);
    SceneModel model;
    model.setScene(&scene);
    QCOMPARE(model.rowCount(), 4);
    const QModelIndex afterLast = model.index(4, 0);
    QVERIFY(afterLast.isValid());
    QCOMPARE(afterLast.data(SceneModel::BeyondLastRole), QVariant(true));
    QVERIFY(!model.item(afterLast));
}

void tst_SceneModel::flagsFollowTheKindOfThePosition()
{
    Scene scene;
    addUsualLayers(scene, 4);
    SceneModel model;
    model.setScene(&scene);
    QVERIFY(model.flags(model.index(3, 0)) & Qt::ItemIsSelectable);
    QVERIFY(model.flags(model.index(4, 0)) & Qt::ItemIsEnabled);
    QVERIFY(!(model.flags(model.index(4, 0)) & Qt::ItemIsSelectable));
    // The annotation column can be neither selected nor edited.
    QVERIFY(!(model.flags(model.index(0, 2)) & (Qt::ItemIsSelectable | Qt::ItemIsEditable)));
}

void tst_SceneModel::kindsOfCellsAreToldByRole()
{
    Scene scene;
    addUsualLayers(scene, 1);
    scene.addCloneDrawing(0, 1);
    scene.addBlankDrawing(0, 2);
    scene.item(0, 3)->type = LayerItem::Type::DistantClone;
    scene.setKeyDrawing(0, 2, true);
    SceneModel model;
    model.setScene(&scene);
    const auto roles = [&](int row) {
        QString text;
        const QModelIndex index = model.index(row, 0);
        for (const auto &[role, letter] : {std::pair(SceneModel::OriginalDrawingRole, 'o'),
                                           {SceneModel::LocalCloneRole, 'c'},
                                           {SceneModel::DistantCloneRole, 'd'},
                                           {SceneModel::KeyDrawingRole, 'k'},
                                           {SceneModel::BeyondLastRole, 'b'}}) {
            if (index.data(role).toBool())
                text += letter;
        }
        return text;
    };
    QCOMPARE(roles(0), "o");
    QCOMPARE(roles(1), "ck");
    QCOMPARE(roles(2), "d");
    QCOMPARE(roles(3), "b");
}

void tst_SceneModel::notesAreReadAndWritten()
{
    Scene scene;
    addUsualLayers(scene, 4);
    SceneModel model;
    model.setScene(&scene);
    QImage note(4, 3, QImage::Format_Indexed8);
    note.setColorCount(256);
    note.fill(7);
    QVERIFY(model.setData(model.index(2, 2), note, SceneModel::AnnotationImageRole));
    QCOMPARE(model.index(2, 2).data(SceneModel::AnnotationImageRole).value<QImage>(), note);
    QVERIFY(model.index(1, 2).data(SceneModel::AnnotationImageRole).value<QImage>().isNull());
    QVERIFY(!model.index(2, 0).data(SceneModel::AnnotationImageRole).isValid());
    // Nothing else can be written, nor anywhere else.
    QVERIFY(!model.setData(model.index(2, 0), note, SceneModel::AnnotationImageRole));
    QVERIFY(!model.setData(model.index(2, 2), note, Qt::EditRole));
    QVERIFY(!model.setData({}, note, SceneModel::AnnotationImageRole));
}

void tst_SceneModel::whatIsNoImageIsNoNote_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("nothing") << QVariant();
    QTest::newRow("text") << QVariant("a note");
    QTest::newRow("a number") << QVariant(7);
}

void tst_SceneModel::whatIsNoImageIsNoNote()
{
    QFETCH(QVariant, value);
    Scene scene;
    addUsualLayers(scene, 4);
    SceneModel model;
    model.setScene(&scene);
    QImage note(4, 3, QImage::Format_Indexed8);
    note.setColorCount(256);
    note.fill(7);
    QVERIFY(scene.setAnnotation(3, note));
    QVERIFY(!model.setData(model.index(2, 2), value, SceneModel::AnnotationImageRole));
    QCOMPARE(model.index(2, 2).data(SceneModel::AnnotationImageRole).value<QImage>(), note);
}

void tst_SceneModel::toolTipIsTheLabelOfTheFrame()
{
    Scene scene;
    addUsualLayers(scene, 2);
    scene.item(0, 2)->drawing->setName("blink");
    SceneModel model;
    model.setScene(&scene);
    QCOMPARE(model.index(0, 0).data(Qt::ToolTipRole).toString(), "1");
    QCOMPARE(model.index(1, 0).data(Qt::ToolTipRole).toString(), "blink");
}

void tst_SceneModel::itemAndDrawingOfAnIndex()
{
    Scene scene;
    addUsualLayers(scene, 2);
    SceneModel model;
    model.setScene(&scene);
    QCOMPARE(model.item(model.index(1, 0)), scene.item(0, 2));
    QCOMPARE(model.drawing(model.index(1, 0)), scene.item(0, 2)->drawing);
    QVERIFY(!model.drawing(model.index(2, 0)));
    QVERIFY(!model.drawing(model.index(0, 2)));
}

void tst_SceneModel::strokesGoThrough()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    SceneModel model;
    model.setScene(&scene);
    QVERIFY(model.addStroke(model.index(1, 0), block(QRect(3, 4, 5, 6))));
    QVERIFY(!drawingAt(scene, 0, 2).isEmpty());
    QVERIFY(model.removeLastStroke(model.index(1, 0)));
    QVERIFY(drawingAt(scene, 0, 2).isEmpty());
    QVERIFY(!model.addStroke(model.index(2, 0), block(QRect(3, 4, 5, 6))));
}

void tst_SceneModel::indexesOfOtherModelsAreRefused()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    SceneModel model;
    model.setScene(&scene);
    SceneModel other;
    other.setScene(&scene);
    QVERIFY(!model.addStroke(other.index(0, 0), block(QRect(3, 4, 5, 6))));
    QVERIFY(!model.item(other.index(0, 0)));
}

void tst_SceneModel::changedDrawingsAreToldCellByCell()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    scene.addCloneDrawing(0, 1);
    SceneModel model;
    model.setScene(&scene);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    scene.addStroke(0, 1, block(QRect(3, 4, 5, 6)));
    QCOMPARE(changed.size(), 2);
    QCOMPARE(changed.at(0).at(0).toModelIndex(), model.index(0, 0));
    QCOMPARE(changed.at(0).at(1).toModelIndex(), model.index(0, 0));
    QCOMPARE(changed.at(1).at(0).toModelIndex(), model.index(1, 0));
}

void tst_SceneModel::columnsComeAndGoWithLayers()
{
    Scene scene;
    addUsualLayers(scene, 1);
    SceneModel model;
    model.setScene(&scene);
    QSignalSpy inserted(&model, &QAbstractItemModel::columnsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::columnsRemoved);
    scene.insertLayer(std::make_shared<StrokeLayer>(Qt::red, scene.frameSize()), 1);
    QCOMPARE(inserted.size(), 1);
    QCOMPARE(inserted.first().at(1).toInt(), 1);
    QCOMPARE(inserted.first().at(2).toInt(), 1);
    scene.removeLayer(2);
    QCOMPARE(removed.size(), 1);
    QCOMPARE(removed.first().at(1).toInt(), 2);
}

void tst_SceneModel::persistentIndexesKeepTheirRows()
{
    Scene scene;
    addUsualLayers(scene, 4);
    SceneModel model;
    model.setScene(&scene);
    const QPersistentModelIndex held(model.index(2, 0));
    scene.addBlankDrawing(0, 1);
    QCOMPARE(QModelIndex(held), model.index(2, 0));
    scene.deleteFrame(0, 1);
    QCOMPARE(QModelIndex(held), model.index(2, 0));
    scene.insertLayer(std::make_shared<StrokeLayer>(Qt::red, scene.frameSize()), 0);
    QCOMPARE(QModelIndex(held), model.index(2, 1));
}

void tst_SceneModel::persistentIndexBehindTheLastCellBecomesInvalid()
{
    Scene scene;
    addUsualLayers(scene, 4);
    addStrokeLayer(scene, 9);
    SceneModel model;
    model.setScene(&scene);
    const QPersistentModelIndex last(model.index(3, 0));
    const QPersistentModelIndex afterLast(model.index(4, 0));
    const QPersistentModelIndex other(model.index(4, 3));
    scene.deleteFrame(0, 1);
    QVERIFY(last.isValid());
    QVERIFY(!afterLast.isValid());
    QVERIFY(other.isValid());
}

void tst_SceneModel::modelStaysConsistentUnderEdits()
{
    // Valid positions beyond the rows and invalid ones inside are meant; what the tester can hold against a model is
    // the order of its announcements.
    Scene scene;
    SceneModel model;
    model.setScene(&scene);
    int columns = 0;
    connect(&model, &QAbstractItemModel::columnsInserted, this, [&](const QModelIndex &, int first, int last) {
        columns += last - first + 1;
        QCOMPARE(model.columnCount(), columns);
    });
    connect(&model, &QAbstractItemModel::columnsRemoved, this, [&](const QModelIndex &, int first, int last) {
        columns -= last - first + 1;
        QCOMPARE(model.columnCount(), columns);
    });
    int layouts = 0;
    connect(&model, &QAbstractItemModel::layoutAboutToBeChanged, this, [&] { ++layouts; });
    connect(&model, &QAbstractItemModel::layoutChanged, this, [&] { --layouts; });
    addUsualLayers(scene, 2);
    scene.addBlankDrawing(0, 2);
    scene.moveLayer(0, 2);
    scene.removeLayer(1);
    QCOMPARE(columns, 2);
    QCOMPARE(layouts, 0);
    QCOMPARE(model.rowCount(), 3);
}

QTEST_MAIN(tst_SceneModel)
#include "tst_scenemodel.moc"
