#include "export/sceneinfo.h"

#include "export/console.h"
#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

namespace Export {

namespace {

using Model::Layer;

QString kindOf(const Layer &layer)
{
    switch (layer.layerType()) {
    case Layer::Reference:
        return QStringLiteral("reference");
    case Layer::Audio:
        return QStringLiteral("audio");
    case Layer::Annotation:
        return QStringLiteral("annotation");
    default:
        return QStringLiteral("stroke");
    }
}

QString beyondOf(const Layer &layer)
{
    switch (layer.beyondLast()) {
    case Layer::FreezeLast:
        return QStringLiteral("freezeLast");
    case Layer::CycleDrawings:
        return QStringLiteral("cycleDrawings");
    default:
        return QStringLiteral("showNothing");
    }
}

LayerInfo::Pictures picturesOf(const Model::VisualLayer &layer)
{
    LayerInfo::Pictures pictures{
        .visible = layer.isVisible(), .opacity = layer.opacity(), .color = {}, .beyond = beyondOf(layer)};
    if (const auto *colored = dynamic_cast<const Model::StrokeLayer *>(&layer))
        pictures.color = colored->color();
    for (const auto &cell : layer.frames()) {
        pictures.originals += cell->isOriginal() ? 1 : 0;
        pictures.clones += cell->isClone() ? 1 : 0;
        pictures.distantClones += cell->isDistantClone() ? 1 : 0;
    }
    return pictures;
}

LayerInfo layerInfo(const Layer &layer)
{
    LayerInfo info{.kind = kindOf(layer),
                   .name = layer.name(),
                   .linked = layer.isLinked(),
                   .frames = layer.numFrames(),
                   .pictures = {}};
    if (const auto *visual = dynamic_cast<const Model::VisualLayer *>(&layer))
        info.pictures = picturesOf(*visual);
    else if (const auto *notes = dynamic_cast<const Model::AnnotationLayer *>(&layer))
        info.frames = int(notes->images().size());
    else
        info.frames = 0;
    return info;
}

QString yesOrNo(bool value)
{
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}

/// A line "  label      value".
QString labelled(const QString &label, const QString &value)
{
    constexpr int labelWidth = 14;
    return QStringLiteral("  ") + label.leftJustified(labelWidth) + value + u'\n';
}

using Row = std::array<QString, 11>;

/// The columns of a layer, the name last: nothing has to be lined up behind it.
Row rowOf(const LayerInfo &layer)
{
    const QString none = QStringLiteral("-");
    Row row{layer.kind,
            none,
            none,
            none,
            yesOrNo(layer.linked),
            none,
            QString::number(layer.frames),
            none,
            none,
            none,
            printable(layer.name)};
    if (const auto &pictures = layer.pictures) {
        row[1] = pictures->color ? pictures->color->name() : none;
        row[2] = QString::number(pictures->opacity);
        row[3] = yesOrNo(pictures->visible);
        row[5] = pictures->beyond;
        row[7] = QString::number(pictures->originals);
        row[8] = QString::number(pictures->clones);
        row[9] = QString::number(pictures->distantClones);
    }
    return row;
}

/// \a rows below each other, each column as wide as its widest text.
QString table(const QList<Row> &rows)
{
    std::array<qsizetype, std::tuple_size_v<Row>> widths{};
    for (const Row &row : rows) {
        for (size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].size());
    }
    QString text;
    for (const Row &row : rows) {
        QString line = QStringLiteral(" ");
        for (size_t column = 0; column < row.size(); ++column)
            line += u' ' + row[column].leftJustified(widths[column]);
        while (line.endsWith(u' '))
            line.chop(1);
        text += line + u'\n';
    }
    return text;
}

QJsonObject jsonOf(const LayerInfo &layer)
{
    QJsonObject object{{QStringLiteral("kind"), layer.kind},
                       {QStringLiteral("name"), layer.name},
                       {QStringLiteral("linked"), layer.linked},
                       {QStringLiteral("frames"), layer.frames}};
    if (const auto &pictures = layer.pictures) {
        object.insert(QStringLiteral("visible"), pictures->visible);
        object.insert(QStringLiteral("opacity"), pictures->opacity);
        if (pictures->color)
            object.insert(QStringLiteral("color"), pictures->color->name());
        object.insert(QStringLiteral("beyond"), pictures->beyond);
        object.insert(QStringLiteral("originals"), pictures->originals);
        object.insert(QStringLiteral("clones"), pictures->clones);
        object.insert(QStringLiteral("distantClones"), pictures->distantClones);
    }
    return object;
}

/// \a json with the control characters escaped that JSON allows in texts, but a terminal may obey.
QString withoutControlCharacters(QString json)
{
    constexpr char16_t first = 0x7f;
    constexpr char16_t last = 0x9f;
    for (char16_t character = first; character <= last; ++character)
        json.replace(QChar(character), QStringLiteral("\\u%1").arg(int(character), 4, 16, QLatin1Char('0')));
    return json;
}

} // namespace

SceneInfo sceneInfo(const Model::Scene &scene)
{
    SceneInfo info{.file = scene.filename(),
                   .frameSize = scene.frameSize(),
                   .frameRate = scene.frameRate(),
                   .frames = scene.maximumFrameNumber(),
                   .rangeFirst = scene.rangeFirst(),
                   .rangeLast = scene.rangeLast(),
                   .activeFrame = scene.activeFrame(),
                   .activeLayer = scene.visualIndex(scene.activeLayerIdx()),
                   .layers = {},
                   .damages = {}};
    for (const int layerIdx : scene.layerOrder())
        info.layers += layerInfo(*scene.layer(layerIdx));
    if (const auto *sound = dynamic_cast<const Model::AudioLayer *>(scene.layer(scene.audioLayerIdx()))) {
        info.soundBytes = sound->originalAudioData().size();
        info.soundOffset = sound->offsetFrames();
    }
    if (const auto *notes = dynamic_cast<const Model::AnnotationLayer *>(scene.layer(scene.annotationLayerIdx())))
        info.notes = int(std::ranges::count_if(notes->images(), [](const QImage &image) { return !image.isNull(); }));
    return info;
}

QString plainText(const SceneInfo &info)
{
    const auto number = [](auto value) { return QString::number(value); };
    QString text = printable(info.file) + u'\n';
    text += labelled(QStringLiteral("frame size"),
                     QStringLiteral("%1 x %2 pixels").arg(info.frameSize.width()).arg(info.frameSize.height()));
    text += labelled(QStringLiteral("frame rate"), QStringLiteral("%1 per second").arg(info.frameRate));
    text += labelled(QStringLiteral("frames"), number(info.frames));
    text += labelled(QStringLiteral("range"), QStringLiteral("%1 to %2").arg(info.rangeFirst).arg(info.rangeLast));
    const QString activeName = info.layers.value(info.activeLayer).name;
    text += labelled(QStringLiteral("active"),
                     QStringLiteral("frame %1 of layer %2").arg(info.activeFrame).arg(printable(activeName)));
    text += labelled(QStringLiteral("sound"),
                     info.soundBytes == 0
                         ? QStringLiteral("none")
                         : QStringLiteral("%1 bytes, from frame offset %2").arg(info.soundBytes).arg(info.soundOffset));
    text += labelled(QStringLiteral("notes"), number(info.notes));
    text += labelled(QStringLiteral("rendering"),
                     info.needsRendering ? QStringLiteral("needed") : QStringLiteral("not needed"));
    text += labelled(QStringLiteral("damages"), number(info.damageCount));

    QList<Row> rows{{QStringLiteral("layer"), QStringLiteral("colour"), QStringLiteral("opacity"),
                     QStringLiteral("visible"), QStringLiteral("linked"), QStringLiteral("beyond"),
                     QStringLiteral("frames"), QStringLiteral("originals"), QStringLiteral("clones"),
                     QStringLiteral("distant"), QStringLiteral("name")}};
    for (const LayerInfo &layer : info.layers)
        rows += rowOf(layer);
    return text + u'\n' + table(rows);
}

QString jsonText(const SceneInfo &info)
{
    QJsonArray layers;
    for (const LayerInfo &layer : info.layers)
        layers.append(jsonOf(layer));
    const QJsonObject object{
        {QStringLiteral("file"), info.file},
        {QStringLiteral("frameSize"), QJsonObject{{QStringLiteral("width"), info.frameSize.width()},
                                                  {QStringLiteral("height"), info.frameSize.height()}}},
        {QStringLiteral("frameRate"), info.frameRate},
        {QStringLiteral("frames"), info.frames},
        {QStringLiteral("range"),
         QJsonObject{{QStringLiteral("first"), info.rangeFirst}, {QStringLiteral("last"), info.rangeLast}}},
        {QStringLiteral("active"),
         QJsonObject{{QStringLiteral("frame"), info.activeFrame}, {QStringLiteral("layer"), info.activeLayer}}},
        {QStringLiteral("layers"), layers},
        {QStringLiteral("sound"), QJsonObject{{QStringLiteral("bytes"), qint64(info.soundBytes)},
                                              {QStringLiteral("offsetFrames"), info.soundOffset}}},
        {QStringLiteral("notes"), info.notes},
        {QStringLiteral("needsRendering"), info.needsRendering},
        {QStringLiteral("damages"), QJsonArray::fromStringList(info.damages)},
    };
    return withoutControlCharacters(QString::fromUtf8(QJsonDocument(object).toJson()));
}

} // namespace Export
