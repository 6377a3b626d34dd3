#pragma once

#include <QColor>

/// The colours of the window's chrome. Warm greys: red stands four above green and green four above blue, nearly
/// everywhere.
namespace UI::Colors {

/// Ground of panels that float over the paper.
inline constexpr QColor floatingPanel(45, 41, 38, 170);
/// Ground of the controls bar.
inline constexpr QColor controlsBar(45, 41, 38, 191);
/// Hairline between chrome and paper, and around the sheet.
inline constexpr QColor hairline(60, 56, 52);
/// Top and bottom of a raised band.
inline constexpr QColor raisedBandTop(100, 96, 92);
inline constexpr QColor raisedBandBottom(116, 112, 108);
/// A recessed band.
inline constexpr QColor recessedBand(92, 88, 84);
/// Light hairline on a dark ground.
inline constexpr QColor lightHairline(132, 128, 124);
/// Light panels, text on dark ground, and the paper of a cell without a drawing of its own.
inline constexpr QColor lightPanel(221, 216, 213);
/// Shadow under headings.
inline constexpr QColor headingShadow(43, 41, 39, 128);
/// Headings of sections.
inline constexpr QColor sectionHeading(151, 147, 143);
/// Heading and ground of the customize overlay.
inline constexpr QColor overlayHeading(57, 57, 57);
inline constexpr QColor overlayGround(65, 61, 58);
/// The sheet's horizontal scroll bar, from top to bottom, and the line along its top.
inline constexpr QColor sheetBarTop(106, 102, 98);
inline constexpr QColor sheetBarBottom(86, 82, 79);
inline constexpr QColor sheetBarTopEdge(113, 109, 105);
/// The sheet's vertical scroll bar, and the line down its left.
inline constexpr QColor sheetSideBar(115, 112, 108);
inline constexpr QColor sheetSideBarEdge(122, 118, 114);
/// The handles of the sheet's bars.
inline constexpr QColor sheetBarHandle(0, 0, 0, 64);
/// The shadow that the sheet's header and footer cast: at the edge, half way and at its end.
inline constexpr QColor sheetShadow(0, 0, 0, 67);
inline constexpr QColor sheetShadowMiddle(0, 0, 0, 15);
inline constexpr QColor sheetShadowEnd(0, 0, 0, 0);
/// Edge of a section of the sheet's header: pressed, and above the current layer.
inline constexpr QColor pressedSectionEdge(64, 64, 64);
inline constexpr QColor currentSectionEdge(80, 80, 80);
/// Slim scroll bars.
inline constexpr QColor slimBar(43, 41, 39);
/// Line edit of a layer's name.
inline constexpr QColor layerRenameField(120, 117, 113);

/// The darkest ink of the chrome, that of icons.
inline constexpr QColor ink(45, 41, 38);
/// The ground of windows, menus and bars.
inline constexpr QColor windowGround(76, 72, 68);
/// What is selected or has the focus.
inline constexpr QColor highlight(40, 97, 184);

} // namespace UI::Colors
