#include "exportscenes.h"

#include "libmodel/files/blockbuilder.h"
#include "libmodel/files/sceneelements.h"
#include "libmodel/files/scenefixture.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <random>

namespace TestSupport {

using namespace Model;

namespace {

void addBlock(StrokeLayer &layer, int frameId, QRect rect)
{
    drawingAt(layer, frameId).addStroke(block(rect, 255));
}

void addInk(Scene &scene)
{
    const auto layer = strokeLayer(scene, 1);
    layer->setName("Ink");
    layer->setColor(inkColor);
    layer->setLinked(true);
    layer->setLayerBeyondLast(Layer::FreezeLast);
    addBlock(*layer, 1, QRect(1, 1, 2, 2));
    scene.insertLayer(layer, 0);
    scene.addCloneDrawing(0, 1);
    scene.addBlankDrawing(0, 2);
    addBlock(*layer, 3, QRect(5, 2, 1, 1));
    scene.addBlankDrawing(0, 3);
    scene.makeDistantClone(0, 4, layer->cellRef(1));
}

void addFill(Scene &scene)
{
    const auto layer = strokeLayer(scene, 2);
    layer->setName("Fill");
    layer->setColor(fillColor);
    layer->setOpacity(0.5);
    layer->setVisible(false);
    addBlock(*layer, 1, QRect(0, 0, 16, 4));
    scene.insertLayer(layer, 1);
}

void addPhoto(Scene &scene)
{
    QImage picture(scene.frameSize(), QImage::Format_ARGB32);
    picture.fill(photoColor);
    const auto layer = std::make_shared<ReferenceLayer>(scene.frameSize());
    layer->setName("Photo");
    layer->setOpacity(0.5);
    layer->setIdentifier(uuid(300));
    const auto cell = std::make_shared<LayerItem>(LayerItem::Type::Original, std::make_shared<ImageDrawing>(picture));
    cell->identifier = uuid(301);
    layer->setFrames({cell});
    scene.insertLayer(layer, 2);
}

void addSoundAndNotes(Scene &scene)
{
    const auto sound = std::make_shared<AudioLayer>();
    sound->setName("Sound");
    sound->setOriginalAudioData("no sound");
    sound->restoreOffset(2.5);
    scene.insertLayer(sound, 3);
    const auto notes = std::make_shared<AnnotationLayer>();
    notes->setName("Notes");
    notes->appendImage({});
    notes->appendImage(note(QSize(16, 8), QPoint(3, 3), 200));
    notes->appendImage({});
    scene.insertLayer(notes, 4);
}

} // namespace

QByteArray sceneOfAllKinds()
{
    const auto scene = emptyScene();
    addInk(*scene);
    addFill(*scene);
    addPhoto(*scene);
    addSoundAndNotes(*scene);
    scene->setFrameRange(2, 3, 3, 0);
    return written(*scene);
}

QByteArray longScene(int frames, QSize size)
{
    const auto scene = emptyScene();
    scene->setFrameSize(size, MR::FitMode::FitModeIgnore);
    const auto layer = strokeLayer(*scene, 1);
    layer->setName("A");
    QImage noise(size, QImage::Format_Alpha8);
    std::minstd_rand random(1);
    for (int y = 0; y < size.height(); ++y)
        std::generate_n(noise.scanLine(y), size.width(), [&random] { return uchar(random() >> 8U); });
    drawingAt(*layer, 1).addStroke(std::make_unique<BitmapStroke>(noise, noise.rect()));
    scene->insertLayer(layer, 0);
    if (frames > 1)
        scene->appendCloneDrawings(0, 1, frames - 1);
    scene->setFrameRange(1, frames, 1, 0);
    return written(*scene);
}

namespace {

/// One line through the middle of 16 x 8 pixels, which nothing but a renderer can paint.
QByteArray lineWithoutImage()
{
    BlockBuilder strokes;
    strokes.size(16, 8).i64(1).i32(0);         // one single stroke,
    strokes.u8(1).i32(1).rect(0, 1, 15, 6);    // of the marker
    strokes.i32(0).i32(1).i32(1);              // without samples, of one line
    strokes.f32(1).f32(4).f32(15).f32(4);      // through the middle
    strokes.f32(1).f32(1).f32(2.5F).f32(2.5F); // of full opacity, 5 pixels wide
    strokes.plainCompoundEnd().i32(-1);        // no flattened image
    return strokes.base64();
}

QByteArray damagedBlock()
{
    return bitmapBlock().i32(-1).bytes().left(20).toBase64();
}

/// A document of \a count layers of one drawing each, which has \a strokes.
QByteArray layersOf(int count, const QByteArray &strokes)
{
    constexpr int numbersPerLayer = 100;
    QByteArray layers;
    for (int number = numbersPerLayer; number <= count * numbersPerLayer; number += numbersPerLayer)
        layers += layerElement(original(number + 1, strokes), number);
    return document(layers);
}

} // namespace

QByteArray sceneToRender()
{
    return document(layerElement(original(101, lineWithoutImage())));
}

QByteArray sceneToRenderInPart(const QByteArray &beyond)
{
    QByteArray line = layerElement(original(101, lineWithoutImage()) + hold + original(102));
    line.replace("visible=\"yes\"", "visible=\"no\" beyond=\"" + beyond + '"').replace("\"A\"", "\"Line\"");
    QByteArray shown;
    for (int number = 201; number <= 205; ++number)
        shown += original(number);
    shown = layerElement(shown, 200).replace("\"A\"", "\"Shown\"");
    return document(line + shown, "frameRange=\"2;3\" activeLayerIndex=\"1\"");
}

QByteArray sceneWithLayerName(const QByteArray &name)
{
    return document(layerElement(original(101)).replace("name=\"A\"", "name=\"" + name + '"'));
}

QByteArray damagedScene()
{
    return document(layerElement(original(101, damagedBlock())) + layerElement(original(201), 200));
}

QByteArray sceneOfDamages(int count)
{
    return layersOf(count, damagedBlock());
}

QByteArray sceneOfLayers(int count)
{
    return layersOf(count, {});
}

} // namespace TestSupport
