#include "libmodel/files/celltransform.h"

#include <QtMath>

#include <cmath>

namespace Model {

namespace {

bool isNearZero(double value)
{
    return std::abs(value) <= 1e-12;
}

} // namespace

double rotationDegrees(const QTransform &transform)
{
    const double m11 = transform.m11();
    const double m12 = transform.m12();
    const double m21 = transform.m21();
    const double m22 = transform.m22();
    if (isNearZero(m11) && isNearZero(m12)) {
        if (isNearZero(m21) && isNearZero(m22))
            return 0.0;
        const double sine = (m22 > 0 ? -m21 : m21) / std::sqrt(m21 * m21 + m22 * m22);
        return qRadiansToDegrees(M_PI_2 - std::acos(sine));
    }
    const double angle = qRadiansToDegrees(std::acos(m11 / std::sqrt(m11 * m11 + m12 * m12)));
    return m12 > 0 ? angle : -angle;
}

QTransform cellTransform(std::optional<double> dx, std::optional<double> dy, std::optional<double> degrees)
{
    QTransform transform;
    if (dx)
        transform.translate(*dx, 0);
    if (dy)
        transform.translate(0, *dy);
    if (degrees)
        transform.rotate(*degrees, Qt::ZAxis);
    return transform;
}

} // namespace Model
