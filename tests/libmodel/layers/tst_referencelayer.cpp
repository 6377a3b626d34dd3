#include "libmodel/layers/referencelayer.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/erasertool.h"

#include <QPainter>
#include <QTest>

#include <climits>

using namespace Model;

namespace {

constexpr QSize frame(8, 6);
constexpr QPoint middle(4, 3);
constexpr QRgb nothing = 0;

std::shared_ptr<ImageDrawing> picture(const QColor &color, QSize size = frame)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return std::make_shared<ImageDrawing>(image);
}

std::shared_ptr<LayerItem> cell(LayerItem::Type type, std::shared_ptr<Drawing> drawing)
{
    return std::make_shared<LayerItem>(type, std::move(drawing));
}

/// A layer with a red, a green and a blue frame, each filling the frame.
std::shared_ptr<ReferenceLayer> threeColours()
{
    auto layer = std::make_shared<ReferenceLayer>(frame);
    const bool isTaken = layer->setFrames({cell(LayerItem::Type::Original, picture(Qt::red)),
                                           cell(LayerItem::Type::Original, picture(Qt::green)),
                                           cell(LayerItem::Type::Original, picture(Qt::blue))});
    Q_ASSERT(isTaken);
    Q_UNUSED(isTaken);
    return layer;
}

QImage canvas()
{
    QImage image(frame, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

/// What \a paint leaves on an empty canvas.
template<typename Paint>
QImage painted(Paint paint)
{
    QImage image = canvas();
    QPainter painter(&image);
    paint(&painter);
    painter.end();
    return image;
}

QImage plain(const VisualLayer &layer, int frameId)
{
    return painted([&](QPainter *painter) { layer.drawPlain(frameId, painter, QRect({}, frame)); });
}

QImage alone(const VisualLayer &layer, int frameId)
{
    return painted([&](QPainter *painter) { layer.draw(frameId, painter, QRect({}, frame), false); });
}

const QImage &imageAt(const VisualLayer &layer, int frameId)
{
    return dynamic_cast<const ImageDrawing &>(*layer.item(frameId)->drawing).image();
}

/// Is the middle of \a image, which is premultiplied, \a color at \a opacity, but for rounding?
bool isShownAt(const QImage &image, const QColor &color, double opacity)
{
    const QRgb pixel = reinterpret_cast<const QRgb *>(image.constScanLine(middle.y()))[middle.x()];
    const auto isNear = [](int value, double expected) { return qAbs(value - expected) <= 1; };
    return isNear(qAlpha(pixel), 255 * opacity) && isNear(qRed(pixel), color.red() * opacity) &&
           isNear(qGreen(pixel), color.green() * opacity) && isNear(qBlue(pixel), color.blue() * opacity);
}

} // namespace

class tst_ReferenceLayer : public QObject
{
    Q_OBJECT

private slots:
    void newLayerHasOneOriginalWithoutAPicture();
    void newLayerIsHalfTransparent();
    void blankCellsHaveNoPicture();
    void cellWithoutAPictureShowsNothing();
    void drawShowsThePictureAlone();
    void drawHasNoBlackAndNoOpacity();
    void drawKnowsNoRuleBeyondTheEnd();
    void plainPictureHasTheLayersOpacity();
    void opacityCombinesWithThePainters();
    void painterIsLeftAsItWas();
    void plainPictureFollowsTheRuleBeyondTheEnd_data();
    void plainPictureFollowsTheRuleBeyondTheEnd();
    void oneFrameThatCyclesIsShownEverywhere();
    void holdShowsThePictureBeforeIt();
    void nothingIsPaintedOutsideTheRect();
    void pictureOfAnotherSizeIsFittedAndCentred();
    void inkedRectIsWhereThePictureLies();
    void hueShiftLeavesThePictureItsColours();
    void strokeInProgressIsNotShown();
    void frameImageIsThePictureInTheSizeAsked();
    void frameImageIsNullOutsideTheLayer();
    void resizingLeavesThePictures();
    void copyHasTheSettingsUnderAnIdentityOfItsOwn();
    void copiedOriginalsHavePicturesOfTheirOwn();
    void copiedCellsAreOnTheirPegsAndNoKeys();
    void copiedClonesShareThePictureOfTheCopysCell();
    void copiedDistantCloneOfTheSameLayerIsAnOriginal();
    void copiedDistantCloneOfAnotherLayerKeepsItsLink();
    void copyingLeavesTheSourceAsItWas();
};

void tst_ReferenceLayer::newLayerHasOneOriginalWithoutAPicture()
{
    const ReferenceLayer layer(frame);
    QCOMPARE(layer.layerType(), 3);
    QVERIFY(Layer::isVisualType(layer.layerType()));
    QVERIFY(!Layer::isDrawType(layer.layerType()));
    QCOMPARE(layer.frameSize(), frame);
    QCOMPARE(layer.numFrames(), 1);
    QVERIFY(layer.item(1)->isOriginal());
    QCOMPARE(layer.item(1)->drawing->type(), Drawing::Type::Image);
    QVERIFY(imageAt(layer, 1).isNull());
}

void tst_ReferenceLayer::newLayerIsHalfTransparent()
{
    const ReferenceLayer layer(frame);
    QCOMPARE(layer.opacity(), 0.5);
    QVERIFY(layer.isShown());
}

void tst_ReferenceLayer::blankCellsHaveNoPicture()
{
    const auto layer = threeColours();
    layer->insertBlankAfter(1);
    QVERIFY(layer->item(2)->isOriginal());
    QVERIFY(imageAt(*layer, 2).isNull());
    const auto blank = layer->newBlankItem();
    QVERIFY(blank->isOriginal());
    QCOMPARE(blank->drawing->type(), Drawing::Type::Image);
    QVERIFY(blank->drawing != layer->newBlankItem()->drawing);
}

void tst_ReferenceLayer::cellWithoutAPictureShowsNothing()
{
    const ReferenceLayer layer(frame);
    QCOMPARE(plain(layer, 1), canvas());
    QCOMPARE(alone(layer, 1), canvas());
    QVERIFY(layer.frameImage(1, QSize(20, 20)).isNull());
    QCOMPARE(layer.frameLabel(1), "1");
}

void tst_ReferenceLayer::drawShowsThePictureAlone()
{
    const auto layer = threeColours();
    const QImage image = alone(*layer, 2);
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x)
            QCOMPARE(image.pixel(x, y), qRgba(0, 255, 0, 255));
    }
}

void tst_ReferenceLayer::drawHasNoBlackAndNoOpacity()
{
    const auto layer = threeColours();
    layer->setOpacity(0.1);
    const QImage image = painted([&](QPainter *painter) { layer->draw(1, painter, QRect({}, frame), true); });
    QCOMPARE(image.pixel(middle), qRgba(255, 0, 0, 255));
}

void tst_ReferenceLayer::drawKnowsNoRuleBeyondTheEnd()
{
    const auto layer = threeColours();
    for (const auto mode : {Layer::FreezeLast, Layer::CycleDrawings}) {
        layer->setLayerBeyondLast(mode);
        for (const int frameId : {INT_MIN, -1, 0, 4, INT_MAX})
            QCOMPARE(alone(*layer, frameId), canvas());
    }
}

void tst_ReferenceLayer::plainPictureHasTheLayersOpacity()
{
    const auto layer = threeColours();
    layer->setOpacity(0.25);
    QVERIFY(isShownAt(plain(*layer, 1), Qt::red, 0.25));
}

void tst_ReferenceLayer::opacityCombinesWithThePainters()
{
    const auto layer = threeColours();
    QCOMPARE(layer->opacity(), 0.5);
    const QImage image = painted([&](QPainter *painter) {
        painter->setOpacity(0.5);
        layer->drawPlain(3, painter, QRect({}, frame));
    });
    QVERIFY(isShownAt(image, Qt::blue, 0.25));
}

void tst_ReferenceLayer::painterIsLeftAsItWas()
{
    const auto layer = threeColours();
    QImage image = canvas();
    QPainter painter(&image);
    painter.setOpacity(0.75);
    layer->drawPlain(1, &painter, image.rect());
    layer->drawHueShifted(1, &painter, image.rect(), 40, 0.5);
    layer->draw(1, &painter, image.rect(), false);
    QCOMPARE(painter.opacity(), 0.75);
    QVERIFY(!painter.testRenderHint(QPainter::SmoothPixmapTransform));
}

void tst_ReferenceLayer::plainPictureFollowsTheRuleBeyondTheEnd_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("frameId");
    QTest::addColumn<QRgb>("color");
    const auto row = [](Layer::LayerBeyondLast mode, int frameId, QRgb color) {
        QTest::addRow("mode %d frame %d", int(mode), frameId) << int(mode) << frameId << color;
    };
    const QRgb red = qRgba(255, 0, 0, 255);
    const QRgb green = qRgba(0, 255, 0, 255);
    const QRgb blue = qRgba(0, 0, 255, 255);
    for (const auto mode : {Layer::ShowNothing, Layer::FreezeLast, Layer::CycleDrawings}) {
        row(mode, INT_MIN, nothing);
        row(mode, 0, nothing);
        row(mode, 1, red);
        row(mode, 3, blue);
    }
    row(Layer::ShowNothing, 4, nothing);
    row(Layer::FreezeLast, 4, blue);
    row(Layer::FreezeLast, INT_MAX, blue);
    row(Layer::CycleDrawings, 4, red);
    row(Layer::CycleDrawings, 8, green);
    row(Layer::CycleDrawings, 9, blue);
}

void tst_ReferenceLayer::plainPictureFollowsTheRuleBeyondTheEnd()
{
    QFETCH(int, mode);
    QFETCH(int, frameId);
    QFETCH(QRgb, color);
    const auto layer = threeColours();
    layer->setOpacity(1.0);
    layer->setLayerBeyondLast(static_cast<Layer::LayerBeyondLast>(mode));
    QCOMPARE(plain(*layer, frameId).pixel(middle), color);
}

void tst_ReferenceLayer::oneFrameThatCyclesIsShownEverywhere()
{
    ReferenceLayer layer(frame);
    layer.setOpacity(1.0);
    layer.setFrames({cell(LayerItem::Type::Original, picture(Qt::red))});
    layer.setLayerBeyondLast(Layer::CycleDrawings);
    for (const int frameId : {1, 2, 3, 24, 1'000'000, INT_MAX})
        QCOMPARE(plain(layer, frameId).pixel(middle), qRgba(255, 0, 0, 255));
}

void tst_ReferenceLayer::holdShowsThePictureBeforeIt()
{
    const auto layer = threeColours();
    layer->setOpacity(1.0);
    layer->insertCloneAfter(1);
    QVERIFY(layer->item(2)->isClone());
    QCOMPARE(plain(*layer, 2).pixel(middle), qRgba(255, 0, 0, 255));
    QCOMPARE(plain(*layer, 3).pixel(middle), qRgba(0, 255, 0, 255));
}

void tst_ReferenceLayer::nothingIsPaintedOutsideTheRect()
{
    const auto layer = threeColours();
    const QRect part(2, 1, 3, 2);
    const QImage image = painted([&](QPainter *painter) { layer->draw(1, painter, part, false); });
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x)
            QCOMPARE(qAlpha(image.pixel(x, y)), part.contains(x, y) ? 255 : 0);
    }
}

void tst_ReferenceLayer::pictureOfAnotherSizeIsFittedAndCentred()
{
    // 3 x 3 in 8 x 6 becomes 6 x 6, with a pixel free on either side.
    ReferenceLayer layer(frame);
    layer.setFrames({cell(LayerItem::Type::Original, picture(Qt::red, QSize(3, 3)))});
    const QImage image = alone(layer, 1);
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x)
            QCOMPARE(qAlpha(image.pixel(x, y)), x >= 1 && x <= 6 ? 255 : 0);
    }
}

void tst_ReferenceLayer::inkedRectIsWhereThePictureLies()
{
    ReferenceLayer layer(frame);
    QVERIFY(layer.inkedRect(1).isEmpty());
    layer.setFrames({cell(LayerItem::Type::Original, picture(Qt::red)),
                     cell(LayerItem::Type::Original, picture(Qt::red, QSize(3, 3)))});
    QCOMPARE(layer.inkedRect(1), QRect({}, frame));
    QCOMPARE(layer.inkedRect(2), QRect(1, 0, 6, 6));
    QVERIFY(layer.inkedRect(3).isEmpty());
    layer.setLayerBeyondLast(Layer::FreezeLast);
    QCOMPARE(layer.inkedRect(3), QRect(1, 0, 6, 6));
}

void tst_ReferenceLayer::hueShiftLeavesThePictureItsColours()
{
    const auto layer = threeColours();
    const QImage image =
        painted([&](QPainter *painter) { layer->drawHueShifted(1, painter, QRect({}, frame), 120, 0.5); });
    // Half of the layer's half.
    QVERIFY(isShownAt(image, Qt::red, 0.25));
}

void tst_ReferenceLayer::strokeInProgressIsNotShown()
{
    const auto layer = threeColours();
    static const EraserTool eraser(Tool::EraserType::RubberEraser);
    SingleStroke stroke(frame, &eraser);
    stroke.addSample({QPointF(4, 3), 1.0, 0});
    const QImage image =
        painted([&](QPainter *painter) { layer->drawWithActiveStroke(2, painter, QRect({}, frame), stroke); });
    QCOMPARE(image, plain(*layer, 2));
}

void tst_ReferenceLayer::frameImageIsThePictureInTheSizeAsked()
{
    const auto layer = threeColours();
    const QImage image = layer->frameImage(2, QSize(40, 30));
    QCOMPARE(image.size(), QSize(40, 30));
    QCOMPARE(image.pixelColor(20, 15), QColor(0, 255, 0));
}

void tst_ReferenceLayer::frameImageIsNullOutsideTheLayer()
{
    const auto layer = threeColours();
    layer->setLayerBeyondLast(Layer::FreezeLast);
    for (const int frameId : {INT_MIN, -1, 0, 4, INT_MAX})
        QVERIFY(layer->frameImage(frameId, QSize(20, 20)).isNull());
}

void tst_ReferenceLayer::resizingLeavesThePictures()
{
    const auto layer = threeColours();
    const QImage before = imageAt(*layer, 1);
    layer->setFrameSize(frame * 2, MR::FitMode::FitModeStretch, nullptr);
    QCOMPARE(layer->frameSize(), frame * 2);
    QCOMPARE(imageAt(*layer, 1), before);
}

void tst_ReferenceLayer::copyHasTheSettingsUnderAnIdentityOfItsOwn()
{
    const auto layer = threeColours();
    layer->setName("turnaround");
    layer->setLinked(true);
    layer->setVisible(false);
    layer->setOpacity(0.75);
    layer->setLayerBeyondLast(Layer::CycleDrawings);
    const auto copy = std::dynamic_pointer_cast<ReferenceLayer>(layer->clone());
    QVERIFY(copy);
    QVERIFY(!copy->identifier().isNull());
    QVERIFY(copy->identifier() != layer->identifier());
    QCOMPARE(copy->name(), "turnaround");
    QVERIFY(copy->isLinked());
    QVERIFY(!copy->isVisible());
    QCOMPARE(copy->opacity(), 0.75);
    QCOMPARE(copy->beyondLast(), Layer::CycleDrawings);
    QCOMPARE(copy->frameSize(), frame);
}

void tst_ReferenceLayer::copiedOriginalsHavePicturesOfTheirOwn()
{
    const auto layer = threeColours();
    const QUuid copyId = QUuid::createUuid();
    layer->item(2)->drawing->setCopyId(copyId);
    const auto copy = std::dynamic_pointer_cast<VisualLayer>(layer->clone());
    QCOMPARE(copy->numFrames(), 3);
    for (int frameId = 1; frameId <= 3; ++frameId) {
        QVERIFY(copy->item(frameId) != layer->item(frameId));
        QVERIFY(copy->item(frameId)->isOriginal());
        QCOMPARE(copy->item(frameId)->identifier, layer->item(frameId)->identifier);
        QVERIFY(copy->item(frameId)->drawing != layer->item(frameId)->drawing);
        QCOMPARE(imageAt(*copy, frameId), imageAt(*layer, frameId));
    }
    QCOMPARE(copy->item(2)->drawing->copyId(), copyId);
}

void tst_ReferenceLayer::copiedCellsAreOnTheirPegsAndNoKeys()
{
    const auto layer = threeColours();
    layer->insertCloneAfter(3);
    for (int frameId = 1; frameId <= 4; ++frameId) {
        layer->item(frameId)->offPegsTransform = QTransform::fromTranslate(3, frameId);
        layer->item(frameId)->keyDrawing = true;
    }
    const auto copy = std::dynamic_pointer_cast<VisualLayer>(layer->clone());
    for (int frameId = 1; frameId <= 4; ++frameId) {
        QVERIFY(copy->item(frameId)->offPegsTransform.isIdentity());
        QVERIFY(!copy->item(frameId)->keyDrawing);
    }
}

void tst_ReferenceLayer::copiedClonesShareThePictureOfTheCopysCell()
{
    const auto layer = threeColours();
    layer->insertCloneAfter(2);
    layer->insertCloneAfter(3);
    const auto copy = std::dynamic_pointer_cast<VisualLayer>(layer->clone());
    for (const int frameId : {3, 4}) {
        QVERIFY(copy->item(frameId)->isClone());
        QCOMPARE(copy->item(frameId)->drawing, copy->item(2)->drawing);
        QVERIFY(copy->item(frameId)->identifier != layer->item(frameId)->identifier);
    }
    QVERIFY(copy->item(3)->identifier != copy->item(4)->identifier);
    QCOMPARE(imageAt(*copy, 5), imageAt(*layer, 5));
}

void tst_ReferenceLayer::copiedDistantCloneOfTheSameLayerIsAnOriginal()
{
    const auto layer = threeColours();
    layer->item(3)->type = LayerItem::Type::DistantClone;
    layer->item(3)->drawing = layer->item(1)->drawing;
    layer->item(3)->origin = layer->cellRef(1);
    layer->item(1)->clones = {layer->cellRef(3)};
    layer->insertCloneAfter(3);
    const auto copy = std::dynamic_pointer_cast<VisualLayer>(layer->clone());
    QVERIFY(copy->item(3)->isOriginal());
    QVERIFY(copy->item(3)->origin.isNull());
    QCOMPARE(imageAt(*copy, 3), imageAt(*layer, 1));
    // On its own: neither the source's picture nor that of the copied first frame.
    QVERIFY(copy->item(3)->drawing != layer->item(1)->drawing);
    QVERIFY(copy->item(3)->drawing != copy->item(1)->drawing);
    QCOMPARE(copy->item(4)->drawing, copy->item(3)->drawing);
    QVERIFY(copy->item(1)->clones.isEmpty());
}

void tst_ReferenceLayer::copiedDistantCloneOfAnotherLayerKeepsItsLink()
{
    const auto layer = threeColours();
    const CellRef elsewhere{QUuid::createUuid(), QUuid::createUuid()};
    layer->item(2)->type = LayerItem::Type::DistantClone;
    layer->item(2)->origin = elsewhere;
    const auto copy = std::dynamic_pointer_cast<VisualLayer>(layer->clone());
    QVERIFY(copy->item(2)->isDistantClone());
    QCOMPARE(copy->item(2)->origin, elsewhere);
    QVERIFY(copy->item(2)->clones.isEmpty());
    QCOMPARE(imageAt(*copy, 2), imageAt(*layer, 2));
}

void tst_ReferenceLayer::copyingLeavesTheSourceAsItWas()
{
    const auto layer = threeColours();
    const CellRef foreign{QUuid::createUuid(), QUuid::createUuid()};
    layer->item(1)->clones = {foreign};
    layer->item(1)->keyDrawing = true;
    const auto first = layer->item(1);
    const auto copy = std::dynamic_pointer_cast<VisualLayer>(layer->clone());
    QVERIFY(copy->item(1)->clones.isEmpty());
    QCOMPARE(layer->item(1), first);
    QCOMPARE(first->clones, QList<CellRef>({foreign}));
    QVERIFY(first->keyDrawing);
}

QTEST_MAIN(tst_ReferenceLayer)
#include "tst_referencelayer.moc"
