#include "commandstage.h"
#include "libcommands/floatingselectionnew.h"
#include "libcommands/floatingselectiontransform.h"
#include "libmodel/strokes/bitmapstroke.h"

#include <QSignalSpy>
#include <QTest>

#include <limits>

using namespace Model;
using Commands::FloatingSelectionNew;
using Commands::FloatingSelectionTransform;
using TestSupport::CommandStage;

namespace {

FloatingSelection selection(int value)
{
    const QRect rect(4, 5, 10, 8);
    QImage image(rect.size(), QImage::Format_Alpha8);
    image.fill(value);
    return {std::make_unique<BitmapStroke>(image, rect), TestSupport::stageFrame};
}

FloatingSelection::Transform movedBy(double dx, double dy)
{
    FloatingSelection::Transform transform;
    transform.translation = QTransform::fromTranslate(dx, dy);
    return transform;
}

} // namespace

class tst_FloatingSelectionCommands : public QObject
{
    Q_OBJECT

private slots:
    void newSelectionFloatsAndUndoBringsTheFormer();
    void firstSelectionIsUndoneToNone();
    void nullSelectionDropsThePresentOne();
    void noneForNoneLeavesNoStep();
    void copiesOfASelectionKeepWhatIsChangedLater();
    void transformMovesTheSelection();
    void unchangedTransformVanishesFromTheStack();
    void transformWithoutASelectionVanishes();
    void unusableTransformVanishes_data();
    void unusableTransformVanishes();
    void transformsGoBackAndForthAcrossAnotherSelection();
};

void tst_FloatingSelectionCommands::newSelectionFloatsAndUndoBringsTheFormer()
{
    CommandStage stage({"A"});
    const FloatingSelection first = selection(1);
    const FloatingSelection second = selection(2);
    stage.mrScene()->setFloatingSelection(first);
    const QSignalSpy changes(stage.mrScene(), &MRScene::floatingSelectionChanged);
    QCOMPARE(stage.walk(new FloatingSelectionNew(stage.mrScene(), second)), QString());
    QCOMPARE(stage.mrScene()->floatingSelection().content(), second.content());
    stage.stack().undo();
    QCOMPARE(stage.mrScene()->floatingSelection().content(), first.content());
    QCOMPARE(changes.size(), 6);
}

void tst_FloatingSelectionCommands::firstSelectionIsUndoneToNone()
{
    CommandStage stage({"A"});
    QCOMPARE(stage.walk(new FloatingSelectionNew(stage.mrScene(), selection(1))), QString());
    QVERIFY(!stage.mrScene()->floatingSelection().isNull());
    stage.stack().undo();
    QVERIFY(stage.mrScene()->floatingSelection().isNull());
}

void tst_FloatingSelectionCommands::nullSelectionDropsThePresentOne()
{
    CommandStage stage({"A"});
    stage.mrScene()->setFloatingSelection(selection(1));
    QCOMPARE(stage.walk(new FloatingSelectionNew(stage.mrScene(), FloatingSelection())), QString());
    QVERIFY(stage.mrScene()->floatingSelection().isNull());
}

void tst_FloatingSelectionCommands::noneForNoneLeavesNoStep()
{
    CommandStage stage({"A"});
    QVERIFY(stage.isRefused(new FloatingSelectionNew(stage.mrScene(), FloatingSelection())));
}

void tst_FloatingSelectionCommands::copiesOfASelectionKeepWhatIsChangedLater()
{
    CommandStage stage({"A"});
    FloatingSelection picked = selection(1);
    picked.setCutOut(true);
    picked.setCollapsesOnStamp(true);
    stage.stack().push(new FloatingSelectionNew(stage.mrScene(), picked));
    stage.stack().push(new FloatingSelectionTransform(stage.mrScene(), movedBy(3, 4)));
    stage.stack().undo();
    stage.stack().undo();
    stage.stack().redo();
    const FloatingSelection &floating = stage.mrScene()->floatingSelection();
    QVERIFY(floating.isCutOut());
    QVERIFY(floating.collapsesOnStamp());
    QCOMPARE(floating.transform(), picked.transform());
}

void tst_FloatingSelectionCommands::transformMovesTheSelection()
{
    CommandStage stage({"A"});
    stage.mrScene()->setFloatingSelection(selection(1));
    const FloatingSelection::Transform before = stage.mrScene()->floatingSelection().transform();
    const QSignalSpy moves(stage.mrScene(), &MRScene::floatingSelectionTransformChanged);
    QCOMPARE(stage.walk(new FloatingSelectionTransform(stage.mrScene(), movedBy(3, 4))), QString());
    QCOMPARE(stage.mrScene()->floatingSelection().transform(), movedBy(3, 4));
    stage.stack().undo();
    QCOMPARE(stage.mrScene()->floatingSelection().transform(), before);
    QCOMPARE(moves.size(), 6);
}

void tst_FloatingSelectionCommands::unchangedTransformVanishesFromTheStack()
{
    CommandStage stage({"A"});
    stage.mrScene()->setFloatingSelection(selection(1));
    stage.mrScene()->setFloatingSelectionTransform(movedBy(3, 4));
    QVERIFY(stage.isRefused(new FloatingSelectionTransform(stage.mrScene(), movedBy(3, 4))));
    QCOMPARE(stage.mrScene()->floatingSelection().transform(), movedBy(3, 4));
}

void tst_FloatingSelectionCommands::transformWithoutASelectionVanishes()
{
    CommandStage stage({"A"});
    QVERIFY(stage.isRefused(new FloatingSelectionTransform(stage.mrScene(), movedBy(3, 4))));
}

void tst_FloatingSelectionCommands::unusableTransformVanishes_data()
{
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    QTest::addColumn<QTransform>("scale");
    QTest::newRow("no size") << QTransform::fromScale(0, 0);
    QTest::newRow("no width") << QTransform::fromScale(0, 1);
    QTest::newRow("onto a line") << QTransform(1, 2, 2, 4, 0, 0);
    QTest::newRow("no number") << QTransform(notANumber, 0, 0, 1, 0, 0);
    QTest::newRow("endless") << QTransform::fromScale(std::numeric_limits<double>::infinity(), 1);
    QTest::newRow("huge") << QTransform::fromScale(1e300, 1e300);
    QTest::newRow("perspective") << QTransform(1, 0, 0.01, 0, 1, 0, 0, 0, 1);
}

void tst_FloatingSelectionCommands::unusableTransformVanishes()
{
    QFETCH(QTransform, scale);
    CommandStage stage({"A"});
    stage.mrScene()->setFloatingSelection(selection(1));
    FloatingSelection::Transform transform = movedBy(3, 4);
    transform.scale = scale;
    QVERIFY(stage.isRefused(new FloatingSelectionTransform(stage.mrScene(), transform)));
}

void tst_FloatingSelectionCommands::transformsGoBackAndForthAcrossAnotherSelection()
{
    CommandStage stage({"A"});
    QList<TestSupport::SceneSnapshot> states{stage.snapshot()};
    const auto push = [&](QUndoCommand *command) {
        stage.stack().push(command);
        states.append(stage.snapshot());
        QCOMPARE(stage.stack().index(), states.size() - 1);
    };
    push(new FloatingSelectionNew(stage.mrScene(), selection(1)));
    push(new FloatingSelectionTransform(stage.mrScene(), movedBy(3, 4)));
    push(new FloatingSelectionNew(stage.mrScene(), selection(2)));
    push(new FloatingSelectionTransform(stage.mrScene(), movedBy(-3, 4)));
    push(new FloatingSelectionTransform(stage.mrScene(), movedBy(-3, 9)));
    push(new FloatingSelectionNew(stage.mrScene(), FloatingSelection()));
    for (int round = 0; round < 2; ++round) {
        for (qsizetype i = states.size() - 2; i >= 0; --i) {
            stage.stack().undo();
            QCOMPARE(states.at(i).diff(stage.snapshot()), QString());
        }
        for (qsizetype i = 1; i < states.size(); ++i) {
            stage.stack().redo();
            QCOMPARE(states.at(i).diff(stage.snapshot()), QString());
        }
    }
}

QTEST_MAIN(tst_FloatingSelectionCommands)
#include "tst_floatingselectioncommands.moc"
