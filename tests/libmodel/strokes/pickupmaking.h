#pragma once

#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/strokedrawing.h"
#include "strokemaking.h"
#include "support/randomnumbers.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <memory>
#include <numbers>

/// Drawings and lassos at random, for tests of what is picked up; the same for the same seed.
class PickUpMaker
{
public:
    PickUpMaker(quint64 seed, QSize frame) : m_random(seed), m_frame(frame) {}

    TestSupport::RandomNumbers &random() { return m_random; }

    QPointF point()
    {
        return {m_random.between(-200, m_frame.width() * 10 + 200) / 10.0,
                m_random.between(-200, m_frame.height() * 10 + 200) / 10.0};
    }

    /// A bent line of 60 to 100 px, as a hand makes them in the middle of a drawing.
    std::unique_ptr<Model::SingleStroke> line(const Model::Tool &tool)
    {
        constexpr int samples = 16;
        auto stroke = std::make_unique<Model::SingleStroke>(&tool);
        const QPointF start = point();
        const double length = m_random.between(60, 100);
        const double direction = m_random.between(0, 359) * std::numbers::pi / 180;
        const double bend = m_random.between(-100, 100) / 100.0;
        QPointF at = start;
        for (int i = 0; i < samples; ++i) {
            const double angle = direction + bend * i / samples * 2;
            stroke->addSample({at, 0.3 + 0.6 * i / samples, quint32(i * 5)});
            at += QPointF(std::cos(angle), std::sin(angle)) * length / samples;
        }
        stroke->finish();
        return stroke;
    }
    std::unique_ptr<Model::SingleStroke> anyLine()
    {
        const TestPen *pens[] = {&m_marker, &m_pencil, &m_brush};
        return m_random.chance(20) ? line(m_eraser) : line(*pens[m_random.between(0, 2)]);
    }
    std::unique_ptr<Model::BitmapStroke> bitmap()
    {
        const int scale = m_random.between(1, 2);
        const QRect rect(m_random.between(0, m_frame.width() - 30), m_random.between(0, m_frame.height() - 30),
                         m_random.between(10, 60), m_random.between(10, 60));
        QImage image = Model::blankCoverage(rect.size() * scale);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.scanLine(y)[x] = uchar((x * 7 + y * 13) % 256);
        }
        return std::make_unique<Model::BitmapStroke>(image, rect);
    }
    /// A lasso as a hand draws it: round about, closed, without loops; of lines or of curves.
    QPainterPath lasso(int leastRadius, int largestRadius)
    {
        constexpr int corners = 24;
        const QPointF middle = point();
        const double radius = m_random.between(leastRadius, largestRadius);
        QPolygonF polygon;
        for (int i = 0; i < corners; ++i) {
            const double angle = 2 * std::numbers::pi * i / corners;
            const double reach = radius * m_random.between(70, 100) / 100.0;
            polygon << middle + QPointF(std::cos(angle), std::sin(angle)) * reach;
        }
        QPainterPath path;
        if (m_random.chance(50))
            path.addPolygon(polygon);
        else
            path.addEllipse(middle, radius, radius * 0.8);
        path.closeSubpath();
        path.setFillRule(Qt::WindingFill);
        return path.simplified();
    }
    QTransform placing()
    {
        QTransform transform;
        transform.translate(m_random.between(-300, 300) / 10.0, m_random.between(-300, 300) / 10.0);
        if (m_random.chance(60))
            transform.rotate(m_random.between(-90, 90));
        if (m_random.chance(40))
            transform.scale(m_random.between(50, 150) / 100.0, m_random.between(50, 150) / 100.0);
        return transform;
    }

private:
    TestSupport::RandomNumbers m_random;
    QSize m_frame;
    TestPen m_marker{{3, 5, 0.6, 1}};
    TestPen m_pencil{{1, 4, 0.5, 1}, Model::Tool::PenType::Pencil};
    TestPen m_brush{{1, 6, 1, 1}, Model::Tool::PenType::Brush};
    TestEraser m_eraser{{4, 6, 1, 1}};
};

/// What \a stroke looks like on a frame of \a size.
inline QImage renderedOn(QSize size, const Model::Stroke &stroke)
{
    QImage image = Model::blankCoverage(size);
    stroke.render(image, image.rect(), QTransform(), QPoint(0, 0), 1.0);
    return image;
}

/// Draws the outlines of all masks of \a compound, as \a toFrame maps them, with a pen of a pixel to each side.
inline void drawMaskLines(QPainter &painter, const Model::CompoundStroke &compound, const QTransform &toFrame)
{
    const QTransform own = compound.transform() * toFrame;
    painter.setPen(QPen(Qt::black, 3.0));
    painter.drawPath(own.map(compound.keepPath()));
    painter.drawPath(own.map(compound.cutPath()));
    for (int i = 0; i < compound.count(); ++i) {
        if (compound.at(i).type() == Model::Stroke::Type::Compound)
            drawMaskLines(painter, static_cast<const Model::CompoundStroke &>(compound.at(i)), own);
    }
}

/// The pixels that lie within one pixel of a mask's line: anything but 0 there.
inline QImage maskLinesOf(QSize size, const Model::CompoundStroke &compound, const QPainterPath &path)
{
    QImage lines = Model::blankCoverage(size);
    QPainter painter(&lines);
    painter.setRenderHint(QPainter::Antialiasing);
    drawMaskLines(painter, compound, QTransform());
    painter.setPen(QPen(Qt::black, 3.0));
    painter.drawPath(path);
    return lines;
}

/// The number of pixels that differ by more than \a tolerance where \a ignored is 0.
inline int differingPixels(const QImage &a, const QImage &b, const QImage &ignored, int tolerance = 0)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const int difference = std::abs(a.constScanLine(y)[x] - b.constScanLine(y)[x]);
            if (difference > tolerance && (ignored.isNull() || ignored.constScanLine(y)[x] == 0))
                ++count;
        }
    }
    return count;
}
