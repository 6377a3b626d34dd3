// What the operations on timing do, held against a second telling of them on plain lists.
//
// In the lists only an original has a drawing of its own. A clone shows what the cell before it shows, a distant clone
// what its original shows, so nothing is ever handed on.

#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/scenegenerator.h"
#include "support/sceneinvariants.h"

#include <QHash>
#include <QTest>

#include <algorithm>

using namespace Model;
using namespace TestSupport;

namespace {

struct PlainCell
{
    char kind = 'o'; ///< o, c or d
    int drawing = 0; ///< of an original: a number of its own
    bool keyDrawing = false;
    QTransform transform;
    int name = 0;
    QList<int> clones; ///< names
    int origin = -1;   ///< name
};

struct PlainLayer
{
    int type = 0;
    bool linked = false;
    QList<PlainCell> cells;
    QList<bool> notes; ///< is there one
};

class PlainScene
{
public:
    explicit PlainScene(const Scene &scene);

    /// All that matters, without names: "o0(2)k..." with the drawing and its strokes, links by layer/frame.
    [[nodiscard]] QString text() const;

    void add(int layerIdx, int frameId, bool blank);
    void remove(int layerIdx, int frameId);
    void lose(int layerIdx, int frameId);
    void makeOriginal(int layerIdx, int frameId);
    void makeDistantClone(int layerIdx, int frameId, int originLayer, int originFrame);
    void replace(int layerIdx, int frameId, int strokes, bool updateDistantClones);
    void slide(int layerIdx, int frameId, int offset, int lowest, int highest);

private:
    PlainCell &cell(int layerIdx, int frameId) { return m_layers[layerIdx].cells[frameId - 1]; }
    PlainCell &named(int name);
    [[nodiscard]] QString place(int name) const;
    [[nodiscard]] int drawingShown(int layerIdx, int frameId) const;
    PlainCell blank();
    PlainCell hold();
    void letGo(PlainCell &cell);
    void removeCell(QList<PlainCell> &cells, int frameId);
    bool goesAlong(int layerIdx, int actedIdx) const
    {
        return layerIdx == actedIdx || (m_layers[layerIdx].linked && m_layers[actedIdx].linked);
    }

    QList<PlainLayer> m_layers;
    QHash<int, int> m_strokes; ///< of a drawing, by its number
    int m_nextDrawing = 0;
    int m_nextName = 0;
};

int strokesOf(const Drawing &drawing)
{
    const auto *strokes = dynamic_cast<const StrokeDrawing *>(&drawing);
    return strokes ? strokes->strokes().count() : -1;
}

PlainScene::PlainScene(const Scene &scene)
{
    QHash<std::pair<QUuid, QUuid>, int> names;
    const auto nameOf = [&](const CellRef &ref) {
        const auto key = std::pair(ref.layer, ref.cell);
        if (!names.contains(key))
            names.insert(key, m_nextName++);
        return names.value(key);
    };
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        PlainLayer plain{scene.layer(layerIdx)->layerType(), scene.layer(layerIdx)->isLinked(), {}, {}};
        if (const auto *annotation = dynamic_cast<const AnnotationLayer *>(scene.layer(layerIdx))) {
            for (const QImage &image : annotation->images())
                plain.notes.append(!image.isNull());
        }
        for (int frameId = 1; scene.item(layerIdx, frameId); ++frameId) {
            const LayerItem &item = *scene.item(layerIdx, frameId);
            PlainCell cell{"ocd"[int(item.type)],
                           -1,
                           item.keyDrawing,
                           item.offPegsTransform,
                           nameOf({scene.layer(layerIdx)->identifier(), item.identifier}),
                           {},
                           -1};
            if (item.isOriginal()) {
                cell.drawing = m_nextDrawing++;
                m_strokes.insert(cell.drawing, strokesOf(*item.drawing));
            }
            for (const CellRef &ref : item.clones)
                cell.clones.append(nameOf(ref));
            if (item.isDistantClone())
                cell.origin = nameOf(item.origin);
            plain.cells.append(cell);
        }
        m_layers.append(plain);
    }
}

PlainCell &PlainScene::named(int name)
{
    for (PlainLayer &layer : m_layers) {
        for (PlainCell &cell : layer.cells) {
            if (cell.name == name)
                return cell;
        }
    }
    qFatal("a cell of a name that there is not");
}

QString PlainScene::place(int name) const
{
    for (qsizetype l = 0; l < m_layers.size(); ++l) {
        for (qsizetype f = 0; f < m_layers[l].cells.size(); ++f) {
            if (m_layers[l].cells[f].name == name)
                return QStringLiteral("%1/%2").arg(l).arg(f + 1);
        }
    }
    return QStringLiteral("nowhere");
}

int PlainScene::drawingShown(int layerIdx, int frameId) const
{
    const QList<PlainCell> &cells = m_layers[layerIdx].cells;
    while (cells[frameId - 1].kind == 'c')
        --frameId;
    const PlainCell &shown = cells[frameId - 1];
    return shown.kind == 'd' ? const_cast<PlainScene *>(this)->named(shown.origin).drawing : shown.drawing;
}

QString PlainScene::text() const
{
    QString text;
    QHash<int, int> numbers;
    for (int l = 0; l < m_layers.size(); ++l) {
        text += QStringLiteral("\nlayer %1:").arg(l);
        for (int f = 1; f <= m_layers[l].cells.size(); ++f) {
            const PlainCell &cell = m_layers[l].cells[f - 1];
            const int drawing = drawingShown(l, f);
            if (!numbers.contains(drawing))
                numbers.insert(drawing, int(numbers.size()));
            text += QStringLiteral(" %1%2(%3)%4")
                        .arg(QChar(cell.kind))
                        .arg(numbers[drawing])
                        .arg(m_strokes[drawing])
                        .arg(cell.keyDrawing ? "k" : "");
            if (!cell.transform.isIdentity())
                text += QStringLiteral("t%1,%2").arg(cell.transform.dx()).arg(cell.transform.dy());
            for (const int clone : cell.clones)
                text += QStringLiteral(">%1").arg(place(clone));
            if (cell.kind == 'd')
                text += QStringLiteral("<%1").arg(place(cell.origin));
        }
        QList<bool> notes = m_layers[l].notes;
        while (!notes.isEmpty() && !notes.last())
            notes.removeLast();
        for (const bool note : notes)
            text += note ? " n" : " -";
    }
    return text;
}

PlainCell PlainScene::blank()
{
    m_strokes.insert(m_nextDrawing, 0);
    return {'o', m_nextDrawing++, false, {}, m_nextName++, {}, -1};
}

PlainCell PlainScene::hold()
{
    return {'c', -1, false, {}, m_nextName++, {}, -1};
}

// The first distant clone inherits; a distant clone leaves its original's list.
void PlainScene::letGo(PlainCell &cell)
{
    if (!cell.clones.isEmpty()) {
        PlainCell &heir = named(cell.clones.takeFirst());
        heir.kind = 'o';
        heir.origin = -1;
        heir.drawing = cell.drawing;
        heir.clones = cell.clones;
        for (const int other : std::as_const(cell.clones))
            named(other).origin = heir.name;
        cell.clones.clear();
    }
    if (cell.kind == 'd')
        named(cell.origin).clones.removeAll(cell.name);
    cell.origin = -1;
}

void PlainScene::add(int layerIdx, int frameId, bool addsBlank)
{
    for (int l = 0; l < m_layers.size(); ++l) {
        PlainLayer &layer = m_layers[l];
        if (!goesAlong(l, layerIdx))
            continue;
        if (frameId < layer.notes.size())
            layer.notes.insert(frameId, false);
        if (layer.cells.isEmpty() || frameId > layer.cells.size())
            continue;
        PlainCell added = frameId == 0 || (addsBlank && l == layerIdx) ? blank() : hold();
        if (added.kind == 'o' && layer.type == Layer::Reference)
            m_strokes[added.drawing] = -1;
        layer.cells.insert(frameId, added);
    }
}

void PlainScene::removeCell(QList<PlainCell> &cells, int frameId)
{
    if (frameId == 1 && cells.size() > 1 && cells[1].kind == 'c') {
        cells[0].transform = cells[1].transform;
        cells.removeAt(1);
        return;
    }
    letGo(cells[frameId - 1]);
    cells.removeAt(frameId - 1);
}

void PlainScene::remove(int layerIdx, int frameId)
{
    for (int l = 0; l < m_layers.size(); ++l) {
        PlainLayer &layer = m_layers[l];
        if (!goesAlong(l, layerIdx))
            continue;
        if (frameId <= layer.notes.size())
            layer.notes.removeAt(frameId - 1);
        if (frameId > layer.cells.size())
            continue;
        removeCell(layer.cells, frameId);
        if (layer.cells.isEmpty()) {
            layer.cells.append(blank());
            if (layer.type == Layer::Reference)
                m_strokes[layer.cells.first().drawing] = -1;
        }
    }
}

void PlainScene::lose(int layerIdx, int frameId)
{
    PlainCell &lost = cell(layerIdx, frameId);
    if (frameId < 2 || lost.kind == 'c')
        return;
    letGo(lost);
    lost.kind = 'c';
}

void PlainScene::makeOriginal(int layerIdx, int frameId)
{
    PlainCell &made = cell(layerIdx, frameId);
    if (made.kind == 'o')
        return;
    m_strokes.insert(m_nextDrawing, m_strokes[drawingShown(layerIdx, frameId)]);
    letGo(made);
    made.kind = 'o';
    made.drawing = m_nextDrawing++;
}

void PlainScene::makeDistantClone(int layerIdx, int frameId, int originLayer, int originFrame)
{
    while (cell(originLayer, originFrame).kind == 'c')
        --originFrame;
    const PlainCell shown = cell(originLayer, originFrame);
    const int origin = shown.kind == 'd' ? shown.origin : shown.name;
    PlainCell &made = cell(layerIdx, frameId);
    if (m_layers[layerIdx].type != m_layers[originLayer].type || origin == made.name || origin == made.origin)
        return;
    letGo(made);
    made.kind = 'd';
    made.origin = origin;
    named(origin).clones.append(made.name);
}

void PlainScene::replace(int layerIdx, int frameId, int strokes, bool updateDistantClones)
{
    PlainCell &replaced = cell(layerIdx, frameId);
    if (!updateDistantClones || replaced.kind != 'o')
        letGo(replaced);
    replaced.kind = 'o';
    replaced.drawing = m_nextDrawing++;
    m_strokes.insert(replaced.drawing, strokes);
}

void PlainScene::slide(int layerIdx, int frameId, int offset, int lowest, int highest)
{
    const QList<PlainCell> cells = m_layers[layerIdx].cells;
    if (frameId < 2 || cells[frameId - 1].kind == 'c')
        return;
    // The clones that the drag has passed, on either side of the cell, nearest first.
    QList<int> passed;
    for (int f = frameId - 1; f >= 1 && passed.size() < -lowest; --f) {
        if (cells[f - 1].kind == 'c')
            passed.append(f);
    }
    for (int f = frameId + 1; f <= cells.size() && passed.size() < highest - lowest; ++f) {
        if (cells[f - 1].kind == 'c')
            passed.append(f);
    }
    QList<PlainCell> dealt;
    for (int f = 1; f <= cells.size(); ++f) {
        if (f == frameId) {
            for (int i = lowest; i < offset; ++i)
                dealt.append(hold());
            dealt.append(cells[f - 1]);
            for (int i = offset; i < highest; ++i)
                dealt.append(hold());
        } else if (!passed.contains(f)) {
            dealt.append(cells[f - 1]);
        }
    }
    m_layers[layerIdx].cells = dealt;
}

/// How many clones stand in front of a cell and behind it.
std::pair<int, int> clonesAround(const Scene &scene, int layerIdx, int frameId)
{
    std::pair<int, int> counts(0, 0);
    for (int f = 1; f <= scene.lastFrame(layerIdx); ++f) {
        if (f != frameId && scene.item(layerIdx, f)->isClone())
            ++(f < frameId ? counts.first : counts.second);
    }
    return counts;
}

/// One operation, done to a scene and to its telling.
class Step
{
public:
    Step(Scene &scene, PlainScene &plain, RandomNumbers &random);

    /// \return its name with arguments.
    QString take(int kind);
    /// Takes it back in the scene.
    void takeBack() { m_scene.undoChanges(m_changes); }

private:
    void slide();
    void makeDistantClone();
    void replace(bool updateDistantClones);

    Scene &m_scene;
    PlainScene &m_plain;
    RandomNumbers &m_random;
    int m_layerIdx = 0;
    int m_frameId = 0;
    QString m_text;
    QList<SceneChange> m_changes;
};

Step::Step(Scene &scene, PlainScene &plain, RandomNumbers &random) : m_scene(scene), m_plain(plain), m_random(random)
{
    do
        m_layerIdx = random.between(0, scene.layerCount() - 1);
    while (!scene.visualLayer(m_layerIdx));
    m_frameId = random.between(1, scene.lastFrame(m_layerIdx));
    m_text = QStringLiteral(" %1/%2").arg(m_layerIdx).arg(m_frameId);
}

constexpr int stepKinds = 10;

QString Step::take(int kind)
{
    const int inFront = m_frameId - 1;
    switch (kind) {
    case 0:
        m_changes = m_scene.addBlankDrawing(m_layerIdx, inFront);
        m_plain.add(m_layerIdx, inFront, true);
        return "addBlankDrawing in front of" + m_text;
    case 1:
        m_changes = m_scene.insertBlankDrawing(m_layerIdx, m_frameId + 1);
        m_plain.add(m_layerIdx, m_frameId, true);
        return "insertBlankDrawing behind" + m_text;
    case 2:
        m_changes = m_scene.addCloneDrawing(m_layerIdx, inFront);
        m_plain.add(m_layerIdx, inFront, false);
        return "addCloneDrawing in front of" + m_text;
    case 3:
        m_changes = m_scene.deleteFrame(m_layerIdx, m_frameId);
        m_plain.remove(m_layerIdx, m_frameId);
        return "deleteFrame" + m_text;
    case 4:
        m_changes = m_scene.loseDrawing(m_layerIdx, m_frameId);
        m_plain.lose(m_layerIdx, m_frameId);
        return "loseDrawing" + m_text;
    case 5:
        m_changes = m_scene.turnCloneIntoOriginal(m_layerIdx, m_frameId);
        m_plain.makeOriginal(m_layerIdx, m_frameId);
        return "turnCloneIntoOriginal" + m_text;
    case 6:
        makeDistantClone();
        return "makeDistantClone" + m_text;
    case 7:
        replace(false);
        return "replaceDrawing" + m_text;
    case 8:
        replace(true);
        return "replaceDrawing of all" + m_text;
    default:
        slide();
        return "slideOriginalDrawing" + m_text;
    }
}

void Step::makeDistantClone()
{
    int originLayer = 0;
    do
        originLayer = m_random.between(0, m_scene.layerCount() - 1);
    while (!m_scene.visualLayer(originLayer));
    const int originFrame = m_random.between(1, m_scene.lastFrame(originLayer));
    m_text += QStringLiteral(" of what %1/%2 shows").arg(originLayer).arg(originFrame);
    m_changes = m_scene.makeDistantClone(m_layerIdx, m_frameId, m_scene.originOfFrame(originLayer, originFrame));
    m_plain.makeDistantClone(m_layerIdx, m_frameId, originLayer, originFrame);
}

void Step::replace(bool updateDistantClones)
{
    const std::shared_ptr<Drawing> drawing = randomDrawing(*m_scene.visualLayer(m_layerIdx), m_random);
    m_plain.replace(m_layerIdx, m_frameId, strokesOf(*drawing), updateDistantClones);
    m_changes = m_scene.replaceDrawing(m_layerIdx, m_frameId, drawing, updateDistantClones);
}

void Step::slide()
{
    const auto [before, behind] = clonesAround(m_scene, m_layerIdx, m_frameId);
    const int lowest = -m_random.between(0, before);
    const int highest = m_random.between(0, behind);
    const int offset = m_random.between(lowest, highest);
    m_text += QStringLiteral(" by %1, extremes %2 and %3").arg(offset).arg(lowest).arg(highest);
    m_changes = m_scene.slideOriginalDrawing(m_layerIdx, m_frameId, offset, lowest, highest);
    m_plain.slide(m_layerIdx, m_frameId, offset, lowest, highest);
}

} // namespace

class tst_TimingModel : public QObject
{
    Q_OBJECT

private slots:
    void operationsDoWhatIsTold();
};

void tst_TimingModel::operationsDoWhatIsTold()
{
    std::array<int, stepKinds> effective{};
    for (quint64 seed = 1; seed <= 3000; ++seed) {
        RandomNumbers random(seed);
        Scene scene;
        fillScene(scene, random);
        for (int i = 0; i < 12; ++i) {
            PlainScene plain(scene);
            const QString before = plain.text();
            const int kind = random.between(0, stepKinds - 1);
            Step step(scene, plain, random);
            const QString text = step.take(kind);
            const QString expected = plain.text();
            const QString actual = PlainScene(scene).text();
            if (actual != expected)
                qWarning("seed %llu, %s\nbefore%s\nexpected%s\nactual%s", seed, qPrintable(text), qPrintable(before),
                         qPrintable(expected), qPrintable(actual));
            QCOMPARE(actual, expected);
            QCOMPARE(brokenInvariant(scene), QString());
            effective[size_t(kind)] += actual != before;
            // What was done once and taken back leaves no trace for what comes next.
            if (random.chance(30))
                step.takeBack();
        }
    }
    for (const int count : effective)
        QVERIFY(count > 300);
}

QTEST_MAIN(tst_TimingModel)
#include "tst_timingmodel.moc"
