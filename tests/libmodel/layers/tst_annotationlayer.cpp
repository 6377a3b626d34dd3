#include "libmodel/layers/annotationlayer.h"

#include <QTest>

#include <climits>

using namespace Model;

namespace {

/// A coverage image whose byte at (x, y) is value + x + 10 * y.
QImage note(int width, int height, int value)
{
    QImage image(width, height, QImage::Format_Indexed8);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.scanLine(y)[x] = static_cast<uchar>(value + x + 10 * y);
    }
    return image;
}

uchar byteAt(const QImage &image, int x, int y)
{
    return image.constScanLine(y)[x];
}

} // namespace

class tst_AnnotationLayer : public QObject
{
    Q_OBJECT

private slots:
    void hasNoCellsWhateverItHolds();
    void imageOfAnEmptyListIsNull();
    void settingAFarNoteGrowsTheList();
    void settingReportsTheOldImage();
    void insertedNotePushesTheOthersBack();
    void blankBehindAFrameMakesRoom();
    void blankBehindAFarFrameGrowsTheListFirst();
    void cloneIsABlank();
    void badFramesAreRefused_data();
    void badFramesAreRefused();
    void displayOfNothingIsNothing();
    void displayIsPencilGreyWithTheCoverageAsAlpha();
    void displayScalesToTheSizeAsked();
    void displayDoesNotChangeTheStoredNote();
    void appendedImagesFollowOneAnother();
    void imagesOfAnotherDepthAreRefused();
    void imagesThatAreTooLargeAreRefused_data();
    void imagesThatAreTooLargeAreRefused();
    void removedNoteIsRecordedAndTheOthersMoveUp();
    void removingWhereNothingIsWrittenShortensTheList();
    void removingBeyondTheListDoesNothing_data();
    void removingBeyondTheListDoesNothing();
    void displayOfNothingIsNothingAtAnySize();
    void insertingReversesARemoval();
    void thereIsNoCopy();
};

void tst_AnnotationLayer::hasNoCellsWhateverItHolds()
{
    AnnotationLayer layer;
    layer.setImage(3, note(2, 2, 1));
    QCOMPARE(layer.layerType(), 5);
    QCOMPARE(layer.numFrames(), 0);
    QVERIFY(!layer.isValidFrame(1));
    QVERIFY(!layer.isValidFrame(3));
}

void tst_AnnotationLayer::imageOfAnEmptyListIsNull()
{
    const AnnotationLayer layer;
    QVERIFY(layer.image(5).isNull());
    QVERIFY(layer.image(0).isNull());
    QVERIFY(layer.image(-1).isNull());
}

void tst_AnnotationLayer::settingAFarNoteGrowsTheList()
{
    AnnotationLayer layer;
    layer.setImage(5, note(2, 2, 1));
    QCOMPARE(layer.images().size(), 5);
    QVERIFY(layer.image(4).isNull());
    QCOMPARE(byteAt(layer.image(5), 1, 1), uchar(12));
}

void tst_AnnotationLayer::settingReportsTheOldImage()
{
    AnnotationLayer layer;
    layer.setImage(2, note(2, 2, 1));
    const QList<LayerChange> changes = layer.setImage(2, note(2, 2, 50));
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().type, LayerChange::AnnotationChanged);
    QCOMPARE(changes.first().frameId, 2);
    QCOMPARE(byteAt(changes.first().image, 0, 0), uchar(1));
    QCOMPARE(byteAt(layer.image(2), 0, 0), uchar(50));
}

void tst_AnnotationLayer::insertedNotePushesTheOthersBack()
{
    AnnotationLayer layer;
    layer.setImage(1, note(1, 1, 1));
    layer.setImage(2, note(1, 1, 2));
    const QList<LayerChange> changes = layer.insertImage(2, note(1, 1, 9));
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().type, LayerChange::AnnotationInserted);
    QCOMPARE(changes.first().frameId, 2);
    QCOMPARE(layer.images().size(), 3);
    QCOMPARE(byteAt(layer.image(2), 0, 0), uchar(9));
    QCOMPARE(byteAt(layer.image(3), 0, 0), uchar(2));
}

void tst_AnnotationLayer::blankBehindAFrameMakesRoom()
{
    AnnotationLayer layer;
    layer.setImage(1, note(1, 1, 1));
    layer.setImage(2, note(1, 1, 2));
    layer.insertBlankAfter(1);
    QCOMPARE(layer.images().size(), 3);
    QVERIFY(layer.image(2).isNull());
    QCOMPARE(byteAt(layer.image(3), 0, 0), uchar(2));
}

void tst_AnnotationLayer::blankBehindAFarFrameGrowsTheListFirst()
{
    AnnotationLayer layer;
    layer.insertBlankAfter(4);
    QCOMPARE(layer.images().size(), 5);
}

void tst_AnnotationLayer::cloneIsABlank()
{
    AnnotationLayer layer;
    layer.setImage(1, note(1, 1, 1));
    layer.insertCloneAfter(1);
    QCOMPARE(layer.images().size(), 2);
    QVERIFY(layer.image(2).isNull());
}

void tst_AnnotationLayer::badFramesAreRefused_data()
{
    QTest::addColumn<int>("frameId");
    QTest::newRow("smallest") << INT_MIN;
    QTest::newRow("-1") << -1;
    QTest::newRow("0") << 0;
    QTest::newRow("beyond what any layer takes") << Layer::maximumFrames + 1;
    QTest::newRow("largest") << INT_MAX;
}

void tst_AnnotationLayer::badFramesAreRefused()
{
    QFETCH(int, frameId);
    AnnotationLayer layer;
    layer.setImage(1, note(1, 1, 1));
    layer.insertBlankAfter(frameId);
    layer.insertCloneAfter(frameId);
    QVERIFY(layer.setImage(frameId, note(1, 1, 2)).isEmpty());
    QVERIFY(layer.insertImage(frameId, note(1, 1, 2)).isEmpty());
    QCOMPARE(layer.images().size(), 1);
}

void tst_AnnotationLayer::displayOfNothingIsNothing()
{
    AnnotationLayer layer;
    layer.setImage(2, note(1, 1, 1));
    QVERIFY(layer.displayImage(1, QSize(20, 20)).isNull());
    QVERIFY(layer.displayImage(1, QSize(1, 1)).isNull());
    QVERIFY(layer.displayImage(7, QSize(20, 20)).isNull());
}

void tst_AnnotationLayer::displayIsPencilGreyWithTheCoverageAsAlpha()
{
    AnnotationLayer layer;
    // Three pixels wide: the rows are padded to four bytes.
    layer.setImage(1, note(3, 2, 100));
    const QImage shown = layer.displayImage(1, QSize(3, 2));
    QCOMPARE(shown.format(), QImage::Format_Indexed8);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x)
            QCOMPARE(shown.pixel(x, y), qRgba(185, 183, 181, 100 + x + 10 * y));
    }
}

void tst_AnnotationLayer::displayScalesToTheSizeAsked()
{
    AnnotationLayer layer;
    layer.setImage(1, note(2, 1, 50));
    const QImage shown = layer.displayImage(1, QSize(8, 4));
    QCOMPARE(shown.size(), QSize(8, 4));
    QCOMPARE(shown.format(), QImage::Format_Indexed8);
    QCOMPARE(qAlpha(shown.pixel(0, 3)), 50);
    QCOMPARE(qAlpha(shown.pixel(7, 0)), 51);
}

void tst_AnnotationLayer::displayDoesNotChangeTheStoredNote()
{
    AnnotationLayer layer;
    layer.setImage(1, note(2, 2, 50));
    QImage shown = layer.displayImage(1, QSize(2, 2));
    shown.fill(0);
    QCOMPARE(byteAt(layer.image(1), 0, 0), uchar(50));
}

void tst_AnnotationLayer::appendedImagesFollowOneAnother()
{
    AnnotationLayer layer;
    layer.appendImage(QImage());
    layer.appendImage(note(1, 1, 7));
    QCOMPARE(layer.images().size(), 2);
    QVERIFY(layer.image(1).isNull());
    QCOMPARE(byteAt(layer.image(2), 0, 0), uchar(7));
}

void tst_AnnotationLayer::imagesOfAnotherDepthAreRefused()
{
    AnnotationLayer layer;
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QVERIFY(layer.setImage(3, picture).isEmpty());
    QVERIFY(layer.insertImage(3, picture).isEmpty());
    layer.appendImage(picture);
    QVERIFY(layer.images().isEmpty());
}

void tst_AnnotationLayer::imagesThatAreTooLargeAreRefused_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("widest") << QSize(4096, 1) << true;
    QTest::newRow("highest") << QSize(1, 4096) << true;
    QTest::newRow("too wide") << QSize(4097, 1) << false;
    QTest::newRow("too high") << QSize(1, 4097) << false;
}

void tst_AnnotationLayer::imagesThatAreTooLargeAreRefused()
{
    QFETCH(const QSize, size);
    QFETCH(const bool, isTaken);
    QImage image(size, QImage::Format_Indexed8);
    image.fill(0);
    AnnotationLayer layer;
    QCOMPARE(!layer.setImage(1, image).isEmpty(), isTaken);
    QCOMPARE(!layer.insertImage(1, image).isEmpty(), isTaken);
    layer.appendImage(image);
    QCOMPARE(layer.images().size(), isTaken ? 3 : 0);
}

void tst_AnnotationLayer::removedNoteIsRecordedAndTheOthersMoveUp()
{
    AnnotationLayer layer;
    for (int frameId = 1; frameId <= 3; ++frameId)
        layer.setImage(frameId, note(1, 1, frameId * 10));
    const QList<LayerChange> changes = layer.removeFrame(2);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().type, LayerChange::AnnotationRemoved);
    QCOMPARE(changes.first().frameId, 2);
    QCOMPARE(byteAt(changes.first().image, 0, 0), uchar(20));
    QCOMPARE(layer.images().size(), 2);
    QCOMPARE(byteAt(layer.image(1), 0, 0), uchar(10));
    QCOMPARE(byteAt(layer.image(2), 0, 0), uchar(30));
}

void tst_AnnotationLayer::removingWhereNothingIsWrittenShortensTheList()
{
    AnnotationLayer layer;
    layer.setImage(3, note(1, 1, 30));
    const QList<LayerChange> changes = layer.removeFrame(1);
    QCOMPARE(changes.size(), 1);
    QVERIFY(changes.first().image.isNull());
    QCOMPARE(layer.images().size(), 2);
    QCOMPARE(byteAt(layer.image(2), 0, 0), uchar(30));
}

void tst_AnnotationLayer::removingBeyondTheListDoesNothing_data()
{
    QTest::addColumn<int>("frameId");
    for (const int frameId : {INT_MIN, -1, 0, 4, 9, INT_MAX})
        QTest::addRow("%d", frameId) << frameId;
}

void tst_AnnotationLayer::removingBeyondTheListDoesNothing()
{
    QFETCH(int, frameId);
    AnnotationLayer layer;
    layer.setImage(3, note(1, 1, 30));
    const QList<QImage> before = layer.images();
    QVERIFY(layer.removeFrame(frameId).isEmpty());
    QCOMPARE(layer.images(), before);
}

void tst_AnnotationLayer::displayOfNothingIsNothingAtAnySize()
{
    AnnotationLayer layer;
    layer.setImage(2, QImage());
    for (const QSize size : {QSize(), QSize(0, 0), QSize(1, 1), QSize(64, 20), QSize(4000, 4000)}) {
        QVERIFY(layer.displayImage(1, size).isNull());
        QVERIFY(layer.displayImage(2, size).isNull());
        QVERIFY(layer.displayImage(3, size).isNull());
    }
}

void tst_AnnotationLayer::insertingReversesARemoval()
{
    AnnotationLayer layer;
    for (int frameId = 1; frameId <= 3; ++frameId)
        layer.setImage(frameId, note(2, 1, frameId * 10));
    for (const int frameId : {1, 2, 3}) {
        const LayerChange removed = layer.removeFrame(frameId).first();
        layer.insertImage(removed.frameId, removed.image);
        for (int other = 1; other <= 3; ++other)
            QCOMPARE(byteAt(layer.image(other), 0, 0), uchar(other * 10));
        QVERIFY(layer.image(4).isNull());
    }
}

void tst_AnnotationLayer::thereIsNoCopy()
{
    QVERIFY(!AnnotationLayer().clone());
}

QTEST_MAIN(tst_AnnotationLayer)
#include "tst_annotationlayer.moc"
