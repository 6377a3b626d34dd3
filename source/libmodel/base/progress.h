#pragma once

namespace Model {

/// Where a long operation tells how far it is, and learns that it is to stop: a dialog, or a line on a terminal.
class Progress
{
public:
    Progress() = default;
    virtual ~Progress() = default;

    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// Goes out of sight and back to the beginning, and forgets a cancel.
    virtual void reset() = 0;
    /// Sets the number of steps (not negative) and how many of them are done.
    virtual void setSteps(int maximum, int value) = 0;
    /// One step more is done.
    virtual void advance() = 0;
    /// All steps are done.
    virtual void finish() = 0;
    /// Called again and again while the operation waits for something else, or goes on without a step done: lets the
    /// user see and reach what there is, for a cancel at least.
    virtual void poll() {}
    /// Has the user asked to stop since the last reset()?
    [[nodiscard]] virtual bool wasCancelled() const = 0;
};

} // namespace Model
