#include "commandstage.h"
#include "libcommands/addclonedrawings.h"
#include "libcommands/mergeids.h"
#include "libcommands/offpegs.h"
#include "libmodel/layers/layeritem.h"

#include <QSignalSpy>
#include <QTest>

#include <limits>

using namespace Commands;
using Model::MRScene;
using Model::Scene;
using TestSupport::CommandStage;

namespace {

QTransform turned()
{
    return QTransform().translate(3, -2).rotate(10);
}

QTransform offPegs(const CommandStage &stage, int frameId, int layerIdx = 0)
{
    return stage.scene().item(layerIdx, frameId)->offPegsTransform;
}

const QString takeOff = QStringLiteral("Take Frame Off the Pegs");
const QString putOn = QStringLiteral("Put Frame On the Pegs");

} // namespace

/// Taking frames off their pegs and putting them back.
class tst_OffPegs : public QObject
{
    Q_OBJECT

private slots:
    void frameIsTakenOffAndComesBack();
    void frameIsPutOnAndComesBack();
    void holdIsMovedAlone();
    void frameOfTheActiveLayerIsTakenOff();
    void frameThatIsOffThroughAnotherLayerIsMovedThere();
    void frameThatIsOffThroughAnotherLayerIsPutOnThere();
    void drawingElsewhereIsNotMoved();
    void movesMergeIntoOne();
    void mergedMoveRebuildsItsText();
    void moveBackToTheStartMergesIntoNone();
    void movesOfTwoFramesStayApart();
    void movesOfTwoLayersStayApart();
    void frameIsThatOfTheConstruction();
    void putOnWhatIsOnIsObsolete();
    void moveToWhereItLiesIsObsolete();
    void unusableTransformIsObsolete_data();
    void unusableTransformIsObsolete();
    void positionBehindTheLastCellIsObsolete();
    void nearlyIdentityIsPutOnExactly();
    void everyStepIsTold();
};

void tst_OffPegs::frameIsTakenOffAndComesBack()
{
    CommandStage stage({"A B"});
    stage.activate(2);
    QCOMPARE(stage.walk(new OffPegs(stage.mrScene(), turned())), QString());
    QCOMPARE(stage.stack().undoText(), takeOff);
    QCOMPARE(offPegs(stage, 2), turned());
    QVERIFY(offPegs(stage, 1).isIdentity());
    stage.stack().undo();
    QCOMPARE(offPegs(stage, 2), QTransform());
}

void tst_OffPegs::frameIsPutOnAndComesBack()
{
    CommandStage stage({"A B"});
    stage.scene().setOffPegsTransform(1, 0, turned());
    QCOMPARE(stage.walk(new OffPegs(stage.mrScene(), QTransform())), QString());
    QCOMPARE(stage.stack().undoText(), putOn);
    QCOMPARE(offPegs(stage, 1), QTransform());
    stage.stack().undo();
    QCOMPARE(offPegs(stage, 1), turned());
}

void tst_OffPegs::holdIsMovedAlone()
{
    CommandStage stage({"A a a"});
    stage.activate(2);
    QCOMPARE(stage.walk(new OffPegs(stage.mrScene(), turned())), QString());
    QVERIFY(offPegs(stage, 1).isIdentity());
    QCOMPARE(offPegs(stage, 2), turned());
    QVERIFY(offPegs(stage, 3).isIdentity());
    QCOMPARE(stage.text(), "A a a");
}

void tst_OffPegs::frameOfTheActiveLayerIsTakenOff()
{
    CommandStage stage({"A", "B"});
    stage.activate(1, 1);
    QCOMPARE(stage.walk(new OffPegs(stage.mrScene(), turned())), QString());
    QVERIFY(offPegs(stage, 1, 0).isIdentity());
    QCOMPARE(offPegs(stage, 1, 1), turned());
}

void tst_OffPegs::frameThatIsOffThroughAnotherLayerIsMovedThere()
{
    CommandStage stage({"A", "B"});
    stage.scene().setOffPegsTransform(1, 0, turned());
    stage.activate(1, 1);
    const QTransform further = turned() * QTransform::fromTranslate(5, 5);
    QCOMPARE(stage.walk(new OffPegs(stage.mrScene(), further)), QString());
    QCOMPARE(offPegs(stage, 1, 0), further);
    QVERIFY(offPegs(stage, 1, 1).isIdentity());
    QCOMPARE(stage.scene().offPegsTransformOfFrame(1), further);
}

void tst_OffPegs::frameThatIsOffThroughAnotherLayerIsPutOnThere()
{
    CommandStage stage({"A", "B"});
    stage.scene().setOffPegsTransform(1, 1, turned());
    QCOMPARE(stage.walk(new OffPegs(stage.mrScene(), QTransform())), QString());
    QVERIFY(stage.scene().offPegsTransformOfFrame(1).isIdentity());
}

void tst_OffPegs::drawingElsewhereIsNotMoved()
{
    CommandStage stage({"A B A*"});
    stage.activate(3);
    QCOMPARE(stage.walk(new OffPegs(stage.mrScene(), turned())), QString());
    QVERIFY(offPegs(stage, 1).isIdentity());
    QCOMPARE(offPegs(stage, 3), turned());
}

void tst_OffPegs::movesMergeIntoOne()
{
    CommandStage stage({"A B"});
    const TestSupport::SceneSnapshot before = stage.snapshot();
    for (int i = 1; i <= 4; ++i) {
        MRScene::pushCommand(new OffPegs(stage.mrScene(), QTransform::fromTranslate(i, 2 * i)));
        QCOMPARE(stage.stack().count(), 1);
    }
    QCOMPARE(offPegs(stage, 1), QTransform::fromTranslate(4, 8));
    const TestSupport::SceneSnapshot after = stage.snapshot();
    for (int i = 0; i < 2; ++i) {
        stage.stack().undo();
        QCOMPARE(before.diff(stage.snapshot()), QString());
        stage.stack().redo();
        QCOMPARE(after.diff(stage.snapshot()), QString());
    }
}

void tst_OffPegs::mergedMoveRebuildsItsText()
{
    CommandStage stage({"A B"});
    stage.scene().setOffPegsTransform(1, 0, turned());
    MRScene::pushCommand(new OffPegs(stage.mrScene(), QTransform::fromTranslate(1, 1)));
    QCOMPARE(stage.stack().undoText(), takeOff);
    MRScene::pushCommand(new OffPegs(stage.mrScene(), QTransform()));
    QCOMPARE(stage.stack().count(), 1);
    QCOMPARE(stage.stack().undoText(), putOn);
    MRScene::pushCommand(new OffPegs(stage.mrScene(), QTransform::fromTranslate(2, 2)));
    QCOMPARE(stage.stack().count(), 1);
    QCOMPARE(stage.stack().undoText(), takeOff);
    stage.stack().undo();
    QCOMPARE(offPegs(stage, 1), turned());
}

void tst_OffPegs::moveBackToTheStartMergesIntoNone()
{
    CommandStage stage({"A B"});
    const TestSupport::SceneSnapshot before = stage.snapshot();
    MRScene::pushCommand(new OffPegs(stage.mrScene(), turned()));
    MRScene::pushCommand(new OffPegs(stage.mrScene(), QTransform()));
    QCOMPARE(stage.stack().count(), 0);
    QCOMPARE(before.diff(stage.snapshot()), QString());
}

void tst_OffPegs::movesOfTwoFramesStayApart()
{
    CommandStage stage({"A B"});
    MRScene::pushCommand(new OffPegs(stage.mrScene(), turned()));
    stage.activate(2);
    MRScene::pushCommand(new OffPegs(stage.mrScene(), turned()));
    QCOMPARE(stage.stack().count(), 2);
    stage.stack().undo();
    QCOMPARE(offPegs(stage, 1), turned());
    QVERIFY(offPegs(stage, 2).isIdentity());
}

void tst_OffPegs::movesOfTwoLayersStayApart()
{
    CommandStage stage({"A", "B"});
    OffPegs first(stage.mrScene(), turned());
    stage.activate(1, 1);
    const OffPegs second(stage.mrScene(), QTransform::fromTranslate(1, 1));
    QVERIFY(!first.mergeWith(&second));
    QCOMPARE(first.text(), takeOff);
    const AddCloneDrawings other(stage.mrScene(), stage.cell(1), 1);
    QVERIFY(!first.mergeWith(&other));
    QVERIFY(!first.mergeWith(nullptr));
}

void tst_OffPegs::frameIsThatOfTheConstruction()
{
    CommandStage stage({"A B", "C D"});
    auto *command = new OffPegs(stage.mrScene(), turned());
    stage.activate(2, 1);
    MRScene::pushCommand(command);
    QCOMPARE(offPegs(stage, 1, 0), turned());
    QVERIFY(offPegs(stage, 2, 1).isIdentity());
    stage.activate(1, 1);
    stage.stack().undo();
    QVERIFY(offPegs(stage, 1, 0).isIdentity());
}

void tst_OffPegs::putOnWhatIsOnIsObsolete()
{
    CommandStage stage({"A B"});
    QVERIFY(stage.isRefused(new OffPegs(stage.mrScene(), QTransform())));
}

void tst_OffPegs::moveToWhereItLiesIsObsolete()
{
    CommandStage stage({"A B"});
    stage.scene().setOffPegsTransform(1, 0, turned());
    QVERIFY(stage.isRefused(new OffPegs(stage.mrScene(), turned())));
}

void tst_OffPegs::unusableTransformIsObsolete_data()
{
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    QTest::addColumn<QTransform>("transform");
    QTest::newRow("flat") << QTransform::fromScale(1, 0);
    QTest::newRow("onto a line") << QTransform(1, 2, 2, 4, 0, 0);
    QTest::newRow("no number") << QTransform(1, 0, 0, 1, notANumber, 0);
    QTest::newRow("infinite") << QTransform(infinity, 0, 0, 1, 0, 0);
    QTest::newRow("no number in the scale") << QTransform(notANumber, 0, 0, 1, 0, 0);
}

void tst_OffPegs::unusableTransformIsObsolete()
{
    QFETCH(const QTransform, transform);
    CommandStage stage({"A B"});
    QVERIFY(stage.isRefused(new OffPegs(stage.mrScene(), transform)));
}

void tst_OffPegs::positionBehindTheLastCellIsObsolete()
{
    CommandStage stage({"A", "B C D"});
    stage.scene().setActiveFrameAndLayer(2, 0, Scene::AllowFrameAfterLast);
    QCOMPARE(stage.scene().activeFrame(), 2);
    QVERIFY(stage.isRefused(new OffPegs(stage.mrScene(), turned())));
}

void tst_OffPegs::nearlyIdentityIsPutOnExactly()
{
    CommandStage stage({"A B"});
    stage.scene().setOffPegsTransform(1, 0, turned());
    MRScene::pushCommand(new OffPegs(stage.mrScene(), QTransform(1, 0, 0, 1, 1e-14, 0)));
    QCOMPARE(stage.stack().undoText(), putOn);
    QCOMPARE(offPegs(stage, 1).dx(), 0.0);
}

void tst_OffPegs::everyStepIsTold()
{
    CommandStage stage({"A B"});
    QSignalSpy told(&stage.scene(), &Scene::offPegsTransformChanged);
    MRScene::pushCommand(new OffPegs(stage.mrScene(), turned()));
    stage.stack().undo();
    stage.stack().redo();
    QCOMPARE(told.size(), 3);
    QCOMPARE(told.at(0).first().value<QTransform>(), turned());
    QCOMPARE(told.at(1).first().value<QTransform>(), QTransform());
    QCOMPARE(told.at(2).first().value<QTransform>(), turned());
}

QTEST_MAIN(tst_OffPegs)
#include "tst_offpegs.moc"
