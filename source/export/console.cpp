#include "export/console.h"

#include "export/helptext.h"
#include "export/interrupt.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <poll.h>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>

namespace Export {

namespace {

/// Waits until \a descriptor takes something, or has an error to tell. \return 0, ECANCELED when the process is asked
/// to stop before it does, or the number of why nobody can wait for it.
int waitForRoom(int descriptor)
{
    // A signal between looking for it and waiting would go unnoticed for so long.
    constexpr int sliceMs = 100;
    pollfd waiting{descriptor, POLLOUT, 0};
    for (;;) {
        const int ready = poll(&waiting, 1, sliceMs);
        if (ready > 0)
            return 0;
        if (wasInterrupted())
            return ECANCELED;
        if (ready < 0 && errno != EINTR && errno != EAGAIN)
            return errno;
    }
}

/// Writes all of \a bytes. \return 0, or the number of what went wrong; ECANCELED when the process is asked to stop
/// while nobody takes them.
int writeAll(int descriptor, const QByteArray &bytes)
{
    // As much as is taken at once by what has room at all, so that only waitForRoom() waits.
    constexpr qsizetype portion = PIPE_BUF;
    if (descriptor < 0)
        return EBADF;
    qsizetype written = 0;
    while (written < bytes.size()) {
        if (const int error = waitForRoom(descriptor); error != 0)
            return error;
        const qsizetype rest = std::min(bytes.size() - written, portion);
        const ssize_t count = ::write(descriptor, bytes.constData() + written, size_t(rest));
        if (count < 0 && errno != EINTR && errno != EAGAIN && errno != EWOULDBLOCK)
            return errno;
        written += std::max<ssize_t>(count, 0);
    }
    return 0;
}

/// Columns of the terminal at \a descriptor.
int columns(int descriptor)
{
    constexpr int usual = 80;
    winsize size{};
    if (ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return usual;
    return size.ws_col;
}

bool steersTerminal(char32_t character)
{
    constexpr char32_t nonJoiner = 0x200c;
    constexpr char32_t joiner = 0x200d;
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    case QChar::Other_Format:
        return character != nonJoiner && character != joiner;
    default:
        return false;
    }
}

} // namespace

Console::Console(int output, int errors) : m_output(output), m_errors(errors), m_isTerminal(isatty(errors) == 1)
{
}

Console::~Console()
{
    clearStatus();
}

ExitCode Console::write(const QString &text)
{
    clearStatus();
    const QString output = QStringLiteral("standard output");
    const int error = writeAll(m_output, text.toUtf8());
    if (error == 0)
        return ExitCode::Done;
    if (error == ECANCELED) {
        message(output, QStringLiteral("cancelled"));
        return ExitCode::Cancelled;
    }
    message(output, QString::fromStdString(std::error_code(error, std::generic_category()).message()));
    return ExitCode::Error;
}

void Console::message(const QString &message)
{
    writeError(QStringLiteral("%1: %2\n").arg(programName, printable(message)));
}

void Console::message(const QString &subject, const QString &message)
{
    this->message(subject + QStringLiteral(": ") + message);
}

void Console::warning(const QString &subject, const QString &message)
{
    this->message(subject, QStringLiteral("warning: ") + message);
}

void Console::plainError(const QString &text)
{
    writeError(text);
}

void Console::showStatus(const QString &text)
{
    if (!m_isTerminal)
        return;
    // The last column stays free: a terminal would go to the next line behind it.
    const QString shown = text.left(std::max(columns(m_errors) - 1, 0));
    const QString rest(std::max<qsizetype>(m_statusLength - shown.size(), 0), u' ');
    m_statusLength = shown.size();
    writeAll(m_errors, (u'\r' + shown + rest + QString(rest.size(), u'\b')).toUtf8());
}

void Console::clearStatus()
{
    if (m_statusLength == 0)
        return;
    const QString blank(std::min<qsizetype>(m_statusLength, std::max(columns(m_errors) - 1, 0)), u' ');
    m_statusLength = 0;
    writeAll(m_errors, (u'\r' + blank + u'\r').toUtf8());
}

void Console::writeError(const QString &text)
{
    clearStatus();
    // There is nowhere left to complain to if this fails.
    writeAll(m_errors, text.toUtf8());
}

QString printable(const QString &text)
{
    QList<uint> characters = text.toUcs4();
    std::ranges::replace_if(characters, steersTerminal, uint(QChar::ReplacementCharacter));
    return QString::fromUcs4(reinterpret_cast<const char32_t *>(characters.constData()), characters.size());
}

} // namespace Export
