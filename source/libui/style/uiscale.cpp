#include "libui/style/uiscale.h"

#include "libmodel/base/settings.h"

namespace UI {

double uiScale()
{
    return Model::Settings::instance()->uiScalePercent() / 100.0;
}

int scaled(double value)
{
    // Multiplied first: 100 at 29 percent is 29, where 100 * 0.29 falls short of it.
    return int(value * Model::Settings::instance()->uiScalePercent() / 100.0);
}

} // namespace UI
