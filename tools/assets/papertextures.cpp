#include "papertextures.h"

#include "noise.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Assets {

namespace {

constexpr int grainSide = 2048;
constexpr int linenSide = 512;
constexpr int threadPitch = 4; // pixels from thread to thread; an even number of threads must fit the side

/// Fine pits and fibres two to four texels wide, lightly clouded.
Field tooth()
{
    Field field = bandNoise(grainSide, 101, 0.8F, 2.0F);
    add(field, bandNoise(grainSide, 102, 1.8F, 5.0F), 0.55F);

    // Crests of a band-limited field run in threads of every direction: they stand for the fibres.
    Field fibres = bandNoise(grainSide, 103, 1.6F, 4.5F);
    for (float &value : fibres.values)
        value = -std::abs(value);
    normalise(fibres);
    add(field, fibres, 0.45F);
    add(field, bandNoise(grainSide, 104, 14.0F, 40.0F), 0.22F);
    return field;
}

/// Broad grains of four to twelve texels.
Field grains()
{
    Field field = bandNoise(grainSide, 201, 1.9F, 4.5F);
    add(field, bandNoise(grainSide, 202, 3.6F, 9.0F), 0.8F);
    add(field, bandNoise(grainSide, 203, 0.7F, 1.8F), 0.15F);
    return field;
}

/// How far a thread's surface stands out at \a across (-0.5 to 0.5 of the pitch): round, with a gap at the rims.
double threadProfile(double across)
{
    return std::sqrt(std::max(0.0, 1.0 - 3.2 * across * across));
}

/// The thickness of spun threads, one in each row: uneven from thread to thread and along each (slubs).
Field threads(quint32 seed)
{
    const Field white = whiteNoise(linenSide, seed);
    Field field = blurredAlongRows(white, 9.0F);
    normalise(field);
    Field broad = blurredAlongRows(white, 60.0F);
    normalise(broad);
    add(field, broad, 0.6F);
    normalise(field);
    return field;
}

double at(const Field &field, int x, int y)
{
    return static_cast<double>(field.values[static_cast<size_t>(y) * linenSide + static_cast<size_t>(x)]);
}

} // namespace

QImage paperGrain()
{
    // A tooth is bright paper with rare deep pits, hence the long foot of the curve.
    const std::vector<uchar> red = levelsByRank(tooth(), {{0.0, 78.0},
                                                          {0.0005, 120.0},
                                                          {0.005, 158.0},
                                                          {0.03, 186.0},
                                                          {0.1, 204.0},
                                                          {0.25, 218.5},
                                                          {0.5, 231.0},
                                                          {0.75, 241.0},
                                                          {0.95, 250.0},
                                                          {1.0, 255.0}});
    // The halves put the tenth at 0 and the tenth above 226 exactly on their side of the rounding.
    const std::vector<uchar> green =
        levelsByRank(grains(), {{0.0, 0.0}, {0.0999999, 0.0}, {0.1, 0.5}, {0.5, 111.0}, {0.9, 226.5}, {1.0, 255.0}});

    QImage image(grainSide, grainSide, QImage::Format_RGB888);
    for (int y = 0; y < grainSide; ++y) {
        uchar *out = image.scanLine(y);
        for (int x = 0; x < grainSide; ++x) {
            const size_t texel = static_cast<size_t>(y) * grainSide + static_cast<size_t>(x);
            *out++ = red[texel];
            *out++ = green[texel];
            *out++ = 0;
        }
    }
    return image;
}

QImage deskLinen()
{
    const Field warp = threads(301);
    const Field weft = threads(302);
    const Field fuzz = bandNoise(linenSide, 303, 0.6F, 2.0F);

    QImage image(linenSide, linenSide, QImage::Format_RGB888);
    for (int y = 0; y < linenSide; ++y) {
        uchar *out = image.scanLine(y);
        for (int x = 0; x < linenSide; ++x) {
            const int column = x / threadPitch;
            const int row = y / threadPitch;
            const double dx = (x % threadPitch + 0.5) / threadPitch - 0.5;
            const double dy = (y % threadPitch + 0.5) / threadPitch - 0.5;
            const bool warpOnTop = (column + row) % 2 == 0;
            const double across = warpOnTop ? dx : dy;
            const double along = warpOnTop ? dy : dx;
            const double height = threadProfile(across) * (0.55 + 0.45 * std::cos(std::numbers::pi * along));
            const double thread = warpOnTop ? at(warp, y, column) : at(weft, x, row);
            const double light = warpOnTop ? 0.0 : 1.6; // the weft catches the light a little more
            const double level = 94.0 + 15.0 * height + light + 2.6 * thread + 1.0 * at(fuzz, x, y);
            const int r = std::clamp(static_cast<int>(std::lround(level)), 88, 122);
            *out++ = static_cast<uchar>(r);
            *out++ = static_cast<uchar>(r - 4);
            *out++ = static_cast<uchar>(r - 8);
        }
    }
    return image;
}

} // namespace Assets
