#include "scenebuilder.h"
#include "sheetfixture.h"

#include "libmodel/layers/referencelayer.h"
#include "libmodel/scene/scenemodel.h"

#include <QTest>

#include <climits>

using namespace Model;
using namespace TestSupport;

class tst_SceneModelHeader : public QObject
{
    Q_OBJECT

private slots:
    void headerTellsVisualLayersAndNames();
    void headerTellsTheAttributesOfLayers_data();
    void headerTellsTheAttributesOfLayers();
    void headerOfTheAudioLayerTellsTheSoundsLength();
    void headerTellsTheScrubFrame();
    void headerTellsBacklitFrames();
    void headerBehindTheRowsTellsSizeAndBacklight();
    void headerOfAnUnknownSectionTellsNothing();
    void attributesAreSetThroughTheHeader_data();
    void attributesAreSetThroughTheHeader();
    void headerRefusesWhatALayerHasNot_data();
    void headerRefusesWhatALayerHasNot();
    void sizesFollowTheThumbnailSize();
    void changedLayersAreToldInTheHeader();
    void movedLayersAreToldInTheHeader();
    void changedColorsAreToldInTheHeaderAndTheCells();
    void changedFramesAreToldInTheHeader_data();
    void changedFramesAreToldInTheHeader();
    void frameChangesBeyondTheRowsAreNotTold();
};

void tst_SceneModelHeader::headerTellsVisualLayersAndNames()
{
    Scene scene;
    addUsualLayers(scene, 1);
    scene.setLayerName(0, "Body");
    SceneModel model;
    model.setScene(&scene);
    QCOMPARE(model.headerData(0, Qt::Horizontal, SceneModel::LayerIsVisualRole), QVariant(true));
    QCOMPARE(model.headerData(1, Qt::Horizontal, SceneModel::LayerIsVisualRole), QVariant(false));
    QCOMPARE(model.headerData(2, Qt::Horizontal, SceneModel::LayerIsVisualRole), QVariant(false));
    QCOMPARE(model.headerData(0, Qt::Horizontal).toString(), "Body");
    QVERIFY(!model.headerData(9, Qt::Horizontal, SceneModel::LayerIsVisualRole).isValid());
}

void tst_SceneModelHeader::headerTellsTheAttributesOfLayers_data()
{
    // Column 0 is a stroke layer of 4 frames, linked, hidden, red, of opacity 0.5, cycling; 1 is audio; 2 annotations;
    // 3 a reference layer of one frame.
    QTest::addColumn<int>("role");
    QTest::addColumn<QVariantList>("values");
    const auto row = [](const char *name, int role, const QVariantList &values) {
        QTest::newRow(name) << role << values;
    };
    row("name", Qt::DisplayRole, {"Body", 0.0, "Notes", "Photo"});
    row("type", SceneModel::LayerTypeRole, {1, 4, 5, 3});
    row("linked", SceneModel::LayerLinkedRole, {true, false, false, false});
    row("visible", SceneModel::LayerVisibleRole, {false, {}, {}, true});
    row("audible", SceneModel::LayerAudibleRole, {{}, true, {}, {}});
    row("color", SceneModel::LayerColorRole, {QColor(Qt::red), {}, {}, {}});
    row("opacity", SceneModel::LayerOpacityRole, {0.5, {}, {}, 0.25});
    row("is drawn", SceneModel::LayerIsDrawnRole, {true, false, false, false});
    row("is visual", SceneModel::LayerIsVisualRole, {true, false, false, true});
    row("beyond last", SceneModel::LayerBeyondLastRole, {3, 1, 1, 1});
    row("last frame", SceneModel::LayerLastFrameRole, {5, 5, 5, 2});
    row("none of these", 9999, {{}, {}, {}, {}});
}

void tst_SceneModelHeader::headerTellsTheAttributesOfLayers()
{
    QFETCH(int, role);
    QFETCH(QVariantList, values);
    Scene scene;
    addUsualLayers(scene, 4);
    scene.insertLayer(std::make_shared<ReferenceLayer>(scene.frameSize()), 3);
    scene.setLayerName(0, "Body");
    scene.setLayerName(1, "Music");
    scene.setLayerName(2, "Notes");
    scene.setLayerName(3, "Photo");
    scene.setLayerLinked(0, true);
    scene.setLayerVisible(0, false);
    scene.setLayerColor(0, Qt::red);
    scene.setLayerOpacity(0, 0.5);
    scene.setLayerOpacity(3, 0.25);
    scene.setLayerBeyondLast(0, Layer::CycleDrawings);
    SceneModel model;
    model.setScene(&scene);
    for (int section = 0; section < 4; ++section)
        QCOMPARE(model.headerData(section, Qt::Horizontal, role), values.at(section));
}

void tst_SceneModelHeader::headerOfTheAudioLayerTellsTheSoundsLength()
{
    Sheet sheet;
    sheet.addColumn("ooooo");
    const int audio = sheet.scene.insertLayer(std::make_shared<Sound>(1, 3), 1);
    const QVariant length = sheet.source.headerData(audio, Qt::Horizontal);
    QCOMPARE(length.typeId(), int(QMetaType::Double));
    QCOMPARE(length.toDouble(), 3.0);
}

void tst_SceneModelHeader::headerTellsTheScrubFrame()
{
    Scene scene;
    addUsualLayers(scene, 4);
    SceneModel model;
    model.setScene(&scene);
    scene.setScrubFrame(3);
    for (int row = 0; row < 4; ++row)
        QCOMPARE(model.headerData(row, Qt::Vertical, SceneModel::ScrubFrameRole), QVariant(row == 2));
    scene.unsetScrubFrame();
    QCOMPARE(model.headerData(2, Qt::Vertical, SceneModel::ScrubFrameRole), QVariant(false));
}

void tst_SceneModelHeader::headerTellsBacklitFrames()
{
    Scene scene;
    addUsualLayers(scene, 9);
    scene.setActiveFrameAndLayer(4, 0, Scene::KeepFrameOnDrawing);
    BacklightSettings settings;
    settings.on = true;
    settings.settingA.opacityLevelsBefore = {0.3};
    settings.settingA.opacityLevelsAfter = {0.3, 0.2};
    scene.setBacklightSettings(settings);
    SceneModel model;
    model.setScene(&scene);
    // Each frame has a drawing of its own: one neighbour before the active one, two behind it.
    const QList<int> lit{3, 4, 5, 6};
    for (int frameId = 1; frameId <= 9; ++frameId) {
        QCOMPARE(model.headerData(frameId - 1, Qt::Vertical, SceneModel::FrameBacklitRole),
                 QVariant(lit.contains(frameId)));
    }
    settings.on = false;
    scene.setBacklightSettings(settings);
    QCOMPARE(model.headerData(3, Qt::Vertical, SceneModel::FrameBacklitRole), QVariant(false));
}

void tst_SceneModelHeader::headerBehindTheRowsTellsSizeAndBacklight()
{
    Scene scene;
    addUsualLayers(scene, 4);
    BacklightSettings settings;
    settings.on = true;
    settings.settingA.opacityLevelsAfter = {};
    scene.setBacklightSettings(settings);
    SceneModel model;
    model.setScene(&scene);
    QCOMPARE(model.rowCount(), 4);
    QCOMPARE(model.headerData(4, Qt::Vertical, Qt::SizeHintRole), QVariant(model.drawingCellSize()));
    QCOMPARE(model.headerData(4, Qt::Vertical, SceneModel::FrameBacklitRole), QVariant(false));
    scene.setActiveFrameAndLayer(5, 0, Scene::AllowFrameAfterLast);
    QCOMPARE(scene.activeFrame(), 5);
    QCOMPARE(model.headerData(4, Qt::Vertical, SceneModel::FrameBacklitRole), QVariant(true));
    QVERIFY(!model.headerData(4, Qt::Vertical, SceneModel::ScrubFrameRole).isValid());
    for (const int role : {int(Qt::SizeHintRole), int(SceneModel::FrameBacklitRole)}) {
        for (const int section : {INT_MIN, -1, 5, INT_MAX})
            QVERIFY(!model.headerData(section, Qt::Vertical, role).isValid());
    }
}

void tst_SceneModelHeader::headerOfAnUnknownSectionTellsNothing()
{
    Scene scene;
    addUsualLayers(scene, 4);
    SceneModel model;
    model.setScene(&scene);
    for (const int section : {INT_MIN, -1, 3, INT_MAX})
        QVERIFY(!model.headerData(section, Qt::Horizontal, SceneModel::LayerTypeRole).isValid());
    for (const int section : {INT_MIN, -1, 4, INT_MAX})
        QVERIFY(!model.headerData(section, Qt::Vertical, SceneModel::ScrubFrameRole).isValid());
}

void tst_SceneModelHeader::attributesAreSetThroughTheHeader_data()
{
    QTest::addColumn<int>("section");
    QTest::addColumn<int>("role");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("name") << 0 << int(Qt::DisplayRole) << QVariant("Body");
    QTest::newRow("name of notes") << 2 << int(Qt::DisplayRole) << QVariant("Notes");
    QTest::newRow("linked") << 0 << int(SceneModel::LayerLinkedRole) << QVariant(true);
    QTest::newRow("notes linked") << 2 << int(SceneModel::LayerLinkedRole) << QVariant(true);
    QTest::newRow("visible") << 0 << int(SceneModel::LayerVisibleRole) << QVariant(false);
    QTest::newRow("audible") << 1 << int(SceneModel::LayerAudibleRole) << QVariant(false);
    QTest::newRow("color") << 0 << int(SceneModel::LayerColorRole) << QVariant(QColor(1, 2, 3));
    QTest::newRow("opacity") << 0 << int(SceneModel::LayerOpacityRole) << QVariant(0.25);
}

void tst_SceneModelHeader::attributesAreSetThroughTheHeader()
{
    QFETCH(int, section);
    QFETCH(int, role);
    QFETCH(QVariant, value);
    Scene scene;
    addUsualLayers(scene, 4);
    SceneModel model;
    model.setScene(&scene);
    QVERIFY(model.headerData(section, Qt::Horizontal, role) != value);
    QList<std::pair<int, int>> changed;
    connect(&model, &QAbstractItemModel::headerDataChanged, this,
            [&](Qt::Orientation orientation, int first, int last) {
                if (orientation == Qt::Horizontal)
                    changed.append({first, last});
            });
    QVERIFY(model.setHeaderData(section, Qt::Horizontal, value, role));
    QCOMPARE(model.headerData(section, Qt::Horizontal, role), value);
    QCOMPARE(changed, (QList<std::pair<int, int>>{{section, section}}));
}

void tst_SceneModelHeader::headerRefusesWhatALayerHasNot_data()
{
    QTest::addColumn<int>("section");
    QTest::addColumn<int>("role");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("no layer") << 3 << int(Qt::DisplayRole) << QVariant("x");
    QTest::newRow("in front of the layers") << -1 << int(Qt::DisplayRole) << QVariant("x");
    QTest::newRow("visible sound") << 1 << int(SceneModel::LayerVisibleRole) << QVariant(false);
    QTest::newRow("audible drawings") << 0 << int(SceneModel::LayerAudibleRole) << QVariant(false);
    QTest::newRow("coloured notes") << 2 << int(SceneModel::LayerColorRole) << QVariant(QColor(Qt::red));
    QTest::newRow("no colour") << 0 << int(SceneModel::LayerColorRole) << QVariant("nonsense");
    QTest::newRow("no number") << 0 << int(SceneModel::LayerOpacityRole) << QVariant("much");
    QTest::newRow("transparent notes") << 2 << int(SceneModel::LayerOpacityRole) << QVariant(0.5);
    QTest::newRow("type") << 0 << int(SceneModel::LayerTypeRole) << QVariant(2);
}

void tst_SceneModelHeader::headerRefusesWhatALayerHasNot()
{
    QFETCH(int, section);
    QFETCH(int, role);
    QFETCH(QVariant, value);
    Scene scene;
    addUsualLayers(scene, 4);
    SceneModel model;
    model.setScene(&scene);
    QSignalSpy changed(&model, &QAbstractItemModel::headerDataChanged);
    QVERIFY(!model.setHeaderData(section, Qt::Horizontal, value, role));
    QCOMPARE(changed.size(), 0);
    QVERIFY(!model.setHeaderData(0, Qt::Vertical, true, SceneModel::ScrubFrameRole));
}

void tst_SceneModelHeader::sizesFollowTheThumbnailSize()
{
    Scene scene;
    addUsualLayers(scene, 4);
    scene.setThumbnailSize(MR::ThumbnailSize::ThumbnailTiny);
    SceneModel model;
    model.setScene(&scene);
    const QSize tiny = model.drawingCellSize();
    QCOMPARE(model.headerData(0, Qt::Horizontal, Qt::SizeHintRole).toSize(), tiny);
    QCOMPARE(model.headerData(2, Qt::Horizontal, Qt::SizeHintRole).toSize(), model.annotationCellSize());
    QCOMPARE(model.headerData(0, Qt::Vertical, Qt::SizeHintRole).toSize(), tiny);
    // Rows are level across the sheet.
    QCOMPARE(model.annotationCellSize().height(), tiny.height());

    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QSignalSpy headers(&model, &QAbstractItemModel::headerDataChanged);
    int height = tiny.height();
    for (const auto size :
         {MR::ThumbnailSize::ThumbnailSmall, MR::ThumbnailSize::ThumbnailMedium, MR::ThumbnailSize::ThumbnailLarge}) {
        scene.setThumbnailSize(size);
        QVERIFY(model.drawingCellSize().height() > height);
        height = model.drawingCellSize().height();
    }
    QCOMPARE(changed.size(), 3);
    QCOMPARE(changed.first().at(0).toModelIndex(), model.index(0, 0));
    QCOMPARE(changed.first().at(2).value<QList<int>>(), QList<int>{Qt::SizeHintRole});
    QCOMPARE(headers.size(), 3);
    QCOMPARE(headers.first().at(0).value<Qt::Orientation>(), Qt::Horizontal);
    QCOMPARE(headers.first().at(1).toInt(), 0);
    QCOMPARE(headers.first().at(2).toInt(), 2);
}

void tst_SceneModelHeader::changedLayersAreToldInTheHeader()
{
    Scene scene;
    addUsualLayers(scene, 1);
    SceneModel model;
    model.setScene(&scene);
    QSignalSpy changed(&model, &QAbstractItemModel::headerDataChanged);
    scene.setLayerName(1, "Music");
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().at(0).value<Qt::Orientation>(), Qt::Horizontal);
    QCOMPARE(changed.first().at(1).toInt(), 1);
    QCOMPARE(changed.first().at(2).toInt(), 1);
}

void tst_SceneModelHeader::movedLayersAreToldInTheHeader()
{
    Scene scene;
    addUsualLayers(scene, 1);
    SceneModel model;
    model.setScene(&scene);
    QSignalSpy changed(&model, &QAbstractItemModel::headerDataChanged);
    scene.moveLayer(0, 2);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().at(0).value<Qt::Orientation>(), Qt::Horizontal);
    QCOMPARE(changed.first().at(1).toInt(), 0);
    QCOMPARE(changed.first().at(2).toInt(), 2);
}

void tst_SceneModelHeader::changedColorsAreToldInTheHeaderAndTheCells()
{
    Scene scene;
    addUsualLayers(scene, 3);
    SceneModel model;
    model.setScene(&scene);
    QSignalSpy headers(&model, &QAbstractItemModel::headerDataChanged);
    QSignalSpy cells(&model, &QAbstractItemModel::dataChanged);
    scene.setLayerColor(0, Qt::green);
    QCOMPARE(headers.size(), 1);
    QCOMPARE(cells.size(), 1);
    QCOMPARE(cells.first().at(0).toModelIndex(), model.index(0, 0));
    QCOMPARE(cells.first().at(1).toModelIndex(), model.index(2, 0));
    scene.setLayerOpacity(0, 0.5);
    QCOMPARE(headers.size(), 2);
}

void tst_SceneModelHeader::changedFramesAreToldInTheHeader_data()
{
    QTest::addColumn<int>("previous");
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::newRow("down") << 2 << 5 << 1 << 4;
    QTest::newRow("up") << 5 << 2 << 1 << 4;
    QTest::newRow("set") << -1 << 4 << 3 << 3;
    QTest::newRow("unset") << 4 << -1 << 3 << 3;
}

void tst_SceneModelHeader::changedFramesAreToldInTheHeader()
{
    QFETCH(int, previous);
    QFETCH(int, current);
    QFETCH(int, first);
    QFETCH(int, last);
    Scene scene;
    addUsualLayers(scene, 6);
    scene.setScrubFrame(previous);
    SceneModel model;
    model.setScene(&scene);
    QSignalSpy changed(&model, &QAbstractItemModel::headerDataChanged);
    scene.setScrubFrame(current);
    QVERIFY(!changed.isEmpty());
    QCOMPARE(changed.first().at(0).value<Qt::Orientation>(), Qt::Vertical);
    QCOMPARE(changed.first().at(1).toInt(), first);
    QCOMPARE(changed.first().at(2).toInt(), last);

    changed.clear();
    scene.setActiveFrameAndLayer(scene.activeFrame() == 1 ? 2 : 1, 0, Scene::KeepFrameOnDrawing);
    QVERIFY(!changed.isEmpty());
    QCOMPARE(changed.last().at(0).value<Qt::Orientation>(), Qt::Vertical);
    QCOMPARE(changed.last().at(1).toInt(), 0);
    QCOMPARE(changed.last().at(2).toInt(), 5);
}

void tst_SceneModelHeader::frameChangesBeyondTheRowsAreNotTold()
{
    Scene scene;
    addUsualLayers(scene, 6);
    scene.setScrubFrame(6);
    SceneModel model;
    model.setScene(&scene);
    bool inRows = true;
    connect(&model, &QAbstractItemModel::headerDataChanged, this,
            [&](Qt::Orientation orientation, int first, int last) {
                if (orientation == Qt::Vertical)
                    inRows &= first >= 0 && first <= last && last < model.rowCount();
            });
    // The scrub frame goes with the last row.
    scene.deleteFrame(0, 3);
    QCOMPARE(scene.scrubFrame(), -1);
    QVERIFY(inRows);
}

QTEST_MAIN(tst_SceneModelHeader)
#include "tst_scenemodel_header.moc"
