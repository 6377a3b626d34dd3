#pragma once

#include "support/randomnumbers.h"

namespace Model {
class Scene;
}

namespace TestSupport {

/// What a decorated scene may hold beyond blocks of coverage.
enum class DecoratedStrokes {
    None, ///< groups with cuts and transforms of blocks; needs no renderer
    Pens, ///< lines of pens and erasers too; wants a renderer
};

/// Makes \a scene, filled by fillScene(), as odd as the program lets a scene become: names of any characters, rates and
/// opacities of many digits, any colour, sound of any bytes, cells turned, moved far and scaled, drawings cut, scaled
/// and put together of groups, pictures with and without transparency. Keeps every invariant.
void decorateScene(Model::Scene &scene, RandomNumbers &random, DecoratedStrokes strokes);

} // namespace TestSupport
