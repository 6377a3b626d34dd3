#include "libmodel/tools/erasertool.h"

#include "libmodel/tools/tipcursors.h"

namespace Model {

EraserTool::EraserTool(EraserType eraserType, QObject *parent) : DrawingTool(Type::Eraser, parent), m_kind(eraserType)
{
}

std::unique_ptr<Tool> EraserTool::clone() const
{
    auto copy = cloneAs<EraserTool>(m_kind);
    copy->copyState(*this);
    return copy;
}

QString EraserTool::displayName() const
{
    switch (m_kind) {
    case EraserType::KneadedEraser:
        return tr("Kneaded Eraser");
    case EraserType::RubberEraser:
        return tr("Rubber Eraser");
    case EraserType::VinylEraser:
        return tr("Vinyl Eraser");
    }
    return {};
}

QString EraserTool::settingsName() const
{
    switch (m_kind) {
    case EraserType::KneadedEraser:
        return QStringLiteral("KneadedEraser");
    case EraserType::RubberEraser:
        return QStringLiteral("RubberEraser");
    case EraserType::VinylEraser:
        return QStringLiteral("VinylEraser");
    }
    return {};
}

QCursor EraserTool::makeCursor(double, double outer, double scale, bool faint) const
{
    return eraserTipCursor(outer, scale, faint);
}

QCursor EraserTool::fixedCursor(bool faint) const
{
    return namedCursor(faint ? QStringLiteral("pointer-eraseFixedFaint") : QStringLiteral("pointer-eraseFixedOpaque"));
}

} // namespace Model
