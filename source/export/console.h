#pragma once

#include "export/command.h"

#include <QString>

namespace Export {

/// The standard output and error streams: text in UTF-8 whatever the locale, and one line in front of the cursor that
/// tells of progress, where somebody is looking at it.
class Console
{
public:
    /// Writes to the file descriptors \a output and \a errors, which stay the caller's.
    explicit Console(int output = 1, int errors = 2);
    /// Takes the status line away.
    ~Console();

    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;

    /// Writes \a text to the output, waiting for a reader as long as the process is not asked to stop. \return what the
    /// process should answer; why not all of the text arrived has been told on the other stream.
    [[nodiscard]] ExitCode write(const QString &text);

    /// A line "mirelle-export: MESSAGE" on the error stream.
    void message(const QString &message);
    /// A line "mirelle-export: SUBJECT: MESSAGE", \a subject being a file.
    void message(const QString &subject, const QString &message);
    /// A line "mirelle-export: SUBJECT: warning: MESSAGE".
    void warning(const QString &subject, const QString &message);
    /// \a text as it is on the error stream, for texts of several lines.
    void plainError(const QString &text);

    /// Is the error stream a terminal, so that a status line is of use?
    [[nodiscard]] bool hasStatusLine() const { return m_isTerminal; }
    /// Shows \a text (printable ASCII) in the last line of the terminal in place of what stood there, cut to its
    /// width. Nothing without a terminal.
    void showStatus(const QString &text);
    void clearStatus();

private:
    void writeError(const QString &text);

    int m_output;
    int m_errors;
    bool m_isTerminal;
    qsizetype m_statusLength = 0; ///< columns
};

/// \a text fit for one line of a terminal: what a scene file brings along must not steer it. Control characters, line
/// breaks and invisible characters that format text, such as those that turn its direction, become U+FFFD; the joiners
/// that scripts and emoji are written with stay.
[[nodiscard]] QString printable(const QString &text);

} // namespace Export
