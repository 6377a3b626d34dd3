#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

#include <memory>
#include <vector>

class QOpenGLFramebufferObject;

namespace Model {

/// Small framebuffers for drawings that are read back later, so that a driver can work on some of them at a time.
///
///     begin() -> draw -> begin() -> draw -> ... -> take() -> take() -> ...
///
/// First in, first out. They are of one byte per pixel, have no samples and are made when they are first needed. Every
/// call needs a current context, always the same one, and so does the destructor.
class WindowRing
{
public:
    /// Size of a window in pixels.
    static constexpr QSize windowSize{256, 256};
    /// As many drawings can wait at a time. Enough to keep a driver busy; all of them together take 2 MB.
    static constexpr size_t capacity = 32;

    WindowRing();
    ~WindowRing();

    /// Binds a free window, cleared; what is drawn in it next will be read from \a rect, whose rows are counted from
    /// the top and which is not empty. \return false if none is free or none can be made.
    bool begin(QRect rect);

    /// Number of drawings that wait to be taken.
    [[nodiscard]] size_t waiting() const { return m_rects.size() - m_taken; }

    /// Reads the oldest drawing that waits, waiting for the driver where it is not done. \return its rectangle, as a
    /// coverage image; null if nothing waits.
    QImage take();

    /// Nothing waits any more. Needs no context.
    void forget();

private:
    std::vector<std::unique_ptr<QOpenGLFramebufferObject>> m_windows;
    /// What was asked for since the ring was last empty; those of the windows of the same index.
    std::vector<QRect> m_rects;
    size_t m_taken = 0;
    std::vector<uchar> m_pixels; ///< What was read last, bottom row first.
};

} // namespace Model
