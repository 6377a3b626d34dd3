// The exact forms in which a layer stands in the file: its numbers, its names, and what is left out.

#include "scenefixture.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/strokes/stroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QRegularExpression>
#include <QTest>
#include <QXmlStreamReader>

#include <cmath>
#include <limits>

using namespace Model;
using namespace TestSupport;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

QString captured(const QByteArray &file, const QString &pattern)
{
    return QRegularExpression(pattern).match(QString::fromUtf8(file)).captured(1);
}

/// What stands in the tag of the first drawing in front of its type.
QString transformText(const QTransform &transform)
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->item(1)->offPegsTransform = transform;
    scene->insertLayer(layer, 0);
    return captured(written(*scene), "<drawing ([^>]*)type=");
}

/// The layer's name as it stands in the file, escapes and all.
QString nameText(const QString &name)
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->setName(name);
    scene->insertLayer(layer, 0);
    return captured(written(*scene), " name=\"([^\"]*)\"");
}

QTransform turned(double degrees)
{
    QTransform transform;
    transform.rotate(degrees);
    return transform;
}

} // namespace

class tst_LayerWriter : public QObject
{
    Q_OBJECT

private slots:
    void transformHasThreeNumbersOfSixDigits_data();
    void transformHasThreeNumbersOfSixDigits();
    void whatIsNoNumberIsNotWritten_data();
    void whatIsNoNumberIsNotWritten();
    void opacityHasAllItsDigits_data();
    void opacityHasAllItsDigits();
    void rateHasSixDigits_data();
    void rateHasSixDigits();
    void soundStartHasAllItsDigits_data();
    void soundStartHasAllItsDigits();
    void colorIsSixHexadecimalDigits_data();
    void colorIsSixHexadecimalDigits();
    void farthestOffsetsComeBack();
    void highestLayerNumberComesBack();
    void nameIsEscaped_data();
    void nameIsEscaped();
    void namesComeBack_data();
    void namesComeBack();
    void nameOfNothingStorableIsEmpty();
    void fileIsUtf8();
    void cloneHasNeitherIdentifierNorContent();
    void cloneKeepsItsTransformAndMark();
    void distantCloneHasNoCopyId();
    void whatIsDrawnOnACloneOfNothingIsKept();
    void cloneOfNothingStaysOneWhileItIsBlank();
    void pictureLayerHasNoColor();
    void soundLayerHasNoVisibility();
    void emptySoundIsAnEmptyElement();
    void everyNoteIsAnElement();
    void showingNothingBeyondIsNotWritten();
};

void tst_LayerWriter::transformHasThreeNumbersOfSixDigits_data()
{
    QTest::addColumn<QTransform>("transform");
    QTest::addColumn<QString>("text");
    const auto move = [](double dx, double dy) { return QTransform::fromTranslate(dx, dy); };
    const auto text = [](const char *x, const char *y, const char *degrees) {
        return QString("xOffset=\"%1\" yOffset=\"%2\" rotationDeg=\"%3\" ").arg(x, y, degrees);
    };
    QTest::newRow("on its pegs") << QTransform() << QString();
    QTest::newRow("moved") << move(3, -4.25) << text("3", "-4.25", "0");
    QTest::newRow("moved by next to nothing") << move(1e-13, 0) << text("1e-13", "0", "0");
    QTest::newRow("seven digits") << move(0.1234567, -1234567) << text("0.123457", "-1.23457e+06", "0");
    QTest::newRow("six digits") << move(123456, 1e-5) << text("123456", "1e-05", "0");
    QTest::newRow("sum with a rest") << move(0.1 + 0.2, 1) << text("0.3", "1", "0");
    QTest::newRow("farther than any reader takes") << move(1e300, -1e9) << text("6.7e+07", "-6.7e+07", "0");
    QTest::newRow("negative zero") << move(-0.0, 1) << text("0", "1", "0");
    QTest::newRow("quarter") << turned(90) << text("0", "0", "90");
    QTest::newRow("quarter back") << turned(-90) << text("0", "0", "-90");
    // Half a round has no side; the text is the negative one, as the second number of the matrix is not above 0.
    QTest::newRow("half a round") << turned(180) << text("0", "0", "-180");
    QTest::newRow("three quarters") << turned(270) << text("0", "0", "-90");
    QTest::newRow("turned by a third") << turned(100.0 / 3) << text("0", "0", "33.3333");
    QTest::newRow("turned by little") << turned(0.125) << text("0", "0", "0.125");
    QTest::newRow("only scaled") << QTransform::fromScale(2, 3) << text("0", "0", "0");
    QTest::newRow("turned and scaled") << QTransform::fromScale(2, 3) * turned(30) << text("0", "0", "30");
    QTest::newRow("mirrored") << QTransform::fromScale(-1, 1) << text("0", "0", "-180");
    QTest::newRow("nothing left") << QTransform(0, 0, 0, 0, 5, 6) << text("5", "6", "0");
}

void tst_LayerWriter::transformHasThreeNumbersOfSixDigits()
{
    QFETCH(QTransform, transform);
    QFETCH(QString, text);
    QCOMPARE(transformText(transform), text);
}

void tst_LayerWriter::whatIsNoNumberIsNotWritten_data()
{
    QTest::addColumn<QTransform>("transform");
    QTest::addColumn<QString>("text");
    QTest::newRow("x") << QTransform(1, 0, 0, 1, noNumber, 2) << "yOffset=\"2\" rotationDeg=\"0\" ";
    QTest::newRow("y") << QTransform(1, 0, 0, 1, 2, infinity) << "xOffset=\"2\" rotationDeg=\"0\" ";
    QTest::newRow("turn") << QTransform(noNumber, 0, 0, 1, 2, 3) << "xOffset=\"2\" yOffset=\"3\" ";
    QTest::newRow("infinite") << QTransform(infinity, 0, 0, 1, 2, 3) << "xOffset=\"2\" yOffset=\"3\" ";
    QTest::newRow("all") << QTransform(noNumber, 0, 0, 1, -infinity, noNumber) << "";
}

void tst_LayerWriter::whatIsNoNumberIsNotWritten()
{
    QFETCH(QTransform, transform);
    QFETCH(QString, text);
    QCOMPARE(transformText(transform), text);
}

void tst_LayerWriter::opacityHasAllItsDigits_data()
{
    QTest::addColumn<double>("opacity");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0.0 << "0";
    QTest::newRow("full") << 1.0 << "1";
    QTest::newRow("tenth") << 0.1 << "0.1";
    QTest::newRow("third") << 1.0 / 3 << "0.3333333333333333";
    QTest::newRow("tiny") << 1e-9 << "1e-09";
}

void tst_LayerWriter::opacityHasAllItsDigits()
{
    QFETCH(double, opacity);
    QFETCH(QString, text);
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->setOpacity(opacity);
    scene->insertLayer(layer, 0);
    QCOMPARE(captured(written(*scene), "<opacity>(.*)</opacity>"), text);
}

void tst_LayerWriter::rateHasSixDigits_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<QString>("text");
    QTest::newRow("slowest") << 0.1 << "0.1";
    QTest::newRow("whole") << 24.0 << "24";
    QTest::newRow("film for television") << 24000.0 / 1001 << "23.976";
    QTest::newRow("television") << 60000.0 / 1001 << "59.9401";
    QTest::newRow("third") << 1.0 / 3 << "0.333333";
    QTest::newRow("fastest") << 60.0 << "60";
}

void tst_LayerWriter::rateHasSixDigits()
{
    QFETCH(double, rate);
    QFETCH(QString, text);
    const auto scene = emptyScene();
    scene->setFrameRate(rate);
    QCOMPARE(captured(written(*scene), " fps=\"([^\"]*)\""), text);
}

void tst_LayerWriter::soundStartHasAllItsDigits_data()
{
    QTest::addColumn<double>("frames");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0.0 << "0";
    QTest::newRow("hundredths") << -12.34 << "-12.34";
    QTest::newRow("third") << -1.0 / 3 << "-0.3333333333333333";
    QTest::newRow("many") << 1234567.89 << "1234567.89";
    QTest::newRow("a million") << 1e6 << "1e+06";
}

void tst_LayerWriter::soundStartHasAllItsDigits()
{
    QFETCH(double, frames);
    QFETCH(QString, text);
    const auto scene = emptyScene();
    const auto audio = std::make_shared<AudioLayer>();
    scene->insertLayer(audio, 0);
    audio->restoreOffset(frames);
    QCOMPARE(captured(written(*scene), "<offsetFrames>(.*)</offsetFrames>"), text);
}

void tst_LayerWriter::colorIsSixHexadecimalDigits_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<QString>("text");
    QTest::newRow("black") << QColor(0, 0, 0) << "#000000";
    QTest::newRow("first layer's") << QColor(40, 97, 184) << "#2861b8";
    QTest::newRow("by name") << QColor("orange") << "#ffa500";
    QTest::newRow("by hue") << QColor::fromHsv(120, 255, 255) << "#00ff00";
    QTest::newRow("by ink") << QColor::fromCmyk(255, 0, 0, 0) << "#00ffff";
}

void tst_LayerWriter::colorIsSixHexadecimalDigits()
{
    QFETCH(QColor, color);
    QFETCH(QString, text);
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->setColor(color);
    scene->insertLayer(layer, 0);
    QCOMPARE(captured(written(*scene), "<color>(.*)</color>"), text);
}

void tst_LayerWriter::farthestOffsetsComeBack()
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->item(1)->offPegsTransform = QTransform::fromTranslate(1e30, -1e30);
    scene->insertLayer(layer, 0);
    const auto audio = std::make_shared<AudioLayer>();
    scene->insertLayer(audio, 1);
    audio->restoreOffset(-1e30);
    const auto again = sceneFrom(written(*scene));
    QCOMPARE(again->visualLayer(0)->item(1)->offPegsTransform, QTransform::fromTranslate(6.7e7, -6.7e7));
    const auto *sound = qobject_cast<const AudioLayer *>(again->layer(1));
    QVERIFY(sound);
    QCOMPARE(sound->offsetFrames(), -6e8);
}

void tst_LayerWriter::highestLayerNumberComesBack()
{
    const auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1), 0);
    scene->setHighestUsedLayerNumber(std::numeric_limits<int>::max());
    QCOMPARE(sceneFrom(written(*scene))->highestUsedLayerNumber(), 1'000'000'000);
}

void tst_LayerWriter::nameIsEscaped_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << "Inks"
                           << "Inks";
    QTest::newRow("signs of XML") << "<a & \"b\">"
                                  << "&lt;a &amp; &quot;b&quot;&gt;";
    // A parser turns these into spaces where they are not escaped.
    QTest::newRow("tab") << "a\tb"
                         << "a&#9;b";
    QTest::newRow("line break") << "a\nb"
                                << "a&#10;b";
    QTest::newRow("carriage return") << "a\r\nb"
                                     << "a&#13;&#10;b";
    QTest::newRow("spaces") << "  a  b  "
                            << "  a  b  ";
    QTest::newRow("control characters") << QString("a\x01\x08\x0b\x0c\x1f") + QChar(0) + "b"
                                        << "ab";
    QTest::newRow("no characters") << QString("a") + QChar(0xfffe) + QChar(0xffff) + "b"
                                   << "ab";
    QTest::newRow("first half alone") << QString("a") + QChar(0xd83d) + "b" << QString::fromUtf8("a\ufffdb");
    QTest::newRow("second half alone") << QString("a") + QChar(0xdfff) + "b" << QString::fromUtf8("a\ufffdb");
    QTest::newRow("halves in the wrong order")
        << QString("a") + QChar(0xdc00) + QChar(0xd800) + "b" << QString::fromUtf8("a\ufffd\ufffdb");
    QTest::newRow("beyond the basic plane") << QString::fromUtf8("🎬") << QString::fromUtf8("🎬");
}

void tst_LayerWriter::nameIsEscaped()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QCOMPARE(nameText(name), text);
}

void tst_LayerWriter::namesComeBack_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("tab") << "a\tb";
    QTest::newRow("line breaks") << "\na\r\nb\r";
    QTest::newRow("spaces around") << "  a  ";
    QTest::newRow("entity") << "&amp;&#9;&lt;";
    QTest::newRow("end of a comment and a section") << "-->]]>";
    QTest::newRow("line separators") << QString::fromUtf8("a\u0085b\u2028c");
    QTest::newRow("delete and no-break") << QString::fromUtf8("\u007f\u009f\u00a0\ufeff");
    QTest::newRow("mark of byte order") << QString(QChar(0xfeff)) + "a" + QChar(0xfeff);
    QTest::newRow("all planes") << QString::fromUtf8("\u0141\uffee\U0001F3AC\U0010FFFF");
    QTest::newRow("long") << QString(100'000, 'l');
}

void tst_LayerWriter::namesComeBack()
{
    QFETCH(QString, name);
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->setName(name);
    scene->insertLayer(layer, 0);
    QCOMPARE(sceneFrom(written(*scene))->layer(0)->name(), name);
}

void tst_LayerWriter::nameOfNothingStorableIsEmpty()
{
    QCOMPARE(nameText(QString("\x01\x02")), QString());
}

void tst_LayerWriter::fileIsUtf8()
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->setName(QString::fromUtf8("ä€🎬"));
    scene->insertLayer(layer, 0);
    const QByteArray file = written(*scene);
    QVERIFY(file.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE mr>\n<mr version=\"0.4\">\n"));
    QVERIFY(file.contains(" name=\"\xc3\xa4\xe2\x82\xac\xf0\x9f\x8e\xac\" "));
}

void tst_LayerWriter::cloneHasNeitherIdentifierNorContent()
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->insertCloneAfter(1);
    layer->item(2)->drawing->setCopyId(uuid(5));
    scene->insertLayer(layer, 0);
    QVERIFY(written(*scene).contains("                <drawing type=\"clone\"/>\n            </layer>"));
}

void tst_LayerWriter::cloneKeepsItsTransformAndMark()
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->insertCloneAfter(1);
    layer->item(2)->offPegsTransform = QTransform::fromTranslate(1, 2);
    layer->item(2)->keyDrawing = true;
    scene->insertLayer(layer, 0);
    QVERIFY(written(*scene).contains(
        "<drawing xOffset=\"1\" yOffset=\"2\" rotationDeg=\"0\" keyDrawing=\"yes\" type=\"clone\"/>"));
}

void tst_LayerWriter::distantCloneHasNoCopyId()
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1, 2);
    layer->item(2)->type = LayerItem::Type::DistantClone;
    layer->item(2)->drawing = layer->item(1)->drawing;
    layer->item(2)->origin = {uuid(100), uuid(101)};
    layer->item(1)->clones = {{uuid(100), uuid(102)}};
    layer->item(1)->drawing->setCopyId(uuid(5));
    scene->insertLayer(layer, 0);
    const QByteArray file = written(*scene);
    QCOMPARE(file.count(" copyId="), 1);
    QVERIFY(file.contains("<drawing type=\"distantClone\" identifier=\"{00000066-0000-4000-8000-000000000000}\">"));
}

void tst_LayerWriter::whatIsDrawnOnACloneOfNothingIsKept()
{
    const QByteArray file = document(layerElement(
        "<drawing type='distantClone' identifier='" + uuid(101).toByteArray() + "'><original layer='" +
        uuid(800).toByteArray() + "' drawing='" + uuid(801).toByteArray() + "'/></drawing><drawing type='clone'/>"));
    const auto scene = sceneFrom(file);
    QVERIFY(scene->item(0, 1)->isDistantClone());
    QVERIFY(scene->addStroke(0, 1, block(QRect(2, 3, 4, 2), 99)));

    const auto again = sceneFrom(written(*scene));
    QVERIFY(again->item(0, 1)->isOriginal());
    QCOMPARE(again->item(0, 1)->identifier, uuid(101));
    QCOMPARE(drawingAt(*again, 0, 1).image().pixelColor(3, 3).alpha(), 99);
    QCOMPARE(again->item(0, 2)->drawing, again->item(0, 1)->drawing);
}

void tst_LayerWriter::cloneOfNothingStaysOneWhileItIsBlank()
{
    const QByteArray file =
        document(layerElement("<drawing type='distantClone'><original layer='" + uuid(800).toByteArray() +
                              "' drawing='" + uuid(801).toByteArray() + "'/></drawing>"));
    const auto again = sceneFrom(written(*sceneFrom(file)));
    QVERIFY(again->item(0, 1)->isDistantClone());
    QCOMPARE(again->item(0, 1)->origin.cell, uuid(801));
}

void tst_LayerWriter::pictureLayerHasNoColor()
{
    const auto scene = emptyScene();
    const auto layer = std::make_shared<ReferenceLayer>(scene->frameSize());
    layer->setOpacity(0.25);
    scene->insertLayer(layer, 0);
    const QByteArray file = written(*scene);
    QVERIFY(file.contains(" visible=\"yes\" type=\"reference\">\n                <opacity>0.25</opacity>\n"
                          "                <drawing type=\"original\""));
    QVERIFY(!file.contains("<color"));
}

void tst_LayerWriter::soundLayerHasNoVisibility()
{
    const auto scene = emptyScene();
    scene->insertLayer(std::make_shared<AudioLayer>(), 0);
    scene->insertLayer(std::make_shared<AnnotationLayer>(), 1);
    const QByteArray file = written(*scene);
    QCOMPARE(file.count(" linked=\"no\" type=\"a"), 2);
    QVERIFY(!file.contains("visible") && !file.contains("beyond") && !file.contains("<opacity"));
}

void tst_LayerWriter::emptySoundIsAnEmptyElement()
{
    const auto scene = emptyScene();
    scene->insertLayer(std::make_shared<AudioLayer>(), 0);
    QVERIFY(written(*scene).contains("<offsetFrames>0</offsetFrames>\n"
                                     "                <originalAudioData></originalAudioData>\n"));
}

void tst_LayerWriter::everyNoteIsAnElement()
{
    const auto scene = emptyScene();
    const auto notes = std::make_shared<AnnotationLayer>();
    for (int frameId = 1; frameId <= 5; ++frameId)
        notes->appendImage(frameId == 3 ? note(QSize(2, 1), QPoint(0, 0), 7) : QImage());
    scene->insertLayer(notes, 0);
    const QByteArray file = written(*scene);
    QCOMPARE(file.count("<image>"), 5);
    // 0 x 0 pixels, and no data at all.
    QCOMPARE(file.count("<image>" + QByteArray::fromHex("0000000000000000ffffffff").toBase64() + "</image>"), 4);
}

void tst_LayerWriter::showingNothingBeyondIsNotWritten()
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->setLayerBeyondLast(Layer::FreezeLast);
    layer->setLayerBeyondLast(Layer::ShowNothing);
    scene->insertLayer(layer, 0);
    QVERIFY(!written(*scene).contains("beyond"));
}

QTEST_MAIN(tst_LayerWriter)
#include "tst_layerwriter.moc"
