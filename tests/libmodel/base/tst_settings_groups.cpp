// The values that are read and written as structures: backlight, exports, layout and the ranges of tools.

#include "libmodel/base/settings.h"

#include "support/isolatedstore.h"

#include <QSignalSpy>
#include <QTest>

using namespace Model;

namespace {

/// All of the store, as text.
QMap<QString, QString> stored()
{
    const QSettings store;
    QMap<QString, QString> values;
    const QStringList keys = store.allKeys();
    for (const QString &key : keys)
        values.insert(key, store.value(key).toString());
    return values;
}

BacklightSetting unlikeTheDefault()
{
    return {.opacityLevelsBefore = {0.5, 0.25},
            .opacityLevelsAfter = {},
            .hueShift = BacklightSetting::HueShift::NoHueShift,
            .showOption = BacklightSetting::ShowOption::ShowOutsideRange,
            .layers = BacklightSetting::Layers::BacklightActiveLayerOnly};
}

} // namespace

class tst_SettingsGroups : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_store.reset(); }

    void backlightStartsAtItsDefaults();
    void backlightSetsAreStoredByField();
    void onlyTheChangedFieldOfASetIsWritten();
    void backlightSetsAreLoaded();
    void backlightSwitchesAreNotStored();
    void backlightChangesAreSignalled();
    void defaultOpacitiesAreWrittenWithTwoDecimals();
    void opacityTextIsReadByParts_data();
    void opacityTextIsReadByParts();

    void exportFramesStartAtTheirDefaults();
    void exportFramesAreStoredAndLoaded();
    void exportExposureSheetStartsAtItsDefaults();
    void exportExposureSheetIsStoredAndLoaded();
    void exportVideoStartsAtItsDefaults();
    void exportVideoIsStoredAndLoaded();

    void layoutNeverStoredIsTheCallers();
    void layoutIsStoredAndLoaded();
    void layoutStoredInPartIsCompletedByTheCaller();
    void sameLayoutWritesNothing();

    void toolRangesNeverStoredAreTheCallers();
    void toolRangesAreStoredByPreset();
    void toolRangesAreLoaded();
    void toolRangesStoredInPartAreCompletedByTheCaller();
    void sameToolRangesWriteNothing();
    void toolRangesThatAreNoNumbersAreTheCallers();

private:
    IsolatedStore m_store;
};

void tst_SettingsGroups::backlightStartsAtItsDefaults()
{
    const BacklightSettings settings = Settings::instance()->backlightSettings();
    QCOMPARE(settings.on, true);
    QCOMPARE(settings.onlyKeyFrames, false);
    QCOMPARE(settings.currentSet, BacklightSettings::BacklightSet::BacklightSettingA);
    QCOMPARE(settings.settingA.opacityLevelsBefore, (QList<double>{0.30, 0.20, 0.15}));
    QCOMPARE(settings.settingA.opacityLevelsAfter, (QList<double>{0.30, 0.20, 0.15}));
    QCOMPARE(settings.settingB.opacityLevelsBefore, QList<double>{0.30});
    QCOMPARE(settings.settingB.opacityLevelsAfter, QList<double>{0.30});
    for (const BacklightSetting &set : {settings.settingA, settings.settingB}) {
        QCOMPARE(set.hueShift, BacklightSetting::HueShift::UseHueShift);
        QCOMPARE(set.showOption, BacklightSetting::ShowOption::StopAtEnds);
        QCOMPARE(set.layers, BacklightSetting::Layers::BacklightVisibleLayers);
    }
}

void tst_SettingsGroups::backlightSetsAreStoredByField()
{
    BacklightSettings settings = Settings::instance()->backlightSettings();
    settings.settingB = unlikeTheDefault();
    settings.currentSet = BacklightSettings::BacklightSet::BacklightSettingB;
    Settings::instance()->setBacklightSettings(settings);
    QCOMPARE(stored(), (QMap<QString, QString>{
                           {"Preferences/BacklightSettingB/OpacityLevelsBefore", "0.50;0.25;"},
                           {"Preferences/BacklightSettingB/OpacityLevelsAfter", ""},
                           {"Preferences/BacklightSettingB/HueShift", "NoHueShift"},
                           {"Preferences/BacklightSettingB/ShowOption", "ShowOutsideRange"},
                           {"Preferences/BacklightSettingB/Layers", "BacklightActiveLayerOnly"},
                           {"Preferences/CurrentBacklightSetting", "BacklightSettingB"},
                       }));
}

void tst_SettingsGroups::onlyTheChangedFieldOfASetIsWritten()
{
    BacklightSettings settings = Settings::instance()->backlightSettings();
    settings.settingA.showOption = BacklightSetting::ShowOption::WrapAtEnds;
    Settings::instance()->setBacklightSettings(settings);
    QCOMPARE(stored(), (QMap<QString, QString>{{"Preferences/BacklightSettingA/ShowOption", "WrapAtEnds"}}));
}

void tst_SettingsGroups::backlightSetsAreLoaded()
{
    BacklightSettings settings = Settings::instance()->backlightSettings();
    settings.settingA = unlikeTheDefault();
    settings.currentSet = BacklightSettings::BacklightSet::BacklightSettingB;
    Settings::instance()->setBacklightSettings(settings);
    Settings::instance()->load();
    QCOMPARE(Settings::instance()->backlightSettings(), settings);
}

void tst_SettingsGroups::backlightSwitchesAreNotStored()
{
    BacklightSettings settings = Settings::instance()->backlightSettings();
    settings.on = false;
    settings.onlyKeyFrames = true;
    Settings::instance()->setBacklightSettings(settings);
    QCOMPARE(Settings::instance()->backlightSettings(), settings);
    QVERIFY(stored().isEmpty());
    Settings::instance()->setBacklightSettings({});
}

void tst_SettingsGroups::backlightChangesAreSignalled()
{
    QSignalSpy changes(Settings::instance(), &Settings::backlightSettingsChanged);
    BacklightSettings settings = Settings::instance()->backlightSettings();
    Settings::instance()->setBacklightSettings(settings);
    QVERIFY(changes.isEmpty());
    settings.settingA.opacityLevelsAfter = {0.9};
    Settings::instance()->setBacklightSettings(settings);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes[0][0].value<BacklightSettings>(), settings);
}

void tst_SettingsGroups::defaultOpacitiesAreWrittenWithTwoDecimals()
{
    BacklightSettings settings = Settings::instance()->backlightSettings();
    settings.settingA.opacityLevelsBefore = {1.0};
    Settings::instance()->setBacklightSettings(settings);
    settings.settingA.opacityLevelsBefore = {0.30, 0.20, 0.15};
    Settings::instance()->setBacklightSettings(settings);
    QCOMPARE(stored().value("Preferences/BacklightSettingA/OpacityLevelsBefore"), QStringLiteral("0.30;0.20;0.15;"));
}

void tst_SettingsGroups::opacityTextIsReadByParts_data()
{
    QTest::addColumn<QVariant>("text");
    QTest::addColumn<QList<double>>("levels");

    const auto row = [](const char *name, const QVariant &text, const QList<double> &levels) {
        QTest::newRow(name) << text << levels;
    };
    row("as written", QStringLiteral("0.30;0.20;"), {0.30, 0.20});
    row("without the last separator", QStringLiteral("0.30;0.20"), {0.30, 0.20});
    row("empty", QString(), {});
    row("empty parts are skipped", QStringLiteral(";;0.4;;0.2;"), {0.4, 0.2});
    row("a comma loses its entry", QStringLiteral("0,30;0.20;"), {0.20});
    row("a comma before three digits, too", QStringLiteral("0,300;0.20;"), {0.20});
    row("a comma that made a list of the text", QStringList{"0.25;0", "30;0.20;"}, {0.25, 0.20});
    row("words are dropped", QStringLiteral("half;0.20;"), {0.20});
    row("what is no number is dropped", QStringLiteral("nan;inf;0.20;"), {0.20});
    row("beyond the bounds is held", QStringLiteral("7;-1;"), {1.0, 0.0});
}

void tst_SettingsGroups::opacityTextIsReadByParts()
{
    QFETCH(QVariant, text);
    QFETCH(QList<double>, levels);
    m_store.load(QStringLiteral("Preferences/BacklightSettingA/OpacityLevelsAfter"), text);
    QCOMPARE(Settings::instance()->backlightSettings().settingA.opacityLevelsAfter, levels);
}

void tst_SettingsGroups::exportFramesStartAtTheirDefaults()
{
    const ExportFramesSettings settings = Settings::instance()->exportFramesSettings();
    QCOMPARE(settings.exportDir, QString());
    QCOMPARE(settings.layers, ExportSettings::Layers::AllLayers);
    QCOMPARE(settings.frames, ExportSettings::Frames::AllFrames);
    QCOMPARE(settings.clones, ExportFramesSettings::Clones::ExcludeClones);
    QCOMPARE(settings.imageFormat, ExportFramesSettings::ImageFormat::PNG);
    QCOMPARE(settings.combineLayers, false);
    QCOMPARE(settings.makeAllLinesBlack, false);
    QCOMPARE(settings.includeAlpha, true);
}

void tst_SettingsGroups::exportFramesAreStoredAndLoaded()
{
    ExportFramesSettings settings;
    settings.exportDir = QStringLiteral("/out");
    settings.layers = ExportSettings::Layers::ActiveLayerOnly;
    settings.frames = ExportSettings::Frames::RangeOnly;
    settings.clones = ExportFramesSettings::Clones::IncludeClonesSimpleSequence;
    settings.imageFormat = ExportFramesSettings::ImageFormat::OpenEXR;
    settings.combineLayers = true;
    settings.makeAllLinesBlack = true;
    settings.includeAlpha = false;
    Settings::instance()->setExportFramesSettings(settings);
    QCOMPARE(stored(), (QMap<QString, QString>{
                           {"Preferences/ExportFrames/ExportDir", "/out"},
                           {"Preferences/ExportFrames/Layers", "ActiveLayerOnly"},
                           {"Preferences/ExportFrames/Frames", "RangeOnly"},
                           {"Preferences/ExportFrames/Clones", "IncludeClonesSimpleSequence"},
                           {"Preferences/ExportFrames/CombineLayers", "true"},
                           {"Preferences/ExportFrames/MakeAllLinesBlack", "true"},
                           {"Preferences/ExportFrames/ImageFormat", "OpenEXR"},
                           {"Preferences/ExportFrames/IncludeAlpha", "false"},
                       }));
    Settings::instance()->load();
    QCOMPARE(Settings::instance()->exportFramesSettings(), settings);
}

void tst_SettingsGroups::exportExposureSheetStartsAtItsDefaults()
{
    const ExportExposureSheetSettings settings = Settings::instance()->exportExposureSheetSettings();
    QCOMPARE(settings.exportDir, QString());
    QCOMPARE(settings.layers, ExportSettings::Layers::AllLayers);
    QCOMPARE(settings.frames, ExportSettings::Frames::AllFrames);
    QCOMPARE(settings.format, ExportExposureSheetSettings::Format::OCA);
    QCOMPARE(settings.imageFormat, ExportExposureSheetSettings::ImageFormat::PNG);
    QCOMPARE(settings.includeAudio, false);
}

void tst_SettingsGroups::exportExposureSheetIsStoredAndLoaded()
{
    ExportExposureSheetSettings settings;
    settings.exportDir = QStringLiteral("/out");
    settings.layers = ExportSettings::Layers::VisibleLayers;
    settings.frames = ExportSettings::Frames::RangeOnly;
    settings.imageFormat = ExportExposureSheetSettings::ImageFormat::OpenEXR;
    settings.includeAudio = true;
    Settings::instance()->setExportExposureSheetSettings(settings);
    QCOMPARE(stored(), (QMap<QString, QString>{
                           {"Preferences/ExportExposureSheet/ExportDir", "/out"},
                           {"Preferences/ExportExposureSheet/Layers", "VisibleLayers"},
                           {"Preferences/ExportExposureSheet/Frames", "RangeOnly"},
                           {"Preferences/ExportExposureSheet/ImageFormat", "OpenEXR"},
                           {"Preferences/ExportExposureSheet/IncludeAudio", "true"},
                       }));
    Settings::instance()->load();
    QCOMPARE(Settings::instance()->exportExposureSheetSettings(), settings);
}

void tst_SettingsGroups::exportVideoStartsAtItsDefaults()
{
    const ExportVideoSettings settings = Settings::instance()->exportVideoSettings();
    QCOMPARE(settings.exportDir, QString());
    QCOMPARE(settings.layers, ExportSettings::Layers::AllLayers);
    QCOMPARE(settings.frames, ExportSettings::Frames::AllFrames);
    QCOMPARE(settings.videoFormat, ExportVideoSettings::VideoFormat::MP4);
    QCOMPARE(settings.includeAlpha, true);
    QCOMPARE(settings.includeAudio, true);
    QCOMPARE(settings.scalePercent, 100);
}

void tst_SettingsGroups::exportVideoIsStoredAndLoaded()
{
    ExportVideoSettings settings;
    settings.exportDir = QStringLiteral("/out");
    settings.layers = ExportSettings::Layers::ActiveLayerOnly;
    settings.frames = ExportSettings::Frames::RangeOnly;
    settings.videoFormat = ExportVideoSettings::VideoFormat::GIF;
    settings.includeAlpha = false;
    settings.includeAudio = false;
    settings.scalePercent = 50;
    Settings::instance()->setExportVideoSettings(settings);
    QCOMPARE(stored(), (QMap<QString, QString>{
                           {"Preferences/ExportVideo/ExportDir", "/out"},
                           {"Preferences/ExportVideo/Layers", "ActiveLayerOnly"},
                           {"Preferences/ExportVideo/Frames", "RangeOnly"},
                           {"Preferences/ExportVideo/VideoFormat", "GIF"},
                           {"Preferences/ExportVideo/IncludeAlpha", "false"},
                           {"Preferences/ExportVideo/IncludeAudio", "false"},
                           {"Preferences/ExportVideo/ScalePercent", "50"},
                       }));
    Settings::instance()->load();
    QCOMPARE(Settings::instance()->exportVideoSettings(), settings);
}

void tst_SettingsGroups::layoutNeverStoredIsTheCallers()
{
    const WindowLayout mine{.xSheetOnLeft = true, .xSheetVisible = false, .xSheetWidth = 321};
    QCOMPARE(Settings::instance()->windowLayout(mine), mine);
}

void tst_SettingsGroups::layoutIsStoredAndLoaded()
{
    const WindowLayout layout{.xSheetOnLeft = true,
                              .xSheetDetached = true,
                              .xSheetVisible = false,
                              .toolBarOnLeft = false,
                              .toolBarVisible = false,
                              .xSheetWidth = 444};
    Settings::instance()->setWindowLayout(layout);
    QCOMPARE(stored(), (QMap<QString, QString>{
                           {"MainWindow/xSheetOnLeft", "true"},
                           {"MainWindow/xSheetDetached", "true"},
                           {"MainWindow/xSheetVisible", "false"},
                           {"MainWindow/toolBarOnLeft", "false"},
                           {"MainWindow/toolBarVisible", "false"},
                           {"MainWindow/xSheetWidth", "444"},
                       }));
    Settings::instance()->load();
    QCOMPARE(Settings::instance()->windowLayout({}), layout);
}

void tst_SettingsGroups::layoutStoredInPartIsCompletedByTheCaller()
{
    m_store.load(QStringLiteral("MainWindow/xSheetWidth"), 200);
    const WindowLayout mine{.xSheetDetached = true, .xSheetWidth = 321};
    QCOMPARE(Settings::instance()->windowLayout(mine), (WindowLayout{.xSheetDetached = true, .xSheetWidth = 200}));
}

void tst_SettingsGroups::sameLayoutWritesNothing()
{
    Settings::instance()->setWindowLayout({.xSheetWidth = 5});
    QSettings().clear();
    Settings::instance()->setWindowLayout({.xSheetWidth = 5});
    QVERIFY(stored().isEmpty());
}

void tst_SettingsGroups::toolRangesNeverStoredAreTheCallers()
{
    const ToolRanges mine{.opacityLower = 1, .opacityUpper = 2, .sizeLower = 3, .sizeUpper = 4};
    QCOMPARE(Settings::instance()->toolRanges(QStringLiteral("Pencil"), MR::ToolPreset::Preset2, mine), mine);
}

void tst_SettingsGroups::toolRangesAreStoredByPreset()
{
    const ToolRanges ranges{.opacityLower = 1.5, .opacityUpper = 2.5, .sizeLower = 3.5, .sizeUpper = 4.5};
    Settings::instance()->setToolRanges(QStringLiteral("Pencil"), MR::ToolPreset::Default, ranges);
    Settings::instance()->setToolSizeRange(QStringLiteral("Brush"), MR::ToolPreset::Preset3, 10, 20);
    QCOMPARE(stored(), (QMap<QString, QString>{
                           {"Preferences/Tools/Pencil/OpacityRangeLowerPercent", "1.5"},
                           {"Preferences/Tools/Pencil/OpacityRangeUpperPercent", "2.5"},
                           {"Preferences/Tools/Pencil/SizeRangeLowerPercent", "3.5"},
                           {"Preferences/Tools/Pencil/SizeRangeUpperPercent", "4.5"},
                           {"Preferences/Tools/Brush/Preset3/SizeRangeLowerPercent", "10"},
                           {"Preferences/Tools/Brush/Preset3/SizeRangeUpperPercent", "20"},
                       }));
}

void tst_SettingsGroups::toolRangesAreLoaded()
{
    const ToolRanges ranges{.opacityLower = 1.5, .opacityUpper = 2.5, .sizeLower = 3.5, .sizeUpper = 4.5};
    Settings::instance()->setToolRanges(QStringLiteral("Marker"), MR::ToolPreset::Preset1, ranges);
    Settings::instance()->load();
    QCOMPARE(Settings::instance()->toolRanges(QStringLiteral("Marker"), MR::ToolPreset::Preset1, {}), ranges);
    QCOMPARE(Settings::instance()->toolRanges(QStringLiteral("Marker"), MR::ToolPreset::Default, {}), ToolRanges());
}

void tst_SettingsGroups::toolRangesStoredInPartAreCompletedByTheCaller()
{
    m_store.load(QStringLiteral("Preferences/Tools/Brush/SizeRangeUpperPercent"), 77.0);
    const ToolRanges mine{.opacityLower = 1, .opacityUpper = 2, .sizeLower = 3, .sizeUpper = 4};
    QCOMPARE(Settings::instance()->toolRanges(QStringLiteral("Brush"), MR::ToolPreset::Default, mine),
             (ToolRanges{.opacityLower = 1, .opacityUpper = 2, .sizeLower = 3, .sizeUpper = 77}));
}

void tst_SettingsGroups::sameToolRangesWriteNothing()
{
    Settings::instance()->setToolRanges(QStringLiteral("Pencil"), MR::ToolPreset::Default, {});
    QSettings().clear();
    Settings::instance()->setToolRanges(QStringLiteral("Pencil"), MR::ToolPreset::Default, {});
    QVERIFY(stored().isEmpty());
}

void tst_SettingsGroups::toolRangesThatAreNoNumbersAreTheCallers()
{
    m_store.load(QStringLiteral("Preferences/Tools/Brush/SizeRangeUpperPercent"), QStringLiteral("nan"));
    m_store.load(QStringLiteral("Preferences/Tools/Brush/SizeRangeLowerPercent"), QStringLiteral("thick"));
    QCOMPARE(Settings::instance()->toolRanges(QStringLiteral("Brush"), MR::ToolPreset::Default, {}), ToolRanges());
}

QTEST_GUILESS_MAIN(tst_SettingsGroups)
#include "tst_settings_groups.moc"
