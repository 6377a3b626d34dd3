#pragma once

#include <QMenuBar>

class RecentFilesMenu;

/// The main window's menu bar, built from one table (menutable.h) of the catalogue's actions.
///
/// Holds no behaviour: the actions are shared objects of the catalogue, which other views show as well. Only the fixed
/// zooms and rotations are its own, which tell what was chosen; they can be used when the zoom of 100 percent, which is
/// the catalogue's, can. So is the key's way to the button on the paper that puts a frame back on its pegs. F10 opens
/// the first menu.
class MenuBar : public QMenuBar
{
    Q_OBJECT

public:
    /// \a recentFiles becomes the entry "Open Recent"; not owned.
    MenuBar(RecentFilesMenu *recentFiles, QWidget *parent);

public slots:
    /// Whether there is a frame off its pegs, that can be put back.
    void setFrameOffPegs(bool isOffPegs);

signals:
    /// One of the fixed zooms was chosen; 1.0 is 100 percent.
    void zoomChosen(double zoomLevel);
    /// The sheet is to be turned to \a degrees, counter-clockwise as it is seen.
    void rotationChosen(double degrees);
    /// The sheet is to be turned to the next multiple of \a degrees, counter-clockwise if that is positive.
    void rotationStepChosen(double degrees);
    /// The frame is to be put back on its pegs.
    void putOnPegsChosen();

private:
    QMenu *addTitledMenu(QMenu *parent, const char *title);
    void addFixedZooms(QMenu *menu);
    void addRotations(QMenu *menu);
    QAction *addViewEntry(QMenu *menu, const QString &text, const QKeySequence &key);
    void actualizeViewEntries();
    void openFirstMenu();

    QList<QAction *> m_viewEntries;
    QAction *m_putOnPegs = nullptr;
    bool m_isFrameOffPegs = false;
};
