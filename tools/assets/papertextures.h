#pragma once

#include <QImage>

namespace Assets {

/// The paper grain, 2048 x 2048 RGB, seamless: red the paper's tooth (a factor, mostly bright), green the grain that
/// eats a pencil's edges, blue 0.
QImage paperGrain();

/// The desk: a plain weave in warm grey, 512 x 512 RGB, seamless.
QImage deskLinen();

} // namespace Assets
