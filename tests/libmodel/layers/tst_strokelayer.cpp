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

StrokeDrawing &drawingAt(const VisualLayer &layer, int frameId)
{
    return dynamic_cast<StrokeDrawing &>(*layer.item(frameId)->drawing);
}

std::shared_ptr<StrokeLayer> copyOf(const StrokeLayer &layer)
{
    return std::dynamic_pointer_cast<StrokeLayer>(layer.clone());
}

QImage canvas()
{
    QImage image(frame, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

} // namespace

class tst_StrokeLayer : public QObject
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
    void copyHasTheSettingsUnderAnIdentityOfItsOwn();
    void copiedOriginalsHaveDrawingsOfTheirOwn();
    void copiedCellsKeepTheirIdentifiersButClonesDoNot();
    void copiedCellsAreOnTheirPegsAndNoKeys();
    void copiedClonesShareTheDrawingOfTheCopysCell();
    void linksWithinTheLayerStandWithinTheCopy_data();
    void linksWithinTheLayerStandWithinTheCopy();
    void linksOfAnotherLayerAreNotTheCopys();
    void copiedDistantCloneOfAnotherLayerKeepsItsLink();
};

void tst_StrokeLayer::newLayerHasOneBlankOriginal()
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

void tst_StrokeLayer::colorTableIsTheColourWithEveryAlpha()
{
    const StrokeLayer layer(QColor(40, 97, 184), frame);
    QCOMPARE(layer.colorTable().size(), 256);
    for (int alpha = 0; alpha < 256; ++alpha)
        QCOMPARE(layer.colorTable().at(alpha), qRgba(40, 97, 184, alpha));
}

void tst_StrokeLayer::newColourDropsThumbnails()
{
    StrokeLayer layer(Qt::red, frame);
    fill(layer, 1, QRect(QPoint(0, 0), frame));
    const QImage before = layer.frameImage(1, QSize(20, 15));
    layer.setColor(Qt::blue);
    const QImage after = layer.frameImage(1, QSize(20, 15));
    QCOMPARE(before.pixelColor(10, 7).rgb(), QColor(Qt::red).rgb());
    QCOMPARE(after.pixelColor(10, 7).rgb(), QColor(Qt::blue).rgb());
}

void tst_StrokeLayer::invalidColourIsIgnored()
{
    StrokeLayer layer(Qt::red, frame);
    layer.setColor(QColor());
    QCOMPARE(layer.color(), QColor(Qt::red));
}

void tst_StrokeLayer::drawPlainUsesTheColour()
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

void tst_StrokeLayer::drawPlainMultipliesThePaintersOpacity()
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

void tst_StrokeLayer::drawLeavesTheLayersOpacityOut()
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

void tst_StrokeLayer::drawAsBlackIsBlackAndEqual()
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

void tst_StrokeLayer::drawStaysInsideTheRect()
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

void tst_StrokeLayer::nothingIsDrawnAtFrameZeroAndBelow()
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

void tst_StrokeLayer::frozenLastDrawingIsDrawnBeyondTheEnd()
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

void tst_StrokeLayer::frameImageIsNullOutsideTheLayer()
{
    StrokeLayer layer(Qt::red, frame);
    fill(layer, 1, inked);
    layer.setLayerBeyondLast(Layer::FreezeLast);
    QVERIFY(layer.frameImage(0, QSize(20, 20)).isNull());
    QVERIFY(layer.frameImage(2, QSize(20, 20)).isNull());
}

void tst_StrokeLayer::frameImageIsAtMostTheSizeAsked()
{
    const StrokeLayer layer(Qt::red, frame);
    fill(layer, 1, inked);
    // 40 x 30 keeps its aspect in 20 x 20.
    QCOMPARE(layer.frameImage(1, QSize(20, 20)).size(), QSize(20, 15));
}

void tst_StrokeLayer::copyHasTheSettingsUnderAnIdentityOfItsOwn()
{
    StrokeLayer layer(QColor(40, 97, 184), frame);
    layer.setName("body");
    layer.setLinked(true);
    layer.setVisible(false);
    layer.setOpacity(0.25);
    layer.setLayerBeyondLast(Layer::FreezeLast);
    const auto copy = copyOf(layer);
    QVERIFY(copy);
    QVERIFY(!copy->identifier().isNull());
    QVERIFY(copy->identifier() != layer.identifier());
    QCOMPARE(copy->name(), "body");
    QVERIFY(copy->isLinked());
    QVERIFY(!copy->isVisible());
    QCOMPARE(copy->opacity(), 0.25);
    QCOMPARE(copy->beyondLast(), Layer::FreezeLast);
    QCOMPARE(copy->frameSize(), frame);
    QCOMPARE(copy->color(), QColor(40, 97, 184));
    QCOMPARE(copy->colorTable(), layer.colorTable());
}

void tst_StrokeLayer::copiedOriginalsHaveDrawingsOfTheirOwn()
{
    StrokeLayer layer(Qt::red, frame);
    layer.insertBlankAfter(1);
    fill(layer, 1, inked);
    drawingAt(layer, 1).setCopyId(QUuid::createUuid());
    const auto copy = copyOf(layer);
    QCOMPARE(copy->numFrames(), 2);
    QVERIFY(copy->item(1) != layer.item(1));
    QVERIFY(copy->item(1)->drawing != layer.item(1)->drawing);
    QCOMPARE(drawingAt(*copy, 1).image(), drawingAt(layer, 1).image());
    QCOMPARE(drawingAt(*copy, 1).copyId(), drawingAt(layer, 1).copyId());
    QVERIFY(drawingAt(*copy, 2).isEmpty());
    // What is drawn from now on is drawn in one of them only.
    fill(*copy, 2, inked);
    QVERIFY(drawingAt(layer, 2).isEmpty());
}

void tst_StrokeLayer::copiedCellsKeepTheirIdentifiersButClonesDoNot()
{
    StrokeLayer layer(Qt::red, frame);
    layer.insertCloneAfter(1);
    layer.insertBlankAfter(2);
    const auto copy = copyOf(layer);
    QCOMPARE(copy->item(1)->identifier, layer.item(1)->identifier);
    QVERIFY(copy->item(2)->identifier != layer.item(2)->identifier);
    QVERIFY(!copy->item(2)->identifier.isNull());
    QCOMPARE(copy->item(3)->identifier, layer.item(3)->identifier);
}

void tst_StrokeLayer::copiedCellsAreOnTheirPegsAndNoKeys()
{
    StrokeLayer layer(Qt::red, frame);
    layer.insertCloneAfter(1);
    for (const int frameId : {1, 2}) {
        layer.item(frameId)->offPegsTransform = QTransform::fromTranslate(3, frameId);
        layer.item(frameId)->keyDrawing = true;
    }
    const auto copy = copyOf(layer);
    for (const int frameId : {1, 2}) {
        QVERIFY(copy->item(frameId)->offPegsTransform.isIdentity());
        QVERIFY(!copy->item(frameId)->keyDrawing);
    }
    QVERIFY(layer.item(1)->keyDrawing);
}

void tst_StrokeLayer::copiedClonesShareTheDrawingOfTheCopysCell()
{
    StrokeLayer layer(Qt::red, frame);
    layer.insertCloneAfter(1);
    layer.insertCloneAfter(2);
    layer.insertBlankAfter(3);
    const auto copy = copyOf(layer);
    for (const int frameId : {2, 3}) {
        QVERIFY(copy->item(frameId)->isClone());
        QCOMPARE(copy->item(frameId)->drawing, copy->item(1)->drawing);
    }
    QVERIFY(copy->item(4)->isOriginal());
    QVERIFY(copy->item(4)->drawing != copy->item(1)->drawing);
}

void tst_StrokeLayer::linksWithinTheLayerStandWithinTheCopy_data()
{
    QTest::addColumn<int>("original");
    QTest::addColumn<int>("clone");
    QTest::newRow("behind its original") << 1 << 3;
    QTest::newRow("before its original") << 3 << 1;
}

void tst_StrokeLayer::linksWithinTheLayerStandWithinTheCopy()
{
    QFETCH(int, original);
    QFETCH(int, clone);
    StrokeLayer layer(Qt::red, frame);
    for (int i = 0; i < 2; ++i)
        layer.insertBlankAfter(1);
    layer.item(clone)->type = LayerItem::Type::DistantClone;
    layer.item(clone)->origin = layer.cellRef(original);
    layer.item(clone)->drawing = layer.item(original)->drawing;
    layer.item(original)->clones = {layer.cellRef(clone)};
    layer.insertCloneAfter(3); // of whichever stands last
    const auto copy = copyOf(layer);
    QVERIFY(copy->item(original)->isOriginal());
    QCOMPARE(copy->item(original)->clones, QList<CellRef>({copy->cellRef(clone)}));
    QVERIFY(copy->item(clone)->isDistantClone());
    QCOMPARE(copy->item(clone)->origin, copy->cellRef(original));
    QCOMPARE(copy->item(clone)->drawing, copy->item(original)->drawing);
    QCOMPARE(copy->item(4)->drawing, copy->item(3)->drawing);
    QVERIFY(copy->item(original)->drawing != layer.item(original)->drawing);
    QCOMPARE(layer.item(original)->clones, QList<CellRef>({layer.cellRef(clone)}));
}

void tst_StrokeLayer::linksOfAnotherLayerAreNotTheCopys()
{
    StrokeLayer layer(Qt::red, frame);
    layer.insertBlankAfter(1);
    layer.item(2)->type = LayerItem::Type::DistantClone;
    layer.item(2)->origin = layer.cellRef(1);
    layer.item(2)->drawing = layer.item(1)->drawing;
    const CellRef foreign{QUuid::createUuid(), QUuid::createUuid()};
    layer.item(1)->clones = {foreign, layer.cellRef(2), foreign};
    const auto copy = copyOf(layer);
    QCOMPARE(copy->item(1)->clones, QList<CellRef>({copy->cellRef(2)}));
}

void tst_StrokeLayer::copiedDistantCloneOfAnotherLayerKeepsItsLink()
{
    StrokeLayer layer(Qt::red, frame);
    fill(layer, 1, inked);
    const CellRef elsewhere{QUuid::createUuid(), QUuid::createUuid()};
    layer.item(1)->type = LayerItem::Type::DistantClone;
    layer.item(1)->origin = elsewhere;
    const auto copy = copyOf(layer);
    QVERIFY(copy->item(1)->isDistantClone());
    QCOMPARE(copy->item(1)->origin, elsewhere);
    QCOMPARE(drawingAt(*copy, 1).image(), drawingAt(layer, 1).image());
}

QTEST_MAIN(tst_StrokeLayer)
#include "tst_strokelayer.moc"
