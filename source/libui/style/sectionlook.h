#pragma once

#include <QRect>

class QPainter;
class QStyleOptionHeader;
class QStyleOption;
class QWidget;

namespace UI {

/// True for the sheet's header and footer.
bool isSheetSection(const QWidget *widget);

/// Fills a section of the sheet's header or footer: a band with a line along its top edge. Bands side by side look like
/// one; what parts them is the header's to draw.
///
/// | state             | band     | line                 |
/// |-------------------|----------|----------------------|
/// | at rest           | raised   | light                |
/// | current (On)      | raised   | grey                 |
/// | pressed (Sunken)  | recessed | dark                 |
/// | disabled          | recessed | as the chrome's edge |
void paintSheetSection(QPainter &painter, const QStyleOption &section);

/// Writes the section's text as it stands, ampersands included, shortened where it doesn't fit.
void paintSheetSectionLabel(QPainter &painter, const QStyleOptionHeader &section);

/// Where the text of a section of \a rect stands.
QRect sheetSectionLabelRect(const QRect &rect);

} // namespace UI
