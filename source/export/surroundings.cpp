#include "export/surroundings.h"

#include <QByteArray>
#include <QDebug>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace Export {

namespace {

QtMessageHandler usualHandler = nullptr;

void tellOnlyTheEnd(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtFatalMsg)
        usualHandler(type, context, text);
}

bool isOfUse(const QByteArray &platform)
{
    if (platform.startsWith("wayland"))
        return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    // Without windows the same OpenGL is to be had from an X display, and it does no harm if that does not answer.
    return !platform.isEmpty() && !platform.startsWith("xcb");
}

} // namespace

void secureStreams()
{
    // The wrong way round on purpose: using one of them fails, as it would if it were closed.
    constexpr std::array wrongModes = {O_WRONLY, O_RDONLY, O_RDONLY};
    for (int descriptor = 0; descriptor < int(wrongModes.size()); ++descriptor) {
        if (fcntl(descriptor, F_GETFD) < 0)
            static_cast<void>(open("/dev/null", wrongModes[size_t(descriptor)])); // takes the lowest free number
    }
    // Writing fails with a reason then, instead of ending the process.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void choosePlatform()
{
    if (!isOfUse(qgetenv("QT_QPA_PLATFORM")))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

void quietLibraries(bool verbose)
{
    if (verbose)
        return;
    usualHandler = qInstallMessageHandler(tellOnlyTheEnd);
    constexpr std::array<std::array<const char *, 2>, 3> settings = {{
        {"LIBGL_DEBUG", "quiet"},
        {"EGL_LOG_LEVEL", "fatal"},
        {"MESA_DEBUG", "silent"},
    }};
    for (const auto &[name, value] : settings) {
        if (!qEnvironmentVariableIsSet(name))
            qputenv(name, value);
    }
}

} // namespace Export
