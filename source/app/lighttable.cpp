#include "app/lighttable.h"

#include "app/catalogueaction.h"
#include "libmodel/base/settings.h"
#include "libui/paper/paper.h"

using Model::BacklightSettings;
using Model::Settings;

LightTable::LightTable(UI::Paper *paper, QObject *parent) : QObject(parent)
{
    onTriggered(MR::Action::BacklightOnOff, this, [](bool on) { switchBacklight(&BacklightSettings::on, on); });
    onTriggered(MR::Action::OnlyBacklightKeyFrames, this,
                [](bool on) { switchBacklight(&BacklightSettings::onlyKeyFrames, on); });
    connect(Settings::instance(), &Settings::backlightSettingsChanged, this, &LightTable::actualizeBacklight);
    actualizeBacklight();

    onTriggered(MR::Action::MirrorView, paper, &UI::Paper::setMirrorView);
    QAction *mirror = catalogueAction(MR::Action::MirrorView);
    connect(paper, &UI::Paper::mirrorViewChanged, mirror, &QAction::setChecked);
    mirror->setChecked(paper->mirrorView());

    // Choosing a grid switches it on, too, without anybody triggering this action.
    const QAction *grid = catalogueAction(MR::Action::GridOnOff);
    const auto setGrid = [paper](bool on) {
        paper->setGridStatus(on ? MR::GridStatus::GridOn : MR::GridStatus::GridOff);
    };
    connect(grid, &QAction::toggled, paper, setGrid);
    setGrid(grid->isChecked());
}

void LightTable::switchBacklight(bool BacklightSettings::*which, bool on)
{
    BacklightSettings settings = Settings::instance()->backlightSettings();
    settings.*which = on;
    Settings::instance()->setBacklightSettings(settings);
}

void LightTable::actualizeBacklight()
{
    const BacklightSettings settings = Settings::instance()->backlightSettings();
    catalogueAction(MR::Action::BacklightOnOff)->setChecked(settings.on);
    catalogueAction(MR::Action::OnlyBacklightKeyFrames)->setChecked(settings.onlyKeyFrames);
}
