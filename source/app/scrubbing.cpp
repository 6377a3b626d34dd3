#include "app/scrubbing.h"

#include "app/toolswitch.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/paper.h"

#include <QScopedValueRollback>

#include <algorithm>

using Model::Tool;

Scrubbing::Scrubbing(UI::Paper *paper, ToolSwitch *toolSwitch, QObject *parent)
    : QObject(parent), m_paper(paper), m_toolSwitch(toolSwitch)
{
    connect(paper, &UI::Paper::scrubOffsetChanged, this, &Scrubbing::showOffset);
    connect(Model::ToolManager::instance(), &Model::ToolManager::currentToolTypeChanged, this,
            &Scrubbing::onToolChanged);
}

void Scrubbing::setCurrentScene(Model::MRScene *scene)
{
    if (scene == m_scene)
        return;
    end(false);
    m_scene = scene;
}

void Scrubbing::begin()
{
    if (m_isRunning || !m_scene)
        return;
    m_toolSwitch->holdTool(Tool::Type::Scrubbing);
    if (!m_scene) {
        m_toolSwitch->releaseTool(Tool::Type::Scrubbing);
        return;
    }
    m_isRunning = true;
    Model::Scene *scene = m_scene->scene();
    m_origin = std::max(scene->activeFrame(), 1);
    // The empty position behind the last cell lies outside of the range: from there the way back is not forced.
    m_paper->setMinMaxScrubOffset(std::min(scene->rangeFirst() - m_origin, 0),
                                  std::max(scene->rangeLast() - m_origin, 0));
    scene->startScrubbing();
}

void Scrubbing::end(bool land)
{
    if (!m_isRunning || m_isEnding)
        return;
    const QScopedValueRollback ending(m_isEnding, true);
    // First of all: a drag that still runs ends with the tool, and may show another frame at that.
    m_toolSwitch->releaseTool(Tool::Type::Scrubbing);
    m_isRunning = false;
    if (!m_scene)
        return;
    Model::Scene *scene = m_scene->scene();
    scene->stopScrubbing();
    const int shown = scene->scrubFrame();
    const QPointer<Model::MRScene> guard = m_scene;
    if (land && shown >= 1 && shown != scene->activeFrame())
        emit landed(shown);
    if (guard)
        scene->unsetScrubFrame();
}

void Scrubbing::onToolChanged(Tool::Type current)
{
    switch (current) {
    case Tool::Type::Scrubbing:
    case Tool::Type::Hand:
    case Tool::Type::Zoom:
    case Tool::Type::Rotate:
    case Tool::Type::ZPR:
        return;
    default:
        end(false);
    }
}

void Scrubbing::showOffset(int offset)
{
    if (!m_isRunning || !m_scene)
        return;
    Model::Scene *scene = m_scene->scene();
    scene->setScrubFrame(std::clamp(m_origin + offset, 1, scene->maximumFrameNumber()));
}
