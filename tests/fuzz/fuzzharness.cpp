#include "fuzzharness.h"

#include <QGuiApplication>
#include <QSettings>

#include <cstdio>
#include <cstdlib>

namespace TestSupport {

namespace {

void logFatalOnly(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qUtf8Printable(message));
}

} // namespace

void startQt()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // With a display at hand even this platform would offer its OpenGL, and results would depend on the machine.
    qunsetenv("DISPLAY");
    qInstallMessageHandler(logFatalOnly);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/nonexistent"));
    static int argumentCount = 1;
    static char programName[] = "fuzz";
    static char *arguments[] = {programName, nullptr};
    static QGuiApplication application(argumentCount, arguments);
}

void require(bool holds, const char *claim)
{
    if (holds)
        return;
    std::fprintf(stderr, "\nDoes not hold: %s\n", claim);
    std::abort();
}

void requireNothingWrong(const QString &problem)
{
    require(problem.isEmpty(), qUtf8Printable(problem));
}

} // namespace TestSupport

int LLVMFuzzerInitialize(int *, char ***)
{
    TestSupport::startQt();
    return 0;
}
