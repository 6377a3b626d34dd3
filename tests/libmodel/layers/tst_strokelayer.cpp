#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QPainter>
#include <QTest>

using namespace Model;

namespace {

constexpr QSize frame(40, 30);
constexpr QRect inked(10, 10, 8, 6);

/// Covers the rectangle wholly in the cell's drawing.
void fill(const StrokeLayer &layer, int frameId, QRect rect)
{
    QImage coverage(rect.size(), QImage::Format_Alpha8);
    coverage.fill(255);
    auto *drawing = dynamic_cast<StrokeDrawing *>(layer.item(frameId)->drawing.get());
    QVERIFY(drawing->addStroke(std::make_unique<BitmapStroke>(coverage, rect)));
}

QImage canvas()
{
    QImage image(frame, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

} // namespace

class TestStrokeLayer : public QObject
{
    Q_OBJECT

private slots:
    void newLayerHasOneBlankOriginal();
    void colorTableIsTheColourWithEveryAlpha();
    void newColourDropsThumbnails();
    void invalidColourIsIgnored();
    void drawPlainUsesTheColour();
    void drawPlainMultipliesThePaintersOpacity();
    void drawLeavesTheLayersOpacityOut();
    void drawAsBlackIsBlackAndEqual();
    void drawStaysInsideTheRect();
    void nothingIsDrawnAtFrameZeroAndBelow();
    void frozenLastDrawingIsDrawnBeyondTheEnd();
    void frameImageIsNullOutsideTheLayer();
    void frameImageIsAtMostTheSizeAsked();
};

void TestStrokeLayer::newLayerHasOneBlankOriginal()
{
    const StrokeLayer layer(Qt::red, frame);
    QCOMPARE(layer.layerType(), 1);
    QCOMPARE(layer.numFrames(), 1);
    QVERIFY(layer.item(1)->isOriginal());
    const auto *drawing = dynamic_cast<const StrokeDrawing *>(layer.item(1)->drawing.get());
    QVERIFY(drawing);
    QVERIFY(drawing->isEmpty());
    QCOMPARE(drawing->size(), frame);
}

void TestStrokeLayer::colorTableIsTheColourWithEveryAlpha()
{
    const StrokeLayer layer(QColor(40, 97, 184), frame);
    QCOMPARE(layer.colorTable().size(), 256);
    for (int alpha = 0; alpha < 256; ++alpha)
        QCOMPARE(layer.colorTable().at(alpha), qRgba(40, 97, 184, alpha));
}

void TestStrokeLayer::newColourDropsThumbnails()
{
    StrokeLayer layer(Qt::red, frame);
    fill(layer, 1, QRect(QPoint(0, 0), frame));
    const QImage before = layer.frameImage(1, QSize(20, 15));
    layer.setColor(Qt::blue);
    const QImage after = layer.frameImage(1, QSize(20, 15));
    QCOMPARE(before.pixelColor(10, 7).rgb(), QColor(Qt::red).rgb());
    QCOMPARE(after.pixelColor(10, 7).rgb(), QColor(Qt::blue).rgb());
}

void TestStrokeLayer::invalidColourIsIgnored()
{
    StrokeLayer layer(Qt::red, frame);
    layer.setColor(QColor());
    QCOMPARE(layer.color(), QColor(Qt::red));
}

void TestStrokeLayer::drawPlainUsesTheColour()
{
    const StrokeLayer layer(QColor(40, 97, 184), frame);
    fill(layer, 1, inked);
    QImage image = canvas();
    QPainter painter(&image);
    layer.drawPlain(1, &painter, image.rect());
    painter.end();
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x)
            QCOMPARE(image.pixel(x, y), inked.contains(x, y) ? qRgba(40, 97, 184, 255) : 0u);
    }
}

void TestStrokeLayer::drawPlainMultipliesThePaintersOpacity()
{
    StrokeLayer layer(Qt::white, frame);
    layer.setOpacity(0.5);
    fill(layer, 1, inked);
    QImage image = canvas();
    QPainter painter(&image);
    painter.setOpacity(0.5);
    layer.drawPlain(1, &painter, image.rect());
    QCOMPARE(painter.opacity(), 0.5);
    painter.end();
    QVERIFY(qAbs(qAlpha(image.pixel(inked.center())) - 64) <= 1);
}

void TestStrokeLayer::drawLeavesTheLayersOpacityOut()
{
    StrokeLayer layer(Qt::white, frame);
    layer.setOpacity(0.25);
    fill(layer, 1, inked);
    QImage image = canvas();
    QPainter painter(&image);
    layer.draw(1, &painter, image.rect(), false);
    painter.end();
    QCOMPARE(image.pixel(inked.center()), qRgba(255, 255, 255, 255));
}

void TestStrokeLayer::drawAsBlackIsBlackAndEqual()
{
    const StrokeLayer layer(Qt::red, frame);
    fill(layer, 1, inked);
    QImage image = canvas();
    QPainter painter(&image);
    layer.draw(1, &painter, image.rect(), true);
    painter.end();
    QCOMPARE(image.pixel(inked.center()), qRgba(0, 0, 0, 255));
    QCOMPARE(image.pixel(0, 0), 0u);
}

void TestStrokeLayer::drawStaysInsideTheRect()
{
    const StrokeLayer layer(Qt::red, frame);
    fill(layer, 1, QRect(QPoint(0, 0), frame));
    const QRect part(5, 6, 7, 8);
    QImage image = canvas();
    QPainter painter(&image);
    layer.drawPlain(1, &painter, part);
    painter.end();
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x)
            QCOMPARE(qAlpha(image.pixel(x, y)), part.contains(x, y) ? 255 : 0);
    }
}

void TestStrokeLayer::nothingIsDrawnAtFrameZeroAndBelow()
{
    StrokeLayer layer(Qt::red, frame);
    layer.setLayerBeyondLast(Layer::FreezeLast);
    fill(layer, 1, inked);
    QImage image = canvas();
    QPainter painter(&image);
    layer.drawPlain(0, &painter, image.rect());
    layer.drawPlain(-1, &painter, image.rect());
    painter.end();
    QCOMPARE(image, canvas());
}

void TestStrokeLayer::frozenLastDrawingIsDrawnBeyondTheEnd()
{
    StrokeLayer layer(Qt::red, frame);
    fill(layer, 1, inked);
    layer.setLayerBeyondLast(Layer::FreezeLast);
    QImage image = canvas();
    QPainter painter(&image);
    layer.drawPlain(9, &painter, image.rect());
    painter.end();
    QCOMPARE(image.pixel(inked.center()), qRgba(255, 0, 0, 255));
}

void TestStrokeLayer::frameImageIsNullOutsideTheLayer()
{
    StrokeLayer layer(Qt::red, frame);
    fill(layer, 1, inked);
    layer.setLayerBeyondLast(Layer::FreezeLast);
    QVERIFY(layer.frameImage(0, QSize(20, 20)).isNull());
    QVERIFY(layer.frameImage(2, QSize(20, 20)).isNull());
}

void TestStrokeLayer::frameImageIsAtMostTheSizeAsked()
{
    const StrokeLayer layer(Qt::red, frame);
    fill(layer, 1, inked);
    // 40 x 30 keeps its aspect in 20 x 20.
    QCOMPARE(layer.frameImage(1, QSize(20, 20)).size(), QSize(20, 15));
}

QTEST_MAIN(TestStrokeLayer)
#include "tst_strokelayer.moc"
