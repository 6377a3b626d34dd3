#include "support/scenesnapshot.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QDataStream>
#include <QDebug>
#include <QHash>

#include <cmath>

using namespace Model;

namespace TestSupport {

namespace {

/// 0 for a null image only.
size_t hashOf(const QImage &image)
{
    if (image.isNull())
        return 0;
    const qsizetype used = (qsizetype(image.width()) * image.depth() + 7) / 8;
    size_t hash = qHashMulti(1, int(image.format()), image.width(), image.height());
    // What fills up a line to whole words is nobody's.
    for (int y = 0; y < image.height(); ++y)
        hash = qHashBits(image.constScanLine(y), size_t(used), hash);
    return hash | 1;
}

/// 0 for a null selection only.
size_t hashOf(const FloatingSelection &selection)
{
    if (selection.isNull())
        return 0;
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    selection.content()->write(stream);
    const FloatingSelection::Transform place = selection.transform();
    stream << place.scale << place.rotation << place.translation << place.pivot << selection.opacity()
           << selection.collapsesOnStamp() << selection.isCutOut();
    return qHash(bytes) | 1;
}

DrawingState stateOf(const Drawing &drawing)
{
    DrawingState state;
    state.type = int(drawing.type());
    state.copyId = drawing.copyId();
    state.name = drawing.name();
    if (const auto *strokes = dynamic_cast<const StrokeDrawing *>(&drawing)) {
        state.pixels = hashOf(strokes->image());
        state.strokes = strokes->strokes().recursiveCount();
        state.transform = strokes->strokes().transform();
        state.size = strokes->size();
    } else if (const auto *picture = dynamic_cast<const ImageDrawing *>(&drawing)) {
        state.pixels = hashOf(picture->image());
    }
    return state;
}

/// Numbers the drawings in the order in which they come.
class DrawingNumbers
{
public:
    explicit DrawingNumbers(std::vector<DrawingState> &states) : m_states(states) {}

    int numberOf(const Drawing *drawing)
    {
        if (drawing == m_lastDrawing)
            return m_lastNumber;
        m_lastDrawing = drawing;
        if (const auto known = m_numbers.constFind(drawing); known != m_numbers.cend()) {
            m_lastNumber = *known;
        } else {
            m_lastNumber = int(m_states.size());
            m_numbers.insert(drawing, m_lastNumber);
            m_states.push_back(stateOf(*drawing));
        }
        return m_lastNumber;
    }

private:
    std::vector<DrawingState> &m_states;
    QHash<const Drawing *, int> m_numbers;
    const Drawing *m_lastDrawing = nullptr;
    int m_lastNumber = -1;
};

void takeCells(LayerState &state, const VisualLayer &layer, DrawingNumbers &numbers)
{
    state.visible = layer.isVisible();
    state.opacity = layer.opacity();
    if (const auto *strokes = dynamic_cast<const StrokeLayer *>(&layer))
        state.color = strokes->color();
    state.cells.reserve(size_t(layer.frames().size()));
    for (const auto &cell : layer.frames())
        state.cells.push_back({int(cell->type), numbers.numberOf(cell->drawing.get()), cell->keyDrawing,
                               cell->identifier, cell->offPegsTransform, cell->clones, cell->origin});
}

LayerState stateOf(const Layer &layer, DrawingNumbers &numbers)
{
    LayerState state;
    state.type = layer.layerType();
    state.identifier = layer.identifier();
    state.name = layer.name();
    state.linked = layer.isLinked();
    state.beyondLast = layer.beyondLast();
    if (const auto *visual = dynamic_cast<const VisualLayer *>(&layer)) {
        takeCells(state, *visual, numbers);
    } else if (const auto *annotation = dynamic_cast<const AnnotationLayer *>(&layer)) {
        for (const QImage &image : annotation->images())
            state.notes.push_back(hashOf(image));
        // A frame behind the list has no note either.
        while (!state.notes.empty() && state.notes.back() == 0)
            state.notes.pop_back();
    } else if (const auto *audio = dynamic_cast<const AudioLayer *>(&layer)) {
        state.audioOffset = audio->offsetFrames();
        state.audible = audio->isAudible();
        state.sound = qHash(audio->originalAudioData());
    }
    return state;
}

/// Collects lines "where: one -> other".
class Differences
{
public:
    template<class Value>
    void compare(const QString &where, const Value &one, const Value &other)
    {
        if (one == other)
            return;
        QDebug(&m_text).nospace() << qUtf8Printable(where) << ": " << one << " -> " << other << '\n';
    }

    void compare(const QString &where, const DrawingState &one, const DrawingState &other)
    {
        compare(where + " type", one.type, other.type);
        compare(where + " pixels", one.pixels, other.pixels);
        compare(where + " strokes", one.strokes, other.strokes);
        compare(where + " transform", one.transform, other.transform);
        compare(where + " size", one.size, other.size);
        compare(where + " copyId", one.copyId, other.copyId);
        compare(where + " name", one.name, other.name);
    }

    void compare(const QString &where, const CellState &one, const CellState &other)
    {
        compare(where + " type", one.type, other.type);
        compare(where + " drawing", one.drawing, other.drawing);
        compare(where + " key", one.keyDrawing, other.keyDrawing);
        compare(where + " identifier", one.identifier, other.identifier);
        compare(where + " transform", one.transform, other.transform);
        compare(where + " clones", texts(one.clones), texts(other.clones));
        compare(where + " origin", texts({one.origin}), texts({other.origin}));
    }

    void compare(const QString &where, const LayerState &one, const LayerState &other)
    {
        compare(where + " type", one.type, other.type);
        compare(where + " identifier", one.identifier, other.identifier);
        compare(where + " name", one.name, other.name);
        compare(where + " linked", one.linked, other.linked);
        compare(where + " beyondLast", one.beyondLast, other.beyondLast);
        compare(where + " visible", one.visible, other.visible);
        compare(where + " opacity", one.opacity, other.opacity);
        compare(where + " color", one.color, other.color);
        compareAll(where + " cell ", one.cells, other.cells, 1);
        compareAll(where + " note ", one.notes, other.notes, 1);
        compare(where + " offset", one.audioOffset, other.audioOffset);
        compare(where + " audible", one.audible, other.audible);
        compare(where + " sound", one.sound, other.sound);
    }

    template<class State>
    void compareAll(const QString &what, const std::vector<State> &ones, const std::vector<State> &others, int base)
    {
        compare("number of:" + what, ones.size(), others.size());
        for (size_t i = 0; i < std::min(ones.size(), others.size()); ++i)
            compare(what + QString::number(int(i) + base), ones[i], others[i]);
    }

    [[nodiscard]] QString text() const { return m_text; }

private:
    static QStringList texts(const QList<CellRef> &refs)
    {
        QStringList texts;
        for (const CellRef &ref : refs)
            texts += ref.layer.toString(QUuid::WithoutBraces) + '/' + ref.cell.toString(QUuid::WithoutBraces);
        return texts;
    }

    QString m_text;
};

} // namespace

bool LayerState::operator==(const LayerState &other) const
{
    // An offset in front of frame 1 is rescaled by each change of the frame rate, and there are no hundredths of frames
    // that survive this to the last bit.
    return type == other.type && identifier == other.identifier && name == other.name && linked == other.linked &&
           beyondLast == other.beyondLast && visible == other.visible && opacity == other.opacity &&
           color == other.color && cells == other.cells && notes == other.notes && audible == other.audible &&
           sound == other.sound && std::abs(audioOffset - other.audioOffset) < 1e-9;
}

SceneSnapshot::SceneSnapshot(const Scene &scene)
    : frameSize(scene.frameSize()),
      frameRate(scene.frameRate()),
      rangeFirst(scene.rangeFirst()),
      rangeLast(scene.rangeLast()),
      maximumFrameNumber(scene.maximumFrameNumber()),
      activeFrame(scene.activeFrame()),
      activeLayerIdx(scene.activeLayerIdx()),
      displayOrder(scene.layerOrder())
{
    DrawingNumbers numbers(drawings);
    layers.reserve(size_t(scene.layerCount()));
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx)
        layers.push_back(stateOf(*scene.layer(layerIdx), numbers));
}

SceneSnapshot::SceneSnapshot(const MRScene &mrScene) : SceneSnapshot(*mrScene.scene())
{
    floating = hashOf(mrScene.floatingSelection());
}

QString SceneSnapshot::diff(const SceneSnapshot &other) const
{
    if (*this == other)
        return {};
    Differences found;
    found.compare("frame size", frameSize, other.frameSize);
    found.compare("frame rate", frameRate, other.frameRate);
    found.compare("first of range", rangeFirst, other.rangeFirst);
    found.compare("last of range", rangeLast, other.rangeLast);
    found.compare("maximum", maximumFrameNumber, other.maximumFrameNumber);
    found.compare("active frame", activeFrame, other.activeFrame);
    found.compare("active layer", activeLayerIdx, other.activeLayerIdx);
    found.compare("display order", displayOrder, other.displayOrder);
    found.compareAll("layer ", layers, other.layers, 0);
    found.compareAll("drawing ", drawings, other.drawings, 0);
    found.compare("floating selection", floating, other.floating);
    return found.text();
}

QString SceneSnapshot::describe() const
{
    static const char *const types[] = {"", "stroke", "paint", "reference", "audio", "annotation"};
    QString text = QStringLiteral("range %1 to %2, active frame %3 of layer %4\n")
                       .arg(rangeFirst)
                       .arg(rangeLast)
                       .arg(activeFrame)
                       .arg(activeLayerIdx);
    for (size_t i = 0; i < layers.size(); ++i) {
        const LayerState &layer = layers[i];
        text += QStringLiteral("layer %1, place %2, %3 \"%4\"%5:")
                    .arg(i)
                    .arg(displayOrder.indexOf(int(i)))
                    .arg(types[layer.type], layer.name, layer.linked ? QStringLiteral(" linked") : QString());
        for (const CellState &cell : layer.cells)
            text += QStringLiteral(" %1%2%3%4")
                        .arg(QChar("ocd"[cell.type]))
                        .arg(cell.drawing)
                        .arg(cell.keyDrawing ? "k" : "", cell.transform.isIdentity() ? "" : "t");
        text += '\n';
    }
    return text;
}

} // namespace TestSupport
