#include "app/stepactions.h"

#include "app/catalogueaction.h"
#include "app/framesteps.h"
#include "libcommands/setactiveframeandlayer.h"
#include "libcommands/setframerange.h"
#include "libmodel/scene/scene.h"

using Model::MRScene;
using Model::Scene;

namespace {

struct StepAction
{
    MR::Action action;
    int (*target)(const Scene &scene);
};

constexpr StepAction stepActions[] = {
    {MR::Action::StepBack, FrameSteps::back},
    {MR::Action::StepForward, FrameSteps::forward},
    {MR::Action::StepBackSkippingLocalClones, [](const Scene &scene) { return FrameSteps::drawing(scene, -1); }},
    {MR::Action::StepForwardSkippingLocalClones, [](const Scene &scene) { return FrameSteps::drawing(scene, 1); }},
    {MR::Action::SkipBackToKeyDrawing, [](const Scene &scene) { return FrameSteps::keyDrawing(scene, -1); }},
    {MR::Action::SkipForwardToKeyDrawing, [](const Scene &scene) { return FrameSteps::keyDrawing(scene, 1); }},
    {MR::Action::JumpToStart, FrameSteps::start},
    {MR::Action::JumpToEnd, FrameSteps::end},
};

struct RangeAction
{
    MR::Action action;
    int (*first)(const Scene &scene);
    int (*last)(const Scene &scene);
};

int first(const Scene &scene)
{
    return scene.rangeFirst();
}

int last(const Scene &scene)
{
    return scene.rangeLast();
}

constexpr RangeAction rangeActions[] = {
    {MR::Action::RangeStartStepBack, [](const Scene &scene) { return scene.rangeFirst() - 1; }, last},
    {MR::Action::RangeStartStepForward, [](const Scene &scene) { return scene.rangeFirst() + 1; }, last},
    {MR::Action::RangeEndStepBack, first, [](const Scene &scene) { return scene.rangeLast() - 1; }},
    {MR::Action::RangeEndStepForward, first, [](const Scene &scene) { return scene.rangeLast() + 1; }},
    {MR::Action::RangeStartToFirstFrame, [](const Scene &scene) { return scene.minimumFrameNumber(); }, last},
    {MR::Action::RangeEndToLastFrame, first, [](const Scene &scene) { return scene.maximumFrameNumber(); }},
};

} // namespace

StepActions::StepActions(QObject *parent) : SceneFollower(parent)
{
    for (const StepAction &entry : stepActions) {
        onTriggered(entry.action, this, [this, target = entry.target] {
            if (scene())
                goTo(target(*scene()));
        });
    }
    for (const RangeAction &entry : rangeActions) {
        onTriggered(entry.action, this, [this, &entry] {
            if (scene())
                setRange(entry.first(*scene()), entry.last(*scene()));
        });
    }
}

void StepActions::stepDrawing(int direction)
{
    if (scene())
        goTo(FrameSteps::drawing(*scene(), direction));
}

void StepActions::stepKeyDrawing(int direction)
{
    if (scene())
        goTo(FrameSteps::keyDrawing(*scene(), direction));
}

void StepActions::goTo(int frameId)
{
    if (!scene())
        return;
    if (frameId == scene()->activeFrame()) {
        scene()->unsetScrubFrame();
        return;
    }
    mrScene()->clearSelection();
    MRScene::pushCommand(new Commands::SetActiveFrameAndLayer(mrScene(), frameId, scene()->activeLayerIdx(),
                                                              Scene::AllowFrameAfterLast));
}

void StepActions::setRange(int first, int last)
{
    // The ends may lie on each other for a moment, never the wrong way round: the actions are not available then.
    MRScene::pushCommand(
        new Commands::SetFrameRange(mrScene(), first, last, scene()->activeFrame(), scene()->activeLayerIdx()));
}
