#include "app/viewsteps.h"

#include "app/catalogueaction.h"
#include "app/zoomlevels.h"
#include "libui/paper/paper.h"

ViewSteps::ViewSteps(UI::Paper *paper, QObject *parent) : QObject(parent), m_paper(paper)
{
    onTriggered(MR::Action::ResetView, paper, &UI::Paper::resetView);
    onTriggered(MR::Action::FitPaperToView, paper, &UI::Paper::fitToView);
    onTriggered(MR::Action::ZoomIn, this, &ViewSteps::zoomPaperInToNextLevel);
    onTriggered(MR::Action::ZoomOut, this, &ViewSteps::zoomPaperOutToNextLevel);
    onTriggered(MR::Action::ViewToX1, this, [this] { zoomPaperTo(1.0); });
    connect(paper, &UI::Paper::zoomLevelToFitChanged, this, &ViewSteps::actualizeFitAction);
    actualizeFitAction(paper->zoomLevelToFit());
}

void ViewSteps::zoomPaperTo(double zoomLevel)
{
    m_paper->setZoomLevel(zoomLevel);
}

void ViewSteps::zoomPaperInToNextLevel()
{
    zoomPaperTo(ZoomLevels::next(m_paper->zoomLevel()));
}

void ViewSteps::zoomPaperOutToNextLevel()
{
    zoomPaperTo(ZoomLevels::previous(m_paper->zoomLevel()));
}

void ViewSteps::rotatePaperTo(double degrees)
{
    m_paper->rotatePaperTo(degrees);
}

void ViewSteps::rotatePaperToNext(double degrees)
{
    m_paper->rotatePaperToNext(degrees);
}

void ViewSteps::actualizeFitAction(double zoomLevelToFit)
{
    const auto *record = Model::ActionManager::instance()->mrAction(MR::Action::FitPaperToView);
    record->action->setText(tr("Fit View (%1%)").arg(qRound(zoomLevelToFit * 100)));
    record->updateToolTip();
}
