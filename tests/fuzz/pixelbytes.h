#pragma once

#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"

namespace TestSupport {

/// The bytes of all pixels that \a compound and what is in it hold.
inline qint64 bytesHeld(const Model::CompoundStroke &compound)
{
    qint64 bytes = 0;
    for (int i = 0; i < compound.count(); ++i) {
        const Model::Stroke &child = compound.at(i);
        if (child.type() == Model::Stroke::Type::Compound)
            bytes += bytesHeld(static_cast<const Model::CompoundStroke &>(child));
        else if (child.type() == Model::Stroke::Type::Bitmap)
            bytes += static_cast<const Model::BitmapStroke &>(child).image().sizeInBytes();
    }
    return bytes;
}

} // namespace TestSupport
