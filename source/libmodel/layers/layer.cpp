#include "libmodel/layers/layer.h"

namespace Model {

Layer::Layer(QObject *parent) : QObject(parent), m_identifier(QUuid::createUuid())
{
}

// A QObject cannot be copied: what is copied are the layer's own fields.
Layer::Layer(const Layer &other)
    : QObject(nullptr),
      m_name(other.m_name),
      m_linked(other.m_linked),
      m_identifier(QUuid::createUuid()),
      m_beyondLast(other.m_beyondLast)
{
}

Layer::~Layer() = default;

std::shared_ptr<Layer> Layer::clone() const
{
    return {};
}

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
