#include "libmodel/layers/layeritem.h"

#include "libmodel/strokes/drawing.h"

namespace Model {

LayerItem::LayerItem(Type cellType, std::shared_ptr<Drawing> shownDrawing)
    : type(cellType), identifier(QUuid::createUuid()), drawing(std::move(shownDrawing))
{
    Q_ASSERT(drawing);
}

} // namespace Model
