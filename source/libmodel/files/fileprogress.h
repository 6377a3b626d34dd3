#pragma once

#include <QString>

#include <memory>

class QProgressDialog;
class QWidget;

namespace Model {

/// The progress dialog of reading or writing a scene file: window-modal, of a fixed size, shown only when the
/// operation takes longer than two seconds.
class FileProgress
{
public:
    /// A dialog over \a parent (may be null) with the translated texts \a label and \a cancelText, out of sight.
    FileProgress(QWidget *parent, const QString &label, const QString &cancelText);
    ~FileProgress();

    FileProgress(const FileProgress &) = delete;
    FileProgress &operator=(const FileProgress &) = delete;

    /// Hides the dialog, forgets a cancel and goes back to the beginning.
    void reset();
    /// Sets the number of steps (not negative) and how many of them are done.
    void setSteps(int maximum, int value);
    /// One step more is done.
    void advance();
    /// All steps are done.
    void finish();
    /// The user has pressed the button since the last reset().
    [[nodiscard]] bool wasCancelled() const;

private:
    std::unique_ptr<QProgressDialog> m_dialog;
};

} // namespace Model
