#include "commandstage.h"

#include "libcommands/pasteimage.h"
#include "libcommands/setframerange.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/strokes/imagedrawing.h"
#include "support/modelwatch.h"
#include "support/scenepictures.h"

#include <QTest>

using namespace Commands;
using namespace Model;
using namespace TestSupport;

namespace {

constexpr int strokes = 0;
constexpr int pictures = 1;

QImage filled(QSize size, const QColor &color)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

const QImage &red()
{
    static const QImage image = filled(stageFrame, Qt::red);
    return image;
}

/// A stroke layer of two cells and a reference layer of \a count pictures, their numbers in the red of their colours.
class PictureStage : public CommandStage
{
public:
    explicit PictureStage(int count) : CommandStage({"A B"})
    {
        scene().insertLayer(std::make_shared<ReferenceLayer>(stageFrame), pictures);
        for (int frameId = 1; frameId <= count; ++frameId) {
            if (frameId > 1)
                scene().addBlankDrawing(pictures, frameId - 1);
            scene().replaceDrawing(pictures, frameId,
                                   std::make_shared<ImageDrawing>(filled(stageFrame, QColor(frameId, 0, 0))));
        }
        scene().setFrameRange(1, scene().maximumFrameNumber(), 1, pictures);
    }

    [[nodiscard]] const QImage &image(int frameId) const
    {
        return static_cast<const ImageDrawing &>(*scene().item(pictures, frameId)->drawing).image();
    }

    /// The numbers of the pictures: 255 is that pasted, 0 a blank, - a hold.
    [[nodiscard]] QString seen() const
    {
        QStringList numbers;
        for (int frameId = 1; frameId <= scene().lastFrame(pictures); ++frameId) {
            if (scene().item(pictures, frameId)->isClone())
                numbers += QStringLiteral("-");
            else
                numbers += QString::number(image(frameId).isNull() ? 0 : image(frameId).pixelColor(0, 0).red());
        }
        return numbers.join(' ');
    }
};

} // namespace

class tst_PasteImage : public QObject
{
    Q_OBJECT

private slots:
    void textTellsWhatItIs();
    void pictureAtACellIsInsertedInFront();
    void pictureBehindTheLastCellIsAdded();
    void pictureFarBehindTheRangeIsSeen();
    void pictureOverASelectionTakesItsPlace();
    void gapsAreDiscardedToo();
    void onlyCellBecomesThePictureAndABlank();
    void onlyReferenceLayersOfASelectionAreTouched();
    void selectionOnAStrokeLayerDoesNothing();
    void strokeLayerRefuses();
    void pictureOfTheFramesSizeIsTakenAsItIs();
    void pictureIsScaledToTheFrame_data();
    void pictureIsScaledToTheFrame();
    void transparencyStays();
    void noPictureIsRefused();
    void linkedLayersStayInStep();
    void undoAndRedoKeepIdentifiers();
    void modelsAndPicturesFollow();
    void fullLayerRefuses();
};

void tst_PasteImage::textTellsWhatItIs()
{
    PictureStage stage(1);
    QCOMPARE(PasteImage(stage.mrScene(), stage.cell(1, pictures), red()).text(), "Paste Image");
    QCOMPARE(PasteImage(stage.mrScene(), stage.cells({1}, pictures), red()).text(), "Paste Image");
}

void tst_PasteImage::pictureAtACellIsInsertedInFront()
{
    PictureStage stage(3);
    QCOMPARE(stage.walk(new PasteImage(stage.mrScene(), stage.cell(2, pictures), red())), QString());
    QCOMPARE(stage.seen(), "1 255 2 3");
    QCOMPARE(stage.scene().activeFrame(), 2);
    QCOMPARE(stage.scene().activeLayerIdx(), pictures);
    QVERIFY(stage.scene().item(pictures, 2)->drawing->copyId().isNull());
}

void tst_PasteImage::pictureBehindTheLastCellIsAdded()
{
    PictureStage stage(3);
    QCOMPARE(stage.walk(new PasteImage(stage.mrScene(), stage.cell(4, pictures), red())), QString());
    QCOMPARE(stage.seen(), "1 2 3 255");
    QCOMPARE(stage.scene().rangeLast(), 4);
    QCOMPARE(stage.scene().activeFrame(), 4);
}

void tst_PasteImage::pictureFarBehindTheRangeIsSeen()
{
    PictureStage stage(5);
    stage.stack().push(new SetFrameRange(stage.mrScene(), 1, 2, 1, pictures));
    QCOMPARE(stage.walk(new PasteImage(stage.mrScene(), stage.cell(6, pictures), red())), QString());
    QCOMPARE(stage.scene().rangeLast(), 6);
    QCOMPARE(stage.scene().activeFrame(), 6);
}

void tst_PasteImage::pictureOverASelectionTakesItsPlace()
{
    PictureStage stage(5);
    QCOMPARE(stage.walk(new PasteImage(stage.mrScene(), stage.cells({2, 3, 4}, pictures), red())), QString());
    QCOMPARE(stage.seen(), "1 255 5");
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_PasteImage::gapsAreDiscardedToo()
{
    PictureStage stage(5);
    QCOMPARE(stage.walk(new PasteImage(stage.mrScene(), stage.cells({5, 1, 3}, pictures), red())), QString());
    QCOMPARE(stage.seen(), "255 2 4");
    QCOMPARE(stage.scene().activeFrame(), 1);
}

void tst_PasteImage::onlyCellBecomesThePictureAndABlank()
{
    // A layer is never without a cell: what is left of the discarded one stands behind.
    PictureStage stage(1);
    QCOMPARE(stage.walk(new PasteImage(stage.mrScene(), stage.cells({1}, pictures), red())), QString());
    QCOMPARE(stage.seen(), "255 0");
}

void tst_PasteImage::onlyReferenceLayersOfASelectionAreTouched()
{
    PictureStage stage(3);
    const QModelIndexList cells = stage.cells({1, 2}, strokes) + stage.cells({2}, pictures) + QModelIndexList{{}};
    QCOMPARE(stage.walk(new PasteImage(stage.mrScene(), cells, red())), QString());
    QCOMPARE(stage.seen(), "1 255 3");
    QCOMPARE(stage.scene().lastFrame(strokes), 2);
}

void tst_PasteImage::selectionOnAStrokeLayerDoesNothing()
{
    PictureStage stage(1);
    QVERIFY(stage.isRefused(new PasteImage(stage.mrScene(), stage.cells({1, 2}, strokes), red())));
}

void tst_PasteImage::strokeLayerRefuses()
{
    PictureStage stage(1);
    constexpr int notes = 3;
    QVERIFY(stage.isRefused(new PasteImage(stage.mrScene(), stage.cell(1, strokes), red())));
    QVERIFY(stage.isRefused(new PasteImage(stage.mrScene(), stage.cell(3, strokes), red())));
    QVERIFY(stage.isRefused(new PasteImage(stage.mrScene(), stage.cell(1, notes), red())));
    QVERIFY(stage.isRefused(new PasteImage(stage.mrScene(), QModelIndex(), red())));
    QVERIFY(stage.isRefused(new PasteImage(nullptr, stage.cell(1, pictures), red())));
}

void tst_PasteImage::pictureOfTheFramesSizeIsTakenAsItIs()
{
    PictureStage stage(1);
    QImage odd(stageFrame, QImage::Format_ARGB32);
    for (int y = 0; y < odd.height(); ++y) {
        for (int x = 0; x < odd.width(); ++x)
            odd.setPixel(x, y, qRgba(x, y, x * y % 256, 255 - x));
    }
    QCOMPARE(stage.walk(new PasteImage(stage.mrScene(), stage.cell(1, pictures), odd)), QString());
    QCOMPARE(stage.image(1), odd);
}

void tst_PasteImage::pictureIsScaledToTheFrame_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("scaled");
    // The frame is 48 x 32.
    QTest::newRow("twice as large") << QSize(96, 64) << QSize(48, 32);
    QTest::newRow("half as large") << QSize(24, 16) << QSize(48, 32);
    QTest::newRow("wide") << QSize(480, 32) << QSize(48, 3);
    QTest::newRow("tall") << QSize(10, 320) << QSize(1, 32);
    QTest::newRow("square") << QSize(64, 64) << QSize(32, 32);
    // As wide as it would be in the frame: taken as it is.
    QTest::newRow("as wide and lower") << QSize(48, 8) << QSize(48, 8);
    QTest::newRow("as high and narrower") << QSize(8, 32) << QSize(8, 32);
    QTest::newRow("a line") << QSize(4800, 1) << QSize(48, 1);
}

void tst_PasteImage::pictureIsScaledToTheFrame()
{
    QFETCH(QSize, size);
    QFETCH(QSize, scaled);
    PictureStage stage(1);
    QCOMPARE(stage.walk(new PasteImage(stage.mrScene(), stage.cell(1, pictures), filled(size, Qt::red))), QString());
    QCOMPARE(stage.image(1).size(), scaled);
    QCOMPARE(stage.image(1).pixelColor(0, 0), QColor(Qt::red));
}

void tst_PasteImage::transparencyStays()
{
    PictureStage stage(1);
    QImage half(stageFrame * 2, QImage::Format_ARGB32_Premultiplied);
    half.fill(QColor(255, 0, 0, 128));
    QCOMPARE(stage.walk(new PasteImage(stage.mrScene(), stage.cell(1, pictures), half)), QString());
    QCOMPARE(stage.image(1).pixelColor(20, 20).alpha(), 128);
}

void tst_PasteImage::noPictureIsRefused()
{
    PictureStage stage(1);
    QVERIFY(stage.isRefused(new PasteImage(stage.mrScene(), stage.cell(1, pictures), QImage())));
    QVERIFY(stage.isRefused(new PasteImage(stage.mrScene(), stage.cells({1}, pictures), QImage())));
}

void tst_PasteImage::linkedLayersStayInStep()
{
    PictureStage stage(3);
    stage.link({strokes, pictures});
    QCOMPARE(stage.walk(new PasteImage(stage.mrScene(), stage.cell(2, pictures), red())), QString());
    QCOMPARE(stage.seen(), "1 255 2 3");
    QCOMPARE(stage.scene().lastFrame(strokes), 3);
    QVERIFY(stage.scene().item(strokes, 2)->isClone());
}

void tst_PasteImage::undoAndRedoKeepIdentifiers()
{
    PictureStage stage(2);
    stage.stack().push(new PasteImage(stage.mrScene(), stage.cells({1}, pictures), red()));
    const QUuid identifier = stage.identifier(1, pictures);
    for (int round = 0; round < 2; ++round) {
        stage.stack().undo();
        QVERIFY(stage.identifier(1, pictures) != identifier);
        stage.stack().redo();
        QCOMPARE(stage.identifier(1, pictures), identifier);
        QCOMPARE(stage.image(1), red());
    }
}

void tst_PasteImage::modelsAndPicturesFollow()
{
    PictureStage stage(4);
    ModelWatch sheet(stage.mrScene()->frameRangeModel());
    ModelWatch model(&stage.model());
    QVERIFY(!stage.scene().framePixmap().isNull());
    const QModelIndexList cells = stage.cells({1, 2}, pictures);
    for (QUndoCommand *command : {new PasteImage(stage.mrScene(), cells, red()),
                                  new PasteImage(stage.mrScene(), stage.cell(1, pictures), red())}) {
        QCOMPARE(stage.walk(command), QString());
        QCOMPARE(stalePicture(stage.scene()), QString());
        QCOMPARE(sheet.broken() + model.broken(), QString());
    }
}

void tst_PasteImage::fullLayerRefuses()
{
    PictureStage stage(1);
    auto *layer = stage.scene().visualLayer(pictures);
    QList<std::shared_ptr<LayerItem>> cells = layer->frames();
    while (cells.size() < Layer::maximumFrames)
        cells.append(std::make_shared<LayerItem>(LayerItem::Type::Clone, cells.constLast()->drawing));
    QVERIFY(layer->setFrames(cells));
    stage.scene().updateMaxFrameNumber();
    MRScene::pushCommand(new PasteImage(stage.mrScene(), stage.cell(1, pictures), red()));
    QCOMPARE(stage.stack().count(), 0);
    QVERIFY(layer->frames() == cells);
}

QTEST_MAIN(tst_PasteImage)
#include "tst_pasteimage.moc"
