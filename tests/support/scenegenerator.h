#pragma once

#include "support/randomnumbers.h"

#include <QImage>
#include <QTransform>

#include <memory>

namespace Model {
class Drawing;
class Scene;
class Stroke;
class VisualLayer;
} // namespace Model

namespace TestSupport {

/// A rectangle of one coverage somewhere on a frame of \a size: its pixels come and go exactly.
[[nodiscard]] std::unique_ptr<Model::Stroke> randomBlock(QSize size, RandomNumbers &random);
/// A drawing of the kind that \a layer takes, with content or now and then without.
[[nodiscard]] std::shared_ptr<Model::Drawing> randomDrawing(const Model::VisualLayer &layer, RandomNumbers &random);
/// A note of a few pixels.
[[nodiscard]] QImage randomNote(RandomNumbers &random);
/// A move off the pegs.
[[nodiscard]] QTransform randomTransform(RandomNumbers &random);

/// Fills the empty \a scene: one to eight layers in any order (stroke and reference layers, audio, annotations), linked
/// and not, of one to nine cells: originals, holds, distant clones within and across layers, key marks, moves off the
/// pegs. With notes, a range, and an active position, now and then behind the last cell.
///
/// The cells are put together here, by no operation of the scene's, and keep every invariant.
void fillScene(Model::Scene &scene, RandomNumbers &random);
/// Gives the cells of \a scene links that lead nowhere, as a file from elsewhere may have them: distant clones of cells
/// that do not exist, and originals that list such. At least one of each where there is an original without clones.
void addDanglingLinks(Model::Scene &scene, RandomNumbers &random);

} // namespace TestSupport
