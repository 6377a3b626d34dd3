#include "libmodel/files/fileprogress.h"

#include <QProgressDialog>

namespace Model {

FileProgress::FileProgress(QWidget *parent, const QString &label, const QString &cancelText)
    : m_dialog(std::make_unique<QProgressDialog>(label, cancelText, 0, 100, parent))
{
    constexpr int minimumDurationMs = 2000;
    m_dialog->setWindowModality(Qt::WindowModal);
    m_dialog->setMinimumDuration(minimumDurationMs);
    // Reaching the maximum would otherwise forget a cancel that is still to be looked at.
    m_dialog->setAutoReset(false);
    m_dialog->setFixedSize(m_dialog->sizeHint());
    // A new dialog has its timer running and would show itself even if nothing were ever read or written.
    m_dialog->reset();
}

FileProgress::~FileProgress() = default;

void FileProgress::reset()
{
    m_dialog->reset();
}

void FileProgress::setSteps(int maximum, int value)
{
    m_dialog->setMaximum(maximum);
    m_dialog->setValue(value);
}

void FileProgress::advance()
{
    m_dialog->setValue(m_dialog->value() + 1);
}

void FileProgress::finish()
{
    m_dialog->setValue(m_dialog->maximum());
}

bool FileProgress::wasCancelled() const
{
    return m_dialog->wasCanceled();
}

} // namespace Model
