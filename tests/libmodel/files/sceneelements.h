#pragma once

#include "blockbuilder.h"

#include "libmodel/scene/scene.h"

#include <memory>

/// Pieces of hand-written scene files.
namespace TestSupport {

/// An original named uuid(\a number), empty unless \a strokes (a block in base64) are given.
QByteArray original(int number, const QByteArray &strokes = {}, const QByteArray &attributes = {});

/// A distant clone named uuid(\a number) of the cell uuid(\a cell) in the layer uuid(\a layer).
QByteArray distantClone(int number, int layer, int cell);

/// A cell that shows what stands before it.
inline const QByteArray hold = "<drawing type=\"clone\"/>\n";

/// A block of one bitmap stroke: coverage 255 in the rectangle 1, 1, 2 x 1 of a frame of 16 x 8; without its trailer.
BlockBuilder bitmapBlock();

/// The pixels that bitmapBlock() makes, row by row.
QByteArray bitmapPixels();

/// The scene of a file with the elements \a layers.
std::unique_ptr<Model::Scene> sceneWithLayers(const QByteArray &layers, const QByteArray &sceneAttributes = {});

/// The scene of a file with one stroke layer of \a drawings.
std::unique_ptr<Model::Scene> sceneWithDrawings(const QByteArray &drawings, const QByteArray &sceneAttributes = {});

} // namespace TestSupport
