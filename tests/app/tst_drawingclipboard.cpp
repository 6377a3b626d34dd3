#include "app/drawingclipboard.h"
#include "floatingfixture.h"

#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/drawingclip.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/toolmanager.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

namespace {

QClipboard *clipboard()
{
    return QGuiApplication::clipboard();
}

/// Tells which of its formats are asked for, as another program's data would be fetched from it.
class WatchedData : public QMimeData
{
public:
    explicit WatchedData(const QByteArray &clip = {}) : m_clip(clip) {}
    QStringList formats() const override { return {QString(Model::DrawingClip::mimeType)}; }
    int fetched() const { return m_fetched; }

protected:
    QVariant retrieveData(const QString &, QMetaType) const override
    {
        ++m_fetched;
        return m_clip;
    }

private:
    QByteArray m_clip;
    mutable int m_fetched = 0;
};

} // namespace

/// Cut, copy and paste in the real window.
class tst_DrawingClipboard : public FloatingFixture
{
    Q_OBJECT

private slots:
    void init();

    void copyChangesNothing();
    void copiedDrawingIsAPictureForOthers();
    void copyTakesTheActiveLayersPartOfASelection();
    void copyGoesFromTheFirstToTheLastSelectedCell();
    void allOfSeveralLayersIsPastedWhereItWasCopied();
    void layerDoesNotDependOnTheOrderOfSelection_data();
    void layerDoesNotDependOnTheOrderOfSelection();
    void drawingsGoToTheLayerThatTakesThem_data();
    void drawingsGoToTheLayerThatTakesThem();
    void pasteIntoNewCellsOverwritesNothing();
    void pasteOverASelection();
    void pasteBehindTheLastCell_data();
    void pasteBehindTheLastCell();
    void pasteFarBehindTheRangeShowsIt();
    void pasteIntoAnotherSceneKeepsTheTiming();
    void cutIsOneUndoStep();
    void cutSelectionIsPastedAsItWas();
    void cutWithAGapDiscardsOnlyWhatIsSelected();
    void pasteOfWhatIsThereKeepsWhatCanBeRedone();
    void nothingIsCutBehindTheLastCell();
    void selectionInSoundAndNotesIsNone();
    void drawingsAreNoneForAReferenceLayer();
    void pictureGoesToAReferenceLayer();
    void pictureGoesToOneLayerOfSeveral();
    void pictureOverASelectionOnAStrokeLayerIsNone();
    void malformedBlockIsRefusedWithoutHarm_data();
    void malformedBlockIsRefusedWithoutHarm();
    void otherProgramsAreOnlyAskedForTheirFormats();
    void drawingsAreFetchedOnce();
    void editsEndPlayback();
    void pasteFollowsTheClipboard();

private:
    int addStrokeLayer();
    void selectBoth(int first, int second, int frameId);
    QUndoStack *stack() const { return scene()->undoStack(); }
    bool canPaste() const { return action(MR::Action::PasteDrawing)->isEnabled(); }
};

void tst_DrawingClipboard::init()
{
    FloatingFixture::init();
    clipboard()->clear();
    QTRY_VERIFY(!canPaste());
}

void tst_DrawingClipboard::copyChangesNothing()
{
    const QImage before = ink();
    key(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(stack()->count(), 0);
    QCOMPARE(ink(), before);
    QVERIFY(clipboard()->mimeData()->hasFormat(Model::DrawingClip::mimeType));
    QVERIFY(canPaste());
}

void tst_DrawingClipboard::copiedDrawingIsAPictureForOthers()
{
    action(MR::Action::CopyDrawing)->trigger();
    const auto picture = qvariant_cast<QImage>(clipboard()->mimeData()->imageData());
    QCOMPARE(picture.size(), scene()->frameSize());
    QCOMPARE(picture.pixel(0, 0), qRgb(255, 255, 255));
    QVERIFY(clipboard()->mimeData()->text().contains(QStringLiteral("frame 1")));
}

void tst_DrawingClipboard::copyTakesTheActiveLayersPartOfASelection()
{
    makeCells("ooo");
    action(MR::Action::NewLayer)->trigger();
    const int other = scene()->activeLayerIdx();
    QVERIFY(other != 0);
    goTo(1, 0);
    select(1, 2, 0);
    select(1, 1, other);
    const auto span = DrawingClipboard::toCopy(mrScene());
    QVERIFY(span.has_value());
    QCOMPARE(*span, (CellSelection::Span{0, 1, 2}));
    goTo(1, other);
    QCOMPARE(*DrawingClipboard::toCopy(mrScene()), (CellSelection::Span{other, 1, 1}));
}

void tst_DrawingClipboard::copyGoesFromTheFirstToTheLastSelectedCell()
{
    makeCells("ooooo");
    select(4, 4);
    select(2, 2);
    QCOMPARE(*DrawingClipboard::toCopy(mrScene()), (CellSelection::Span{0, 2, 4}));
    action(MR::Action::CopyDrawing)->trigger();
    QVERIFY(clipboard()->mimeData()->text().contains(QStringLiteral("frames 2-4")));
}

/// Adds one with a drawing of its own in each frame, and nothing to undo. \return its index.
int tst_DrawingClipboard::addStrokeLayer()
{
    action(MR::Action::NewLayer)->trigger();
    const int layerIdx = scene()->activeLayerIdx();
    while (scene()->lastFrame(layerIdx) < scene()->rangeLast())
        scene()->addBlankDrawing(layerIdx, 1);
    scene()->undoStack()->clear();
    return layerIdx;
}

/// Selects a frame of two layers, in this order.
void tst_DrawingClipboard::selectBoth(int first, int second, int frameId)
{
    select(frameId, frameId, first);
    select(frameId, frameId, second);
}

void tst_DrawingClipboard::allOfSeveralLayersIsPastedWhereItWasCopied()
{
    makeCells("ooo");
    const int other = addStrokeLayer();
    for (const int active : {0, other}) {
        goTo(1, active);
        key(Qt::Key_A, Qt::ControlModifier);
        QVERIFY(CellSelection::count(CellSelection::selected(mrScene())) >= 6);
        key(Qt::Key_C, Qt::ControlModifier);
        QVERIFY(clipboard()->mimeData()->text().contains(scene()->visualLayer(active)->name() + ", frames 1-3"));
        key(Qt::Key_V, Qt::ControlModifier);
        // Each cell has its drawing already.
        QCOMPARE(steps(), 0);
        QCOMPARE(cells(0), QByteArray("ooo"));
        QCOMPARE(cells(other), QByteArray("ooo"));
    }
}

void tst_DrawingClipboard::layerDoesNotDependOnTheOrderOfSelection_data()
{
    QTest::addColumn<bool>("upwards");
    QTest::newRow("from the top") << false;
    QTest::newRow("from below") << true;
}

void tst_DrawingClipboard::layerDoesNotDependOnTheOrderOfSelection()
{
    QFETCH(bool, upwards);
    makeCells("ooo");
    const int second = addStrokeLayer();
    const int third = addStrokeLayer();
    // Layers are added above the active one: it is the first of them that lies lowest.
    QCOMPARE(scene()->layerOrder().indexOf(third) + 1, scene()->layerOrder().indexOf(second));
    QCOMPARE(scene()->layerOrder().indexOf(second) + 1, scene()->layerOrder().indexOf(0));
    goTo(1, third);
    action(MR::Action::CopyDrawing)->trigger();
    goTo(1, 0);
    // The active layer has no part in it: the upper one of the two is meant.
    upwards ? selectBoth(second, third, 2) : selectBoth(third, second, 2);
    QCOMPARE(*DrawingClipboard::toCopy(mrScene()), (CellSelection::Span{third, 2, 2}));
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(cells(third), QByteArray("odo"));
    QCOMPARE(cells(second), QByteArray("ooo"));
    // And the active one, if it is among them.
    goTo(1, second);
    upwards ? selectBoth(second, third, 3) : selectBoth(third, second, 3);
    QCOMPARE(*DrawingClipboard::toCopy(mrScene()), (CellSelection::Span{second, 3, 3}));
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(cells(third), QByteArray("odo"));
    QCOMPARE(cells(second), QByteArray("ood"));
}

void tst_DrawingClipboard::drawingsGoToTheLayerThatTakesThem_data()
{
    QTest::addColumn<bool>("strokesFirst");
    QTest::addColumn<bool>("ofPictures");
    QTest::newRow("strokes, selected first") << true << false;
    QTest::newRow("strokes, selected last") << false << false;
    QTest::newRow("pictures, selected last") << true << true;
    QTest::newRow("pictures, selected first") << false << true;
}

void tst_DrawingClipboard::drawingsGoToTheLayerThatTakesThem()
{
    QFETCH(bool, strokesFirst);
    QFETCH(bool, ofPictures);
    const int pictures = addReferenceLayer();
    makeCells("ooo");
    while (scene()->lastFrame(pictures) < 3)
        scene()->addBlankDrawing(pictures, 1);
    const int copied = ofPictures ? pictures : 0;
    const int other = ofPictures ? 0 : pictures;
    goTo(1, copied);
    action(MR::Action::CopyDrawing)->trigger();
    goTo(1, other);
    strokesFirst ? selectBoth(0, pictures, 2) : selectBoth(pictures, 0, 2);
    QVERIFY(canPaste());
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(undoText(), QStringLiteral("Paste Drawing"));
    QCOMPARE(steps(), 1);
    QCOMPARE(cells(copied), QByteArray("odo"));
    QCOMPARE(cells(other), QByteArray("ooo"));
}

void tst_DrawingClipboard::pasteIntoNewCellsOverwritesNothing()
{
    makeCells("oo");
    const QImage first = ink(1);
    goTo(2);
    drawLine();
    drawLine();
    const QImage second = ink(2);
    QVERIFY(second != first);
    goTo(1);
    action(MR::Action::CopyDrawing)->trigger();
    goTo(2);
    const int before = steps();
    key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(steps(), before + 1);
    QCOMPARE(undoText(), QStringLiteral("Paste Drawing"));
    // The original still stands in this scene: the new cell shows it.
    QCOMPARE(cells(), QByteArray("odo"));
    QCOMPARE(scene()->activeFrame(), 2);
    QCOMPARE(ink(2), first);
    QCOMPARE(ink(3), second);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(cells(), QByteArray("oo"));
    QCOMPARE(ink(2), second);
    action(MR::Action::Redo)->trigger();
    QCOMPARE(cells(), QByteArray("odo"));
}

void tst_DrawingClipboard::pasteOverASelection()
{
    makeCells("ooooo");
    action(MR::Action::CopyDrawing)->trigger();
    select(3, 5);
    QCOMPARE(action(MR::Action::PasteDrawing)->text(), QStringLiteral("Paste Drawings"));
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(cells(), QByteArray("ood"));
    QCOMPARE(scene()->activeFrame(), 3);
    QVERIFY(!mrScene().selectionModel()->hasSelection());
    action(MR::Action::Undo)->trigger();
    QCOMPARE(cells(), QByteArray("ooooo"));
}

void tst_DrawingClipboard::pasteBehindTheLastCell_data()
{
    QTest::addColumn<QByteArray>("copied");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("one") << QByteArray("o") << QByteArray("od");
    QTest::newRow("with holds") << QByteArray("o--") << QByteArray("o--d--");
}

void tst_DrawingClipboard::pasteBehindTheLastCell()
{
    QFETCH(QByteArray, copied);
    QFETCH(QByteArray, after);
    makeCells(copied);
    select(1, int(copied.size()));
    action(MR::Action::CopyDrawing)->trigger();
    mrScene().clearSelection();
    goTo(int(copied.size()) + 1);
    QVERIFY(canPaste());
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(cells(), after);
    QCOMPARE(scene()->activeFrame(), int(copied.size()) + 1);
    QVERIFY(scene()->rangeLast() >= scene()->activeFrame());
    QCOMPARE(steps(), 1);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(cells(), copied);
}

void tst_DrawingClipboard::pasteFarBehindTheRangeShowsIt()
{
    makeCells("ooooo");
    action(MR::Action::CopyDrawing)->trigger();
    scene()->setFrameRange(1, 2, 1, 0);
    scene()->setActiveFrameAndLayer(6, 0, Model::Scene::AllowFrameAfterLast);
    QCOMPARE(scene()->activeFrame(), 6);
    const int before = steps();
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(steps(), before + 1);
    QCOMPARE(cells(), QByteArray("oooood"));
    QCOMPARE(scene()->activeFrame(), 6);
    QVERIFY(scene()->rangeLast() >= 6);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(cells(), QByteArray("ooooo"));
    QCOMPARE(scene()->rangeLast(), 2);
}

void tst_DrawingClipboard::pasteIntoAnotherSceneKeepsTheTiming()
{
    makeCells("o--");
    const QImage picture = ink(1);
    select(1, 3);
    action(MR::Action::CopyDrawing)->trigger();
    newCleanScene();
    QVERIFY(canPaste());
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(cells(), QByteArray("o--o"));
    QCOMPARE(ink(1), picture);
    QCOMPARE(ink(3), picture);
    QVERIFY(drawing(4).isEmpty());
}

void tst_DrawingClipboard::cutIsOneUndoStep()
{
    makeCells("oo");
    const QImage first = ink(1);
    key(Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(steps(), 1);
    QCOMPARE(undoText(), QStringLiteral("Cut Drawing"));
    QCOMPARE(cells(), QByteArray("o"));
    QVERIFY(drawing(1).isEmpty());
    action(MR::Action::Undo)->trigger();
    QCOMPARE(cells(), QByteArray("oo"));
    QCOMPARE(ink(1), first);
    action(MR::Action::Redo)->trigger();
    goTo(1);
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(cells(), QByteArray("oo"));
    QCOMPARE(ink(1), first);
}

void tst_DrawingClipboard::cutSelectionIsPastedAsItWas()
{
    makeCells("o-oo");
    const QImage first = ink(1);
    select(1, 3);
    QCOMPARE(action(MR::Action::CutDrawing)->text(), QStringLiteral("Cut Selected Drawings"));
    action(MR::Action::CutDrawing)->trigger();
    QCOMPARE(cells(), QByteArray("o"));
    mrScene().clearSelection();
    goTo(1);
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(cells(), QByteArray("o-oo"));
    QCOMPARE(ink(1), first);
}

void tst_DrawingClipboard::cutWithAGapDiscardsOnlyWhatIsSelected()
{
    makeCells("ooooo");
    goTo(3);
    drawLine();
    stack()->clear();
    const QImage between = ink(3);
    select(5, 5);
    select(1, 2);
    action(MR::Action::CutDrawing)->trigger();
    QCOMPARE(steps(), 1);
    QCOMPARE(cells(), QByteArray("oo"));
    QCOMPARE(ink(1), between);
    QVERIFY(clipboard()->mimeData()->text().contains(QStringLiteral("frames 1-5")));
    action(MR::Action::Undo)->trigger();
    QCOMPARE(cells(), QByteArray("ooooo"));
    QCOMPARE(ink(3), between);
}

void tst_DrawingClipboard::pasteOfWhatIsThereKeepsWhatCanBeRedone()
{
    action(MR::Action::CopyDrawing)->trigger();
    drawLine();
    action(MR::Action::Undo)->trigger();
    QVERIFY(stack()->canRedo());
    select(1, 1);
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(steps(), 0);
    QVERIFY(stack()->canRedo());
    QVERIFY(!mrScene().selectionModel()->hasSelection());
}

void tst_DrawingClipboard::nothingIsCutBehindTheLastCell()
{
    goTo(2);
    for (const MR::Action which : {MR::Action::CutDrawing, MR::Action::CopyDrawing}) {
        QVERIFY(!action(which)->isEnabled());
        QVERIFY(action(which)->toolTip().endsWith("could be copied"));
    }
    auto *drawings = m_window->findChild<DrawingClipboard *>();
    drawings->cut();
    drawings->copy();
    QCOMPARE(steps(), 0);
    QVERIFY(!clipboard()->mimeData()->hasFormat(Model::DrawingClip::mimeType));
}

void tst_DrawingClipboard::selectionInSoundAndNotesIsNone()
{
    QVERIFY(!scene()->visualLayer(1) && !scene()->visualLayer(2));
    makeCells("oo");
    select(1, 2, 1);
    select(1, 2, 2);
    QCOMPARE(*DrawingClipboard::toCopy(mrScene()), (CellSelection::Span{0, 1, 1}));
}

void tst_DrawingClipboard::drawingsAreNoneForAReferenceLayer()
{
    const int reference = addReferenceLayer();
    goTo(1, 0);
    makeCells("ooo");
    // Several cells are no picture.
    select(1, 3);
    action(MR::Action::CopyDrawing)->trigger();
    mrScene().clearSelection();
    QVERIFY(canPaste());
    goTo(1, reference);
    QVERIFY(!canPaste());
    QVERIFY(action(MR::Action::PasteDrawing)->toolTip().endsWith("nothing for this layer"));
    m_window->findChild<DrawingClipboard *>()->paste();
    QCOMPARE(steps(), 0);
    goTo(1, 0);
    QVERIFY(canPaste());
}

void tst_DrawingClipboard::pictureGoesToAReferenceLayer()
{
    const int reference = addReferenceLayer();
    goTo(1, reference);
    QImage picture(400, 300, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    clipboard()->setImage(picture);
    QTRY_VERIFY(canPaste());
    const int before = scene()->lastFrame(reference);
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(undoText(), QStringLiteral("Paste Image"));
    QCOMPARE(scene()->lastFrame(reference), before + 1);
    QCOMPARE(scene()->activeFrame(), 1);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(scene()->lastFrame(reference), before);
    // For lines a picture is nothing.
    goTo(1, 0);
    QVERIFY(!canPaste());
}

void tst_DrawingClipboard::pictureGoesToOneLayerOfSeveral()
{
    const int first = addReferenceLayer();
    const int second = addReferenceLayer();
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::red);
    clipboard()->setImage(picture);
    const auto cellOf = [this](int layerIdx) { return scene()->item(layerIdx, 1).get(); };
    const auto *kept = cellOf(first);
    const auto *replaced = cellOf(second);
    goTo(1, second);
    selectBoth(0, first, 1);
    select(1, 1, second);
    QTRY_VERIFY(canPaste());
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(undoText(), QStringLiteral("Paste Image"));
    QCOMPARE(cellOf(first), kept);
    QVERIFY(cellOf(second) != replaced);
}

void tst_DrawingClipboard::pictureOverASelectionOnAStrokeLayerIsNone()
{
    makeCells("ooo");
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::red);
    clipboard()->setImage(picture);
    select(1, 2);
    QVERIFY(!canPaste());
    m_window->findChild<DrawingClipboard *>()->paste();
    QCOMPARE(steps(), 0);
    QCOMPARE(cells(), QByteArray("ooo"));
}

void tst_DrawingClipboard::malformedBlockIsRefusedWithoutHarm_data()
{
    QTest::addColumn<QByteArray>("block");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("type alone") << QByteArray::fromHex("00000001");
    QTest::newRow("no frames") << QByteArray::fromHex("0000000100000000");
    QTest::newRow("negative count") << QByteArray::fromHex("00000001ffffffff");
    QTest::newRow("more frames than there are") << QByteArray::fromHex("000000017fffffff");
    QTest::newRow("frame of no end") << QByteArray::fromHex("0000000100000001ffffffff00");
    QTest::newRow("unknown type") << QByteArray::fromHex("0000000900000001");
    QTest::newRow("noise") << QByteArray(4096, '\x5a');
}

void tst_DrawingClipboard::malformedBlockIsRefusedWithoutHarm()
{
    QFETCH(QByteArray, block);
    makeCells("o-o");
    const QImage before = ink();
    auto *data = new QMimeData;
    data->setData(Model::DrawingClip::mimeType, block);
    clipboard()->setMimeData(data);
    QTest::qWait(1);
    m_window->findChild<DrawingClipboard *>()->paste();
    select(1, 2);
    m_window->findChild<DrawingClipboard *>()->paste();
    QCOMPARE(cells(), QByteArray("o-o"));
    QCOMPARE(ink(), before);
    QCOMPARE(steps(), 0);
}

void tst_DrawingClipboard::otherProgramsAreOnlyAskedForTheirFormats()
{
    const WatchedData data;
    const ClipboardContent content = ClipboardContent::of(&data, false);
    QVERIFY(content.strokeDrawings && content.referenceDrawings && !content.image);
    QCOMPARE(data.fetched(), 0);
    const ClipboardContent own = ClipboardContent::of(&data, true);
    QVERIFY(!own.strokeDrawings && !own.referenceDrawings);
    QVERIFY(data.fetched() > 0);
    QVERIFY(ClipboardContent::of(nullptr, true) == ClipboardContent());
}

void tst_DrawingClipboard::drawingsAreFetchedOnce()
{
    action(MR::Action::CopyDrawing)->trigger();
    auto *data = new WatchedData(clipboard()->mimeData()->data(Model::DrawingClip::mimeType));
    clipboard()->setMimeData(data);
    QTRY_VERIFY(canPaste());
    const int before = data->fetched();
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(undoText(), QStringLiteral("Paste Drawing"));
    QCOMPARE(data->fetched(), before + 1);
}

void tst_DrawingClipboard::editsEndPlayback()
{
    makeCells("ooo");
    action(MR::Action::CopyDrawing)->trigger();
    action(MR::Action::Play)->trigger();
    QTRY_VERIFY(scene()->scrubFrame() > 0);
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(scene()->scrubFrame(), -1);
}

void tst_DrawingClipboard::pasteFollowsTheClipboard()
{
    QVERIFY(!canPaste());
    QVERIFY(action(MR::Action::PasteDrawing)->toolTip().endsWith("nothing for this layer"));
    action(MR::Action::CopyDrawing)->trigger();
    QTRY_VERIFY(canPaste());
    clipboard()->setText(QStringLiteral("words"));
    QTRY_VERIFY(!canPaste());
}

QTEST_MAIN(tst_DrawingClipboard)
#include "tst_drawingclipboard.moc"
