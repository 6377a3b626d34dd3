#pragma once

#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/sceneinvariants.h"

#include <QSignalSpy>

#include <memory>
#include <vector>

namespace TestSupport {

constexpr QSize sceneFrame(60, 40);

/// Gives \a scene small frames, and nothing that shines through from one to the other.
void makeSmall(Model::Scene &scene);

/// Adds a stroke layer of \a numFrames blank originals at the end and at the bottom. \return its index.
int addStrokeLayer(Model::Scene &scene, int numFrames, const QColor &color = Qt::black);

/// The layers of a new scene (stroke layer of \a numFrames blanks, audio, annotation), standing on frame 1 of the
/// first, with all frames in the range.
void addUsualLayers(Model::Scene &scene, int numFrames);

/// Pixels of coverage \a value over \a rect.
std::unique_ptr<Model::Stroke> block(QRect rect, int value = 255);

/// The drawing at a cell that is known to have one.
Model::StrokeDrawing &drawingAt(const Model::Scene &scene, int layerIdx, int frameId);

/// The kinds of a layer's cells as letters: o, c, d.
QString kinds(const Model::Scene &scene, int layerIdx);

/// Counts every signal that an object emits.
class SignalCount
{
public:
    explicit SignalCount(const QObject *object);
    /// Signals since construction, "name name ..." without arguments; empty if there were none.
    [[nodiscard]] QString heard() const;

private:
    std::vector<std::unique_ptr<QSignalSpy>> m_spies;
};

} // namespace TestSupport
