#pragma once

#include <QPointF>

namespace Model {

/// One report of the pen, as it came in.
struct Sample
{
    QPointF point;         ///< Paper coordinates.
    double pressure = 0.0; ///< 0 to 1; 0.5 for a mouse.
    quint32 timestamp = 0; ///< The event's milliseconds. Not stored in files.
};

} // namespace Model
