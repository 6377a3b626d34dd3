// What an operation is given that it cannot use: it does nothing, tells nobody, and answers so.

#include "scenebuilder.h"

#include "libmodel/layers/referencelayer.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/singlestroke.h"
#include "support/scenesnapshot.h"

#include <QStandardItemModel>
#include <QTest>
#include <QUndoStack>

#include <climits>
#include <functional>
#include <limits>

using namespace Model;
using namespace TestSupport;

/// A call; true when the answer says that nothing was done (always, where there is no answer).
using Call = std::function<bool(MRScene &)>;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// The layers of the stage. Both with pictures are linked, as is the column of notes.
constexpr int strokes = 0;  ///< original, clone, original, distant clone of the first
constexpr int pictures = 1; ///< original, original
constexpr int sound = 2;
constexpr int notes = 3;
constexpr int layers = 4;
constexpr int strokeCells = 4;

const QList<int> noVisualLayers{INT_MIN, -1, sound, notes, layers, INT_MAX};
const QList<int> noLayers{INT_MIN, -1, layers, INT_MAX};

/// Fills \a mrScene with the layers above, standing on frame 3 of the strokes.
void build(MRScene &mrScene)
{
    Scene &scene = *mrScene.scene();
    makeSmall(scene);
    addStrokeLayer(scene, strokeCells);
    scene.insertLayer(std::make_shared<ReferenceLayer>(sceneFrame), pictures);
    scene.visualLayer(pictures)->insertBlankAfter(1);
    scene.insertLayer(std::make_shared<AudioLayer>(), sound);
    scene.insertLayer(std::make_shared<AnnotationLayer>(), notes);
    for (const int layerIdx : {strokes, pictures, notes})
        scene.setLayerLinked(layerIdx, true);
    scene.addStroke(strokes, 1, block(QRect(1, 1, 5, 5)));
    scene.loseDrawing(strokes, 2);
    scene.makeDistantClone(strokes, 4, scene.originOfFrame(strokes, 1));
    scene.setFrameRange(1, strokeCells, 3, strokes);
}

QByteArray number(int value)
{
    return value == INT_MIN ? "INT_MIN" : value == INT_MAX ? "INT_MAX" : QByteArray::number(value);
}

void add(const QByteArray &name, Call call)
{
    QTest::newRow(name.constData()) << std::move(call);
}

QImage note(QImage::Format format = QImage::Format_Indexed8)
{
    QImage image(4, 3, format);
    if (format == QImage::Format_Indexed8)
        image.setColorTable(QList<QRgb>(256, 0));
    image.fill(7);
    return image;
}

std::shared_ptr<Drawing> drawing()
{
    return std::make_shared<StrokeDrawing>(sceneFrame);
}

CellRef firstOriginal(const Scene &scene)
{
    return scene.originOfFrame(strokes, 1);
}

/// An operation on one cell, in a form that takes layer and frame and says whether nothing was done.
struct CellOperation
{
    const char *name;
    int lowest; ///< the frames of the layer of strokes that it takes
    int highest;
    std::function<bool(Scene &, int, int)> call;
};

const QList<CellOperation> &cellOperations()
{
    static const QList<CellOperation> all{
        {"addBlankDrawing", 0, 4, [](Scene &s, int l, int f) { return s.addBlankDrawing(l, f).isEmpty(); }},
        {"insertBlankDrawing", 1, 5, [](Scene &s, int l, int f) { return s.insertBlankDrawing(l, f).isEmpty(); }},
        {"addCloneDrawing", 0, 4, [](Scene &s, int l, int f) { return s.addCloneDrawing(l, f).isEmpty(); }},
        {"addCloneDrawings", 0, 4, [](Scene &s, int l, int f) { return s.addCloneDrawings(l, f, 2).isEmpty(); }},
        {"appendCloneDrawings", 0, 4,
         [](Scene &s, int l, int f) {
             s.appendCloneDrawings(l, f, 2);
             return true;
         }},
        {"deleteFrame", 1, 4, [](Scene &s, int l, int f) { return s.deleteFrame(l, f).isEmpty(); }},
        {"deleteFrames", 1, 4, [](Scene &s, int l, int f) { return s.deleteFrames(l, f, 2).isEmpty(); }},
        {"loseDrawing", 2, 4, [](Scene &s, int l, int f) { return s.loseDrawing(l, f).isEmpty(); }},
        {"turnCloneIntoOriginal", 1, 4,
         [](Scene &s, int l, int f) { return s.turnCloneIntoOriginal(l, f, QUuid::createUuid()).isEmpty(); }},
        {"makeDistantClone", 1, 4,
         [](Scene &s, int l, int f) { return s.makeDistantClone(l, f, firstOriginal(s)).isEmpty(); }},
        {"replaceDrawing", 1, 4, [](Scene &s, int l, int f) { return s.replaceDrawing(l, f, drawing()).isEmpty(); }},
        {"replaceDrawing of all", 1, 4,
         [](Scene &s, int l, int f) { return s.replaceDrawing(l, f, drawing(), true).isEmpty(); }},
        {"slideOriginalDrawing", 2, 4,
         [](Scene &s, int l, int f) { return s.slideOriginalDrawing(l, f, -1, -1, 0).isEmpty(); }},
        {"addStroke", 1, 4, [](Scene &s, int l, int f) { return !s.addStroke(l, f, block(QRect(0, 0, 3, 3))); }},
        {"removeLastStroke", 1, 4, [](Scene &s, int l, int f) { return !s.removeLastStroke(l, f); }},
        {"setKeyDrawing", 1, 4,
         [](Scene &s, int l, int f) {
             s.setKeyDrawing(l, f, true);
             return true;
         }},
        {"setOffPegsTransform", 1, 4,
         [](Scene &s, int l, int f) {
             s.setOffPegsTransform(f, l, QTransform::fromTranslate(3, 3));
             return true;
         }},
        {"item", 1, 4, [](Scene &s, int l, int f) { return !s.item(l, f); }},
        {"originOfFrame", 1, 4, [](Scene &s, int l, int f) { return s.originOfFrame(l, f).isNull(); }},
    };
    return all;
}

void addCellRows()
{
    for (const CellOperation &operation : cellOperations()) {
        const QByteArray name(operation.name);
        for (const int layerIdx : noVisualLayers)
            add(name + ", layer " + number(layerIdx),
                [=](MRScene &m) { return operation.call(*m.scene(), layerIdx, operation.lowest); });
        for (const int frameId : {INT_MIN, -1, operation.lowest - 1, operation.highest + 1, INT_MAX})
            add(name + ", frame " + number(frameId),
                [=](MRScene &m) { return operation.call(*m.scene(), strokes, frameId); });
    }
}

void addCountRows()
{
    for (const int count : {INT_MIN, -1, 0}) {
        add("deleteFrames, count " + number(count),
            [=](MRScene &m) { return m.scene()->deleteFrames(strokes, 2, count).isEmpty(); });
    }
    for (const int count : {INT_MIN, -1, 0, Layer::maximumFrames, INT_MAX}) {
        add("addCloneDrawings, count " + number(count),
            [=](MRScene &m) { return m.scene()->addCloneDrawings(strokes, 2, count).isEmpty(); });
        add("appendCloneDrawings, count " + number(count), [=](MRScene &m) {
            m.scene()->appendCloneDrawings(strokes, 2, count);
            return true;
        });
    }
    const QList<std::array<int, 3>> offsets{
        {0, 1, 1},       {0, -1, -1},     {-2, -1, 0},           {1, -1, 0},           {0, 0, 0}, {INT_MIN, INT_MIN, 0},
        {0, INT_MIN, 0}, {0, 0, INT_MAX}, {INT_MAX, 0, INT_MAX}, {0, INT_MIN, INT_MAX}};
    for (const auto &[offset, lowest, highest] : offsets) {
        add("slideOriginalDrawing by " + number(offset) + ", extremes " + number(lowest) + " and " + number(highest),
            [=, offset = offset, lowest = lowest, highest = highest](MRScene &m) {
                return m.scene()->slideOriginalDrawing(strokes, 3, offset, lowest, highest).isEmpty();
            });
    }
    add("slideOriginalDrawing of a clone",
        [](MRScene &m) { return m.scene()->slideOriginalDrawing(strokes, 2, 0, -1, 1).isEmpty(); });
}

void addContentRows()
{
    const auto distant = [](const QByteArray &name, int frameId, std::function<CellRef(Scene &)> origin) {
        add("makeDistantClone of " + name,
            [=](MRScene &m) { return m.scene()->makeDistantClone(strokes, frameId, origin(*m.scene())).isEmpty(); });
    };
    distant("nothing", 3, [](Scene &) { return CellRef(); });
    distant("a cell that is nowhere", 3, [](Scene &) { return CellRef{QUuid::createUuid(), QUuid::createUuid()}; });
    distant("another kind of layer", 3, [](Scene &scene) { return scene.originOfFrame(pictures, 1); });
    distant("itself", 1, firstOriginal);
    distant("what it is one of", 4, firstOriginal);
    distant("a clone", 3, [](Scene &scene) { return scene.visualLayer(strokes)->cellRef(2); });
    distant("a distant clone", 3, [](Scene &scene) { return scene.visualLayer(strokes)->cellRef(4); });

    const auto replaced = [](const QByteArray &name, int layerIdx,
                             std::function<std::shared_ptr<Drawing>(Scene &)> by) {
        add("replaceDrawing by " + name, [=](MRScene &m) {
            return m.scene()->replaceDrawing(layerIdx, 1, by(*m.scene())).isEmpty() &&
                   m.scene()->replaceDrawing(layerIdx, 1, by(*m.scene()), true).isEmpty();
        });
    };
    replaced("null", strokes, [](Scene &) { return nullptr; });
    replaced("what is shown elsewhere", strokes, [](Scene &scene) { return scene.item(strokes, 3)->drawing; });
    replaced("what it shows", strokes, [](Scene &scene) { return scene.item(strokes, 1)->drawing; });
    replaced("a picture", strokes, [](Scene &) { return std::make_shared<ImageDrawing>(QImage()); });
    replaced("strokes", pictures, [](Scene &) { return drawing(); });

    add("addStroke of null", [](MRScene &m) { return !m.scene()->addStroke(strokes, 1, nullptr); });
    add("addStroke to a picture",
        [](MRScene &m) { return !m.scene()->addStroke(pictures, 1, block(QRect(0, 0, 3, 3))); });
    add("addStroke of an empty stroke",
        [](MRScene &m) { return !m.scene()->addStroke(strokes, 1, std::make_unique<BitmapStroke>()); });
    add("removeLastStroke of an empty drawing", [](MRScene &m) { return !m.scene()->removeLastStroke(strokes, 3); });
    add("turnCloneIntoOriginal of an original",
        [](MRScene &m) { return m.scene()->turnCloneIntoOriginal(strokes, 1).isEmpty(); });
    add("loseDrawing of a clone", [](MRScene &m) { return m.scene()->loseDrawing(strokes, 2).isEmpty(); });
    add("setOffPegsTransform of no numbers", [](MRScene &m) {
        m.scene()->setOffPegsTransform(1, strokes, QTransform::fromTranslate(notANumber, 0));
        m.scene()->setCurrentDrawingOffPegsTransform(QTransform(1, 0, 0, notANumber, 0, 0));
        return true;
    });
}

void addUndoRows()
{
    add("undoChanges of nothing", [](MRScene &m) { return m.scene()->undoChanges({}).isEmpty(); });
    for (const int layerIdx : {INT_MIN, -1, sound, layers, INT_MAX}) {
        add("undoChanges on layer " + number(layerIdx), [=](MRScene &m) {
            QList<SceneChange> changes;
            for (int type = LayerChange::NoChange; type <= LayerChange::AnnotationInserted; ++type)
                changes.append(SceneChange(LayerChange::Type(type), 1, layerIdx));
            return m.scene()->undoChanges(changes).isEmpty();
        });
    }
    // Insertion takes one place behind the end, so this is left to the frames that no step takes.
    for (const int frameId : {INT_MIN, -1, 0, strokeCells + 2, INT_MAX}) {
        add("undoChanges at frame " + number(frameId), [=](MRScene &m) {
            QList<SceneChange> changes;
            for (int type = LayerChange::NoChange; type <= LayerChange::TransformChanged; ++type) {
                changes.append(SceneChange(LayerChange::Type(type), frameId, strokes));
                changes.last().item = std::make_shared<LayerItem>(LayerItem::Type::Original, drawing());
            }
            return m.scene()->undoChanges(changes).isEmpty();
        });
    }
    for (const auto type : {LayerChange::NoChange, LayerChange::ItemRemoved, LayerChange::ItemReplaced}) {
        add("undoChanges without a cell, type " + number(type),
            [=](MRScene &m) { return m.scene()->undoChanges({SceneChange(type, 1, strokes)}).isEmpty(); });
    }
    add("undoChanges of a type that does not exist",
        [](MRScene &m) { return m.scene()->undoChanges({SceneChange(LayerChange::Type(99), 1, strokes)}).isEmpty(); });
}

void addLayerRows()
{
    for (const int layerIdx : noLayers) {
        const QByteArray of = " of layer " + number(layerIdx);
        add("removeLayer" + of, [=](MRScene &m) { return !m.scene()->removeLayer(layerIdx); });
        add("moveLayer" + of, [=](MRScene &m) { return !m.scene()->moveLayer(layerIdx, 1); });
        add("moveLayer to place " + number(layerIdx), [=](MRScene &m) { return !m.scene()->moveLayer(1, layerIdx); });
        add("swapLayer" + of,
            [=](MRScene &m) { return !m.scene()->swapLayer(layerIdx, std::make_shared<AudioLayer>()); });
        add("setLayerName" + of, [=](MRScene &m) { return !m.scene()->setLayerName(layerIdx, QStringLiteral("x")); });
        add("setLayerLinked" + of, [=](MRScene &m) { return !m.scene()->setLayerLinked(layerIdx, true); });
        add("queries" + of, [=](MRScene &m) {
            const Scene &s = *m.scene();
            return !s.layer(layerIdx) && !s.layerPtr(layerIdx) && s.visualIndex(layerIdx) == -1 &&
                   s.layerAtVisualIndex(layerIdx) == -1 && s.nextVisualLayer(layerIdx) == -1 &&
                   s.lastFrame(layerIdx) == 0;
        });
    }
    add("moveLayer to its place", [](MRScene &m) { return !m.scene()->moveLayer(1, m.scene()->visualIndex(1)); });
    add("insertLayer of null", [](MRScene &m) { return m.scene()->insertLayer(nullptr, 0) == -1; });
    add("insertLayer of one that is here",
        [](MRScene &m) { return m.scene()->insertLayer(m.scene()->layerPtr(1), 0) == -1; });
    add("swapLayer by null", [](MRScene &m) { return !m.scene()->swapLayer(0, nullptr); });
    add("swapLayer by one that is here", [](MRScene &m) { return !m.scene()->swapLayer(0, m.scene()->layerPtr(1)); });
    for (const int layerIdx : {INT_MIN, -1, strokes, pictures, sound, notes, layers, INT_MAX}) {
        add("mergeLayers of strokes and " + number(layerIdx),
            [=](MRScene &m) { return !m.scene()->mergeLayers(strokes, layerIdx); });
        add("mergeLayers of " + number(layerIdx) + " and strokes",
            [=](MRScene &m) { return !m.scene()->mergeLayers(layerIdx, strokes); });
        add("mergeLayers of pictures and " + number(layerIdx),
            [=](MRScene &m) { return !m.scene()->mergeLayers(pictures, layerIdx); });
    }
    add("references to nothing", [](MRScene &m) {
        const Scene &s = *m.scene();
        int layerIdx = 77;
        int frameId = 77;
        CellRef ref;
        const CellRef nowhere{s.layer(0)->identifier(), QUuid::createUuid()};
        return !s.findItem({}, &layerIdx, &frameId) && !s.findItem(nowhere, &layerIdx, &frameId) &&
               s.indexOfLayer({}) == -1 && s.indexOfLayer(QUuid::createUuid()) == -1 &&
               !s.findOriginalByCopyId({}, &ref, &layerIdx, &frameId) &&
               !s.findOriginalByCopyId(QUuid::createUuid(), &ref, &layerIdx, &frameId) && ref == CellRef() &&
               layerIdx == 77 && frameId == 77;
    });
}

void addAttributeRows()
{
    for (const int layerIdx : noVisualLayers) {
        const QByteArray of = " of layer " + number(layerIdx);
        add("setLayerVisible" + of, [=](MRScene &m) { return !m.scene()->setLayerVisible(layerIdx, false); });
        add("setLayerOpacity" + of, [=](MRScene &m) { return !m.scene()->setLayerOpacity(layerIdx, 0.5); });
        add("setLayerColor" + of, [=](MRScene &m) { return !m.scene()->setLayerColor(layerIdx, Qt::red); });
        add("setLayerBeyondLast" + of,
            [=](MRScene &m) { return !m.scene()->setLayerBeyondLast(layerIdx, Layer::FreezeLast); });
        add("setActiveFrameAndLayer" + of, [=](MRScene &m) {
            m.scene()->setActiveFrameAndLayer(1, layerIdx, Scene::AllowFrameAfterLast);
            m.scene()->setActiveFrameAndLayer(1, layerIdx, Scene::KeepFrameOnDrawing);
            return !m.scene()->isLayerShown(layerIdx);
        });
    }
    for (const int mode : {INT_MIN, -1, 0, 4, INT_MAX})
        add("setLayerBeyondLast to " + number(mode),
            [=](MRScene &m) { return !m.scene()->setLayerBeyondLast(0, Layer::LayerBeyondLast(mode)); });
    add("setLayerColor of pictures", [](MRScene &m) { return !m.scene()->setLayerColor(pictures, Qt::red); });
    add("setLayerColor to none", [](MRScene &m) { return !m.scene()->setLayerColor(strokes, QColor()); });
    add("setLayerOpacity to no number", [](MRScene &m) { return !m.scene()->setLayerOpacity(strokes, notANumber); });
    add("setFrameRate to no number", [](MRScene &m) {
        m.scene()->setFrameRate(notANumber);
        return true;
    });
    for (const QSize size : {QSize(), QSize(0, 0), QSize(0, 10), QSize(10, -1), QSize(INT_MIN, INT_MIN),
                             QSize(10, 32769), QSize(INT_MAX, INT_MAX)}) {
        add("setFrameSize to " + number(size.width()) + " x " + number(size.height()), [=](MRScene &m) {
            m.scene()->setFrameSize(size, MR::FitMode::FitModeStretch);
            m.scene()->setFrameSize(size, MR::FitMode::FitModeIgnore, nullptr);
            return true;
        });
    }
    for (const int frameId : {INT_MIN, -1, 0}) {
        add("setAnnotation at " + number(frameId),
            [=](MRScene &m) { return !m.scene()->setAnnotation(frameId, note()); });
        add("setActiveFrameAndLayer at " + number(frameId), [=](MRScene &m) {
            m.scene()->setActiveFrameAndLayer(frameId, strokes, Scene::AllowFrameAfterLast);
            m.scene()->setActiveFrameAndLayer(frameId, strokes, Scene::KeepFrameOnDrawing);
            m.scene()->setScrubFrame(frameId);
            return true;
        });
    }
    add("setAnnotation at INT_MAX", [](MRScene &m) { return !m.scene()->setAnnotation(INT_MAX, note()); });
    for (const auto format : {QImage::Format_RGB32, QImage::Format_Mono, QImage::Format_ARGB32_Premultiplied})
        add("setAnnotation to an image of format " + number(format),
            [=](MRScene &m) { return !m.scene()->setAnnotation(1, note(format)); });
    add("setFrameRange upside down", [](MRScene &m) {
        m.scene()->setFrameRange(3, 2, 1, strokes);
        m.scene()->setFrameRange(INT_MAX, INT_MIN, 1, strokes);
        return true;
    });
    add("no stroke in progress", [](MRScene &m) {
        m.scene()->addSample({QPointF(1, 1), 0.5, 1});
        return !m.scene()->takeStroke() && !m.scene()->activeStroke() && !m.scene()->hasActiveStroke();
    });
}

} // namespace

class tst_SceneBadInput : public QObject
{
    Q_OBJECT

private slots:
    void isRefusedWithoutEffect_data();
    void isRefusedWithoutEffect();
    void extremesAreLimited_data();
    void extremesAreLimited();
};

void tst_SceneBadInput::isRefusedWithoutEffect_data()
{
    QTest::addColumn<Call>("call");
    addCellRows();
    addCountRows();
    addContentRows();
    addUndoRows();
    addLayerRows();
    addAttributeRows();
}

void tst_SceneBadInput::isRefusedWithoutEffect()
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
    QCOMPARE(mrScene.scene()->undoStack()->count(), 0);
}

void tst_SceneBadInput::extremesAreLimited_data()
{
    QTest::addColumn<Call>("call");
    for (const int frameId : {INT_MIN, -1, 0, 1, strokeCells + 2, INT_MAX}) {
        for (const int layerIdx : {INT_MIN, -1, strokes, pictures, sound, layers, INT_MAX}) {
            add("setFrameRange to all, wanted " + number(layerIdx) + "/" + number(frameId), [=](MRScene &m) {
                m.scene()->setFrameRange(INT_MIN, INT_MAX, frameId, layerIdx);
                return m.scene()->rangeFirst() == 1 && m.scene()->rangeLast() == strokeCells;
            });
            add("setFrameRange to the end, wanted " + number(layerIdx) + "/" + number(frameId), [=](MRScene &m) {
                m.scene()->setFrameRange(INT_MAX, INT_MAX, frameId, layerIdx);
                return m.scene()->rangeFirst() == strokeCells - 1 && m.scene()->rangeLast() == strokeCells;
            });
        }
        add("setScrubFrame to " + number(frameId), [=](MRScene &m) {
            m.scene()->setScrubFrame(frameId);
            return m.scene()->scrubFrame() == (frameId == 1 ? 1 : -1);
        });
    }
    for (const auto behaviour : {Scene::AllowFrameAfterLast, Scene::KeepFrameOnDrawing})
        add("setActiveFrameAndLayer at INT_MAX, behaviour " + number(behaviour), [=](MRScene &m) {
            m.scene()->setActiveFrameAndLayer(INT_MAX, pictures, behaviour);
            return m.scene()->activeFrame() == 2 && m.scene()->activeLayerIdx() == pictures;
        });
    add("setFrameRate to infinities", [](MRScene &m) {
        m.scene()->setFrameRate(std::numeric_limits<double>::infinity());
        const bool highest = m.scene()->frameRate() == 60.0;
        m.scene()->setFrameRate(-std::numeric_limits<double>::infinity());
        return highest && m.scene()->frameRate() == 0.1;
    });
    add("deleteFrames of more than there are",
        [](MRScene &m) { return !m.scene()->deleteFrames(strokes, 4, INT_MAX).isEmpty(); });
    add("insertLayer far off", [](MRScene &m) {
        const int front = m.scene()->insertLayer(std::make_shared<StrokeLayer>(Qt::red, sceneFrame), INT_MIN);
        return front == 0 && m.scene()->insertLayer(std::make_shared<StrokeLayer>(Qt::red, sceneFrame), INT_MAX) == 5;
    });
    add("opacities", [](MRScene &m) {
        m.scene()->setLayerOpacity(strokes, -std::numeric_limits<double>::infinity());
        m.scene()->setLayerOpacity(pictures, 1e300);
        return m.scene()->visualLayer(strokes)->opacity() == 0 && m.scene()->visualLayer(pictures)->opacity() == 1;
    });
}

void tst_SceneBadInput::extremesAreLimited()
{
    QFETCH(Call, call);
    MRScene mrScene;
    build(mrScene);
    QVERIFY(call(mrScene));
    QCOMPARE(brokenInvariant(*mrScene.scene()), QString());
}

QTEST_MAIN(tst_SceneBadInput)
#include "tst_scene_badinput.moc"
