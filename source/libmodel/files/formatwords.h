#pragma once

#include "libmodel/layers/layer.h"
#include "libmodel/layers/layeritem.h"

#include <QString>
#include <QStringView>

#include <optional>

/// The words of the scene file, each in one place for the reader and the writer.
namespace Model::FormatWords {

inline constexpr QLatin1String version("0.4");
inline constexpr QLatin1String yes("yes");
inline constexpr QLatin1String no("no");

/// The word for the layer type number \a type; empty for a number that has none.
[[nodiscard]] QString layerType(int type);
/// The layer type number of \a word, with the old word for annotations; none for an unknown word.
[[nodiscard]] std::optional<int> layerType(QStringView word);

/// The word for what a layer shows past its last cell.
[[nodiscard]] QString beyondLast(Layer::LayerBeyondLast mode);
/// The mode of \a word; none for an unknown word.
[[nodiscard]] std::optional<Layer::LayerBeyondLast> beyondLast(QStringView word);

/// The word for a kind of cell.
[[nodiscard]] QString cellType(LayerItem::Type type);
/// The kind of cell of \a word; none for an unknown word.
[[nodiscard]] std::optional<LayerItem::Type> cellType(QStringView word);

} // namespace Model::FormatWords
