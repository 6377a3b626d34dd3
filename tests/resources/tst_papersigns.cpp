#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QTest>

#include <algorithm>

namespace {

QString pathOf(const QString &name)
{
    return QStringLiteral(":/paper/%1.svg").arg(name);
}

/// The picture at twice its size, on \a ground.
QImage on(const QColor &ground, const QString &name)
{
    QSvgRenderer drawing(pathOf(name));
    QImage image(drawing.defaultSize() * 2, QImage::Format_ARGB32_Premultiplied);
    image.fill(ground);
    QPainter painter(&image);
    drawing.render(&painter);
    return image;
}

/// The mean lightness, 0 to 255, of the picture on middle grey.
double meanLightness(const QString &name)
{
    const QImage image = on(QColor(128, 128, 128), name);
    qint64 sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += qGray(image.pixel(x, y));
    }
    return double(sum) / (image.width() * image.height());
}

void addAllSymbols()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"papersymbol-pan", "papersymbol-zoom", "papersymbol-rotate", "papersymbol-offpegs-pan",
                             "papersymbol-offpegs-rotate"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void addAllButtons()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"offPegs_button", "offPegs_button-hover", "offPegs_button-click"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

} // namespace

class tst_PaperSigns : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void symbolIsARoundOf64_data();
    void symbolIsARoundOf64();
    void buttonIsAPillOf96By32_data();
    void buttonIsAPillOf96By32();
    void drawingShowsThroughASymbol_data();
    void drawingShowsThroughASymbol();
    void signIsLegibleOnEveryGround_data();
    void signIsLegibleOnEveryGround();
    void symbolsDiffer();
    void hoveredButtonIsLighterAndPressedOneDarker();
};

void tst_PaperSigns::initTestCase()
{
    Q_INIT_RESOURCE(ui);
}

void tst_PaperSigns::symbolIsARoundOf64_data()
{
    addAllSymbols();
}

void tst_PaperSigns::symbolIsARoundOf64()
{
    QFETCH(const QString, name);
    QSvgRenderer symbol(pathOf(name));
    QVERIFY(symbol.isValid());
    QCOMPARE(symbol.viewBoxF(), QRectF(0, 0, 64, 64));
    QCOMPARE(symbol.defaultSize(), QSize(64, 64));
    const QImage image = on(Qt::transparent, name);
    for (const QPoint corner : {QPoint(0, 0), QPoint(127, 0), QPoint(0, 127), QPoint(127, 127)})
        QCOMPARE(qAlpha(image.pixel(corner)), 0);
    for (const QPoint edge : {QPoint(64, 6), QPoint(64, 121), QPoint(6, 64), QPoint(121, 64)})
        QVERIFY(qAlpha(image.pixel(edge)) > 0);
}

void tst_PaperSigns::buttonIsAPillOf96By32_data()
{
    addAllButtons();
}

void tst_PaperSigns::buttonIsAPillOf96By32()
{
    QFETCH(const QString, name);
    QSvgRenderer button(pathOf(name));
    QVERIFY(button.isValid());
    QCOMPARE(button.viewBoxF(), QRectF(0, 0, 96, 32));
    QCOMPARE(button.defaultSize(), QSize(96, 32));
    const QImage image = on(Qt::transparent, name);
    QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
    QCOMPARE(qAlpha(image.pixel(191, 63)), 0);
    QVERIFY(qAlpha(image.pixel(20, 32)) > 200);
    QVERIFY(qAlpha(image.pixel(171, 32)) > 200);
}

void tst_PaperSigns::drawingShowsThroughASymbol_data()
{
    addAllSymbols();
}

void tst_PaperSigns::drawingShowsThroughASymbol()
{
    QFETCH(const QString, name);
    const QImage onWhite = on(Qt::white, name);
    const QImage onBlack = on(Qt::black, name);
    const QPoint besideTheSign(64 - 38, 64 - 38); // inside the disc, in a diagonal that no symbol draws in
    const int through = qGray(onWhite.pixel(besideTheSign)) - qGray(onBlack.pixel(besideTheSign));
    QVERIFY2(through > 60 && through < 180, qPrintable(QString::number(through)));
}

void tst_PaperSigns::signIsLegibleOnEveryGround_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QColor>("ground");
    for (const char *name :
         {"papersymbol-pan", "papersymbol-zoom", "papersymbol-rotate", "papersymbol-offpegs-pan",
          "papersymbol-offpegs-rotate", "offPegs_button", "offPegs_button-hover", "offPegs_button-click"}) {
        QTest::addRow("%s on white", name) << QString::fromLatin1(name) << QColor(Qt::white);
        QTest::addRow("%s on linen", name) << QString::fromLatin1(name) << QColor(107, 103, 99);
        QTest::addRow("%s on black", name) << QString::fromLatin1(name) << QColor(Qt::black);
    }
}

void tst_PaperSigns::signIsLegibleOnEveryGround()
{
    QFETCH(const QString, name);
    QFETCH(const QColor, ground);
    const QImage image = on(ground, name);
    // The sign is light, what lies under it is the disc or the pill; both must hold some of the picture's middle.
    const QRect middle = image.rect().marginsRemoved(QMargins(14, 8, 14, 8));
    int light = 0;
    int dark = 0;
    for (int y = middle.top(); y <= middle.bottom(); ++y) {
        for (int x = middle.left(); x <= middle.right(); ++x) {
            const int level = qGray(image.pixel(x, y));
            light += level >= 210 ? 1 : 0;
            dark += level <= 150 ? 1 : 0;
        }
    }
    const int area = middle.width() * middle.height();
    QVERIFY2(light > area / 25, qPrintable(QStringLiteral("%1 of %2").arg(light).arg(area)));
    QVERIFY2(dark > area / 4, qPrintable(QStringLiteral("%1 of %2").arg(dark).arg(area)));
}

void tst_PaperSigns::symbolsDiffer()
{
    const QStringList names{QStringLiteral("papersymbol-pan"), QStringLiteral("papersymbol-zoom"),
                            QStringLiteral("papersymbol-rotate"), QStringLiteral("papersymbol-offpegs-pan"),
                            QStringLiteral("papersymbol-offpegs-rotate")};
    for (const QString &first : names) {
        for (const QString &second : names) {
            if (first == second)
                continue;
            const QImage one = on(Qt::white, first);
            const QImage other = on(Qt::white, second);
            int different = 0;
            for (int y = 0; y < one.height(); ++y) {
                for (int x = 0; x < one.width(); ++x)
                    different += std::abs(qGray(one.pixel(x, y)) - qGray(other.pixel(x, y))) > 60 ? 1 : 0;
            }
            QVERIFY2(different > one.width() * one.height() / 20, qPrintable(first + u' ' + second));
        }
    }
}

void tst_PaperSigns::hoveredButtonIsLighterAndPressedOneDarker()
{
    const double normal = meanLightness(QStringLiteral("offPegs_button"));
    QVERIFY(meanLightness(QStringLiteral("offPegs_button-hover")) > normal + 15.0);
    QVERIFY(meanLightness(QStringLiteral("offPegs_button-click")) < normal - 15.0);
}

QTEST_MAIN(tst_PaperSigns)
#include "tst_papersigns.moc"
