#include "libmodel/strokes/imagedrawing.h"

#include <QPainter>
#include <QtTest>

using Model::Drawing;
using Model::ImageDrawing;

class tst_ImageDrawing : public QObject
{
    Q_OBJECT

private slots:
    void pictureOfTheFramesSizeIsDrawnAsItIs();
    void otherPicturesAreFittedAndCentred();
    void onlyTheRequestedPartIsDrawn();
    void partsJoinToTheWholePicture();
    void thumbnailIsCentredOnTransparent();
    void thumbnailIsKeptUntilTheSizeChanges();
    void resizeAndMergeDoNothing();
    void cloneHasTheSamePictureAndIdentity();
    void noPictureShowsNothing();
    void paintedRectIsWhereThePictureLies();
};

namespace {

QImage filled(QSize size, Qt::GlobalColor color)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

QImage painted(const ImageDrawing &drawing, QSize frame, QRect rect)
{
    QImage target = filled(frame, Qt::white);
    QPainter painter(&target);
    drawing.paint(&painter, frame, rect);
    return target;
}

} // namespace

void tst_ImageDrawing::pictureOfTheFramesSizeIsDrawnAsItIs()
{
    QImage picture = filled({20, 10}, Qt::red);
    picture.setPixelColor(7, 3, Qt::blue);
    QCOMPARE(painted(ImageDrawing(picture), {20, 10}, {0, 0, 20, 10}), picture);
}

void tst_ImageDrawing::otherPicturesAreFittedAndCentred()
{
    // 10 x 20 into 40 x 40: 20 x 40, from x = 10 to 30.
    const QImage target = painted(ImageDrawing(filled({10, 20}, Qt::red)), {40, 40}, {0, 0, 40, 40});
    QCOMPARE(target.pixelColor(9, 20), QColor(Qt::white));
    QCOMPARE(target.pixelColor(10, 20), QColor(Qt::red));
    QCOMPARE(target.pixelColor(29, 0), QColor(Qt::red));
    QCOMPARE(target.pixelColor(30, 20), QColor(Qt::white));
    // A hair line keeps a pixel.
    const QImage thin = painted(ImageDrawing(filled({1000, 2}, Qt::red)), {40, 40}, {0, 0, 40, 40});
    QCOMPARE(thin.pixelColor(20, 19), QColor(Qt::red));
}

void tst_ImageDrawing::onlyTheRequestedPartIsDrawn()
{
    const QImage target = painted(ImageDrawing(filled({40, 40}, Qt::red)), {40, 40}, {5, 6, 7, 8});
    QCOMPARE(target.pixelColor(5, 6), QColor(Qt::red));
    QCOMPARE(target.pixelColor(11, 13), QColor(Qt::red));
    QCOMPARE(target.pixelColor(4, 6), QColor(Qt::white));
    QCOMPARE(target.pixelColor(12, 13), QColor(Qt::white));
    QCOMPARE(target.pixelColor(5, 14), QColor(Qt::white));
}

void tst_ImageDrawing::partsJoinToTheWholePicture()
{
    QImage picture = filled({40, 40}, Qt::red);
    QPainter(&picture).fillRect(20, 0, 20, 40, Qt::blue);
    const ImageDrawing drawing(picture);
    QImage target = filled({80, 80}, Qt::white);
    QPainter painter(&target);
    drawing.paint(&painter, {80, 80}, {0, 0, 30, 80});
    drawing.paint(&painter, {80, 80}, {30, 0, 50, 80});
    painter.end();
    QCOMPARE(target.pixelColor(29, 40), QColor(Qt::red));
    QCOMPARE(target.pixelColor(30, 40), QColor(Qt::red));
    QCOMPARE(target.pixelColor(38, 40), QColor(Qt::red));
    QCOMPARE(target.pixelColor(41, 40), QColor(Qt::blue));
}

void tst_ImageDrawing::thumbnailIsCentredOnTransparent()
{
    ImageDrawing drawing(filled({10, 20}, Qt::red));
    const QImage thumbnail = drawing.thumbnail({40, 40}, {});
    QCOMPARE(thumbnail.size(), QSize(40, 40));
    QCOMPARE(thumbnail.pixelColor(5, 20).alpha(), 0);
    QCOMPARE(thumbnail.pixelColor(20, 20), QColor(Qt::red));
    QVERIFY(drawing.thumbnail({0, 40}, {}).isNull());
}

void tst_ImageDrawing::thumbnailIsKeptUntilTheSizeChanges()
{
    ImageDrawing drawing(filled({10, 20}, Qt::red));
    const qint64 key = drawing.thumbnail({40, 40}, {}).cacheKey();
    QCOMPARE(drawing.thumbnail({40, 40}, {}).cacheKey(), key);
    QVERIFY(drawing.thumbnail({30, 30}, {}).cacheKey() != key);
    const qint64 other = drawing.thumbnail({30, 30}, {}).cacheKey();
    drawing.clearThumbnails();
    QVERIFY(drawing.thumbnail({30, 30}, {}).cacheKey() != other);
}

void tst_ImageDrawing::resizeAndMergeDoNothing()
{
    ImageDrawing drawing(filled({10, 20}, Qt::red));
    drawing.resize({99, 99}, MR::FitMode::FitModeStretch);
    drawing.merge(ImageDrawing(filled({5, 5}, Qt::blue)));
    QCOMPARE(drawing.image(), filled({10, 20}, Qt::red));
    QCOMPARE(drawing.type(), Drawing::Type::Image);
}

void tst_ImageDrawing::cloneHasTheSamePictureAndIdentity()
{
    ImageDrawing drawing(filled({10, 20}, Qt::red));
    drawing.setCopyId(QUuid::createUuid());
    drawing.setName(QStringLiteral("tree"));
    const std::shared_ptr<Drawing> copy = drawing.clone();
    QCOMPARE(static_cast<ImageDrawing &>(*copy).image(), drawing.image());
    QCOMPARE(copy->copyId(), drawing.copyId());
    QCOMPARE(copy->name(), QStringLiteral("tree"));
}

void tst_ImageDrawing::noPictureShowsNothing()
{
    ImageDrawing drawing{QImage()};
    QCOMPARE(painted(drawing, {20, 10}, {0, 0, 20, 10}), filled({20, 10}, Qt::white));
    QVERIFY(drawing.thumbnail({20, 20}, {}).isNull());
    QVERIFY(drawing.paintedRect({20, 10}).isEmpty());
    QVERIFY(drawing.name().isEmpty());
    drawing.clearThumbnails();
    QVERIFY(dynamic_cast<const ImageDrawing &>(*drawing.clone()).image().isNull());
}

void tst_ImageDrawing::paintedRectIsWhereThePictureLies()
{
    QCOMPARE(ImageDrawing(filled({20, 10}, Qt::red)).paintedRect({20, 10}), QRect(0, 0, 20, 10));
    QCOMPARE(ImageDrawing(filled({10, 20}, Qt::red)).paintedRect({40, 40}), QRect(10, 0, 20, 40));
    QVERIFY(ImageDrawing(filled({10, 20}, Qt::red)).paintedRect({0, 40}).isEmpty());
}

QTEST_MAIN(tst_ImageDrawing)
#include "tst_imagedrawing.moc"
