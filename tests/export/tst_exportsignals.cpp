#include "exportscenes.h"
#include "exporttool.h"
#include "terminal.h"

#include <QDir>
#include <QTest>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace TestSupport;

namespace {

constexpr int manyFrames = 1500;
constexpr int timeoutMs = 60'000;

/// mirelle-export at work on many frames, in the background.
class RunningExport
{
public:
    RunningExport(const QString &scene, const QString &folder, const QString &format = "png")
    {
        m_process.setProcessEnvironment(withoutDisplay());
        m_process.start(exportToolPath(), {"frames", "--clones", "sequence", "--format", format, scene, folder});
    }

    /// Waits until \a count files stand in the folder \a name of \a place. \return false when it ended before.
    bool waitForFiles(const Workplace &place, const QString &name, int count)
    {
        while (place.filesIn(name).size() < count) {
            if (m_process.waitForFinished(1))
                return false;
        }
        return true;
    }

    void signal(int number) const { kill(pid_t(m_process.processId()), number); }
    QProcess &process() { return m_process; }

private:
    QProcess m_process;
};

} // namespace

/// mirelle-export on a terminal, and when it is asked to stop.
class tst_ExportSignals : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void signalLeavesOnlyWholeFiles_data();
    void signalLeavesOnlyWholeFiles();
    void signalWhileReadingCancels();
    void secondSignalEndsAtOnce();
    void ignoredSignalStaysIgnored();
    void controlCOnATerminalCancels();
    void terminalShowsProgressAndIsCleanInTheEnd_data();
    void terminalShowsProgressAndIsCleanInTheEnd();

private:
    const Workplace m_place;
    QString m_scene;
};

void tst_ExportSignals::initTestCase()
{
    m_scene = m_place.put("long.mr", longScene(manyFrames));
}

void tst_ExportSignals::signalLeavesOnlyWholeFiles_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("filesFirst");
    QTest::addColumn<int>("delayUs");
    const auto row = [](const char *name, int number, int filesFirst, int delayUs) {
        QTest::newRow(qPrintable(QString("%1 after %2 files and %3 us").arg(name).arg(filesFirst).arg(delayUs)))
            << number << filesFirst << delayUs;
    };
    for (const int files : {1, 2, 7, 30})
        row("SIGINT", SIGINT, files, 0);
    for (const int delay : {1500, 4000, 9000, 17'000, 26'000})
        row("SIGINT", SIGINT, 3, delay);
    row("SIGTERM", SIGTERM, 5, 3000);
    row("SIGHUP", SIGHUP, 5, 3000);
}

void tst_ExportSignals::signalLeavesOnlyWholeFiles()
{
    QFETCH(int, number);
    QFETCH(int, filesFirst);
    QFETCH(int, delayUs);
    const QString folder = QString("signal ") + QTest::currentDataTag();
    RunningExport work(m_scene, m_place.path(folder));
    QVERIFY(work.waitForFiles(m_place, folder, filesFirst));
    std::this_thread::sleep_for(std::chrono::microseconds(delayUs));
    work.signal(number);
    QVERIFY(work.process().waitForFinished(timeoutMs));
    QCOMPARE(work.process().exitStatus(), QProcess::NormalExit);
    QCOMPARE(work.process().exitCode(), 2);

    const QStringList files = m_place.filesIn(folder);
    QVERIFY(files.size() >= 1 && files.size() < manyFrames);
    for (const QString &file : files) {
        QVERIFY2(file.startsWith("long.A.") && file.endsWith(".png"), qPrintable(file));
        QVERIFY2(isWholePng(m_place.path(folder + '/' + file)), qPrintable(file));
    }
    const QString message = QString("mirelle-export: %1: cancelled with %2 of %3 files written\n")
                                .arg(m_scene)
                                .arg(files.size())
                                .arg(manyFrames);
    QCOMPARE(QString::fromUtf8(work.process().readAllStandardError()), message);
}

void tst_ExportSignals::signalWhileReadingCancels()
{
    // The scene comes through a pipe, and the rest of it after the signal.
    const QString pipe = m_place.path("pipe.mr");
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    RunningExport work(pipe, m_place.path("never made"));
    QVERIFY(work.process().waitForStarted());
    const int writer = open(qPrintable(pipe), O_WRONLY); // waits until the program reads
    QVERIFY(writer >= 0);
    const QByteArray scene = sceneOfAllKinds();
    QCOMPARE(write(writer, scene.constData(), 100), 100);
    work.signal(SIGINT);
    QCOMPARE(write(writer, scene.constData() + 100, size_t(scene.size() - 100)), scene.size() - 100);
    close(writer);
    QVERIFY(work.process().waitForFinished(timeoutMs));
    QCOMPARE(work.process().exitStatus(), QProcess::NormalExit);
    QCOMPARE(work.process().exitCode(), 2);
    QCOMPARE(work.process().readAllStandardError(), "mirelle-export: " + pipe.toUtf8() + ": cancelled\n");
    QVERIFY(!QDir(m_place.path("never made")).exists());
}

void tst_ExportSignals::secondSignalEndsAtOnce()
{
    // A pipe that nothing more comes through: the first signal cannot be heeded.
    const QString pipe = m_place.path("stuck.mr");
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    RunningExport work(pipe, m_place.path("stuck"));
    QVERIFY(work.process().waitForStarted());
    const int writer = open(qPrintable(pipe), O_WRONLY);
    QVERIFY(writer >= 0);
    work.signal(SIGINT);
    QVERIFY(!work.process().waitForFinished(300));
    work.signal(SIGINT);
    QVERIFY(work.process().waitForFinished(timeoutMs));
    QCOMPARE(work.process().exitStatus(), QProcess::CrashExit);
    close(writer);
}

void tst_ExportSignals::ignoredSignalStaysIgnored()
{
    const QString scene = m_place.put("short.mr", longScene(30));
    const ToolRun run = runShell("trap '' HUP; \"$0\" frames --clones sequence \"$1\" \"$2\" & "
                                 "until [ -n \"$(ls \"$2\" 2>/dev/null)\" ]; do sleep 0.01; done; "
                                 "kill -HUP $!; wait $!",
                                 {scene, m_place.path("ignored")});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(m_place.filesIn("ignored").size(), 30);
}

void tst_ExportSignals::controlCOnATerminalCancels()
{
    Terminal terminal(80);
    bool typed = false;
    const ToolRun run = terminal.run({"frames", "--clones=sequence", m_scene, m_place.path("typed")},
                                     [&terminal, &typed](const QByteArray &output) {
                                         if (!typed && output.count("Exporting frame") == 3) {
                                             terminal.type("\x03");
                                             typed = true;
                                         }
                                     });
    QVERIFY(typed);
    QCOMPARE(run.exitCode, 2);
    for (const QString &file : m_place.filesIn("typed"))
        QVERIFY2(isWholePng(m_place.path("typed/" + file)), qPrintable(file));
    const QStringList lines = shownLines(run.output);
    QVERIFY2(lines.last().contains(": cancelled with "), run.output);
}

void tst_ExportSignals::terminalShowsProgressAndIsCleanInTheEnd_data()
{
    QTest::addColumn<int>("columns");
    QTest::newRow("usual") << 80;
    QTest::newRow("narrow") << 12;
    QTest::newRow("hardly any") << 2;
}

void tst_ExportSignals::terminalShowsProgressAndIsCleanInTheEnd()
{
    QFETCH(int, columns);
    const QString scene = m_place.put("short.mr", longScene(30));
    Terminal terminal(columns);
    const ToolRun run =
        terminal.run({"frames", "--clones=sequence", scene, m_place.path("seen")}, [](const QByteArray &) {});
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.output.contains(QByteArray("Exporting frame  0 of 30").left(columns - 1)));
    QVERIFY(widestLine(run.output) < columns);
    QCOMPARE(shownLines(run.output), QStringList());
}

QTEST_MAIN(tst_ExportSignals)
#include "tst_exportsignals.moc"
