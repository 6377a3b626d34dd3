#include "support/scenedecoration.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/pentool.h"
#include "support/scenegenerator.h"

#include <QPainterPath>

#include <cmath>

using namespace Model;

namespace TestSupport {

namespace {

/// From 0 to 1, with as many digits as a double has.
double fraction(RandomNumbers &random)
{
    return double(random.bits() >> 11) / double(quint64(1) << 53);
}

/// Of any order of magnitude from 1e-\a digits to 1e\a digits, with either sign.
double number(RandomNumbers &random, int digits)
{
    const double size = std::pow(10.0, random.between(-digits, digits - 1)) * (1 + 9 * fraction(random));
    return random.chance(50) ? size : -size;
}

QString name(RandomNumbers &random)
{
    static const QStringList odd{
        "",
        " ",
        "  two  spaces  ",
        "tab\there",
        "line\nbreak",
        "\r\nDOS\r\n",
        "\r",
        "<b>&amp;\"quoted\" & 'apostrophes'</b>",
        "]]>",
        "<!-- -->",
        "%1 %2 %n",
        "a;b;c",
        "/etc/../x\\y",
        QString::fromUtf8("Größe – Übung"),
        QString::fromUtf8("動画 ١٢٣ עברית"),
        QString::fromUtf8("🎬🚶‍♀️"),
        QString::fromUtf8("a\u0085b\u2028c\ufeffd\u00a0"),
        QString::fromUtf8("\U0001fffe\U0010ffff"),
        QString("bell\x07 escape\x1b delete\x7f"),
        QString(QChar(0xd800)) + "half" + QChar(0xdc00),
        QString(QChar(0)) + "nul",
        QString(QChar(0xfffe)) + QChar(0xffff),
        QString(QChar(0xfeff)) + "mark of byte order",
        QString(500, 'l'),
    };
    if (random.chance(60))
        return random.oneOf(odd);
    QString text;
    for (int length = random.between(0, 12); length > 0; --length)
        text += QChar(ushort(random.chance(70) ? random.between(0, 0x17f) : random.between(0, 0xffff)));
    return text;
}

QTransform cellTransform(RandomNumbers &random)
{
    QTransform transform;
    if (random.chance(80))
        transform.translate(number(random, 5), random.chance(20) ? 0.0 : number(random, 5));
    if (random.chance(60))
        transform.rotate(random.chance(40) ? random.between(-8, 8) * 45 : fraction(random) * 720 - 360);
    if (random.chance(15))
        transform.scale(0.25 + 4 * fraction(random), 0.25 + 4 * fraction(random));
    return transform;
}

QPainterPath region(QSize frame, RandomNumbers &random)
{
    const QPointF centre(frame.width() * fraction(random), frame.height() * fraction(random));
    QPainterPath path;
    if (random.chance(50))
        path.addEllipse(centre, 1 + 4 * fraction(random), 1 + 4 * fraction(random));
    else
        path.addRect(QRectF(centre, QSizeF(1 + 5 * fraction(random), 1 + 5 * fraction(random))));
    return path;
}

std::unique_ptr<Model::Stroke> line(QSize frame, RandomNumbers &random)
{
    const PenTool pen(Tool::PenType(random.between(0, 2)));
    const EraserTool eraser(Tool::EraserType(random.between(0, 2)));
    auto stroke = std::make_unique<SingleStroke>(frame, random.chance(75) ? static_cast<const Tool *>(&pen) : &eraser);
    for (int samples = random.between(1, 4); samples > 0; --samples) {
        const QPointF point(frame.width() * fraction(random), frame.height() * fraction(random));
        stroke->addSample({point, fraction(random), quint32(samples)});
        stroke->renderLatestSegment();
    }
    stroke->finish();
    stroke->renderLatestSegment();
    return stroke;
}

void addGroup(StrokeDrawing &drawing, RandomNumbers &random)
{
    auto group = std::make_unique<CompoundStroke>();
    for (int blocks = random.between(1, 3); blocks > 0; --blocks)
        group->append(randomBlock(drawing.size(), random));
    if (random.chance(50))
        group->setTransform(QTransform::fromScale(0.5 + fraction(random), 0.5 + fraction(random)));
    if (random.chance(50))
        group->addCut(region(drawing.size(), random));
    if (random.chance(30))
        group->setKeep(region(drawing.size(), random));
    if (random.chance(30))
        group->append(randomBlock(drawing.size(), random));
    drawing.addStroke(std::move(group));
}

void editStrokes(StrokeDrawing &drawing, RandomNumbers &random, DecoratedStrokes strokes)
{
    for (int edits = random.between(0, 4); edits > 0; --edits) {
        const int kind = random.between(0, strokes == DecoratedStrokes::Pens ? 4 : 3);
        if (kind == 0)
            addGroup(drawing, random);
        else if (kind == 1)
            drawing.cutPath(region(drawing.size(), random));
        else if (kind == 2)
            drawing.addStroke(drawing.extract(region(drawing.size(), random)));
        else if (kind == 3)
            drawing.addStroke(randomBlock(drawing.size(), random));
        else
            drawing.addStroke(line(drawing.size(), random));
    }
}

/// A picture of one of the formats that a PNG file gives back as it took them.
std::shared_ptr<Drawing> picture(RandomNumbers &random)
{
    const auto format = random.oneOf(QList<QImage::Format>{QImage::Format_RGB32, QImage::Format_ARGB32});
    QImage image(random.between(1, 9), random.between(1, 9), format);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, uint(random.bits()));
    }
    return std::make_shared<ImageDrawing>(image);
}

void decorateCells(VisualLayer &layer, RandomNumbers &random, DecoratedStrokes strokes)
{
    for (int frameId = 1; frameId <= layer.numFrames(); ++frameId) {
        LayerItem &cell = *layer.item(frameId);
        if (random.chance(20))
            cell.offPegsTransform = cellTransform(random);
        if (!cell.isOriginal())
            continue;
        if (auto *drawing = dynamic_cast<StrokeDrawing *>(cell.drawing.get())) {
            if (random.chance(30))
                editStrokes(*drawing, random, strokes);
        } else if (random.chance(30) && cell.clones.isEmpty()) {
            cell.drawing = picture(random);
            layer.spreadDrawing(frameId);
        }
        if (random.chance(25))
            cell.drawing->setCopyId(QUuid(uint(random.bits()), 1, 2, 3, 4, 5, 6, 7, 8, 9, 10));
    }
}

void decorateLayer(Layer &layer, RandomNumbers &random, DecoratedStrokes strokes)
{
    if (random.chance(60))
        layer.setName(name(random));
    if (auto *audio = dynamic_cast<AudioLayer *>(&layer)) {
        QByteArray sound(random.chance(50) ? random.between(0, 3000) : 0, Qt::Uninitialized);
        for (char &byte : sound)
            byte = char(random.bits());
        audio->setOriginalAudioData(sound);
        audio->setOffset(random.chance(30) ? 0 : number(random, 4));
    }
    if (auto *visual = dynamic_cast<VisualLayer *>(&layer)) {
        if (random.chance(50))
            visual->setOpacity(fraction(random));
        decorateCells(*visual, random, strokes);
    }
    if (auto *drawn = dynamic_cast<StrokeLayer *>(&layer); drawn && random.chance(50))
        drawn->setColor(QColor(random.between(0, 255), random.between(0, 255), random.between(0, 255)));
}

} // namespace

void decorateScene(Scene &scene, RandomNumbers &random, DecoratedStrokes strokes)
{
    static const QList<double> rates{0.1, 1, 12, 23.976, 23.976023976, 24, 25, 29.97, 30000.0 / 1001, 59.94005994, 60};
    scene.setFrameRate(random.chance(70) ? random.oneOf(rates) : 0.1 + 59.9 * fraction(random));
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx)
        decorateLayer(*scene.layer(layerIdx), random, strokes);
    // Sound that begins before frame 1 begins there at another rate, too, if need be between two hundredths of a frame.
    if (random.chance(20))
        scene.setFrameRate(random.oneOf(rates));
    // Each change of the size transforms the drawings and the cells that are off their pegs.
    for (int changes = random.between(0, 2); changes > 0; --changes) {
        const QSize size{random.between(1, 40), random.between(1, 30)};
        scene.setFrameSize(size, MR::FitMode(random.between(0, 3)));
    }
    if (random.chance(50))
        scene.setHighestUsedLayerNumber(random.between(0, 1'000'000));
}

} // namespace TestSupport
