#include "libui/style/chromepalette.h"

#include "libui/style/colors.h"

namespace UI {

namespace {

struct Role
{
    QPalette::ColorRole role;
    QColor active;
    QColor disabled;
};

constexpr QColor alternateField(68, 64, 60);
constexpr QColor dimmedText(156, 152, 148);
constexpr QColor brightText(255, 251, 247);
constexpr QColor link(152, 190, 240);
constexpr QColor visitedLink(200, 180, 232);
constexpr QColor shadow(30, 26, 22);

constexpr Role roles[] = {
    {QPalette::Window, Colors::windowGround, Colors::windowGround},
    {QPalette::WindowText, Colors::lightPanel, dimmedText},
    {QPalette::Base, Colors::hairline, Colors::windowGround},
    {QPalette::AlternateBase, alternateField, Colors::windowGround},
    {QPalette::Text, Colors::lightPanel, dimmedText},
    {QPalette::PlaceholderText, dimmedText, dimmedText},
    {QPalette::Button, Colors::recessedBand, Colors::windowGround},
    {QPalette::ButtonText, Colors::lightPanel, dimmedText},
    {QPalette::BrightText, brightText, brightText},
    {QPalette::ToolTipBase, Colors::lightPanel, Colors::lightPanel},
    {QPalette::ToolTipText, Colors::ink, Colors::ink},
    {QPalette::Highlight, Colors::highlight, Colors::hairline},
    {QPalette::HighlightedText, brightText, dimmedText},
    {QPalette::Link, link, dimmedText},
    {QPalette::LinkVisited, visitedLink, dimmedText},
    // Styles etch disabled menu entries with this colour: on the menu's ground it must not show, or the text blurs.
    {QPalette::Light, Colors::lightHairline, Colors::hairline},
    {QPalette::Midlight, Colors::raisedBandBottom, Colors::raisedBandBottom},
    {QPalette::Mid, Colors::hairline, Colors::hairline},
    {QPalette::Dark, Colors::ink, Colors::ink},
    {QPalette::Shadow, shadow, shadow},
};

} // namespace

QPalette chromePalette()
{
    QPalette palette;
    for (const Role &role : roles) {
        palette.setColor(QPalette::Active, role.role, role.active);
        palette.setColor(QPalette::Inactive, role.role, role.active);
        palette.setColor(QPalette::Disabled, role.role, role.disabled);
    }
    return palette;
}

} // namespace UI
