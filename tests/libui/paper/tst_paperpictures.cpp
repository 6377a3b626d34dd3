#include "libui/paper/paperpictures.h"

#include "libui/uistartup.h"

#include <QSet>
#include <QTest>

using Button = UI::PaperOverlay::Button;
using Symbol = UI::PaperOverlay::Symbol;

class tst_PaperPictures : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everySymbolAndButtonHasAPicture();
    void nothingHasNoName();
    void pictureHasTheSizeInDevicePixels_data();
    void pictureHasTheSizeInDevicePixels();
    void missingPictureIsNull();
    void emptySizeIsNull();
    void pictureIsDrawnOnce();
    void symbolIsCentredOnItsPosition();
    void boundsAreNullForNothing();
};

void tst_PaperPictures::initTestCase()
{
    UI::startUp();
}

void tst_PaperPictures::everySymbolAndButtonHasAPicture()
{
    QSet<QString> names;
    for (const Symbol symbol : {Symbol::Pan, Symbol::Zoom, Symbol::Rotate, Symbol::OffPegsPan, Symbol::OffPegsRotate})
        names.insert(UI::symbolName(symbol));
    for (const Button button : {Button::Normal, Button::Hover, Button::Click})
        names.insert(UI::buttonName(button));
    QCOMPARE(names.size(), 8);
    for (const QString &name : std::as_const(names))
        QVERIFY2(!UI::paperPicture(name, {64, 64}, 1.0).isNull(), qPrintable(name));
}

void tst_PaperPictures::nothingHasNoName()
{
    QVERIFY(UI::symbolName(Symbol::None).isEmpty());
    QVERIFY(UI::buttonName(Button::Hidden).isEmpty());
    QVERIFY(UI::paperPicture({}, {64, 64}, 1.0).isNull());
}

void tst_PaperPictures::pictureHasTheSizeInDevicePixels_data()
{
    QTest::addColumn<QSizeF>("size");
    QTest::addColumn<double>("ratio");
    QTest::addColumn<QSize>("pixels");
    QTest::addRow("plain") << QSizeF(64, 64) << 1.0 << QSize(64, 64);
    QTest::addRow("dense") << QSizeF(64, 64) << 2.0 << QSize(128, 128);
    QTest::addRow("in between") << QSizeF(96, 32) << 1.5 << QSize(144, 48);
    QTest::addRow("odd") << QSizeF(49, 49) << 1.5 << QSize(74, 74);
}

void tst_PaperPictures::pictureHasTheSizeInDevicePixels()
{
    QFETCH(QSizeF, size);
    QFETCH(double, ratio);
    const QPixmap picture = UI::paperPicture(QStringLiteral("papersymbol-pan"), size, ratio);
    QTEST(picture.size(), "pixels");
    QCOMPARE(picture.devicePixelRatio(), ratio);
}

void tst_PaperPictures::missingPictureIsNull()
{
    QVERIFY(UI::paperPicture(QStringLiteral("no-such-picture"), {64, 64}, 1.0).isNull());
}

void tst_PaperPictures::emptySizeIsNull()
{
    for (const QSizeF size : {QSizeF(0, 64), QSizeF(64, 0), QSizeF(-3, 5), QSizeF(0.2, 0.2)})
        QVERIFY(UI::paperPicture(QStringLiteral("papersymbol-pan"), size, 1.0).isNull());
}

void tst_PaperPictures::pictureIsDrawnOnce()
{
    const QString name = QStringLiteral("papersymbol-zoom");
    const QPixmap first = UI::paperPicture(name, {64, 64}, 1.0);
    QCOMPARE(UI::paperPicture(name, {64, 64}, 1.0).cacheKey(), first.cacheKey());
    QVERIFY(UI::paperPicture(name, {64, 64}, 2.0).cacheKey() != first.cacheKey());
    QVERIFY(UI::paperPicture(name, {96, 96}, 1.0).cacheKey() != first.cacheKey());
    // As many pixels, but for another screen.
    QCOMPARE(UI::paperPicture(name, {32, 32}, 2.0).devicePixelRatio(), 2.0);
}

void tst_PaperPictures::symbolIsCentredOnItsPosition()
{
    UI::PaperOverlay overlay;
    overlay.symbol = Symbol::Pan;
    overlay.symbolPosition = {100, 70};
    QCOMPARE(UI::symbolBounds(overlay), QRect(68, 38, 64, 64));
    overlay.scale = 0.75;
    QCOMPARE(UI::symbolBounds(overlay), QRect(76, 46, 48, 48));
}

void tst_PaperPictures::boundsAreNullForNothing()
{
    UI::PaperOverlay overlay;
    overlay.symbolPosition = {100, 70};
    overlay.buttonRect = QRectF(10, 10, 96, 32);
    QVERIFY(UI::symbolBounds(overlay).isNull());
    QVERIFY(UI::buttonBounds(overlay).isNull());
    QVERIFY(UI::lassoBounds(overlay).isNull());
}

QTEST_MAIN(tst_PaperPictures)
#include "tst_paperpictures.moc"
