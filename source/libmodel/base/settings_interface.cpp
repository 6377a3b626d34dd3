// The interface's own values, the exports' options and the tools' ranges.

#include "libmodel/base/settings.h"

#include "libmodel/base/settingsdata.h"

namespace Model {

namespace {

/// Where the ranges of a tool stand among all tools'; the default preset has no group of its own.
QString rangesPath(const QString &toolName, MR::ToolPreset preset)
{
    QString path = toolName + QLatin1Char('/');
    if (preset != MR::ToolPreset::Default)
        path += StoredForm<MR::ToolPreset>::write(preset).toString() + QLatin1Char('/');
    return path;
}

const QString opacityLowerKey = QStringLiteral("OpacityRangeLowerPercent");
const QString opacityUpperKey = QStringLiteral("OpacityRangeUpperPercent");
const QString sizeLowerKey = QStringLiteral("SizeRangeLowerPercent");
const QString sizeUpperKey = QStringLiteral("SizeRangeUpperPercent");

} // namespace

int Settings::uiScalePercent() const
{
    return d->uiScalePercent.value();
}

void Settings::setUiScalePercent(int scalePercent)
{
    if (d->uiScalePercent.set(scalePercent))
        emit UIScaleChanged(scalePercent);
}

bool Settings::showVideoTutorialsOnStartup() const
{
    return d->showVideoTutorialsOnStartup.value();
}

void Settings::setShowVideoTutorialsOnStartup(bool show)
{
    d->showVideoTutorialsOnStartup.set(show);
}

QString Settings::toolBarActionList() const
{
    return d->toolBarActionList.value();
}

void Settings::setToolBarActionList(const QString &actionList)
{
    d->toolBarActionList.set(actionList);
}

QString Settings::primaryActionList() const
{
    return d->primaryActionList.value();
}

void Settings::setPrimaryActionList(const QString &actionList)
{
    d->primaryActionList.set(actionList);
}

QString Settings::secondaryActionList() const
{
    return d->secondaryActionList.value();
}

void Settings::setSecondaryActionList(const QString &actionList)
{
    d->secondaryActionList.set(actionList);
}

QByteArray Settings::mainWindowGeometry() const
{
    return d->mainWindowGeometry.value();
}

void Settings::setMainWindowGeometry(const QByteArray &geometry)
{
    d->mainWindowGeometry.set(geometry);
}

QByteArray Settings::referenceDisplayGeometry() const
{
    return d->referenceDisplayGeometry.value();
}

void Settings::setReferenceDisplayGeometry(const QByteArray &geometry)
{
    d->referenceDisplayGeometry.set(geometry);
}

QByteArray Settings::xSheetWindowGeometry() const
{
    return d->xSheetWindowGeometry.value();
}

void Settings::setXSheetWindowGeometry(const QByteArray &geometry)
{
    d->xSheetWindowGeometry.set(geometry);
}

WindowLayout Settings::windowLayout(const WindowLayout &defaults) const
{
    return d->windowLayout.value(defaults);
}

void Settings::setWindowLayout(const WindowLayout &layout)
{
    d->windowLayout.set(layout);
}

ExportFramesSettings Settings::exportFramesSettings() const
{
    ExportFramesSettings settings;
    settings.exportDir = d->framesDir.value();
    settings.layers = d->framesLayers.value();
    settings.frames = d->framesFrames.value();
    settings.clones = d->framesClones.value();
    settings.combineLayers = d->framesCombineLayers.value();
    settings.makeAllLinesBlack = d->framesMakeAllLinesBlack.value();
    settings.imageFormat = d->framesImageFormat.value();
    settings.includeAlpha = d->framesIncludeAlpha.value();
    return settings;
}

void Settings::setExportFramesSettings(const ExportFramesSettings &settings)
{
    const SettingsBatch batch;
    d->framesDir.set(settings.exportDir);
    d->framesLayers.set(settings.layers);
    d->framesFrames.set(settings.frames);
    d->framesClones.set(settings.clones);
    d->framesCombineLayers.set(settings.combineLayers);
    d->framesMakeAllLinesBlack.set(settings.makeAllLinesBlack);
    d->framesImageFormat.set(settings.imageFormat);
    d->framesIncludeAlpha.set(settings.includeAlpha);
}

ExportExposureSheetSettings Settings::exportExposureSheetSettings() const
{
    ExportExposureSheetSettings settings;
    settings.exportDir = d->sheetDir.value();
    settings.layers = d->sheetLayers.value();
    settings.frames = d->sheetFrames.value();
    settings.imageFormat = d->sheetImageFormat.value();
    settings.includeAudio = d->sheetIncludeAudio.value();
    return settings;
}

void Settings::setExportExposureSheetSettings(const ExportExposureSheetSettings &settings)
{
    const SettingsBatch batch;
    d->sheetDir.set(settings.exportDir);
    d->sheetLayers.set(settings.layers);
    d->sheetFrames.set(settings.frames);
    d->sheetImageFormat.set(settings.imageFormat);
    d->sheetIncludeAudio.set(settings.includeAudio);
}

ExportVideoSettings Settings::exportVideoSettings() const
{
    ExportVideoSettings settings;
    settings.exportDir = d->videoDir.value();
    settings.layers = d->videoLayers.value();
    settings.frames = d->videoFrames.value();
    settings.videoFormat = d->videoFormat.value();
    settings.includeAlpha = d->videoIncludeAlpha.value();
    settings.includeAudio = d->videoIncludeAudio.value();
    settings.scalePercent = d->videoScalePercent.value();
    return settings;
}

void Settings::setExportVideoSettings(const ExportVideoSettings &settings)
{
    const SettingsBatch batch;
    d->videoDir.set(settings.exportDir);
    d->videoLayers.set(settings.layers);
    d->videoFrames.set(settings.frames);
    d->videoFormat.set(settings.videoFormat);
    d->videoIncludeAlpha.set(settings.includeAlpha);
    d->videoIncludeAudio.set(settings.includeAudio);
    d->videoScalePercent.set(settings.scalePercent);
}

ToolRanges Settings::toolRanges(const QString &toolName, MR::ToolPreset preset, const ToolRanges &defaults) const
{
    const QString path = rangesPath(toolName, preset);
    return {.opacityLower = d->toolRanges.value(path + opacityLowerKey, defaults.opacityLower),
            .opacityUpper = d->toolRanges.value(path + opacityUpperKey, defaults.opacityUpper),
            .sizeLower = d->toolRanges.value(path + sizeLowerKey, defaults.sizeLower),
            .sizeUpper = d->toolRanges.value(path + sizeUpperKey, defaults.sizeUpper)};
}

void Settings::setToolRanges(const QString &toolName, MR::ToolPreset preset, const ToolRanges &ranges)
{
    const SettingsBatch batch;
    setToolOpacityRange(toolName, preset, ranges.opacityLower, ranges.opacityUpper);
    setToolSizeRange(toolName, preset, ranges.sizeLower, ranges.sizeUpper);
}

void Settings::setToolSizeRange(const QString &toolName, MR::ToolPreset preset, double lowerPercent,
                                double upperPercent)
{
    const SettingsBatch batch;
    const QString path = rangesPath(toolName, preset);
    d->toolRanges.set(path + sizeLowerKey, lowerPercent);
    d->toolRanges.set(path + sizeUpperKey, upperPercent);
}

void Settings::setToolOpacityRange(const QString &toolName, MR::ToolPreset preset, double lowerPercent,
                                   double upperPercent)
{
    const SettingsBatch batch;
    const QString path = rangesPath(toolName, preset);
    d->toolRanges.set(path + opacityLowerKey, lowerPercent);
    d->toolRanges.set(path + opacityUpperKey, upperPercent);
}

} // namespace Model
