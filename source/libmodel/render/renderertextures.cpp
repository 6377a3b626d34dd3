#include "libmodel/render/renderertextures.h"

#include <QImage>

#include <algorithm>

namespace Model {

namespace {

/// Half of a row of RGBA pixels: the means of its pairs.
QImage halved(const QImage &row)
{
    QImage half(std::max(row.width() / 2, 1), 1, row.format());
    constexpr int channels = 4;
    const uchar *from = row.constBits();
    uchar *to = half.bits();
    for (int i = 0; i < half.width() * channels; ++i) {
        const int first = i / channels * 2 * channels + i % channels;
        to[i] = static_cast<uchar>((from[first] + from[first + channels] + 1) / 2);
    }
    return half;
}

} // namespace

std::unique_ptr<QOpenGLTexture> curveTexture(const QImage &picture, QOpenGLTexture::Target target)
{
    // The mip levels are made here: a driver may have to compile a program for it, which takes longer than all else at
    // the start. One row only, whatever a user's picture has: the shader looks nowhere else.
    QImage row = picture.copy(0, 0, picture.width(), 1).convertToFormat(QImage::Format_RGBA8888);
    auto texture = std::make_unique<QOpenGLTexture>(target);
    texture->setAutoMipMapGenerationEnabled(false);
    texture->setFormat(QOpenGLTexture::RGBA8_UNorm);
    texture->setSize(row.width(), 1);
    texture->setMipLevels(texture->maximumMipLevels());
    texture->allocateStorage(QOpenGLTexture::RGBA, QOpenGLTexture::UInt8);
    for (int level = 0; level < texture->mipLevels(); ++level) {
        texture->setData(level, QOpenGLTexture::RGBA, QOpenGLTexture::UInt8, row.constBits());
        if (row.width() > 1)
            row = halved(row);
    }
    texture->setMinMagFilters(QOpenGLTexture::LinearMipMapLinear, QOpenGLTexture::Linear);
    texture->setWrapMode(QOpenGLTexture::ClampToEdge);
    return texture;
}

std::unique_ptr<QOpenGLTexture> grainTexture(const QImage &picture)
{
    auto texture = std::make_unique<QOpenGLTexture>(QOpenGLTexture::Target2D);
    texture->setData(picture, QOpenGLTexture::DontGenerateMipMaps);
    texture->setMinMagFilters(QOpenGLTexture::Linear, QOpenGLTexture::Linear);
    texture->setWrapMode(QOpenGLTexture::Repeat);
    return texture;
}

} // namespace Model
