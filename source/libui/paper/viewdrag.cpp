#include "libui/paper/viewdrag.h"

#include "libui/paper/viewtransform.h"

namespace UI {

ViewDrag::ViewDrag(Kind kind, QPointF press, QPointF pivot)
    : m_kind(kind), m_press(press), m_from(press), m_to(press), m_pivot(pivot)
{
}

void ViewDrag::moveTo(QPointF position, ViewTransform &view)
{
    m_to = position;
    switch (m_kind) {
    case Kind::Pan:
        view.setPanDelta(m_from, m_to);
        break;
    case Kind::Zoom:
        view.setZoomDelta(m_from, m_to);
        break;
    case Kind::Rotate:
        view.setRotationDelta(m_from, m_to, m_pivot);
        break;
    case Kind::OffPegsPan:
        view.setOffPegsPanDelta(m_from, m_to);
        break;
    case Kind::OffPegsRotate:
        view.setOffPegsRotationDelta(m_from, m_to);
        break;
    }
}

void ViewDrag::commit(ViewTransform &view) const
{
    if (movesFrame())
        view.commitOffPegsDelta();
    else
        view.commitDelta();
}

} // namespace UI
