#include "export/terminalprogress.h"

#include "export/console.h"
#include "export/interrupt.h"

#include <algorithm>

namespace Export {

namespace {

/// Between two pictures of the line: what changes faster cannot be read.
constexpr int paceMs = 100;

} // namespace

TerminalProgress::TerminalProgress(Console &console, const QString &label, int steps)
    : m_console(console), m_label(label), m_steps(steps)
{
}

TerminalProgress::~TerminalProgress()
{
    m_console.clearStatus();
}

void TerminalProgress::reset()
{
    m_maximum = 0;
    m_value = 0;
    m_sinceShown.invalidate();
    m_console.clearStatus();
}

void TerminalProgress::setSteps(int maximum, int value)
{
    m_maximum = m_steps > 0 ? m_steps : std::max(maximum, 0);
    m_value = std::clamp(value, 0, m_maximum);
    show();
}

void TerminalProgress::advance()
{
    m_value = std::min(m_value + 1, m_maximum);
    show();
}

void TerminalProgress::finish()
{
    m_value = m_maximum;
    m_sinceShown.invalidate();
    m_console.clearStatus();
}

bool TerminalProgress::wasCancelled() const
{
    return wasInterrupted();
}

void TerminalProgress::show()
{
    if (!m_console.hasStatusLine() || (m_sinceShown.isValid() && m_sinceShown.elapsed() < paceMs))
        return;
    m_console.showStatus(QStringLiteral("%1  %2 of %3").arg(m_label).arg(m_value).arg(m_maximum));
    m_sinceShown.start();
}

} // namespace Export
