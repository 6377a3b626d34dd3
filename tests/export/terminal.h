#pragma once

#include "exporttool.h"

#include <functional>

namespace TestSupport {

/// A pseudo-terminal of a width of its own, with the standard streams of a program on it.
class Terminal
{
public:
    /// With \a columns columns.
    explicit Terminal(int columns);
    ~Terminal();
    Q_DISABLE_COPY_MOVE(Terminal)

    /// The side that a program writes to.
    [[nodiscard]] int programSide() const { return m_programSide; }

    /// Runs mirelle-export with \a arguments on the terminal, without a display. Whenever something was written,
    /// \a onOutput is given all that was, and may type(). \return with output and errors in one, in output.
    [[nodiscard]] ToolRun run(const QStringList &arguments, const std::function<void(const QByteArray &)> &onOutput);
    /// Types \a bytes, as a keyboard would: 3 is Ctrl+C.
    void type(const QByteArray &bytes) const;
    /// What was written by whoever has programSide(), so far.
    [[nodiscard]] QByteArray read() const;

private:
    int m_ourSide = -1;
    int m_programSide = -1;
};

/// The lines that a terminal shows in the end when \a bytes were written to it: carriage returns and backspaces move
/// the cursor, what is written replaces what stood there. Trailing blanks are left out, and so are empty last lines.
[[nodiscard]] QStringList shownLines(const QByteArray &bytes);

/// How many columns the widest line of \a bytes took at any moment.
[[nodiscard]] qsizetype widestLine(const QByteArray &bytes);

} // namespace TestSupport
