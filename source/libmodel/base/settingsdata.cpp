#include "libmodel/base/settingsdata.h"

#include "libmodel/base/settingsdefaults.h"

#include <array>
#include <cmath>

namespace Model {

namespace {

constexpr std::array<const char *, 5> backlightKeysA{
    "Preferences/BacklightSettingA/OpacityLevelsBefore", "Preferences/BacklightSettingA/OpacityLevelsAfter",
    "Preferences/BacklightSettingA/HueShift", "Preferences/BacklightSettingA/ShowOption",
    "Preferences/BacklightSettingA/Layers"};
constexpr std::array<const char *, 5> backlightKeysB{
    "Preferences/BacklightSettingB/OpacityLevelsBefore", "Preferences/BacklightSettingB/OpacityLevelsAfter",
    "Preferences/BacklightSettingB/HueShift", "Preferences/BacklightSettingB/ShowOption",
    "Preferences/BacklightSettingB/Layers"};

struct LayoutSwitch
{
    const char *key;
    bool WindowLayout::*field;
};

constexpr LayoutSwitch layoutSwitches[] = {
    {"xSheetOnLeft", &WindowLayout::xSheetOnLeft},     {"xSheetDetached", &WindowLayout::xSheetDetached},
    {"xSheetVisible", &WindowLayout::xSheetVisible},   {"toolBarOnLeft", &WindowLayout::toolBarOnLeft},
    {"toolBarVisible", &WindowLayout::toolBarVisible},
};
constexpr const char *layoutWidthKey = "xSheetWidth";

QString layoutPath(const QString &key)
{
    return QStringLiteral("MainWindow/") + key;
}

template<int lowest, int highest>
bool isWithin(const int &number)
{
    return number >= lowest && number <= highest;
}

bool isFrameSize(const QSize &size)
{
    constexpr int largest = 8192;
    return isWithin<1, largest>(size.width()) && isWithin<1, largest>(size.height());
}

bool isFrameRate(const double &framesPerSecond)
{
    return framesPerSecond >= 0.1 && framesPerSecond <= 60.0;
}

} // namespace

StoredBacklight::StoredBacklight(std::vector<Storable *> &list, const std::array<const char *, 5> &paths,
                                 const BacklightSetting &initial)
    : opacityLevelsBefore(list, paths[0], initial.opacityLevelsBefore),
      opacityLevelsAfter(list, paths[1], initial.opacityLevelsAfter),
      hueShift(list, paths[2], initial.hueShift),
      showOption(list, paths[3], initial.showOption),
      layers(list, paths[4], initial.layers)
{
}

BacklightSetting StoredBacklight::value() const
{
    return {.opacityLevelsBefore = opacityLevelsBefore.value(),
            .opacityLevelsAfter = opacityLevelsAfter.value(),
            .hueShift = hueShift.value(),
            .showOption = showOption.value(),
            .layers = layers.value()};
}

bool StoredBacklight::set(const BacklightSetting &setting)
{
    const SettingsBatch batch;
    // No short cut: every field has to be set.
    bool changed = opacityLevelsBefore.set(setting.opacityLevelsBefore);
    changed |= opacityLevelsAfter.set(setting.opacityLevelsAfter);
    changed |= hueShift.set(setting.hueShift);
    changed |= showOption.set(setting.showOption);
    changed |= layers.set(setting.layers);
    return changed;
}

StoredNumbers::StoredNumbers(std::vector<Storable *> &list, const char *group) : m_group(group)
{
    list.push_back(this);
}

void StoredNumbers::load(const QSettings &store)
{
    m_values.clear();
    const QString prefix = QString::fromLatin1(m_group) + QLatin1Char('/');
    const QStringList keys = store.allKeys();
    for (const QString &key : keys) {
        if (!key.startsWith(prefix))
            continue;
        bool isNumber = false;
        const double number = store.value(key).toDouble(&isNumber);
        if (isNumber && std::isfinite(number))
            m_values.insert(key.mid(prefix.size()), number);
    }
}

void StoredNumbers::set(const QString &key, double value)
{
    const auto standing = m_values.constFind(key);
    if (standing != m_values.constEnd() && *standing == value)
        return;
    m_values.insert(key, value);
    SettingsBatch().store().setValue(QString::fromLatin1(m_group) + QLatin1Char('/') + key, value);
}

StoredLayout::StoredLayout(std::vector<Storable *> &list)
{
    list.push_back(this);
}

void StoredLayout::load(const QSettings &store)
{
    m_values.clear();
    const auto take = [this, &store](const char *name, QMetaType type) {
        const QString key = QString::fromLatin1(name);
        QVariant stored = store.value(layoutPath(key));
        if (stored.isValid() && stored.convert(type))
            m_values.insert(key, stored);
    };
    for (const LayoutSwitch &entry : layoutSwitches)
        take(entry.key, QMetaType::fromType<bool>());
    take(layoutWidthKey, QMetaType::fromType<int>());
}

WindowLayout StoredLayout::value(const WindowLayout &defaults) const
{
    WindowLayout layout = defaults;
    for (const LayoutSwitch &entry : layoutSwitches)
        layout.*entry.field = m_values.value(QString::fromLatin1(entry.key), defaults.*entry.field).toBool();
    layout.xSheetWidth = m_values.value(QString::fromLatin1(layoutWidthKey), defaults.xSheetWidth).toInt();
    return layout;
}

void StoredLayout::set(const WindowLayout &layout)
{
    const SettingsBatch batch;
    const auto store = [this](const char *name, const QVariant &value) {
        const QString key = QString::fromLatin1(name);
        if (m_values.value(key) == value)
            return;
        m_values.insert(key, value);
        SettingsBatch().store().setValue(layoutPath(key), value);
    };
    for (const LayoutSwitch &entry : layoutSwitches)
        store(entry.key, layout.*entry.field);
    store(layoutWidthKey, layout.xSheetWidth);
}

Settings::Private::Private()
    : defaultFrameSize(values, "Preferences/DefaultFrameSize", QSize(1920, 1080), isFrameSize),
      defaultFrameRate(values, "Preferences/DefaultFrameRate", 12.0, isFrameRate),
      defaultInitialNumberOfFrames(values, "Preferences/DefaultInitialNumberOfFrames", 1, isWithin<1, 10000>),
      uiScalePercent(values, "Preferences/UIScalePercent", SettingsDefaults::uiScalePercent, isWithin<1, 1000>),
      autoSaveIntervalMins(values, "Preferences/AutoSave/IntervalMins", SettingsDefaults::autoSaveIntervalMins,
                           isWithin<1, 24 * 60>),
      autoSaveNumFiles(values, "Preferences/AutoSave/NumFiles", SettingsDefaults::autoSaveNumFiles, isWithin<1, 99>),
      videoScalePercent(values, "Preferences/ExportVideo/ScalePercent", 100, isWithin<1, 10000>),
      backlightA(values, backlightKeysA, backlightDefaults.settingA),
      backlightB(values, backlightKeysB, backlightDefaults.settingB),
      toolBarActionList(values, "Preferences/ToolBar/ActionList",
                        QStringLiteral("Draw|Erase|Spacer|BacklightOnOff|Spacer|Pan|Zoom|Rotate|Spacer|"
                                       "AddBlankDrawing|ClearDrawingMakingBlank|DiscardDrawing")),
      primaryActionList(values, "Preferences/SpeedDials/PrimaryActionList",
                        QStringLiteral("Play|Cutter|Erase|FitPaperToView|BacklightOnOff|ResetView|Draw|Lasso")),
      secondaryActionList(values, "Preferences/SpeedDials/SecondaryActionList",
                          QStringLiteral("ToggleXSheetDragMode|LoseDrawingMakingHold|AddBlankDrawing|PencilPreset2|"
                                         "PencilPreset1|BrushPreset1|DiscardDrawing|ClearDrawingMakingBlank"))
{
}

} // namespace Model
