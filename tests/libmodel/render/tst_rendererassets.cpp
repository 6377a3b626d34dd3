#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/render/rendererassets.h"
#include "support/coveragemodel.h"
#include "support/deviation.h"
#include "support/glfixture.h"
#include "support/handmadestrokes.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTransform>

#include <memory>

using Model::OffscreenRenderer;
using Model::Tool;
using Model::VertexStreams;
using TestSupport::CoverageModel;

namespace {

constexpr QSize frame(240, 200);
constexpr int maximumSide = 4096;
const QString markerCurve = QStringLiteral("SoftnessCurve-marker.png");
const QString pencilCurve = QStringLiteral("SoftnessCurve-pencil.png");
const QString grainFile = QStringLiteral("MRtexture.png");

QImage evenPicture(QSize size, QRgb colour)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

/// \a scale is image pixels per paper pixel.
QImage render(Tool::PenType pen, const VertexStreams &vertices, double scale = 1.0)
{
    QImage image(frame, QImage::Format_Alpha8);
    image.fill(0);
    OffscreenRenderer::instance()->renderPen(image, pen, {}, static_cast<float>(scale), image.rect(),
                                             QTransform::fromScale(scale, scale), vertices);
    return image;
}

} // namespace

/// The user's own curves and grain, and with an even grain the pencil's model.
class tst_RendererAssets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { OffscreenRenderer::instance()->shutDown(); }

    void builtInPicturesHaveTheirSizes();
    void unknownNameGivesANullImage();
    void userFileReplacesTheBuiltInCurve();
    void corruptUserFileIsIgnored();
    void emptyUserFileIsIgnored();
    void folderOfThatNameIsIgnored();
    void pictureTooLargeForTheDriverIsIgnored();
    void laterFolderCountsWhereTheFirstHasNothingUsable();
    void firstFolderWins();
    void rowsBelowTheFirstOfAUserCurveDoNotCount();
    void pencilMatchesModelOnEvenPaper_data();
    void pencilMatchesModelOnEvenPaper();

private:
    QString userFolder() const { return QStandardPaths::standardLocations(QStandardPaths::AppDataLocation).at(0); }
    QString systemFolder() const { return QStandardPaths::standardLocations(QStandardPaths::AppDataLocation).at(1); }
    void restart();
    int markerAtHalfWay();

    std::unique_ptr<QTemporaryDir> m_home;
};

void tst_RendererAssets::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_home->filePath(QStringLiteral("own"))));
    qputenv("XDG_DATA_DIRS", QFile::encodeName(m_home->filePath(QStringLiteral("system"))));
    QVERIFY(QDir().mkpath(userFolder()));
    QVERIFY(QDir().mkpath(systemFolder()));
    QVERIFY(userFolder().startsWith(m_home->path()) && systemFolder().startsWith(m_home->path()));
    TestSupport::registerModelResources();
}

void tst_RendererAssets::restart()
{
    OffscreenRenderer::instance()->shutDown();
    QVERIFY(TestSupport::startRenderer(frame));
}

int tst_RendererAssets::markerAtHalfWay()
{
    VertexStreams vertices;
    TestSupport::appendLineBody(vertices, {{0, 100.5}, 1.0, 80}, {{240, 100.5}, 1.0, 80});
    return render(Tool::PenType::Marker, vertices).constScanLine(140)[120];
}

void tst_RendererAssets::builtInPicturesHaveTheirSizes()
{
    for (const char *file : Model::softnessCurveFiles) {
        const QImage curve = Model::loadRendererImage(QString::fromLatin1(file), maximumSide);
        QVERIFY2(!curve.isNull() && curve.width() == 256, file);
    }
    const QImage grain = Model::loadRendererImage(QString::fromLatin1(Model::paperTextureFile), maximumSide);
    QCOMPARE(grain.size(), QSize(2048, 2048));
}

void tst_RendererAssets::unknownNameGivesANullImage()
{
    QVERIFY(Model::loadRendererImage(QStringLiteral("nothing.png"), maximumSide).isNull());
}

void tst_RendererAssets::userFileReplacesTheBuiltInCurve()
{
    QVERIFY(evenPicture(QSize(256, 1), qRgb(100, 0, 0)).save(userFolder() + u'/' + markerCurve));
    restart();
    QVERIFY2(std::abs(markerAtHalfWay() - 100) <= 1, qPrintable(QString::number(markerAtHalfWay())));
}

void tst_RendererAssets::corruptUserFileIsIgnored()
{
    QFile file(userFolder() + u'/' + markerCurve);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("\x89PNG\r\n\x1a\n but no more than that");
    file.close();
    restart();
    QVERIFY(markerAtHalfWay() >= 254);
}

void tst_RendererAssets::emptyUserFileIsIgnored()
{
    QFile file(userFolder() + u'/' + pencilCurve);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    const QImage curve = Model::loadRendererImage(pencilCurve, maximumSide);
    QCOMPARE(curve.width(), 256);
    QCOMPARE(qRed(curve.pixel(255, 0)), 2);
}

void tst_RendererAssets::folderOfThatNameIsIgnored()
{
    QVERIFY(QDir().mkpath(userFolder() + u'/' + markerCurve));
    QCOMPARE(Model::loadRendererImage(markerCurve, maximumSide).width(), 256);
}

void tst_RendererAssets::pictureTooLargeForTheDriverIsIgnored()
{
    QVERIFY(evenPicture(QSize(300, 1), qRgb(100, 0, 0)).save(userFolder() + u'/' + markerCurve));
    QCOMPARE(Model::loadRendererImage(markerCurve, 300).width(), 300);
    QCOMPARE(Model::loadRendererImage(markerCurve, 299).width(), 256);
}

void tst_RendererAssets::laterFolderCountsWhereTheFirstHasNothingUsable()
{
    QFile file(userFolder() + u'/' + markerCurve);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("no picture");
    file.close();
    QVERIFY(evenPicture(QSize(64, 1), qRgb(70, 0, 0)).save(systemFolder() + u'/' + markerCurve));
    const QImage curve = Model::loadRendererImage(markerCurve, maximumSide);
    QCOMPARE(curve.width(), 64);
}

void tst_RendererAssets::firstFolderWins()
{
    QVERIFY(evenPicture(QSize(32, 1), qRgb(70, 0, 0)).save(userFolder() + u'/' + markerCurve));
    QVERIFY(evenPicture(QSize(64, 1), qRgb(70, 0, 0)).save(systemFolder() + u'/' + markerCurve));
    QCOMPARE(Model::loadRendererImage(markerCurve, maximumSide).width(), 32);
}

void tst_RendererAssets::rowsBelowTheFirstOfAUserCurveDoNotCount()
{
    QImage curve = evenPicture(QSize(256, 8), qRgb(10, 0, 0));
    for (int x = 0; x < curve.width(); ++x)
        curve.setPixel(x, 0, qRgb(180, 0, 0));
    QVERIFY(curve.save(userFolder() + u'/' + markerCurve));
    restart();
    QVERIFY2(std::abs(markerAtHalfWay() - 180) <= 1, qPrintable(QString::number(markerAtHalfWay())));
}

void tst_RendererAssets::pencilMatchesModelOnEvenPaper_data()
{
    QTest::addColumn<int>("tooth");
    QTest::addColumn<int>("grain");
    QTest::addColumn<double>("radius");
    QTest::addColumn<double>("scale");
    for (const double radius : {0.4, 1.0, 1.7, 2.3, 4.0, 7.3, 7.4, 12.0, 60.0}) {
        QTest::addRow("no grain, radius %.1f", radius) << 255 << 0 << radius << 1.0;
        QTest::addRow("half the tooth, radius %.1f", radius) << 128 << 0 << radius << 1.0;
        QTest::addRow("full grain, radius %.1f", radius) << 255 << 255 << radius << 1.0;
        QTest::addRow("tooth and grain, radius %.1f", radius) << 200 << 120 << radius << 1.0;
    }
    // Below and above the bounds of thin lines and of the rule for grain, which grow with the scale.
    for (const double scale : {0.5, 2.0}) {
        for (const double radius : {0.4, 1.7, 2.3, 7.3, 12.0, 20.0, 60.0})
            QTest::addRow("scale %.1f, radius %.1f", scale, radius) << 200 << 120 << radius << scale;
    }
}

void tst_RendererAssets::pencilMatchesModelOnEvenPaper()
{
    QFETCH(int, tooth);
    QFETCH(int, grain);
    QFETCH(double, radius);
    QFETCH(double, scale);
    QVERIFY(evenPicture(QSize(16, 16), qRgb(tooth, grain, 0)).save(userFolder() + u'/' + grainFile));
    restart();
    const TestSupport::StrokeEnd start{{70.3, 120.8}, 0.9, radius};
    const TestSupport::StrokeEnd end{{170.1, 70.4}, 0.9, radius};
    VertexStreams vertices;
    TestSupport::appendLine(vertices, {start.point / scale, start.opacity, radius / scale},
                            {end.point / scale, end.opacity, radius / scale});
    const CoverageModel model(0, scale, tooth / 255.0, grain / 255.0);
    const auto expected = [&](QPointF p) { return model.line(start, end, p); };
    VERIFY_WITHIN(TestSupport::compare(render(Tool::PenType::Pencil, vertices, scale), expected), 9.0, 1.0);
}

QTEST_MAIN(tst_RendererAssets)
#include "tst_rendererassets.moc"
