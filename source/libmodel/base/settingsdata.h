#pragma once

#include "libmodel/base/settings.h"
#include "libmodel/base/storedvalue.h"

#include <QHash>
#include <QVariant>

#include <array>

namespace Model {

/// The stored form of one BacklightSetting: a group of five keys.
struct StoredBacklight
{
    /// \a paths are the five keys in the order of the fields; \a initial holds the defaults.
    StoredBacklight(std::vector<Storable *> &list, const std::array<const char *, 5> &paths,
                    const BacklightSetting &initial);

    [[nodiscard]] BacklightSetting value() const;
    bool set(const BacklightSetting &setting);

    StoredValue<QList<double>> opacityLevelsBefore;
    StoredValue<QList<double>> opacityLevelsAfter;
    StoredValue<BacklightSetting::HueShift> hueShift;
    StoredValue<BacklightSetting::ShowOption> showOption;
    StoredValue<BacklightSetting::Layers> layers;
};

/// Numbers under one group of the store, of which any may be missing: what is missing has a default only its user
/// knows.
class StoredNumbers : public Storable
{
public:
    /// \a group ends without a slash and must outlive this.
    StoredNumbers(std::vector<Storable *> &list, const char *group);

    /// Reads every finite number of the group and of those inside it.
    void load(const QSettings &store) override;
    [[nodiscard]] double value(const QString &key, double fallback) const { return m_values.value(key, fallback); }
    void set(const QString &key, double value);

private:
    const char *m_group;
    QHash<QString, double> m_values;
};

/// The stored part of a WindowLayout; what was never stored has a default only the caller knows.
class StoredLayout : public Storable
{
public:
    explicit StoredLayout(std::vector<Storable *> &list);

    void load(const QSettings &store) override;
    [[nodiscard]] WindowLayout value(const WindowLayout &defaults) const;
    void set(const WindowLayout &layout);

private:
    QHash<QString, QVariant> m_values;
};

/// Every value with its key and default, in the order of loading.
struct Settings::Private
{
    Private();

    std::vector<Storable *> values;
    const BacklightSettings backlightDefaults;

    StoredValue<bool> showBeyondButtons{values, "Preferences/ShowBeyondButtons", false};
    StoredValue<bool> clonesLockedForDrawing{values, "Preferences/ClonesLockedForDrawing", false};
    StoredValue<QString> defaultSaveDir{values, "Preferences/DefaultSaveDir", {}};
    StoredValue<QString> defaultImportDir{values, "Preferences/DefaultImportDir", {}};
    StoredValue<QSize> defaultFrameSize;
    StoredValue<double> defaultFrameRate;
    StoredValue<int> defaultInitialNumberOfFrames;
    StoredValue<MR::FitMode> defaultChangeFrameSizeFitMode{values, "Preferences/DefaultChangeFrameSizeFitMode",
                                                           MR::FitMode::FitModeKeepAspect};
    StoredValue<bool> showVideoTutorialsOnStartup{values, "Preferences/ShowVideoTutorialsOnStartup", true};
    StoredValue<bool> collapseAutomatically{values, "Preferences/CollapseVectorDataAutomatically", false};
    StoredValue<int> uiScalePercent;
    StoredValue<bool> autoSaveEnabled{values, "Preferences/AutoSave/Enabled", false};
    StoredValue<int> autoSaveIntervalMins;
    StoredValue<int> autoSaveNumFiles;
    StoredValue<MR::GridType> gridType{values, "Preferences/Grid/Type", MR::GridType::FieldGuide};
    StoredValue<MR::TransparencyType> transparencyType{values, "Preferences/Transparency/Type",
                                                       MR::TransparencyType::TransparencyWhite};
    StoredValue<MR::DrawCursorType> drawCursorType{values, "Preferences/DrawCursor/Type",
                                                   MR::DrawCursorType::AdaptToSize};
    StoredValue<MR::DrawCursorOpacity> drawCursorOpacity{values, "Preferences/DrawCursor/Opacity",
                                                         MR::DrawCursorOpacity::Faint};

    StoredValue<QString> framesDir{values, "Preferences/ExportFrames/ExportDir", {}};
    StoredValue<ExportSettings::Layers> framesLayers{values, "Preferences/ExportFrames/Layers", {}};
    StoredValue<ExportSettings::Frames> framesFrames{values, "Preferences/ExportFrames/Frames", {}};
    StoredValue<ExportFramesSettings::Clones> framesClones{values, "Preferences/ExportFrames/Clones", {}};
    StoredValue<bool> framesCombineLayers{values, "Preferences/ExportFrames/CombineLayers", false};
    StoredValue<bool> framesMakeAllLinesBlack{values, "Preferences/ExportFrames/MakeAllLinesBlack", false};
    StoredValue<ExportFramesSettings::ImageFormat> framesImageFormat{
        values, "Preferences/ExportFrames/ImageFormat", {}};
    StoredValue<bool> framesIncludeAlpha{values, "Preferences/ExportFrames/IncludeAlpha", true};

    StoredValue<QString> sheetDir{values, "Preferences/ExportExposureSheet/ExportDir", {}};
    StoredValue<ExportSettings::Layers> sheetLayers{values, "Preferences/ExportExposureSheet/Layers", {}};
    StoredValue<ExportSettings::Frames> sheetFrames{values, "Preferences/ExportExposureSheet/Frames", {}};
    StoredValue<ExportExposureSheetSettings::ImageFormat> sheetImageFormat{
        values, "Preferences/ExportExposureSheet/ImageFormat", {}};
    StoredValue<bool> sheetIncludeAudio{values, "Preferences/ExportExposureSheet/IncludeAudio", false};

    StoredValue<QString> videoDir{values, "Preferences/ExportVideo/ExportDir", {}};
    StoredValue<ExportSettings::Layers> videoLayers{values, "Preferences/ExportVideo/Layers", {}};
    StoredValue<ExportSettings::Frames> videoFrames{values, "Preferences/ExportVideo/Frames", {}};
    StoredValue<ExportVideoSettings::VideoFormat> videoFormat{values, "Preferences/ExportVideo/VideoFormat",
                                                              ExportVideoSettings::VideoFormat::MP4};
    StoredValue<bool> videoIncludeAlpha{values, "Preferences/ExportVideo/IncludeAlpha", true};
    StoredValue<bool> videoIncludeAudio{values, "Preferences/ExportVideo/IncludeAudio", true};
    StoredValue<int> videoScalePercent;

    StoredBacklight backlightA;
    StoredBacklight backlightB;
    StoredValue<BacklightSettings::BacklightSet> currentBacklightSetting{
        values, "Preferences/CurrentBacklightSetting", BacklightSettings::BacklightSet::BacklightSettingA};

    StoredValue<MR::ThumbnailSize> thumbnailSize{values, "Preferences/XSheet/ThumbnailSize",
                                                 MR::ThumbnailSize::ThumbnailMedium};
    StoredValue<bool> showXSheetTopBar{values, "Preferences/XSheet/ShowTopBar", false};
    StoredValue<QString> toolBarActionList;
    StoredValue<QString> primaryActionList;
    StoredValue<QString> secondaryActionList;
    StoredNumbers toolRanges{values, "Preferences/Tools"};
    StoredValue<QStringList> recentScenes{values, "RecentFiles/RecentScenes", {}};
    StoredValue<QByteArray> mainWindowGeometry{values, "MainWindow/geometry", {}};
    StoredLayout windowLayout{values};
    StoredValue<QByteArray> referenceDisplayGeometry{values, "ReferenceDisplay/geometry", {}};
    StoredValue<QByteArray> xSheetWindowGeometry{values, "XSheetWindow/geometry", {}};

    // In memory only.
    bool slideMode = false;
    bool backlightOn = backlightDefaults.on;
    bool onlyKeyFrames = backlightDefaults.onlyKeyFrames;
};

} // namespace Model
