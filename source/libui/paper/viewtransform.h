#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QTransform>

namespace UI {

/// How the sheet of paper lies in the widget: zoom, rotation, pan and mirror, as a value.
///
/// Three coordinate spaces: widget (logical pixels, y down), desk (the sheet on its pegs) and paper (pixels of the
/// drawing, which leave the desk's when the frame is off the pegs). Transforms are kept in the direction of input:
///
///     widget --view--> --delta--> desk --offPegs--> --offPegsDelta--> paper
///
/// The deltas are what a running gesture adds; commitDelta() and commitOffPegsDelta() fold them into the settled part.
/// A mirrored view is a flip about the view's centre in front of the rest, so that zoomScale() and rotation() read the
/// same as without it.
///
/// The zoom level is device pixels per paper pixel and stays within smallestLevel and largestLevel. Angles are degrees;
/// a positive one turns the picture counter-clockwise on screen, clockwise when it is mirrored.
class ViewTransform
{
public:
    static constexpr double smallestLevel = 1.0 / 16.0;
    static constexpr double largestLevel = 16.0;

    /// Space that a fitted sheet leaves to each edge, logical pixels.
    static constexpr int fitMargin = 4;

    /// The part of the widget that shows the paper, widget coordinates. Changing it keeps what is at its centre there.
    void setUsableRect(const QRect &rect);
    const QRect &usableRect() const { return m_usableRect; }
    QPointF center() const;

    /// The sheet in paper coordinates, which are the desk's while the frame is on the pegs. Changing it keeps the point
    /// of the sheet, counted from its top left, that is at the view's centre, held within the new sheet; an inverted
    /// sheet has its middle there. A first sheet gets centred.
    void setPaperRect(const QRectF &rect);
    const QRectF &paperRect() const { return m_paperRect; }

    /// Device pixels per logical pixel, above 0. Changing it keeps the zoom level and what is at the centre.
    void setDeviceRatio(double ratio);
    double deviceRatio() const { return m_deviceRatio; }

    /// Desk to paper for the current frame; identity on the pegs. Not invertible: taken as identity. What a running
    /// gesture adds is dropped.
    void setOffPegs(const QTransform &deskToPaper);
    /// Without a running gesture.
    const QTransform &offPegs() const { return m_offPegs; }
    /// The same with a running gesture.
    QTransform shownOffPegs() const { return m_offPegs * m_offPegsDelta; }
    /// The frame shows off its pegs, a running gesture included.
    bool isOffPegs() const { return !shownOffPegs().isIdentity(); }

    QTransform widgetToDesk() const { return m_view * m_delta; }
    QTransform deskToWidget() const { return widgetToDesk().inverted(); }
    QTransform widgetToPaper() const { return widgetToDesk() * shownOffPegs(); }
    QTransform paperToWidget() const { return widgetToPaper().inverted(); }

    /// Desk pixels per logical pixel of the settled view, without a running gesture.
    double zoomScale() const;
    /// The zoom that is on show, a running gesture included.
    double shownZoomScale() const;
    double zoomLevel() const { return m_deviceRatio / zoomScale(); }
    /// The zoom level that is on show.
    double shownZoomLevel() const { return m_deviceRatio / shownZoomScale(); }
    /// The level at which the sheet, at its present rotation, fills the usable rectangle less fitMargin; 1 if either is
    /// empty. Not held to the limits.
    double zoomLevelToFit() const;
    /// Rotation of the settled view, -180 to 180.
    double rotation() const;
    /// The rotation that is on show, a running gesture included.
    double shownRotation() const;
    bool isMirrored() const { return m_mirrored; }

    /// The sheet's place in the widget, united with that of the frame if it is off the pegs; widget coordinates.
    QRectF bounds() const;

    /// Moves what is under the widget point \a from to \a to.
    void panTo(QPointF from, QPointF to);
    /// Multiplies the zoom scale, held to the limits, keeping what is under \a widgetPoint; above 1 zooms out.
    void zoomAt(QPointF widgetPoint, double factor);
    /// Zooms about the view's centre. A level that is not above 0 does nothing.
    void setZoomLevel(double level);
    /// Zooms about the middle of bounds().
    void setZoomLevelCenteringOnOrigin(double level);
    /// Rotates about the view's centre until rotation() is \a degrees.
    void rotateTo(double degrees);
    /// Turns by \a degrees about \a widgetPoint, with the sign that the user means on a mirrored view.
    void rotateAt(QPointF widgetPoint, double degrees);
    /// As rotateTo(), with the sign that the user means on a mirrored view.
    void rotatePaperTo(double degrees);
    /// From the multiple of |\a degrees| nearest to the present rotation, one step of \a degrees on. 0 does nothing.
    void rotatePaperToNext(double degrees);
    /// Flips the view about its centre.
    void setMirrored(bool mirrored);
    /// Brings the middle of bounds() to the view's centre.
    void recenter();
    /// Centred, upright, a device pixel to a paper pixel.
    void reset();
    /// Centred, as large as fits.
    void fit();

    /// Where the fingers of a gesture are.
    struct Fingers
    {
        QPointF center;        ///< Widget coordinates.
        double rotation = 0.0; ///< Degrees, clockwise on the screen, counted from anywhere.
        double scale = 1.0;    ///< Their distance, by any measure.
    };

    // Running gestures, each from the widget point `from` to `to`. Each replaces the delta of the one before.

    /// Carries the sheet along.
    void setPanDelta(QPointF from, QPointF to);
    /// Zooms about \a from. Only the way along the diagonal from the upper left to the lower right counts, measured
    /// against the usable rectangle: to the lower right it zooms in. Held to the limits.
    void setZoomDelta(QPointF from, QPointF to);
    /// Turns the sheet about \a pivot by the angle from \a from to \a to.
    void setRotationDelta(QPointF from, QPointF to, QPointF pivot);
    /// Carries, turns and zooms the sheet with the fingers: what was between them stays there. Held to the limits.
    void setFingersDelta(const Fingers &from, const Fingers &to);
    /// Settles the running gesture.
    void commitDelta();

    /// Carries the frame off its pegs.
    void setOffPegsPanDelta(QPointF from, QPointF to);
    /// Turns the frame about the view's centre by the angle from \a from to \a to.
    void setOffPegsRotationDelta(QPointF from, QPointF to);
    /// Settles how the frame lies off its pegs.
    void commitOffPegsDelta();

private:
    QTransform mirror() const;
    double rotationOf(const QTransform &view) const;
    double mirrorSign() const { return m_mirrored ? -1.0 : 1.0; }
    double boundedScale(double scale) const;

    QRect m_usableRect;
    QRectF m_paperRect;
    QTransform m_view;
    QTransform m_delta;
    QTransform m_offPegs;
    QTransform m_offPegsDelta;
    double m_deviceRatio = 1.0;
    bool m_mirrored = false;
};

} // namespace UI
