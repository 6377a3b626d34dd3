#include "terminal.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utmp.h>
#include <vector>

namespace TestSupport {

namespace {

/// The program with the terminal \a programSide for its own, so that Ctrl+C reaches it.
pid_t startOn(int programSide, const QStringList &arguments)
{
    std::vector<QByteArray> texts{exportToolPath().toUtf8()};
    for (const QString &argument : arguments)
        texts.push_back(argument.toUtf8());
    std::vector<char *> values;
    for (QByteArray &text : texts)
        values.push_back(text.data());
    values.push_back(nullptr);

    const pid_t child = fork();
    if (child == 0) {
        login_tty(programSide);
        for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            unsetenv(name);
        execv(values.front(), values.data());
        _exit(127);
    }
    return child;
}

/// Runs \a line through the cursor's moves.
QString afterMoves(const QString &line, qsizetype *widest)
{
    QString shown;
    qsizetype cursor = 0;
    for (const QChar character : line) {
        if (character == u'\r') {
            cursor = 0;
        } else if (character == u'\b') {
            cursor = std::max<qsizetype>(cursor - 1, 0);
        } else {
            shown = shown.leftJustified(cursor + 1);
            shown[cursor++] = character;
            *widest = std::max(*widest, cursor);
        }
    }
    while (shown.endsWith(u' '))
        shown.chop(1);
    return shown;
}

} // namespace

Terminal::Terminal(int columns)
{
    winsize size{};
    size.ws_row = 24;
    size.ws_col = static_cast<unsigned short>(columns);
    if (openpty(&m_ourSide, &m_programSide, nullptr, nullptr, &size) != 0)
        qFatal("There is no pseudo-terminal");
    fcntl(m_ourSide, F_SETFD, FD_CLOEXEC);
}

Terminal::~Terminal()
{
    close(m_ourSide);
    if (m_programSide >= 0)
        close(m_programSide);
}

ToolRun Terminal::run(const QStringList &arguments, const std::function<void(const QByteArray &)> &onOutput)
{
    const pid_t child = startOn(m_programSide, arguments);
    // Only the program has its side now, so that its end can be seen.
    close(m_programSide);
    m_programSide = -1;

    ToolRun run;
    char buffer[4096];
    ssize_t count = 0;
    while ((count = ::read(m_ourSide, buffer, sizeof buffer)) > 0) {
        run.output.append(buffer, count);
        onOutput(run.output);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status))
        run.exitCode = WEXITSTATUS(status);
    return run;
}

void Terminal::type(const QByteArray &bytes) const
{
    if (write(m_ourSide, bytes.constData(), size_t(bytes.size())) != bytes.size())
        qFatal("Nothing can be typed");
}

QByteArray Terminal::read() const
{
    constexpr int pauseMs = 50;
    QByteArray bytes;
    pollfd waiting{m_ourSide, POLLIN, 0};
    while (poll(&waiting, 1, pauseMs) > 0 && (waiting.revents & POLLIN)) {
        char buffer[4096];
        const ssize_t count = ::read(m_ourSide, buffer, sizeof buffer);
        if (count <= 0)
            break;
        bytes.append(buffer, count);
    }
    return bytes;
}

QStringList shownLines(const QByteArray &bytes)
{
    QStringList lines;
    qsizetype widest = 0;
    for (const QString &line : QString::fromUtf8(bytes).split(u'\n'))
        lines += afterMoves(line, &widest);
    while (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

qsizetype widestLine(const QByteArray &bytes)
{
    qsizetype widest = 0;
    for (const QString &line : QString::fromUtf8(bytes).split(u'\n'))
        static_cast<void>(afterMoves(line, &widest));
    return widest;
}

} // namespace TestSupport
