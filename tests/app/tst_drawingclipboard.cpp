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
    QStringList formats() const override { return {QString(Model::DrawingClip::mimeType)}; }
    int fetched() const { return m_fetched; }

protected:
    QVariant retrieveData(const QString &, QMetaType) const override
    {
        ++m_fetched;
        return {};
    }

private:
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
    void pasteIntoNewCellsOverwritesNothing();
    void pasteOverASelection();
    void pasteBehindTheLastCell_data();
    void pasteBehindTheLastCell();
    void pasteFarBehindTheRangeShowsIt();
    void pasteIntoAnotherSceneKeepsTheTiming();
    void cutIsOneUndoStep();
    void cutSelectionIsPastedAsItWas();
    void nothingIsCutBehindTheLastCell();
    void selectionInSoundAndNotesIsNone();
    void drawingsAreNoneForAReferenceLayer();
    void pictureGoesToAReferenceLayer();
    void pictureOverASelectionOnAStrokeLayerIsNone();
    void malformedBlockIsRefusedWithoutHarm_data();
    void malformedBlockIsRefusedWithoutHarm();
    void otherProgramsAreOnlyAskedForTheirFormats();
    void editsEndPlayback();
    void pasteFollowsTheClipboard();

private:
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
