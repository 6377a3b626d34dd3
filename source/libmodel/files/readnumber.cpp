#include "libmodel/files/readnumber.h"

#include <cmath>

namespace Model {

NumberInText numberIn(QStringView text, double limit)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (!isNumber)
        return {};
    if (std::isnan(value) || std::abs(value) > limit)
        return {std::nullopt, true};
    return {value, false};
}

} // namespace Model
