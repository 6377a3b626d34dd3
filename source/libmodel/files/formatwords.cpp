#include "libmodel/files/formatwords.h"

#include <algorithm>
#include <array>

namespace Model::FormatWords {

namespace {

template<typename Value>
struct Word
{
    Value value;
    QLatin1String text;
};

constexpr std::array layerTypeWords{
    Word<int>{Layer::Stroke, QLatin1String("stroke")},
    Word<int>{Layer::Paint, QLatin1String("paint")},
    Word<int>{Layer::Reference, QLatin1String("reference")},
    Word<int>{Layer::Audio, QLatin1String("audio")},
    Word<int>{Layer::Annotation, QLatin1String("annotation")},
    // What annotations were once called; only ever read, as the search by value stops at the line above.
    Word<int>{Layer::Annotation, QLatin1String("scribble")},
};

constexpr std::array beyondLastWords{
    Word<Layer::LayerBeyondLast>{Layer::LayerBeyondLast::ShowNothing, QLatin1String("showNothing")},
    Word<Layer::LayerBeyondLast>{Layer::LayerBeyondLast::FreezeLast, QLatin1String("freezeLast")},
    Word<Layer::LayerBeyondLast>{Layer::LayerBeyondLast::CycleDrawings, QLatin1String("cycleDrawings")},
};

constexpr std::array cellTypeWords{
    Word<LayerItem::Type>{LayerItem::Type::Original, QLatin1String("original")},
    Word<LayerItem::Type>{LayerItem::Type::Clone, QLatin1String("clone")},
    Word<LayerItem::Type>{LayerItem::Type::DistantClone, QLatin1String("distantClone")},
};

template<typename Table, typename Value>
QString textOf(const Table &table, Value value)
{
    const auto found = std::find_if(table.begin(), table.end(), [value](const auto &w) { return w.value == value; });
    return found == table.end() ? QString() : QString(found->text);
}

template<typename Table>
auto valueOf(const Table &table, QStringView text)
{
    using Value = decltype(table.front().value);
    const auto found = std::find_if(table.begin(), table.end(), [text](const auto &w) { return text == w.text; });
    return found == table.end() ? std::optional<Value>() : std::optional<Value>(found->value);
}

} // namespace

QString layerType(int type)
{
    return textOf(layerTypeWords, type);
}

std::optional<int> layerType(QStringView word)
{
    return valueOf(layerTypeWords, word);
}

QString beyondLast(Layer::LayerBeyondLast mode)
{
    return textOf(beyondLastWords, mode);
}

std::optional<Layer::LayerBeyondLast> beyondLast(QStringView word)
{
    return valueOf(beyondLastWords, word);
}

QString cellType(LayerItem::Type type)
{
    return textOf(cellTypeWords, type);
}

std::optional<LayerItem::Type> cellType(QStringView word)
{
    return valueOf(cellTypeWords, word);
}

} // namespace Model::FormatWords
