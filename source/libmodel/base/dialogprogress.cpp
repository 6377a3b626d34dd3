#include "libmodel/base/dialogprogress.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QProgressDialog>

namespace Model {

DialogProgress::DialogProgress(QWidget *parent, const QString &label, const QString &cancelText, int minimumDurationMs)
    : m_dialog(std::make_unique<QProgressDialog>(label, cancelText, 0, 100, parent))
{
    m_dialog->setWindowModality(Qt::WindowModal);
    m_dialog->setMinimumDuration(minimumDurationMs);
    // Reaching the maximum would otherwise forget a cancel that is still to be looked at.
    m_dialog->setAutoReset(false);
    m_dialog->setFixedSize(m_dialog->sizeHint());
    // A new dialog has its timer running and would show itself even if nothing were ever read or written.
    m_dialog->reset();
}

DialogProgress::~DialogProgress() = default;

void DialogProgress::reset()
{
    m_dialog->reset();
}

void DialogProgress::setSteps(int maximum, int value)
{
    m_dialog->setMaximum(maximum);
    m_dialog->setValue(value);
}

void DialogProgress::advance()
{
    m_dialog->setValue(m_dialog->value() + 1);
}

void DialogProgress::finish()
{
    m_dialog->setValue(m_dialog->maximum());
}

void DialogProgress::poll()
{
    constexpr int paceMs = 20;
    if (m_sincePoll.isValid() && !m_sincePoll.hasExpired(paceMs))
        return;
    QCoreApplication::processEvents(m_dialog->isVisible() ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents);
    m_sincePoll.start();
}

bool DialogProgress::wasCancelled() const
{
    return m_dialog->wasCanceled();
}

} // namespace Model
