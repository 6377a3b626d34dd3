#pragma once

#include <QObject>

namespace Model {
struct BacklightSettings;
}

namespace UI {
class Paper;
}

/// The switches of the light table: the backlight and which frames it shows, the mirror, and the grid.
class LightTable : public QObject
{
    Q_OBJECT

public:
    /// \a paper is not owned and must outlive this.
    LightTable(UI::Paper *paper, QObject *parent);

private:
    static void switchBacklight(bool Model::BacklightSettings::*which, bool on);
    static void actualizeBacklight();
};
