// What is shown while a cell is dragged against what the scene then looks like, in random scenes.

#include "scenebuilder.h"
#include "sheetfixture.h"
#include "support/randomnumbers.h"
#include "support/scenegenerator.h"

#include <QTest>

using namespace Model;
using namespace TestSupport;

namespace {

constexpr quint64 scenes = 200;
constexpr int dragsPerScene = 12;

/// The drags that ended elsewhere than where they began.
struct Moved
{
    int up = 0;
    int down = 0;

    void count(int offset)
    {
        up += offset < 0 ? 1 : 0;
        down += offset > 0 ? 1 : 0;
    }
};

/// Everything that a view sees of a position, as text.
QString look(const FrameRangeModel &model, const SceneModel &source, const QModelIndex &index)
{
    if (!index.isValid())
        return "nothing";
    QString text;
    for (int role = SceneModel::OriginalDrawingRole; role <= SceneModel::BeyondLastRole; ++role) {
        const QVariant value = index.data(role);
        text += value.isValid() ? (value.toBool() ? '1' : '0') : '-';
    }
    const auto drawing = source.drawing(model.mapToSource(index));
    text += QStringLiteral(" drawing %1").arg(quintptr(drawing.get()), 0, 16);
    const auto note = index.data(SceneModel::AnnotationImageRole).value<QImage>();
    const QImage picture = model.thumbnail(index, QSize(12, 8));
    text += QStringLiteral(" note %1 picture %2")
                .arg(qHashBits(note.constBits(), note.sizeInBytes()))
                .arg(qHashBits(picture.constBits(), picture.sizeInBytes()));
    return text;
}

/// What the sheet shows, by frame: a list per column, that of frame f at position f. The rows are those of the model.
QList<QStringList> looks(const Sheet &sheet, int rangeFirst, int lastFrame)
{
    QList<QStringList> columns;
    for (int column = 0; column < sheet.model.columnCount(); ++column) {
        QStringList frames;
        // Two rows are shown even of a range that moves up altogether, which are none of the result.
        const int lastOfColumn = lastFrame + (sheet.scene.visualLayer(column) ? 1 : 0);
        for (int frame = 0; frame <= lastFrame + 1; ++frame) {
            const QModelIndex index = sheet.model.index(frame - rangeFirst, column);
            frames += frame <= lastOfColumn ? look(sheet.model, sheet.source, index) : QString("nothing");
        }
        columns += frames;
    }
    return columns;
}

/// Starts a drag at a random cell of \a sheet. False when it cannot be dragged.
bool beginSomeDrag(Sheet &sheet, FrameRangeModel::DragMode mode, RandomNumbers &random, QModelIndex *cell)
{
    *cell = sheet.model.index(random.between(0, sheet.model.rowCount() - 1),
                              random.between(0, sheet.model.columnCount() - 1));
    return sheet.model.beginDrag(mode, *cell);
}

/// Slides some cell of \a sheet, and lets the scene do the same. False after a failure.
bool slideSomething(Sheet &sheet, RandomNumbers &random, Moved &moved)
{
    QModelIndex dragged;
    if (!beginSomeDrag(sheet, FrameRangeModel::SlideMode, random, &dragged))
        return true;
    const int frame = dragged.row() + sheet.scene.rangeFirst();
    for (int moves = random.between(1, 4); moves > 0; --moves)
        sheet.model.setDragOffset(random.between(-5, 5));
    moved.count(sheet.model.offset());
    const int first = sheet.scene.rangeFirst();
    const int last = sheet.model.displayedLastFrame();
    const QList<QStringList> preview = looks(sheet, first, last);
    sheet.model.endDrag();
    sheet.scene.slideOriginalDrawing(dragged.column(), frame, sheet.model.offset(), sheet.model.lowestOffset(),
                                     sheet.model.highestOffset());
    return QTest::qCompare(sheet.scene.rangeLast(), last, "the end of the range", "that shown", __FILE__, __LINE__) &&
           QTest::qCompare(looks(sheet, first, last), preview, "the result", "the preview", __FILE__, __LINE__);
}

/// Lengthens or shortens some hold of \a sheet, and lets the scene do the same. False after a failure.
bool addClonesSomewhere(Sheet &sheet, RandomNumbers &random, Moved &moved)
{
    QModelIndex dragged;
    if (!beginSomeDrag(sheet, FrameRangeModel::AddClonesMode, random, &dragged))
        return true;
    const int frame = dragged.row() + sheet.scene.rangeFirst();
    for (int moves = random.between(1, 3); moves > 0; --moves)
        sheet.model.setDragOffset(random.between(-4, 4));
    const int offset = sheet.model.offset();
    moved.count(offset);
    const int firstBefore = sheet.scene.rangeFirst();
    const int last = sheet.model.displayedLastFrame();
    const QList<QStringList> preview = looks(sheet, firstBefore, last);
    sheet.model.endDrag();
    if (offset > 0)
        sheet.scene.addCloneDrawings(dragged.column(), frame, offset);
    else
        sheet.scene.deleteFrames(dragged.column(), frame, -offset);
    // A range of two frames that shrinks takes in the frame before it; the preview keeps its first row.
    QList<QStringList> result = looks(sheet, sheet.scene.rangeFirst(), last);
    for (QStringList &frames : result) {
        for (int before = sheet.scene.rangeFirst(); before < firstBefore; ++before)
            frames[before] = "nothing";
    }
    return QTest::qCompare(sheet.scene.rangeLast(), last, "the end of the range", "that shown", __FILE__, __LINE__) &&
           QTest::qCompare(result, preview, "the result", "the preview", __FILE__, __LINE__);
}

/// Does \a drag in one random scene after the other. \return how often something moved; less after a failure.
Moved dragInAllScenes(bool (*drag)(Sheet &, RandomNumbers &, Moved &))
{
    Moved moved;
    for (quint64 seed = 1; seed <= scenes; ++seed) {
        RandomNumbers random(seed);
        Sheet sheet;
        fillScene(sheet.scene, random);
        for (int i = 0; i < dragsPerScene; ++i) {
            if (!drag(sheet, random, moved)) {
                qInfo("seed %d, drag %d", static_cast<int>(seed), i + 1);
                return moved;
            }
        }
    }
    return moved;
}

} // namespace

class tst_FrameRangeModelPreview : public QObject
{
    Q_OBJECT

private slots:
    void slidePreviewIsTheResult();
    void addClonesPreviewIsTheResult();
};

void tst_FrameRangeModelPreview::slidePreviewIsTheResult()
{
    const Moved moved = dragInAllScenes(slideSomething);
    qInfo("%d slid up, %d down", moved.up, moved.down);
    QVERIFY(moved.up >= 50);
    QVERIFY(moved.down >= 50);
}

void tst_FrameRangeModelPreview::addClonesPreviewIsTheResult()
{
    const Moved moved = dragInAllScenes(addClonesSomewhere);
    qInfo("%d made shorter, %d longer", moved.up, moved.down);
    QVERIFY(moved.up >= 50);
    QVERIFY(moved.down >= 50);
}

QTEST_MAIN(tst_FrameRangeModelPreview)
#include "tst_framerangemodel_preview.moc"
