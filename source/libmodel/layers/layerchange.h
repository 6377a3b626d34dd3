#pragma once

#include <QImage>
#include <QTransform>

#include <memory>

namespace Model {

struct LayerItem;

/// One step that an operation took on a layer, with what is needed to go back.
struct LayerChange
{
    enum Type : int {
        NoChange = 0,           ///< never stands in a list
        ItemRemoved = 1,        ///< item was removed at frameId; the way back inserts it there
        ItemReplaced = 2,       ///< a cell was changed in place; item is what it was, with the drawing it showed
        ItemInserted = 3,       ///< a cell was inserted at frameId; the way back removes it
        TransformChanged = 4,   ///< transform is what the cell at frameId had
        AnnotationRemoved = 5,  ///< image was removed at frameId
        AnnotationChanged = 6,  ///< image is what stood at frameId
        AnnotationInserted = 7, ///< an annotation was inserted at frameId
    };

    LayerChange() = default;
    /// A step of kind \a changeType at \a frame (1-based).
    LayerChange(Type changeType, int frame) : type(changeType), frameId(frame) {}
    LayerChange(const LayerChange &) = default;
    LayerChange(LayerChange &&) = default;
    LayerChange &operator=(const LayerChange &) = default;
    LayerChange &operator=(LayerChange &&) = default;
    virtual ~LayerChange() = default;

    Type type = NoChange;
    int frameId = -1;                ///< 1-based
    std::shared_ptr<LayerItem> item; ///< for the two item kinds that keep one; kept alive by the record
    QTransform transform;            ///< for TransformChanged
    QImage image;                    ///< for the annotation kinds
};

} // namespace Model
