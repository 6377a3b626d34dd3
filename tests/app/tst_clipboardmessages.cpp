#include "app/clipboardpicture.h"
#include "app/drawingclipboard.h"
#include "floatingfixture.h"
#include "libmodel/files/blockbuilder.h"
#include "support/messageboxanswer.h"

#include "libmodel/files/memorybudget.h"
#include "libmodel/layers/layer.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/scene/drawingclip.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QEvent>
#include <QMimeData>
#include <QProgressDialog>
#include <QTest>
#include <QTimer>
#include <QUndoStack>
#include <QUuid>

using TestSupport::BlockBuilder;

namespace {

const QString png = QStringLiteral("image/png");

void offer(const QString &format, const QByteArray &bytes)
{
    auto *data = new QMimeData;
    data->setData(format, bytes);
    QGuiApplication::clipboard()->setMimeData(data);
}

QByteArray pngOf(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

/// A picture that says of itself that it is \a side pixels wide and high.
QByteArray pngThatClaims(int side)
{
    QByteArray bytes = pngOf(QImage(1, 1, QImage::Format_RGB32));
    constexpr int sizeAt = 16; // behind the signature and the head of the first chunk
    return bytes.replace(sizeAt, 8, BlockBuilder().size(side, side).bytes());
}

/// Drawings for the clipboard, \a count of the one in \a content.
QByteArray clipOf(const QByteArray &content, int count = 1, int layerType = Model::Layer::Stroke)
{
    BlockBuilder clip;
    clip.i32(layerType).i32(count);
    for (int i = 0; i < count; ++i) {
        const QByteArray block = BlockBuilder().i32(0).raw(QUuid::createUuid().toRfc4122()).u8(1).raw(content).bytes();
        clip.i32(block.size()).raw(block);
    }
    return clip.bytes();
}

/// A pixel, and a line of a hundred thousand dots that each cover the frame, which would take minutes to draw.
QByteArray heavyStrokes()
{
    constexpr int dots = 100'000;
    BlockBuilder block;
    block.size(1920, 1080).i64(2);
    block.i32(2).rect(100, 100, 109, 109).i32(2).rle(1, 1, QByteArray::fromHex("0301ff0a"));
    block.i32(0).u8(1).i32(1).rect(-240, -660, 2160, 1740).i32(0).i32(dots);
    for (int i = 0; i < dots; ++i)
        block.i32(0).f32(960).f32(540).f32(1).f32(1200);
    return block.plainCompoundEnd().i32(-1).bytes();
}

QByteArray blankStrokes()
{
    return BlockBuilder().size(1920, 1080).i64(0).plainCompoundEnd().i32(-1).bytes();
}

/// Counts how often progress comes up, and presses Cancel on it if it is told to.
class ProgressWatch : public QObject
{
public:
    explicit ProgressWatch(bool cancels) : m_cancels(cancels) { qApp->installEventFilter(this); }
    int count() const { return m_count; }

private:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (auto *dialog = qobject_cast<QProgressDialog *>(object); dialog && event->type() == QEvent::Show) {
            ++m_count;
            if (m_cancels)
                QTimer::singleShot(0, dialog, &QProgressDialog::cancel);
        }
        return false;
    }

    bool m_cancels;
    int m_count = 0;
};

} // namespace

/// What the user is told of pastes that take long, or cannot be as they should.
class tst_ClipboardMessages : public FloatingFixture
{
    Q_OBJECT

private slots:
    void cleanup();

    void largePictureIsPasted();
    void pictureThatCannotBeHadIsTold_data();
    void pictureThatCannotBeHadIsTold();
    void pictureBeyondTheMemoryIsNotTried();
    void brokenPngLeavesOtherFormsOfThePicture();
    void drawingShownInPartIsTold();
    void drawingsBeyondTheMemoryAreTold();
    void longPasteCanBeCancelled();
    void longPasteShowsProgressAndGoesOn();

private:
    DrawingClipboard &drawings() const { return *m_window->findChild<DrawingClipboard *>(); }
    bool canPaste() const { return action(MR::Action::PasteDrawing)->isEnabled(); }
};

void tst_ClipboardMessages::cleanup()
{
    drawings().setProgressDelay(Model::DialogProgress::fileDurationMs);
    QGuiApplication::clipboard()->clear();
    FloatingFixture::cleanup();
}

void tst_ClipboardMessages::largePictureIsPasted()
{
    // 144 MB of pixels, a few bytes of file: more than Qt takes of a picture unless it is told to.
    constexpr int side = 6000;
    QImage large(side, side, QImage::Format_RGB32);
    large.fill(Qt::darkRed);
    const QByteArray bytes = pngOf(large);
    large = QImage();
    goTo(1, addReferenceLayer());
    const MessageBoxAnswer answer(QMessageBox::Ok);
    offer(png, bytes);
    QTRY_VERIFY(canPaste());
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(answer.count(), 0);
    QCOMPARE(undoText(), QStringLiteral("Paste Image"));
    const auto cell = scene()->item(scene()->activeLayerIdx(), 1);
    const QImage &pasted = static_cast<const Model::ImageDrawing &>(*cell->drawing).image();
    QCOMPARE(pasted.size(), QSize(1080, 1080));
    QCOMPARE(pasted.pixelColor(540, 540), QColor(Qt::darkRed));
}

void tst_ClipboardMessages::pictureThatCannotBeHadIsTold_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");
    QTest::newRow("more than the memory") << pngThatClaims(1'000'000) << QStringLiteral("needs more memory");
    QTest::newRow("no picture") << QByteArray("words") << QStringLiteral("damaged");
    QTest::newRow("nothing") << QByteArray() << QStringLiteral("damaged");
    QTest::newRow("breaks off") << pngOf(QImage(8, 8, QImage::Format_RGB32)).left(40) << QStringLiteral("damaged");
}

void tst_ClipboardMessages::pictureThatCannotBeHadIsTold()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    goTo(1, addReferenceLayer());
    const MessageBoxAnswer answer(QMessageBox::Ok);
    offer(png, bytes);
    QTRY_VERIFY(canPaste());
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(answer.count(), 1);
    QVERIFY2(answer.text().contains(png) && answer.text().contains(reason), qPrintable(answer.text()));
    QCOMPARE(steps(), 0);
}

void tst_ClipboardMessages::pictureBeyondTheMemoryIsNotTried()
{
    QMimeData data;
    data.setData(png, pngOf(QImage(100, 100, QImage::Format_RGB32)));
    data.setImageData(QImage(100, 100, QImage::Format_RGB32));
    Model::MemoryBudget little(100 * 100 * 4 - 1);
    const ClipboardPicture refused = ClipboardPicture::of(data, little);
    QVERIFY(refused.image.isNull() && refused.problem.contains("memory"));
    Model::MemoryBudget enough(100 * 100 * 4);
    const ClipboardPicture taken = ClipboardPicture::of(data, enough);
    QCOMPARE(taken.image.size(), QSize(100, 100));
    QVERIFY(taken.problem.isEmpty());
}

void tst_ClipboardMessages::brokenPngLeavesOtherFormsOfThePicture()
{
    QMimeData data;
    data.setData(png, "words");
    data.setImageData(QImage(3, 2, QImage::Format_RGB32));
    Model::MemoryBudget memory;
    const ClipboardPicture taken = ClipboardPicture::of(data, memory);
    QCOMPARE(taken.image.size(), QSize(3, 2));
    QVERIFY(taken.problem.isEmpty());
}

void tst_ClipboardMessages::drawingShownInPartIsTold()
{
    offer(Model::DrawingClip::mimeType, clipOf(heavyStrokes()));
    QTRY_VERIFY(canPaste());
    {
        MessageBoxAnswer answer(QMessageBox::Ok);
        int stepsThen = -1;
        answer.beforeAnswering([&] { stepsThen = steps(); });
        action(MR::Action::PasteDrawing)->trigger();
        QCOMPARE(answer.count(), 1);
        QVERIFY2(answer.text().contains("shown only in part"), qPrintable(answer.text()));
        QCOMPARE(stepsThen, 1);
    }
    QCOMPARE(drawing(1).strokes().count(), 2);
    QCOMPARE(int(ink(1).constScanLine(105)[105]), 255);
    // Where it stands already there is nothing to tell.
    const MessageBoxAnswer answer(QMessageBox::Ok);
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(steps(), 2);
    QCOMPARE(answer.count(), 0);
}

void tst_ClipboardMessages::drawingsBeyondTheMemoryAreTold()
{
    const int reference = addReferenceLayer();
    goTo(1, reference);
    select(1, 1, reference);
    constexpr int pngFollows = 1;
    const QByteArray picture = BlockBuilder().i32(pngFollows).raw(pngThatClaims(1'000'000)).bytes();
    offer(Model::DrawingClip::mimeType, clipOf(picture, 1, Model::Layer::Reference));
    QTRY_VERIFY(canPaste());
    const MessageBoxAnswer answer(QMessageBox::Ok);
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(answer.count(), 1);
    QVERIFY2(answer.text().contains("need more memory"), qPrintable(answer.text()));
    QCOMPARE(steps(), 0);
    QVERIFY(!CellSelection::selected(mrScene()).isEmpty());
}

void tst_ClipboardMessages::longPasteCanBeCancelled()
{
    drawLine();
    action(MR::Action::Undo)->trigger();
    QVERIFY(scene()->undoStack()->canRedo());
    const QImage before = ink();
    select(1, 1);
    offer(Model::DrawingClip::mimeType, clipOf(blankStrokes(), 200));
    QTRY_VERIFY(canPaste());
    drawings().setProgressDelay(0);
    const ProgressWatch progress(true);
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(progress.count(), 1);
    QCOMPARE(cells(), QByteArray("o"));
    QCOMPARE(ink(), before);
    QCOMPARE(steps(), 0);
    QVERIFY(scene()->undoStack()->canRedo());
    QVERIFY(!CellSelection::selected(mrScene()).isEmpty());
}

void tst_ClipboardMessages::longPasteShowsProgressAndGoesOn()
{
    offer(Model::DrawingClip::mimeType, clipOf(blankStrokes(), 50));
    QTRY_VERIFY(canPaste());
    drawings().setProgressDelay(0);
    const ProgressWatch progress(false);
    action(MR::Action::PasteDrawing)->trigger();
    QCOMPARE(progress.count(), 1);
    QCOMPARE(cells(), QByteArray(51, 'o'));
    QCOMPARE(steps(), 1);
    QVERIFY(m_window->findChildren<QProgressDialog *>().isEmpty());
}

QTEST_MAIN(tst_ClipboardMessages)
#include "tst_clipboardmessages.moc"
