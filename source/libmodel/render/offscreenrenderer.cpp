#include "libmodel/render/offscreenrenderer.h"

#include "libmodel/render/framebuffersizes.h"
#include "libmodel/render/rendererassets.h"
#include "libmodel/render/renderertextures.h"
#include "libmodel/render/vertexstreams.h"
#include "libmodel/render/wedgeculling.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QImage>
#include <QMatrix4x4>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLExtraFunctions>
#include <QOpenGLFramebufferObject>
#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>
#include <QTransform>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace Model {

namespace {

constexpr float featherPerScale = 0.65F; // half the width of the soft edge, in paper pixels
constexpr int framebufferSamples = 4;
constexpr QSize windowSize(256, 256);
constexpr int firstEraserIndex = 3;
constexpr GLuint curveUnit = 0;
constexpr GLuint paperUnit = 1;

OffscreenRenderer *theRenderer = nullptr;

// The textures and the context need the platform, which is gone once the application object is.
void destroyRenderer()
{
    delete theRenderer;
    theRenderer = nullptr;
}

struct Locations
{
    int posAttr = -1;
    int colAttr = -1;
    int typeAttr = -1;
    int projection = -1;
    int transform = -1;
    int renderScale = -1;
    int feather = -1;
    int penType = -1;
    int curveSoftness = -1;
    int paperTexture = -1;
    int paperTextureOffset = -1;
    int paperTextureSize = -1;
};

using Framebuffer = std::unique_ptr<QOpenGLFramebufferObject>;

/// One byte per pixel, readable and drawable.
Framebuffer coverageFramebuffer(QSize size)
{
    return std::make_unique<QOpenGLFramebufferObject>(size, QOpenGLFramebufferObject::NoAttachment, GL_TEXTURE_2D,
                                                      GL_R8);
}

Framebuffer multisampleFramebuffer(QSize size)
{
    QOpenGLFramebufferObjectFormat format;
    format.setSamples(framebufferSamples);
    format.setAttachment(QOpenGLFramebufferObject::Depth);
    return std::make_unique<QOpenGLFramebufferObject>(size, format);
}

} // namespace

struct OffscreenRenderer::Private
{
    bool initialized = false;
    bool leavesOutEmptyTriangles = true;
    QString error;
    Locations locations;
    QMatrix4x4 projection;
    QSize requestedSize;
    std::vector<uchar> pixels; // what was read back last, bottom row first
    VertexStreams remaining;   // what was left of the vertices drawn last, for its memory

    // In the order in which they need each other; shutDown() goes the other way.
    std::unique_ptr<QOffscreenSurface> surface;
    std::unique_ptr<QOpenGLContext> context;
    std::unique_ptr<QOpenGLShaderProgram> program;
    std::vector<std::unique_ptr<QOpenGLTexture>> curves;
    std::unique_ptr<QOpenGLTexture> paperTexture;
    Framebuffer multisampleFbo;
    Framebuffer resolveFbo;
    // A small window onto the two above, for what fits in it: a driver's costs per pass grow with the framebuffer,
    // however little is drawn. It has no samples and needs no resolving: multisampling is off, so that all samples of a
    // pixel are equal anyway. Null where it would not be smaller.
    Framebuffer windowFbo;

    void destroyFramebuffers()
    {
        windowFbo.reset();
        resolveFbo.reset();
        multisampleFbo.reset();
    }

    /// False if the context was lost or its surface has gone.
    bool makeCurrent() const
    {
        return QOpenGLContext::currentContext() == context.get() || context->makeCurrent(surface.get());
    }
};

/// What one call of renderPen() or renderEraser() asks for.
struct OffscreenRenderer::Job
{
    int penIndex;
    QPoint textureOffset;
    float renderScale;
    QRect rect;
    const QTransform &transform;
    const VertexStreams &vertices;
};

OffscreenRenderer *OffscreenRenderer::instance()
{
    if (!theRenderer) {
        theRenderer = new OffscreenRenderer;
        qAddPostRoutine(destroyRenderer);
    }
    return theRenderer;
}

OffscreenRenderer::OffscreenRenderer() : d(std::make_unique<Private>())
{
}

OffscreenRenderer::~OffscreenRenderer()
{
    shutDown();
}

bool OffscreenRenderer::isInitialized() const
{
    return d->initialized;
}

QString OffscreenRenderer::errorString() const
{
    return d->error;
}

QSize OffscreenRenderer::size() const
{
    return d->resolveFbo ? d->resolveFbo->size() : QSize(0, 0);
}

bool OffscreenRenderer::initialize(QSize size, const Options &options)
{
    if (d->initialized) {
        resize(size);
        return true;
    }
    d->error.clear();
    if (!createContext() || !createTextures(options) || !createProgram(options)) {
        const QString reason = d->error;
        shutDown();
        d->error = reason;
        return false;
    }
    glDisable(GL_MULTISAMPLE); // the fragment shader does the anti-aliasing
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_DITHER);
    glClearColor(0, 0, 0, 0);
    glEnable(GL_BLEND);
    glBlendEquation(GL_MAX);
    glEnable(GL_SCISSOR_TEST);
    d->initialized = true;
    d->leavesOutEmptyTriangles = options.leaveOutEmptyTriangles;
    resize(size);
    return true;
}

bool OffscreenRenderer::createContext()
{
    d->context = std::make_unique<QOpenGLContext>();
    if (!d->context->create()) {
        d->error = tr("No OpenGL context could be created.");
        return false;
    }
    d->surface = std::make_unique<QOffscreenSurface>(QGuiApplication::primaryScreen());
    d->surface->setFormat(d->context->format());
    d->surface->create();
    if (!d->surface->isValid() || !d->context->makeCurrent(d->surface.get())) {
        d->error = tr("The OpenGL context could not be made current on an offscreen surface.");
        return false;
    }
    initializeOpenGLFunctions();
    if (!QOpenGLFramebufferObject::hasOpenGLFramebufferObjects() ||
        !QOpenGLFramebufferObject::hasOpenGLFramebufferBlit()) {
        d->error = tr("OpenGL has no framebuffer objects that can be copied (%1).")
                       .arg(QString::fromLatin1(reinterpret_cast<const char *>(glGetString(GL_VERSION))));
        return false;
    }
    return true;
}

bool OffscreenRenderer::createTextures(const Options &options)
{
    const bool use1D = options.allowTextures1D && QOpenGLTexture::hasFeature(QOpenGLTexture::Texture1D);
    const auto target = use1D ? QOpenGLTexture::Target1D : QOpenGLTexture::Target2D;
    GLint maximumSide = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maximumSide);

    const auto load = [this, maximumSide](const char *file) {
        const QString name = QString::fromLatin1(file);
        QImage picture = loadRendererImage(name, maximumSide);
        if (picture.isNull())
            d->error = tr("The picture \"%1\" could not be loaded.").arg(name);
        return picture;
    };
    for (const char *file : softnessCurveFiles) {
        const QImage picture = load(file);
        if (picture.isNull())
            return false;
        d->curves.push_back(curveTexture(picture, target));
    }
    const QImage grain = load(paperTextureFile);
    if (grain.isNull())
        return false;
    d->paperTexture = grainTexture(grain);
    return true;
}

bool OffscreenRenderer::createProgram(const Options &options)
{
    const bool use1D = options.allowTextures1D && QOpenGLTexture::hasFeature(QOpenGLTexture::Texture1D);
    const QString vertexShader = options.shaderFolder + QStringLiteral("/anisotropic_scale.vert");
    const QString fragmentShader =
        options.shaderFolder +
        (use1D ? QStringLiteral("/anisotropic_scale.frag") : QStringLiteral("/anisotropic_scale_no_1D_textures.frag"));

    d->program = std::make_unique<QOpenGLShaderProgram>();
    const auto fail = [this](const QString &what) {
        d->error = tr("The shader program could not be built (%1): %2").arg(what, d->program->log().trimmed());
        return false;
    };
    if (!d->program->addShaderFromSourceFile(QOpenGLShader::Vertex, vertexShader))
        return fail(vertexShader);
    if (!d->program->addShaderFromSourceFile(QOpenGLShader::Fragment, fragmentShader))
        return fail(fragmentShader);
    if (!d->program->link())
        return fail(tr("linking"));

    Locations &at = d->locations;
    at.posAttr = d->program->attributeLocation("posAttr");
    at.colAttr = d->program->attributeLocation("colAttr");
    at.typeAttr = d->program->attributeLocation("typeAttr");
    at.projection = d->program->uniformLocation("projection");
    at.transform = d->program->uniformLocation("transform");
    at.renderScale = d->program->uniformLocation("renderScale");
    at.feather = d->program->uniformLocation("feather");
    at.penType = d->program->uniformLocation("pen_type");
    at.curveSoftness = d->program->uniformLocation("curve_softness");
    at.paperTexture = d->program->uniformLocation("paper_texture");
    at.paperTextureOffset = d->program->uniformLocation("paper_texture_offset");
    at.paperTextureSize = d->program->uniformLocation("paper_texture_size");
    return true;
}

void OffscreenRenderer::shutDown()
{
    // Without their context current the objects could not be given back to it.
    if (d->context && d->surface && d->surface->isValid() && d->context->isValid())
        d->makeCurrent();
    d->destroyFramebuffers();
    d->paperTexture.reset();
    d->curves.clear();
    d->program.reset();
    if (d->context && QOpenGLContext::currentContext() == d->context.get())
        d->context->doneCurrent();
    d->context.reset();
    d->surface.reset();
    d->requestedSize = QSize();
    d->error.clear();
    d->initialized = false;
}

void OffscreenRenderer::resize(QSize size)
{
    if (!d->initialized || !size.isValid() || size.isEmpty() || size == d->requestedSize || !d->makeCurrent())
        return;
    d->requestedSize = size;
    d->error.clear();
    buildFramebuffers(size);
    if (!d->resolveFbo) {
        d->error = tr("No framebuffer could be made for %1 x %2 pixels.").arg(size.width()).arg(size.height());
        return;
    }
    const QSize built = d->resolveFbo->size();
    d->projection.setToIdentity();
    d->projection.ortho(QRectF(0, 0, built.width(), built.height()));
}

void OffscreenRenderer::buildFramebuffers(QSize size)
{
    d->destroyFramebuffers();

    GLint maximumTexture = 0;
    GLint maximumBuffer = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maximumTexture);
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &maximumBuffer);
    const int maximumSide = std::min(maximumTexture, maximumBuffer);

    const bool anySize = d->context->hasExtension(QByteArrayLiteral("GL_ARB_texture_non_power_of_two"));
    const QSize built = largestBuildableSize(preferredFramebufferSize(size, anySize), [&](QSize candidate) {
        if (candidate.width() > maximumSide || candidate.height() > maximumSide)
            return false;
        d->multisampleFbo = multisampleFramebuffer(candidate);
        d->resolveFbo = coverageFramebuffer(candidate);
        if (d->multisampleFbo->isValid() && d->resolveFbo->isValid())
            return true;
        d->destroyFramebuffers();
        return false;
    });
    if (built.width() > windowSize.width() || built.height() > windowSize.height()) {
        d->windowFbo = coverageFramebuffer(windowSize);
        if (!d->windowFbo->isValid())
            d->windowFbo.reset();
    }
}

void OffscreenRenderer::warmUp()
{
    // One triangle without an area in one pixel: the driver prepares as much as for a drawing.
    constexpr size_t vertexCount = 3;
    VertexStreams vertices;
    vertices.positions.assign(vertexCount * VertexStreams::positionFloats, 0.0F);
    vertices.attributes.assign(vertexCount * VertexStreams::attributeFloats, 0.0F);
    vertices.types.assign(vertexCount * VertexStreams::typeFloats, 0.0F);
    QImage image(1, 1, QImage::Format_Alpha8);
    renderPen(image, Tool::PenType::Pencil, {}, 1.0F, image.rect(), {}, vertices);
}

void OffscreenRenderer::renderPen(QImage &image, Tool::PenType penType, QPoint textureOffset, float renderScale,
                                  QRect rect, const QTransform &transform, const VertexStreams &vertices)
{
    render(image, {static_cast<int>(penType), textureOffset, renderScale, rect, transform, vertices});
}

void OffscreenRenderer::renderEraser(QImage &image, Tool::EraserType eraserType, QPoint textureOffset,
                                     float renderScale, QRect rect, const QTransform &transform,
                                     const VertexStreams &vertices)
{
    const int penIndex = static_cast<int>(eraserType) + firstEraserIndex;
    render(image, {penIndex, textureOffset, renderScale, rect, transform, vertices});
}

void OffscreenRenderer::render(QImage &image, const Job &job)
{
    const QRect rect = job.rect & image.rect();
    if (rect.isEmpty() || image.depth() != 8 || !d->resolveFbo || !d->makeCurrent())
        return;

    const Locations &at = d->locations;
    QOpenGLShaderProgram &program = *d->program;
    const int lastCurve = static_cast<int>(d->curves.size()) - 1;
    program.bind();
    d->curves[static_cast<size_t>(std::clamp(job.penIndex, 0, lastCurve))]->bind(curveUnit);
    d->paperTexture->bind(paperUnit);
    program.setUniformValue(at.curveSoftness, curveUnit);
    program.setUniformValue(at.paperTexture, paperUnit);
    program.setUniformValue(at.feather, job.renderScale * featherPerScale);
    program.setUniformValue(at.renderScale, job.renderScale);
    program.setUniformValue(at.penType, job.penIndex);
    program.setUniformValue(at.paperTextureSize, QSizeF(d->paperTexture->width(), d->paperTexture->height()));
    program.setUniformValue(at.projection, d->projection);
    glBlendEquation(GL_MAX);

    const std::array attributes = {at.posAttr, at.colAttr, at.typeAttr};
    for (const int attribute : attributes)
        program.enableAttributeArray(attribute);

    const QSize tile = size();
    const int rows = tileCount(image.height(), tile.height());
    const int columns = tileCount(image.width(), tile.width());
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const QPoint origin(column * tile.width(), row * tile.height());
            if (const QRect clipped = rect & QRect(origin, tile); !clipped.isEmpty())
                renderTile(image, job, origin, clipped);
        }
    }

    for (const int attribute : attributes)
        program.disableAttributeArray(attribute);
    program.release();
}

void OffscreenRenderer::renderTile(QImage &image, const Job &job, QPoint tile, QRect clipped)
{
    const QSize full = size();
    const QRect local = clipped.translated(-tile);
    // OpenGL counts rows from the bottom of the framebuffer.
    const QPoint corner(local.left(), full.height() - local.bottom() - 1);
    const bool fitsWindow = d->windowFbo && local.width() < windowSize.width() && local.height() < windowSize.height();
    QOpenGLFramebufferObject *drawn = fitsWindow ? d->windowFbo.get() : d->multisampleFbo.get();
    QOpenGLFramebufferObject *resolved = fitsWindow ? d->windowFbo.get() : d->resolveFbo.get();

    // The window shows the full framebuffer's pixels from its origin on: same projection, moved viewport. The grain is
    // looked up by the window's pixels, so it is moved back. The move is even, because derivatives, and with them the
    // level of detail of a curve, come from blocks of 2 x 2 pixels: a pixel must look the same whatever part of the
    // image is drawn.
    const QPoint origin = fitsWindow ? QPoint(corner.x() & ~1, corner.y() & ~1) : QPoint(0, 0);
    const QRect area(corner - origin, local.size());
    const QPointF grain(job.textureOffset.x() + origin.x(), job.textureOffset.y() - origin.y());
    const QTransform toTile = job.transform * QTransform::fromTranslate(-tile.x(), -tile.y());
    d->program->setUniformValue(d->locations.transform, QMatrix4x4(toTile));
    d->program->setUniformValue(d->locations.paperTextureOffset, grain);

    drawn->bind();
    glViewport(-origin.x(), -origin.y(), full.width(), full.height());
    glScissor(area.x(), area.y(), area.width(), area.height());
    glClear(GL_COLOR_BUFFER_BIT);
    const PixelWindow window{QPointF(toTile.dx(), toTile.dy()), job.renderScale * featherPerScale, local};
    const bool movesOnly = toTile.type() <= QTransform::TxTranslate;
    if (d->leavesOutEmptyTriangles && movesOnly && leaveOutEmptyWedges(job.vertices, window, d->remaining))
        draw(d->remaining);
    else
        draw(job.vertices);
    if (drawn != resolved) {
        drawn->release();
        QOpenGLFramebufferObject::blitFramebuffer(resolved, area, drawn, area, GL_COLOR_BUFFER_BIT, GL_NEAREST);
        resolved->bind();
    }

    const size_t width = static_cast<size_t>(area.width());
    d->pixels.resize(width * static_cast<size_t>(area.height()));
    d->context->extraFunctions()->glReadBuffer(GL_COLOR_ATTACHMENT0);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(area.x(), area.y(), area.width(), area.height(), GL_RED, GL_UNSIGNED_BYTE, d->pixels.data());
    resolved->release();

    const uchar *row = d->pixels.data();
    for (int y = clipped.bottom(); y >= clipped.top(); --y, row += width)
        std::memcpy(image.scanLine(y) + clipped.left(), row, width);
}

void OffscreenRenderer::draw(const VertexStreams &vertices)
{
    const Locations &at = d->locations;
    d->program->setAttributeArray(at.posAttr, vertices.positions.data(), VertexStreams::positionFloats);
    d->program->setAttributeArray(at.colAttr, vertices.attributes.data(), VertexStreams::attributeFloats);
    d->program->setAttributeArray(at.typeAttr, vertices.types.data(), VertexStreams::typeFloats);
    glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(vertices.vertexCount()));
}

} // namespace Model
