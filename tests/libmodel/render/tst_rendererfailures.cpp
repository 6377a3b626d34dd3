#include "libmodel/render/offscreenrenderer.h"
#include "support/glfixture.h"
#include "support/handmadestrokes.h"

#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTransform>

#include <memory>

using Model::OffscreenRenderer;

namespace {

constexpr QSize frame(64, 48);

/// An application object for one test, on a platform of its choice.
class Application
{
public:
    explicit Application(const char *platform)
    {
        qputenv("QT_QPA_PLATFORM", platform);
        m_application = std::make_unique<QGuiApplication>(m_count, m_arguments);
    }

    ~Application() { m_application.reset(); }

private:
    int m_count = 1;
    char m_name[5] = "test";
    char *m_arguments[2] = {m_name, nullptr};
    std::unique_ptr<QGuiApplication> m_application;
};

OffscreenRenderer::Options shadersFrom(const QTemporaryDir &folder)
{
    OffscreenRenderer::Options options;
    options.shaderFolder = folder.path();
    return options;
}

void write(const QTemporaryDir &folder, const char *name, const QByteArray &text)
{
    QFile file(folder.filePath(QString::fromLatin1(name)));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), text.size());
}

constexpr const char *simpleVertexShader =
    "#version 120\nattribute vec4 posAttr;\nvoid main() { gl_Position = posAttr; }\n";

bool drawsSomething()
{
    QImage image(frame, QImage::Format_Alpha8);
    image.fill(0);
    const QImage before = image.copy();
    Model::VertexStreams vertices;
    TestSupport::appendDot(vertices, {{30, 20}, 1.0, 10});
    OffscreenRenderer::instance()->renderPen(image, Model::Tool::PenType::Brush, {}, 1.0F, image.rect(), {}, vertices);
    return image != before;
}

} // namespace

/// What goes wrong is told, harms nothing, and can be tried again. Each test has an application object of its own.
class tst_RendererFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestSupport::registerModelResources(); }

    void platformWithoutOpenGLIsReported();
    void missingShaderIsReported();
    void shaderThatDoesNotCompileIsReportedWithItsLog();
    void programThatDoesNotLinkIsReported();
    void failureLeavesNothingHalfMade();
    void rendererEndsWithTheApplication();
};

void tst_RendererFailures::platformWithoutOpenGLIsReported()
{
    const Application application("minimal");
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("PlatformOpenGLContext")));
    QVERIFY(!renderer->initialize(frame));
    QVERIFY(!renderer->isInitialized());
    QVERIFY2(renderer->errorString().contains(QLatin1String("OpenGL")), qPrintable(renderer->errorString()));
    QCOMPARE(renderer->size(), QSize(0, 0));
    QVERIFY(!drawsSomething());
}

void tst_RendererFailures::missingShaderIsReported()
{
    const Application application("xcb");
    const QTemporaryDir empty;
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Unable to open file")));
    QVERIFY(!renderer->initialize(frame, shadersFrom(empty)));
    QVERIFY(renderer->errorString().contains(QLatin1String("anisotropic_scale.vert")));
    QVERIFY(!drawsSomething());
}

void tst_RendererFailures::shaderThatDoesNotCompileIsReportedWithItsLog()
{
    const Application application("xcb");
    const QTemporaryDir folder;
    write(folder, "anisotropic_scale.vert", simpleVertexShader);
    write(folder, "anisotropic_scale.frag", "#version 120\nvoid main() { gl_FragColor = undeclaredName; }\n");
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("QOpenGLShader::compile")));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Problematic Fragment shader")));
    QVERIFY(!renderer->initialize(frame, shadersFrom(folder)));
    QVERIFY(!renderer->isInitialized());
    const QString error = renderer->errorString();
    QVERIFY2(error.contains(QLatin1String("anisotropic_scale.frag")), qPrintable(error));
    QVERIFY2(error.contains(QLatin1String("undeclaredName")), qPrintable(error));
}

void tst_RendererFailures::programThatDoesNotLinkIsReported()
{
    const Application application("xcb");
    const QTemporaryDir folder;
    write(folder, "anisotropic_scale.vert", simpleVertexShader);
    write(folder, "anisotropic_scale.frag",
          "#version 120\nvarying vec3 neverWritten;\nvoid main() { gl_FragColor = vec4(neverWritten, 1.0); }\n");
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("QOpenGLShader::link")));
    QVERIFY(!renderer->initialize(frame, shadersFrom(folder)));
    QVERIFY2(renderer->errorString().contains(QLatin1String("neverWritten")), qPrintable(renderer->errorString()));
}

void tst_RendererFailures::failureLeavesNothingHalfMade()
{
    const Application application("xcb");
    const QTemporaryDir empty;
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Unable to open file")));
    QVERIFY(!renderer->initialize(frame, shadersFrom(empty)));
    QVERIFY2(renderer->initialize(frame), qPrintable(renderer->errorString()));
    QVERIFY(renderer->errorString().isEmpty());
    QVERIFY(drawsSomething());
}

void tst_RendererFailures::rendererEndsWithTheApplication()
{
    {
        const Application application("xcb");
        QVERIFY(OffscreenRenderer::instance()->initialize(frame));
    }
    const Application application("xcb");
    QVERIFY(!OffscreenRenderer::instance()->isInitialized());
    QVERIFY(OffscreenRenderer::instance()->initialize(frame));
    QVERIFY(drawsSomething());
}

QTEST_APPLESS_MAIN(tst_RendererFailures)
#include "tst_rendererfailures.moc"
