#include "coverageprobes.h"
#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/strokedrawing.h"
#include "strokemaking.h"

#include <QDataStream>
#include <QTest>

using namespace Model;

/// What is nested as deeply as it may be, where no OpenGL is to be had to make pixels of its lowest levels.
class tst_NoRenderer : public QObject
{
    Q_OBJECT

private slots:
    void bitmapsBecomeOneWithoutARenderer();
    void linesAreNeverPutTooDeep();
    void drawingOfDeepLinesStaysAsItIs();

private:
    static constexpr QSize frame{40, 30};
    TestPen m_pen{{5, 5, 1, 1}};
};

namespace {

std::unique_ptr<BitmapStroke> patch(QRect rect)
{
    QImage image = blankCoverage(rect.size());
    image.fill(100);
    return std::make_unique<BitmapStroke>(image, rect);
}

/// \a inner in as many compounds as may lie within each other.
std::unique_ptr<CompoundStroke> deepest(std::unique_ptr<Stroke> inner)
{
    for (int level = 0; level < CompoundStroke::maximumDepth; ++level) {
        auto outer = std::make_unique<CompoundStroke>();
        outer->append(std::move(inner));
        inner = std::move(outer);
    }
    return std::unique_ptr<CompoundStroke>(static_cast<CompoundStroke *>(inner.release()));
}

template<typename Object>
QByteArray bytesOf(const Object &object)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    object.write(stream);
    return bytes;
}

template<typename Object>
bool readFrom(const QByteArray &bytes, Object &object)
{
    QDataStream stream(bytes);
    return object.read(stream);
}

} // namespace

void tst_NoRenderer::bitmapsBecomeOneWithoutARenderer()
{
    QVERIFY(!OffscreenRenderer::instance()->isInitialized());
    CompoundStroke around;
    QVERIFY(around.append(deepest(patch({5, 5, 20, 10}))));
    QVERIFY(around.nesting() <= CompoundStroke::maximumDepth);
    CompoundStroke read;
    QVERIFY(readFrom(bytesOf(around), read));
    QImage image = blankCoverage(frame);
    read.render(image, image.rect(), QTransform(), QPoint(), 1.0);
    QCOMPARE(int(image.constScanLine(10)[10]), 100);
    QCOMPARE(int(image.constScanLine(20)[10]), 0);
}

void tst_NoRenderer::linesAreNeverPutTooDeep()
{
    const auto deep = deepest(straightStroke(m_pen, {2, 10}, {30, 10}));
    CompoundStroke around;
    QVERIFY(!around.canAppend(*deep));
    QVERIFY(!around.append(deep->clone()));
    QVERIFY(around.isEmpty());

    // On a cut, whatever is drawn would push the old content down; so would a cut behind a transform.
    CompoundStroke cut(*deep);
    QVERIFY(cut.addCut(rectPath(5, 5, 4, 10)));
    const QByteArray before = bytesOf(cut);
    QVERIFY(!cut.append(patch({0, 0, 5, 5})));
    QCOMPARE(bytesOf(cut), before);
    cut.setTransform(QTransform::fromScale(2, 2));
    QVERIFY(!cut.pushDown());
    CompoundStroke read;
    QVERIFY(readFrom(bytesOf(cut), read));
    QCOMPARE(read.nesting(), CompoundStroke::maximumDepth);
}

void tst_NoRenderer::drawingOfDeepLinesStaysAsItIs()
{
    const auto deep = deepest(straightStroke(m_pen, {2, 10}, {30, 10}));
    QByteArray block;
    QDataStream stream(&block, QIODevice::WriteOnly);
    stream << frame;
    deep->write(stream);
    StrokeDrawing drawing{QSize()};
    QVERIFY(readFrom(block, drawing));
    drawing.resize({80, 60}, MR::FitMode::FitModeStretch);
    const QByteArray before = bytesOf(drawing);
    drawing.cutPath(rectPath(5, 5, 4, 10));
    QVERIFY(!drawing.addStroke(patch({0, 0, 5, 5})));
    drawing.merge(*drawing.clone());
    QVERIFY(drawing.extract(rectPath(0, 0, 80, 60))->isEmpty());
    QCOMPARE(bytesOf(drawing), before);
    StrokeDrawing again{QSize()};
    QVERIFY(readFrom(before, again));
    QCOMPARE(again.strokes().recursiveCount(), drawing.strokes().recursiveCount());
}

QTEST_MAIN(tst_NoRenderer)
#include "tst_norenderer.moc"
