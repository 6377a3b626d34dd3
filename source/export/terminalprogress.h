#pragma once

#include "libmodel/base/progress.h"

#include <QElapsedTimer>
#include <QString>

namespace Export {

class Console;

/// Progress in the status line of a terminal, "Exporting  12 of 96", and nowhere else.
///
/// A signal that asks the process to stop is a cancel, and one that lasts: reset() does not forget it, for it was meant
/// for everything that the process is about to do.
class TerminalProgress : public Model::Progress
{
public:
    /// Tells on \a console (not owned) of the work that \a label (printable ASCII) names. With \a steps above 0 these
    /// many are shown whatever setSteps() says, for work that counts one thing and advances by another.
    TerminalProgress(Console &console, const QString &label, int steps = 0);
    /// Takes the line away.
    ~TerminalProgress() override;

    void reset() override;
    void setSteps(int maximum, int value) override;
    void advance() override;
    void finish() override;
    [[nodiscard]] bool wasCancelled() const override;

private:
    void show();

    Console &m_console;
    QString m_label;
    int m_steps;
    int m_maximum = 0;
    int m_value = 0;
    QElapsedTimer m_sinceShown; ///< not started while nothing is shown
};

} // namespace Export
