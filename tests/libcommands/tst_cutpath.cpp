#include "libcommands/cutpath.h"

#include "commandstage.h"
#include "libcommands/stroke.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPainterPath>
#include <QSignalSpy>
#include <QTest>

#include <limits>

using namespace Model;
using Commands::CutPath;
using TestSupport::CommandStage;
using TestSupport::SceneSnapshot;

namespace {

const QUuid idA = QUuid::fromString(QStringLiteral("{0000000a-0000-4000-8000-000000000000}"));
const QUuid idB = QUuid::fromString(QStringLiteral("{0000000b-0000-4000-8000-000000000000}"));

QPainterPath rectPath(double x, double y, double width, double height)
{
    QPainterPath path;
    path.addRect(x, y, width, height);
    return path;
}

/// The left part of the block of letter A, which lies at (3, 2) and is 7 x 5 pixels of the value 100.
QPainterPath leftOfA()
{
    return rectPath(0, 0, 6, 32);
}

int coverage(const CommandStage &stage, int frameId, int x, int y, int layerIdx = 0)
{
    return stage.drawing(frameId, layerIdx).image().pixelColor(x, y).alpha();
}

std::unique_ptr<Stroke> block(QRect rect)
{
    QImage image(rect.size(), QImage::Format_Alpha8);
    image.fill(90);
    return std::make_unique<BitmapStroke>(image, rect);
}

} // namespace

class tst_CutPath : public QObject
{
    Q_OBJECT

private slots:
    void cutTakesAwayWhatIsInside();
    void cutOfAHoldIsOneOfItsOriginal();
    void cutOfADistantCloneIsOneOfAllThatShowTheDrawing();
    void otherDrawingsStayAsTheyAre();
    void undoBringsBackTheVeryDrawing();
    void redoBringsBackTheVeryCut();
    void undoGivesTheCopyIdBack();
    void redoGivesTheCopyIdOfTheLastUndoBack();
    void strokesBelowAndAboveGoBackAndForthExactly();
    void cutWithNothingInsideLeavesNoStep_data();
    void cutWithNothingInsideLeavesNoStep();
    void partOfACompositeWithNothingInsideDoesNothing();
    void waitCursorIsShownWhileCuttingOnly();
    void viewsHearOfTheCut();
};

void tst_CutPath::cutTakesAwayWhatIsInside()
{
    CommandStage stage({"A"});
    QCOMPARE(stage.walk(new CutPath(stage.mrScene(), stage.cell(1), leftOfA())), QString());
    QCOMPARE(coverage(stage, 1, 3, 4), 0);
    QCOMPARE(coverage(stage, 1, 5, 4), 0);
    QCOMPARE(coverage(stage, 1, 6, 4), 100);
    QCOMPARE(coverage(stage, 1, 9, 6), 100);
    QCOMPARE(stage.text(), QString("A"));
}

void tst_CutPath::cutOfAHoldIsOneOfItsOriginal()
{
    CommandStage stage({"A a a B"});
    QCOMPARE(stage.walk(new CutPath(stage.mrScene(), stage.cell(3), leftOfA())), QString());
    QCOMPARE(stage.text(), QString("A a a B"));
    QCOMPARE(&stage.drawing(1), &stage.drawing(3));
    QCOMPARE(coverage(stage, 1, 3, 4), 0);
}

void tst_CutPath::cutOfADistantCloneIsOneOfAllThatShowTheDrawing()
{
    CommandStage stage({"A a A*", "B A* a"});
    QCOMPARE(stage.walk(new CutPath(stage.mrScene(), stage.cell(3, 1), leftOfA())), QString());
    QCOMPARE(stage.text(), QString("A a A* | B A* a"));
    for (const StrokeDrawing *shown :
         {&stage.drawing(2), &stage.drawing(3), &stage.drawing(2, 1), &stage.drawing(3, 1)})
        QCOMPARE(shown, &stage.drawing(1));
    QCOMPARE(coverage(stage, 2, 3, 4, 1), 0);
}

void tst_CutPath::otherDrawingsStayAsTheyAre()
{
    CommandStage stage({"A B", "C"});
    const StrokeDrawing *b = &stage.drawing(2);
    const StrokeDrawing *c = &stage.drawing(1, 1);
    stage.stack().push(new CutPath(stage.mrScene(), stage.cell(1), rectPath(0, 0, 48, 32)));
    QCOMPARE(&stage.drawing(2), b);
    QCOMPARE(&stage.drawing(1, 1), c);
    QCOMPARE(coverage(stage, 2, 5, 5), 101);
}

void tst_CutPath::undoBringsBackTheVeryDrawing()
{
    CommandStage stage({"A a", "A*"});
    const StrokeDrawing *before = &stage.drawing(1);
    stage.stack().push(new CutPath(stage.mrScene(), stage.cell(1), leftOfA()));
    QVERIFY(&stage.drawing(1) != before);
    stage.stack().undo();
    QCOMPARE(&stage.drawing(1), before);
    QCOMPARE(&stage.drawing(2), before);
    QCOMPARE(&stage.drawing(1, 1), before);
}

void tst_CutPath::redoBringsBackTheVeryCut()
{
    CommandStage stage({"A"});
    stage.stack().push(new CutPath(stage.mrScene(), stage.cell(1), leftOfA()));
    const StrokeDrawing *cut = &stage.drawing(1);
    stage.stack().undo();
    stage.stack().redo();
    QCOMPARE(&stage.drawing(1), cut);
}

void tst_CutPath::undoGivesTheCopyIdBack()
{
    CommandStage stage({"A"});
    stage.drawing(1).setCopyId(idA);
    stage.stack().push(new CutPath(stage.mrScene(), stage.cell(1), leftOfA()));
    QVERIFY(stage.drawing(1).copyId().isNull());
    stage.stack().undo();
    QCOMPARE(stage.drawing(1).copyId(), idA);
}

void tst_CutPath::redoGivesTheCopyIdOfTheLastUndoBack()
{
    CommandStage stage({"A"});
    stage.drawing(1).setCopyId(idA);
    stage.stack().push(new CutPath(stage.mrScene(), stage.cell(1), leftOfA()));
    stage.drawing(1).setCopyId(idB); // it was copied in this state
    for (int round = 0; round < 2; ++round) {
        stage.stack().undo();
        QCOMPARE(stage.drawing(1).copyId(), idA);
        stage.stack().redo();
        QCOMPARE(stage.drawing(1).copyId(), idB);
    }
}

void tst_CutPath::strokesBelowAndAboveGoBackAndForthExactly()
{
    CommandStage stage({"A a"});
    QList<SceneSnapshot> states{stage.snapshot()};
    const auto push = [&](QUndoCommand *command) {
        stage.stack().push(command);
        states.append(stage.snapshot());
        QCOMPARE(stage.stack().index(), states.size() - 1);
    };
    push(new Commands::Stroke(stage.mrScene(), stage.cell(1), block({2, 2, 12, 9})));
    push(new CutPath(stage.mrScene(), stage.cell(2), rectPath(4, 0, 5, 32)));
    push(new Commands::Stroke(stage.mrScene(), stage.cell(1), block({0, 3, 30, 3})));
    push(new CutPath(stage.mrScene(), stage.cell(1), rectPath(0, 4, 48, 3)));
    push(new Commands::Stroke(stage.mrScene(), stage.cell(2), block({7, 0, 3, 30})));
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

void tst_CutPath::cutWithNothingInsideLeavesNoStep_data()
{
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    QTest::addColumn<QPainterPath>("path");
    QTest::newRow("no path") << QPainterPath();
    QTest::newRow("only a point") << QPainterPath(QPointF(5, 4));
    QPainterPath line(QPointF(0, 4));
    line.lineTo(40, 4);
    QTest::newRow("a line") << line;
    line.closeSubpath();
    QTest::newRow("a closed line") << line;
    QTest::newRow("no width") << rectPath(5, 0, 0, 32);
    QTest::newRow("beside all ink") << rectPath(30, 20, 5, 5);
    QTest::newRow("outside the paper") << rectPath(100, 100, 50, 50);
    QTest::newRow("outside, the other way") << rectPath(-200, -100, 50, 50);
    // Qt leaves such numbers out of a path, with a warning, but not out of a mapped one.
    const QTransform toNowhere(1, 0, 0, 1, notANumber, 0);
    QTest::newRow("no number") << toNowhere.map(leftOfA());
    QTest::newRow("endless") << QTransform(1, 0, 0, 1, infinite, 0).map(leftOfA());
    QTest::newRow("huge") << QTransform::fromScale(1e300, 1e300).map(rectPath(-1, -1, 2, 2));
    QTest::newRow("beyond all coordinates") << rectPath(-1e9, -1e9, 2e9, 2e9);
}

void tst_CutPath::cutWithNothingInsideLeavesNoStep()
{
    QFETCH(QPainterPath, path);
    CommandStage stage({"A"});
    stage.stack().setClean();
    const StrokeDrawing *before = &stage.drawing(1);
    QVERIFY(stage.drops(new CutPath(stage.mrScene(), stage.cell(1), path)));
    QVERIFY(stage.stack().isClean());
    QCOMPARE(&stage.drawing(1), before);
    QVERIFY(stage.scene().floatingSelectionFrom(path).isNull() || path.isEmpty());
    QVERIFY(!QGuiApplication::overrideCursor());
}

void tst_CutPath::partOfACompositeWithNothingInsideDoesNothing()
{
    CommandStage stage({"A"});
    auto *composite = new QUndoCommand(QStringLiteral("Two at once"));
    new CutPath(stage.mrScene(), stage.cell(1), rectPath(30, 20, 5, 5), composite);
    new Commands::Stroke(stage.mrScene(), stage.cell(1), block({20, 20, 5, 5}), composite);
    QCOMPARE(stage.walk(composite), QString());
    QCOMPARE(coverage(stage, 1, 22, 22), 90);
    QCOMPARE(coverage(stage, 1, 4, 4), 100);
}

void tst_CutPath::waitCursorIsShownWhileCuttingOnly()
{
    CommandStage stage({"A"});
    QList<bool> waited;
    connect(&stage.scene(), &Scene::drawingsChanged, this, [&waited] {
        const QCursor *cursor = QGuiApplication::overrideCursor();
        waited.append(cursor && cursor->shape() == Qt::WaitCursor);
    });
    stage.stack().push(new CutPath(stage.mrScene(), stage.cell(1), leftOfA()));
    QCOMPARE(waited, QList<bool>{true});
    QVERIFY(!QGuiApplication::overrideCursor());
    disconnect(&stage.scene(), nullptr, this, nullptr);
}

void tst_CutPath::viewsHearOfTheCut()
{
    CommandStage stage({"A a", "B A*"});
    using Cells = QList<std::pair<int, int>>;
    const QSignalSpy changes(&stage.scene(), &Scene::drawingsChanged);
    const QSignalSpy pictures(&stage.scene(), &Scene::rectChanged);
    stage.stack().push(new CutPath(stage.mrScene(), stage.cell(1), leftOfA()));
    QCOMPARE(changes.size(), 1);
    const Cells shown{{1, 0}, {2, 0}, {2, 1}};
    QCOMPARE(changes.at(0).at(0).value<Cells>(), shown);
    QVERIFY(!pictures.isEmpty());
    stage.stack().undo();
    QCOMPARE(changes.size(), 2);
    QCOMPARE(changes.at(1).at(0).value<Cells>(), shown);
}

QTEST_MAIN(tst_CutPath)
#include "tst_cutpath.moc"
