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
/// Line edit of a layer's name.
inline constexpr QColor layerRenameField(120, 117, 113);

/// The darkest ink of the chrome, that of icons.
inline constexpr QColor ink(45, 41, 38);
/// The ground of windows, menus and bars.
inline constexpr QColor windowGround(76, 72, 68);
/// What is selected or has the focus.
inline constexpr QColor highlight(40, 97, 184);

} // namespace UI::Colors
