#include "system/programdriver.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QTest>

namespace {

/// Between two looks at something that changes by itself.
constexpr int pollMs = 50;
/// Between two positions of a drawn line.
constexpr int samplePaceMs = 12;

} // namespace

ProgramDriver::ProgramDriver() = default;

ProgramDriver::~ProgramDriver()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

void ProgramDriver::start(const QStringList &arguments, const QStringList &extraEnvironment)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &entry : extraEnvironment)
        environment.insert(entry.section('=', 0, 0), entry.section('=', 1));
    m_process.setProcessEnvironment(environment);
    m_process.start(QStringLiteral(MIRELLE_PROGRAM), arguments);
    QVERIFY(m_process.waitForStarted());
}

quint64 ProgramDriver::waitForDialog(const QString &pattern, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < timeoutMs) {
        for (const QString &window : windowsNamed(pattern)) {
            if (run("xprop", {"-id", window, "_NET_WM_WINDOW_TYPE"}).contains("_NET_WM_WINDOW_TYPE_DIALOG")) {
                activate(window.toULongLong());
                return window.toULongLong();
            }
        }
        QTest::qWait(pollMs);
    }
    return 0;
}

quint64 ProgramDriver::waitForWindow(const QString &pattern, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < timeoutMs) {
        const QStringList found = windowsNamed(pattern);
        if (!found.isEmpty()) {
            activate(found.constFirst().toULongLong());
            return found.constFirst().toULongLong();
        }
        QTest::qWait(pollMs);
    }
    return 0;
}

void ProgramDriver::activate(quint64 window) const
{
    xdotool({"windowactivate", QString::number(window)});
    QTest::qWait(6 * pollMs);
}

QString ProgramDriver::title(quint64 window) const
{
    return xdotool({"getwindowname", QString::number(window)}).trimmed();
}

QRect ProgramDriver::geometry(quint64 window) const
{
    QRect area;
    const QString answer = xdotool({"getwindowgeometry", "--shell", QString::number(window)});
    for (const QString &line : answer.split('\n')) {
        const int value = line.section('=', 1).toInt();
        if (line.startsWith("X="))
            area.moveLeft(value);
        else if (line.startsWith("Y="))
            area.moveTop(value);
        else if (line.startsWith("WIDTH="))
            area.setWidth(value);
        else if (line.startsWith("HEIGHT="))
            area.setHeight(value);
    }
    return area;
}

QImage ProgramDriver::grabWhenSettled(QRect area) const
{
    const auto grab = [area] {
        return QGuiApplication::primaryScreen()
            ->grabWindow(0, area.x(), area.y(), area.width(), area.height())
            .toImage()
            .convertToFormat(QImage::Format_RGB32);
    };
    QImage last = grab();
    for (int attempt = 0; attempt < 100; ++attempt) {
        QTest::qWait(4 * pollMs);
        const QImage now = grab();
        if (now == last)
            return now;
        last = now;
    }
    return last;
}

void ProgramDriver::drag(const QList<QPoint> &points) const
{
    moveMouse(points.first());
    xdotool({"mousedown", "1"});
    for (const QPoint &point : points) {
        moveMouse(point);
        QTest::qWait(samplePaceMs);
    }
    xdotool({"mouseup", "1"});
}

void ProgramDriver::key(const QString &combination) const
{
    xdotool({"key", "--clearmodifiers", combination});
}

void ProgramDriver::holdKey(const QString &key) const
{
    xdotool({"keydown", key});
}

void ProgramDriver::releaseKey(const QString &key) const
{
    xdotool({"keyup", key});
}

void ProgramDriver::moveMouse(QPoint point) const
{
    xdotool({"mousemove", QString::number(point.x()), QString::number(point.y())});
}

void ProgramDriver::type(const QString &text) const
{
    xdotool({"type", "--delay", "8", text});
}

int ProgramDriver::waitForExit(int timeoutMs)
{
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(timeoutMs))
        return -1000;
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1000;
}

QByteArray ProgramDriver::standardError()
{
    return m_process.readAllStandardError();
}

void ProgramDriver::resize(quint64 window, QSize size) const
{
    xdotool({"windowsize", QString::number(window), QString::number(size.width()), QString::number(size.height())});
    QTest::qWait(6 * pollMs);
}

QString ProgramDriver::xdotool(const QStringList &arguments) const
{
    return run(QStringLiteral("xdotool"), arguments);
}

QStringList ProgramDriver::windowsNamed(const QString &pattern) const
{
    const QString process = QString::number(m_process.processId());
    return xdotool({"search", "--all", "--onlyvisible", "--pid", process, "--name", pattern})
        .split('\n', Qt::SkipEmptyParts);
}

QString ProgramDriver::run(const QString &tool, const QStringList &arguments)
{
    QProcess process;
    process.start(tool, arguments);
    process.waitForFinished(10000);
    return QString::fromUtf8(process.readAllStandardOutput());
}
