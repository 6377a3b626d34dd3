// Random stretches of random scenes, pasted into the same and into another scene, and held against the rules as
// pasterules.h tells them.
//
//   tst_randompastes [--sequences N] [--seed S] [QTest options]

#include "pasterules.h"

#include "libcommands/addclonedrawings.h"
#include "libcommands/discarddrawing.h"
#include "libcommands/insertblankdrawing.h"
#include "libcommands/pastedrawing.h"
#include "libcommands/stroke.h"
#include "libcommands/turncloneintooriginal.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/strokes/stroke.h"
#include "support/modelwatch.h"
#include "support/scenegenerator.h"
#include "support/sceneinvariants.h"
#include "support/scenepictures.h"
#include "support/scenesnapshot.h"

#include <QApplication>
#include <QHash>
#include <QMimeData>
#include <QTest>
#include <QUndoStack>

#include <algorithm>
#include <cstdio>

using namespace Commands;
using namespace Model;
using namespace TestSupport;

namespace {

qint64 sequences = 2000;
qint64 onlySeed = 0;

struct Counts
{
    int same = 0;  ///< pasted into the scene that was copied from
    int other = 0; ///< into another
    int overCells = 0;
    int gaps = 0; ///< over a selection that is not in one piece
    int inserted = 0;
    int refused = 0; ///< for another kind of layer
    int nothing = 0; ///< the cells showed it already
};

/// A scene with what watches it.
struct Stage
{
    explicit Stage(RandomNumbers &random)
    {
        fillScene(scene(), random);
        m_watches.push_back(std::make_unique<ModelWatch>(mrScene.sceneModel()));
        m_watches.push_back(std::make_unique<ModelWatch>(mrScene.frameRangeModel()));
        states.push_back(snapshot());
    }
    [[nodiscard]] Scene &scene() const { return *mrScene.scene(); }
    [[nodiscard]] QUndoStack &stack() const { return *scene().undoStack(); }
    [[nodiscard]] SceneSnapshot snapshot() const { return SceneSnapshot(scene()); }
    [[nodiscard]] QModelIndex cell(int row, int layerIdx) const { return mrScene.sceneModel()->index(row, layerIdx); }
    [[nodiscard]] QString broken() const
    {
        return brokenInvariant(scene()) + m_watches[0]->broken() + m_watches[1]->broken();
    }
    /// Pushes a command. \return false if it turned out to have nothing to do.
    bool push(QUndoCommand *command)
    {
        const int index = stack().index();
        stack().push(command);
        if (stack().index() == index)
            return false;
        states.resize(size_t(index) + 1);
        states.push_back(snapshot());
        return true;
    }

    MRScene mrScene;
    std::vector<SceneSnapshot> states; ///< that at i is the one with i steps on the stack

private:
    std::vector<std::unique_ptr<ModelWatch>> m_watches;
};

/// Copies give drawings identifiers whenever they are made, which no undo takes back.
SceneSnapshot withoutCopyIds(SceneSnapshot snapshot)
{
    for (DrawingState &drawing : snapshot.drawings)
        drawing.copyId = {};
    return snapshot;
}

int randomVisualLayer(const Scene &scene, RandomNumbers &random)
{
    QList<int> visual;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        if (scene.visualLayer(layerIdx))
            visual.append(layerIdx);
    }
    return random.oneOf(visual);
}

/// What happens to drawings between being copied and being pasted.
void editSomewhere(Stage &stage, RandomNumbers &random)
{
    const int layerIdx = randomVisualLayer(stage.scene(), random);
    const QModelIndex cell = stage.cell(random.between(0, stage.scene().lastFrame(layerIdx) - 1), layerIdx);
    std::unique_ptr<QUndoCommand> command;
    switch (random.between(0, 2)) {
    case 0:
        command =
            std::make_unique<Commands::Stroke>(&stage.mrScene, cell, randomBlock(stage.scene().frameSize(), random));
        break;
    case 1:
        command = std::make_unique<DiscardDrawing>(&stage.mrScene, cell);
        break;
    default:
        command = std::make_unique<TurnCloneIntoOriginal>(&stage.mrScene, cell);
        break;
    }
    if (!command->isObsolete())
        stage.push(command.release());
}

/// Cells of one layer, or of several; in one piece, or with gaps; in any order.
QModelIndexList randomSelection(const Stage &stage, RandomNumbers &random)
{
    QModelIndexList cells;
    const int layers = random.chance(25) ? 2 : 1;
    for (int i = 0; i < layers; ++i) {
        const int layerIdx = randomVisualLayer(stage.scene(), random);
        const int length = stage.scene().lastFrame(layerIdx);
        const int first = random.between(0, length - 1);
        const int last = std::min(length - 1, first + random.between(0, 5));
        const int density = random.chance(50) ? 100 : 50;
        for (int row = first; row <= last; ++row) {
            if (row == first || random.chance(density))
                cells.insert(random.between(0, int(cells.size())), stage.cell(row, layerIdx));
        }
    }
    return cells;
}

/// One paste, by the program and by the rules.
class Paste
{
public:
    Paste(Stage &stage, RandomNumbers &random, Counts &counts) : m_stage(stage), m_random(random), m_counts(counts) {}

    /// \return what went wrong; empty if nothing did.
    QString run(const QMimeData &data, int layerType, const std::vector<CopiedFrame> &frames);

private:
    void chooseCells();
    SceneSnapshot withRoom(int count, std::vector<DrawingState> &discarded);
    QString walk(const SceneSnapshot &before, const SceneSnapshot &after);

    Stage &m_stage;
    RandomNumbers &m_random;
    Counts &m_counts;
    QModelIndexList m_selection; ///< empty for a paste at a cell
    int m_layerIdx = 0;
    QList<int> m_rows; ///< selected in the layer that is pasted into, or the one row
};

void Paste::chooseCells()
{
    if (m_random.chance(50)) {
        m_layerIdx = randomVisualLayer(m_stage.scene(), m_random);
        m_rows = {m_random.between(0, m_stage.scene().lastFrame(m_layerIdx))}; // perhaps behind the last
        return;
    }
    m_selection = randomSelection(m_stage, m_random);
    const QModelIndex first = *std::min_element(m_selection.begin(), m_selection.end(), [](auto &left, auto &right) {
        return std::pair(left.row(), left.column()) < std::pair(right.row(), right.column());
    });
    m_layerIdx = first.column();
    for (int row = 0; row < m_stage.scene().lastFrame(m_layerIdx); ++row) {
        if (m_selection.contains(m_stage.cell(row, m_layerIdx)))
            m_rows.append(row);
    }
}

// The scene with as many cells as there are frames: that is what other commands are for.
SceneSnapshot Paste::withRoom(int count, std::vector<DrawingState> &discarded)
{
    MRScene *mrScene = &m_stage.mrScene;
    QUndoStack &stack = m_stage.stack();
    const int index = stack.index();
    const auto cell = [this](int row) { return m_stage.cell(row, m_layerIdx); };
    const int selected = int(m_rows.size());
    if (m_selection.isEmpty()) {
        stack.push(new InsertBlankDrawing(mrScene, cell(m_rows.first())));
        if (count > 1)
            stack.push(new AddCloneDrawings(mrScene, cell(m_rows.first()), count - 1));
    } else if (selected < count) {
        stack.push(new AddCloneDrawings(mrScene, cell(m_rows.last()), count - selected));
    } else if (selected > count) {
        QModelIndexList surplus;
        for (const int row : m_rows.mid(count)) {
            surplus.append(cell(row));
            const auto item = m_stage.scene().item(m_layerIdx, row + 1);
            if (item->isOriginal() && !item->drawing->copyId().isNull()) {
                const SceneSnapshot now = m_stage.snapshot();
                discarded.push_back(now.drawings[size_t(now.layers[size_t(m_layerIdx)].cells[size_t(row)].drawing)]);
            }
        }
        stack.push(new DiscardDrawing(mrScene, surplus));
    }
    SceneSnapshot scene = m_stage.snapshot();
    while (stack.index() > index)
        stack.undo();
    return scene;
}

/// \a expected with the identifiers that new cells got in \a actual; those of others have to be the same.
QString adoptNewIdentifiers(SceneSnapshot &expected, const SceneSnapshot &actual, const SceneSnapshot &before)
{
    QHash<std::pair<QUuid, QUuid>, QUuid> identifiers;
    for (size_t layerIdx = 0; layerIdx < expected.layers.size(); ++layerIdx) {
        const LayerState &layer = expected.layers[layerIdx];
        const std::vector<CellState> &old = before.layers[layerIdx].cells;
        const std::vector<CellState> &real = actual.layers.at(layerIdx).cells;
        if (layer.cells.size() != real.size())
            return QStringLiteral("layer %1 has %2 cells instead of %3\n")
                .arg(layerIdx)
                .arg(real.size())
                .arg(layer.cells.size());
        for (size_t row = 0; row < real.size(); ++row) {
            const QUuid identifier = layer.cells[row].identifier;
            const bool isOld = std::any_of(old.begin(), old.end(),
                                           [&](const CellState &cell) { return cell.identifier == identifier; });
            if (isOld && identifier != real[row].identifier)
                return QStringLiteral("the cell in row %1 of layer %2 has become another\n").arg(row).arg(layerIdx);
            identifiers.insert({layer.identifier, identifier}, real[row].identifier);
        }
    }
    const auto adopt = [&identifiers](CellRef &ref) { ref.cell = identifiers.value({ref.layer, ref.cell}, ref.cell); };
    for (LayerState &layer : expected.layers) {
        for (CellState &cell : layer.cells) {
            cell.identifier = identifiers.value({layer.identifier, cell.identifier});
            adopt(cell.origin);
            for (CellRef &clone : cell.clones)
                adopt(clone);
        }
    }
    return {};
}

QString Paste::run(const QMimeData &data, int layerType, const std::vector<CopiedFrame> &frames)
{
    chooseCells();
    MRScene *mrScene = &m_stage.mrScene;
    const SceneSnapshot before = m_stage.snapshot();
    const auto make = [&] {
        return m_selection.isEmpty()
                   ? std::make_unique<PasteDrawing>(mrScene, m_stage.cell(m_rows.first(), m_layerIdx), &data)
                   : std::make_unique<PasteDrawing>(mrScene, m_selection, &data);
    };
    if (m_stage.scene().layer(m_layerIdx)->layerType() != layerType) {
        ++m_counts.refused;
        return make()->isObsolete() ? QString() : QStringLiteral("a layer takes drawings of another kind");
    }
    ++(m_selection.isEmpty() ? m_counts.inserted : m_counts.overCells);
    m_counts.gaps += m_rows.last() - m_rows.first() + 1 > m_rows.size();

    const int count = int(frames.size());
    std::vector<DrawingState> discarded;
    const SceneSnapshot room = withRoom(count, discarded);
    PasteRules rules(room, discarded);
    rules.fill(m_layerIdx, m_rows.first(), frames);
    SceneSnapshot expected = rules.result();
    // The cells that were pasted are in the range, and the first of them is the active one.
    const int first = m_rows.first() + 1;
    expected.rangeLast = std::max(expected.rangeLast, first + count - 1);
    const int length = int(expected.layers[size_t(m_layerIdx)].cells.size());
    if (length >= expected.rangeFirst) {
        expected.activeLayerIdx = m_layerIdx;
        expected.activeFrame = std::clamp(first, expected.rangeFirst, std::min(length, expected.rangeLast));
    }

    if (!m_stage.push(make().release())) {
        ++m_counts.nothing;
        expected.activeFrame = before.activeFrame;
        expected.activeLayerIdx = before.activeLayerIdx;
        expected.rangeLast = before.rangeLast;
        return expected.diff(before) + before.diff(m_stage.snapshot());
    }
    const SceneSnapshot after = m_stage.snapshot();
    QString problem = adoptNewIdentifiers(expected, after, before);
    if (problem.isEmpty() && length < expected.rangeFirst) {
        expected.activeLayerIdx = after.activeLayerIdx;
        expected.activeFrame = after.activeFrame;
    }
    if (problem.isEmpty())
        problem = expected.diff(after) + m_stage.broken();
    if (!problem.isEmpty())
        return problem + QStringLiteral("before:\n") + before.describe() + QStringLiteral("with room:\n") +
               room.describe() + QStringLiteral("rules:\n") + expected.describe() + QStringLiteral("after:\n") +
               after.describe();
    return walk(before, after);
}

QString Paste::walk(const SceneSnapshot &before, const SceneSnapshot &after)
{
    for (int round = 0; round < 2; ++round) {
        m_stage.stack().undo();
        if (const QString problem = before.diff(m_stage.snapshot()) + m_stage.broken(); !problem.isEmpty())
            return QStringLiteral("after undo: ") + problem;
        m_stage.stack().redo();
        if (const QString problem = after.diff(m_stage.snapshot()) + m_stage.broken(); !problem.isEmpty())
            return QStringLiteral("after redo: ") + problem;
    }
    return {};
}

QString walkAll(Stage &stage)
{
    QUndoStack &stack = stage.stack();
    const auto compare = [&stage, &stack] {
        return withoutCopyIds(stage.states.at(size_t(stack.index()))).diff(withoutCopyIds(stage.snapshot())) +
               stage.broken();
    };
    QString problem;
    while (problem.isEmpty() && stack.canUndo()) {
        stack.undo();
        problem = compare();
    }
    while (problem.isEmpty() && stack.canRedo()) {
        stack.redo();
        problem = compare();
    }
    return problem;
}

QString runSequence(quint64 seed, Counts &counts)
{
    RandomNumbers random(seed);
    Stage first(random);
    Stage second(random);
    constexpr int mostFrames = 40;
    const int pastes = random.between(1, 5);
    for (int i = 0; i < pastes; ++i) {
        Stage &source = random.chance(50) ? first : second;
        const int layerIdx = randomVisualLayer(source.scene(), random);
        const int length = source.scene().lastFrame(layerIdx);
        const int firstFrame = random.between(1, length);
        const int count = random.between(1, std::min(length - firstFrame + 1, 8));
        const std::unique_ptr<QMimeData> data(source.scene().copyToMimeData(layerIdx, firstFrame, count));
        const std::vector<CopiedFrame> frames = copiedFrames(source.snapshot(), layerIdx, firstFrame, count);
        const int layerType = source.scene().layer(layerIdx)->layerType();
        for (int edits = random.between(0, 2); edits > 0; --edits)
            editSomewhere(random.chance(50) ? first : second, random);
        Stage &target = random.chance(50) ? first : second;
        if (target.scene().maximumFrameNumber() > mostFrames)
            break;
        ++(&target == &source ? counts.same : counts.other);
        (void)target.scene().framePixmap();
        QString problem = Paste(target, random, counts).run(*data, layerType, frames);
        if (problem.isEmpty() && seed % 8 == 0)
            problem = stalePicture(target.scene());
        if (!problem.isEmpty())
            return QStringLiteral("paste %1: %2").arg(i + 1).arg(problem);
    }
    const QString problem = walkAll(first);
    return problem.isEmpty() ? walkAll(second) : problem;
}

} // namespace

class tst_RandomPastes : public QObject
{
    Q_OBJECT

private slots:
    void pastesFollowTheRules();
};

void tst_RandomPastes::pastesFollowTheRules()
{
    Counts counts;
    const qint64 firstSeed = onlySeed > 0 ? onlySeed : 1;
    const qint64 lastSeed = onlySeed > 0 ? onlySeed : sequences;
    for (qint64 seed = firstSeed; seed <= lastSeed; ++seed) {
        const QString problem = runSequence(quint64(seed), counts);
        QVERIFY2(problem.isEmpty(), qPrintable(QStringLiteral("--seed %1: %2").arg(seed).arg(problem)));
    }
    std::printf("random pastes: %lld sequences; into the same scene %d, into another %d; over cells %d, %d of them "
                "with gaps, inserted %d, refused %d, nothing to do %d\n",
                lastSeed - firstSeed + 1, counts.same, counts.other, counts.overCells, counts.gaps, counts.inserted,
                counts.refused, counts.nothing);
    std::fflush(stdout);
    if (lastSeed - firstSeed >= 999)
        QVERIFY(counts.same > 500 && counts.other > 500 && counts.gaps > 50 && counts.refused > 50 &&
                counts.nothing > 10);
}

/// Takes the number behind \a name out of \a arguments.
static qint64 takeNumber(QStringList &arguments, const QString &name, qint64 value)
{
    const qsizetype at = arguments.indexOf(name);
    if (at < 0)
        return value;
    const qint64 number = arguments.value(at + 1).toLongLong();
    arguments.remove(at, std::min<qsizetype>(2, arguments.size() - at));
    return number;
}

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QStringList arguments = QApplication::arguments();
    sequences = takeNumber(arguments, QStringLiteral("--sequences"), sequences);
    onlySeed = takeNumber(arguments, QStringLiteral("--seed"), onlySeed);
    qputenv("QTEST_FUNCTION_TIMEOUT", "86400000");
    tst_RandomPastes test;
    return QTest::qExec(&test, arguments);
}

#include "tst_randompastes.moc"
