#include "libmodel/layers/drawlayer.h"

namespace Model {

DrawLayer::~DrawLayer() = default;

} // namespace Model
