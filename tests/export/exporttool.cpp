#include "exporttool.h"

#include <QDir>
#include <QFile>
#include <QImage>

namespace TestSupport {

namespace {

constexpr int timeoutMs = 60'000;

ToolRun finish(QProcess &process)
{
    ToolRun run;
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    if (process.exitStatus() == QProcess::NormalExit)
        run.exitCode = process.exitCode();
    run.output = process.readAllStandardOutput();
    run.errors = process.readAllStandardError();
    return run;
}

} // namespace

QString exportToolPath()
{
    return QStringLiteral(MIRELLE_EXPORT);
}

QProcessEnvironment withoutDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(name);
    return environment;
}

ToolRun runTool(const QStringList &arguments, const QProcessEnvironment &environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(exportToolPath(), arguments);
    return finish(process);
}

ToolRun runShell(const QString &script, const QStringList &arguments)
{
    QProcess process;
    process.setProcessEnvironment(withoutDisplay());
    process.start("bash", QStringList{"-c", script, exportToolPath()} + arguments);
    return finish(process);
}

QString Workplace::put(const QString &name, const QByteArray &content) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be written", qPrintable(file.fileName()));
    return file.fileName();
}

QStringList Workplace::filesIn(const QString &name) const
{
    const QDir folder(path(name));
    return folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

bool isWholePng(const QString &path)
{
    // The last chunk has no data: length 0, name, and the checksum of the name.
    const QByteArray end = QByteArray::fromHex("0000000049454e44ae426082");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();
    return bytes.endsWith(end) && !QImage::fromData(bytes, "png").isNull();
}

} // namespace TestSupport
