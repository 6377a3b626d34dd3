#pragma once

#include "libmodel/base/progress.h"

#include <QElapsedTimer>
#include <QString>

#include <memory>

class QProgressDialog;
class QWidget;

namespace Model {

/// Progress in a dialog: window-modal, of a fixed size, shown only when the operation takes long.
class DialogProgress : public Progress
{
public:
    /// How long reading or writing a scene goes on before it is worth a dialog, in milliseconds.
    static constexpr int fileDurationMs = 2000;
    /// The same for exports.
    static constexpr int exportDurationMs = 1000;

    /// A dialog over \a parent (may be null) with the translated texts \a label and \a cancelText, out of sight until
    /// the operation has taken \a minimumDurationMs.
    DialogProgress(QWidget *parent, const QString &label, const QString &cancelText,
                   int minimumDurationMs = fileDurationMs);
    ~DialogProgress() override;

    void reset() override;
    void setSteps(int maximum, int value) override;
    void advance() override;
    void finish() override;
    /// Handles what has happened in the windows. As long as no dialog keeps the user from them, that is without what he
    /// does to them.
    void poll() override;
    /// The user has pressed the button since the last reset().
    [[nodiscard]] bool wasCancelled() const override;

private:
    std::unique_ptr<QProgressDialog> m_dialog;
    QElapsedTimer m_sincePoll;
};

} // namespace Model
