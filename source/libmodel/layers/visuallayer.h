#pragma once

#include "libmodel/base/mr.h"
#include "libmodel/layers/celllinks.h"
#include "libmodel/layers/layer.h"
#include "libmodel/layers/layeritem.h"

#include <QImage>
#include <QList>
#include <QRect>
#include <QSize>

#include <functional>
#include <memory>

class QPainter;
class QProgressDialog;

namespace Model {

class SingleStroke;

/// A layer with pictures: one cell per frame, shared drawings, a visibility and an opacity.
///
/// There is no duration anywhere: a drawing that stays for four frames is one original and three clones behind it.
/// Rectangles are in paper pixels. A layer always has at least one cell, and its first is never a clone.
class VisualLayer : public Layer
{
    Q_OBJECT
    Q_PROPERTY(bool visible READ isVisible WRITE setVisible NOTIFY visibleChanged)

public:
    ~VisualLayer() override;

    [[nodiscard]] int numFrames() const override;
    void insertBlankAfter(int frameId) override;
    void insertCloneAfter(int frameId) override;
    /// Removes a cell. Frame 1 never becomes a clone: with a hold behind it, the hold is shortened instead, frame 1
    /// taking over its transform. The last cell left is replaced by a blank one. An original with distant clones hands
    /// its part to the first of them.
    QList<LayerChange> removeFrame(int frameId) override;

    /// Paints what stands at \a frameId within \a rect without the layer's own opacity; layers that are drawn on
    /// include the rule beyond the last cell. With \a asBlack lines are black, whatever the layer's colour. Used by
    /// exports.
    virtual void draw(int frameId, QPainter *painter, QRect rect, bool asBlack) const = 0;
    /// Paints as draw() does, in the layer's own colour and with the painter's opacity times the layer's.
    virtual void drawPlain(int frameId, QPainter *painter, QRect rect) const = 0;
    /// The picture of a cell for the exposure sheet, at most \a size; a null image for a frame outside the layer and
    /// for an empty drawing. Cached by the drawing.
    [[nodiscard]] virtual QImage frameImage(int frameId, QSize size) const = 0;
    /// The small image of a cell's drawing for the clipboard and for drags: frameImage() of \a size, which is raised to
    /// at least 25 x 25.
    [[nodiscard]] virtual QImage selectionThumbnail(int frameId, QSize size) const;
    /// The text of the cell's tool tip: the drawing's own name, or the frame number.
    [[nodiscard]] virtual QString frameLabel(int frameId) const;
    /// A new blank original with a drawing of the layer's kind and frame size.
    [[nodiscard]] virtual std::shared_ptr<LayerItem> newBlankItem() const = 0;
    /// Brings all drawings and off-pegs transforms to frames of \a size, the contents fitted by \a fitMode. A drawing
    /// of that size already is left, another layer that shows it has seen to it.
    /// \a progress (may be null) moves on by 1 per cell. Nothing for an empty size.
    virtual void setFrameSize(QSize size, MR::FitMode fitMode, QProgressDialog *progress);
    /// Paints as a neighbouring frame that shines through: at \a opacity (0 to 1) times the layer's own and, where
    /// pictures have no colour of their own, in the layer's colour with its hue turned by \a hueShift degrees.
    virtual void drawHueShifted(int frameId, QPainter *painter, QRect rect, int hueShift, double opacity) const = 0;
    /// Paints as drawPlain() does with \a stroke on top, as the frame will look with the stroke in it. Where the
    /// layer has no cell, the stroke is painted alone.
    virtual void drawWithActiveStroke(int frameId, QPainter *painter, QRect rect, const SingleStroke &stroke) const = 0;

    /// All cells, that of frame f at position f - 1.
    [[nodiscard]] const QList<std::shared_ptr<LayerItem>> &frames() const { return m_frames; }
    /// The cell at \a frameId, null when the layer has none there.
    [[nodiscard]] std::shared_ptr<LayerItem> item(int frameId) const;
    /// Puts \a item (not null, with a drawing) in front of what stands at \a frameId, 1 to numFrames() + 1; holds
    /// behind it take its drawing. Links are not touched. \return false when nothing was done.
    bool insertItem(int frameId, std::shared_ptr<LayerItem> item);
    /// Puts \a item (not null, with a drawing) in the place of the cell at \a frameId; holds behind it take its
    /// drawing. Links are not touched. \return the cell that stood there, null when nothing was done.
    std::shared_ptr<LayerItem> replaceItem(int frameId, std::shared_ptr<LayerItem> item);
    /// Gives the drawing of the cell at \a frameId to the clones behind it, up to the first cell of another kind.
    void spreadDrawing(int frameId);
    /// The reference by which cells elsewhere name the cell at \a frameId; null when there is none.
    [[nodiscard]] CellRef cellRef(int frameId) const;
    /// How cells of other layers are found; empty where there are none, and a layer knows its own cells only.
    void setCellFinder(const CellFinder &find);
    /// The same for a scene that the layer stands in: \a source is asked for a finder at the beginning of each
    /// operation.
    void setCellFinderSource(std::function<CellFinder()> source);

    /// Replaces all cells, for readers of files. Refused (false) when the list is empty or too long, begins with a
    /// clone, or holds a null cell or one without a drawing. The caller makes holds share their drawings.
    bool setFrames(const QList<std::shared_ptr<LayerItem>> &frames);
    /// The frame whose cell is shown at \a frameId by the rule beyond the last cell; 0 when nothing is shown.
    [[nodiscard]] int shownFrame(int frameId) const;
    /// Everything that drawPlain() paints at \a frameId lies in here; null when nothing does.
    [[nodiscard]] QRect inkedRect(int frameId) const;

    [[nodiscard]] QSize frameSize() const { return m_frameSize; }
    [[nodiscard]] bool isVisible() const { return m_visible; }
    /// From 0 to 1.
    [[nodiscard]] double opacity() const { return m_opacity; }
    /// Visible, and with an opacity that can be seen at all.
    [[nodiscard]] bool isShown() const;

public slots:
    void setVisible(bool visible);
    /// Limited to 0 to 1; what is no number is ignored.
    void setOpacity(double opacity);

signals:
    void visibleChanged(bool visible);

protected:
    /// A layer without cells: the constructor of the concrete class adds the first.
    VisualLayer(QSize frameSize, QObject *parent);

    /// The cell shown at \a frameId by the rule beyond the last cell; null when nothing is shown.
    [[nodiscard]] const LayerItem *shownItem(int frameId) const;
    /// Puts \a item behind the last cell.
    void appendItem(std::shared_ptr<LayerItem> item);

    /// A layer with the settings of \a other but without cells.
    VisualLayer(const VisualLayer &other);
    /// What finds cells during one operation, in the scene or at least in this layer.
    [[nodiscard]] CellFinder cellFinder() const;

private:
    std::function<CellFinder()> m_cellFinderSource;
    QList<std::shared_ptr<LayerItem>> m_frames;
    QSize m_frameSize;
    bool m_visible = true;
    double m_opacity = 1.0;
};

} // namespace Model
