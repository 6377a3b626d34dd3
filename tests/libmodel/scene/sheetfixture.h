#pragma once

#include "libmodel/audio/audiolayer.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QString>

namespace TestSupport {

/// Audio with a sound that is heard from frame \a first to frame \a last.
class Sound : public Model::AudioLayer
{
public:
    Sound(int first, int last) : m_first(first), m_last(last) {}

    [[nodiscard]] int numFrames() const override { return m_last; }
    [[nodiscard]] bool isValidFrame(int frameId) const override { return frameId >= m_first && frameId <= m_last; }

private:
    int m_first;
    int m_last;
};

/// A scene with small frames, no layers, and both of its table models.
struct Sheet
{
    Sheet();

    Model::Scene scene;
    Model::SceneModel source;
    Model::FrameRangeModel model;

    /// Adds a stroke layer: one cell per character of \a column, a dot being a hold, anything else a blank original.
    /// \return its column.
    int addColumn(const QString &column, bool linked = false);
    /// Adds an audio or annotation layer. \return its column.
    int addAudio();
    int addAnnotations(bool linked = false);
    /// Sets the range, standing on its first frame in column 0.
    void setRange(int first, int last);
    /// The index of \a frameId in the model.
    [[nodiscard]] QModelIndex cell(int frameId, int column) const;
    /// What the model shows in a column from its first to its last row: o and d for originals and distant clones, . for
    /// holds, _ for the after-last position, and a space where there is nothing. Key drawings are in capitals, or : for
    /// a hold.
    [[nodiscard]] QString shown(int column) const;
};

} // namespace TestSupport
