#include "sceneelements.h"
#include "scenefixture.h"

#include "libmodel/layers/referencelayer.h"
#include "libmodel/strokes/imagedrawing.h"
#include "support/glfixture.h"

#include <QBuffer>
#include <QRegularExpression>
#include <QTest>

using namespace Model;
using namespace TestSupport;

namespace {

/// A picture in which every pixel differs, half transparent in places.
QImage pattern(QSize size, int seed)
{
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgba(seed, x * 9, y * 9, (x + y) % 2 ? 255 : 120));
    }
    return image;
}

const QImage &imageAt(const Scene &scene, int layerIdx, int frameId)
{
    return dynamic_cast<const ImageDrawing &>(*scene.item(layerIdx, frameId)->drawing).image();
}

/// The block of a picture as the format has it: a marker, then a PNG file; 0 alone for no picture.
QByteArray imageBlock(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    const char marker[] = {0, 0, 0, char(image.isNull() ? 0 : 1)};
    buffer.write(marker, sizeof marker);
    if (!image.isNull())
        image.save(&buffer, "PNG");
    return bytes.toBase64();
}

/// A reference layer element named uuid(100) with \a children.
QByteArray referenceElement(const QByteArray &children)
{
    return "<layer identifier=\"" + uuid(100).toByteArray() +
           "\" name=\"R\" linked=\"no\" visible=\"yes\" type=\"reference\">\n" + children + "</layer>\n";
}

/// An original named uuid(\a number) with \a content.
QByteArray cellElement(int number, const QByteArray &content)
{
    return "<drawing type=\"original\" identifier=\"" + uuid(number).toByteArray() + "\">" + content + "</drawing>\n";
}

QByteArray imageElement(const QByteArray &block)
{
    return "<image>" + block + "</image>";
}

/// A scene with a reference layer of \a pictures, named uuid(100) with cells uuid(101) and so on.
std::unique_ptr<Scene> sceneWithPictures(const QList<QImage> &pictures)
{
    auto scene = emptyScene();
    const auto layer = std::make_shared<ReferenceLayer>(scene->frameSize());
    layer->setIdentifier(uuid(100));
    layer->setName("R");
    QList<std::shared_ptr<LayerItem>> cells;
    for (const QImage &picture : pictures) {
        cells.append(std::make_shared<LayerItem>(LayerItem::Type::Original, std::make_shared<ImageDrawing>(picture)));
        cells.last()->identifier = uuid(100 + int(cells.size()));
    }
    layer->setFrames(cells);
    scene->insertLayer(layer, 0);
    return scene;
}

} // namespace

/// Reference layers on their way into a file and out again.
class tst_ReferenceLayers : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void layerIsWrittenWithItsOpacityAndPictures();
    void picturesAreStoredInTheirStreamForm();
    void cellsAreCountedAmongTheDrawings();
    void savedAndReadLayerIsTheSame();
    void savedAndReadPicturesAreThePixelsTheyWere_data();
    void savedAndReadPicturesAreThePixelsTheyWere();
    void savedAndReadTimingIsTheSame();
    void savedAndReadLinksStand();
    void savingTwiceGivesTheSameBytes();
    void handWrittenPictureIsRead();
    void opacityIsRead_data();
    void opacityIsRead();
    void colorIsPassedOver();
    void strokesInAReferenceLayerAreSkipped();
    void originalWithoutAPictureIsEmpty();
    void damagedPictureLeavesTheCellEmpty_data();
    void damagedPictureLeavesTheCellEmpty();
    void layerWithoutCellsGetsAnEmptyOne();
    void distantCloneFindsItsPicture_data();
    void distantCloneFindsItsPicture();
    void distantCloneWithoutTargetIsEmpty();
    void distantCloneOfAStrokeDrawingIsRefused();
    void copyIdIsRead();
    void copyIdOfALostPictureIsForgotten();
};

void tst_ReferenceLayers::initTestCase()
{
    QVERIFY(startRenderer());
}

void tst_ReferenceLayers::layerIsWrittenWithItsOpacityAndPictures()
{
    const auto scene = sceneWithPictures({pattern(QSize(3, 2), 5)});
    scene->setLayerBeyondLast(0, Layer::CycleDrawings);
    const QString expected = "<layer identifier=\"{00000064-0000-4000-8000-000000000000}\" name=\"R\" linked=\"no\" "
                             "visible=\"yes\" beyond=\"cycleDrawings\" type=\"reference\"> "
                             "<opacity>0.5</opacity> "
                             "<drawing type=\"original\" identifier=\"{00000065-0000-4000-8000-000000000000}\"> "
                             "<image>";
    QVERIFY(QString::fromUtf8(written(*scene)).simplified().contains(expected));
}

void tst_ReferenceLayers::picturesAreStoredInTheirStreamForm()
{
    const QImage picture = pattern(QSize(5, 4), 77);
    const QString file = QString::fromUtf8(written(*sceneWithPictures({picture, QImage()})));
    QRegularExpressionMatchIterator found = QRegularExpression("<image>([^<]*)</image>").globalMatch(file);
    const QByteArray first = QByteArray::fromBase64(found.next().captured(1).toLatin1());
    QCOMPARE(first.left(8), QByteArray("\0\0\0\1\x89PNG", 8));
    QCOMPARE(QImage::fromData(first.mid(4), "PNG"), picture);
    QCOMPARE(QByteArray::fromBase64(found.next().captured(1).toLatin1()), QByteArray(4, '\0'));
    QVERIFY(!found.hasNext());
}

void tst_ReferenceLayers::cellsAreCountedAmongTheDrawings()
{
    const auto scene = sceneWithPictures({pattern(QSize(3, 2), 5), QImage(), QImage()});
    scene->insertLayer(strokeLayer(*scene, 2, 4), 1);
    QVERIFY(written(*scene).contains("totalNumberOfDrawings=\"7\""));
}

void tst_ReferenceLayers::savedAndReadLayerIsTheSame()
{
    const auto scene = sceneWithPictures({pattern(QSize(3, 2), 5)});
    scene->setLayerOpacity(0, 0.35);
    scene->setLayerVisible(0, false);
    scene->setLayerLinked(0, true);
    scene->setLayerBeyondLast(0, Layer::FreezeLast);
    scene->setKeyDrawing(0, 1, true);
    scene->setOffPegsTransform(1, 0, QTransform::fromTranslate(3, -4));
    const auto read = sceneFrom(written(*scene));
    const auto *layer = qobject_cast<const ReferenceLayer *>(read->layer(0));
    QVERIFY(layer);
    QCOMPARE(layer->identifier(), uuid(100));
    QCOMPARE(layer->name(), "R");
    QCOMPARE(layer->opacity(), 0.35);
    QVERIFY(!layer->isVisible());
    QVERIFY(layer->isLinked());
    QCOMPARE(layer->beyondLast(), Layer::FreezeLast);
    QCOMPARE(layer->frameSize(), QSize(16, 8));
    QCOMPARE(layer->item(1)->identifier, uuid(101));
    QVERIFY(layer->item(1)->keyDrawing);
    QCOMPARE(layer->item(1)->offPegsTransform, QTransform::fromTranslate(3, -4));
}

void tst_ReferenceLayers::savedAndReadPicturesAreThePixelsTheyWere_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::newRow("transparent in places") << pattern(QSize(16, 8), 20);
    QTest::newRow("larger than the frame") << pattern(QSize(27, 28), 30);
    QTest::newRow("without transparency") << pattern(QSize(7, 5), 40).convertToFormat(QImage::Format_RGB32);
    QTest::newRow("grey") << pattern(QSize(7, 5), 40).convertToFormat(QImage::Format_Grayscale8);
    QTest::newRow("one pixel") << pattern(QSize(1, 1), 50);
}

void tst_ReferenceLayers::savedAndReadPicturesAreThePixelsTheyWere()
{
    QFETCH(QImage, picture);
    const auto read = sceneFrom(written(*sceneWithPictures({QImage(), picture})));
    QCOMPARE(read->lastFrame(0), 2);
    QVERIFY(imageAt(*read, 0, 1).isNull());
    QCOMPARE(imageAt(*read, 0, 2).convertToFormat(QImage::Format_ARGB32),
             picture.convertToFormat(QImage::Format_ARGB32));
}

void tst_ReferenceLayers::savedAndReadTimingIsTheSame()
{
    const auto scene = sceneWithPictures({pattern(QSize(3, 2), 1), pattern(QSize(3, 2), 2)});
    scene->addCloneDrawings(0, 1, 2);
    scene->addCloneDrawing(0, 4);
    const auto read = sceneFrom(written(*scene));
    const QList<int> seeds{1, 1, 1, 2, 2};
    QCOMPARE(read->lastFrame(0), 5);
    for (int frameId = 1; frameId <= 5; ++frameId) {
        QCOMPARE(imageAt(*read, 0, frameId), pattern(QSize(3, 2), seeds.at(frameId - 1)));
        QCOMPARE(read->item(0, frameId)->isClone(), frameId != 1 && frameId != 4);
    }
    QCOMPARE(read->item(0, 3)->drawing, read->item(0, 1)->drawing);
    QCOMPARE(read->item(0, 5)->drawing, read->item(0, 4)->drawing);
}

void tst_ReferenceLayers::savedAndReadLinksStand()
{
    const auto scene = sceneWithPictures({pattern(QSize(3, 2), 1), QImage()});
    scene->insertLayer(std::make_shared<ReferenceLayer>(scene->frameSize()), 1);
    const CellRef first = scene->originOfFrame(0, 1);
    QVERIFY(!scene->makeDistantClone(0, 2, first).isEmpty());
    QVERIFY(!scene->makeDistantClone(1, 1, first).isEmpty());
    const auto read = sceneFrom(written(*scene));
    QVERIFY(read->item(0, 2)->isDistantClone());
    QVERIFY(read->item(1, 1)->isDistantClone());
    QCOMPARE(read->item(0, 2)->drawing, read->item(0, 1)->drawing);
    QCOMPARE(read->item(1, 1)->drawing, read->item(0, 1)->drawing);
    QCOMPARE(read->item(0, 1)->clones, scene->item(0, 1)->clones);
    QCOMPARE(read->item(1, 1)->origin, first);
}

void tst_ReferenceLayers::savingTwiceGivesTheSameBytes()
{
    const auto scene = sceneWithPictures({pattern(QSize(9, 2), 5), QImage()});
    // The first reading adds the layers that the scene had not.
    const QByteArray once = written(*sceneFrom(written(*scene)));
    QCOMPARE(written(*sceneFrom(once)), once);
}

void tst_ReferenceLayers::handWrittenPictureIsRead()
{
    const QImage picture = pattern(QSize(6, 6), 90);
    const auto scene = sceneWithLayers(referenceElement(cellElement(101, imageElement(imageBlock(picture))) + hold));
    QCOMPARE(scene->layer(0)->layerType(), int(Layer::Reference));
    QCOMPARE(scene->item(0, 1)->identifier, uuid(101));
    QCOMPARE(imageAt(*scene, 0, 1), picture);
    QVERIFY(scene->item(0, 2)->isClone());
    QCOMPARE(scene->item(0, 2)->drawing, scene->item(0, 1)->drawing);
}

void tst_ReferenceLayers::opacityIsRead_data()
{
    QTest::addColumn<QByteArray>("element");
    QTest::addColumn<double>("opacity");
    QTest::newRow("given") << QByteArray("<opacity>0.8</opacity>") << 0.8;
    QTest::newRow("too much") << QByteArray("<opacity>7</opacity>") << 1.0;
    QTest::newRow("negative") << QByteArray("<opacity>-2</opacity>") << 0.0;
    QTest::newRow("no number") << QByteArray("<opacity>much</opacity>") << 0.5;
    QTest::newRow("missing") << QByteArray() << 0.5;
}

void tst_ReferenceLayers::opacityIsRead()
{
    QFETCH(QByteArray, element);
    QFETCH(double, opacity);
    QCOMPARE(sceneWithLayers(referenceElement(element))->visualLayer(0)->opacity(), opacity);
}

void tst_ReferenceLayers::colorIsPassedOver()
{
    const auto scene = sceneWithLayers(referenceElement("<color>#ff0000</color>" + cellElement(101, {})));
    QCOMPARE(scene->lastFrame(0), 1);
    QCOMPARE(scene->item(0, 1)->identifier, uuid(101));
}

void tst_ReferenceLayers::strokesInAReferenceLayerAreSkipped()
{
    const QByteArray strokes = "<strokes>" + bitmapBlock().base64() + "</strokes>";
    const QImage picture = pattern(QSize(2, 2), 9);
    const auto scene = sceneWithLayers(
        referenceElement(cellElement(101, strokes) + cellElement(102, strokes + imageElement(imageBlock(picture)))));
    QVERIFY(imageAt(*scene, 0, 1).isNull());
    QCOMPARE(imageAt(*scene, 0, 2), picture);
}

void tst_ReferenceLayers::originalWithoutAPictureIsEmpty()
{
    const auto scene =
        sceneWithLayers(referenceElement(cellElement(101, {}) + cellElement(102, imageElement(imageBlock({})))));
    QVERIFY(imageAt(*scene, 0, 1).isNull());
    QVERIFY(imageAt(*scene, 0, 2).isNull());
    QVERIFY(scene->item(0, 1)->drawing != scene->item(0, 2)->drawing);
}

void tst_ReferenceLayers::damagedPictureLeavesTheCellEmpty_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing at all") << QByteArray();
    QTest::newRow("half a marker") << QByteArray("\0\0", 2);
    QTest::newRow("a marker alone") << QByteArray("\0\0\0\1", 4);
    QTest::newRow("no picture behind it") << QByteArray("\0\0\0\1hello there", 15);
    const QByteArray whole = QByteArray::fromBase64(imageBlock(pattern(QSize(16, 16), 3)));
    QTest::newRow("cut in its head") << whole.left(24);
}

void tst_ReferenceLayers::damagedPictureLeavesTheCellEmpty()
{
    QFETCH(QByteArray, bytes);
    const QImage good = pattern(QSize(2, 2), 9);
    QStringList damages;
    const auto scene = sceneFrom(document(referenceElement(cellElement(101, imageElement(bytes.toBase64())) +
                                                           cellElement(102, imageElement(imageBlock(good))))),
                                 &damages);
    QCOMPARE(damages.size(), 1);
    QVERIFY2(QRegularExpression("^Line \\d+: a picture cannot be read$").match(damages[0]).hasMatch(),
             qPrintable(damages[0]));
    QCOMPARE(scene->lastFrame(0), 2);
    QVERIFY(imageAt(*scene, 0, 1).isNull());
    QCOMPARE(imageAt(*scene, 0, 2), good);
}

void tst_ReferenceLayers::layerWithoutCellsGetsAnEmptyOne()
{
    const auto scene = sceneWithLayers(referenceElement(hold + hold));
    QCOMPARE(scene->lastFrame(0), 1);
    QVERIFY(scene->item(0, 1)->isOriginal());
    QVERIFY(imageAt(*scene, 0, 1).isNull());
}

void tst_ReferenceLayers::distantCloneFindsItsPicture_data()
{
    QTest::addColumn<bool>("isBefore");
    QTest::newRow("before it") << true;
    QTest::newRow("behind it") << false;
}

void tst_ReferenceLayers::distantCloneFindsItsPicture()
{
    QFETCH(bool, isBefore);
    const QImage picture = pattern(QSize(4, 3), 9);
    const QByteArray target = cellElement(102, imageElement(imageBlock(picture)));
    const QByteArray link = distantClone(103, 100, 102) + hold;
    const auto scene = sceneWithLayers(referenceElement(isBefore ? link + target : target + link));
    const int frameId = isBefore ? 1 : 2;
    QVERIFY(scene->item(0, frameId)->isDistantClone());
    QCOMPARE(scene->item(0, frameId)->identifier, uuid(103));
    QCOMPARE(scene->item(0, frameId)->drawing, scene->findItem({uuid(100), uuid(102)})->drawing);
    QCOMPARE(scene->item(0, frameId + 1)->drawing, scene->item(0, frameId)->drawing);
    QCOMPARE(imageAt(*scene, 0, frameId), picture);
}

void tst_ReferenceLayers::distantCloneWithoutTargetIsEmpty()
{
    const auto scene = sceneWithLayers(referenceElement(cellElement(101, {}) + distantClone(102, 100, 999)));
    QVERIFY(imageAt(*scene, 0, 2).isNull());
    QVERIFY(scene->item(0, 2)->drawing != scene->item(0, 1)->drawing);
}

void tst_ReferenceLayers::distantCloneOfAStrokeDrawingIsRefused()
{
    const QByteArray strokeLayerElement = "<layer identifier=\"" + uuid(200).toByteArray() + "\" type=\"stroke\">" +
                                          original(201, bitmapBlock().base64()) + "</layer>\n";
    Scene scene;
    const ReadResult read =
        readInto(scene, document(strokeLayerElement + referenceElement(distantClone(102, 200, 201))));
    QCOMPARE(read.result, FileResult::Error);
    QVERIFY2(read.error.startsWith("A distant clone shows a drawing from a layer of another type\nLine "),
             qPrintable(read.error));
}

void tst_ReferenceLayers::copyIdIsRead()
{
    const auto scene = sceneWithLayers(referenceElement(
        "<drawing type=\"original\" identifier=\"" + uuid(101).toByteArray() + "\" copyId=\"" + uuid(7).toByteArray() +
        "\">" + imageElement(imageBlock(pattern(QSize(2, 2), 1))) + "</drawing>\n"));
    QCOMPARE(scene->item(0, 1)->drawing->copyId(), uuid(7));
}

void tst_ReferenceLayers::copyIdOfALostPictureIsForgotten()
{
    const auto scene = sceneWithLayers(referenceElement(
        "<drawing type=\"original\" identifier=\"" + uuid(101).toByteArray() + "\" copyId=\"" + uuid(7).toByteArray() +
        "\">" + imageElement(imageBlock(pattern(QSize(2, 2), 1)).left(40)) + "</drawing>\n"));
    QVERIFY(scene->item(0, 1)->drawing->copyId().isNull());
}

QTEST_MAIN(tst_ReferenceLayers)
#include "tst_referencelayers.moc"
