#pragma once

#include <QMenuBar>

class RecentFilesMenu;

/// The main window's menu bar, built from one table of the catalogue's actions.
///
/// Holds no behaviour: the actions are shared objects of the catalogue, which other views show as well.
class MenuBar : public QMenuBar
{
    Q_OBJECT

public:
    /// \a recentFiles becomes the entry "Open Recent"; not owned.
    MenuBar(RecentFilesMenu *recentFiles, QWidget *parent);

signals:
    /// One of the fixed zooms was chosen; 1.0 is 100 percent.
    void zoomChosen(double zoomLevel);

private:
    void addFixedZooms(QMenu *menu);
};
