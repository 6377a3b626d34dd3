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

constexpr QColor buttonGround(92, 88, 84);
constexpr QColor fieldGround(60, 56, 52);
constexpr QColor alternateField(68, 64, 60);
constexpr QColor dimmedText(139, 135, 131);
constexpr QColor dimmedHighlight(92, 88, 84);
constexpr QColor brightText(255, 251, 247);
constexpr QColor link(134, 174, 232);
constexpr QColor visitedLink(178, 156, 214);
constexpr QColor shadow(30, 26, 22);

constexpr Role roles[] = {
    {QPalette::Window, Colors::windowGround, Colors::windowGround},
    {QPalette::WindowText, Colors::lightPanel, dimmedText},
    {QPalette::Base, fieldGround, Colors::windowGround},
    {QPalette::AlternateBase, alternateField, Colors::windowGround},
    {QPalette::Text, Colors::lightPanel, dimmedText},
    {QPalette::PlaceholderText, dimmedText, dimmedText},
    {QPalette::Button, buttonGround, Colors::windowGround},
    {QPalette::ButtonText, Colors::lightPanel, dimmedText},
    {QPalette::BrightText, brightText, brightText},
    {QPalette::ToolTipBase, Colors::lightPanel, Colors::lightPanel},
    {QPalette::ToolTipText, Colors::ink, Colors::ink},
    {QPalette::Highlight, Colors::highlight, dimmedHighlight},
    {QPalette::HighlightedText, brightText, dimmedText},
    {QPalette::Link, link, dimmedText},
    {QPalette::LinkVisited, visitedLink, dimmedText},
    {QPalette::Light, Colors::lightHairline, Colors::lightHairline},
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
