#pragma once

#include "libmodel/layers/identifierhash.h"

#include <QCoreApplication>
#include <QList>
#include <QSize>
#include <QTransform>

#include <functional>
#include <memory>
#include <optional>

class QXmlStreamAttributes;
class QXmlStreamReader;

namespace Model {

class AnnotationLayer;
class AudioLayer;
class Layer;
class StrokeLayer;
class VisualLayer;
struct LayerItem;
struct ReadingState;

/// Reads the `layer` elements of one scene with all that stands in them.
///
/// What no layer can be, such as a second use of an identifier or a number beyond reach, is raised as an error of the
/// XML stream. Damaged drawings and pictures are noted, and the rest is read.
class LayerReader
{
    Q_DECLARE_TR_FUNCTIONS(Model::LayerReader)

public:
    /// Reads from \a xml into layers of \a frameSize, noting in \a state what is to be noted (neither is owned).
    /// \a step is called after each child of a layer with the number of cells it was (0 or 1); it may throw to break
    /// off.
    LayerReader(QXmlStreamReader &xml, QSize frameSize, ReadingState &state, std::function<void(int)> step);

    /// True if a `layer` element with these \a attributes is one that read() makes a layer of.
    [[nodiscard]] static bool isOfUse(const QXmlStreamAttributes &attributes);

    /// Reads the element at whose start the stream stands, to its end.
    /// \return null if the element has no type, or one that names no layer this program has. Of no use if the stream
    /// has an error afterwards.
    [[nodiscard]] std::shared_ptr<Layer> read();

private:
    using Cell = std::shared_ptr<LayerItem>;

    [[nodiscard]] std::shared_ptr<Layer> makeLayer(const QXmlStreamAttributes &attributes) const;
    void readContent(Layer &layer);
    void readChild(Layer &layer);
    void readVisualLayerChild(VisualLayer &layer);
    void readAudioLayerChild(AudioLayer &layer);
    void readSound(AudioLayer &layer);
    void readAnnotationLayerChild(AnnotationLayer &layer);
    void readOpacity(VisualLayer &layer);
    void readColor(StrokeLayer &layer);
    void readCell(const VisualLayer &layer);
    [[nodiscard]] Cell readClone();
    [[nodiscard]] Cell readOriginal(const VisualLayer &layer);
    [[nodiscard]] Cell readDistantClone(const VisualLayer &layer);
    void takeIdentity(LayerItem &cell);
    [[nodiscard]] bool takesIdentifier(IdentifierSet &used, const QUuid &identifier, const QString &refusal);
    /// Whether the content is whole.
    [[nodiscard]] bool readStrokes(LayerItem &cell);
    [[nodiscard]] bool readImage(LayerItem &cell);
    [[nodiscard]] QTransform readTransform();
    [[nodiscard]] std::optional<double> readNumberAttribute(const QString &name);
    [[nodiscard]] std::optional<double> checkedNumber(const QString &name, QStringView text, double limit);
    [[nodiscard]] QString readText();
    [[nodiscard]] QByteArray readBase64();
    void noteDamage(qint64 line, const QString &what);
    void raiseOutOfMemory();

    QXmlStreamReader &m_xml;
    QSize m_frameSize;
    ReadingState &m_state;
    std::function<void(int)> m_step;
    IdentifierSet m_layerIdentifiers; ///< of all layers so far
    IdentifierSet m_cellIdentifiers;  ///< of the layer that is being read
    QList<Cell> m_cells;              ///< of the layer that is being read
};

} // namespace Model
