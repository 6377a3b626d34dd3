#pragma once

#include "libmodel/base/progress.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <utility>

namespace TestSupport {

/// Progress that notes what it is told, and breaks the operation off at a given look at wasCancelled().
class WatchedProgress : public Model::Progress
{
public:
    /// Cancels at the look number \a cancelAtLook, counted from 1, and at all that follow; 0 for never.
    explicit WatchedProgress(int cancelAtLook = 0) : m_cancelAtLook(cancelAtLook) {}

    /// Runs \a action at each look, before it is answered.
    void atEachLook(std::function<void()> action) { m_action = std::move(action); }

    void reset() override { m_events.append("reset"); }
    void setSteps(int maximum, int value) override
    {
        m_value = value;
        m_events.append(QString("%1 of %2").arg(value).arg(maximum));
    }
    void advance() override { m_events.append(QString::number(++m_value)); }
    void finish() override { m_events.append("finish"); }
    [[nodiscard]] bool wasCancelled() const override
    {
        ++m_looks;
        m_events.append("look");
        if (m_action)
            m_action();
        return m_cancelAtLook > 0 && m_looks >= m_cancelAtLook;
    }

    /// How often wasCancelled() was asked.
    [[nodiscard]] int looks() const { return m_looks; }
    /// Everything in its order: "reset", "0 of 9" for steps, the value of each advance, "finish", "look".
    [[nodiscard]] const QStringList &events() const { return m_events; }

private:
    int m_cancelAtLook;
    int m_value = 0;
    std::function<void()> m_action;
    mutable int m_looks = 0;
    mutable QStringList m_events;
};

} // namespace TestSupport
