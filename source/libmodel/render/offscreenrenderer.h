#pragma once

#include "libmodel/tools/tool.h"

#include <QImage>
#include <QObject>
#include <QOpenGLFunctions>
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QSize>
#include <QString>
#include <QTransform>

#include <memory>

class QMatrix4x4;

namespace Model {

struct VertexStreams;

/// Turns the triangles of strokes into coverage images, on a private OpenGL context without a window.
///
///     VertexStreams -> multisampled framebuffer (GL_MAX blending) -> GL_R8 framebuffer -> QImage, one byte per pixel
///
/// All triangles of a stroke go into one draw call and each pixel keeps the highest coverage among them, so pieces that
/// overlap neither darken each other nor depend on their order. Opacity, softness, grain and anti-aliasing are the
/// shaders' work; compositing and colour are the caller's. The cost follows the rectangle asked for, not the
/// framebuffer.
///
/// There are two ways through it. renderPen() and renderEraser() draw into an image at once. beginWindow() and
/// takeWindow() let several drawings wait in small framebuffers until they are wanted, which is much faster where there
/// are many; and the same triangles under the same transform make the same bytes there, whatever part of a window is
/// asked for and whatever else is drawn.
///
/// One per process, GUI thread only. The context is made current by initialize() and stays current; nothing else in
/// the program may rely on that. Everything is destroyed together with the application object.
class OffscreenRenderer : public QObject, protected QOpenGLFunctions
{
    Q_OBJECT

public:
    /// What initialize() can be told to do otherwise than the machine would suggest.
    struct Options
    {
        /// False: softness curves are looked up in two-dimensional textures even where one-dimensional ones exist.
        bool allowTextures1D = true;
        /// False: triangles that cover no pixel are drawn as well, where they could be left out. Pixels are the same.
        bool leaveOutEmptyTriangles = true;
        /// The folder of the three shader sources.
        QString shaderFolder = QStringLiteral(":/shaders");
    };

    /// The renderer of this process, created at first use, not yet initialised.
    static OffscreenRenderer *instance();

    ~OffscreenRenderer() override;

    /// Creates the context, the textures and the program, and the framebuffers if \a size (pixels) is valid.
    ///
    /// Once that has succeeded, a further call only resizes. \return false if there is no usable OpenGL or a shader
    /// does not compile or link; errorString() tells which, rendering does nothing then, and another attempt may be
    /// made.
    bool initialize(QSize size, const Options &options);
    bool initialize(QSize size) { return initialize(size, Options()); }

    /// True from a successful initialize() on, until shutDown().
    [[nodiscard]] bool isInitialized() const;

    /// What made the last initialize() or resize() fail, the OpenGL log included; empty if nothing did.
    [[nodiscard]] QString errorString() const;

    /// Destroys all that initialize() made. It may be called again then, also with other options.
    void shutDown();

    /// Rebuilds both framebuffers for images of \a size (pixels). Does nothing for an invalid size or before
    /// initialize().
    ///
    /// They may come out larger (powers of two, where the driver has no others) or smaller (half, a quarter, ... where
    /// the driver can't make them); images larger than the framebuffers are rendered in tiles.
    void resize(QSize size);

    /// Size of the framebuffers in pixels; a null size if there are none.
    [[nodiscard]] QSize size() const;

    /// Draws nothing, with all the steps of a drawing, so that the driver compiles its programs now and not under the
    /// first stroke. Takes tens of milliseconds with a software driver: call it once the window shows.
    void warmUp();

    /// Draws \a vertices with the softness and grain of a pen into \a rect of \a image.
    ///
    /// \a image has one byte per pixel; what it held in \a rect (pixels of \a image, clipped to it) is replaced.
    /// \a textureOffset is the position of the image's top left in the grain, in grain texels times \a renderScale;
    /// \a renderScale, above 0, is image pixels per paper pixel and scales feather, spreads and grain alike. \a
    /// transform maps paper coordinates to pixels of \a image; it is affine. Not initialised: does nothing.
    void renderPen(QImage &image, Tool::PenType penType, QPoint textureOffset, float renderScale, QRect rect,
                   const QTransform &transform, const VertexStreams &vertices);

    /// As renderPen(), with the softness of an eraser. The image tells how much is erased, from 0 to 255.
    void renderEraser(QImage &image, Tool::EraserType eraserType, QPoint textureOffset, float renderScale, QRect rect,
                      const QTransform &transform, const VertexStreams &vertices);

    /// A drawing in a framebuffer of its own of windowSize().
    struct WindowPass
    {
        int style = 0;            ///< As styleOf() tells.
        QPoint textureOffset;     ///< Of the window's top left, as with renderPen().
        float renderScale = 1.0F; ///< As with renderPen().
        QRect rect;               ///< Pixels of the window that will be taken: within it, and not empty.
        QTransform transform;     ///< From paper coordinates to pixels of the window; affine.
    };

    /// What a WindowPass calls a pen or an eraser.
    [[nodiscard]] static int styleOf(Tool::PenType penType);
    [[nodiscard]] static int styleOf(Tool::EraserType eraserType);

    /// Size of a window in pixels, whatever size() is.
    [[nodiscard]] static QSize windowSize();

    /// How far the vertex shader moves the outline of a stroke out beyond its radius, in pixels.
    [[nodiscard]] static float feather(float renderScale);

    /// Opens a blank window that drawInWindow() draws in until the next one is opened. \return false if too many wait
    /// already, and where nothing can be drawn at all: isInitialized() is false, or there are no framebuffers.
    bool beginWindow(const WindowPass &pass);

    /// Draws \a vertices in the window that was opened last. May be called several times; each pixel keeps the highest
    /// coverage. With renderPen() or renderEraser() in between, the window is lost.
    void drawInWindow(const VertexStreams &vertices);

    /// Number of windows that were opened and not yet taken.
    [[nodiscard]] size_t waitingWindows() const;

    /// Takes what the oldest waiting window shows in its pass's rectangle, as an image (QImage::Format_Alpha8) of that
    /// size; null if none waits.
    QImage takeWindow();

private:
    OffscreenRenderer();

    struct Private;
    struct Job;

    bool createContext();
    bool createTextures(const Options &options);
    bool createPrograms(const Options &options);
    void buildFramebuffers(QSize size);
    void render(QImage &image, const Job &job);
    void beginStyle(int penIndex, float renderScale);
    void endStyle();
    void place(const QMatrix4x4 &projection, const QTransform &transform, QPointF grain);
    void renderTile(QImage &image, const Job &job, QPoint tile, QRect clipped);
    void draw(const VertexStreams &vertices);

    std::unique_ptr<Private> d;
};

} // namespace Model
