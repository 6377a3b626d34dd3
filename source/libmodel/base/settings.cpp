#include "libmodel/base/settings.h"

#include "libmodel/base/settingsdata.h"

namespace Model {

Settings *Settings::instance()
{
    static Settings settings;
    return &settings;
}

Settings::Settings() : d(std::make_unique<Private>())
{
}

Settings::~Settings() = default;

void Settings::load()
{
    const QSettings store;
    for (Storable *value : d->values)
        value->load(store);
}

void Settings::resetPreferences()
{
    const SettingsBatch batch;
    setDrawCursorType(d->drawCursorType.initial());
    setClonesLockedForDrawing(d->clonesLockedForDrawing.initial());
    setTransparencyType(d->transparencyType.initial());
    setGridType(d->gridType.initial());
    setCollapseAutomatically(d->collapseAutomatically.initial());
    setShowXSheetTopBar(d->showXSheetTopBar.initial());
    setAutoSaveEnabled(d->autoSaveEnabled.initial());
    setAutoSaveIntervalMins(d->autoSaveIntervalMins.initial());
    setAutoSaveNumFiles(d->autoSaveNumFiles.initial());
    setUiScalePercent(d->uiScalePercent.initial());
}

bool Settings::clonesLockedForDrawing() const
{
    return d->clonesLockedForDrawing.value();
}

void Settings::setClonesLockedForDrawing(bool locked)
{
    if (d->clonesLockedForDrawing.set(locked))
        emit clonesLockedForDrawingChanged(locked);
}

MR::GridType Settings::gridType() const
{
    return d->gridType.value();
}

void Settings::setGridType(MR::GridType gridType)
{
    if (d->gridType.set(gridType))
        emit gridTypeChanged(gridType);
}

MR::TransparencyType Settings::transparencyType() const
{
    return d->transparencyType.value();
}

void Settings::setTransparencyType(MR::TransparencyType transparencyType)
{
    if (d->transparencyType.set(transparencyType))
        emit transparencyTypeChanged(transparencyType);
}

MR::DrawCursorType Settings::drawCursorType() const
{
    return d->drawCursorType.value();
}

void Settings::setDrawCursorType(MR::DrawCursorType drawCursorType)
{
    if (d->drawCursorType.set(drawCursorType))
        emit drawCursorTypeChanged(drawCursorType);
}

MR::DrawCursorOpacity Settings::drawCursorOpacity() const
{
    return d->drawCursorOpacity.value();
}

void Settings::setDrawCursorOpacity(MR::DrawCursorOpacity drawCursorOpacity)
{
    if (d->drawCursorOpacity.set(drawCursorOpacity))
        emit drawCursorOpacityChanged(drawCursorOpacity);
}

bool Settings::collapseAutomatically() const
{
    return d->collapseAutomatically.value();
}

void Settings::setCollapseAutomatically(bool collapse)
{
    if (d->collapseAutomatically.set(collapse))
        emit collapseAutomaticallyChanged(collapse);
}

int Settings::collapseScale() const
{
    return 2;
}

BacklightSettings Settings::backlightSettings() const
{
    return {.on = d->backlightOn,
            .currentSet = d->currentBacklightSetting.value(),
            .settingA = d->backlightA.value(),
            .settingB = d->backlightB.value(),
            .onlyKeyFrames = d->onlyKeyFrames};
}

void Settings::setBacklightSettings(const BacklightSettings &backlightSettings)
{
    if (backlightSettings == this->backlightSettings())
        return;
    d->backlightOn = backlightSettings.on;
    d->onlyKeyFrames = backlightSettings.onlyKeyFrames;
    {
        const SettingsBatch batch;
        d->backlightA.set(backlightSettings.settingA);
        d->backlightB.set(backlightSettings.settingB);
        d->currentBacklightSetting.set(backlightSettings.currentSet);
    }
    emit backlightSettingsChanged(backlightSettings);
}

bool Settings::showBeyondButtons() const
{
    return d->showBeyondButtons.value();
}

void Settings::setShowBeyondButtons(bool show)
{
    if (d->showBeyondButtons.set(show))
        emit showBeyondButtonsChanged(show);
}

bool Settings::slideMode() const
{
    return d->slideMode;
}

void Settings::setSlideMode(bool slideMode)
{
    if (d->slideMode == slideMode)
        return;
    d->slideMode = slideMode;
    emit slideModeChanged(slideMode);
}

MR::ThumbnailSize Settings::thumbnailSize() const
{
    return d->thumbnailSize.value();
}

void Settings::setThumbnailSize(MR::ThumbnailSize thumbnailSize)
{
    if (d->thumbnailSize.set(thumbnailSize))
        emit thumbnailSizeChanged(thumbnailSize);
}

bool Settings::showXSheetTopBar() const
{
    return d->showXSheetTopBar.value();
}

void Settings::setShowXSheetTopBar(bool show)
{
    if (d->showXSheetTopBar.set(show))
        emit showXSheetTopBarChanged(show);
}

QString Settings::defaultSaveDir() const
{
    return d->defaultSaveDir.value();
}

void Settings::setDefaultSaveDir(const QString &dir)
{
    d->defaultSaveDir.set(dir);
}

QString Settings::defaultImportDir() const
{
    return d->defaultImportDir.value();
}

void Settings::setDefaultImportDir(const QString &dir)
{
    d->defaultImportDir.set(dir);
}

QSize Settings::defaultFrameSize() const
{
    return d->defaultFrameSize.value();
}

void Settings::setDefaultFrameSize(QSize size)
{
    d->defaultFrameSize.set(size);
}

double Settings::defaultFrameRate() const
{
    return d->defaultFrameRate.value();
}

void Settings::setDefaultFrameRate(double framesPerSecond)
{
    d->defaultFrameRate.set(framesPerSecond);
}

int Settings::defaultInitialNumberOfFrames() const
{
    return d->defaultInitialNumberOfFrames.value();
}

void Settings::setDefaultInitialNumberOfFrames(int count)
{
    d->defaultInitialNumberOfFrames.set(count);
}

MR::FitMode Settings::defaultChangeFrameSizeFitMode() const
{
    return d->defaultChangeFrameSizeFitMode.value();
}

void Settings::setDefaultChangeFrameSizeFitMode(MR::FitMode fitMode)
{
    d->defaultChangeFrameSizeFitMode.set(fitMode);
}

QStringList Settings::recentScenes() const
{
    return d->recentScenes.value();
}

void Settings::setRecentScenes(const QStringList &filenames)
{
    d->recentScenes.set(filenames);
}

void Settings::addRecentScene(const QString &filename)
{
    QStringList filenames = recentScenes();
    filenames.removeAll(filename);
    filenames.prepend(filename);
    setRecentScenes(filenames);
}

void Settings::removeRecentScene(const QString &filename)
{
    QStringList filenames = recentScenes();
    filenames.removeAll(filename);
    setRecentScenes(filenames);
}

bool Settings::autoSaveEnabled() const
{
    return d->autoSaveEnabled.value();
}

void Settings::setAutoSaveEnabled(bool enabled)
{
    if (d->autoSaveEnabled.set(enabled))
        emit autoSaveChanged();
}

int Settings::autoSaveIntervalMins() const
{
    return d->autoSaveIntervalMins.value();
}

void Settings::setAutoSaveIntervalMins(int minutes)
{
    if (d->autoSaveIntervalMins.set(minutes))
        emit autoSaveChanged();
}

int Settings::autoSaveNumFiles() const
{
    return d->autoSaveNumFiles.value();
}

void Settings::setAutoSaveNumFiles(int count)
{
    if (d->autoSaveNumFiles.set(count))
        emit autoSaveChanged();
}

} // namespace Model
