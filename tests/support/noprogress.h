#pragma once

#include "libmodel/base/progress.h"

namespace TestSupport {

/// A progress that nobody looks at, and nobody cancels.
class NoProgress : public Model::Progress
{
public:
    void reset() override {}
    void setSteps(int, int) override {}
    void advance() override {}
    void finish() override {}
    [[nodiscard]] bool wasCancelled() const override { return false; }
};

} // namespace TestSupport
