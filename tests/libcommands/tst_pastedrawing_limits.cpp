// What a paste of drawings refuses, notes, and takes in one go.

#include "clipstage.h"

#include "libmodel/files/drawingclipreader.h"
#include "libmodel/layers/layer.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/scene/drawingclip.h"
#include "libmodel/strokes/compoundstroke.h"
#include "support/watchedprogress.h"

#include <QDataStream>
#include <QElapsedTimer>
#include <QTest>
#include <QTransform>

using namespace Commands;
using namespace Model;
using namespace TestSupport;

namespace {

/// A clip of \a count originals of one blank drawing each, made by hand.
std::unique_ptr<QMimeData> manyOriginals(int count)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << qint32(Layer::Stroke) << qint32(count);
    for (int i = 0; i < count; ++i) {
        QByteArray block;
        QDataStream inner(&block, QIODevice::WriteOnly);
        inner.setFloatingPointPrecision(QDataStream::SinglePrecision);
        inner << qint32(0) << QUuid::createUuid() << true;
        StrokeDrawing(stageFrame).write(inner);
        stream << block;
    }
    auto data = std::make_unique<QMimeData>();
    data->setData(DrawingClip::mimeType, bytes);
    return data;
}

} // namespace

class tst_PasteDrawingLimits : public QObject
{
    Q_OBJECT

private slots:
    void otherKindsOfLayersRefuse();
    void foreignDataIsRefused_data();
    void foreignDataIsRefused();
    void foreignPlacesAreRefused();
    void fullLayerRefuses();
    void canPasteAsksForTheKind();
    void cancelledReadingLeavesNothingToPaste();
    void strokesThatDoNotShowAreNoted();
    void tenThousandFramesArePastedAtOnce_data();
    void tenThousandFramesArePastedAtOnce();
};

void tst_PasteDrawingLimits::otherKindsOfLayersRefuse()
{
    CommandStage stage({"A B"});
    const int pictures = stage.scene().insertLayer(std::make_shared<ReferenceLayer>(stageFrame), 2);
    const auto strokes = copied(stage, 1, 1);
    const auto picture = copied(stage, 1, 1, pictures);
    QVERIFY(strokes && picture);
    QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), stage.cell(1, pictures), strokes.get())));
    QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), stage.cells({1}, pictures), strokes.get())));
    QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), stage.cell(1), picture.get())));
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(1, pictures), picture.get())), QString());
    QCOMPARE(stage.scene().lastFrame(pictures), 2);
}

void tst_PasteDrawingLimits::foreignDataIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    CommandStage source({"X Y Z"});
    const QByteArray whole = copied(source, 1, 3)->data(DrawingClip::mimeType);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("words") << QByteArray("hello there, this is not a clip at all");
    QTest::newRow("the last byte is missing") << whole.chopped(1);
    QTest::newRow("half of it is missing") << whole.left(whole.size() / 2);
    QByteArray kind = whole;
    kind[3] = 7;
    QTest::newRow("of an unknown layer") << kind;
    QByteArray more = whole;
    more[7] = 4;
    QTest::newRow("one frame more than there is") << more;
}

void tst_PasteDrawingLimits::foreignDataIsRefused()
{
    QFETCH(QByteArray, bytes);
    CommandStage stage({"A B"});
    QMimeData data;
    data.setData(DrawingClip::mimeType, bytes);
    QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), stage.cell(1), &data)));
    QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), stage.cells({1, 2}), &data)));
    QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), stage.cell(1), nullptr)));
    QMimeData words;
    words.setText(QStringLiteral("A drawing"));
    QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), stage.cell(1), &words)));
}

void tst_PasteDrawingLimits::foreignPlacesAreRefused()
{
    CommandStage stage({"A B"});
    CommandStage other({"X"});
    MRScene::setCurrent(stage.mrScene());
    const auto data = copied(stage, 1, 1);
    QVERIFY(stage.isRefused(new PasteDrawing(nullptr, stage.cell(1), data.get())));
    QVERIFY(stage.isRefused(new PasteDrawing(nullptr, stage.cells({1}), data.get())));
    QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), QModelIndex(), data.get())));
    QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), QModelIndexList(), data.get())));
    QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), other.cell(1), data.get())));
    // Nothing can be selected behind the last cell.
    QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), stage.cells({3}), data.get())));
}

void tst_PasteDrawingLimits::fullLayerRefuses()
{
    CommandStage source({"X Y Z"});
    CommandStage stage({"A B"});
    stage.scene().addCloneDrawing(0, 2);
    auto *layer = stage.scene().visualLayer(0);
    QList<std::shared_ptr<LayerItem>> cells = layer->frames();
    while (cells.size() < Layer::maximumFrames - 2)
        cells.append(std::make_shared<LayerItem>(LayerItem::Type::Clone, cells.constLast()->drawing));
    QVERIFY(layer->setFrames(cells));
    stage.scene().updateMaxFrameNumber();
    // There is room for two more: the first cell can be inserted, not all.
    const auto data = copied(source, 1, 3);
    const QList<std::shared_ptr<LayerItem>> before = layer->frames();
    for (const bool overCells : {false, true}) {
        const QModelIndexList cell{stage.cell(1)};
        auto *command = overCells ? new PasteDrawing(stage.mrScene(), cell, data.get())
                                  : new PasteDrawing(stage.mrScene(), cell.first(), data.get());
        if (overCells)
            QVERIFY(layer->setFrames(before + QList<std::shared_ptr<LayerItem>>{std::make_shared<LayerItem>(
                                                  LayerItem::Type::Clone, before.constLast()->drawing)}));
        const auto present = layer->frames();
        MRScene::pushCommand(command);
        QCOMPARE(stage.stack().count(), 0);
        QVERIFY(layer->frames() == present);
        QCOMPARE(stage.text().left(3), "A B");
    }
}

void tst_PasteDrawingLimits::canPasteAsksForTheKind()
{
    CommandStage stage({"A"});
    const int pictures = stage.scene().insertLayer(std::make_shared<ReferenceLayer>(stageFrame), 1);
    const auto strokes = copied(stage, 1, 1);
    const auto picture = copied(stage, 1, 1, pictures);
    QVERIFY(PasteDrawing::canPaste(strokes.get(), Layer::Stroke));
    QVERIFY(!PasteDrawing::canPaste(strokes.get(), Layer::Reference));
    QVERIFY(!PasteDrawing::canPaste(strokes.get(), Layer::Audio));
    QVERIFY(!PasteDrawing::canPaste(strokes.get(), 0));
    QVERIFY(PasteDrawing::canPaste(picture.get(), Layer::Reference));
    QVERIFY(!PasteDrawing::canPaste(nullptr, Layer::Stroke));
    QMimeData words;
    words.setText(QStringLiteral("A drawing"));
    QVERIFY(!PasteDrawing::canPaste(&words, Layer::Stroke));
    QVERIFY(!PasteDrawing::canPaste(&words, 0));
}

void tst_PasteDrawingLimits::cancelledReadingLeavesNothingToPaste()
{
    CommandStage source({"X Y"});
    CommandStage stage({"A B"});
    const DrawingClipReader clip(copied(source, 1, 2)->data(DrawingClip::mimeType));
    for (const bool overCells : {false, true}) {
        WatchedProgress progress(2);
        auto *command = overCells ? new PasteDrawing(stage.mrScene(), stage.cells({1, 2}), clip, &progress)
                                  : new PasteDrawing(stage.mrScene(), stage.cell(1), clip, &progress);
        QVERIFY(command->isCancelled() && !command->exceedsMemory());
        QVERIFY(stage.isRefused(command));
    }
    stage.stack().clear();
    WatchedProgress progress;
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(1), clip, &progress)), QString());
    QCOMPARE(seenText(stage), "X Y A B");
    QCOMPARE(progress.events().last(), "finish");
}

void tst_PasteDrawingLimits::strokesThatDoNotShowAreNoted()
{
    // A line of one dot, which nothing here can draw.
    QByteArray line;
    {
        QDataStream stream(&line, QIODevice::WriteOnly);
        stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
        stream << qint32(0) << QUuid::createUuid() << true << stageFrame << qint64(1) << qint32(0) << true << qint32(1)
               << QRect(QPoint(2, 2), QPoint(20, 20)) << qint32(0) << qint32(1) << qint32(0) << 10.0 << 10.0 << 1.0
               << 4.0 << qint32(0) << qint32(0) << QTransform() << qint32(-1);
    }
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << qint32(Layer::Stroke) << qint32(1) << line;
    QMimeData data;
    data.setData(DrawingClip::mimeType, bytes);
    CommandStage stage({"A"});
    auto *command = new PasteDrawing(stage.mrScene(), stage.cell(1), &data);
    QVERIFY(command->isIncomplete());
    QCOMPARE(stage.walk(command), QString());
    QCOMPARE(stage.drawing(1).strokes().count(), 1);
    const auto whole = copied(stage, 2, 1);
    QVERIFY(!PasteDrawing(stage.mrScene(), stage.cell(1), whole.get()).isIncomplete());
}

void tst_PasteDrawingLimits::tenThousandFramesArePastedAtOnce_data()
{
    QTest::addColumn<bool>("overCells");
    QTest::newRow("inserted") << false;
    QTest::newRow("over a hold") << true;
}

void tst_PasteDrawingLimits::tenThousandFramesArePastedAtOnce()
{
    QFETCH(bool, overCells);
    constexpr int count = 10'000;
    CommandStage stage({"A"});
    if (overCells)
        stage.scene().addCloneDrawings(0, 1, count - 1);
    const SceneSnapshot before = stage.snapshot();
    const auto data = manyOriginals(count);
    QModelIndexList cells;
    for (int frameId = 1; frameId <= count && overCells; ++frameId)
        cells += stage.cell(frameId);
    QElapsedTimer timer;
    timer.start();
    MRScene::pushCommand(overCells ? new PasteDrawing(stage.mrScene(), cells, data.get())
                                   : new PasteDrawing(stage.mrScene(), stage.cell(2), data.get()));
    const qint64 pasteTime = timer.restart();
    QCOMPARE(stage.scene().lastFrame(0), overCells ? count : count + 1);
    QVERIFY(stage.scene().item(0, count)->isOriginal());
    stage.stack().undo();
    const qint64 undoTime = timer.restart();
    QCOMPARE(before.diff(stage.snapshot()), QString());
    timer.restart();
    stage.stack().redo();
    const qint64 redoTime = timer.elapsed();
    qInfo("%d drawings: pasted in %lld ms, undone in %lld ms, redone in %lld ms", count, pasteTime, undoTime, redoTime);
    // Every cell that is filled or restored holding up the whole rest of the layer would make it tens of seconds.
    QVERIFY(pasteTime < 5000 && undoTime < 5000 && redoTime < 5000);
}

QTEST_MAIN(tst_PasteDrawingLimits)
#include "tst_pastedrawing_limits.moc"
