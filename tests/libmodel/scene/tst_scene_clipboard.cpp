// What goes to the clipboard. The private form is read here by its description, without the program's reader.

#include "scenebuilder.h"

#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/scene/drawingclip.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/imagedrawing.h"

#include <QDataStream>
#include <QGuiApplication>
#include <QMimeData>
#include <QTest>
#include <QUndoStack>

#include <limits>
#include <memory>

using namespace Model;
using namespace TestSupport;

namespace {

struct Block
{
    qint32 kind = -1;
    QUuid copyId;
    bool hasDrawing = false;
    QByteArray drawing;
};

struct Clip
{
    qint32 layerType = 0;
    QList<Block> blocks;
    bool isWhole = false; ///< nothing is missing, and nothing too much
};

Clip parsed(const QByteArray &bytes)
{
    Clip clip;
    QDataStream stream(bytes);
    qint32 count = 0;
    stream >> clip.layerType >> count;
    for (int i = 0; i < count; ++i) {
        QByteArray inner; // its own form in a stream is that of writeBytes(): length and content
        stream >> inner;
        QDataStream head(inner);
        Block block;
        head >> block.kind >> block.copyId >> block.hasDrawing;
        block.drawing = inner.mid(4 + 16 + 1);
        clip.blocks.append(block);
    }
    clip.isWhole = stream.status() == QDataStream::Ok && stream.atEnd();
    return clip;
}

using Data = std::unique_ptr<QMimeData>;

Data copied(const Scene &scene, int layerIdx, int firstFrame, int count)
{
    return Data(scene.copyToMimeData(layerIdx, firstFrame, count));
}

Clip clipOf(const Scene &scene, int layerIdx, int firstFrame, int count)
{
    const Data data = copied(scene, layerIdx, firstFrame, count);
    return data ? parsed(data->data(QStringLiteral("application/x-mirelle"))) : Clip();
}

/// A letter for each frame: o, c, d; in capitals where a drawing follows.
QString kinds(const Clip &clip)
{
    QString text;
    for (const Block &block : clip.blocks) {
        const QChar letter = QStringLiteral("ocd").at(block.kind);
        text += block.hasDrawing ? letter.toUpper() : letter;
    }
    return text;
}

int addReferenceLayer(Scene &scene, const QImage &picture)
{
    auto layer = std::make_shared<ReferenceLayer>(sceneFrame);
    const int layerIdx = scene.insertLayer(layer, scene.layerCount());
    scene.replaceDrawing(layerIdx, 1, std::make_shared<ImageDrawing>(picture));
    return layerIdx;
}

} // namespace

class tst_SceneClipboard : public QObject
{
    Q_OBJECT

private slots:
    void framesAreWrittenWithKindIdentifierAndDrawing();
    void sameOriginalTwiceIsWrittenOnce();
    void distantCloneAndItsOriginalAreOneDrawing();
    void twoDistantClonesOfAnOriginalElsewhereAreOneDrawing();
    void holdAtTheBeginningBringsItsDrawing();
    void distantCloneOfNothingIsADrawingOfItsOwn();
    void strokesAreWrittenAsInAFile();
    void pictureIsWrittenAsAnImage();
    void copyIdentifierStaysInTheDrawing();
    void copyIsNoStepAndNoChange();
    void changedDrawingGetsAnotherIdentifier();
    void labelTellsWhatWasCopied();
    void labelTellsTheFile();
    void pictureOfOneFrameIsTheDrawingOnWhite();
    void pictureOfAHoldIsThatOfItsDrawing();
    void pictureOfAReferenceLayerIsItsOwn();
    void pictureOfABlankReferenceIsWhite();
    void severalFramesHaveNoPicture();
    void nothingIsCopiedFromWhereNothingIs_data();
    void nothingIsCopiedFromWhereNothingIs();
    void indexesAreCopiedFromTheFirstToTheLast();
    void indexesOfTwoLayersAreRefused();
};

void tst_SceneClipboard::framesAreWrittenWithKindIdentifierAndDrawing()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 3);
    scene.addCloneDrawing(0, 2);
    const Clip clip = clipOf(scene, 0, 1, 4);
    QVERIFY(clip.isWhole);
    QCOMPARE(clip.layerType, 1);
    QCOMPARE(kinds(clip), "OOcO");
    QCOMPARE(clip.blocks.at(2).copyId, clip.blocks.at(1).copyId);
    QVERIFY(clip.blocks.at(0).copyId != clip.blocks.at(1).copyId);
    QVERIFY(!clip.blocks.at(3).copyId.isNull());
    QVERIFY(clip.blocks.at(2).drawing.isEmpty());
}

void tst_SceneClipboard::sameOriginalTwiceIsWrittenOnce()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 3);
    scene.makeDistantClone(0, 3, scene.originOfFrame(0, 1));
    scene.makeDistantClone(0, 2, scene.originOfFrame(0, 1));
    const Clip clip = clipOf(scene, 0, 1, 3);
    QCOMPARE(kinds(clip), "Odd");
    QCOMPARE(clip.blocks.at(1).copyId, clip.blocks.at(0).copyId);
    QCOMPARE(clip.blocks.at(2).copyId, clip.blocks.at(0).copyId);
}

void tst_SceneClipboard::distantCloneAndItsOriginalAreOneDrawing()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 3);
    scene.makeDistantClone(0, 1, scene.originOfFrame(0, 3));
    const Clip clip = clipOf(scene, 0, 1, 3);
    QCOMPARE(kinds(clip), "DOo");
    QCOMPARE(clip.blocks.at(2).copyId, clip.blocks.at(0).copyId);
}

void tst_SceneClipboard::twoDistantClonesOfAnOriginalElsewhereAreOneDrawing()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 3);
    const int other = addStrokeLayer(scene, 1);
    scene.makeDistantClone(0, 1, scene.originOfFrame(other, 1));
    scene.makeDistantClone(0, 3, scene.originOfFrame(other, 1));
    const Clip clip = clipOf(scene, 0, 1, 3);
    QCOMPARE(kinds(clip), "DOd");
    QCOMPARE(clip.blocks.at(0).copyId, scene.item(other, 1)->drawing->copyId());
}

void tst_SceneClipboard::holdAtTheBeginningBringsItsDrawing()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    scene.addCloneDrawings(0, 1, 3);
    QCOMPARE(kinds(clipOf(scene, 0, 3, 2)), "Cc");
}

void tst_SceneClipboard::distantCloneOfNothingIsADrawingOfItsOwn()
{
    // As a file may have them: both name the same cell, which is nowhere, and show drawings of their own.
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    for (const int frameId : {1, 2}) {
        scene.item(0, frameId)->type = LayerItem::Type::DistantClone;
        scene.item(0, frameId)->origin = {scene.layer(0)->identifier(), QUuid(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11)};
    }
    const Clip clip = clipOf(scene, 0, 1, 2);
    QCOMPARE(kinds(clip), "DD");
    QVERIFY(clip.blocks.at(0).copyId != clip.blocks.at(1).copyId);
}

void tst_SceneClipboard::strokesAreWrittenAsInAFile()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    scene.addStroke(0, 1, block(QRect(3, 4, 5, 6), 200));
    QByteArray inFile;
    QDataStream stream(&inFile, QIODevice::WriteOnly);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    drawingAt(scene, 0, 1).write(stream);
    QCOMPARE(clipOf(scene, 0, 1, 1).blocks.at(0).drawing, inFile);
}

void tst_SceneClipboard::pictureIsWrittenAsAnImage()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    QImage picture(5, 4, QImage::Format_RGB32);
    picture.fill(qRgb(10, 20, 30));
    const int layerIdx = addReferenceLayer(scene, picture);
    const Clip clip = clipOf(scene, layerIdx, 1, 1);
    QCOMPARE(clip.layerType, 3);
    QDataStream stream(clip.blocks.at(0).drawing);
    QImage read;
    stream >> read;
    QCOMPARE(read, picture);
    QVERIFY(stream.atEnd());
}

void tst_SceneClipboard::copyIdentifierStaysInTheDrawing()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    const QUuid first = clipOf(scene, 0, 1, 1).blocks.at(0).copyId;
    QCOMPARE(scene.item(0, 1)->drawing->copyId(), first);
    QCOMPARE(clipOf(scene, 0, 1, 1).blocks.at(0).copyId, first);
}

void tst_SceneClipboard::copyIsNoStepAndNoChange()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    scene.undoStack()->setClean();
    const SignalCount count(&scene);
    QVERIFY(copied(scene, 0, 1, 2));
    QCOMPARE(count.heard(), QString());
    QVERIFY(scene.undoStack()->isClean());
    QCOMPARE(scene.undoStack()->count(), 0);
}

void tst_SceneClipboard::changedDrawingGetsAnotherIdentifier()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    const QUuid before = clipOf(scene, 0, 1, 1).blocks.at(0).copyId;
    scene.addStroke(0, 1, block(QRect(1, 1, 2, 2)));
    QVERIFY(clipOf(scene, 0, 1, 1).blocks.at(0).copyId != before);
}

void tst_SceneClipboard::labelTellsWhatWasCopied()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 9);
    // Texts of the user's that would be taken for place holders if they were put in one after the other.
    scene.setName(QStringLiteral("The %3 cat"));
    scene.setLayerName(0, QStringLiteral("%1 ink"));
    const QString program = QGuiApplication::applicationDisplayName();
    QCOMPARE(copied(scene, 0, 7, 1)->text(), program + QStringLiteral(" scene The %3 cat, Layer %1 ink, frame 7"));
    QCOMPARE(copied(scene, 0, 3, 6)->text(), program + QStringLiteral(" scene The %3 cat, Layer %1 ink, frames 3-8"));
}

void tst_SceneClipboard::labelTellsTheFile()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    scene.setLayerName(0, QStringLiteral("ink"));
    scene.setFilename(QStringLiteral("/somewhere/cat.mr"));
    QVERIFY(copied(scene, 0, 1, 1)->text().endsWith(QStringLiteral(" scene cat.mr, Layer ink, frame 1")));
}

void tst_SceneClipboard::pictureOfOneFrameIsTheDrawingOnWhite()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    scene.setLayerColor(0, QColor(200, 0, 100));
    // Neither is part of the drawing.
    scene.setLayerOpacity(0, 0.5);
    scene.setLayerVisible(0, false);
    scene.addStroke(0, 1, block(QRect(10, 10, 4, 4)));
    const Data data = copied(scene, 0, 1, 1);
    QVERIFY(data->hasImage());
    const auto image = data->imageData().value<QImage>();
    QCOMPARE(image.size(), sceneFrame);
    QCOMPARE(image.format(), QImage::Format_RGB32);
    QCOMPARE(image.pixelColor(12, 12), QColor(200, 0, 100));
    QCOMPARE(image.pixelColor(14, 14), QColor(Qt::white));
}

void tst_SceneClipboard::pictureOfAHoldIsThatOfItsDrawing()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    scene.addStroke(0, 1, block(QRect(10, 10, 4, 4)));
    scene.addCloneDrawings(0, 1, 2);
    QCOMPARE(copied(scene, 0, 3, 1)->imageData().value<QImage>(), copied(scene, 0, 1, 1)->imageData().value<QImage>());
}

void tst_SceneClipboard::pictureOfAReferenceLayerIsItsOwn()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    QImage picture(200, 100, QImage::Format_ARGB32); // larger than the frame
    picture.fill(qRgba(10, 20, 30, 40));
    const int layerIdx = addReferenceLayer(scene, picture);
    QCOMPARE(copied(scene, layerIdx, 1, 1)->imageData().value<QImage>(), picture);
}

void tst_SceneClipboard::pictureOfABlankReferenceIsWhite()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    const int layerIdx = addReferenceLayer(scene, {});
    QImage white(sceneFrame, QImage::Format_RGB32);
    white.fill(Qt::white);
    QCOMPARE(copied(scene, layerIdx, 1, 1)->imageData().value<QImage>(), white);
}

void tst_SceneClipboard::severalFramesHaveNoPicture()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    QVERIFY(!copied(scene, 0, 1, 2)->hasImage());
}

void tst_SceneClipboard::nothingIsCopiedFromWhereNothingIs_data()
{
    QTest::addColumn<int>("layerIdx");
    QTest::addColumn<int>("firstFrame");
    QTest::addColumn<int>("count");
    constexpr int most = std::numeric_limits<int>::max();
    QTest::newRow("no layer") << 9 << 1 << 1;
    QTest::newRow("a negative layer") << -1 << 1 << 1;
    QTest::newRow("sound") << 1 << 1 << 1;
    QTest::newRow("notes") << 2 << 1 << 1;
    QTest::newRow("in front") << 0 << 0 << 1;
    QTest::newRow("behind") << 0 << 4 << 1;
    QTest::newRow("beyond the end") << 0 << 2 << 3;
    QTest::newRow("none") << 0 << 1 << 0;
    QTest::newRow("fewer than none") << 0 << 1 << -1;
    QTest::newRow("too many to be added up") << 0 << 2 << most;
    QTest::newRow("far off") << 0 << most << most;
}

void tst_SceneClipboard::nothingIsCopiedFromWhereNothingIs()
{
    QFETCH(int, layerIdx);
    QFETCH(int, firstFrame);
    QFETCH(int, count);
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 3);
    QVERIFY(!copied(scene, layerIdx, firstFrame, count));
}

void tst_SceneClipboard::indexesAreCopiedFromTheFirstToTheLast()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 5);
    SceneModel model;
    model.setScene(&scene);
    // A gap is copied along: what lies between two frames is part of their timing.
    const Data data(model.copyToMimeData({model.index(3, 0), model.index(1, 0)}));
    QVERIFY(data);
    QCOMPARE(kinds(parsed(data->data(DrawingClip::mimeType))), "OOO");
    QVERIFY(data->text().endsWith(QStringLiteral("frames 2-4")));
    const Data one(model.copyToMimeData(model.index(4, 0)));
    QVERIFY(one && one->text().endsWith(QStringLiteral("frame 5")));
}

void tst_SceneClipboard::indexesOfTwoLayersAreRefused()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    addStrokeLayer(scene, 2);
    SceneModel model;
    model.setScene(&scene);
    SceneModel foreign;
    foreign.setScene(&scene);
    QVERIFY(!Data(model.copyToMimeData({model.index(0, 0), model.index(0, 3)})));
    QVERIFY(!Data(model.copyToMimeData(QModelIndexList())));
    QVERIFY(!Data(model.copyToMimeData({model.index(0, 0), QModelIndex()})));
    QVERIFY(!Data(model.copyToMimeData({foreign.index(0, 0)})));
    QVERIFY(!Data(model.copyToMimeData(QModelIndex())));
    QVERIFY(!Data(model.copyToMimeData(model.index(2, 0)))); // behind the last cell
}

QTEST_MAIN(tst_SceneClipboard)
#include "tst_scene_clipboard.moc"
