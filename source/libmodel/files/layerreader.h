#pragma once

#include <QList>
#include <QSize>

#include <functional>
#include <memory>

class QXmlStreamReader;

namespace Model {

class AnnotationLayer;
class AudioLayer;
class Layer;
class StrokeLayer;
class VisualLayer;
struct LayerItem;

/// Reads one `layer` element with all that stands in it.
class LayerReader
{
public:
    /// Reads from \a xml into layers of \a frameSize. \a step is called after each child of a layer with the number of
    /// cells it was (0 or 1); it may throw to break off.
    LayerReader(QXmlStreamReader &xml, QSize frameSize, std::function<void(int)> step);

    /// Reads the element at whose start the stream stands, to its end.
    /// \return null if the element has no type, or one that names no layer this program has.
    [[nodiscard]] std::shared_ptr<Layer> read();

private:
    using Cell = std::shared_ptr<LayerItem>;

    [[nodiscard]] std::shared_ptr<Layer> makeLayer(int type) const;
    void readContent(Layer &layer);
    void readChild(Layer &layer);
    void readVisualLayerChild(VisualLayer &layer);
    void readAudioLayerChild(AudioLayer &layer);
    void readAnnotationLayerChild(AnnotationLayer &layer);
    void readOpacity(VisualLayer &layer);
    void readColor(StrokeLayer &layer);
    void readCell(const VisualLayer &layer);
    [[nodiscard]] Cell readClone();
    [[nodiscard]] Cell readOriginal(const VisualLayer &layer);
    [[nodiscard]] Cell readDistantClone(const VisualLayer &layer);
    void readStrokes(LayerItem &cell);
    void readImage(LayerItem &cell);
    [[nodiscard]] QString readText();
    [[nodiscard]] QByteArray readBase64();
    void warnOfDamage(const char *what) const;

    QXmlStreamReader &m_xml;
    QSize m_frameSize;
    std::function<void(int)> m_step;
    QList<Cell> m_cells; ///< of the layer that is being read
};

} // namespace Model
