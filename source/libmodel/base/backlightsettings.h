#pragma once

#include <QList>
#include <QObject>

namespace Model {

/// One set of preferences of the backlight: how strongly which neighbouring frames shine through. A value.
struct BacklightSetting
{
    Q_GADGET

public:
    /// Whether neighbouring frames are tinted by their distance.
    enum class HueShift {
        UseHueShift,
        NoHueShift,
    };
    Q_ENUM(HueShift)

    /// Which frames count as neighbours at the ends of the range.
    enum class ShowOption {
        StopAtEnds,
        WrapAtEnds,
        ShowOutsideRange,
    };
    Q_ENUM(ShowOption)

    /// Which layers shine through.
    enum class Layers {
        BacklightVisibleLayers,
        BacklightActiveLayerOnly,
    };
    Q_ENUM(Layers)

    /// Opacities, 0 to 1, of the frames one, two, ... before the current one; an entry of at most 0.01 ends the list.
    QList<double> opacityLevelsBefore{0.30, 0.20, 0.15};
    /// The same for the frames after the current one.
    QList<double> opacityLevelsAfter{0.30, 0.20, 0.15};
    HueShift hueShift = HueShift::UseHueShift;
    ShowOption showOption = ShowOption::StopAtEnds;
    Layers layers = Layers::BacklightVisibleLayers;

    bool operator==(const BacklightSetting &other) const = default;
};

/// The backlight as a whole: its two sets of preferences, which of them is used, and its switches. A value.
struct BacklightSettings
{
    Q_GADGET

public:
    enum class BacklightSet {
        BacklightSettingA,
        BacklightSettingB,
    };
    Q_ENUM(BacklightSet)

    /// Whether neighbouring frames are shown at all; not stored, on at every start.
    bool on = true;
    BacklightSet currentSet = BacklightSet::BacklightSettingA;
    BacklightSetting settingA;
    /// Starts with one neighbour on each side.
    BacklightSetting settingB{.opacityLevelsBefore = {0.30}, .opacityLevelsAfter = {0.30}};
    /// Whether only key drawings of the active layer count as neighbours; not stored.
    bool onlyKeyFrames = false;

    /// The set in use.
    [[nodiscard]] const BacklightSetting &current() const
    {
        return currentSet == BacklightSet::BacklightSettingA ? settingA : settingB;
    }

    bool operator==(const BacklightSettings &other) const = default;
};

} // namespace Model
