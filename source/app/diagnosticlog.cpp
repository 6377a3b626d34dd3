#include "app/diagnosticlog.h"

#include "app/eventtracer.h"

#include <QApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QMutex>

Q_LOGGING_CATEGORY(focusLog, "app.focus.ram")

namespace {

QtMessageHandler previousHandler = nullptr;
QLoggingCategory::CategoryFilter previousFilter = nullptr;
QMutex logFilesMutex;

bool isSnapshotCategory(const char *category)
{
    return category && QByteArrayView(category).endsWith(".ram");
}

void passOn(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (previousHandler)
        previousHandler(type, context, text);
}

/// Replaces the category's file by this message. \return false when the folder cannot be made.
bool writeSnapshot(const QMessageLogContext &context, const QString &text)
{
    static const QString baseDirectory;
    const QMutexLocker locker(&logFilesMutex);
    QDir directory(baseDirectory);
    if (!directory.exists() || !directory.mkpath(QStringLiteral("mirelle")))
        return false;
    directory.cd(QStringLiteral("mirelle"));

    QFile file(directory.filePath(QString::fromLatin1(context.category)));
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        file.write(context.file ? context.file : "");
        file.write(":" + QByteArray::number(context.line) + "\n");
        file.write(context.function ? context.function : "");
        file.write("\n\n");
        file.write(text.toUtf8());
    }
    return true;
}

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (!isSnapshotCategory(context.category) || !writeSnapshot(context, text))
        passOn(type, context, text);
}

void filterCategory(QLoggingCategory *category)
{
    if (previousFilter)
        previousFilter(category);
    if (isSnapshotCategory(category->categoryName()))
        category->setEnabled(QtDebugMsg, true);
}

void logFocus(QWidget *old, QWidget *now)
{
    qCDebug(focusLog) << old << Qt::endl << now;
}

} // namespace

void startDiagnosticLog()
{
    previousHandler = qInstallMessageHandler(handleMessage);
    previousFilter = QLoggingCategory::installFilter(filterCategory);
    QObject::connect(qApp, &QApplication::focusChanged, qApp, logFocus);
    if (!qEnvironmentVariableIsEmpty("MR_TRACE_EVENTS"))
        qApp->installEventFilter(new EventTracer(qApp));
}
