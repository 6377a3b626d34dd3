#include "app/diagnosticlog.h"

#include "app/eventtracer.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

// Off by itself: that its messages come through is the filter's work.
Q_LOGGING_CATEGORY(snapshotCategory, "test.snapshot.ram", QtWarningMsg)
Q_LOGGING_CATEGORY(plainCategory, "test.plain")

namespace {

QStringList passedOn;

void keepMessage(QtMsgType, const QMessageLogContext &, const QString &text)
{
    passedOn << text;
}

QByteArray contentOf(const QString &filename)
{
    QFile file(filename);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

} // namespace

class tst_DiagnosticLog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { passedOn.clear(); }
    void noTracerWithoutTheVariable();
    void snapshotHoldsOnlyTheLatestMessage();
    void otherCategoriesGoToThePreviousHandler();
    void focusChangesAreLogged();
    void withoutAFolderTheMessageIsPassedOn();

private:
    QTemporaryDir m_folder;
};

void tst_DiagnosticLog::initTestCase()
{
    qunsetenv("MR_TRACE_EVENTS");
    QVERIFY(QDir::setCurrent(m_folder.path()));
    qInstallMessageHandler(keepMessage);
    startDiagnosticLog();
}

void tst_DiagnosticLog::noTracerWithoutTheVariable()
{
    QVERIFY(!qApp->findChild<EventTracer *>());
}

void tst_DiagnosticLog::snapshotHoldsOnlyTheLatestMessage()
{
    qCDebug(snapshotCategory) << "first";
    qCDebug(snapshotCategory) << "second";
    const QByteArray content = contentOf("mirelle/test.snapshot.ram");
    QVERIFY(content.contains("tst_diagnosticlog.cpp:"));
    QVERIFY(content.contains("snapshotHoldsOnlyTheLatestMessage"));
    QVERIFY(content.endsWith("\n\n\"second\"") || content.endsWith("\n\nsecond"));
    QVERIFY(!content.contains("first"));
    QVERIFY(passedOn.isEmpty());
}

void tst_DiagnosticLog::otherCategoriesGoToThePreviousHandler()
{
    qCWarning(plainCategory) << 17;
    QCOMPARE(passedOn, QStringList{"17"});
    QVERIFY(!QFile::exists("mirelle/test.plain"));
}

void tst_DiagnosticLog::focusChangesAreLogged()
{
    QWidget widget;
    widget.setObjectName("focused");
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    widget.activateWindow();
    widget.setFocus();
    QTRY_VERIFY(contentOf("mirelle/app.focus.ram").contains("focused"));
}

void tst_DiagnosticLog::withoutAFolderTheMessageIsPassedOn()
{
    QTemporaryDir other;
    QVERIFY(QDir::setCurrent(other.path()));
    // A plain file stands where the folder would have to be made.
    QFile blocker("mirelle");
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    qCDebug(snapshotCategory) << 21;
    QCOMPARE(passedOn, QStringList{"21"});
    QVERIFY(QDir::setCurrent(m_folder.path()));
}

QTEST_MAIN(tst_DiagnosticLog)
#include "tst_diagnosticlog.moc"
