#pragma once

namespace Model {
struct ExportFramesSettings;
class Scene;
} // namespace Model

namespace Export {

/// Does one of the files that an export of \a scene with \a settings writes show strokes that have no image?
[[nodiscard]] bool showsUnrendered(const Model::Scene &scene, const Model::ExportFramesSettings &settings);

} // namespace Export
