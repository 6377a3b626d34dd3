#include "libmodel/actions/actiontable.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSet>
#include <QSvgRenderer>
#include <QTest>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>

using namespace Model;

namespace {

const QString ink = QStringLiteral("#2d2926");

QString pathOf(const QString &stem)
{
    return QStringLiteral(":/icons/%1_icon.svg").arg(stem);
}

/// The stems that the catalogue's actions name, second faces included.
QSet<QString> stemsOfActions()
{
    QSet<QString> stems;
    for (const ActionRow &row : actionTable()) {
        stems.insert(QString::fromLatin1(row.iconStem));
        if (const ActionFace *face = secondFace(row.action))
            stems.insert(QString::fromLatin1(face->iconStem));
    }
    stems.remove(QString());
    return stems;
}

/// The stems that there are drawings for.
QStringList stemsOfFiles()
{
    QStringList stems = QDir(QStringLiteral(":/icons")).entryList(QDir::Files, QDir::Name);
    stems.replaceInStrings(QStringLiteral("_icon.svg"), QString());
    return stems;
}

QImage rendered(const QString &stem, int side)
{
    QSvgRenderer drawing(pathOf(stem));
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    return image;
}

/// How much ink lies on a picture, in whole pixels.
double inkOf(const QImage &image)
{
    int sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += qAlpha(image.pixel(x, y));
    }
    return sum / 255.0;
}

/// By how much ink two pictures of one size differ, in whole pixels; 0 for equal ones.
double difference(const QImage &first, const QImage &second)
{
    int sum = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x)
            sum += std::abs(qAlpha(first.pixel(x, y)) - qAlpha(second.pixel(x, y)));
    }
    return sum / 255.0;
}

/// What about an attribute goes against the rules that all icons are drawn by; empty if nothing.
QString complaint(QStringView name, QStringView value)
{
    if (name == u"fill" || name == u"stroke")
        return value == ink || value == u"none" ? QString() : QStringLiteral("a foreign colour");
    // A hundredth above 2, since Qt draws lines of at most one pixel, as they are at 16 pixels, by a coarser method
    // that leaves one of two crossing diagonals in grey.
    if (name == u"stroke-width")
        return value == u"2.02" ? QString() : QStringLiteral("another line weight");
    if (name == u"stroke-linecap" || name == u"stroke-linejoin")
        return value == u"round" ? QString() : QStringLiteral("an end or corner that is not round");
    // Two tones beside full ink: of areas, and of lines that are about to go.
    if (name == u"fill-opacity")
        return value == u"0.3" ? QString() : QStringLiteral("another tone of an area");
    if (name == u"stroke-opacity")
        return value == u"0.5" ? QString() : QStringLiteral("another tone of a line");
    static const QSet<QString> geometry{
        QStringLiteral("version"), QStringLiteral("baseProfile"), QStringLiteral("width"), QStringLiteral("height"),
        QStringLiteral("viewBox"), QStringLiteral("d"),           QStringLiteral("x"),     QStringLiteral("y"),
        QStringLiteral("rx"),      QStringLiteral("cx"),          QStringLiteral("cy"),    QStringLiteral("r"),
    };
    return geometry.contains(name.toString()) ? QString() : QStringLiteral("an attribute that icons do without");
}

void addAllIcons()
{
    QTest::addColumn<QString>("stem");
    for (const QString &stem : stemsOfFiles())
        QTest::newRow(qPrintable(stem)) << stem;
}

} // namespace

class tst_Icons : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void actionHasItsDrawing_data();
    void actionHasItsDrawing();
    void everyDrawingBelongsToAnAction();
    void thereAreSixtyDrawings();
    void viewBoxIs32By32_data();
    void viewBoxIs32By32();
    void drawingKeepsTheRulesOfTheHand_data();
    void drawingKeepsTheRulesOfTheHand();
    void inkIsOneColour_data();
    void inkIsOneColour();
    void iconShowsAtAllSizes_data();
    void iconShowsAtAllSizes();
    void rimStaysEmpty_data();
    void rimStaysEmpty();
    void differenceMeasuresInk();
    void noTwoIconsLookAlikeAt16Pixels();
    void neighboursAreToldApartAt16Pixels_data();
    void neighboursAreToldApartAt16Pixels();
};

void tst_Icons::initTestCase()
{
    Q_INIT_RESOURCE(model);
    QVERIFY(!stemsOfFiles().isEmpty());
}

void tst_Icons::actionHasItsDrawing_data()
{
    QTest::addColumn<QString>("stem");
    QStringList stems(stemsOfActions().values());
    stems.sort();
    for (const QString &stem : stems)
        QTest::newRow(qPrintable(stem)) << stem;
}

void tst_Icons::actionHasItsDrawing()
{
    QFETCH(const QString, stem);
    QVERIFY(QFile::exists(pathOf(stem)));
    QVERIFY(QSvgRenderer(pathOf(stem)).isValid());
}

void tst_Icons::everyDrawingBelongsToAnAction()
{
    const QStringList files = stemsOfFiles();
    const QSet<QString> strangers = QSet<QString>(files.begin(), files.end()) - stemsOfActions();
    QVERIFY2(strangers.isEmpty(), qPrintable(strangers.values().join(u' ')));
}

void tst_Icons::thereAreSixtyDrawings()
{
    // 59 faces and "Stop", which is a second face.
    QCOMPARE(stemsOfActions().size(), 60);
    QCOMPARE(stemsOfFiles().size(), 60);
}

void tst_Icons::viewBoxIs32By32_data()
{
    addAllIcons();
}

void tst_Icons::viewBoxIs32By32()
{
    QFETCH(const QString, stem);
    QSvgRenderer drawing(pathOf(stem));
    QCOMPARE(drawing.viewBoxF(), QRectF(0, 0, 32, 32));
    QCOMPARE(drawing.defaultSize(), QSize(32, 32));
}

void tst_Icons::drawingKeepsTheRulesOfTheHand_data()
{
    addAllIcons();
}

void tst_Icons::drawingKeepsTheRulesOfTheHand()
{
    QFETCH(const QString, stem);
    QFile file(pathOf(stem));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&file);
    const QSet<QString> shapes{QStringLiteral("svg"), QStringLiteral("g"), QStringLiteral("path"),
                               QStringLiteral("rect"), QStringLiteral("circle")};
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        QVERIFY2(shapes.contains(reader.name().toString()), qPrintable(reader.name().toString()));
        for (const QXmlStreamAttribute &attribute : reader.attributes()) {
            const QString fault = complaint(attribute.name(), attribute.value());
            const QString where = QStringLiteral("line %1: %2=%3: %4")
                                      .arg(reader.lineNumber())
                                      .arg(attribute.name(), attribute.value(), fault);
            QVERIFY2(fault.isEmpty(), qPrintable(where));
        }
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
}

void tst_Icons::inkIsOneColour_data()
{
    addAllIcons();
}

void tst_Icons::inkIsOneColour()
{
    QFETCH(const QString, stem);
    const QImage image = rendered(stem, 48);
    for (int y = 0; y < image.height(); ++y) {
        const QRgb *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            // Premultiplied, each shape that covers the pixel in part may round by a level.
            const double cover = qAlpha(line[x]) / 255.0;
            QVERIFY(std::abs(qRed(line[x]) - 45 * cover) <= 2.0);
            QVERIFY(std::abs(qGreen(line[x]) - 41 * cover) <= 2.0);
            QVERIFY(std::abs(qBlue(line[x]) - 38 * cover) <= 2.0);
        }
    }
}

void tst_Icons::iconShowsAtAllSizes_data()
{
    addAllIcons();
}

void tst_Icons::iconShowsAtAllSizes()
{
    QFETCH(const QString, stem);
    for (const int side : {16, 32, 48}) {
        const QImage image = rendered(stem, side);
        const double share = inkOf(image) / (side * side);
        QVERIFY2(share > 0.08 && share < 0.5, qPrintable(QStringLiteral("%1 of %2 px").arg(share).arg(side)));
        // Somewhere the ink must be full, or the icon is a haze.
        bool full = false;
        for (int y = 0; y < side && !full; ++y) {
            for (int x = 0; x < side && !full; ++x)
                full = qAlpha(image.pixel(x, y)) > 220;
        }
        QVERIFY2(full, qPrintable(QString::number(side)));
    }
}

void tst_Icons::rimStaysEmpty_data()
{
    addAllIcons();
}

void tst_Icons::rimStaysEmpty()
{
    QFETCH(const QString, stem);
    const QImage image = rendered(stem, 64);
    // One unit of the 32 all around, so that neighbours in a bar never touch.
    constexpr int rim = 2;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            if (x < rim || y < rim || x >= 64 - rim || y >= 64 - rim)
                QVERIFY2(qAlpha(image.pixel(x, y)) == 0, qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
        }
    }
}

void tst_Icons::differenceMeasuresInk()
{
    const QImage pencil = rendered(QStringLiteral("Pencil"), 16);
    QCOMPARE(difference(pencil, pencil), 0.0);
    QImage spotted = pencil;
    for (const QPoint spot : {QPoint(14, 14), QPoint(15, 14), QPoint(15, 15)}) {
        QCOMPARE(qAlpha(spotted.pixel(spot)), 0);
        spotted.setPixelColor(spot, Qt::black);
    }
    QCOMPARE(difference(pencil, spotted), 3.0);
}

void tst_Icons::noTwoIconsLookAlikeAt16Pixels()
{
    // What a preset's dot brings: two pixels by two, with some loss at its corners.
    constexpr double leastDifference = 3.0;
    const QStringList stems = stemsOfFiles();
    QList<QImage> images;
    for (const QString &stem : stems)
        images.append(rendered(stem, 16));
    for (qsizetype i = 0; i < stems.size(); ++i) {
        for (qsizetype j = 0; j < i; ++j) {
            const double pixels = difference(images[i], images[j]);
            QVERIFY2(pixels >= leastDifference,
                     qPrintable(QStringLiteral("%1 and %2 differ by %3").arg(stems[j], stems[i]).arg(pixels)));
        }
    }
}

void tst_Icons::neighboursAreToldApartAt16Pixels_data()
{
    QTest::addColumn<QStringList>("stems");
    const auto add = [](const char *stems) { QTest::newRow(stems) << QString::fromLatin1(stems).split(u' '); };
    add("AddBlankDrawing InsertBlankDrawing AddCloneDrawing TurnCloneToNewOriginal");
    add("DiscardDrawing BackDeleteDrawing ClearDrawingMakingBlank LoseDrawingMakingClone");
    add("Pencil Marker Brush Draw");
    add("KneadedEraser RubberEraser VinylEraser Erase");
    add("Draw Erase DrawEraseToggle");
    add("Playback Stop JumpToStart JumpToEnd");
    add("SlideMode AddClonesMode ToggleMode");
    add("LassoThisDrawing Cutter PickUpAll");
    add("ResetView FitView Grid");
    add("NewLayer DuplicateLayer DeleteLayer MergeLayers");
    add("MarkAsKeyDrawing ClearKeys BacklightKeys BacklightOnOff");
    add("HandTool Zoom Rotate OffPegs Mirror");
    add("Undo Redo");
    add("Palette ColorPickerTool FillTool");
}

void tst_Icons::neighboursAreToldApartAt16Pixels()
{
    // As much as three of a preset's dots.
    constexpr double leastDifference = 12.0;
    QFETCH(const QStringList, stems);
    for (const QString &first : stems) {
        for (const QString &second : stems) {
            if (first == second)
                continue;
            const double pixels = difference(rendered(first, 16), rendered(second, 16));
            QVERIFY2(pixels >= leastDifference,
                     qPrintable(QStringLiteral("%1 and %2 differ by %3").arg(first, second).arg(pixels)));
        }
    }
}

QTEST_MAIN(tst_Icons)
#include "tst_icons.moc"
