#pragma once

#include <QImage>
#include <QPainterPath>
#include <QRect>

#include <algorithm>
#include <cstdlib>

/// Coverage of one pixel, 0 to 255; 0 outside of the image.
inline int coverageAt(const QImage &image, int x, int y)
{
    return image.rect().contains(x, y) ? image.constScanLine(y)[x] : 0;
}

/// The largest difference of two coverage images of the same size; 256 if the sizes differ.
inline int largestDifference(const QImage &a, const QImage &b)
{
    if (a.size() != b.size() || a.isNull())
        return 256;
    int worst = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            worst = std::max(worst, std::abs(coverageAt(a, x, y) - coverageAt(b, x, y)));
    }
    return worst;
}

/// The smallest rectangle that holds all coverage.
inline QRect inkOf(const QImage &image)
{
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (coverageAt(image, x, y) > 0)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

inline QPainterPath rectPath(double x, double y, double width, double height)
{
    QPainterPath path;
    path.addRect(x, y, width, height);
    return path;
}
