#include "libmodel/actions/settingsmirrors.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/base/settings.h"

#include <QAction>

namespace Model {

namespace {

/// One action of a group that stands for an enumerated setting.
template<typename T>
struct Choice
{
    T value;
    MR::Action action;
};

constexpr Choice<bool> drawingOnClones[] = {
    {false, MR::Action::FreelyDrawOnClones},
    {true, MR::Action::ClonesLockedForDrawing},
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

/// Ties each of \a choices to the setting that \a getter reads, \a setter writes and \a changed tells of.
template<typename T, std::size_t count, typename Getter, typename Setter, typename Signal>
void mirrorChoices(ActionManager &catalogue, const Choice<T> (&choices)[count], Getter getter, Setter setter,
                   Signal changed)
{
    Settings *settings = Settings::instance();
    for (const Choice<T> &choice : choices) {
        QAction *action = catalogue.mrAction(choice.action)->action;
        const T value = choice.value;
        const auto follow = [=] {
            if ((settings->*getter)() == value)
                action->setChecked(true);
        };
        follow();
        QObject::connect(settings, changed, action, follow);
        QObject::connect(action, &QAction::toggled, settings, [=](bool checked) {
            if (checked)
                (settings->*setter)(value);
        });
    }
}

void mirrorFaintCursor(QAction *action)
{
    Settings *settings = Settings::instance();
    const auto follow = [=] { action->setChecked(settings->drawCursorOpacity() == MR::DrawCursorOpacity::Faint); };
    follow();
    QObject::connect(settings, &Settings::drawCursorOpacityChanged, action, follow);
    QObject::connect(action, &QAction::toggled, settings, [settings](bool checked) {
        settings->setDrawCursorOpacity(checked ? MR::DrawCursorOpacity::Faint : MR::DrawCursorOpacity::Opaque);
    });
}

void toggleCursorType()
{
    Settings *settings = Settings::instance();
    const bool adapts = settings->drawCursorType() == MR::DrawCursorType::AdaptToSize;
    settings->setDrawCursorType(adapts ? MR::DrawCursorType::FixedSmall : MR::DrawCursorType::AdaptToSize);
}

} // namespace

void mirrorSettings(ActionManager &catalogue)
{
    mirrorChoices(catalogue, drawingOnClones, &Settings::clonesLockedForDrawing, &Settings::setClonesLockedForDrawing,
                  &Settings::clonesLockedForDrawingChanged);
    mirrorChoices(catalogue, transparencies, &Settings::transparencyType, &Settings::setTransparencyType,
                  &Settings::transparencyTypeChanged);
    mirrorFaintCursor(catalogue.mrAction(MR::Action::FaintCursor)->action);
    QObject::connect(catalogue.mrAction(MR::Action::ToggleCursor)->action, &QAction::triggered, &catalogue,
                     toggleCursorType);
}

} // namespace Model
