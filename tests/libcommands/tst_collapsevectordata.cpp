#include "libcommands/collapsevectordata.h"

#include "commandstage.h"
#include "libcommands/cleardrawingmakingblank.h"
#include "libcommands/cutpath.h"
#include "libcommands/stroke.h"
#include "libmodel/base/settings.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"

#include <QPainterPath>
#include <QProgressDialog>
#include <QTest>
#include <QTimer>
#include <QWidget>

using namespace Model;
using Commands::CollapseVectorData;
using TestSupport::CommandStage;
using TestSupport::SceneSnapshot;

namespace {

const QUuid idA = QUuid::fromString(QStringLiteral("{0000000a-0000-4000-8000-000000000000}"));
const QUuid idB = QUuid::fromString(QStringLiteral("{0000000b-0000-4000-8000-000000000000}"));

std::unique_ptr<Stroke> block(QRect rect, int value = 90)
{
    QImage image(rect.size(), QImage::Format_Alpha8);
    image.fill(value);
    return std::make_unique<BitmapStroke>(image, rect);
}

/// The bitmap that a collapsed drawing consists of; null if it does not.
const BitmapStroke *bitmapOf(const StrokeDrawing &drawing)
{
    return drawing.strokes().count() == 1 ? dynamic_cast<const BitmapStroke *>(&drawing.strokes().at(0)) : nullptr;
}

} // namespace

class tst_CollapseVectorData : public QObject
{
    Q_OBJECT

private slots:
    void drawingBecomesOneBitmapOfItsLook();
    void bitmapHasTwiceTheBoundsWidthAndHeight();
    void whatLiesOutsideTheFrameComesAlong();
    void bitmapThatWouldBeHugeEndsAtTheReach();
    void collapsedDrawingIsCollapsedOnlyAfterAChange();
    void partOfACompositeKeepsToTheRules();
    void whichCellsCanBeCollapsed_data();
    void whichCellsCanBeCollapsed();
    void picturesAndPlacesWithoutACellCannotBeCollapsed();
    void holdIsCollapsedThroughItsOriginal();
    void undoBringsBackTheVeryDrawing();
    void undoGivesTheCopyIdBack();
    void redoGivesTheCopyIdOfTheLastUndoBack();
    void strokesBelowAndAboveGoBackAndForthExactly();
    void blankedByAnEarlierPartItDoesNothing();
    void cancelledCollapseLeavesTheDrawingAndNoStep();
    void cancelledCollapseLeavesTheOtherPartsOfAComposite();
    void progressIsShownOverTheWidget();
};

void tst_CollapseVectorData::drawingBecomesOneBitmapOfItsLook()
{
    CommandStage stage({"A"});
    stage.drawing(1).addStroke(block({5, 4, 20, 9}));
    const QImage before = stage.drawing(1).image().copy();
    QCOMPARE(stage.walk(new CollapseVectorData(stage.mrScene(), stage.cell(1), nullptr)), QString());
    QVERIFY(bitmapOf(stage.drawing(1)));
    QCOMPARE(stage.drawing(1).image(), before);
    QCOMPARE(stage.text(), QString("A"));
}

void tst_CollapseVectorData::bitmapHasTwiceTheBoundsWidthAndHeight()
{
    QCOMPARE(Settings::instance()->collapseScale(), 2);
    CommandStage stage({"A"});
    // A is 7 x 5 pixels at (3, 2).
    stage.stack().push(new CollapseVectorData(stage.mrScene(), stage.cell(1), nullptr));
    const BitmapStroke *bitmap = bitmapOf(stage.drawing(1));
    QVERIFY(bitmap);
    QCOMPARE(bitmap->boundingRect(), QRect(3, 2, 7, 5));
    QCOMPARE(bitmap->image().size(), QSize(14, 10));
}

void tst_CollapseVectorData::whatLiesOutsideTheFrameComesAlong()
{
    CommandStage stage({"A"});
    // Farther out than the frame of 48 x 32 is wide, and to be dragged back some day. A is 7 x 5 pixels at (3, 2).
    stage.drawing(1).addStroke(block({-100, 4, 160, 3}));
    stage.stack().push(new CollapseVectorData(stage.mrScene(), stage.cell(1), nullptr));
    const BitmapStroke *bitmap = bitmapOf(stage.drawing(1));
    QVERIFY(bitmap);
    QCOMPARE(bitmap->boundingRect(), QRect(QPoint(-100, 2), QPoint(59, 6)));
    QCOMPARE(bitmap->image().constScanLine(2 * (5 - 2))[2 * (-90 + 100)], uchar(90));
}

void tst_CollapseVectorData::bitmapThatWouldBeHugeEndsAtTheReach()
{
    CommandStage stage({"A"});
    // 2 x 5,000 by 2 x 3,202 pixels are just too many; those that are kept are the frame's and as many again around it.
    QImage image(5, 5, QImage::Format_Alpha8);
    image.fill(90);
    stage.drawing(1).addStroke(std::make_unique<BitmapStroke>(image, QRect(-100, -2, 5000, 3202)));
    QVERIFY(4LL * 5000 * 3202 > CollapseVectorData::mostPixels);
    stage.stack().push(new CollapseVectorData(stage.mrScene(), stage.cell(1), nullptr));
    const BitmapStroke *bitmap = bitmapOf(stage.drawing(1));
    QVERIFY(bitmap);
    QCOMPARE(bitmap->boundingRect(), QRect(-48, -2, 3 * 48, 2 * 32 + 2));
}

void tst_CollapseVectorData::collapsedDrawingIsCollapsedOnlyAfterAChange()
{
    CommandStage stage({"A"});
    const auto can = [&] { return CollapseVectorData::canCollapse(*stage.mrScene(), stage.cell(1)); };
    QVERIFY(can());
    stage.stack().push(new CollapseVectorData(stage.mrScene(), stage.cell(1), nullptr));
    QVERIFY(!can());
    QVERIFY(stage.isRefused(new CollapseVectorData(stage.mrScene(), stage.cell(1), nullptr)));
    stage.stack().push(new Commands::Stroke(stage.mrScene(), stage.cell(1), block({20, 2, 3, 3})));
    QVERIFY(can());
    stage.stack().undo();
    QVERIFY(!can());
    QPainterPath path;
    path.addRect(4, 3, 2, 2);
    stage.stack().push(new Commands::CutPath(stage.mrScene(), stage.cell(1), path));
    QVERIFY(can());
}

void tst_CollapseVectorData::partOfACompositeKeepsToTheRules()
{
    CommandStage stage({"A B A*"});
    const StrokeDrawing *shared = &stage.drawing(1);
    auto *composite = new QUndoCommand(QStringLiteral("Two at once"));
    new Commands::Stroke(stage.mrScene(), stage.cell(2), block({20, 2, 3, 3}), composite);
    new CollapseVectorData(stage.mrScene(), stage.cell(1), nullptr, composite);
    QCOMPARE(stage.walk(composite), QString());
    // It is shown elsewhere, and stays.
    QCOMPARE(&stage.drawing(1), shared);
    QCOMPARE(stage.drawing(1).strokes().count(), 1);
    QCOMPARE(bitmapOf(stage.drawing(1))->image().size(), QSize(7, 5));
}

void tst_CollapseVectorData::whichCellsCanBeCollapsed_data()
{
    QTest::addColumn<QStringList>("layers");
    QTest::addColumn<int>("frameId");
    QTest::addColumn<bool>("can");
    QTest::newRow("original") << QStringList{"A B"} << 1 << true;
    QTest::newRow("original with holds") << QStringList{"A a a"} << 1 << true;
    QTest::newRow("hold") << QStringList{"A a a"} << 3 << true;
    QTest::newRow("blank") << QStringList{"_ B"} << 1 << false;
    QTest::newRow("hold of a blank") << QStringList{"_ ."} << 2 << false;
    QTest::newRow("original with a distant clone") << QStringList{"A B A*"} << 1 << false;
    QTest::newRow("hold of such") << QStringList{"A a A*"} << 2 << false;
    QTest::newRow("distant clone") << QStringList{"A B A*"} << 3 << false;
    QTest::newRow("hold of a distant clone") << QStringList{"A A* a"} << 3 << false;
    QTest::newRow("distant clone in another layer") << QStringList{"A", "A*"} << 1 << false;
    QTest::newRow("beside a distant clone") << QStringList{"A B A*"} << 2 << true;
}

void tst_CollapseVectorData::whichCellsCanBeCollapsed()
{
    QFETCH(QStringList, layers);
    QFETCH(int, frameId);
    QFETCH(bool, can);
    CommandStage stage(layers);
    const QModelIndex cell = stage.cell(frameId);
    QCOMPARE(CollapseVectorData::canCollapse(*stage.mrScene(), cell), can);
    QCOMPARE(CollapseVectorData(stage.mrScene(), cell, nullptr).isObsolete(), !can);
    if (!can)
        QVERIFY(stage.isRefused(new CollapseVectorData(stage.mrScene(), cell, nullptr)));
}

void tst_CollapseVectorData::picturesAndPlacesWithoutACellCannotBeCollapsed()
{
    CommandStage stage({"A"});
    const int pictures = stage.scene().insertLayer(std::make_shared<ReferenceLayer>(TestSupport::stageFrame), 0);
    for (const QModelIndex &cell : {stage.cell(1, pictures), stage.cell(2, 1), stage.cell(1, 2), stage.cell(1, 3),
                                    stage.cell(0, 1), stage.cell(1, -1), QModelIndex()}) {
        QVERIFY(!CollapseVectorData::canCollapse(*stage.mrScene(), cell));
        QVERIFY(CollapseVectorData(stage.mrScene(), cell, nullptr).isObsolete());
    }
    QVERIFY(CollapseVectorData::canCollapse(*stage.mrScene(), stage.cell(1, 1)));
}

void tst_CollapseVectorData::holdIsCollapsedThroughItsOriginal()
{
    CommandStage stage({"A B b b C"});
    QCOMPARE(stage.walk(new CollapseVectorData(stage.mrScene(), stage.cell(4), nullptr)), QString());
    QCOMPARE(stage.text(), QString("A B b b C"));
    QVERIFY(bitmapOf(stage.drawing(2)));
    QCOMPARE(&stage.drawing(4), &stage.drawing(2));
    QCOMPARE(bitmapOf(stage.drawing(2))->image().size(), QSize(14, 10));
    // The letters' own blocks are as they were.
    QCOMPARE(bitmapOf(stage.drawing(1))->image().size(), QSize(7, 5));
}

void tst_CollapseVectorData::undoBringsBackTheVeryDrawing()
{
    CommandStage stage({"A a"});
    const StrokeDrawing *before = &stage.drawing(1);
    stage.stack().push(new CollapseVectorData(stage.mrScene(), stage.cell(1), nullptr));
    const StrokeDrawing *collapsed = &stage.drawing(1);
    QVERIFY(collapsed != before);
    stage.stack().undo();
    QCOMPARE(&stage.drawing(1), before);
    QCOMPARE(&stage.drawing(2), before);
    stage.stack().redo();
    QCOMPARE(&stage.drawing(2), collapsed);
}

void tst_CollapseVectorData::undoGivesTheCopyIdBack()
{
    CommandStage stage({"A"});
    stage.drawing(1).setCopyId(idA);
    stage.stack().push(new CollapseVectorData(stage.mrScene(), stage.cell(1), nullptr));
    QVERIFY(stage.drawing(1).copyId().isNull());
    stage.stack().undo();
    QCOMPARE(stage.drawing(1).copyId(), idA);
}

void tst_CollapseVectorData::redoGivesTheCopyIdOfTheLastUndoBack()
{
    CommandStage stage({"A"});
    stage.stack().push(new CollapseVectorData(stage.mrScene(), stage.cell(1), nullptr));
    stage.drawing(1).setCopyId(idB); // it was copied in this state
    for (int round = 0; round < 2; ++round) {
        stage.stack().undo();
        QVERIFY(stage.drawing(1).copyId().isNull());
        stage.stack().redo();
        QCOMPARE(stage.drawing(1).copyId(), idB);
    }
}

void tst_CollapseVectorData::strokesBelowAndAboveGoBackAndForthExactly()
{
    CommandStage stage({"A a"});
    QList<SceneSnapshot> states{stage.snapshot()};
    const auto push = [&](QUndoCommand *command) {
        stage.stack().push(command);
        states.append(stage.snapshot());
        QCOMPARE(stage.stack().index(), states.size() - 1);
    };
    push(new Commands::Stroke(stage.mrScene(), stage.cell(1), block({2, 2, 12, 9})));
    push(new CollapseVectorData(stage.mrScene(), stage.cell(2), nullptr));
    push(new Commands::Stroke(stage.mrScene(), stage.cell(1), block({0, 3, 30, 3})));
    push(new CollapseVectorData(stage.mrScene(), stage.cell(1), nullptr));
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

void tst_CollapseVectorData::blankedByAnEarlierPartItDoesNothing()
{
    CommandStage stage({"A"});
    auto *composite = new QUndoCommand(QStringLiteral("Two at once"));
    new Commands::ClearDrawingMakingBlank(stage.mrScene(), stage.cell(1), composite);
    new CollapseVectorData(stage.mrScene(), stage.cell(1), nullptr, composite);
    QCOMPARE(stage.walk(composite), QString());
    QCOMPARE(stage.text(), QString("_"));
}

namespace {

/// Presses the button of the progress dialog of \a widget, as soon as there is one and it handles events.
class Canceller
{
public:
    explicit Canceller(QWidget &widget)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, &widget] {
            auto *dialog = widget.findChild<QProgressDialog *>();
            if (!dialog)
                return;
            m_label = dialog->labelText();
            m_isModal = dialog->windowModality() == Qt::WindowModal;
            m_isFixed = dialog->minimumSize() == dialog->maximumSize();
            m_delayMs = dialog->minimumDuration();
            dialog->cancel();
        });
        m_timer.start(0);
    }

    [[nodiscard]] QString label() const { return m_label; }
    [[nodiscard]] bool isModal() const { return m_isModal; }
    [[nodiscard]] bool isFixed() const { return m_isFixed; }
    [[nodiscard]] int delayMs() const { return m_delayMs; }

private:
    QTimer m_timer;
    QString m_label;
    bool m_isModal = false;
    bool m_isFixed = false;
    int m_delayMs = -1;
};

/// Gives a drawing so many strokes that its collapse takes a while.
void fill(StrokeDrawing &drawing)
{
    for (int i = 0; i < 200; ++i)
        drawing.addStroke(block({i % 40, i % 30, 5, 5}, 10));
}

} // namespace

void tst_CollapseVectorData::cancelledCollapseLeavesTheDrawingAndNoStep()
{
    CommandStage stage({"A"});
    fill(stage.drawing(1));
    const StrokeDrawing *before = &stage.drawing(1);
    QWidget window;
    const Canceller canceller(window);
    QVERIFY(stage.drops(new CollapseVectorData(stage.mrScene(), stage.cell(1), &window)));
    QCOMPARE(&stage.drawing(1), before);
    QVERIFY(!window.findChild<QProgressDialog *>());
}

void tst_CollapseVectorData::cancelledCollapseLeavesTheOtherPartsOfAComposite()
{
    CommandStage stage({"A"});
    fill(stage.drawing(1));
    QWidget window;
    auto *composite = new QUndoCommand(QStringLiteral("Two at once"));
    new Commands::Stroke(stage.mrScene(), stage.cell(1), block({20, 20, 5, 5}), composite);
    new CollapseVectorData(stage.mrScene(), stage.cell(1), &window, composite);
    {
        const Canceller canceller(window);
        stage.stack().push(composite);
    }
    // A, 200 blocks and the one of the composite.
    QCOMPARE(stage.drawing(1).strokes().count(), 202);
    const SceneSnapshot after = stage.snapshot();
    stage.stack().undo();
    QCOMPARE(stage.drawing(1).strokes().count(), 201);
    stage.stack().redo();
    QCOMPARE(after.diff(stage.snapshot()), QString());
}

void tst_CollapseVectorData::progressIsShownOverTheWidget()
{
    CommandStage stage({"A"});
    fill(stage.drawing(1));
    QWidget window;
    const Canceller canceller(window);
    QVERIFY(stage.drops(new CollapseVectorData(stage.mrScene(), stage.cell(1), &window)));
    QCOMPARE(canceller.label(), QString("Collapsing current drawing"));
    QVERIFY(canceller.isModal());
    QVERIFY(canceller.isFixed());
    QCOMPARE(canceller.delayMs(), 2000);
}

QTEST_MAIN(tst_CollapseVectorData)
#include "tst_collapsevectordata.moc"
