#include "libmodel/render/windowring.h"

#include <QOpenGLContext>
#include <QOpenGLExtraFunctions>
#include <QOpenGLFramebufferObject>

#include <cstring>

namespace Model {

WindowRing::WindowRing() = default;

WindowRing::~WindowRing() = default;

bool WindowRing::begin(QRect rect)
{
    const size_t next = m_rects.size();
    if (next == capacity)
        return false;
    if (next == m_windows.size()) {
        auto window = std::make_unique<QOpenGLFramebufferObject>(windowSize, QOpenGLFramebufferObject::NoAttachment,
                                                                 GL_TEXTURE_2D, GL_R8);
        if (!window->isValid())
            return false;
        m_windows.push_back(std::move(window));
    }
    m_windows[next]->bind();
    m_rects.push_back(rect);
    // All of it: a driver clears a whole framebuffer in passing, but draws a rectangle to clear a part.
    QOpenGLFunctions *gl = QOpenGLContext::currentContext()->functions();
    gl->glDisable(GL_SCISSOR_TEST);
    gl->glClear(GL_COLOR_BUFFER_BIT);
    gl->glEnable(GL_SCISSOR_TEST);
    return true;
}

QImage WindowRing::take()
{
    if (waiting() == 0)
        return {};
    const QRect rect = m_rects[m_taken];
    QOpenGLFramebufferObject &window = *m_windows[m_taken];
    if (++m_taken == m_rects.size()) {
        m_rects.clear();
        m_taken = 0;
    }

    const auto width = static_cast<size_t>(rect.width());
    m_pixels.resize(width * static_cast<size_t>(rect.height()));
    QOpenGLExtraFunctions *gl = QOpenGLContext::currentContext()->extraFunctions();
    window.bind();
    gl->glReadBuffer(GL_COLOR_ATTACHMENT0);
    gl->glPixelStorei(GL_PACK_ALIGNMENT, 1);
    // OpenGL counts rows from the bottom of the framebuffer.
    gl->glReadPixels(rect.left(), windowSize.height() - rect.bottom() - 1, rect.width(), rect.height(), GL_RED,
                     GL_UNSIGNED_BYTE, m_pixels.data());
    window.release();

    QImage image(rect.size(), QImage::Format_Alpha8);
    const uchar *row = m_pixels.data();
    for (int y = rect.height() - 1; y >= 0; --y, row += width)
        std::memcpy(image.scanLine(y), row, width);
    return image;
}

void WindowRing::forget()
{
    m_rects.clear();
    m_taken = 0;
}

} // namespace Model
