#include "export/console.h"

#include "export/helptext.h"

#include <algorithm>
#include <cerrno>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>

namespace Export {

namespace {

/// Writes all of \a bytes. \return 0, or the number of what went wrong.
int writeAll(int descriptor, const QByteArray &bytes)
{
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(descriptor, bytes.constData() + written, size_t(bytes.size() - written));
        if (count < 0 && errno != EINTR)
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

bool steersTerminal(QChar character)
{
    const QChar::Category category = character.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph;
}

} // namespace

Console::Console(int output, int errors) : m_output(output), m_errors(errors), m_isTerminal(isatty(errors) == 1)
{
}

Console::~Console()
{
    clearStatus();
}

bool Console::write(const QString &text)
{
    clearStatus();
    const int error = writeAll(m_output, text.toUtf8());
    if (error == 0)
        return true;
    message(QStringLiteral("standard output"),
            QString::fromStdString(std::error_code(error, std::generic_category()).message()));
    return false;
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
    QString result = text;
    std::ranges::replace_if(result, steersTerminal, QChar(QChar::ReplacementCharacter));
    return result;
}

} // namespace Export
