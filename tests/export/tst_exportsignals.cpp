#include "exportscenes.h"
#include "exporttool.h"
#include "terminal.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace TestSupport;

namespace {

constexpr int manyFrames = 1500;
constexpr int timeoutMs = 60'000;

/// mirelle-export in the background.
class RunningExport
{
public:
    /// With its output on the file descriptor \a output, if there is one.
    explicit RunningExport(const QStringList &arguments, int output = -1)
    {
        m_process.setProcessEnvironment(withoutDisplay());
        if (output >= 0)
            m_process.setChildProcessModifier([output] { dup2(output, STDOUT_FILENO); });
        m_process.start(exportToolPath(), arguments);
    }

    /// At work on all frames of \a scene, which go into \a folder.
    RunningExport(const QString &scene, const QString &folder, const QStringList &options = {})
        : RunningExport(QStringList{"frames", "--clones", "sequence", scene, folder} + options)
    {
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
    /// Waits for the end. \return the exit code, or crashed when there is none.
    int exitCode()
    {
        if (!m_process.waitForFinished(timeoutMs) || m_process.exitStatus() != QProcess::NormalExit)
            return ToolRun::crashed;
        return m_process.exitCode();
    }

private:
    QProcess m_process;
};

/// A pipe with a name, through which a scene comes as slowly as a test wants.
class ScenePipe
{
public:
    explicit ScenePipe(const QString &name) : m_name(name)
    {
        if (mkfifo(qPrintable(name), 0600) != 0)
            qFatal("There is no pipe");
    }
    ~ScenePipe() { closeWriter(); }
    Q_DISABLE_COPY_MOVE(ScenePipe)

    const QString &name() const { return m_name; }
    /// Waits until somebody reads. \return false if that cannot be.
    bool openWriter() { return (m_writer = open(qPrintable(m_name), O_WRONLY)) >= 0; }
    bool send(const QByteArray &bytes) const
    {
        return write(m_writer, bytes.constData(), size_t(bytes.size())) == bytes.size();
    }
    void closeWriter()
    {
        if (m_writer >= 0)
            close(m_writer);
        m_writer = -1;
    }

private:
    QString m_name;
    int m_writer = -1;
};

/// A pipe for the output of a program.
class OutputPipe
{
public:
    /// The program's end is asked for with \a flags besides.
    explicit OutputPipe(int flags = 0)
    {
        if (pipe2(m_ends, O_CLOEXEC) != 0 || fcntl(m_ends[1], F_SETFL, flags) != 0)
            qFatal("There is no pipe");
    }
    ~OutputPipe()
    {
        close(m_ends[0]);
        closeProgramSide();
    }
    Q_DISABLE_COPY_MOVE(OutputPipe)

    int programSide() const { return m_ends[1]; }
    void closeProgramSide()
    {
        if (m_ends[1] >= 0)
            close(m_ends[1]);
        m_ends[1] = -1;
    }
    /// Does it take nothing more? That is, less than a page.
    bool isFull() const
    {
        int content = 0;
        constexpr int page = 4096;
        return ioctl(m_ends[0], FIONREAD, &content) == 0 && content > fcntl(m_ends[0], F_GETPIPE_SZ) - page;
    }
    /// The next bytes, at most a few pages; empty when everybody has closed the program's end.
    QByteArray read() const
    {
        char buffer[16'384];
        const ssize_t count = ::read(m_ends[0], buffer, sizeof buffer);
        return {buffer, std::max<ssize_t>(count, 0)};
    }

private:
    int m_ends[2] = {-1, -1};
};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// mirelle-export on a terminal, on slow pipes, and when it is asked to stop.
class tst_ExportSignals : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void signalLeavesOnlyWholeFiles_data();
    void signalLeavesOnlyWholeFiles();
    void signalThatComesTwiceLeavesOnlyWholeFiles_data();
    void signalThatComesTwiceLeavesOnlyWholeFiles();
    void signalWhileReadingCancels_data();
    void signalWhileReadingCancels();
    void laterControlCEndsAtOnce();
    void laterSignalOfAnotherKindIsIgnored_data();
    void laterSignalOfAnotherKindIsIgnored();
    void ignoredSignalStaysIgnored();
    void ignoredSignalStaysIgnoredAfterAnother();
    void pipeThatNeverWaitsGetsEverything();
    void signalEndsTheWaitForAReader_data();
    void signalEndsTheWaitForAReader();
    void controlCOnATerminalCancels();
    void terminalShowsProgressAndIsCleanInTheEnd_data();
    void terminalShowsProgressAndIsCleanInTheEnd();

private:
    void verifyWholeFiles(const QString &folder, const QString &format) const;
    QString cancelledWith(qsizetype written) const;

    const Workplace m_place;
    QString m_scene;
};

void tst_ExportSignals::initTestCase()
{
    // A program that is gone too early is a failure of one test, not of all.
    std::signal(SIGPIPE, SIG_IGN);
    m_scene = m_place.put("long.mr", longScene(1));
    for (const char *format : {"png", "exr"})
        QCOMPARE(runTool({"frames", "--format", format, m_scene, m_place.path("whole")}).exitCode, 0);
    m_place.put("long.mr", longScene(manyFrames));
}

void tst_ExportSignals::signalLeavesOnlyWholeFiles_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("filesFirst");
    QTest::addColumn<int>("delayUs");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QStringList>("options");
    const auto row = [](const QString &name, int number, int filesFirst, int delayUs, const QString &format,
                        const QStringList &options = {}) {
        const QString tag =
            QString("%1 after %2 %3 files and %4 us").arg(name).arg(filesFirst).arg(format).arg(delayUs);
        QTest::newRow(qPrintable(tag)) << number << filesFirst << delayUs << format
                                       << options + QStringList{"--format", format};
    };
    for (const int files : {1, 2, 7, 30})
        row("SIGINT", SIGINT, files, 0, "png");
    for (const int delay : {1500, 4000, 9000, 17'000, 26'000})
        row("SIGINT", SIGINT, 3, delay, "png");
    row("SIGTERM", SIGTERM, 5, 3000, "png");
    row("SIGHUP", SIGHUP, 5, 3000, "png");
    for (const int delay : {0, 1500, 9000})
        row("SIGINT", SIGINT, 3, delay, "exr");
    for (const int delay : {0, 4000})
        row("SIGINT, combined", SIGINT, 3, delay, "png", {"--combine"});
}

void tst_ExportSignals::signalLeavesOnlyWholeFiles()
{
    QFETCH(int, number);
    QFETCH(int, filesFirst);
    QFETCH(int, delayUs);
    QFETCH(QString, format);
    QFETCH(QStringList, options);
    const QString folder = QString("signal ") + QTest::currentDataTag();
    RunningExport work(m_scene, m_place.path(folder), options);
    QVERIFY(work.waitForFiles(m_place, folder, filesFirst));
    std::this_thread::sleep_for(std::chrono::microseconds(delayUs));
    work.signal(number);
    QCOMPARE(work.exitCode(), 2);
    verifyWholeFiles(folder, format);
    QCOMPARE(QString::fromUtf8(work.process().readAllStandardError()), cancelledWith(m_place.filesIn(folder).size()));
}

/// All files of \a folder are whole images of the long scene, at least one and not all.
void tst_ExportSignals::verifyWholeFiles(const QString &folder, const QString &format) const
{
    const QStringList files = m_place.filesIn(folder);
    QVERIFY(files.size() >= 1 && files.size() < manyFrames);
    // All frames show the same drawing.
    const QByteArray whole = contentOf(m_place.path("whole/long.A.0001." + format));
    QVERIFY(!whole.isEmpty());
    for (const QString &file : files) {
        QVERIFY2(file.startsWith("long.A.") && file.endsWith('.' + format), qPrintable(file));
        QVERIFY2(contentOf(m_place.path(folder + '/' + file)) == whole, qPrintable(file));
    }
}

/// What is told of an export of the long scene that was cancelled when \a written files were there.
QString tst_ExportSignals::cancelledWith(qsizetype written) const
{
    return QString("mirelle-export: %1: cancelled with %2 of %3 files written\n")
        .arg(m_scene)
        .arg(written)
        .arg(manyFrames);
}

void tst_ExportSignals::signalThatComesTwiceLeavesOnlyWholeFiles_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::newRow("SIGINT") << SIGINT << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP << SIGHUP;
    QTest::newRow("SIGTERM and SIGINT") << SIGTERM << SIGINT;
    QTest::newRow("SIGINT and SIGTERM") << SIGINT << SIGTERM;
}

void tst_ExportSignals::signalThatComesTwiceLeavesOnlyWholeFiles()
{
    QFETCH(int, first);
    QFETCH(int, second);
    const QString folder = QString("twice ") + QTest::currentDataTag();
    RunningExport work(m_scene, m_place.path(folder));
    QVERIFY(work.waitForFiles(m_place, folder, 3));
    work.signal(first);
    work.signal(second);
    // Those that the kernel has not made one come one after the other.
    std::this_thread::sleep_for(std::chrono::microseconds(500));
    work.signal(second);
    QCOMPARE(work.exitCode(), 2);
    verifyWholeFiles(folder, "png");
}

void tst_ExportSignals::signalWhileReadingCancels_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("folder");
    QTest::newRow("frames") << "frames"
                            << "never made";
    QTest::newRow("info") << "info"
                          << "";
}

void tst_ExportSignals::signalWhileReadingCancels()
{
    QFETCH(QString, command);
    QFETCH(QString, folder);
    // The scene comes through a pipe, and the rest of it after the signal.
    ScenePipe pipe(m_place.path(command + ".mr"));
    QStringList arguments{command, pipe.name()};
    if (!folder.isEmpty())
        arguments += m_place.path(folder);
    RunningExport work(arguments);
    QVERIFY(work.process().waitForStarted() && pipe.openWriter());
    const QByteArray scene = sceneOfAllKinds();
    QVERIFY(pipe.send(scene.first(100)));
    work.signal(SIGINT);
    QVERIFY(pipe.send(scene.mid(100)));
    pipe.closeWriter();
    QCOMPARE(work.exitCode(), 2);
    QCOMPARE(work.process().readAllStandardError(), "mirelle-export: " + pipe.name().toUtf8() + ": cancelled\n");
    QCOMPARE(work.process().readAllStandardOutput(), QByteArray());
    QVERIFY(!QFile::exists(m_place.path("never made")));
}

void tst_ExportSignals::laterControlCEndsAtOnce()
{
    // A pipe that nothing more comes through: the first signal cannot be heeded.
    ScenePipe pipe(m_place.path("stuck.mr"));
    RunningExport work(QStringList{"info", pipe.name()});
    QVERIFY(work.process().waitForStarted() && pipe.openWriter());
    work.signal(SIGINT);
    QVERIFY(!work.process().waitForFinished(700));
    work.signal(SIGINT);
    QVERIFY(work.process().waitForFinished(timeoutMs));
    QCOMPARE(work.process().exitStatus(), QProcess::CrashExit);
    QCOMPARE(work.process().exitCode(), SIGINT);
}

void tst_ExportSignals::laterSignalOfAnotherKindIsIgnored_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void tst_ExportSignals::laterSignalOfAnotherKindIsIgnored()
{
    QFETCH(int, number);
    ScenePipe pipe(m_place.path(QString("patient %1.mr").arg(number)));
    RunningExport work(QStringList{"info", pipe.name()});
    QVERIFY(work.process().waitForStarted() && pipe.openWriter());
    work.signal(number);
    QVERIFY(!work.process().waitForFinished(700));
    work.signal(number);
    QVERIFY(!work.process().waitForFinished(300));
    QVERIFY(pipe.send(sceneOfAllKinds()));
    pipe.closeWriter();
    QCOMPARE(work.exitCode(), 2);
}

void tst_ExportSignals::ignoredSignalStaysIgnoredAfterAnother()
{
    // What is ignored still is when another signal has been heeded.
    ScenePipe pipe(m_place.path("deaf.mr"));
    std::signal(SIGHUP, SIG_IGN);
    RunningExport work(QStringList{"info", pipe.name()});
    const bool started = work.process().waitForStarted() && pipe.openWriter();
    std::signal(SIGHUP, SIG_DFL);
    QVERIFY(started);
    work.signal(SIGTERM);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    work.signal(SIGHUP);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    QVERIFY(pipe.send(sceneOfAllKinds()));
    pipe.closeWriter();
    QCOMPARE(work.exitCode(), 2);
}

void tst_ExportSignals::pipeThatNeverWaitsGetsEverything()
{
    const QString scene = m_place.put("layers.mr", sceneOfLayers(1000));
    const QByteArray wanted = runTool({"info", "--json", scene}).output;
    OutputPipe output(O_NONBLOCK);
    QVERIFY(wanted.size() > 2 * fcntl(output.programSide(), F_GETPIPE_SZ));
    RunningExport work(QStringList{"info", "--json", scene}, output.programSide());
    QVERIFY(work.process().waitForStarted());
    output.closeProgramSide();
    QTRY_VERIFY(output.isFull());
    QByteArray got;
    for (QByteArray bytes = output.read(); !bytes.isEmpty(); bytes = output.read()) {
        got += bytes;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    QCOMPARE(work.exitCode(), 0);
    QCOMPARE(work.process().readAllStandardError(), QByteArray());
    QVERIFY(got == wanted);
}

void tst_ExportSignals::signalEndsTheWaitForAReader_data()
{
    QTest::addColumn<int>("flags");
    QTest::newRow("pipe that waits") << 0;
    QTest::newRow("pipe that never waits") << O_NONBLOCK;
}

void tst_ExportSignals::signalEndsTheWaitForAReader()
{
    QFETCH(int, flags);
    const QString scene = m_place.put("layers.mr", sceneOfLayers(1000));
    const OutputPipe output(flags);
    RunningExport work(QStringList{"info", "--json", scene}, output.programSide());
    QVERIFY(work.process().waitForStarted());
    QTRY_VERIFY(output.isFull());
    work.signal(SIGTERM);
    QCOMPARE(work.exitCode(), 2);
    QCOMPARE(work.process().readAllStandardError(), QByteArray("mirelle-export: standard output: cancelled\n"));
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
    verifyWholeFiles("typed", "png");
    QCOMPARE(shownLines(run.output).join('\n'), cancelledWith(m_place.filesIn("typed").size()).trimmed());
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
