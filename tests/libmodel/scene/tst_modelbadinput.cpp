// The table models of a scene, given indexes, sections and values that they cannot use.

#include "scenebuilder.h"

#include "libmodel/layers/referencelayer.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scenemodel.h"
#include "support/scenesnapshot.h"

#include <QStandardItemModel>
#include <QTest>

#include <climits>
#include <functional>
#include <limits>

using namespace Model;
using namespace TestSupport;

/// Calls something of a scene's models; true when the answer says that nothing was done.
using Call = std::function<bool(MRScene &)>;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// The layers of the stage, of which frames 2 to 4 are the range.
constexpr int strokes = 0;  ///< original, clone, original, clone, original
constexpr int pictures = 1; ///< original
constexpr int sound = 2;
constexpr int notes = 3;
constexpr int layers = 4;
constexpr int strokeCells = 5;

void build(MRScene &mrScene)
{
    Scene &scene = *mrScene.scene();
    makeSmall(scene);
    addStrokeLayer(scene, strokeCells);
    scene.loseDrawing(strokes, 2);
    scene.loseDrawing(strokes, 4);
    scene.addStroke(strokes, 1, block(QRect(1, 1, 3, 3)));
    scene.insertLayer(std::make_shared<ReferenceLayer>(sceneFrame), pictures);
    scene.insertLayer(std::make_shared<AudioLayer>(), sound);
    scene.insertLayer(std::make_shared<AnnotationLayer>(), notes);
    scene.setFrameRange(2, 4, 3, strokes);
}

void add(const QByteArray &name, Call call)
{
    QTest::newRow(name.constData()) << std::move(call);
}

QByteArray number(int value)
{
    return value == INT_MIN ? "INT_MIN" : value == INT_MAX ? "INT_MAX" : QByteArray::number(value);
}

using Operation = std::function<bool(SceneModel &, const QModelIndex &)>;

const QList<std::pair<QByteArray, Operation>> &operations()
{
    static const QList<std::pair<QByteArray, Operation>> all{
        {"addBlankDrawing", [](SceneModel &m, auto &i) { return m.addBlankDrawing(i).isEmpty(); }},
        {"addCloneDrawing", [](SceneModel &m, auto &i) { return m.addCloneDrawing(i).isEmpty(); }},
        {"addCloneDrawings", [](SceneModel &m, auto &i) { return m.addCloneDrawings(i, 2).isEmpty(); }},
        {"deleteDrawing", [](SceneModel &m, auto &i) { return m.deleteDrawing(i).isEmpty(); }},
        {"deleteDrawings", [](SceneModel &m, auto &i) { return m.deleteDrawings(i, 1).isEmpty(); }},
        {"replaceDrawing",
         [](SceneModel &m, auto &i) {
             return m.replaceDrawing(i, std::make_shared<StrokeDrawing>(sceneFrame)).isEmpty();
         }},
        {"makeDistantClone",
         [](SceneModel &m, auto &i) { return m.makeDistantClone(i, m.originOfCell(m.index(0, strokes))).isEmpty(); }},
        {"loseDrawing", [](SceneModel &m, auto &i) { return m.loseDrawing(i).isEmpty(); }},
        {"turnCloneIntoOriginal", [](SceneModel &m, auto &i) { return m.turnCloneIntoOriginal(i).isEmpty(); }},
        {"slideOriginalDrawing", [](SceneModel &m, auto &i) { return m.slideOriginalDrawing(i, -1, -1, 0).isEmpty(); }},
        {"addStroke", [](SceneModel &m, auto &i) { return !m.addStroke(i, block(QRect(0, 0, 2, 2))); }},
        {"removeLastStroke", [](SceneModel &m, auto &i) { return !m.removeLastStroke(i); }},
        {"item", [](SceneModel &m, auto &i) { return !m.item(i); }},
        {"drawing", [](SceneModel &m, auto &i) { return !m.drawing(i); }},
        {"originOfCell", [](SceneModel &m, auto &i) { return m.originOfCell(i).isNull(); }},
        {"originIndex", [](SceneModel &m, auto &i) { return !m.originIndex(i).isValid(); }},
    };
    return all;
}

MRScene &otherScene()
{
    static MRScene other;
    if (other.scene()->layerCount() == 0)
        build(other);
    return other;
}

/// Indexes that no scene's model but their own may take, or that stand for no cell.
QList<std::pair<QByteArray, std::function<QModelIndex(MRScene &)>>> uselessIndexes()
{
    return {
        {"no index", [](MRScene &) { return QModelIndex(); }},
        {"an index of another model",
         [](MRScene &) {
             static QStandardItemModel other(9, 9);
             return other.index(0, strokes);
         }},
        {"an index of another scene", [](MRScene &) { return otherScene().sceneModel()->index(0, strokes); }},
        {"an index of the range", [](MRScene &m) { return m.frameRangeModel()->index(0, strokes); }},
        {"the place behind the end", [](MRScene &m) { return m.sceneModel()->index(strokeCells, strokes); }},
        {"a note", [](MRScene &m) { return m.sceneModel()->index(0, notes); }},
    };
}

void addIndexRows()
{
    for (const auto &[which, index] : uselessIndexes()) {
        for (const auto &[name, operation] : operations())
            add(name + " of " + which,
                [operation = operation, index = index](MRScene &m) { return operation(*m.sceneModel(), index(m)); });
        if (which != "the place behind the end")
            add("insertBlankDrawing of " + which,
                [index = index](MRScene &m) { return m.sceneModel()->insertBlankDrawing(index(m)).isEmpty(); });
        if (which != "a note")
            add("setData of " + which, [index = index](MRScene &m) {
                return !m.sceneModel()->setData(index(m), QImage(2, 2, QImage::Format_Indexed8),
                                                SceneModel::AnnotationImageRole);
            });
    }
    add("undoChanges of nothing", [](MRScene &m) { return m.sceneModel()->undoChanges({}).isEmpty(); });
    add("references to nothing", [](MRScene &m) {
        const SceneModel &model = *m.sceneModel();
        return !model.findOriginal({}).isValid() && !model.findOriginal(QUuid::createUuid()).isValid() &&
               !model.indexOfCell({}).isValid() &&
               !model.indexOfCell({QUuid::createUuid(), QUuid::createUuid()}).isValid();
    });
    add("setData in another role", [](MRScene &m) {
        return !m.sceneModel()->setData(m.sceneModel()->index(0, notes), QImage(), Qt::EditRole) &&
               !m.sceneModel()->setData(m.sceneModel()->index(0, strokes), true, SceneModel::KeyDrawingRole);
    });
}

void addPositionRows()
{
    for (const int row : {INT_MIN, -1, 0, strokeCells + 1, INT_MAX}) {
        for (const int column : {INT_MIN, -1, strokes, pictures, sound, layers, INT_MAX}) {
            if (row == 0 && (column == strokes || column == pictures))
                continue;
            add("index at " + number(row) + ", " + number(column), [=](MRScene &m) {
                return !m.sceneModel()->index(row, column).isValid() &&
                       (row == 0 || !m.frameRangeModel()->index(row, column).isValid());
            });
        }
    }
    for (const int section : {INT_MIN, -1, 99, INT_MAX}) {
        add("header section " + number(section), [=](MRScene &m) {
            const QList<QAbstractItemModel *> models{m.sceneModel(), m.frameRangeModel()};
            for (QAbstractItemModel *model : models) {
                for (int role = 0; role <= SceneModel::ScrubFrameRole; ++role) {
                    if (model->headerData(section, Qt::Horizontal, role).isValid() ||
                        model->headerData(section, Qt::Vertical, role).isValid() ||
                        model->setHeaderData(section, Qt::Horizontal, true, role) ||
                        model->setHeaderData(section, Qt::Vertical, true, role))
                        return false;
                }
            }
            return true;
        });
    }
    add("header values that are none", [](MRScene &m) {
        SceneModel &model = *m.sceneModel();
        return !model.setHeaderData(strokes, Qt::Horizontal, QColor(), SceneModel::LayerColorRole) &&
               !model.setHeaderData(pictures, Qt::Horizontal, QColor(Qt::red), SceneModel::LayerColorRole) &&
               !model.setHeaderData(strokes, Qt::Horizontal, notANumber, SceneModel::LayerOpacityRole) &&
               !model.setHeaderData(notes, Qt::Horizontal, 0.5, SceneModel::LayerOpacityRole) &&
               !model.setHeaderData(strokes, Qt::Horizontal, true, SceneModel::LayerAudibleRole) &&
               !model.setHeaderData(strokes, Qt::Horizontal, 2, SceneModel::LayerBeyondLastRole);
    });
}

void addDragRows()
{
    const auto refused = [](const QByteArray &name, int mode, std::function<QModelIndex(FrameRangeModel &)> index) {
        add("drag " + name, [=](MRScene &m) {
            FrameRangeModel &model = *m.frameRangeModel();
            return !model.beginDrag(FrameRangeModel::DragMode(mode), index(model)) &&
                   model.dragMode() == FrameRangeModel::NoDrag;
        });
    };
    for (const int mode : {int(FrameRangeModel::SlideMode), int(FrameRangeModel::AddClonesMode)}) {
        const QByteArray suffix = ", mode " + number(mode);
        refused("of nothing" + suffix, mode, [](FrameRangeModel &) { return QModelIndex(); });
        refused("of a source index" + suffix, mode,
                [](FrameRangeModel &model) { return model.sourceModel()->index(2, strokes); });
        refused("of another scene" + suffix, mode,
                [](FrameRangeModel &) { return otherScene().frameRangeModel()->index(1, strokes); });
        refused("of a note" + suffix, mode, [](FrameRangeModel &model) { return model.index(0, notes); });
        refused("behind the end of a layer" + suffix, mode,
                [](FrameRangeModel &model) { return model.index(0, pictures); });
    }
    refused("of a hold, sliding", FrameRangeModel::SlideMode,
            [](FrameRangeModel &model) { return model.index(0, strokes); });
    for (const int mode : {INT_MIN, -1, int(FrameRangeModel::NoDrag), 3, INT_MAX})
        refused("in mode " + number(mode), mode, [](FrameRangeModel &model) { return model.index(1, strokes); });
    for (const int offset : {INT_MIN, -1, 1, INT_MAX})
        add("offset " + number(offset) + " without a drag", [=](MRScene &m) {
            m.frameRangeModel()->setDragOffset(offset);
            m.frameRangeModel()->endDrag();
            return m.frameRangeModel()->offset() == 0;
        });
    add("mapping what belongs elsewhere", [](MRScene &m) {
        const FrameRangeModel &model = *m.frameRangeModel();
        const QModelIndex own = model.index(0, strokes);
        return !model.mapToSource({}).isValid() && !model.mapFromSource({}).isValid() &&
               !model.mapToSource(m.sceneModel()->index(1, strokes)).isValid() && !model.mapFromSource(own).isValid() &&
               !model.mapFromSource(otherScene().sceneModel()->index(2, strokes)).isValid() &&
               !model.data(m.sceneModel()->index(1, strokes), SceneModel::LocalCloneRole).isValid();
    });
    add("thumbnails of nothing", [](MRScene &m) {
        const FrameRangeModel &model = *m.frameRangeModel();
        return model.thumbnail({}, QSize(20, 20)).isNull() &&
               model.thumbnail(m.sceneModel()->index(0, strokes), QSize(20, 20)).isNull() &&
               model.thumbnail(model.index(1, strokes), QSize()).isNull() &&
               model.thumbnail(model.index(1, strokes), QSize(-5, 5)).isNull() &&
               model.thumbnail(model.index(0, notes), QSize(20, 20)).isNull();
    });
}

} // namespace

class tst_ModelBadInput : public QObject
{
    Q_OBJECT

private slots:
    void isRefusedWithoutEffect_data();
    void isRefusedWithoutEffect();
    void withoutASceneNothingIsDone_data();
    void withoutASceneNothingIsDone();
    void offsetsAreLimited_data();
    void offsetsAreLimited();
};

void tst_ModelBadInput::isRefusedWithoutEffect_data()
{
    QTest::addColumn<Call>("call");
    addIndexRows();
    addPositionRows();
    addDragRows();
}

void tst_ModelBadInput::isRefusedWithoutEffect()
{
    QFETCH(Call, call);
    MRScene mrScene;
    build(mrScene);
    QCOMPARE(brokenInvariant(*mrScene.scene()), QString());
    const SceneSnapshot before(*mrScene.scene());
    const SignalCount fromScene(mrScene.scene());
    const SignalCount fromSceneModel(mrScene.sceneModel());
    const SignalCount fromRangeModel(mrScene.frameRangeModel());

    QVERIFY(call(mrScene));

    QCOMPARE(before.diff(SceneSnapshot(*mrScene.scene())), QString());
    QCOMPARE(fromScene.heard(), QString());
    QCOMPARE(fromSceneModel.heard(), QString());
    QCOMPARE(fromRangeModel.heard(), QString());
}

void tst_ModelBadInput::withoutASceneNothingIsDone_data()
{
    QTest::addColumn<Operation>("operation");
    for (const auto &[name, operation] : operations())
        QTest::newRow(name.constData()) << operation;
    QTest::newRow("insertBlankDrawing") << Operation(
        [](SceneModel &m, auto &i) { return m.insertBlankDrawing(i).isEmpty(); });
    QTest::newRow("undoChanges") << Operation([](SceneModel &m, auto &) {
        return m.undoChanges({SceneChange(LayerChange::ItemInserted, 1, strokes)}).isEmpty();
    });
    QTest::newRow("setData") << Operation(
        [](SceneModel &m, auto &i) { return !m.setData(i, QImage(), SceneModel::AnnotationImageRole); });
}

void tst_ModelBadInput::withoutASceneNothingIsDone()
{
    QFETCH(Operation, operation);
    SceneModel model;
    QVERIFY(operation(model, {}));
    QVERIFY(operation(model, otherScene().sceneModel()->index(0, strokes)));
}

void tst_ModelBadInput::offsetsAreLimited_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("offset");
    // Shown are the frames 2 (hold), 3 (original), 4 (hold) and 5.
    QTest::newRow("slide up") << 0 << 1 << INT_MIN << -1;
    QTest::newRow("slide down") << 0 << 1 << INT_MAX << 1;
    QTest::newRow("shorten a hold") << 1 << 2 << INT_MIN << -1;
    QTest::newRow("shorten none") << 1 << 1 << INT_MIN << 0;
}

void tst_ModelBadInput::offsetsAreLimited()
{
    QFETCH(int, mode);
    QFETCH(int, row);
    QFETCH(int, value);
    MRScene mrScene;
    build(mrScene);
    FrameRangeModel &model = *mrScene.frameRangeModel();
    QVERIFY(model.beginDrag(FrameRangeModel::DragMode(mode), model.index(row, strokes)));
    model.setDragOffset(value);
    QTEST(model.offset(), "offset");
    QVERIFY(model.offset() >= model.minimumOffset() && model.offset() <= model.maximumOffset());
    model.endDrag();
}

QTEST_MAIN(tst_ModelBadInput)
#include "tst_modelbadinput.moc"
