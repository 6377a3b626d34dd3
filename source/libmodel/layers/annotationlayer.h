#pragma once

#include "libmodel/layers/layer.h"
#include "libmodel/layers/layerchange.h"

#include <QImage>
#include <QList>
#include <QRgb>
#include <QSize>

namespace Model {

/// The column of pencil notes beside the frames: one small coverage image per frame, no part of the picture.
///
/// It has no cells, so it never makes the scene longer. Its list may be shorter than the scene; a frame beyond its
/// end simply has no note.
class AnnotationLayer : public Layer
{
    Q_OBJECT

public:
    /// The longest side of a note. A strip beside a frame is some hundred pixels wide; far larger ones are nobody's
    /// handwriting.
    static constexpr int maximumSide = 4096;

    explicit AnnotationLayer(QObject *parent = nullptr);
    ~AnnotationLayer() override;

    [[nodiscard]] int layerType() const override;
    /// Always 0.
    [[nodiscard]] int numFrames() const override;
    /// Always false.
    [[nodiscard]] bool isValidFrame(int frameId) const override;
    /// Makes room behind \a frameId (at least 1), growing the list up to there first.
    void insertBlankAfter(int frameId) override;
    /// The same as insertBlankAfter(): notes are not held.
    void insertCloneAfter(int frameId) override;

    /// The stored note, 8-bit coverage in QImage::Format_Indexed8; null below frame 1, beyond the list and where
    /// nothing was written.
    [[nodiscard]] QImage image(int frameId) const;
    /// The note in pencil grey, scaled to \a size; null when there is none.
    [[nodiscard]] QImage displayImage(int frameId, QSize size) const;
    /// Puts \a image (null, or a byte per pixel and no side beyond maximumSide) in front of the note of \a frameId (at
    /// least 1), growing the list first. Any other image is refused with an empty list.
    QList<LayerChange> insertImage(int frameId, const QImage &image);
    /// Takes the note of \a frameId away, those behind move up.
    QList<LayerChange> removeFrame(int frameId) override;
    /// Overwrites the note of \a frameId (at least 1), growing the list first. Takes and refuses what insertImage()
    /// does.
    QList<LayerChange> setImage(int frameId, const QImage &image);

    /// All notes, that of frame f at position f - 1.
    [[nodiscard]] const QList<QImage> &images() const { return m_images; }
    /// Puts \a image behind the last note, for readers of files. An image that is no note is ignored.
    void appendImage(const QImage &image);
    /// The pencil's grey with alpha 0 to 255.
    [[nodiscard]] const QList<QRgb> &colorTable() const { return m_colorTable; }

private:
    bool growTo(int numImages);

    QList<QImage> m_images;
    QList<QRgb> m_colorTable;
};

} // namespace Model
