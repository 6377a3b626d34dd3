#pragma once

#include <QOpenGLTexture>

#include <memory>

class QImage;

namespace Model {

// Both need a current context, and so does the destruction of what they return.

/// A softness curve with all its mip levels, from the first row of \a picture. \a target has one or two dimensions.
std::unique_ptr<QOpenGLTexture> curveTexture(const QImage &picture, QOpenGLTexture::Target target);

/// The paper's grain, repeating in both directions, without mip levels.
std::unique_ptr<QOpenGLTexture> grainTexture(const QImage &picture);

} // namespace Model
