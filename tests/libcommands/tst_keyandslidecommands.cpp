#include "commandstage.h"
#include "libcommands/markaskeydrawing.h"
#include "libcommands/slideoriginaldrawing.h"
#include "libcommands/unmarkallkeydrawings.h"

#include <QTest>

using namespace Commands;
using TestSupport::CommandStage;

/// Key marks and the drag of an original within its layer.
class tst_KeyAndSlideCommands : public QObject
{
    Q_OBJECT

private slots:
    void activeCellIsMarkedAndUnmarked();
    void markAsItIsIsObsolete();
    void markWithoutACellIsObsolete();
    void allMarksAreTakenOffAndComeBack();
    void unmarkingWithoutMarksNeverReachesTheStack();
    void slide_data();
    void slide();
    void slideOfNothingIsObsolete();
    void slideThatIsNotPossibleNeverReachesTheStack_data();
    void slideThatIsNotPossibleNeverReachesTheStack();
};

void tst_KeyAndSlideCommands::activeCellIsMarkedAndUnmarked()
{
    CommandStage stage({"A a", "B C"});
    stage.activate(2, 0);
    QCOMPARE(stage.walk(new MarkAsKeyDrawing(stage.mrScene(), true)), QString());
    QCOMPARE(stage.text(), "A a! | B C");
    stage.activate(2, 1);
    QCOMPARE(stage.walk(new MarkAsKeyDrawing(stage.mrScene(), true)), QString());
    QCOMPARE(stage.text(), "A a! | B C!");
    stage.activate(2, 0);
    QCOMPARE(stage.walk(new MarkAsKeyDrawing(stage.mrScene(), false)), QString());
    QCOMPARE(stage.text(), "A a | B C!");
}

void tst_KeyAndSlideCommands::markAsItIsIsObsolete()
{
    CommandStage stage({"A! B"});
    QVERIFY(stage.isRefused(new MarkAsKeyDrawing(stage.mrScene(), true)));
    stage.activate(2);
    QVERIFY(stage.isRefused(new MarkAsKeyDrawing(stage.mrScene(), false)));
}

void tst_KeyAndSlideCommands::markWithoutACellIsObsolete()
{
    CommandStage stage({"A"});
    stage.activate(2);
    QCOMPARE(stage.scene().activeFrame(), 2);
    QVERIFY(stage.isRefused(new MarkAsKeyDrawing(stage.mrScene(), true)));
    QVERIFY(stage.isRefused(new MarkAsKeyDrawing(stage.mrScene(), false)));
}

void tst_KeyAndSlideCommands::allMarksAreTakenOffAndComeBack()
{
    CommandStage stage({"A! a! B", "C D! D*!"});
    QCOMPARE(stage.walk(new UnmarkAllKeyDrawings(stage.mrScene())), QString());
    QCOMPARE(stage.text(), "A a B | C D D*");
    stage.stack().undo();
    QCOMPARE(stage.text(), "A! a! B | C D! D*!");
}

void tst_KeyAndSlideCommands::unmarkingWithoutMarksNeverReachesTheStack()
{
    CommandStage stage({"A a B", "C"});
    QVERIFY(stage.isRefused(new UnmarkAllKeyDrawings(stage.mrScene())));
}

void tst_KeyAndSlideCommands::slide_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("frameId");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("lowest");
    QTest::addColumn<int>("highest");
    QTest::addColumn<QString>("after");
    // Clones within the extremes of the drag are dealt out anew: those before the new place to the hold before it.
    QTest::newRow("up") << "A a a B b C" << 4 << -1 << -1 << 0 << "A a B b b C";
    QTest::newRow("up and half back") << "A a a B b C" << 4 << -1 << -2 << 0 << "A a B b b C";
    QTest::newRow("down") << "A a B b b C" << 3 << 2 << 0 << 2 << "A a a a B C";
    QTest::newRow("there and back") << "A a B b C" << 3 << 0 << -1 << 1 << "A a B b C";
    QTest::newRow("past a neighbour") << "A a B C c" << 3 << 1 << 0 << 1 << "A a a B C";
    QTest::newRow("distant clone") << "A B b A* a" << 4 << -1 << -1 << 0 << "A B A* a a";
}

void tst_KeyAndSlideCommands::slide()
{
    QFETCH(const QString, before);
    QFETCH(const int, frameId);
    QFETCH(const int, offset);
    QFETCH(const int, lowest);
    QFETCH(const int, highest);
    QFETCH(const QString, after);
    CommandStage stage({before, "E F"});
    stage.link({0, 1});
    stage.activate(frameId);
    QCOMPARE(stage.walk(new SlideOriginalDrawing(stage.mrScene(), offset, lowest, highest)), QString());
    QCOMPARE(stage.text(), after + " | E F");
    QCOMPARE(stage.scene().activeFrame(), frameId + offset);
}

void tst_KeyAndSlideCommands::slideOfNothingIsObsolete()
{
    CommandStage stage({"A a B b"});
    stage.activate(3);
    QVERIFY(stage.isRefused(new SlideOriginalDrawing(stage.mrScene(), 0, 0, 0)));
}

void tst_KeyAndSlideCommands::slideThatIsNotPossibleNeverReachesTheStack_data()
{
    QTest::addColumn<int>("frameId");
    QTest::newRow("frame 1") << 1;
    QTest::newRow("a hold") << 2;
    QTest::newRow("behind the last cell") << 5;
}

void tst_KeyAndSlideCommands::slideThatIsNotPossibleNeverReachesTheStack()
{
    QFETCH(const int, frameId);
    CommandStage stage({"A a B b"});
    stage.activate(frameId);
    QVERIFY(stage.drops(new SlideOriginalDrawing(stage.mrScene(), 1, 0, 1)));
}

QTEST_MAIN(tst_KeyAndSlideCommands)
#include "tst_keyandslidecommands.moc"
