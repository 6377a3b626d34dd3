#include "libmodel/actions/settingsmirrors.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/base/settings.h"
#include "libmodel/base/settingsdefaults.h"

#include <QAction>
#include <QMetaEnum>

#include <algorithm>

namespace Model {

namespace {

/// One action of a group that stands for a setting with several values.
template<typename T>
struct Choice
{
    T value;
    MR::Action action;
};

constexpr Choice<int> autoSaveIntervals[] = {
    {5, MR::Action::AutoSaveInterval5Min},
    {15, MR::Action::AutoSaveInterval15Min},
    {30, MR::Action::AutoSaveInterval30Min},
    {60, MR::Action::AutoSaveInterval60Min},
};

constexpr Choice<int> autoSaveFiles[] = {
    {1, MR::Action::AutoSaveFiles1}, {2, MR::Action::AutoSaveFiles2}, {3, MR::Action::AutoSaveFiles3},
    {5, MR::Action::AutoSaveFiles5}, {9, MR::Action::AutoSaveFiles9},
};

constexpr Choice<int> uiScales[] = {
    {75, MR::Action::UIScale75},
    {100, MR::Action::UIScale100},
    {125, MR::Action::UIScale125},
    {150, MR::Action::UIScale150},
};

constexpr Choice<MR::TransparencyType> transparencies[] = {
    {MR::TransparencyType::TransparencySmallCheckersLight, MR::Action::TransparencyShownAsSmallCheckersLight},
    {MR::TransparencyType::TransparencySmallCheckersDark, MR::Action::TransparencyShownAsSmallCheckersDark},
    {MR::TransparencyType::TransparencyLargeCheckersLight, MR::Action::TransparencyShownAsLargeCheckersLight},
    {MR::TransparencyType::TransparencyLargeCheckersDark, MR::Action::TransparencyShownAsLargeCheckersDark},
    {MR::TransparencyType::TransparencyWhite, MR::Action::TransparencyShownAsWhite},
    {MR::TransparencyType::TransparencyLightGrey, MR::Action::TransparencyShownAsLightGrey},
    {MR::TransparencyType::TransparencyDarkGrey, MR::Action::TransparencyShownAsDarkGrey},
    {MR::TransparencyType::TransparencyBlack, MR::Action::TransparencyShownAsBlack},
};

constexpr Choice<MR::GridType> gridTypes[] = {
    {MR::GridType::FieldGuide, MR::Action::GridTypeFieldGuide},
    {MR::GridType::Safety, MR::Action::GridTypeSafety},
    {MR::GridType::Thirds, MR::Action::GridTypeThirds},
    {MR::GridType::Diagonals, MR::Action::GridTypeDiagonals},
    {MR::GridType::Renaissance, MR::Action::GridTypeRenaissance},
};

constexpr Choice<MR::ThumbnailSize> thumbnailSizes[] = {
    {MR::ThumbnailSize::ThumbnailTiny, MR::Action::ThumbnailSizeTiny},
    {MR::ThumbnailSize::ThumbnailSmall, MR::Action::ThumbnailSizeSmall},
    {MR::ThumbnailSize::ThumbnailMedium, MR::Action::ThumbnailSizeMedium},
    {MR::ThumbnailSize::ThumbnailLarge, MR::Action::ThumbnailSizeLarge},
};

constexpr Choice<bool> dragModes[] = {
    {true, MR::Action::SlideMode},
    {false, MR::Action::AddClonesMode},
};

constexpr Choice<bool> drawingOnClones[] = {
    {false, MR::Action::FreelyDrawOnClones},
    {true, MR::Action::ClonesLockedForDrawing},
};

/// A setting as Settings offers it. Its signal may or may not carry the value.
template<typename T, typename Setter, typename Signal>
struct Setting
{
    T (Settings::*get)() const;
    Setter set;
    Signal changed;
};

/// Ties each of \a choices to \a setting.
template<typename T, std::size_t count, typename... Rest>
void mirrorChoices(ActionManager &catalogue, const Choice<T> (&choices)[count], const Setting<T, Rest...> &setting)
{
    Settings *settings = Settings::instance();
    for (const Choice<T> &choice : choices) {
        QAction *action = catalogue.action(choice.action);
        const T value = choice.value;
        const auto follow = [=] {
            if ((settings->*setting.get)() == value)
                action->setChecked(true);
        };
        follow();
        QObject::connect(settings, setting.changed, action, follow);
        QObject::connect(action, &QAction::toggled, &catalogue, &ActionManager::aboutToChangeSetting);
        QObject::connect(action, &QAction::toggled, settings, [=](bool checked) {
            if (checked)
                (settings->*setting.set)(value);
        });
    }
}

/// The same for a setting that may have been stored with a value which no action stands for: \a initial replaces it,
/// in the store, too.
template<std::size_t count, typename... Rest>
void mirrorNumbers(ActionManager &catalogue, const Choice<int> (&choices)[count], const Setting<int, Rest...> &setting,
                   int initial)
{
    Settings *settings = Settings::instance();
    const int value = (settings->*setting.get)();
    const bool isOffered = std::ranges::find(choices, value, &Choice<int>::value) != std::end(choices);
    // Set even if it is, for that replaces what the settings could make nothing of.
    (settings->*setting.set)(isOffered ? value : initial);
    mirrorChoices(catalogue, choices, setting);
}

/// Ties the check of the action \a which to \a setting, which it stands for when it is \a whenChecked and not
/// otherwise.
template<typename T, typename... Rest>
void mirrorSwitch(ActionManager &catalogue, MR::Action which, const Setting<T, Rest...> &setting, T whenChecked,
                  T otherwise)
{
    QAction *action = catalogue.action(which);
    Settings *settings = Settings::instance();
    const auto follow = [=] { action->setChecked((settings->*setting.get)() == whenChecked); };
    follow();
    QObject::connect(settings, setting.changed, action, follow);
    QObject::connect(action, &QAction::toggled, &catalogue, &ActionManager::aboutToChangeSetting);
    QObject::connect(action, &QAction::toggled, settings,
                     [=](bool checked) { (settings->*setting.set)(checked ? whenChecked : otherwise); });
}

void mirrorGroups(ActionManager &catalogue)
{
    mirrorNumbers(
        catalogue, autoSaveIntervals,
        Setting{&Settings::autoSaveIntervalMins, &Settings::setAutoSaveIntervalMins, &Settings::autoSaveChanged},
        SettingsDefaults::autoSaveIntervalMins);
    mirrorNumbers(catalogue, autoSaveFiles,
                  Setting{&Settings::autoSaveNumFiles, &Settings::setAutoSaveNumFiles, &Settings::autoSaveChanged},
                  SettingsDefaults::autoSaveNumFiles);
    mirrorNumbers(catalogue, uiScales,
                  Setting{&Settings::uiScalePercent, &Settings::setUiScalePercent, &Settings::UIScaleChanged},
                  SettingsDefaults::uiScalePercent);
    mirrorChoices(
        catalogue, transparencies,
        Setting{&Settings::transparencyType, &Settings::setTransparencyType, &Settings::transparencyTypeChanged});
    mirrorChoices(catalogue, gridTypes,
                  Setting{&Settings::gridType, &Settings::setGridType, &Settings::gridTypeChanged});
    mirrorChoices(catalogue, thumbnailSizes,
                  Setting{&Settings::thumbnailSize, &Settings::setThumbnailSize, &Settings::thumbnailSizeChanged});
    mirrorChoices(catalogue, dragModes,
                  Setting{&Settings::slideMode, &Settings::setSlideMode, &Settings::slideModeChanged});
    mirrorChoices(catalogue, drawingOnClones,
                  Setting{&Settings::clonesLockedForDrawing, &Settings::setClonesLockedForDrawing,
                          &Settings::clonesLockedForDrawingChanged});
}

void mirrorSwitches(ActionManager &catalogue)
{
    mirrorSwitch(catalogue, MR::Action::AutoSave,
                 Setting{&Settings::autoSaveEnabled, &Settings::setAutoSaveEnabled, &Settings::autoSaveChanged}, true,
                 false);
    mirrorSwitch(
        catalogue, MR::Action::ShowBeyondButtons,
        Setting{&Settings::showBeyondButtons, &Settings::setShowBeyondButtons, &Settings::showBeyondButtonsChanged},
        true, false);
    mirrorSwitch(
        catalogue, MR::Action::XSheetTopBar,
        Setting{&Settings::showXSheetTopBar, &Settings::setShowXSheetTopBar, &Settings::showXSheetTopBarChanged}, true,
        false);
    mirrorSwitch(catalogue, MR::Action::CollapseVectorDataAutomatically,
                 Setting{&Settings::collapseAutomatically, &Settings::setCollapseAutomatically,
                         &Settings::collapseAutomaticallyChanged},
                 true, false);
    mirrorSwitch(
        catalogue, MR::Action::FaintCursor,
        Setting{&Settings::drawCursorOpacity, &Settings::setDrawCursorOpacity, &Settings::drawCursorOpacityChanged},
        MR::DrawCursorOpacity::Faint, MR::DrawCursorOpacity::Opaque);
}

void stepThumbnailSize(int step)
{
    Settings *settings = Settings::instance();
    const int last = QMetaEnum::fromType<MR::ThumbnailSize>().keyCount() - 1;
    const int size = std::clamp(static_cast<int>(settings->thumbnailSize()) + step, 0, last);
    settings->setThumbnailSize(static_cast<MR::ThumbnailSize>(size));
}

void setNextGridType()
{
    Settings *settings = Settings::instance();
    const int count = QMetaEnum::fromType<MR::GridType>().keyCount();
    settings->setGridType(static_cast<MR::GridType>((static_cast<int>(settings->gridType()) + 1) % count));
}

void toggleDragMode()
{
    Settings *settings = Settings::instance();
    settings->setSlideMode(!settings->slideMode());
}

void toggleCursorType()
{
    Settings *settings = Settings::instance();
    const bool adapts = settings->drawCursorType() == MR::DrawCursorType::AdaptToSize;
    settings->setDrawCursorType(adapts ? MR::DrawCursorType::FixedSmall : MR::DrawCursorType::AdaptToSize);
}

/// Connects the actions that step a setting on instead of standing for one of its values.
void connectSteps(ActionManager &catalogue)
{
    const auto onTrigger = [&catalogue](MR::Action action, auto step) {
        QObject::connect(catalogue.action(action), &QAction::triggered, &catalogue, step);
    };
    onTrigger(MR::Action::ThumbnailSizeSmaller, [] { stepThumbnailSize(-1); });
    onTrigger(MR::Action::ThumbnailSizeLarger, [] { stepThumbnailSize(1); });
    onTrigger(MR::Action::ToggleXSheetDragMode, toggleDragMode);
    onTrigger(MR::Action::ToggleCursor, toggleCursorType);
    onTrigger(MR::Action::GridTypeNext, setNextGridType);
    QAction *grid = catalogue.action(MR::Action::GridOnOff);
    QObject::connect(grid, &QAction::toggled, &catalogue, &ActionManager::aboutToChangeSetting);
    // Who chooses a grid wants to see it.
    const auto showGrid = [grid] { grid->setChecked(true); };
    onTrigger(MR::Action::GridTypeNext, showGrid);
    for (const Choice<MR::GridType> &choice : gridTypes)
        onTrigger(choice.action, showGrid);
}

} // namespace

void mirrorSettings(ActionManager &catalogue)
{
    mirrorGroups(catalogue);
    mirrorSwitches(catalogue);
    connectSteps(catalogue);
}

} // namespace Model
