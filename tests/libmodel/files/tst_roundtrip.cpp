// Random scenes written, read, compared, and written again.
//
//   tst_roundtrip [--scenes N] [--first-seed S] [--seed S] [--pens] [QTest options]
//
// 1,000 scenes unless told otherwise (or the environment's MIRELLE_ROUND_TRIPS). --seed does one scene. --pens draws
// lines with pens and erasers into the scenes, too, which needs a renderer and more time.

#include "libmodel/files/scenereader.h"
#include "libmodel/files/scenewriter.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/scene/firstlayers.h"
#include "libmodel/scene/scene.h"
#include "support/glfixture.h"
#include "support/scenedecoration.h"
#include "support/scenegenerator.h"
#include "support/sceneinvariants.h"
#include "support/scenesnapshot.h"
#include "support/watchedprogress.h"

#include <QApplication>
#include <QBuffer>
#include <QRegularExpression>
#include <QTest>
#include <QtMath>

#include <cmath>
#include <cstdio>

using namespace Model;
using namespace TestSupport;

namespace {

struct Options
{
    qint64 scenes = 1000;
    quint64 firstSeed = 1;
    bool drawsWithPens = false;
};
Options options;

QByteArray written(Scene &scene)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    WatchedProgress progress;
    SceneWriter writer(&scene, progress);
    return writer.write(&buffer) == FileResult::Success ? buffer.data() : QByteArray();
}

/// \return what went wrong; empty if nothing did.
QString read(Scene &scene, QByteArray file)
{
    QBuffer buffer(&file);
    buffer.open(QIODevice::ReadOnly);
    WatchedProgress progress;
    SceneReader reader(&scene, progress);
    if (reader.read(&buffer) != FileResult::Success)
        return "is refused: " + reader.errorString();
    return reader.damages().isEmpty() ? QString() : "has damages: " + reader.damages().join(u'\n');
}

double sixDigits(double value)
{
    return QString::number(value, 'g', 6).toDouble();
}

double hundredths(double frames)
{
    return std::round(frames * 100) / 100;
}

// Eight exceptions: what a file does not keep. Both snapshots are brought to what it does keep before they are
// compared.

/// 1. Names lose the characters that no XML document can hold; half a character outside of the basic plane becomes the
/// sign for an unreadable one. An empty name says nothing, so that the layer has that of a new layer.
QString keptName(const QString &name)
{
    static const QRegularExpression forbidden("[\\x00-\\x08\\x0b\\x0c\\x0e-\\x1f\\x{fffe}\\x{ffff}]");
    QString kept;
    for (qsizetype i = 0; i < name.size(); ++i) {
        const QString pair = name.mid(i, 2);
        if (pair.size() == 2 && pair[0].isHighSurrogate() && pair[1].isLowSurrogate()) {
            kept += pair;
            ++i;
        } else {
            kept += name[i].isSurrogate() ? QChar(0xfffd) : name[i];
        }
    }
    return kept.remove(forbidden);
}

/// 2. Of how a cell lies off its pegs, a move and a turn are kept, to six digits, and no scale.
QTransform keptTransform(const QTransform &transform)
{
    if (transform.isIdentity())
        return transform;
    // Whatever is left of the first axis tells the turn.
    const double degrees = sixDigits(qRadiansToDegrees(std::atan2(transform.m12(), transform.m11())));
    const double radians = qDegreesToRadians(degrees);
    return QTransform(std::cos(radians), std::sin(radians), -std::sin(radians), std::cos(radians),
                      sixDigits(transform.dx()), sixDigits(transform.dy()));
}

/// The two agree to the last bits, with a turn of half a round to either side being the same.
bool agree(const QTransform &one, const QTransform &other)
{
    const auto near = [](double a, double b) { return std::abs(a - b) <= 1e-7 + 1e-12 * std::abs(a); };
    return near(one.m11(), other.m11()) && near(one.m12(), other.m12()) && near(one.m21(), other.m21()) &&
           near(one.m22(), other.m22()) && near(one.dx(), other.dx()) && near(one.dy(), other.dy());
}

void keepWhatAFileKeeps(SceneSnapshot &snapshot)
{
    // 3. The rate has six digits.
    snapshot.frameRate = sixDigits(snapshot.frameRate);
    for (LayerState &layer : snapshot.layers) {
        layer.name = keptName(layer.name);
        // 4. Colours are three bytes, however they came about.
        if (layer.color.isValid())
            layer.color = QColor::fromRgb(layer.color.rgb());
        // 5. The identifiers of clones are made anew.
        for (CellState &cell : layer.cells) {
            if (cell.type == int(LayerItem::Type::Clone))
                cell.identifier = {};
        }
        // 6. Sound starts at a hundredth of a frame.
        layer.audioOffset = hundredths(layer.audioOffset);
    }
    // 7. Strokes are in single precision.
    for (DrawingState &drawing : snapshot.drawings) {
        const QTransform &t = drawing.transform;
        drawing.transform = QTransform(float(t.m11()), float(t.m12()), float(t.m13()), float(t.m21()), float(t.m22()),
                                       float(t.m23()), float(t.m31()), float(t.m32()), float(t.m33()));
    }
}

/// 8. What is nearer to zero than a transform tells apart (1e-12) is read as zero. A cell for which nothing remains, as
/// one that is only scaled, is no longer off its pegs once it was read. Half a round to one side is half a round to the
/// other. The start of the sound, see 6.
QByteArray withKeptNumbers(const QByteArray &file)
{
    static const QRegularExpression nearZero(
        R"re(\b(?:xOffset|yOffset|rotationDeg)="\K-?\d(?:\.\d+)?e-(?:1[2-9]|[2-9]\d|\d{3})(?="))re");
    QString text = QString::fromUtf8(file);
    text.replace(nearZero, "0").replace(" rotationDeg=\"-180\"", " rotationDeg=\"180\"");
    static const QRegularExpression soundStart("<offsetFrames>([^<]*)<");
    const QRegularExpressionMatch start = soundStart.match(text);
    text.replace(start.capturedStart(1), start.capturedLength(1),
                 QString::number(hundredths(start.captured(1).toDouble()), 'g', QLocale::FloatingPointShortest));
    return text.replace(" xOffset=\"0\" yOffset=\"0\" rotationDeg=\"0\"", "").toUtf8();
}

/// Takes out of both what was compared here. \return what is other.
QString compareTransforms(SceneSnapshot &one, SceneSnapshot &other)
{
    QString found;
    for (size_t i = 0; i < std::min(one.layers.size(), other.layers.size()); ++i) {
        auto &ones = one.layers[i].cells;
        auto &others = other.layers[i].cells;
        for (size_t cell = 0; cell < std::min(ones.size(), others.size()); ++cell) {
            if (!agree(keptTransform(ones[cell].transform), others[cell].transform))
                QDebug(&found) << "layer" << i << "cell" << cell + 1 << ones[cell].transform << "->"
                               << others[cell].transform << '\n';
            ones[cell].transform = others[cell].transform = {};
        }
    }
    return found;
}

/// \return the surroundings of the first byte that differs; empty if none does.
QString firstDifference(const QByteArray &file, const QByteArray &secondFile)
{
    if (secondFile == file)
        return {};
    const auto [one, other] = std::mismatch(file.begin(), file.end(), secondFile.begin(), secondFile.end());
    const auto at = std::max<qsizetype>(one - file.begin() - 80, 0);
    return "The second file differs: " + QString::fromUtf8(file.mid(at, 140)) + "\n -> " +
           QString::fromUtf8(secondFile.mid(at, 140));
}

/// \return what did not come back; empty if all did.
QString roundTrip(quint64 seed, bool drawsWithPens)
{
    RandomNumbers random(seed);
    Scene scene;
    fillScene(scene, random);
    decorateScene(scene, random, drawsWithPens ? DecoratedStrokes::Pens : DecoratedStrokes::None);
    addMissingLayers(scene); // as every scene of the program has them
    if (const QString broken = brokenInvariant(scene); !broken.isEmpty())
        return "The scene is none before it is written: " + broken;

    const QByteArray file = written(scene);
    if (file.isEmpty())
        return "The scene cannot be written";
    SceneSnapshot before(scene);

    Scene again;
    if (const QString problem = read(again, file); !problem.isEmpty())
        return "The file " + problem;
    if (const QString broken = brokenInvariant(again); !broken.isEmpty())
        return "The scene that was read: " + broken;
    SceneSnapshot after(again);
    if (scene.highestUsedLayerNumber() != again.highestUsedLayerNumber())
        return QString("highest layer number: %1 -> %2")
            .arg(scene.highestUsedLayerNumber())
            .arg(again.highestUsedLayerNumber());

    const QString turned = compareTransforms(before, after);
    keepWhatAFileKeeps(before);
    keepWhatAFileKeeps(after);
    if (const QString diff = turned + before.diff(after); !diff.isEmpty())
        return diff;

    return firstDifference(withKeptNumbers(file), withKeptNumbers(written(again)));
}

void takeOptions(QStringList &arguments)
{
    const auto take = [&arguments](const QString &name) {
        const qsizetype at = arguments.indexOf(name);
        QString value;
        if (at > 0 && at + 1 < arguments.size()) {
            value = arguments.at(at + 1);
            arguments.remove(at, 2);
        }
        return value;
    };
    if (qEnvironmentVariableIsSet("MIRELLE_ROUND_TRIPS"))
        options.scenes = qEnvironmentVariableIntValue("MIRELLE_ROUND_TRIPS");
    if (const QString value = take("--scenes"); !value.isEmpty())
        options.scenes = value.toLongLong();
    if (const QString value = take("--first-seed"); !value.isEmpty())
        options.firstSeed = value.toULongLong();
    if (const QString value = take("--seed"); !value.isEmpty()) {
        options.firstSeed = value.toULongLong();
        options.scenes = 1;
    }
    options.drawsWithPens = arguments.removeAll("--pens") > 0;
}

} // namespace

class tst_RoundTrip : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void whatIsWrittenComesBack();
};

void tst_RoundTrip::initTestCase()
{
    if (options.drawsWithPens)
        QVERIFY(startRenderer());
}

void tst_RoundTrip::whatIsWrittenComesBack()
{
    QVERIFY(options.scenes > 0);
    for (qint64 i = 0; i < options.scenes; ++i) {
        const quint64 seed = options.firstSeed + quint64(i);
        const QString problem = roundTrip(seed, options.drawsWithPens);
        if (!problem.isEmpty())
            QFAIL(qPrintable(QString("%1\nAgain: tst_roundtrip --seed %2%3")
                                 .arg(problem)
                                 .arg(seed)
                                 .arg(options.drawsWithPens ? " --pens" : "")));
    }
    std::printf("round trips: %lld scenes from seed %llu on\n", options.scenes, options.firstSeed);
}

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    takeOptions(arguments);
    tst_RoundTrip test;
    return QTest::qExec(&test, arguments);
}

#include "tst_roundtrip.moc"
