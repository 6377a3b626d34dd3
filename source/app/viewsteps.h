#pragma once

#include <QObject>

namespace UI {
class Paper;
}

/// The actions that zoom and turn the sheet by steps, or to a fixed place.
class ViewSteps : public QObject
{
    Q_OBJECT

public:
    /// \a paper is not owned and must outlive this.
    ViewSteps(UI::Paper *paper, QObject *parent);

public slots:
    /// Device pixels per paper pixel.
    void zoomPaperTo(double zoomLevel);
    /// See ZoomLevels.
    void zoomPaperInToNextLevel();
    void zoomPaperOutToNextLevel();
    /// Degrees by which the sheet is seen turned counter-clockwise.
    void rotatePaperTo(double degrees);
    /// To the next multiple of \a degrees, counter-clockwise if that is positive.
    void rotatePaperToNext(double degrees);

private:
    void actualizeFitAction(double zoomLevelToFit);

    UI::Paper *m_paper;
};
