#pragma once

#include <QPainter>

namespace Model {

/// Multiplies a painter's opacity for as long as it lives. The painter is not owned.
class OpacityScope
{
public:
    /// \a factor is from 0 to 1.
    OpacityScope(QPainter *painter, double factor) : m_painter(painter), m_opacity(painter->opacity())
    {
        m_painter->setOpacity(m_opacity * factor);
    }
    ~OpacityScope() { m_painter->setOpacity(m_opacity); }
    Q_DISABLE_COPY_MOVE(OpacityScope)

private:
    QPainter *m_painter;
    double m_opacity;
};

} // namespace Model
