#include "libcommands/setframerate.h"

#include "libcommands/mergeids.h"
#include "libmodel/audio/audiolayer.h"
#include "libmodel/base/fuzzy.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

#include <algorithm>
#include <cmath>

namespace Commands {

SetFrameRate::SetFrameRate(Model::MRScene *scene, double framesPerSecond, QUndoCommand *parent)
    : SceneCommand(scene, parent),
      m_new(std::clamp(framesPerSecond, Model::Scene::slowestFrameRate, Model::Scene::fastestFrameRate))
{
    setText(tr("Set Frame Rate"));
    if (!scene)
        return;
    m_old = scene->scene()->frameRate();
    m_oldOffset = audioOffset();
    setObsolete(std::isnan(framesPerSecond) || Model::fuzzyEqual(m_new, m_old));
}

Model::AudioLayer *SetFrameRate::audioLayer() const
{
    const Model::Scene *model = scene();
    return model ? dynamic_cast<Model::AudioLayer *>(model->layer(model->audioLayerIdx())) : nullptr;
}

std::optional<double> SetFrameRate::audioOffset() const
{
    const Model::AudioLayer *layer = audioLayer();
    return layer ? std::optional(layer->offsetFrames()) : std::nullopt;
}

void SetFrameRate::change(double framesPerSecond, std::optional<double> audioOffset)
{
    Model::Scene *model = scene();
    if (!model)
        return;
    model->setFrameRate(framesPerSecond);
    if (audioOffset)
        model->restoreAudioOffset(*audioOffset);
}

void SetFrameRate::redo()
{
    change(m_new, m_newOffset);
}

void SetFrameRate::undo()
{
    m_newOffset = audioOffset();
    change(m_old, m_oldOffset);
}

int SetFrameRate::id() const
{
    return SetFrameRateId;
}

bool SetFrameRate::mergeWith(const QUndoCommand *other)
{
    const auto *later = dynamic_cast<const SetFrameRate *>(other);
    if (!later || later->isObsolete())
        return false;
    m_new = later->m_new;
    // Nothing will be left to undo: the ways there and back again must not have shifted the sound.
    if (Model::fuzzyEqual(m_new, m_old)) {
        change(m_old, m_oldOffset);
        setObsolete(true);
    }
    return true;
}

} // namespace Commands
