#include "libmodel/render/offscreenrenderer.h"

#include "libmodel/render/framebuffersizes.h"
#include "libmodel/render/rendererassets.h"
#include "libmodel/render/renderertextures.h"
#include "libmodel/render/vertexstreams.h"
#include "libmodel/render/wedgeculling.h"
#include "libmodel/render/windowring.h"

#include <QCoreApplication>
#include <QFile>
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
#include <cstring>
#include <vector>

namespace Model {

namespace {

constexpr float featherPerScale = 0.65F; // half the width of the soft edge, in paper pixels
constexpr int framebufferSamples = 4;
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

/// The shaders, linked, and where their variables are.
struct Program
{
    std::unique_ptr<QOpenGLShaderProgram> shaders;
    Locations at;
};

Locations locationsOf(const QOpenGLShaderProgram &program)
{
    Locations at;
    at.posAttr = program.attributeLocation("posAttr");
    at.colAttr = program.attributeLocation("colAttr");
    at.typeAttr = program.attributeLocation("typeAttr");
    at.projection = program.uniformLocation("projection");
    at.transform = program.uniformLocation("transform");
    at.renderScale = program.uniformLocation("renderScale");
    at.feather = program.uniformLocation("feather");
    at.penType = program.uniformLocation("pen_type");
    at.curveSoftness = program.uniformLocation("curve_softness");
    at.paperTexture = program.uniformLocation("paper_texture");
    at.paperTextureOffset = program.uniformLocation("paper_texture_offset");
    at.paperTextureSize = program.uniformLocation("paper_texture_size");
    return at;
}

/// The source of a shader without the pencil, whose look-ups a driver may do for every other pen as well.
QByteArray withoutPencil(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray source = file.readAll();
    return source.insert(source.indexOf('\n') + 1, "#define EVEN_PAPER\n");
}

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
    QMatrix4x4 projection;
    QSize requestedSize;
    std::vector<uchar> pixels; // what was read back last, bottom row first
    VertexStreams remaining;   // what was left of the vertices drawn last, for its memory

    // In the order in which they need each other; shutDown() goes the other way.
    std::unique_ptr<QOffscreenSurface> surface;
    std::unique_ptr<QOpenGLContext> context;
    Program pencil;
    Program allOthers; ///< The same pixels for any pen or eraser but the pencil, faster.
    Program *inUse = nullptr;
    std::vector<std::unique_ptr<QOpenGLTexture>> curves;
    std::unique_ptr<QOpenGLTexture> paperTexture;
    Framebuffer multisampleFbo;
    Framebuffer resolveFbo;
    // A small window onto the two above, for what fits in it: a driver's costs per pass grow with the framebuffer,
    // however little is drawn. It has no samples and needs no resolving: multisampling is off, so that all samples of a
    // pixel are equal anyway. Null where it would not be smaller.
    Framebuffer windowFbo;
    std::unique_ptr<WindowRing> windows;

    void destroyFramebuffers()
    {
        windows.reset();
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
    if (!createContext() || !createTextures(options) || !createPrograms(options)) {
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

bool OffscreenRenderer::createPrograms(const Options &options)
{
    const bool use1D = options.allowTextures1D && QOpenGLTexture::hasFeature(QOpenGLTexture::Texture1D);
    const QString vertexFile = options.shaderFolder + QStringLiteral("/anisotropic_scale.vert");
    const QString fragmentFile =
        options.shaderFolder +
        (use1D ? QStringLiteral("/anisotropic_scale.frag") : QStringLiteral("/anisotropic_scale_no_1D_textures.frag"));
    const auto addFragments = [&](QOpenGLShaderProgram &shaders, bool withPencil) {
        if (withPencil)
            return shaders.addShaderFromSourceFile(QOpenGLShader::Fragment, fragmentFile);
        return shaders.addShaderFromSourceCode(QOpenGLShader::Fragment, withoutPencil(fragmentFile));
    };
    const auto build = [&](Program &program, bool withPencil) {
        program.shaders = std::make_unique<QOpenGLShaderProgram>();
        QOpenGLShaderProgram &shaders = *program.shaders;
        const auto fail = [&](const QString &what) {
            d->error = tr("The shader program could not be built (%1): %2").arg(what, shaders.log().trimmed());
            return false;
        };
        if (!shaders.addShaderFromSourceFile(QOpenGLShader::Vertex, vertexFile))
            return fail(vertexFile);
        if (!addFragments(shaders, withPencil))
            return fail(fragmentFile);
        if (!shaders.link())
            return fail(tr("linking"));
        program.at = locationsOf(shaders);
        return true;
    };
    return build(d->pencil, true) && build(d->allOthers, false);
}

void OffscreenRenderer::shutDown()
{
    // Without their context current the objects could not be given back to it.
    if (d->context && d->surface && d->surface->isValid() && d->context->isValid())
        d->makeCurrent();
    d->destroyFramebuffers();
    d->paperTexture.reset();
    d->curves.clear();
    d->inUse = nullptr;
    d->allOthers = {};
    d->pencil = {};
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
    d->windows = std::make_unique<WindowRing>();
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
    if (built.width() > WindowRing::windowSize.width() || built.height() > WindowRing::windowSize.height()) {
        d->windowFbo = coverageFramebuffer(WindowRing::windowSize);
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
    for (const Tool::PenType pen : {Tool::PenType::Pencil, Tool::PenType::Marker})
        renderPen(image, pen, {}, 1.0F, image.rect(), {}, vertices);
}

void OffscreenRenderer::renderPen(QImage &image, Tool::PenType penType, QPoint textureOffset, float renderScale,
                                  QRect rect, const QTransform &transform, const VertexStreams &vertices)
{
    render(image, {styleOf(penType), textureOffset, renderScale, rect, transform, vertices});
}

void OffscreenRenderer::renderEraser(QImage &image, Tool::EraserType eraserType, QPoint textureOffset,
                                     float renderScale, QRect rect, const QTransform &transform,
                                     const VertexStreams &vertices)
{
    render(image, {styleOf(eraserType), textureOffset, renderScale, rect, transform, vertices});
}

void OffscreenRenderer::render(QImage &image, const Job &job)
{
    const QRect rect = job.rect & image.rect();
    if (rect.isEmpty() || image.depth() != 8 || !d->resolveFbo || !d->makeCurrent())
        return;

    beginStyle(job.penIndex, job.renderScale);
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
    endStyle();
}

void OffscreenRenderer::beginStyle(int penIndex, float renderScale)
{
    d->inUse = penIndex == styleOf(Tool::PenType::Pencil) ? &d->pencil : &d->allOthers;
    const Locations &at = d->inUse->at;
    QOpenGLShaderProgram &shaders = *d->inUse->shaders;
    const int lastCurve = static_cast<int>(d->curves.size()) - 1;
    shaders.bind();
    d->curves[static_cast<size_t>(std::clamp(penIndex, 0, lastCurve))]->bind(curveUnit);
    d->paperTexture->bind(paperUnit);
    shaders.setUniformValue(at.curveSoftness, curveUnit);
    shaders.setUniformValue(at.paperTexture, paperUnit);
    shaders.setUniformValue(at.feather, feather(renderScale));
    shaders.setUniformValue(at.renderScale, renderScale);
    shaders.setUniformValue(at.penType, penIndex);
    shaders.setUniformValue(at.paperTextureSize, QSizeF(d->paperTexture->width(), d->paperTexture->height()));
    glBlendEquation(GL_MAX);
    for (const int attribute : {at.posAttr, at.colAttr, at.typeAttr})
        shaders.enableAttributeArray(attribute);
}

void OffscreenRenderer::endStyle()
{
    const Locations &at = d->inUse->at;
    for (const int attribute : {at.posAttr, at.colAttr, at.typeAttr})
        d->inUse->shaders->disableAttributeArray(attribute);
    d->inUse->shaders->release();
}

void OffscreenRenderer::place(const QMatrix4x4 &projection, const QTransform &transform, QPointF grain)
{
    const Locations &at = d->inUse->at;
    QOpenGLShaderProgram &shaders = *d->inUse->shaders;
    shaders.setUniformValue(at.projection, projection);
    shaders.setUniformValue(at.transform, QMatrix4x4(transform));
    shaders.setUniformValue(at.paperTextureOffset, grain);
}

void OffscreenRenderer::renderTile(QImage &image, const Job &job, QPoint tile, QRect clipped)
{
    const QSize full = size();
    const QRect local = clipped.translated(-tile);
    // OpenGL counts rows from the bottom of the framebuffer.
    const QPoint corner(local.left(), full.height() - local.bottom() - 1);
    const bool fitsWindow = d->windowFbo && local.width() < WindowRing::windowSize.width() &&
                            local.height() < WindowRing::windowSize.height();
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
    place(d->projection, toTile, grain);

    drawn->bind();
    glViewport(-origin.x(), -origin.y(), full.width(), full.height());
    glScissor(area.x(), area.y(), area.width(), area.height());
    glClear(GL_COLOR_BUFFER_BIT);
    const PixelWindow window{QPointF(toTile.dx(), toTile.dy()), feather(job.renderScale), local};
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

int OffscreenRenderer::styleOf(Tool::PenType penType)
{
    return static_cast<int>(penType);
}

int OffscreenRenderer::styleOf(Tool::EraserType eraserType)
{
    return static_cast<int>(eraserType) + firstEraserIndex;
}

QSize OffscreenRenderer::windowSize()
{
    return WindowRing::windowSize;
}

float OffscreenRenderer::feather(float renderScale)
{
    return renderScale * featherPerScale;
}

// What the pixels of a stroke come out as must depend on nothing but the pass: so the viewport is always the whole
// window, and only the scissor follows the rectangle that is asked for.
bool OffscreenRenderer::beginWindow(const WindowPass &pass)
{
    if (!d->windows || !d->makeCurrent() || !d->windows->begin(pass.rect))
        return false;
    const QSize window = windowSize();
    beginStyle(pass.style, pass.renderScale);
    QMatrix4x4 projection;
    projection.ortho(QRectF(QPointF(0, 0), window));
    // The grain is where it would be in the full framebuffers, which is counted from their lower edge.
    const QPointF grain(pass.textureOffset.x(), pass.textureOffset.y() + window.height() - size().height());
    place(projection, pass.transform, grain);
    glViewport(0, 0, window.width(), window.height());
    glScissor(pass.rect.left(), window.height() - pass.rect.bottom() - 1, pass.rect.width(), pass.rect.height());
    return true;
}

void OffscreenRenderer::drawInWindow(const VertexStreams &vertices)
{
    if (!vertices.isEmpty() && waitingWindows() > 0)
        draw(vertices);
}

size_t OffscreenRenderer::waitingWindows() const
{
    return d->windows ? d->windows->waiting() : 0;
}

QImage OffscreenRenderer::takeWindow()
{
    if (waitingWindows() == 0)
        return {};
    if (!d->makeCurrent()) {
        // Should the context come back, what waits now must not be taken for what is drawn then.
        d->windows->forget();
        return {};
    }
    QImage image = d->windows->take();
    if (waitingWindows() == 0)
        endStyle();
    return image;
}

void OffscreenRenderer::draw(const VertexStreams &vertices)
{
    const Locations &at = d->inUse->at;
    QOpenGLShaderProgram &shaders = *d->inUse->shaders;
    shaders.setAttributeArray(at.posAttr, vertices.positions.data(), VertexStreams::positionFloats);
    shaders.setAttributeArray(at.colAttr, vertices.attributes.data(), VertexStreams::attributeFloats);
    shaders.setAttributeArray(at.typeAttr, vertices.types.data(), VertexStreams::typeFloats);
    glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(vertices.vertexCount()));
}

} // namespace Model
