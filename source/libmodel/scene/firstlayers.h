#pragma once

namespace Model {

class Scene;

/// Gives \a scene what every scene must have and this one lacks: a layer to draw on, at the top, in the colour and with
/// the name that a new scene starts with; a layer for sound; a layer for notes. Layers that are there stay as they are.
void addMissingLayers(Scene &scene);

} // namespace Model
