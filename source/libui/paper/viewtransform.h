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
///     widget --view--> --delta--> desk --offPegs--> paper
///
/// `delta` is the part that a running gesture adds; commitDelta() folds it into `view`. A mirrored view is a flip about
/// the view's centre in front of the rest, so that zoomScale() and rotation() read the same as without it.
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

    /// Desk to paper for the current frame; identity on the pegs. Not invertible: taken as identity.
    void setOffPegs(const QTransform &deskToPaper);
    const QTransform &offPegs() const { return m_offPegs; }

    QTransform widgetToDesk() const { return m_view * m_delta; }
    QTransform deskToWidget() const { return widgetToDesk().inverted(); }
    QTransform widgetToPaper() const { return widgetToDesk() * m_offPegs; }
    QTransform paperToWidget() const { return widgetToPaper().inverted(); }

    /// Desk pixels per logical pixel of the settled view, without a running gesture.
    double zoomScale() const;
    /// The zoom that is on show, a running gesture included.
    double shownZoomScale() const;
    double zoomLevel() const { return m_deviceRatio / zoomScale(); }
    /// The level at which the sheet, at its present rotation, fills the usable rectangle less fitMargin; 1 if either is
    /// empty. Not held to the limits.
    double zoomLevelToFit() const;
    /// Rotation of the settled view, -180 to 180.
    double rotation() const;
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

    /// A running pan from the widget point \a from to \a to; replaces the former delta.
    void setPanDelta(QPointF from, QPointF to);
    /// Settles the running gesture.
    void commitDelta();

private:
    QTransform mirror() const;
    QTransform unmirroredView() const;
    double boundedScale(double scale) const;

    QRect m_usableRect;
    QRectF m_paperRect;
    QTransform m_view;
    QTransform m_delta;
    QTransform m_offPegs;
    double m_deviceRatio = 1.0;
    bool m_mirrored = false;
};

} // namespace UI
