#pragma once

#include "libmodel/strokes/compoundstroke.h"

#include <QImage>

namespace Model {

struct CompoundStroke::Private
{
    std::vector<std::unique_ptr<Stroke>> strokes;
    QRect boundingRect;
    QPainterPath cutPath;
    QPainterPath keepPath;
    QTransform transform;
    /// Made by wrap() rather than added by append(): such a compound may be taken apart again, no user knows of it.
    bool isWrapper = false;
    /// See CompoundStroke::picture().
    QImage picture;
    QRect pictureRect;
};

} // namespace Model
