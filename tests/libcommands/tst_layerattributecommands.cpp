#include "commandstage.h"
#include "libcommands/addannotation.h"
#include "libcommands/changelayercolor.h"
#include "libcommands/changelayeropacity.h"
#include "libcommands/movelayer.h"
#include "libcommands/renamelayer.h"
#include "libcommands/setalllayerslinked.h"
#include "libcommands/setlayerbeyondlast.h"
#include "libcommands/setlayerlinked.h"
#include "libcommands/setlayervisible.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"

#include <QTest>

#include <cmath>

using namespace Commands;
using namespace Model;
using TestSupport::CommandStage;

namespace {

QImage note(int value)
{
    QImage image(6, 4, QImage::Format_Indexed8);
    image.setColorTable(QList<QRgb>(256, qRgb(1, 2, 3)));
    image.fill(value);
    return image;
}

} // namespace

/// The commands that change what a layer is set to.
class tst_LayerAttributeCommands : public QObject
{
    Q_OBJECT

private slots:
    void layerMovesAndComesBack();
    void moveToItsOwnPlaceIsObsolete_data();
    void moveToItsOwnPlaceIsObsolete();
    void layerIsRenamed();
    void sameNameIsObsolete();
    void layerIsHiddenAndShown();
    void visibilityAsItIsIsObsolete();
    void layerIsLinkedAndUnlinked();
    void linkAsItIsIsObsolete();
    void allLayersAreLinkedButSoundAndNotes();
    void allLayersLinkedAlreadyIsObsolete();
    void ruleBeyondTheLastCellIsSet_data();
    void ruleBeyondTheLastCellIsSet();
    void unknownOrPresentRuleIsObsolete();
    void opacityIsSetAndComesBack();
    void opacitiesOfADragMergeAndBackToTheStartIntoNone();
    void opacityFallingToZeroIsAChange();
    void opacitiesOfTwoLayersStayApart();
    void opacityAsItIsIsObsolete_data();
    void opacityAsItIsIsObsolete();
    void colourIsSetAndComesBack();
    void presentOrNoColourIsObsolete();
    void noteIsWrittenAndComesBack();
    void noteIsWipedOut();
    void noteThatIsNoneNeverReachesTheStack();
    void commandsOnNoLayerAreObsolete_data();
    void commandsOnNoLayerAreObsolete();
};

void tst_LayerAttributeCommands::layerMovesAndComesBack()
{
    CommandStage stage({"A", "B", "C"});
    QCOMPARE(stage.walk(new MoveLayer(stage.mrScene(), 0, 2)), QString());
    QCOMPARE(stage.scene().layerOrder(), QList<int>({1, 2, 0, 3, 4}));
    stage.stack().undo();
    QCOMPARE(stage.scene().layerOrder(), QList<int>({0, 1, 2, 3, 4}));
}

void tst_LayerAttributeCommands::moveToItsOwnPlaceIsObsolete_data()
{
    QTest::addColumn<int>("place");
    QTest::newRow("its own") << 1;
    QTest::newRow("below the bottom") << 4;
    QTest::newRow("above the top") << -1;
}

void tst_LayerAttributeCommands::moveToItsOwnPlaceIsObsolete()
{
    QFETCH(const int, place);
    CommandStage stage({"A", "B"});
    QVERIFY(stage.isRefused(new MoveLayer(stage.mrScene(), 1, place)));
}

void tst_LayerAttributeCommands::layerIsRenamed()
{
    CommandStage stage({"A"});
    for (const int layerIdx : {0, stage.scene().audioLayerIdx()}) {
        QCOMPARE(stage.walk(new RenameLayer(stage.mrScene(), layerIdx, QStringLiteral("Ink"))), QString());
        QCOMPARE(stage.scene().layer(layerIdx)->name(), "Ink");
    }
    stage.stack().undo();
    stage.stack().undo();
    QCOMPARE(stage.scene().layer(0)->name(), "1");
}

void tst_LayerAttributeCommands::sameNameIsObsolete()
{
    CommandStage stage({"A"});
    QVERIFY(stage.isRefused(new RenameLayer(stage.mrScene(), 0, QStringLiteral("1"))));
}

void tst_LayerAttributeCommands::layerIsHiddenAndShown()
{
    CommandStage stage({"A", "B"});
    QCOMPARE(stage.walk(new SetLayerVisible(stage.mrScene(), 1, false)), QString());
    QVERIFY(!stage.scene().visualLayer(1)->isVisible());
    QCOMPARE(stage.walk(new SetLayerVisible(stage.mrScene(), 1, true)), QString());
    QVERIFY(stage.scene().visualLayer(1)->isVisible());
}

void tst_LayerAttributeCommands::visibilityAsItIsIsObsolete()
{
    CommandStage stage({"A"});
    QVERIFY(stage.isRefused(new SetLayerVisible(stage.mrScene(), 0, true)));
    QVERIFY(stage.isRefused(new SetLayerVisible(stage.mrScene(), stage.scene().audioLayerIdx(), false)));
}

void tst_LayerAttributeCommands::layerIsLinkedAndUnlinked()
{
    CommandStage stage({"A", "B"});
    QCOMPARE(stage.walk(new SetLayerLinked(stage.mrScene(), 0, true)), QString());
    QVERIFY(stage.scene().layer(0)->isLinked());
    QVERIFY(!stage.scene().layer(1)->isLinked());
    QCOMPARE(stage.walk(new SetLayerLinked(stage.mrScene(), 0, false)), QString());
    QVERIFY(!stage.scene().layer(0)->isLinked());
}

void tst_LayerAttributeCommands::linkAsItIsIsObsolete()
{
    CommandStage stage({"A"});
    QVERIFY(stage.isRefused(new SetLayerLinked(stage.mrScene(), 0, false)));
}

void tst_LayerAttributeCommands::allLayersAreLinkedButSoundAndNotes()
{
    CommandStage stage({"A", "B", "C"});
    stage.link({1});
    QCOMPARE(stage.walk(new SetAllLayersLinked(stage.mrScene(), true)), QString());
    for (int layerIdx = 0; layerIdx < stage.scene().layerCount(); ++layerIdx)
        QCOMPARE(stage.scene().layer(layerIdx)->isLinked(), layerIdx < 3);
    stage.stack().undo();
    QVERIFY(!stage.scene().layer(0)->isLinked());
    QVERIFY(stage.scene().layer(1)->isLinked());
    stage.stack().redo();
    stage.link({stage.scene().annotationLayerIdx()});
    QCOMPARE(stage.walk(new SetAllLayersLinked(stage.mrScene(), false)), QString());
    for (int layerIdx = 0; layerIdx < 3; ++layerIdx)
        QVERIFY(!stage.scene().layer(layerIdx)->isLinked());
    QVERIFY(stage.scene().layer(stage.scene().annotationLayerIdx())->isLinked());
}

void tst_LayerAttributeCommands::allLayersLinkedAlreadyIsObsolete()
{
    CommandStage stage({"A", "B"});
    QVERIFY(stage.isRefused(new SetAllLayersLinked(stage.mrScene(), false)));
    stage.link({0, 1});
    QVERIFY(stage.isRefused(new SetAllLayersLinked(stage.mrScene(), true)));
}

void tst_LayerAttributeCommands::ruleBeyondTheLastCellIsSet_data()
{
    QTest::addColumn<Layer::LayerBeyondLast>("before");
    QTest::addColumn<Layer::LayerBeyondLast>("after");
    QTest::newRow("freeze") << Layer::ShowNothing << Layer::FreezeLast;
    QTest::newRow("cycle") << Layer::FreezeLast << Layer::CycleDrawings;
    QTest::newRow("nothing") << Layer::CycleDrawings << Layer::ShowNothing;
}

void tst_LayerAttributeCommands::ruleBeyondTheLastCellIsSet()
{
    QFETCH(const Layer::LayerBeyondLast, before);
    QFETCH(const Layer::LayerBeyondLast, after);
    CommandStage stage({"A"});
    stage.scene().setLayerBeyondLast(0, before);
    QCOMPARE(stage.walk(new SetLayerBeyondLast(stage.mrScene(), 0, after)), QString());
    QCOMPARE(stage.scene().layer(0)->beyondLast(), after);
    stage.stack().undo();
    QCOMPARE(stage.scene().layer(0)->beyondLast(), before);
}

void tst_LayerAttributeCommands::unknownOrPresentRuleIsObsolete()
{
    CommandStage stage({"A"});
    QVERIFY(stage.isRefused(new SetLayerBeyondLast(stage.mrScene(), 0, Layer::ShowNothing)));
    QVERIFY(stage.isRefused(new SetLayerBeyondLast(stage.mrScene(), 0, Layer::LayerBeyondLast(0))));
    QVERIFY(stage.isRefused(new SetLayerBeyondLast(stage.mrScene(), 0, Layer::LayerBeyondLast(4))));
    QVERIFY(stage.isRefused(new SetLayerBeyondLast(stage.mrScene(), stage.scene().audioLayerIdx(), Layer::FreezeLast)));
}

void tst_LayerAttributeCommands::opacityIsSetAndComesBack()
{
    CommandStage stage({"A"});
    QCOMPARE(stage.walk(new ChangeLayerOpacity(stage.mrScene(), 0, 1.0, 0.25)), QString());
    QCOMPARE(stage.scene().visualLayer(0)->opacity(), 0.25);
    stage.stack().undo();
    QCOMPARE(stage.scene().visualLayer(0)->opacity(), 1.0);
}

void tst_LayerAttributeCommands::opacitiesOfADragMergeAndBackToTheStartIntoNone()
{
    CommandStage stage({"A"});
    double before = 1.0;
    for (const double opacity : {0.8, 0.6, 0.4}) {
        MRScene::pushCommand(new ChangeLayerOpacity(stage.mrScene(), 0, before, opacity));
        QCOMPARE(stage.stack().count(), 1);
        before = opacity;
    }
    stage.stack().undo();
    QCOMPARE(stage.scene().visualLayer(0)->opacity(), 1.0);
    stage.stack().redo();
    QCOMPARE(stage.scene().visualLayer(0)->opacity(), 0.4);
    MRScene::pushCommand(new ChangeLayerOpacity(stage.mrScene(), 0, 0.4, 1.0));
    QCOMPARE(stage.stack().count(), 0);
    QCOMPARE(stage.scene().visualLayer(0)->opacity(), 1.0);
}

void tst_LayerAttributeCommands::opacityFallingToZeroIsAChange()
{
    CommandStage stage({"A"});
    QCOMPARE(stage.walk(new ChangeLayerOpacity(stage.mrScene(), 0, 1.0, 0.0)), QString());
    QCOMPARE(stage.scene().visualLayer(0)->opacity(), 0.0);
    // Compared as they are, zero would equal nothing but itself.
    QVERIFY(stage.isRefused(new ChangeLayerOpacity(stage.mrScene(), 0, 0.0, 1e-14)));
}

void tst_LayerAttributeCommands::opacitiesOfTwoLayersStayApart()
{
    CommandStage stage({"A", "B"});
    MRScene::pushCommand(new ChangeLayerOpacity(stage.mrScene(), 0, 1.0, 0.5));
    MRScene::pushCommand(new ChangeLayerOpacity(stage.mrScene(), 1, 1.0, 0.3));
    QCOMPARE(stage.stack().count(), 2);
    stage.stack().undo();
    QCOMPARE(stage.scene().visualLayer(0)->opacity(), 0.5);
    QCOMPARE(stage.scene().visualLayer(1)->opacity(), 1.0);
}

void tst_LayerAttributeCommands::opacityAsItIsIsObsolete_data()
{
    QTest::addColumn<double>("before");
    QTest::addColumn<double>("after");
    QTest::newRow("equal") << 1.0 << 1.0;
    QTest::newRow("limited to equal") << 1.0 << 3.0;
    QTest::newRow("no number") << 1.0 << std::nan("");
    QTest::newRow("from no number") << std::nan("") << 0.5;
}

void tst_LayerAttributeCommands::opacityAsItIsIsObsolete()
{
    QFETCH(const double, before);
    QFETCH(const double, after);
    CommandStage stage({"A"});
    QVERIFY(stage.isRefused(new ChangeLayerOpacity(stage.mrScene(), 0, before, after)));
}

void tst_LayerAttributeCommands::colourIsSetAndComesBack()
{
    CommandStage stage({"A"});
    const auto &layer = dynamic_cast<const StrokeLayer &>(*stage.scene().layer(0));
    QCOMPARE(stage.walk(new ChangeLayerColor(stage.mrScene(), 0, Qt::red)), QString());
    QCOMPARE(layer.color(), QColor(Qt::red));
    stage.stack().undo();
    QCOMPARE(layer.color(), QColor(Qt::black));
}

void tst_LayerAttributeCommands::presentOrNoColourIsObsolete()
{
    CommandStage stage({"A"});
    stage.scene().insertLayer(std::make_shared<ReferenceLayer>(TestSupport::stageFrame), 1);
    QVERIFY(stage.isRefused(new ChangeLayerColor(stage.mrScene(), 0, Qt::black)));
    QVERIFY(stage.isRefused(new ChangeLayerColor(stage.mrScene(), 0, QColor())));
    QVERIFY(stage.isRefused(new ChangeLayerColor(stage.mrScene(), 1, Qt::red)));
}

void tst_LayerAttributeCommands::noteIsWrittenAndComesBack()
{
    CommandStage stage({"A B C"});
    const auto &notes = dynamic_cast<const AnnotationLayer &>(*stage.scene().layer(stage.scene().annotationLayerIdx()));
    QCOMPARE(stage.walk(new AddAnnotation(stage.mrScene(), 3, note(7))), QString());
    QCOMPARE(stage.walk(new AddAnnotation(stage.mrScene(), 3, note(9))), QString());
    QCOMPARE(notes.image(3), note(9));
    stage.stack().undo();
    QCOMPARE(notes.image(3), note(7));
    stage.stack().undo();
    QVERIFY(notes.image(3).isNull());
}

void tst_LayerAttributeCommands::noteIsWipedOut()
{
    CommandStage stage({"A B"});
    stage.scene().setAnnotation(1, note(7));
    QCOMPARE(stage.walk(new AddAnnotation(stage.mrScene(), 1, QImage())), QString());
    const auto &notes = dynamic_cast<const AnnotationLayer &>(*stage.scene().layer(stage.scene().annotationLayerIdx()));
    QVERIFY(notes.image(1).isNull());
}

void tst_LayerAttributeCommands::noteThatIsNoneNeverReachesTheStack()
{
    CommandStage stage({"A B"});
    stage.scene().setAnnotation(1, note(7));
    QVERIFY(stage.isRefused(new AddAnnotation(stage.mrScene(), 1, note(7))));
    QVERIFY(stage.isRefused(new AddAnnotation(stage.mrScene(), 2, QImage())));
    QVERIFY(stage.drops(new AddAnnotation(stage.mrScene(), 1, QImage(3, 3, QImage::Format_RGB32))));
    QVERIFY(stage.isRefused(new AddAnnotation(stage.mrScene(), 0, note(1))));
    QVERIFY(stage.isRefused(new AddAnnotation(stage.mrScene(), 3, note(1))));
    stage.scene().removeLayer(stage.scene().annotationLayerIdx());
    QVERIFY(stage.isRefused(new AddAnnotation(stage.mrScene(), 1, note(1))));
}

void tst_LayerAttributeCommands::commandsOnNoLayerAreObsolete_data()
{
    QTest::addColumn<int>("layerIdx");
    QTest::newRow("none") << -1;
    QTest::newRow("behind the last") << 3;
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
    QTest::newRow("largest") << std::numeric_limits<int>::max();
}

void tst_LayerAttributeCommands::commandsOnNoLayerAreObsolete()
{
    QFETCH(const int, layerIdx);
    CommandStage stage({"A"});
    QVERIFY(stage.isRefused(new MoveLayer(stage.mrScene(), layerIdx, 0)));
    QVERIFY(stage.isRefused(new RenameLayer(stage.mrScene(), layerIdx, QStringLiteral("Ink"))));
    QVERIFY(stage.isRefused(new SetLayerVisible(stage.mrScene(), layerIdx, false)));
    QVERIFY(stage.isRefused(new SetLayerLinked(stage.mrScene(), layerIdx, true)));
    QVERIFY(stage.isRefused(new SetLayerBeyondLast(stage.mrScene(), layerIdx, Layer::FreezeLast)));
    QVERIFY(stage.isRefused(new ChangeLayerOpacity(stage.mrScene(), layerIdx, 1.0, 0.5)));
    QVERIFY(stage.isRefused(new ChangeLayerColor(stage.mrScene(), layerIdx, Qt::red)));
}

QTEST_MAIN(tst_LayerAttributeCommands)
#include "tst_layerattributecommands.moc"
