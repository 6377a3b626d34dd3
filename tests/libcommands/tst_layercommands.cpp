#include "commandstage.h"
#include "libcommands/addblankdrawing.h"
#include "libcommands/discardlayer.h"
#include "libcommands/duplicatelayer.h"
#include "libcommands/mergelayerdown.h"
#include "libcommands/newlayer.h"
#include "libcommands/removelayer.h"
#include "libcommands/swaplayer.h"
#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"

#include <QTest>

#include <functional>

using namespace Commands;
using namespace Model;
using TestSupport::CommandStage;

using SceneEdit = std::function<void(Scene &scene)>;

namespace {

/// The coverage where \a top lies on \a below: what is still open there is covered by its share.
QImage together(const QImage &below, const QImage &top)
{
    QImage image = below;
    for (int y = 0; y < image.height(); ++y) {
        uchar *line = image.scanLine(y);
        for (int x = 0; x < image.width(); ++x)
            line[x] += (255 - line[x]) * top.constScanLine(y)[x] / 255;
    }
    return image;
}

AudioLayer &audioLayer(const Scene &scene)
{
    return dynamic_cast<AudioLayer &>(*scene.layer(scene.audioLayerIdx()));
}

} // namespace

/// The commands that add, replace, merge and remove layers.
class tst_LayerCommands : public QObject
{
    Q_OBJECT

private slots:
    void newLayerGoesWhereTheActiveOneIs();
    void newLayerGoesWhereItIsWanted_data();
    void newLayerGoesWhereItIsWanted();
    void newReferenceLayerIsOne();
    void newLayerInAnEmptySceneIsTheActiveOne();
    void redoneNewLayerUsesNoFurtherNumber();
    void otherKindsOfNewLayersAreObsoleteAndUseNoNumber_data();
    void otherKindsOfNewLayersAreObsoleteAndUseNoNumber();
    void duplicateStandsOverItsSource();
    void duplicateHasDrawingsOfItsOwn();
    void redoneDuplicateIsTheSameForWhatCameLater();
    void duplicateOfOtherKindsIsObsolete();
    void onlyLayerIsDiscardedForAnEmptyOne();
    void activeLayerIsDiscardedForItsNeighbour_data();
    void activeLayerIsDiscardedForItsNeighbour();
    void otherLayerIsDiscardedWithoutMoving();
    void longestLayerIsDiscardedWithItsFrames();
    void soundIsDiscardedForSilence();
    void notesAreNotDiscarded();
    void removedLayerLeavesItsDistantClonesAnOriginal();
    void onlyVisualLayerIsNotRemoved();
    void swappedLayerTakesPlaceAndIndex();
    void swapWithOtherKindsIsObsolete();
    void mergeLengthensTheLowerLayer_data();
    void mergeLengthensTheLowerLayer();
    void mergeJoinsThePictures();
    void mergeKeepsMarksAndTransforms();
    void mergeWithALongerLowerLayerLeavesTheRest();
    void mergeTakesTheNextLayerInDisplayOrder();
    void mergeKeepsLinksExactly();
    void mergeIsObsolete_data();
    void mergeIsObsolete();
    void mergeOfLinkedLayersLeavesOthersAsTheyAre();
    void mergeInACutRangeKeepsThePosition();
    void mergeOfOtherLayersThanAtFirstDoesNothing_data();
    void mergeOfOtherLayersThanAtFirstDoesNothing();
    void mergeIsNotUndoneWithoutTheMergedLayer();
    void mergeIsNotDoneAgainWithAnotherLayer();
    void duplicateOfAReferenceLayerIsOne();
    void onlyReferenceLayerIsDiscardedForAnEmptyLayer();
};

void tst_LayerCommands::newLayerGoesWhereTheActiveOneIs()
{
    CommandStage stage({"A B", "C D"});
    stage.activate(2, 1);
    QCOMPARE(stage.walk(new NewLayer(stage.mrScene(), Layer::Stroke)), QString());
    QCOMPARE(stage.text(), "A B | C D | _");
    QCOMPARE(stage.scene().layerOrder(), QList<int>({0, 4, 1, 2, 3}));
    QCOMPARE(stage.scene().activeLayerIdx(), 4);
    // Just behind the only cell of the new layer.
    QCOMPARE(stage.scene().activeFrame(), 2);
    const auto &layer = dynamic_cast<const StrokeLayer &>(*stage.scene().layer(4));
    QCOMPARE(layer.name(), "3");
    QCOMPARE(layer.color(), QColor(Qt::black));
    QCOMPARE(layer.frameSize(), TestSupport::stageFrame);
}

void tst_LayerCommands::newLayerGoesWhereItIsWanted_data()
{
    QTest::addColumn<int>("wanted");
    QTest::addColumn<QList<int>>("order");
    QTest::newRow("top") << 0 << QList<int>({4, 0, 1, 2, 3});
    QTest::newRow("second") << 1 << QList<int>({0, 4, 1, 2, 3});
    QTest::newRow("bottom") << 4 << QList<int>({0, 1, 2, 3, 4});
    QTest::newRow("beyond the bottom") << 99 << QList<int>({0, 1, 2, 3, 4});
}

void tst_LayerCommands::newLayerGoesWhereItIsWanted()
{
    QFETCH(const int, wanted);
    QFETCH(const QList<int>, order);
    CommandStage stage({"A", "B"});
    QCOMPARE(stage.walk(new NewLayer(stage.mrScene(), Layer::Stroke, wanted)), QString());
    QCOMPARE(stage.scene().layerOrder(), order);
}

void tst_LayerCommands::newReferenceLayerIsOne()
{
    CommandStage stage({"A"});
    QCOMPARE(stage.walk(new NewLayer(stage.mrScene(), Layer::Reference)), QString());
    QCOMPARE(stage.scene().layer(3)->layerType(), int(Layer::Reference));
    QCOMPARE(stage.scene().visualLayer(3)->frameSize(), TestSupport::stageFrame);
    QCOMPARE(stage.scene().activeLayerIdx(), 3);
}

void tst_LayerCommands::newLayerInAnEmptySceneIsTheActiveOne()
{
    MRScene scene;
    scene.scene()->undoStack()->push(new NewLayer(&scene, Layer::Stroke));
    QCOMPARE(scene.scene()->activeLayerIdx(), 0);
    QCOMPARE(scene.scene()->activeFrame(), 1);
    scene.scene()->undoStack()->undo();
    QCOMPARE(scene.scene()->layerCount(), 0);
    scene.scene()->undoStack()->redo();
    QCOMPARE(scene.scene()->activeLayerIdx(), 0);
}

void tst_LayerCommands::redoneNewLayerUsesNoFurtherNumber()
{
    CommandStage stage({"A"});
    stage.stack().push(new NewLayer(stage.mrScene(), Layer::Stroke));
    const Layer *layer = stage.scene().layer(3);
    stage.stack().undo();
    stage.stack().redo();
    QCOMPARE(stage.scene().layer(3), layer);
    QCOMPARE(layer->name(), "2");
    QCOMPARE(stage.scene().highestUsedLayerNumber(), 2);
}

void tst_LayerCommands::otherKindsOfNewLayersAreObsoleteAndUseNoNumber_data()
{
    QTest::addColumn<int>("type");
    for (const int type : {-1, 0, int(Layer::Paint), int(Layer::Audio), int(Layer::Annotation), 6})
        QTest::addRow("%d", type) << type;
}

void tst_LayerCommands::otherKindsOfNewLayersAreObsoleteAndUseNoNumber()
{
    QFETCH(const int, type);
    CommandStage stage({"A"});
    QVERIFY(stage.isRefused(new NewLayer(stage.mrScene(), type)));
    QCOMPARE(stage.scene().highestUsedLayerNumber(), 1);
}

void tst_LayerCommands::duplicateStandsOverItsSource()
{
    CommandStage stage({"A B", "C c D"});
    stage.activate(2, 0);
    QCOMPARE(stage.walk(new DuplicateLayer(stage.mrScene(), 1)), QString());
    QCOMPARE(stage.text(), "A B | C c D | C c D");
    QCOMPARE(stage.scene().layerOrder(), QList<int>({0, 4, 1, 2, 3}));
    QCOMPARE(stage.scene().layer(4)->name(), "Copy of 2");
    QCOMPARE(stage.scene().layer(1)->name(), "2");
    QCOMPARE(stage.scene().activeLayerIdx(), 4);
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_LayerCommands::duplicateHasDrawingsOfItsOwn()
{
    CommandStage stage({"A a A*", "B A*"});
    QCOMPARE(stage.walk(new DuplicateLayer(stage.mrScene(), 0)), QString());
    QCOMPARE(stage.text(), "A a A* | B A* | A a A*");
    QVERIFY(&stage.drawing(1, 4) != &stage.drawing(1, 0));
    QCOMPARE(stage.drawing(1, 4).image(), stage.drawing(1, 0).image());
    // The copy's distant clone shows the copy; that of the other layer shows what it showed.
    QCOMPARE(&stage.drawing(3, 4), &stage.drawing(1, 4));
    QCOMPARE(&stage.drawing(2, 1), &stage.drawing(1, 0));
}

void tst_LayerCommands::redoneDuplicateIsTheSameForWhatCameLater()
{
    CommandStage stage({"A B"});
    stage.stack().push(new DuplicateLayer(stage.mrScene(), 0));
    stage.stack().push(new AddBlankDrawing(stage.mrScene(), stage.cell(1, 3)));
    const TestSupport::SceneSnapshot after = stage.snapshot();
    stage.stack().undo();
    stage.stack().undo();
    QCOMPARE(stage.text(), "A B");
    stage.stack().redo();
    stage.stack().redo();
    QCOMPARE(after.diff(stage.snapshot()), QString());
}

void tst_LayerCommands::duplicateOfOtherKindsIsObsolete()
{
    CommandStage stage({"A"});
    QVERIFY(stage.isRefused(new DuplicateLayer(stage.mrScene(), stage.scene().audioLayerIdx())));
    QVERIFY(stage.isRefused(new DuplicateLayer(stage.mrScene(), stage.scene().annotationLayerIdx())));
}

void tst_LayerCommands::onlyLayerIsDiscardedForAnEmptyOne()
{
    CommandStage stage({"A B"});
    const std::shared_ptr<Layer> old = stage.scene().layerPtr(0);
    stage.scene().setLayerColor(0, Qt::red);
    QCOMPARE(stage.walk(new DiscardLayer(stage.mrScene(), 0)), QString());
    QCOMPARE(stage.text(), "_");
    const auto &layer = dynamic_cast<const StrokeLayer &>(*stage.scene().layer(0));
    QCOMPARE(layer.name(), "New Layer");
    QCOMPARE(layer.color(), QColor(Qt::black));
    QCOMPARE(layer.frameSize(), TestSupport::stageFrame);
    stage.stack().undo();
    QCOMPARE(stage.text(), "A B");
    QCOMPARE(stage.scene().layerPtr(0), old);
}

void tst_LayerCommands::activeLayerIsDiscardedForItsNeighbour_data()
{
    QTest::addColumn<int>("discarded");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("active");
    QTest::newRow("top: the one below") << 0 << "C D | E F" << 0;
    QTest::newRow("middle: the one above") << 1 << "A B | E F" << 0;
    QTest::newRow("bottom: the one above") << 2 << "A B | C D" << 1;
}

void tst_LayerCommands::activeLayerIsDiscardedForItsNeighbour()
{
    QFETCH(const int, discarded);
    QFETCH(const QString, text);
    QFETCH(const int, active);
    CommandStage stage({"A B", "C D", "E F"});
    stage.activate(2, discarded);
    QCOMPARE(stage.walk(new DiscardLayer(stage.mrScene(), discarded)), QString());
    QCOMPARE(stage.text(), text);
    QCOMPARE(stage.scene().activeLayerIdx(), active);
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_LayerCommands::otherLayerIsDiscardedWithoutMoving()
{
    CommandStage stage({"A B", "C D", "E F"});
    stage.scene().moveLayer(0, 4);
    stage.activate(2, 2);
    auto *command = new DiscardLayer(stage.mrScene(), 0);
    QCOMPARE(command->childCount(), 1);
    QCOMPARE(stage.walk(command), QString());
    QCOMPARE(stage.text(), "C D | E F");
    QCOMPARE(stage.scene().activeLayerIdx(), 1);
    stage.stack().undo();
    QCOMPARE(stage.scene().layerOrder(), QList<int>({1, 2, 3, 4, 0}));
}

void tst_LayerCommands::longestLayerIsDiscardedWithItsFrames()
{
    CommandStage stage({"A", "B C D E"});
    stage.activate(4, 1);
    QCOMPARE(stage.walk(new DiscardLayer(stage.mrScene(), 1)), QString());
    QCOMPARE(stage.scene().maximumFrameNumber(), 1);
    QCOMPARE(stage.scene().rangeLast(), 1);
    stage.stack().undo();
    QCOMPARE(stage.scene().rangeLast(), 4);
    QCOMPARE(stage.scene().activeFrame(), 4);
}

void tst_LayerCommands::soundIsDiscardedForSilence()
{
    CommandStage stage({"A B"});
    audioLayer(stage.scene()).setOriginalAudioData("sound");
    auto *command = new DiscardLayer(stage.mrScene(), stage.scene().audioLayerIdx());
    QCOMPARE(command->text(), "Discard Audio");
    QCOMPARE(stage.walk(command), QString());
    QVERIFY(audioLayer(stage.scene()).originalAudioData().isEmpty());
    QCOMPARE(stage.scene().layerCount(), 3);
    stage.stack().undo();
    QCOMPARE(audioLayer(stage.scene()).originalAudioData(), "sound");
}

void tst_LayerCommands::notesAreNotDiscarded()
{
    CommandStage stage({"A"});
    QVERIFY(stage.isRefused(new DiscardLayer(stage.mrScene(), stage.scene().annotationLayerIdx())));
}

void tst_LayerCommands::removedLayerLeavesItsDistantClonesAnOriginal()
{
    CommandStage stage({"A B", "A* C B* A*", "A*"});
    QCOMPARE(stage.walk(new RemoveLayer(stage.mrScene(), 0)), QString());
    QCOMPARE(stage.text(), "A C B A* | A*");
}

void tst_LayerCommands::onlyVisualLayerIsNotRemoved()
{
    CommandStage stage({"A"});
    for (int layerIdx = -1; layerIdx <= stage.scene().layerCount(); ++layerIdx)
        QVERIFY(stage.isRefused(new RemoveLayer(stage.mrScene(), layerIdx)));
}

void tst_LayerCommands::swappedLayerTakesPlaceAndIndex()
{
    CommandStage stage({"A B", "C A*", "D"});
    stage.scene().moveLayer(0, 2);
    stage.activate(2, 0);
    const auto layer = std::make_shared<StrokeLayer>(Qt::blue, TestSupport::stageFrame);
    QCOMPARE(stage.walk(new SwapLayer(stage.mrScene(), 0, layer)), QString());
    QCOMPARE(stage.text(), "_ | C A | D");
    QCOMPARE(stage.scene().layerPtr(0), layer);
    QCOMPARE(stage.scene().visualIndex(0), 2);
    stage.stack().undo();
    QCOMPARE(stage.text(), "A B | C A* | D");
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_LayerCommands::swapWithOtherKindsIsObsolete()
{
    CommandStage stage({"A", "B"});
    const int audio = stage.scene().audioLayerIdx();
    const auto stroke = std::make_shared<StrokeLayer>(Qt::blue, TestSupport::stageFrame);
    QVERIFY(stage.isRefused(new SwapLayer(stage.mrScene(), 0, nullptr)));
    QVERIFY(stage.isRefused(new SwapLayer(stage.mrScene(), 0, stage.scene().layerPtr(1))));
    QVERIFY(stage.isRefused(new SwapLayer(stage.mrScene(), 0, std::make_shared<AudioLayer>())));
    QVERIFY(stage.isRefused(new SwapLayer(stage.mrScene(), audio, stroke)));
    QVERIFY(stage.isRefused(new SwapLayer(stage.mrScene(), audio, std::make_shared<AnnotationLayer>())));
    QVERIFY(stage.isRefused(new SwapLayer(stage.mrScene(), 9, stroke)));
}

void tst_LayerCommands::mergeLengthensTheLowerLayer_data()
{
    QTest::addColumn<QString>("upper");
    QTest::addColumn<QString>("lower");
    QTest::addColumn<QString>("merged");
    // Names tell whose drawing it was; what was added behind the lower layer has none.
    QTest::newRow("hold at the end") << "A B b"
                                     << "C"
                                     << "C _ .";
    QTest::newRow("original at the end") << "A B D"
                                         << "C"
                                         << "C _ _";
    QTest::newRow("hold over an original") << "A a"
                                           << "C D"
                                           << "C D";
    QTest::newRow("original over a hold") << "A B"
                                          << "C c c"
                                          << "C C c";
    QTest::newRow("hold over a hold") << "A a"
                                      << "C c"
                                      << "C c";
}

void tst_LayerCommands::mergeLengthensTheLowerLayer()
{
    QFETCH(const QString, upper);
    QFETCH(const QString, lower);
    QFETCH(const QString, merged);
    CommandStage stage({upper, lower});
    stage.activate(1, 0);
    QCOMPARE(stage.walk(new MergeLayerDown(stage.mrScene(), 0)), QString());
    QCOMPARE(stage.text(), merged);
    QCOMPARE(stage.scene().layerCount(), 3);
    QVERIFY(stage.scene().visualLayer(stage.scene().activeLayerIdx()));
    stage.stack().undo();
    QCOMPARE(stage.text(), upper + " | " + lower);
}

void tst_LayerCommands::mergeJoinsThePictures()
{
    CommandStage stage({"A B b", "C"});
    const QImage a = stage.drawing(1, 0).image();
    const QImage b = stage.drawing(2, 0).image();
    const QImage c = stage.drawing(1, 1).image();
    MRScene::pushCommand(new MergeLayerDown(stage.mrScene(), 0));
    const int merged = stage.scene().activeLayerIdx();
    QCOMPARE(stage.drawing(1, merged).image(), together(c, a));
    QCOMPARE(stage.drawing(2, merged).image(), b);
    QCOMPARE(&stage.drawing(3, merged), &stage.drawing(2, merged));
    stage.stack().undo();
    QCOMPARE(stage.drawing(1, 1).image(), c);
}

void tst_LayerCommands::mergeKeepsMarksAndTransforms()
{
    CommandStage stage({"A! B C D", "E F! G H"});
    const auto moved = QTransform::fromTranslate(3, 1);
    const auto turned = QTransform().rotate(5);
    stage.scene().item(0, 2)->offPegsTransform = moved;
    stage.scene().item(1, 2)->offPegsTransform = turned;
    stage.scene().item(1, 3)->offPegsTransform = turned;
    QCOMPARE(stage.walk(new MergeLayerDown(stage.mrScene(), 0)), QString());
    const int merged = stage.scene().activeLayerIdx();
    QCOMPARE(stage.text(), "E! F! G H");
    QCOMPARE(stage.scene().item(merged, 2)->offPegsTransform, moved);
    QCOMPARE(stage.scene().item(merged, 3)->offPegsTransform, turned);
    QVERIFY(stage.scene().item(merged, 4)->offPegsTransform.isIdentity());
}

void tst_LayerCommands::mergeWithALongerLowerLayerLeavesTheRest()
{
    CommandStage stage({"A", "C D d"});
    const QImage d = stage.drawing(2, 1).image();
    QCOMPARE(stage.walk(new MergeLayerDown(stage.mrScene(), 0)), QString());
    QCOMPARE(stage.text(), "C D d");
    QCOMPARE(stage.drawing(2, stage.scene().activeLayerIdx()).image(), d);
}

void tst_LayerCommands::mergeTakesTheNextLayerInDisplayOrder()
{
    CommandStage stage({"A", "B", "C"});
    stage.scene().moveLayer(2, 0);
    // C, A, sound, notes, B from the top.
    stage.scene().moveLayer(1, 4);
    const QList<int> order = stage.scene().layerOrder();
    stage.activate(1, 1);
    QCOMPARE(stage.walk(new MergeLayerDown(stage.mrScene(), 0)), QString());
    QCOMPARE(stage.text(), "C | B");
    QCOMPARE(stage.scene().activeLayerIdx(), stage.scene().layerCount() - 1);
    QCOMPARE(stage.scene().visualIndex(stage.scene().activeLayerIdx()), 3);
    stage.stack().undo();
    QCOMPARE(stage.scene().layerOrder(), order);
}

void tst_LayerCommands::mergeKeepsLinksExactly()
{
    // Links between the two, within each, and with a third layer, both ways.
    CommandStage stage({"A B A* C*", "C D A* a", "A* C* E D*"});
    QCOMPARE(stage.walk(new MergeLayerDown(stage.mrScene(), 0)), QString());
    CommandStage third({"A B A* C*", "C D A* E* e D* E*", "A* C* E D*"});
    QCOMPARE(third.walk(new MergeLayerDown(third.mrScene(), 1)), QString());
    QCOMPARE(third.walk(new MergeLayerDown(third.mrScene(), 0)), QString());
    while (third.stack().canUndo())
        third.stack().undo();
    QCOMPARE(third.text(), "A B A* C* | C D A* E* e D* E* | A* C* E D*");
}

void tst_LayerCommands::mergeIsObsolete_data()
{
    QTest::addColumn<int>("upper");
    QTest::newRow("above a reference layer") << 0;
    QTest::newRow("a reference layer") << 1;
    QTest::newRow("sound") << 2;
    QTest::newRow("notes") << 3;
    QTest::newRow("nothing below") << 4;
    QTest::newRow("no layer") << 5;
    QTest::newRow("no index") << -1;
}

void tst_LayerCommands::mergeIsObsolete()
{
    QFETCH(const int, upper);
    CommandStage stage({"A"});
    stage.scene().insertLayer(std::make_shared<ReferenceLayer>(TestSupport::stageFrame), 1);
    stage.scene().moveLayer(1, 1);
    stage.scene().insertLayer(std::make_shared<StrokeLayer>(Qt::black, TestSupport::stageFrame), 4);
    QCOMPARE(stage.scene().layerOrder(), QList<int>({0, 1, 2, 3, 4}));
    QVERIFY(stage.isRefused(new MergeLayerDown(stage.mrScene(), upper)));
}

void tst_LayerCommands::mergeOfLinkedLayersLeavesOthersAsTheyAre()
{
    CommandStage stage({"A B b", "C", "E F"});
    stage.link({0, 1, 2});
    QCOMPARE(stage.walk(new MergeLayerDown(stage.mrScene(), 0)), QString());
    QCOMPARE(stage.text(), "E F | C _ .");
    QVERIFY(stage.scene().layer(stage.scene().activeLayerIdx())->isLinked());
}

void tst_LayerCommands::mergeInACutRangeKeepsThePosition()
{
    CommandStage stage({"A B C D E", "F"});
    stage.scene().setFrameRange(2, 4, 3, 0);
    QCOMPARE(stage.walk(new MergeLayerDown(stage.mrScene(), 0)), QString());
    for (int round = 1; round <= 2; ++round) {
        QCOMPARE(stage.scene().rangeFirst(), 2);
        QCOMPARE(stage.scene().rangeLast(), 4);
        QCOMPARE(stage.scene().activeFrame(), 3);
        QCOMPARE(stage.scene().activeLayerIdx(), 2);
        stage.stack().undo();
        QCOMPARE(stage.scene().rangeFirst(), 2);
        QCOMPARE(stage.scene().rangeLast(), 4);
        QCOMPARE(stage.scene().activeFrame(), 3);
        QCOMPARE(stage.scene().activeLayerIdx(), 0);
        stage.stack().redo();
    }
}

void tst_LayerCommands::mergeOfOtherLayersThanAtFirstDoesNothing_data()
{
    QTest::addColumn<SceneEdit>("edit");
    QTest::newRow("lower one gone") << SceneEdit([](Scene &s) { s.removeLayer(1); });
    QTest::newRow("lower one a reference layer")
        << SceneEdit([](Scene &s) { s.swapLayer(1, std::make_shared<ReferenceLayer>(TestSupport::stageFrame)); });
    QTest::newRow("both reference layers") << SceneEdit([](Scene &s) {
        s.swapLayer(0, std::make_shared<ReferenceLayer>(TestSupport::stageFrame));
        s.swapLayer(1, std::make_shared<ReferenceLayer>(TestSupport::stageFrame));
    });
}

void tst_LayerCommands::mergeOfOtherLayersThanAtFirstDoesNothing()
{
    QFETCH(const SceneEdit, edit);
    for (const bool again : {false, true}) {
        CommandStage stage({"A B", "C"});
        MergeLayerDown command(stage.mrScene(), 0);
        QVERIFY(!command.isObsolete());
        if (again) {
            command.redo();
            command.undo();
        }
        edit(stage.scene());
        const TestSupport::SceneSnapshot before = stage.snapshot();
        command.redo();
        QCOMPARE(before.diff(stage.snapshot()), QString());
        command.undo();
        QCOMPARE(before.diff(stage.snapshot()), QString());
    }
}

void tst_LayerCommands::mergeIsNotUndoneWithoutTheMergedLayer()
{
    CommandStage stage({"A B", "C", "D"});
    MergeLayerDown command(stage.mrScene(), 0);
    command.redo();
    QCOMPARE(stage.text(), "D | C _");
    QVERIFY(stage.scene().removeLayer(stage.scene().activeLayerIdx()));
    const TestSupport::SceneSnapshot before = stage.snapshot();
    command.undo();
    QCOMPARE(before.diff(stage.snapshot()), QString());
    command.redo();
    QCOMPARE(before.diff(stage.snapshot()), QString());
}

void tst_LayerCommands::mergeIsNotDoneAgainWithAnotherLayer()
{
    CommandStage stage({"A B", "C"});
    MergeLayerDown command(stage.mrScene(), 0);
    command.redo();
    command.undo();
    // What was merged does not show this layer.
    stage.scene().swapLayer(1, std::make_shared<StrokeLayer>(Qt::blue, TestSupport::stageFrame));
    const TestSupport::SceneSnapshot before = stage.snapshot();
    command.redo();
    QCOMPARE(before.diff(stage.snapshot()), QString());
}

void tst_LayerCommands::duplicateOfAReferenceLayerIsOne()
{
    CommandStage stage({"A"});
    auto pictures = std::make_shared<ReferenceLayer>(TestSupport::stageFrame);
    pictures->setName(QStringLiteral("Photos"));
    const int source = stage.scene().insertLayer(pictures, 1);
    QCOMPARE(stage.walk(new DuplicateLayer(stage.mrScene(), source)), QString());
    const int copy = stage.scene().activeLayerIdx();
    QCOMPARE(copy, 4);
    QCOMPARE(stage.scene().layer(copy)->layerType(), int(Layer::Reference));
    QCOMPARE(stage.scene().layer(copy)->name(), "Copy of Photos");
    QVERIFY(stage.scene().layer(copy)->identifier() != pictures->identifier());
    QVERIFY(stage.scene().item(copy, 1)->drawing != stage.scene().item(source, 1)->drawing);
    QCOMPARE(stage.scene().visualIndex(copy) + 1, stage.scene().visualIndex(source));
}

void tst_LayerCommands::onlyReferenceLayerIsDiscardedForAnEmptyLayer()
{
    CommandStage stage({"A"});
    const auto pictures = std::make_shared<ReferenceLayer>(TestSupport::stageFrame);
    stage.scene().swapLayer(0, pictures);
    QCOMPARE(stage.walk(new DiscardLayer(stage.mrScene(), 0)), QString());
    QCOMPARE(stage.scene().layer(0)->layerType(), int(Layer::Stroke));
    QCOMPARE(stage.scene().layer(0)->name(), "New Layer");
    QCOMPARE(stage.text(), "_");
    stage.stack().undo();
    QCOMPARE(stage.scene().layerPtr(0), pictures);
}

QTEST_MAIN(tst_LayerCommands)
#include "tst_layercommands.moc"
