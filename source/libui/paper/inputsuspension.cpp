#include "libui/paper/inputsuspension.h"

namespace UI {

namespace {

int suspensions = 0;

} // namespace

InputSuspension::InputSuspension()
{
    ++suspensions;
}

InputSuspension::~InputSuspension()
{
    Q_ASSERT(suspensions > 0);
    --suspensions;
}

bool InputSuspension::isActive()
{
    return suspensions > 0;
}

} // namespace UI
