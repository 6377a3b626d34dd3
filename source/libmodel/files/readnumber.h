#pragma once

#include <QString>

#include <optional>

namespace Model {

/// A number as it stands in a scene file.
struct NumberInText
{
    std::optional<double> value; ///< none for what is no number, or none that may stand here
    bool isRefused = false;      ///< it is one, but undefined (`nan`) or farther from 0 than anything could be
};

/// The number that \a text is, which may be \a limit away from 0; any number, `inf` among them, if that is infinite.
[[nodiscard]] NumberInText numberIn(QStringView text, double limit);

} // namespace Model
