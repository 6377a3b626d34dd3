#include "libmodel/layers/layer.h"

namespace Model {

Layer::Layer(QObject *parent) : QObject(parent), m_identifier(QUuid::createUuid())
{
}

Layer::~Layer() = default;

bool Layer::isValidFrame(int frameId) const
{
    return frameId >= 1 && frameId <= numFrames();
}

void Layer::setIdentifier(const QUuid &identifier)
{
    if (!identifier.isNull())
        m_identifier = identifier;
}

void Layer::setName(const QString &name)
{
    if (m_name == name)
        return;
    m_name = name;
    emit nameChanged(m_name);
}

void Layer::setLinked(bool linked)
{
    if (m_linked == linked)
        return;
    m_linked = linked;
    emit linkedChanged(m_linked);
}

bool Layer::setLayerBeyondLast(Layer::LayerBeyondLast beyondLast)
{
    if (beyondLast < ShowNothing || beyondLast > CycleDrawings || beyondLast == m_beyondLast)
        return false;
    m_beyondLast = beyondLast;
    return true;
}

} // namespace Model
