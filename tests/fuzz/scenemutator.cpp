// How an input of fuzz_scenereader is changed. Any change of bytes in base64 breaks the block or does little, so blocks
// are decoded first; and identifiers, elements and numbers are moved about as wholes, which changes of single bytes
// would hardly ever do.

#include "support/randomnumbers.h"

#include <QByteArray>
#include <QList>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t maximumSize);
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maximumSize, unsigned int seed);

namespace {

using TestSupport::RandomNumbers;

struct Span
{
    qsizetype begin;
    qsizetype length;
};

/// The texts of all elements that hold base64.
QList<Span> blocksOf(const QByteArray &file)
{
    QList<Span> spans;
    for (const char *tag : {"<strokes>", "<image>", "<originalAudioData>"}) {
        for (qsizetype at = file.indexOf(tag); at >= 0; at = file.indexOf(tag, at + 1)) {
            const qsizetype begin = at + qsizetype(std::strlen(tag));
            const qsizetype end = file.indexOf('<', begin);
            if (end > begin)
                spans.append({begin, end - begin});
        }
    }
    return spans;
}

QList<Span> identifiersOf(const QByteArray &file)
{
    constexpr qsizetype length = 38;
    QList<Span> spans;
    for (qsizetype at = file.indexOf("\"{"); at >= 0; at = file.indexOf("\"{", at + 1)) {
        if (at + 1 + length < file.size())
            spans.append({at + 1, length});
    }
    return spans;
}

/// The whole elements called \a name, as far as they don't hold others of that name.
QList<Span> elementsOf(const QByteArray &file, const QByteArray &name)
{
    const QByteArray opening = '<' + name + ' ';
    const QByteArray closing = "</" + name + '>';
    QList<Span> spans;
    for (qsizetype at = file.indexOf(opening); at >= 0; at = file.indexOf(opening, at + 1)) {
        const qsizetype tagEnd = file.indexOf('>', at);
        if (tagEnd < 0)
            break;
        const bool isEmpty = file.at(tagEnd - 1) == '/';
        const qsizetype last = isEmpty ? tagEnd : file.indexOf(closing, at);
        if (last >= 0)
            spans.append({at, last + (isEmpty ? 1 : closing.size()) - at});
    }
    return spans;
}

/// Attribute values and texts that begin as numbers do.
QList<Span> numbersOf(const QByteArray &file)
{
    const auto isPart = [](char c) { return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == ';'; };
    QList<Span> spans;
    for (qsizetype at = 1; at < file.size(); ++at) {
        if ((file.at(at - 1) != '"' && file.at(at - 1) != '>') || !isPart(file.at(at)))
            continue;
        qsizetype end = at;
        while (end < file.size() && isPart(file.at(end)))
            ++end;
        if (end < file.size() && (file.at(end) == '"' || file.at(end) == '<'))
            spans.append({at, end - at});
    }
    return spans;
}

void mutateBlock(QByteArray &file, RandomNumbers &random)
{
    const QList<Span> blocks = blocksOf(file);
    if (blocks.isEmpty())
        return;
    constexpr qsizetype room = 256;
    const Span span = random.oneOf(blocks);
    QByteArray block = QByteArray::fromBase64(file.mid(span.begin, span.length));
    const qsizetype size = block.size();
    block.resize(size + room);
    const int times = random.between(1, 3);
    auto newSize = size_t(size);
    for (int i = 0; i < times; ++i)
        newSize = LLVMFuzzerMutate(reinterpret_cast<uint8_t *>(block.data()), newSize, size_t(block.size()));
    block.truncate(qsizetype(newSize));
    file.replace(span.begin, span.length, block.toBase64());
}

void copyIdentifier(QByteArray &file, RandomNumbers &random)
{
    const QList<Span> identifiers = identifiersOf(file);
    if (identifiers.isEmpty())
        return;
    const Span from = random.oneOf(identifiers);
    const Span to = random.oneOf(identifiers);
    file.replace(to.begin, to.length, file.mid(from.begin, from.length));
}

void moveElement(QByteArray &file, RandomNumbers &random)
{
    const QList<Span> elements = elementsOf(file, random.oneOf(QList<QByteArray>{"drawing", "layer", "clone"}));
    if (elements.isEmpty())
        return;
    const Span element = random.oneOf(elements);
    const QByteArray text = file.mid(element.begin, element.length);
    const Span place = random.oneOf(elements);
    switch (random.between(0, 2)) {
    case 0:
        file.remove(element.begin, element.length);
        break;
    case 1:
        file.insert(place.begin, text);
        break;
    default:
        file.replace(place.begin, place.length, text);
        break;
    }
}

void replaceNumber(QByteArray &file, RandomNumbers &random)
{
    static const QList<QByteArray> values = {"0",           "1",           "-1",    "2",     "3",     "0.5",  "1.5",
                                             "-0",          "16",          "8192",  "8193",  "32768", "4096", "4097",
                                             "1e-7",        "359.9999",    "1e38",  "1e308", "nan",   "inf",  "-inf",
                                             "2147483647",  "2147483648",  "1;1",   "2;1",   "1;100", "0;0",  "0;1;2",
                                             "2;1;0;3;4;5", "-2147483648", "100000"};
    const QList<Span> numbers = numbersOf(file);
    if (numbers.isEmpty())
        return;
    const Span number = random.oneOf(numbers);
    file.replace(number.begin, number.length, random.oneOf(values));
}

} // namespace

size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maximumSize, unsigned int seed)
{
    RandomNumbers random(seed);
    const int kind = random.between(0, 9);
    if (kind <= 2)
        return LLVMFuzzerMutate(data, size, maximumSize);
    const QByteArray original(reinterpret_cast<const char *>(data), qsizetype(size));
    QByteArray file = original;
    if (kind <= 5)
        mutateBlock(file, random);
    else if (kind == 6)
        copyIdentifier(file, random);
    else if (kind == 7)
        moveElement(file, random);
    else
        replaceNumber(file, random);
    if (file == original || file.size() > qsizetype(maximumSize))
        return LLVMFuzzerMutate(data, size, maximumSize);
    std::copy(file.cbegin(), file.cend(), data);
    return size_t(file.size());
}
