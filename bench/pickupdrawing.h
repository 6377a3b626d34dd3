#pragma once

#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/pentool.h"
#include "support/randomnumbers.h"

#include <QPainterPath>

#include <cmath>
#include <memory>
#include <numbers>

/// A full HD drawing as it is picked up from, and the lasso for that.
namespace PickUpDrawing {

inline constexpr QSize frameSize(1920, 1080);
inline constexpr int manyLines = 500;

/// A line as a hand draws it in the middle of a picture: 60 to 100 px, a sample every five.
inline std::unique_ptr<Model::SingleStroke> line(const Model::Tool &tool, TestSupport::RandomNumbers &random)
{
    constexpr double sampleDistance = 5.0;
    auto stroke = std::make_unique<Model::SingleStroke>(&tool);
    QPointF at(random.between(100, frameSize.width() - 100), random.between(100, frameSize.height() - 100));
    const double direction = random.between(0, 359) * std::numbers::pi / 180;
    const double bend = random.between(-100, 100) / 1000.0;
    const int samples = random.between(12, 20);
    for (int i = 0; i < samples; ++i) {
        stroke->addSample({at, 0.3 + 0.6 * i / samples, quint32(i * 5)});
        const double angle = direction + bend * i;
        at += QPointF(std::cos(angle), std::sin(angle)) * sampleDistance;
    }
    stroke->finish();
    return stroke;
}

/// So many of them with the pencil, always the same.
inline std::shared_ptr<Model::StrokeDrawing> drawingOf(int lines)
{
    const Model::PenTool pencil(Model::Tool::PenType::Pencil);
    TestSupport::RandomNumbers random(1);
    auto drawing = std::make_shared<Model::StrokeDrawing>(frameSize);
    for (int i = 0; i < lines; ++i)
        drawing->addStroke(line(pencil, random));
    return drawing;
}

/// As a hand draws it around \a middle.
inline QPainterPath lassoAt(QPointF middle, double width, double height)
{
    constexpr int corners = 200; // as many as a hand leaves behind
    QPolygonF polygon;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2 * std::numbers::pi * i / corners;
        const double tremor = 1.0 + 0.02 * std::sin(i * 1.7);
        polygon << middle + QPointF(std::cos(angle) * width, std::sin(angle) * height) * 0.5 * tremor;
    }
    QPainterPath path;
    path.addPolygon(polygon);
    path.closeSubpath();
    path.setFillRule(Qt::WindingFill);
    return path.simplified();
}

/// Around half of the drawing.
inline QPainterPath halfLasso()
{
    return lassoAt({960, 540}, 1500, 800);
}

} // namespace PickUpDrawing
