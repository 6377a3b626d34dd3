#pragma once

#include "libmodel/files/damagelist.h"
#include "libmodel/files/memorybudget.h"
#include "libmodel/files/workbudget.h"

#include <QHash>

namespace Model {

struct LayerItem;

/// A place in a file, both counted as the XML parser does.
struct FilePlace
{
    qint64 line = 0;
    qint64 column = 0;
};

/// What is noted while a scene file is read, beside the scene itself.
struct ReadingState
{
    MemoryBudget memory;        ///< for decoded images
    WorkBudget work;            ///< for drawing what has no image
    DamageList damages;         ///< what could not be kept, one text each
    bool lacksRenderer = false; ///< strokes came without their image, and nothing can make it
    /// Where the distant clones stand, for what is only noticed when all layers are there.
    QHash<const LayerItem *, FilePlace> places;
};

} // namespace Model
