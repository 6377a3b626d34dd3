#pragma once

#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/colortable.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/strokedrawing.h"
#include "strokemaking.h"

#include <QObject>
#include <QPainter>

#include <memory>

/// The frame, tools and strokes that tests of stroke drawings share.
class StrokeDrawingFixture : public QObject
{
protected:
    static constexpr QSize frame{403, 301}; // no multiple of 4: rows are padded

    TestPen m_pen{{5, 5, 1, 1}};
    TestPen m_pencil{{1, 6, 0.5, 1}, Model::Tool::PenType::Pencil};
    TestEraser m_eraser{{8, 8, 1, 1}};

    std::unique_ptr<Model::SingleStroke> pen(QPointF from, QPointF to) const
    {
        return drawnStroke(m_pen, frame, from, to);
    }
    std::unique_ptr<Model::SingleStroke> eraser(QPointF from, QPointF to) const
    {
        return drawnStroke(m_eraser, frame, from, to);
    }
    /// White paper with \a drawing in red, within \a rect; with \a active as the stroke in progress, if there is one.
    static QImage painted(const Model::StrokeDrawing &drawing, QRect rect, const Model::SingleStroke *active = nullptr)
    {
        QImage paper(frame, QImage::Format_ARGB32_Premultiplied);
        paper.fill(Qt::white);
        QPainter painter(&paper);
        if (active)
            drawing.paintWithActiveStroke(&painter, Model::colorTable(Qt::red), rect, *active);
        else
            drawing.paint(&painter, Model::colorTable(Qt::red), rect);
        return paper;
    }
    /// Coverage \a value over the whole frame.
    static std::unique_ptr<Model::BitmapStroke> solid(int value)
    {
        QImage image = Model::blankCoverage(frame);
        image.fill(value);
        return std::make_unique<Model::BitmapStroke>(image, QRect(QPoint(0, 0), frame));
    }
};
