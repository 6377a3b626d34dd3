#include "libmodel/strokes/fittransform.h"

#include <QSizeF>

namespace Model {

namespace {

QTransform centered(QSizeF content, QSizeF frame)
{
    return QTransform::fromTranslate((frame.width() - content.width()) / 2.0,
                                     (frame.height() - content.height()) / 2.0);
}

QTransform scaled(QSize from, QSize to)
{
    return QTransform::fromScale(double(to.width()) / from.width(), double(to.height()) / from.height());
}

QTransform fitted(QSize from, QSize to, Qt::AspectRatioMode mode)
{
    // A very long frame would be fitted to no height at all, and what it shows could never be got back.
    const QSize content = from.scaled(to, mode).expandedTo({1, 1});
    return scaled(from, content) * centered(content, to);
}

} // namespace

QTransform fitTransform(QSize from, QSize to, MR::FitMode fitMode)
{
    if (from.isEmpty())
        return {};
    switch (fitMode) {
    case MR::FitMode::FitModeStretch:
        return scaled(from, to);
    case MR::FitMode::FitModeKeepAspect:
        return fitted(from, to, Qt::KeepAspectRatio);
    case MR::FitMode::FitModeKeepAspectByExpanding:
        return fitted(from, to, Qt::KeepAspectRatioByExpanding);
    case MR::FitMode::FitModeCropCenter:
        return centered(from, to);
    case MR::FitMode::FitModeIgnore:
        break;
    }
    return {};
}

} // namespace Model
