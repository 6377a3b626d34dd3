#pragma once

#include "libmodel/strokes/sample.h"

#include <QPainterPath>
#include <QRectF>
#include <QSize>

#include <memory>

namespace Model {
class SingleStroke;
class Tool;
} // namespace Model

namespace UI {

/// The line that a lasso draws, smoothed as any line of a pen is. Paper coordinates.
class LassoLine
{
public:
    LassoLine();
    ~LassoLine();

    [[nodiscard]] bool isActive() const { return m_stroke != nullptr; }
    /// Begins a line over a paper of \a size with the pen \a tool (not owned), in place of any other.
    void begin(QSize size, const Model::Tool *tool);
    /// Leads the line on. \return what it now covers beyond before, its control points and width included. Nothing
    /// while none is active.
    QRectF add(const Model::Sample &sample);
    /// The line as far as it has come.
    [[nodiscard]] QPainterPath path() const;
    /// Where path() may have ink, all of it.
    [[nodiscard]] QRectF bounds() const;
    /// Ends the line. \return the area that it encircles, closed and without self-intersections.
    QPainterPath finish();

private:
    std::unique_ptr<Model::SingleStroke> m_stroke;
};

} // namespace UI
