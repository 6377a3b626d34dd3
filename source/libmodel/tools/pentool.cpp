#include "libmodel/tools/pentool.h"

#include "libmodel/tools/tipcursors.h"

namespace Model {

PenTool::PenTool(PenType penType, QObject *parent) : DrawingTool(Type::Pen, parent), m_kind(penType)
{
}

std::unique_ptr<Tool> PenTool::clone() const
{
    auto copy = cloneAs<PenTool>(m_kind);
    copy->copyState(*this);
    return copy;
}

QString PenTool::displayName() const
{
    switch (m_kind) {
    case PenType::Pencil:
        return tr("Pencil");
    case PenType::Marker:
        return tr("Marker");
    case PenType::Brush:
        return tr("Brush");
    }
    return {};
}

QString PenTool::settingsName() const
{
    switch (m_kind) {
    case PenType::Pencil:
        return QStringLiteral("Pencil");
    case PenType::Marker:
        return QStringLiteral("Marker");
    case PenType::Brush:
        return QStringLiteral("Brush");
    }
    return {};
}

QCursor PenTool::makeCursor(double inner, double outer, double scale, bool faint) const
{
    return penTipCursor(inner, outer, scale, faint);
}

QCursor PenTool::fixedCursor(bool faint) const
{
    return namedCursor(faint ? QStringLiteral("pointer-drawFixedFaint") : QStringLiteral("pointer-drawFixedOpaque"));
}

} // namespace Model
