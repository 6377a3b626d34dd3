#pragma once

#include <QByteArray>
#include <QImage>
#include <QRect>
#include <QSize>

#include <array>
#include <optional>
#include <vector>

/// A reader of `strokes` blocks that goes by the description of the format alone and shares no code with the program.
namespace TestSupport {

struct ParsedSample
{
    float x;
    float y;
    float pressure;
};

struct ParsedSegment
{
    int kind; ///< 0 point, 1 line, 2 arc
    std::vector<float> numbers;
    bool isClockwise = false;
};

/// A run-length image, unpacked.
struct ParsedImage
{
    int width = 0;
    int height = 0;
    QByteArray pixels; ///< width * height bytes, row by row
};

/// A stroke of any kind; the fields of the other kinds stay empty.
struct ParsedStroke
{
    int kind = 1; ///< 0 single, 1 compound, 2 bitmap

    bool isPen = false;
    int tool = -1;
    QRect bounds;
    std::vector<ParsedSample> samples;
    std::vector<ParsedSegment> segments;

    std::vector<ParsedStroke> children;
    int cutElements = 0;
    int keepElements = 0;
    std::array<float, 9> transform{};

    QRect rect;
    std::optional<ParsedImage> image;
};

struct ParsedDrawing
{
    QSize size;
    ParsedStroke root;
    std::optional<ParsedImage> image;
    qsizetype bytesLeft = 0; ///< after the trailer
};

/// Reads the block \a bytes (base64 undone); nothing if it ends early or holds what the format does not know.
std::optional<ParsedDrawing> parseStrokesBlock(const QByteArray &bytes);

/// The pixels of \a image (one byte each) row by row, without padding.
QByteArray pixelsOf(const QImage &image);

} // namespace TestSupport
