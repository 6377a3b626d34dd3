#include <QFile>
#include <QFontDatabase>
#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QSvgRenderer>
#include <QTest>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <vector>

namespace {

using Samples = std::array<int, 17>;

/// The levels of one channel (0 red, 1 green, 2 blue), row by row.
std::vector<int> channel(const QImage &picture, int index)
{
    const QImage image = picture.convertToFormat(QImage::Format_RGB888);
    std::vector<int> levels;
    levels.reserve(static_cast<size_t>(image.width()) * static_cast<size_t>(image.height()));
    for (int y = 0; y < image.height(); ++y) {
        const uchar *line = image.constScanLine(y);
        for (int x = 0; x < image.width(); ++x)
            levels.push_back(line[3 * x + index]);
    }
    return levels;
}

int quantile(std::vector<int> levels, double part)
{
    const auto place = levels.begin() + static_cast<qsizetype>(part * static_cast<double>(levels.size() - 1));
    std::nth_element(levels.begin(), place, levels.end());
    return *place;
}

double share(const std::vector<int> &levels, const std::function<bool(int)> &holds)
{
    const auto count = std::count_if(levels.begin(), levels.end(), holds);
    return static_cast<double>(count) / static_cast<double>(levels.size());
}

/// How alike the columns (or rows) \a first and \a second run: Pearson's correlation, -1 to 1.
double correlation(const std::vector<int> &levels, int side, int first, int second, Qt::Orientation across)
{
    double sumA = 0.0;
    double sumB = 0.0;
    double sumAA = 0.0;
    double sumBB = 0.0;
    double sumAB = 0.0;
    for (int i = 0; i < side; ++i) {
        const double a = levels[static_cast<size_t>(across == Qt::Horizontal ? i * side + first : first * side + i)];
        const double b = levels[static_cast<size_t>(across == Qt::Horizontal ? i * side + second : second * side + i)];
        sumA += a;
        sumB += b;
        sumAA += a * a;
        sumBB += b * b;
        sumAB += a * b;
    }
    const double spread = (side * sumAA - sumA * sumA) * (side * sumBB - sumB * sumB);
    return spread > 0.0 ? (side * sumAB - sumA * sumB) / std::sqrt(spread) : 0.0;
}

/// Whether the texture goes on over its edge as it goes on within.
///
/// Compares lines that lie \a period apart, the length after which the texture's own structure repeats (1 for noise),
/// so that a thread is compared with the next one of its kind. Over the edge they must be as alike as they are within;
/// a tolerance of 0.05 covers the sampling of few lines.
bool isSeamless(const std::vector<int> &levels, int side, int period, Qt::Orientation across)
{
    const auto meanOfPeriod = [&](int first) {
        double sum = 0.0;
        for (int line = first; line < first + period; ++line)
            sum += correlation(levels, side, line, (line + period) % side, across);
        return sum / period;
    };
    double least = 1.0;
    double most = -1.0;
    for (int first = 0; first + 2 * period <= side; first += period) {
        const double alike = meanOfPeriod(first);
        least = std::min(least, alike);
        most = std::max(most, alike);
    }
    const double seam = meanOfPeriod(side - period);
    return seam >= least - 0.05 && seam <= most + 0.05;
}

} // namespace

class tst_Resources : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void applicationTreeIsRegisteredWithoutACall();
    void windowIconHasItsSize_data();
    void windowIconHasItsSize();
    void shaderIsThere_data();
    void shaderIsThere();
    void fragmentShadersDifferInTheLookUpOnly();
    void softnessCurveRunsStraightBetweenItsSamples_data();
    void softnessCurveRunsStraightBetweenItsSamples();
    void grainIsAnRgbPictureOf2048();
    void grainsRedIsABrightTooth();
    void grainsGreenIsBroadNoise();
    void grainsBlueIsZero();
    void textureIsSeamless_data();
    void textureIsSeamless();
    void linenIsWarmGrey();
    void pointerHasItsViewBox_data();
    void pointerHasItsViewBox();
    void opacityPointerHasItsElements_data();
    void opacityPointerHasItsElements();
    void squashPointerNamesItsHotSpot();
    void pointerShowsOnBlackAndOnWhite_data();
    void pointerShowsOnBlackAndOnWhite();
    void headlineFontIsPassionOne();
};

void tst_Resources::initTestCase()
{
    Q_INIT_RESOURCE(model);
    Q_INIT_RESOURCE(ui);
}

void tst_Resources::applicationTreeIsRegisteredWithoutACall()
{
    QVERIFY(QFile::exists(QStringLiteral(":/mr-icon_16.png")));
}

void tst_Resources::windowIconHasItsSize_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {16, 32, 64, 128, 256, 512, 1024})
        QTest::addRow("%d", size) << size;
}

void tst_Resources::windowIconHasItsSize()
{
    QFETCH(const int, size);
    const QImage icon(QStringLiteral(":/mr-icon_%1.png").arg(size));
    QCOMPARE(icon.size(), QSize(size, size));
    QVERIFY(icon.hasAlphaChannel());
    QCOMPARE(icon.pixelColor(0, 0).alpha(), 0);                 // rounded corners
    QCOMPARE(icon.pixelColor(size / 2, size / 8).alpha(), 255); // a solid body
}

void tst_Resources::shaderIsThere_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("vertex") << QStringLiteral("anisotropic_scale.vert");
    QTest::newRow("fragment") << QStringLiteral("anisotropic_scale.frag");
    QTest::newRow("fragment without 1D textures") << QStringLiteral("anisotropic_scale_no_1D_textures.frag");
}

void tst_Resources::shaderIsThere()
{
    QFETCH(const QString, name);
    QFile file(QStringLiteral(":/shaders/") + name);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("void main"));
}

void tst_Resources::fragmentShadersDifferInTheLookUpOnly()
{
    const auto source = [](const QString &name) {
        QFile file(QStringLiteral(":/shaders/") + name);
        if (!file.open(QIODevice::ReadOnly))
            return QString();
        static const QRegularExpression comments(QStringLiteral("//[^\\n]*"));
        return QString::fromUtf8(file.readAll()).remove(comments).simplified();
    };
    const QString withOneDimension = source(QStringLiteral("anisotropic_scale.frag"));
    QString withTwo = source(QStringLiteral("anisotropic_scale_no_1D_textures.frag"));
    QVERIFY(!withOneDimension.isEmpty());
    QVERIFY(withOneDimension != withTwo);
    withTwo.replace(QStringLiteral("sampler2D curve_softness"), QStringLiteral("sampler1D curve_softness"));
    withTwo.replace(QStringLiteral("texture2D(curve_softness, vec2(position, 0.0))"),
                    QStringLiteral("texture1D(curve_softness, position)"));
    QCOMPARE(withTwo, withOneDimension);
}

void tst_Resources::softnessCurveRunsStraightBetweenItsSamples_data()
{
    QTest::addColumn<Samples>("red");
    QTest::addColumn<Samples>("green");
    const Samples none{};
    const Samples marker{254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 247, 246, 245, 242, 235, 208};
    QTest::newRow("pencil") << Samples{254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 242, 209, 91, 2}
                            << Samples{0, 0, 0, 0, 6, 24, 47, 73, 102, 130, 160, 191, 223, 255, 255, 255, 255};
    QTest::newRow("marker") << marker << none;
    QTest::newRow("brush") << Samples{254, 255, 255, 255, 255, 255, 255, 255, 255,
                                      255, 255, 255, 253, 248, 246, 245, 232}
                           << none;
    QTest::newRow("eraserKneaded") << Samples{255, 249, 247, 246, 245, 244, 243, 241, 239,
                                              235, 231, 226, 219, 209, 194, 170, 104}
                                   << none;
    QTest::newRow("eraserRubber") << marker << none;
    QTest::newRow("eraserVinyl") << Samples{254, 255, 255, 255, 255, 255, 255, 255, 255,
                                            255, 255, 255, 255, 249, 246, 244, 231}
                                 << none;
}

void tst_Resources::softnessCurveRunsStraightBetweenItsSamples()
{
    QFETCH(const Samples, red);
    QFETCH(const Samples, green);
    const QImage curve(QStringLiteral(":/shaders/SoftnessCurve-%1.png").arg(QLatin1String(QTest::currentDataTag())));
    QCOMPARE(curve.size(), QSize(256, 1));
    const std::array<std::pair<const Samples *, std::vector<int>>, 2> channels{
        {{&red, channel(curve, 0)}, {&green, channel(curve, 1)}}};
    for (const auto &[samples, levels] : channels) {
        for (int i = 0; i < 16; ++i) {
            const int left = 16 * i;
            const int right = std::min(left + 16, 255); // the last sample stands at 255, not at 256
            const int from = (*samples)[static_cast<size_t>(i)];
            const int to = (*samples)[static_cast<size_t>(i) + 1];
            QCOMPARE(levels[static_cast<size_t>(left)], from);
            QCOMPARE(levels[static_cast<size_t>(right)], to);
            for (int x = left; x < right; ++x) {
                const double straight = from + (to - from) * static_cast<double>(x - left) / (right - left);
                QVERIFY(std::abs(levels[static_cast<size_t>(x)] - straight) <= 0.5 + 1e-9);
            }
        }
    }
}

void tst_Resources::grainIsAnRgbPictureOf2048()
{
    const QImage grain(QStringLiteral(":/shaders/MRtexture.png"));
    QCOMPARE(grain.size(), QSize(2048, 2048));
    QVERIFY(!grain.hasAlphaChannel());
    QVERIFY(!grain.isGrayscale());
}

void tst_Resources::grainsRedIsABrightTooth()
{
    const std::vector<int> red = channel(QImage(QStringLiteral(":/shaders/MRtexture.png")), 0);
    QVERIFY(std::abs(quantile(red, 0.5) - 231) <= 1);
    QVERIFY(std::abs(quantile(red, 0.1) - 204) <= 1);
    QVERIFY(std::abs(*std::min_element(red.begin(), red.end()) - 78) <= 1);
}

void tst_Resources::grainsGreenIsBroadNoise()
{
    const std::vector<int> green = channel(QImage(QStringLiteral(":/shaders/MRtexture.png")), 1);
    QVERIFY(std::abs(quantile(green, 0.5) - 111) <= 1);
    const double atZero = share(green, [](int level) { return level == 0; });
    const double above226 = share(green, [](int level) { return level > 226; });
    QVERIFY2(std::abs(atZero - 0.1) < 0.002, qPrintable(QString::number(atZero)));
    QVERIFY2(std::abs(above226 - 0.1) < 0.002, qPrintable(QString::number(above226)));
}

void tst_Resources::grainsBlueIsZero()
{
    const std::vector<int> blue = channel(QImage(QStringLiteral(":/shaders/MRtexture.png")), 2);
    QCOMPARE(*std::max_element(blue.begin(), blue.end()), 0);
}

void tst_Resources::textureIsSeamless_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("channelIndex");
    QTest::addColumn<int>("period");
    QTest::addColumn<Qt::Orientation>("across");
    for (const Qt::Orientation across : {Qt::Horizontal, Qt::Vertical}) {
        const char *way = across == Qt::Horizontal ? "horizontally" : "vertically";
        QTest::addRow("tooth %s", way) << QStringLiteral(":/shaders/MRtexture.png") << 0 << 1 << across;
        QTest::addRow("grain %s", way) << QStringLiteral(":/shaders/MRtexture.png") << 1 << 1 << across;
        QTest::addRow("linen %s", way) << QStringLiteral(":/paper/linenBG.png") << 0 << 8 << across;
    }
}

void tst_Resources::textureIsSeamless()
{
    QFETCH(const QString, file);
    QFETCH(const int, channelIndex);
    QFETCH(const int, period);
    QFETCH(const Qt::Orientation, across);
    const QImage picture(file);
    QVERIFY(!picture.isNull());
    QCOMPARE(picture.width(), picture.height());
    QVERIFY(isSeamless(channel(picture, channelIndex), picture.width(), period, across));

    // The measure must tell a seam: a third cut away puts edges together that were never neighbours (and, in the weave,
    // threads that lie above beside threads that lie below).
    const int side = picture.width() / 3 * 2;
    const QImage cut = picture.copy(0, 0, side, side);
    QVERIFY(!isSeamless(channel(cut, channelIndex), side, period, across));
}

void tst_Resources::linenIsWarmGrey()
{
    const QImage linen(QStringLiteral(":/paper/linenBG.png"));
    const std::vector<int> red = channel(linen, 0);
    const std::vector<int> green = channel(linen, 1);
    const std::vector<int> blue = channel(linen, 2);
    QVERIFY(!red.empty());
    for (size_t i = 0; i < red.size(); ++i) {
        QCOMPARE(green[i], red[i] - 4);
        QCOMPARE(blue[i], red[i] - 8);
    }
    QVERIFY(quantile(red, 0.1) >= 95);
    QVERIFY(quantile(red, 0.9) <= 120);
    const int median = quantile(red, 0.5);
    QVERIFY(median >= 100 && median <= 115);
}

void tst_Resources::pointerHasItsViewBox_data()
{
    QTest::addColumn<QPoint>("hotSpot"); // a null point: the centre
    QTest::newRow("hand") << QPoint();
    QTest::newRow("zoom") << QPoint(9, 9);
    QTest::newRow("rotate") << QPoint();
    QTest::newRow("lasso") << QPoint(13, 8);
    QTest::newRow("cutter") << QPoint(2, 24);
    for (const char *name : {"scrub", "drawFixedFaint", "drawFixedOpaque", "eraseFixedFaint", "eraseFixedOpaque",
                             "opacity", "move", "scale", "scaleRotate", "skewHorizontal", "skewVertical",
                             "squashStretch", "stamp", "slideMode", "addClonesMode", "dragUpDown", "lock"})
        QTest::newRow(name) << QPoint();
}

void tst_Resources::pointerHasItsViewBox()
{
    QFETCH(const QPoint, hotSpot);
    QSvgRenderer pointer(QStringLiteral(":/pointers/pointer-%1.svg").arg(QLatin1String(QTest::currentDataTag())));
    QVERIFY(pointer.isValid());
    const QRectF box = pointer.viewBoxF();
    QCOMPARE(box.topLeft(), QPointF());
    QCOMPARE(box.toRect().size(), pointer.defaultSize());
    QVERIFY(box.width() >= 16 && box.width() <= 40);
    QVERIFY(box.height() >= 16 && box.height() <= 40);
    QVERIFY(box.contains(hotSpot));
}

void tst_Resources::opacityPointerHasItsElements_data()
{
    QTest::addColumn<double>("from"); // the part of the width that the element covers must lie within these
    QTest::addColumn<double>("to");
    QTest::newRow("drawbase") << 0.0 << 1.0;
    QTest::newRow("erasebase") << 0.0 << 1.0;
    QTest::newRow("drawleft") << 0.0 << 0.5;
    QTest::newRow("eraseleft") << 0.0 << 0.5;
    QTest::newRow("drawright") << 0.5 << 1.0;
    QTest::newRow("eraseright") << 0.5 << 1.0;
}

void tst_Resources::opacityPointerHasItsElements()
{
    QFETCH(const double, from);
    QFETCH(const double, to);
    QSvgRenderer pointer(QStringLiteral(":/pointers/pointer-opacity.svg"));
    const QString id = QString::fromLatin1(QTest::currentDataTag());
    QVERIFY(pointer.elementExists(id));
    const QRectF bounds = pointer.boundsOnElement(id);
    QVERIFY(bounds.width() > 5);
    QVERIFY(bounds.left() >= from * pointer.viewBoxF().width());
    QVERIFY(bounds.right() <= to * pointer.viewBoxF().width());
}

void tst_Resources::squashPointerNamesItsHotSpot()
{
    QSvgRenderer pointer(QStringLiteral(":/pointers/pointer-squashStretch.svg"));
    QVERIFY(pointer.elementExists(QStringLiteral("hotspot")));
    QCOMPARE(pointer.boundsOnElement(QStringLiteral("hotspot")).center(), pointer.viewBoxF().center());
}

void tst_Resources::pointerShowsOnBlackAndOnWhite_data()
{
    pointerHasItsViewBox_data();
}

void tst_Resources::pointerShowsOnBlackAndOnWhite()
{
    QSvgRenderer pointer(QStringLiteral(":/pointers/pointer-%1.svg").arg(QLatin1String(QTest::currentDataTag())));
    for (const QColor &ground : {QColor(Qt::black), QColor(Qt::white)}) {
        QImage image(pointer.defaultSize(), QImage::Format_RGB32);
        image.fill(ground);
        QPainter painter(&image);
        pointer.render(&painter);
        painter.end();
        int visible = 0;
        for (const int level : channel(image, 1)) {
            if (std::abs(level - ground.green()) > 50)
                ++visible;
        }
        QVERIFY2(visible >= 16, qPrintable(QString::number(visible)));
    }
}

void tst_Resources::headlineFontIsPassionOne()
{
    const int id = QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/PassionOne-Regular.ttf"));
    QVERIFY(id >= 0);
    QCOMPARE(QFontDatabase::applicationFontFamilies(id), QStringList{QStringLiteral("Passion One")});
}

QTEST_MAIN(tst_Resources)
#include "tst_resources.moc"
