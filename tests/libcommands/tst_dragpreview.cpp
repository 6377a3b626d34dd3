// What the sheet shows during a drag is what the command at its end makes, cell by cell, in random scenes.

#include "libcommands/addclonedrawings.h"
#include "libcommands/discardclonedrawings.h"
#include "libcommands/slideoriginaldrawing.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/drawing.h"
#include "support/modelwatch.h"
#include "support/scenegenerator.h"
#include "support/sceneinvariants.h"
#include "support/scenesnapshot.h"

#include <QImage>
#include <QTest>
#include <QUndoStack>

#include <cstdio>
#include <map>

using namespace Model;
using namespace TestSupport;

namespace {

using DragMode = FrameRangeModel::DragMode;

/// What is seen of one position of the sheet.
struct Shown
{
    const Drawing *drawing = nullptr;
    bool isOriginal = false;
    bool isClone = false;
    bool isDistantClone = false;
    bool isKeyDrawing = false;
    bool isBehindEnd = false;
    QImage note;

    bool operator==(const Shown &) const = default;
};

/// The whole sheet, by frame and layer. Positions that are none are missing.
struct Sheet
{
    std::map<std::pair<int, int>, Shown> cells;
    int lastFrame = 0;

    explicit Sheet(const MRScene &mrScene, int firstFrame);
    /// The first position of a frame from \a firstFrame on that is other in \a other, in words.
    [[nodiscard]] QString diff(const Sheet &other, int firstFrame) const;
};

Sheet::Sheet(const MRScene &mrScene, int firstFrame) : lastFrame(mrScene.frameRangeModel()->displayedLastFrame())
{
    const FrameRangeModel &model = *mrScene.frameRangeModel();
    for (int column = 0; column < model.columnCount(); ++column) {
        // Two rows are shown even of a range that moves up altogether, which are none of the result.
        const int lastOfColumn = lastFrame + (mrScene.scene()->visualLayer(column) ? 1 : 0);
        for (int row = 0; row < model.rowCount() && firstFrame + row <= lastOfColumn; ++row) {
            const QModelIndex index = model.index(row, column);
            if (!index.isValid())
                continue;
            Shown shown;
            shown.drawing = mrScene.sceneModel()->drawing(model.mapToSource(index)).get();
            shown.isOriginal = index.data(SceneModel::OriginalDrawingRole).toBool();
            shown.isClone = index.data(SceneModel::LocalCloneRole).toBool();
            shown.isDistantClone = index.data(SceneModel::DistantCloneRole).toBool();
            shown.isKeyDrawing = index.data(SceneModel::KeyDrawingRole).toBool();
            shown.isBehindEnd = index.data(SceneModel::BeyondLastRole).toBool();
            shown.note = index.data(SceneModel::AnnotationImageRole).value<QImage>();
            cells.emplace(std::pair(firstFrame + row, column), shown);
        }
    }
}

QString text(const Sheet &sheet, const std::pair<int, int> &position)
{
    const auto found = sheet.cells.find(position);
    if (found == sheet.cells.end())
        return QStringLiteral("nothing");
    const Shown &shown = found->second;
    return QStringLiteral("%1%2%3%4%5%6 %7")
        .arg(shown.isOriginal ? "o" : "", shown.isClone ? "c" : "", shown.isDistantClone ? "d" : "",
             shown.isKeyDrawing ? "k" : "", shown.isBehindEnd ? "." : "", shown.note.isNull() ? "" : "note")
        .arg(quintptr(shown.drawing), 0, 16);
}

QString Sheet::diff(const Sheet &other, int firstFrame) const
{
    if (lastFrame != other.lastFrame)
        return QStringLiteral("last frame %1 -> %2").arg(lastFrame).arg(other.lastFrame);
    for (const Sheet *sheet : {this, &other}) {
        for (const auto &[position, shown] : sheet->cells) {
            if (position.first >= firstFrame && text(*this, position) != text(other, position))
                return QStringLiteral("layer %1, frame %2: %3 -> %4")
                    .arg(position.second)
                    .arg(position.first)
                    .arg(text(*this, position), text(other, position));
        }
    }
    return {};
}

struct Counts
{
    int refused = 0;
    int unmoved = 0;
    int slides = 0;
    int lengthenings = 0;
    int shortenings = 0;
};

/// A scene in which one cell after the other is dragged.
class DragWalk
{
public:
    DragWalk(quint64 seed, Counts &counts);

    /// Drags something somewhere. \return what was seen to be wrong, empty if nothing was.
    QString drag();
    [[nodiscard]] QString story() const { return m_story; }

private:
    QModelIndex randomIndex();
    void move(DragMode mode);
    /// The command that the sheet pushes after a drag of \a pressed, a cell of the scene's model; null for none.
    QUndoCommand *commandFor(DragMode mode, const QModelIndex &pressed);
    QString compareWithResult(const Sheet &preview, int firstFrame, QUndoCommand *command);
    [[nodiscard]] Scene &scene() const { return *m_mrScene.scene(); }
    [[nodiscard]] FrameRangeModel &model() const { return *m_mrScene.frameRangeModel(); }

    RandomNumbers m_random;
    Counts &m_counts;
    MRScene m_mrScene;
    ModelWatch m_watch;
    QString m_story;
};

DragWalk::DragWalk(quint64 seed, Counts &counts)
    : m_random(seed), m_counts(counts), m_watch(m_mrScene.frameRangeModel())
{
    MRScene::setCurrent(&m_mrScene);
    fillScene(scene(), m_random);
}

QModelIndex DragWalk::randomIndex()
{
    const int row = m_random.between(0, model().rowCount() - 1);
    int column = m_random.between(0, model().columnCount() - 1);
    // Only now and then where nothing can be dragged.
    while (!scene().visualLayer(column) && m_random.chance(90))
        column = m_random.between(0, model().columnCount() - 1);
    return model().index(row, column);
}

void DragWalk::move(DragMode mode)
{
    const int reach = mode == DragMode::SlideMode ? 6 : 4;
    const int moves = m_random.between(0, 4);
    for (int i = 0; i < moves; ++i) {
        const int value = m_random.between(-reach, reach);
        m_story += QStringLiteral(" %1").arg(value);
        model().setDragOffset(value);
    }
}

QUndoCommand *DragWalk::commandFor(DragMode mode, const QModelIndex &pressed)
{
    const int offset = model().offset();
    const int lowest = model().lowestOffset();
    const int highest = model().highestOffset();
    if (mode == DragMode::SlideMode) {
        if ((offset == 0 && lowest == 0 && highest == 0) || pressed.row() + 1 != scene().activeFrame())
            return nullptr;
        ++m_counts.slides;
        return new Commands::SlideOriginalDrawing(&m_mrScene, offset, lowest, highest);
    }
    // The cell behind the range can be pressed but not be the active one, which is what holds are shortened at.
    if (offset == 0 || (offset < 0 && pressed.row() + 1 != scene().activeFrame()))
        return nullptr;
    ++(offset > 0 ? m_counts.lengthenings : m_counts.shortenings);
    if (offset < 0)
        return new Commands::DiscardCloneDrawings(&m_mrScene, -offset);
    return new Commands::AddCloneDrawings(&m_mrScene, pressed, offset);
}

QString DragWalk::drag()
{
    const DragMode mode = m_random.chance(50) ? DragMode::SlideMode : DragMode::AddClonesMode;
    const QModelIndex index = randomIndex();
    if (index.isValid())
        scene().setActiveFrameAndLayer(scene().rangeFirst() + index.row(), index.column(), Scene::KeepFrameOnDrawing);
    m_story = SceneSnapshot(scene()).describe() + QStringLiteral("mode %1, layer %2, frame %3, moves")
                                                      .arg(mode)
                                                      .arg(index.column())
                                                      .arg(scene().rangeFirst() + index.row());
    const int firstFrame = scene().rangeFirst();
    const QModelIndex pressed = model().mapToSource(index);
    const Sheet before(m_mrScene, firstFrame);
    const SceneSnapshot sceneBefore(scene());
    if (!model().beginDrag(mode, index)) {
        ++m_counts.refused;
        return model().dragMode() == DragMode::NoDrag ? QString() : QStringLiteral("refused, yet dragging");
    }
    move(mode);

    const Sheet preview(m_mrScene, firstFrame);
    if (const QString broken = m_watch.broken(); !broken.isEmpty())
        return QStringLiteral("model during the drag: ") + broken;
    if (const QString diff = sceneBefore.diff(SceneSnapshot(scene())); !diff.isEmpty())
        return QStringLiteral("the drag has changed the scene: ") + diff;
    QUndoCommand *command = commandFor(mode, pressed);
    model().endDrag();
    if (const QString diff = before.diff(Sheet(m_mrScene, firstFrame), firstFrame); !diff.isEmpty()) {
        delete command;
        return QStringLiteral("the end of the drag left something: ") + diff;
    }
    if (command)
        return compareWithResult(preview, firstFrame, command);
    ++m_counts.unmoved;
    const bool stoodStill = model().lowestOffset() == 0 && model().highestOffset() == 0;
    const QString diff = stoodStill ? before.diff(preview, firstFrame) : QString();
    return diff.isEmpty() ? diff : QStringLiteral("moved by nothing: ") + diff;
}

QString DragWalk::compareWithResult(const Sheet &preview, int firstFrame, QUndoCommand *command)
{
    const int steps = scene().undoStack()->index();
    const bool isTaken = !command->isObsolete();
    MRScene::pushCommand(command);
    if (!isTaken || scene().undoStack()->index() != steps + 1)
        return QStringLiteral("the command of the drag did nothing");
    // A range of one frame that is left takes the frame in front of it along: those above are of no interest then.
    const Sheet result(m_mrScene, scene().rangeFirst());
    if (const QString diff = preview.diff(result, firstFrame); !diff.isEmpty())
        return QStringLiteral("preview -> result: ") + diff;
    if (const QString broken = brokenInvariant(scene()); !broken.isEmpty())
        return QStringLiteral("invariant: ") + broken;
    if (m_random.chance(50))
        scene().undoStack()->undo();
    return m_watch.broken();
}

} // namespace

class tst_DragPreview : public QObject
{
    Q_OBJECT

private slots:
    void previewIsWhatTheCommandMakes();
};

void tst_DragPreview::previewIsWhatTheCommandMakes()
{
    constexpr quint64 scenes = 3000;
    constexpr int dragsPerScene = 10;
    Counts counts;
    for (quint64 seed = 1; seed <= scenes; ++seed) {
        DragWalk walk(seed, counts);
        for (int i = 0; i < dragsPerScene; ++i) {
            const QString problem = walk.drag();
            if (problem.isEmpty())
                continue;
            std::printf("seed %llu, drag %d\n%s\n", static_cast<unsigned long long>(seed), i + 1,
                        qPrintable(walk.story()));
            QFAIL(qPrintable(problem));
        }
    }
    std::printf("random edits: %llu drags previewed: %d slides, %d holds made longer, %d shorter, %d let go where they "
                "began, %d refused\n",
                static_cast<unsigned long long>(scenes * dragsPerScene), counts.slides, counts.lengthenings,
                counts.shortenings, counts.unmoved, counts.refused);
    std::fflush(stdout);
    QVERIFY(counts.slides > 1000 && counts.lengthenings > 1000 && counts.shortenings > 500 && counts.refused > 1000);
}

QTEST_MAIN(tst_DragPreview)
#include "tst_dragpreview.moc"
