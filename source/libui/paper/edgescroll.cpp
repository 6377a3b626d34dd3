#include "libui/paper/edgescroll.h"

namespace UI {

namespace {

constexpr double margin = 50.0;
constexpr double stepLength = 5.0;

} // namespace

QPointF edgeScrollStep(const QRectF &widget, QPointF position, double deviceRatio)
{
    const double reach = deviceRatio * margin;
    const auto towards = [&](double low, double high, double at) {
        return double(at < low + reach) - double(at > high - reach);
    };
    return QPointF(towards(widget.left(), widget.right(), position.x()),
                   towards(widget.top(), widget.bottom(), position.y())) *
           (deviceRatio * stepLength);
}

bool mayScroll(const QRectF &widget, const QPolygonF &paper, QPointF step, double deviceRatio)
{
    const double inset = deviceRatio * margin;
    const QPolygonF middle(widget.adjusted(inset, inset, -inset, -inset).normalized());
    return paper.translated(step).intersects(middle) || !paper.intersects(middle);
}

} // namespace UI
