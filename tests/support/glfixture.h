#pragma once

#include <QSize>

namespace TestSupport {

/// Registers the model's resources (shaders, softness curves, grain) and starts the renderer, once per program; a
/// further call only resizes it. \a size is the framebuffers', in pixels. Needs a QGuiApplication on a platform with
/// OpenGL.
///
/// \return false if there is no renderer; the reason has been printed. A test that draws fails then: it does not skip.
[[nodiscard]] bool startRenderer(QSize size = QSize(640, 480));

/// Registers the model's resources only.
void registerModelResources();

} // namespace TestSupport
