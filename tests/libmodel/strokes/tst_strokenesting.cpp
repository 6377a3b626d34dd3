#include "coverageprobes.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/strokedrawing.h"
#include "strokemaking.h"
#include "support/glfixture.h"

#include <QDataStream>
#include <QFile>
#include <QtTest>

using namespace Model;

/// Groups within groups, as deep as they may be: what is done with them must need neither stack nor memory without end.
class tst_StrokeNesting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void nestingCountsLevels();
    void deepestGroupCanBeUsedLikeAnyOther();
    void deepGroupsOnEachOtherTakeLittleMemory();
    void deepGroupLooksTheSameInParts();
    void cutsWithoutEndStayReadable();
    void groupsPutIntoGroupsStayReadable();
    void flattenedLevelsKeepTheirLook();
    void oldestChildrenAreKept();

private:
    static constexpr QSize frame{1200, 800};
    TestPen m_pen{{5, 5, 1, 1}};
};

namespace {

QByteArray bytesOf(const CompoundStroke &stroke)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    stroke.write(stream);
    return bytes;
}

bool readFrom(const QByteArray &bytes, CompoundStroke &stroke)
{
    QDataStream stream(bytes);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    return stroke.read(stream);
}

std::unique_ptr<BitmapStroke> patch(QRect rect, int value)
{
    QImage image = blankCoverage(rect.size());
    image.fill(value);
    return std::make_unique<BitmapStroke>(image, rect);
}

/// \a levels of { a small patch, the next level }, around a patch of coverage 100 as large as \a frame.
///
/// Every level but the outermost lies on something, and so needs an image of its own while it is drawn.
std::unique_ptr<CompoundStroke> nested(int levels, QSize frame)
{
    auto inner = std::make_unique<CompoundStroke>();
    inner->append(patch(QRect(QPoint(0, 0), frame), 100));
    for (int level = 1; level < levels; ++level) {
        auto outer = std::make_unique<CompoundStroke>();
        outer->append(patch(QRect(level % 1000, 10, 2, 2), 30));
        outer->append(std::move(inner));
        inner = std::move(outer);
    }
    return inner;
}

QImage rendered(const Stroke &stroke, QSize size, QRect rect)
{
    QImage image = blankCoverage(size);
    stroke.render(image, rect, QTransform(), QPoint(), 1.0);
    return image;
}

qint64 statusKiB(const QByteArray &key)
{
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(key + ':'))
            return line.mid(key.size() + 1).trimmed().split(' ').value(0).toLongLong();
    }
    return -1;
}

bool resetPeakMemory()
{
    QFile counters("/proc/self/clear_refs");
    return counters.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && counters.write("5") == 1;
}

} // namespace

void tst_StrokeNesting::nestingCountsLevels()
{
    CompoundStroke compound;
    QCOMPARE(compound.nesting(), 1);
    compound.append(patch(QRect(0, 0, 5, 5), 9));
    QCOMPARE(compound.nesting(), 1);
    compound.append(nested(3, frame));
    QCOMPARE(compound.nesting(), 4);
    compound.append(nested(2, frame));
    QCOMPARE(compound.nesting(), 4);
}

void tst_StrokeNesting::deepestGroupCanBeUsedLikeAnyOther()
{
    const QByteArray bytes = bytesOf(*nested(CompoundStroke::maximumDepth, QSize(40, 30)));
    CompoundStroke read;
    QVERIFY(readFrom(bytes, read));
    QCOMPARE(read.nesting(), CompoundStroke::maximumDepth);
    // On each level the group and a patch.
    QCOMPARE(read.recursiveCount(), 2 * CompoundStroke::maximumDepth);
    QCOMPARE(bytesOf(read), bytes);
    const auto copy = read.clone();
    QCOMPARE(bytesOf(static_cast<const CompoundStroke &>(*copy)), bytes);
    QCOMPARE(coverageAt(rendered(*copy, QSize(40, 30), QRect(0, 0, 40, 30)), 20, 20), 100);
    read.cutInside(rectPath(0, 0, 5, 5));
    read.cutOutside(rectPath(0, 0, 30, 30));
    QCOMPARE(read.nesting(), CompoundStroke::maximumDepth);
}

void tst_StrokeNesting::deepGroupsOnEachOtherTakeLittleMemory()
{
    // 2048 images of 0.96 MB would be 2 GB.
    const auto deep = nested(CompoundStroke::maximumDepth, frame);
    QVERIFY(resetPeakMemory());
    const qint64 before = statusKiB("VmRSS");
    const QImage image = rendered(*deep, frame, QRect(QPoint(0, 0), frame));
    const qint64 grown = statusKiB("VmHWM") - before;
    QVERIFY(before > 0);
    QVERIFY2(grown < 400 * 1024, qPrintable(QString("%1 KiB").arg(grown)));
    for (const int y : {20, 400, 799})
        QCOMPARE(coverageAt(image, 600, y), 100);
}

void tst_StrokeNesting::deepGroupLooksTheSameInParts()
{
    const auto deep = nested(1000, frame);
    auto outer = std::make_unique<CompoundStroke>();
    outer->append(straightStroke(m_pen, {3, 3}, {1190, 780}));
    outer->append(deep->clone());
    outer->addCut(rectPath(100.5, 77.3, 500, 300));
    const QImage whole = rendered(*outer, frame, QRect(QPoint(0, 0), frame));
    QImage parts = blankCoverage(frame);
    for (int y = 0; y < frame.height(); y += 160)
        outer->render(parts, QRect(0, y, frame.width(), 160), QTransform(), QPoint(), 1.0);
    // Where triangles are cut off at other rows, a driver may round to the other side.
    QVERIFY(largestDifference(parts, whole) <= 1);
}

void tst_StrokeNesting::cutsWithoutEndStayReadable()
{
    CompoundStroke drawing;
    for (int i = 0; i < CompoundStroke::maximumDepth + 300; ++i) {
        const double x = 20 + i % 1100;
        const double y = 20 + i / 1100 * 20;
        drawing.append(patch(QRect(int(x), int(y), 12, 12), 200));
        QVERIFY(drawing.addCut(rectPath(x + 2, y + 2, 3, 3)));
    }
    drawing.append(straightStroke(m_pen, {10, 400}, {900, 400}));
    QVERIFY(drawing.nesting() > 1000);
    QVERIFY(drawing.nesting() <= CompoundStroke::maximumDepth);
    CompoundStroke read;
    QVERIFY(readFrom(bytesOf(drawing), read));
    QCOMPARE(read.nesting(), drawing.nesting());
}

void tst_StrokeNesting::groupsPutIntoGroupsStayReadable()
{
    auto group = nested(CompoundStroke::maximumDepth, QSize(40, 30));
    CompoundStroke around;
    around.append(std::move(group));
    QVERIFY(around.nesting() <= CompoundStroke::maximumDepth);
    QCOMPARE(around.count(), 1);
    CompoundStroke read;
    QVERIFY(readFrom(bytesOf(around), read));
}

void tst_StrokeNesting::flattenedLevelsKeepTheirLook()
{
    CompoundStroke group;
    group.append(straightStroke(m_pen, {100, 100}, {400, 300}));
    auto deep = std::make_unique<CompoundStroke>(group);
    for (int level = 1; level < CompoundStroke::maximumDepth; ++level) {
        auto outer = std::make_unique<CompoundStroke>();
        outer->append(std::move(deep));
        deep = std::move(outer);
    }
    const QImage before = rendered(*deep, frame, QRect(QPoint(0, 0), frame));
    CompoundStroke around;
    around.append(std::move(deep));
    QVERIFY(around.nesting() < CompoundStroke::maximumDepth);
    QCOMPARE(rendered(around, frame, QRect(QPoint(0, 0), frame)), before);
    QVERIFY(coverageAt(before, 250, 200) > 240);
}

void tst_StrokeNesting::oldestChildrenAreKept()
{
    CompoundStroke compound;
    for (int i = 0; i < 4; ++i)
        compound.append(patch(QRect(100 * i, 0, 10, 10), 9));
    compound.keepOldest(7);
    QCOMPARE(compound.count(), 4);
    compound.keepOldest(2);
    QCOMPARE(compound.count(), 2);
    QCOMPARE(compound.boundingRect(), QRect(0, 0, 110, 10));
    compound.keepOldest(-1);
    QVERIFY(compound.isEmpty());
    QVERIFY(compound.boundingRect().isNull());
}

QTEST_MAIN(tst_StrokeNesting)
#include "tst_strokenesting.moc"
