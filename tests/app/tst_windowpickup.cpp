#include "app/pickup.h"
#include "floatingfixture.h"

#include "libmodel/base/settings.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/dialogs/collapsedialog.h"
#include "libui/paper/viewtransform.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QTest>
#include <QTimer>
#include <QUndoStack>

using Model::Settings;
using Model::Tool;

namespace {

/// Answers the question whether to collapse, as soon as it is asked.
class CollapseAnswer : public QObject
{
public:
    enum Answer { Yes, YesForEver, No };

    explicit CollapseAnswer(Answer answer) : m_answer(answer) { qApp->installEventFilter(this); }

    int count() const { return m_count; }

private:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        auto *dialog = qobject_cast<UI::CollapseDialog *>(object);
        if (!dialog || event->type() != QEvent::Show)
            return false;
        ++m_count;
        QTimer::singleShot(0, dialog, [this, dialog] {
            if (m_answer == YesForEver)
                dialog->findChild<QCheckBox *>()->setChecked(true);
            if (m_answer == No)
                dialog->reject();
            else
                dialog->accept();
        });
        return false;
    }

    Answer m_answer;
    int m_count = 0;
};

/// Pixels of \a image (coverage) with any ink in \a rect.
int inkedPixels(const QImage &image, const QRect &rect)
{
    int inked = 0;
    const QRect looked = rect & image.rect();
    for (int y = looked.top(); y <= looked.bottom(); ++y) {
        for (int x = looked.left(); x <= looked.right(); ++x)
            inked += image.constScanLine(y)[x] > 0 ? 1 : 0;
    }
    return inked;
}

} // namespace

/// Lasso, cutter and all of a drawing in the real window.
class tst_WindowPickUp : public FloatingFixture
{
    Q_OBJECT

private slots:
    void cleanup();

    void lassoAroundNothingIsNoSelectionNoCommandAndNoToolChange();
    void lassoThatEnclosesNothingDoesNothing_data();
    void lassoThatEnclosesNothingDoesNothing();
    void lassoLetsACopyFloat();
    void cutterTakesWhatItEncirclesOut();
    void selectionHoldsOnlyWhatWasEncircled();
    void pickingUpIsOneUndoStep_data();
    void pickingUpIsOneUndoStep();
    void selectionIsAPictureOnTheClipboard();
    void crossedLassoPicksUpBothItsLoops();
    void cutOnAHoldIsOneOfItsOriginal();
    void cutOnADistantCloneIsOneOfItsOriginal();
    void behindTheLastCellThereIsNothingToPickUp();
    void allOfADrawingIsPickedUp();
    void allIsPickedUpWithABorrowedToolInTheHand();
    void allIsPickedUpOverWhatFloats();
    void allOfAHoldLeavesTheOthersTheirDrawing();
    void nothingIsPickedUpFromAHiddenLayer();
    void nothingIsPickedUpFromAReferenceLayer();
    void escapeGivesALassoUp();
    void lassoLeavesPlaybackBehind();
    void lightDrawingIsNoQuestion();
    void heavyDrawingIsAQuestion_data();
    void heavyDrawingIsAQuestion();
    void heavyDrawingIsCollapsedWithoutAQuestionIfThatWasSaidOnce();
    void cutAndCollapseAreOneUndoStep();
    void drawingIsCollapsedByHand();
    void drawingShownElsewhereIsNotCollapsed();
    void heavyDrawingShownElsewhereIsNotCollapsed();
    void collapsedDrawingIsNotCollapsedAgain();
    void nothingElseHappensWhileADrawingIsCollapsed();
    void penBeingAdjustedIsThePenAgain_data();
    void penBeingAdjustedIsThePenAgain();
    void nothingIsPickedUpOverACutThatCannotBePutDown();

private:
    QRect paperRectOf(QRect fromMiddle) const;
    QStringList partsOfLastStep() const;
    PickUp &pickUp() const { return *m_window->findChild<PickUp *>(); }
};

void tst_WindowPickUp::cleanup()
{
    Settings::instance()->setCollapseAutomatically(false);
    FloatingFixture::cleanup();
}

/// What \a fromMiddle (widget pixels from the paper's middle) covers of the sheet.
QRect tst_WindowPickUp::paperRectOf(QRect fromMiddle) const
{
    return paper()
        ->view()
        .widgetToPaper()
        .mapRect(QRectF(fromMiddle.translated(paper()->rect().center())))
        .toAlignedRect();
}

QStringList tst_WindowPickUp::partsOfLastStep() const
{
    QStringList texts;
    const QUndoCommand *step = scene()->undoStack()->command(steps() - 1);
    for (int i = 0; step && i < step->childCount(); ++i)
        texts << step->child(i)->text();
    return texts;
}

void tst_WindowPickUp::lassoAroundNothingIsNoSelectionNoCommandAndNoToolChange()
{
    QGuiApplication::clipboard()->setText(QStringLiteral("kept"));
    for (const MR::Action which : {MR::Action::Lasso, MR::Action::Cutter}) {
        lead(which, {-300, 100, 200, 60});
        QVERIFY(selection().isNull());
        QCOMPARE(steps(), 0);
        QVERIFY(action(which)->isChecked());
    }
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("kept"));
}

void tst_WindowPickUp::lassoThatEnclosesNothingDoesNothing_data()
{
    QTest::addColumn<QList<QPoint>>("way");
    QTest::newRow("tap") << QList<QPoint>{{0, 0}};
    QTest::newRow("straight line") << QList<QPoint>{{-80, 10}, {-40, 10}, {0, 10}, {40, 10}, {80, 10}};
    QTest::newRow("to and fro") << QList<QPoint>{{0, -80}, {0, -40}, {0, 40}, {0, -40}, {0, -80}};
}

void tst_WindowPickUp::lassoThatEnclosesNothingDoesNothing()
{
    QFETCH(QList<QPoint>, way);
    for (const MR::Action which : {MR::Action::Lasso, MR::Action::Cutter}) {
        const QImage before = ink();
        action(which)->trigger();
        press(paperPoint(way.first().x(), way.first().y()));
        for (const QPoint at : way)
            moveTo(paperPoint(at.x(), at.y()));
        release(paperPoint(way.last().x(), way.last().y()));
        QVERIFY(selection().isNull());
        QCOMPARE(steps(), 0);
        QCOMPARE(ink(), before);
    }
}

void tst_WindowPickUp::lassoLetsACopyFloat()
{
    const QImage before = ink();
    lasso(rightHalf());
    QVERIFY(floats());
    QVERIFY(!selection().isCutOut());
    QCOMPARE(tool(), Tool::Type::FloatingSelection);
    QVERIFY(action(MR::Action::FloatingSelection)->isChecked());
    QCOMPARE(steps(), 1);
    QCOMPARE(undoText(), QStringLiteral("New Floating Selection"));
    QCOMPARE(ink(), before);
}

void tst_WindowPickUp::cutterTakesWhatItEncirclesOut()
{
    const QImage before = ink();
    cutter(rightHalf());
    QVERIFY(floats());
    QVERIFY(selection().isCutOut());
    const QRect cut = paperRectOf(rightHalf());
    const QImage after = ink();
    // The line's own end is soft; a pixel or two of the lasso's are shared.
    QCOMPARE(inkedPixels(after, cut.adjusted(12, 12, -12, -12)), 0);
    const QRect kept(QPoint(0, 0), QPoint(cut.left() - 12, before.height() - 1));
    QVERIFY(inkedPixels(before, kept) > 0);
    QCOMPARE(after.copy(kept), before.copy(kept));
    // It is still one line, masked, and no two.
    QCOMPARE(partsOfLastStep(), QStringList({"Create floating selection", "Cutout", "Change tool type"}));
}

void tst_WindowPickUp::selectionHoldsOnlyWhatWasEncircled()
{
    cutter(rightHalf());
    const QRect cut = paperRectOf(rightHalf());
    const QImage image = selection().image();
    const QRect where = selection().imageRect();
    QVERIFY(inkedPixels(image, image.rect()) > 0);
    // Left of the lasso nothing came along.
    const QRect left(QPoint(where.left(), where.top()), QPoint(cut.left() - 3, where.bottom()));
    QCOMPARE(inkedPixels(image, left.translated(-where.topLeft())), 0);
}

void tst_WindowPickUp::pickingUpIsOneUndoStep_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::newRow("lasso") << MR::Action::Lasso;
    QTest::newRow("cutter") << MR::Action::Cutter;
    QTest::newRow("all") << MR::Action::PickUpAllOfThisDrawing;
}

void tst_WindowPickUp::pickingUpIsOneUndoStep()
{
    QFETCH(MR::Action, which);
    const QImage before = ink();
    if (which == MR::Action::PickUpAllOfThisDrawing)
        action(which)->trigger();
    else
        lead(which, rightHalf());
    const QImage after = ink();
    QVERIFY(floats());
    const Tool::Type toolBefore = which == MR::Action::Lasso    ? Tool::Type::Lasso
                                  : which == MR::Action::Cutter ? Tool::Type::Cutter
                                                                : Tool::Type::Pen;
    for (int i = 0; i < 2; ++i) {
        action(MR::Action::Undo)->trigger();
        QCOMPARE(steps(), 0);
        QVERIFY(!floats() && selection().isNull());
        QCOMPARE(tool(), toolBefore);
        QCOMPARE(ink(), before);
        action(MR::Action::Redo)->trigger();
        QCOMPARE(steps(), 1);
        QVERIFY(floats());
        QCOMPARE(ink(), after);
    }
}

void tst_WindowPickUp::selectionIsAPictureOnTheClipboard()
{
    lasso(wholeLine());
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    QVERIFY(data->hasImage());
    const auto picture = qvariant_cast<QImage>(data->imageData());
    QCOMPARE(picture.format(), QImage::Format_RGB32);
    QCOMPARE(picture.size(), selection().image().size());
    const QColor color = dynamic_cast<const Model::StrokeLayer &>(*scene()->layer(0)).color();
    int inked = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int coverage = selection().image().constScanLine(y)[x];
            const auto onWhite = [coverage](int channel) { return 255 - (255 - channel) * coverage / 255; };
            const QRgb pixel = picture.pixel(x, y);
            QVERIFY2(std::abs(qRed(pixel) - onWhite(color.red())) <= 2 &&
                         std::abs(qGreen(pixel) - onWhite(color.green())) <= 2 &&
                         std::abs(qBlue(pixel) - onWhite(color.blue())) <= 2,
                     qPrintable(QStringLiteral("%1 %2").arg(x).arg(y)));
            inked += coverage > 0 ? 1 : 0;
        }
    }
    QVERIFY(inked > 100);
}

void tst_WindowPickUp::crossedLassoPicksUpBothItsLoops()
{
    const QImage before = ink();
    action(MR::Action::Cutter)->trigger();
    // An eight on its side, whose loops lie around the line's ends.
    const QList<QPoint> way = {{-110, -60}, {-110, 80}, {-70, 80}, {0, 0}, {70, -60},
                               {110, -60},  {110, 80},  {70, 80},  {0, 0}, {-70, -60}};
    press(paperPoint(-110, -60));
    for (qsizetype i = 0; i < way.size(); ++i) {
        const QPoint from = way[i];
        const QPoint to = way[(i + 1) % way.size()];
        for (int piece = 1; piece <= 6; ++piece) {
            const QPoint at = from + (to - from) * piece / 6;
            moveTo(paperPoint(at.x(), at.y()));
        }
    }
    release(paperPoint(-110, -60));
    QVERIFY(floats());
    QVERIFY(inkedPixels(ink(), paperRectOf({-80, -20, 40, 60})) < inkedPixels(before, paperRectOf({-80, -20, 40, 60})));
    QVERIFY(inkedPixels(ink(), paperRectOf({40, -20, 40, 60})) < inkedPixels(before, paperRectOf({40, -20, 40, 60})));
}

void tst_WindowPickUp::cutOnAHoldIsOneOfItsOriginal()
{
    makeCells("o--");
    goTo(3);
    const QImage before = ink(1);
    cutter(rightHalf());
    QVERIFY(floats());
    QCOMPARE(cells(), QByteArray("o--"));
    QVERIFY(ink(1) != before);
    QCOMPARE(ink(3), ink(1));
    action(MR::Action::Undo)->trigger();
    QCOMPARE(ink(1), before);
    QCOMPARE(ink(3), before);
}

void tst_WindowPickUp::cutOnADistantCloneIsOneOfItsOriginal()
{
    makeCells("oo");
    scene()->makeDistantClone(0, 2, scene()->originOfFrame(0, 1));
    QCOMPARE(cells(), QByteArray("od"));
    scene()->undoStack()->clear();
    goTo(2);
    const QImage before = ink(1);
    cutter(rightHalf());
    QCOMPARE(cells(), QByteArray("od"));
    QVERIFY(ink(1) != before);
    QCOMPARE(ink(2), ink(1));
    action(MR::Action::Undo)->trigger();
    QCOMPARE(ink(1), before);
    QCOMPARE(ink(2), before);
}

void tst_WindowPickUp::behindTheLastCellThereIsNothingToPickUp()
{
    goTo(2);
    QVERIFY(action(MR::Action::Lasso)->isEnabled());
    QVERIFY(!action(MR::Action::PickUpAllOfThisDrawing)->isEnabled());
    lasso(wholeLine());
    QVERIFY(selection().isNull());
    QCOMPARE(steps(), 0);
}

void tst_WindowPickUp::allOfADrawingIsPickedUp()
{
    const QImage before = ink();
    key(Qt::Key_A);
    QVERIFY(floats());
    QVERIFY(selection().isCutOut());
    QVERIFY(drawing().isEmpty());
    QCOMPARE(undoText(), QStringLiteral("New Floating Selection"));
    key(Qt::Key_Return);
    QVERIFY(!floats());
    QVERIFY(difference(ink(), before) <= 2);
}

void tst_WindowPickUp::allIsPickedUpWithABorrowedToolInTheHand()
{
    action(MR::Action::Pan)->trigger();
    QCOMPARE(tool(), Tool::Type::Hand);
    action(MR::Action::PickUpAllOfThisDrawing)->trigger();
    QVERIFY(floats());
    QCOMPARE(tool(), Tool::Type::FloatingSelection);
    // Back to what was chosen, not to what was borrowed.
    action(MR::Action::Undo)->trigger();
    QCOMPARE(tool(), Tool::Type::Pen);
}

void tst_WindowPickUp::allIsPickedUpOverWhatFloats()
{
    const QImage before = ink();
    cutter(rightHalf());
    QVERIFY(selection().isCutOut());
    const QImage cut = ink();
    action(MR::Action::PickUpAllOfThisDrawing)->trigger();
    // What was cut out first was stamped, and came along, all in one step.
    QVERIFY(floats());
    QVERIFY(drawing().isEmpty());
    QCOMPARE(steps(), 2);
    QCOMPARE(undoText(), QStringLiteral("New Floating Selection"));
    action(MR::Action::Undo)->trigger();
    QCOMPARE(steps(), 1);
    QVERIFY(floats() && selection().isCutOut());
    QCOMPARE(ink(), cut);
    action(MR::Action::Redo)->trigger();
    QVERIFY(floats());
    QVERIFY(drawing().isEmpty());
    action(MR::Action::StampFloatingSelection)->trigger();
    QVERIFY(difference(ink(), before) <= 60); // along the cut
    int missing = 0;
    const QImage after = ink();
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x)
            missing += std::abs(before.constScanLine(y)[x] - after.constScanLine(y)[x]) > 2 ? 1 : 0;
    }
    QVERIFY2(missing < 100, qPrintable(QString::number(missing)));
}

void tst_WindowPickUp::allOfAHoldLeavesTheOthersTheirDrawing()
{
    makeCells("o--");
    const QImage before = ink(1);
    goTo(3);
    action(MR::Action::PickUpAllOfThisDrawing)->trigger();
    QVERIFY(floats());
    QCOMPARE(cells(), QByteArray("o-o"));
    QCOMPARE(ink(1), before);
    QVERIFY(drawing(3).isEmpty());
}

void tst_WindowPickUp::nothingIsPickedUpFromAHiddenLayer()
{
    scene()->setLayerVisible(0, false);
    for (const MR::Action which : {MR::Action::Lasso, MR::Action::Cutter, MR::Action::PickUpAllOfThisDrawing}) {
        QVERIFY(!action(which)->isEnabled());
        QVERIFY(action(which)->toolTip().endsWith("layer that is shown"));
    }
    // Somebody has the lasso in the hand already.
    Model::ToolManager::instance()->setCurrentTool(Tool::Type::Lasso, 0);
    press(paperPoint(-120, -60));
    QVERIFY(!paper()->isPickingUp());
    for (const QPoint at : {QPoint(120, -60), QPoint(120, 60), QPoint(-120, 60), QPoint(-120, -60)})
        moveTo(paperPoint(at.x(), at.y()));
    release(paperPoint(-120, -60));
    QVERIFY(selection().isNull());
    QCOMPARE(steps(), 0);
    QCOMPARE(paper()->cursor().shape(), Qt::ForbiddenCursor);
    scene()->setLayerVisible(0, true);
    moveTo(paperPoint(0, 50));
    QVERIFY(paper()->cursor().shape() != Qt::ForbiddenCursor);
    QVERIFY(action(MR::Action::Lasso)->isEnabled());
}

void tst_WindowPickUp::nothingIsPickedUpFromAReferenceLayer()
{
    const int reference = addReferenceLayer();
    goTo(1, reference);
    for (const MR::Action which :
         {MR::Action::Lasso, MR::Action::Cutter, MR::Action::PickUpAllOfThisDrawing, MR::Action::CollapseVectorData})
        QVERIFY(!action(which)->isEnabled());
    goTo(1, 0);
    for (const MR::Action which :
         {MR::Action::Lasso, MR::Action::Cutter, MR::Action::PickUpAllOfThisDrawing, MR::Action::CollapseVectorData})
        QVERIFY(action(which)->isEnabled());
}

void tst_WindowPickUp::escapeGivesALassoUp()
{
    for (const MR::Action which : {MR::Action::Lasso, MR::Action::Cutter}) {
        action(which)->trigger();
        press(paperPoint(-120, -60));
        for (const QPoint at : {QPoint(120, -60), QPoint(120, 60), QPoint(-120, 60)})
            moveTo(paperPoint(at.x(), at.y()));
        QVERIFY(paper()->isPickingUp());
        key(Qt::Key_Escape);
        QVERIFY(!paper()->isPickingUp());
        release(paperPoint(-120, -60));
        QVERIFY(selection().isNull());
        QCOMPARE(steps(), 0);
        QVERIFY(action(which)->isChecked());
    }
}

void tst_WindowPickUp::lassoLeavesPlaybackBehind()
{
    makeCells("o-o");
    action(MR::Action::Lasso)->trigger();
    action(MR::Action::Play)->trigger();
    QTRY_VERIFY(scene()->scrubFrame() > 0);
    lead(MR::Action::Lasso, wholeLine());
    QCOMPARE(scene()->scrubFrame(), -1);
    QVERIFY(floats());
}

void tst_WindowPickUp::lightDrawingIsNoQuestion()
{
    const CollapseAnswer answer(CollapseAnswer::Yes);
    lasso(wholeLine());
    QCOMPARE(answer.count(), 0);
    QVERIFY(!selection().collapsesOnStamp());
}

void tst_WindowPickUp::heavyDrawingIsAQuestion_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("collapses");
    QTest::addColumn<bool>("isStored");
    QTest::newRow("yes") << int(CollapseAnswer::Yes) << true << false;
    QTest::newRow("yes, for ever") << int(CollapseAnswer::YesForEver) << true << true;
    QTest::newRow("no") << int(CollapseAnswer::No) << false << false;
}

void tst_WindowPickUp::heavyDrawingIsAQuestion()
{
    QFETCH(int, answer);
    QFETCH(bool, collapses);
    QFETCH(bool, isStored);
    const CollapseAnswer answers{CollapseAnswer::Answer(answer)};
    pickUp().setHeavyLimit(-1);
    lasso(wholeLine());
    QCOMPARE(answers.count(), 1);
    QVERIFY(floats());
    QCOMPARE(selection().collapsesOnStamp(), collapses);
    QCOMPARE(partsOfLastStep().contains(QStringLiteral("Collapse Vector Data")), collapses);
    QCOMPARE(Settings::instance()->collapseAutomatically(), isStored);
    QCOMPARE(action(MR::Action::CollapseVectorDataAutomatically)->isChecked(), isStored);
    QCOMPARE(steps(), 1);
}

void tst_WindowPickUp::heavyDrawingIsCollapsedWithoutAQuestionIfThatWasSaidOnce()
{
    const CollapseAnswer answer(CollapseAnswer::No);
    action(MR::Action::CollapseVectorDataAutomatically)->trigger();
    QVERIFY(Settings::instance()->collapseAutomatically());
    pickUp().setHeavyLimit(-1);
    lasso(wholeLine());
    QCOMPARE(answer.count(), 0);
    QVERIFY(selection().collapsesOnStamp());
}

void tst_WindowPickUp::cutAndCollapseAreOneUndoStep()
{
    Settings::instance()->setCollapseAutomatically(true);
    pickUp().setHeavyLimit(-1);
    const QImage before = ink();
    cutter(rightHalf());
    QCOMPARE(partsOfLastStep(),
             QStringList({"Create floating selection", "Cutout", "Collapse Vector Data", "Change tool type"}));
    QCOMPARE(steps(), 1);
    const QImage after = ink();
    action(MR::Action::Undo)->trigger();
    QCOMPARE(ink(), before);
    action(MR::Action::Redo)->trigger();
    QCOMPARE(ink(), after);
}

void tst_WindowPickUp::drawingIsCollapsedByHand()
{
    const QImage before = ink();
    drawLine();
    drawLine();
    const QImage three = ink();
    QVERIFY(drawing().strokes().recursiveCount() > 2);
    const CollapseAnswer answer(CollapseAnswer::No);
    key(Qt::Key_B, Qt::ControlModifier);
    QCOMPARE(answer.count(), 0);
    QCOMPARE(undoText(), QStringLiteral("Collapse Vector Data"));
    // A bitmap in its compound.
    QCOMPARE(drawing().strokes().recursiveCount(), 2);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(ink(), three);
    QVERIFY(three != before);
}

void tst_WindowPickUp::drawingShownElsewhereIsNotCollapsed()
{
    makeCells("oo");
    scene()->makeDistantClone(0, 2, scene()->originOfFrame(0, 1));
    goTo(2);
    QVERIFY(!action(MR::Action::CollapseVectorData)->isEnabled());
    QVERIFY(action(MR::Action::CollapseVectorData)->toolTip().endsWith("shown elsewhere"));
    goTo(1);
    QVERIFY(!action(MR::Action::CollapseVectorData)->isEnabled());
    makeCells("oo");
}

void tst_WindowPickUp::heavyDrawingShownElsewhereIsNotCollapsed()
{
    makeCells("oo");
    scene()->makeDistantClone(0, 2, scene()->originOfFrame(0, 1));
    scene()->undoStack()->clear();
    Settings::instance()->setCollapseAutomatically(true);
    pickUp().setHeavyLimit(-1);
    const Model::Drawing *before = scene()->item(0, 1)->drawing.get();
    lasso(wholeLine());
    QVERIFY(floats() && selection().collapsesOnStamp());
    QCOMPARE(scene()->item(0, 1)->drawing.get(), before);
}

void tst_WindowPickUp::collapsedDrawingIsNotCollapsedAgain()
{
    QVERIFY(action(MR::Action::CollapseVectorData)->isEnabled());
    action(MR::Action::CollapseVectorData)->trigger();
    QVERIFY(!action(MR::Action::CollapseVectorData)->isEnabled());
    QVERIFY(action(MR::Action::CollapseVectorData)->toolTip().contains("bitmap"));
    QCOMPARE(steps(), 1);
    pickUp().collapse();
    QCOMPARE(steps(), 1);
    drawLine();
    QVERIFY(action(MR::Action::CollapseVectorData)->isEnabled());
    action(MR::Action::Undo)->trigger();
    QVERIFY(!action(MR::Action::CollapseVectorData)->isEnabled());
}

/// What goes on in the event loop of its progress must find the scene and the undo stack let alone.
void tst_WindowPickUp::nothingElseHappensWhileADrawingIsCollapsed()
{
    scene()->setFilename(m_folder->filePath(QStringLiteral("collapsed.mr")));
    bool hasLooked = false;
    bool canUndo = true;
    bool canClose = true;
    bool canSave = true;
    QTimer::singleShot(0, this, [&] {
        hasLooked = true;
        canUndo = action(MR::Action::Undo)->isEnabled();
        canClose = canUndo || m_window->close();
        canSave = canUndo || m_window->saveScene();
        key(Qt::Key_A);
    });
    action(MR::Action::CollapseVectorData)->trigger();
    QVERIFY(hasLooked);
    QVERIFY(!canUndo && !canClose && !canSave);
    QCOMPARE(steps(), 1);
    QVERIFY(!floats());
    QVERIFY(action(MR::Action::Undo)->isEnabled());
    QVERIFY(m_window->saveScene());
}

void tst_WindowPickUp::penBeingAdjustedIsThePenAgain_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::newRow("all is picked up") << MR::Action::PickUpAllOfThisDrawing;
    QTest::newRow("the latest selection is got back") << MR::Action::GetLatestFloatingSelectionBack;
    QTest::newRow("the selection floats again") << MR::Action::FloatingSelection;
}

void tst_WindowPickUp::penBeingAdjustedIsThePenAgain()
{
    QFETCH(MR::Action, which);
    if (which != MR::Action::PickUpAllOfThisDrawing) {
        lasso(wholeLine());
        action(MR::Action::StampFloatingSelectionKeepFloating)->trigger();
        action(which == MR::Action::FloatingSelection ? MR::Action::Draw : MR::Action::DropFloatingSelection)
            ->trigger();
        // Behind a step of another kind, with which it cannot merge.
        action(MR::Action::AddBlankDrawing)->trigger();
        goTo(1);
    }
    QTest::mousePress(paper(), Qt::LeftButton, Qt::ControlModifier, paperPoint(-200, -200));
    QCOMPARE(tool(), Tool::Type::PenAdjustment);
    action(which)->trigger();
    QVERIFY(floats());
    QCOMPARE(tool(), Tool::Type::FloatingSelection);
    release(paperPoint(-200, -200));
    QVERIFY(floats());
    action(MR::Action::Undo)->trigger();
    QCOMPARE(tool(), Tool::Type::Pen);
    action(MR::Action::Redo)->trigger();
    QVERIFY(floats());
}

void tst_WindowPickUp::nothingIsPickedUpOverACutThatCannotBePutDown()
{
    cutter(rightHalf());
    // Out of sight with its strokes nowhere else, as no user's way leads to.
    Model::ToolManager::instance()->setCurrentTool(Tool::Type::Lasso, 0);
    QVERIFY(!floats() && selection().isCutOut());
    const QImage cut = ink();
    lasso(wholeLine());
    QVERIFY(floats());
    QVERIFY(ink() != cut);
    QCOMPARE(steps(), 2);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(ink(), cut);
    QVERIFY(selection().isCutOut());
}

QTEST_MAIN(tst_WindowPickUp)
#include "tst_windowpickup.moc"
