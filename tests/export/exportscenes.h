#pragma once

#include <QByteArray>
#include <QColor>
#include <QSize>

namespace TestSupport {

/// A scene with every kind of layer, as a file. Frames of 16 x 8 pixels, 12 per second; the playback range is 2 to 3,
/// the current frame 3 of Ink. From the top:
///
///     Ink     stroke, red, linked, the last drawing stays beyond it
///             1: 2 x 2 pixels at (1, 1)  2: clone  3: 1 pixel at (5, 2)  4: distant clone of 1
///     Fill    stroke, blue, half opaque, hidden        1: 16 x 4 pixels at (0, 0)
///     Photo   reference, half opaque                   1: all green
///     Sound   audio, the bytes "no sound", from frame offset 2.5
///     Notes   annotation, a note beside frame 2 of 3
[[nodiscard]] QByteArray sceneOfAllKinds();
/// The colours of its layers.
inline constexpr QColor inkColor(255, 0, 0);
inline constexpr QColor fillColor(0, 0, 255);
inline constexpr QColor photoColor(0, 255, 0);

/// A file with one layer named A, of a drawing and \a frames - 1 clones of it; frames of \a size, noisy enough that
/// encoding an image takes its time.
[[nodiscard]] QByteArray longScene(int frames, QSize size = QSize(320, 240));

/// A file with one layer named A, of one drawing of a thick horizontal line through the middle of frames of 16 x 8
/// pixels, which carries no flattened image.
[[nodiscard]] QByteArray sceneToRender();

/// A file with one layer, named \a name (as XML), of one empty drawing.
[[nodiscard]] QByteArray sceneWithLayerName(const QByteArray &name);

/// A file with two layers named A, of one drawing each, whose first has a block of strokes that is damaged.
[[nodiscard]] QByteArray damagedScene();

/// A file with \a count layers that have a damaged block of strokes each.
[[nodiscard]] QByteArray sceneOfDamages(int count);

/// A file with \a count layers, named A, of one empty drawing each.
[[nodiscard]] QByteArray sceneOfLayers(int count);

/// A file with two layers, a playback range of 2 to 3, and Shown as its current layer:
///
///     Line    hidden, beyond its end \a beyond    1: the line of sceneToRender()  2: clone  3: empty
///     Shown                                      1 to 5: empty
[[nodiscard]] QByteArray sceneToRenderInPart(const QByteArray &beyond = "showNothing");

} // namespace TestSupport
