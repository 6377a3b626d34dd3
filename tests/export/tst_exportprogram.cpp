#include "export/program.h"

#include "export/console.h"
#include "exportscenes.h"
#include "exporttool.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <QTest>

#include <functional>
#include <new>
#include <stdexcept>

#include <algorithm>

using namespace TestSupport;

Q_DECLARE_METATYPE(std::function<void()>)

/// mirelle-export as a shell sees it: help, messages, exit codes, streams, surroundings.
class tst_ExportProgram : public QObject
{
    Q_OBJECT

private slots:
    void callWithoutArgumentsShowsTheUsage();
    void versionIsShown_data();
    void versionIsShown();
    void helpIsShown_data();
    void helpIsShown();
    void wrongCallIsAnError_data();
    void wrongCallIsAnError();
    void fileThatCannotBeReadIsAnError_data();
    void fileThatCannotBeReadIsAnError();
    void errorOfTheFileHasLineAndColumn_data();
    void errorOfTheFileHasLineAndColumn();
    void damageIsAWarning();
    void manyDamagesAreCounted_data();
    void manyDamagesAreCounted();
    void exceptionIsAnError_data();
    void exceptionIsAnError();
    void outputThatCannotBeWrittenIsAnError_data();
    void outputThatCannotBeWrittenIsAnError();
    void closedErrorStreamDoesNoHarm();
    void framesNeedNoStreams();
    void sceneMayComeThroughAPipe();
    void namesAreUtf8InEveryLocale_data();
    void namesAreUtf8InEveryLocale();
    void platformThatIsNotThereDoesNoHarm_data();
    void platformThatIsNotThereDoesNoHarm();
    void librariesAreSilentUnlessAsked();
    void nothingOfTheUsersIsWritten();
    void preferencesOfTheUserHaveNoInfluence();

private:
    const Workplace m_place;
};

void tst_ExportProgram::callWithoutArgumentsShowsTheUsage()
{
    const ToolRun run = runTool({});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.errors, QByteArray("Usage:\n"
                                    "  mirelle-export frames [OPTION...] SCENE.mr OUTDIR\n"
                                    "  mirelle-export info [OPTION...] SCENE.mr\n"
                                    "See mirelle-export --help.\n"));
}

void tst_ExportProgram::versionIsShown_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("alone") << QStringList{"--version"};
    QTest::newRow("other words behind") << QStringList{"--version", "extra"};
    QTest::newRow("behind a command") << QStringList{"frames", "--version"};
}

void tst_ExportProgram::versionIsShown()
{
    QFETCH(QStringList, arguments);
    const ToolRun run = runTool(arguments);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.output, QByteArray("mirelle-export 0.1.0\n"));
    QCOMPARE(run.errors, QByteArray());
}

void tst_ExportProgram::helpIsShown_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("part");
    QTest::newRow("of the program") << QStringList{"--help"} << QByteArray("\nCommands:\n  frames\n");
    QTest::newRow("of frames") << QStringList{"frames", "--help"} << QByteArray("\n  --format png|exr\n");
    QTest::newRow("of info") << QStringList{"info", "--help"} << QByteArray("\n  --json\n");
    QTest::newRow("among other words") << QStringList{"info", "a", "b", "--help"} << QByteArray("\n  --json\n");
    QTest::newRow("one letter") << QStringList{"-h"} << QByteArray("\nCommands:\n  frames\n");
    QTest::newRow("one letter behind a command") << QStringList{"frames", "-h"} << QByteArray("\n  --format png|exr\n");
    QTest::newRow("other words behind") << QStringList{"--help", "extra"} << QByteArray("\nCommands:\n  frames\n");
    QTest::newRow("default of a choice") << QStringList{"frames", "--help"} << QByteArray("; default: exclude\n");
}

void tst_ExportProgram::helpIsShown()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, part);
    const ToolRun run = runTool(arguments);
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.output.contains(part), run.output);
    for (const QByteArray &line : run.output.split('\n'))
        QVERIFY2(line.size() < 80, line);
    QCOMPARE(run.errors, QByteArray());
}

void tst_ExportProgram::wrongCallIsAnError_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");
    const auto row = [](const char *name, const QStringList &arguments, const QByteArray &message) {
        QTest::newRow(name) << arguments << "mirelle-export: " + message + '\n';
    };
    row("unknown command", {"film"}, "\"film\" is not one of frames, info; see mirelle-export --help");
    row("empty command", {""}, "\"\" is not one of frames, info; see mirelle-export --help");
    row("help as a command", {"help"}, "\"help\" is not one of frames, info; see mirelle-export --help");
    row("unknown option of the program", {"--film"}, "--film: no such option; see mirelle-export --help");
    row("unknown option", {"frames", "--gif"}, "--gif: no such option; see mirelle-export frames --help");
    row("option of another command", {"info", "--black", "a"},
        "--black: no such option; see mirelle-export info --help");
    row("format", {"frames", "--format", "gif", "a", "b"}, "--format: \"gif\" is not one of png, exr");
    row("layers", {"frames", "--layers=none", "a", "b"}, "--layers: \"none\" is not one of all, visible, active");
    row("frames", {"frames", "--frames", "1-3", "a", "b"}, "--frames: \"1-3\" is not one of all, range");
    row("clones", {"frames", "--clones", "all", "a", "b"}, "--clones: \"all\" is not one of exclude, hold, sequence");
    row("missing value", {"frames", "a", "b", "--name"}, "--name: needs a value");
    row("empty name", {"frames", "--name", "", "a", "b"}, "--name: a name cannot be empty");
    row("name with a folder", {"frames", "--name=../x", "a", "b"}, "--name: \"../x\" is not a file name");
    row("no scene", {"info"}, "SCENE.mr is missing; see mirelle-export info --help");
    row("no folder", {"frames", "a"}, "OUTDIR is missing; see mirelle-export frames --help");
    row("extra argument", {"info", "a", "b"}, "\"b\" is one argument too many; see mirelle-export info --help");
    row("option of the window system", {"-platform", "xcb"}, "-platform: no such option; see mirelle-export --help");
}

void tst_ExportProgram::wrongCallIsAnError()
{
    QFETCH(QStringList, arguments);
    const ToolRun run = runTool(arguments);
    QCOMPARE(run.exitCode, 1);
    QTEST(run.errors, "message");
    QCOMPARE(run.output, QByteArray());
}

void tst_ExportProgram::fileThatCannotBeReadIsAnError_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("message");
    m_place.put("empty.mr", {});
    QDir().mkpath(m_place.path("folder.mr"));
    QTest::newRow("none") << m_place.path("none.mr") << "No such file or directory";
    QTest::newRow("folder") << m_place.path("folder.mr") << "is a folder";
    QTest::newRow("empty") << m_place.path("empty.mr") << "is empty";
    QTest::newRow("below a file") << m_place.path("empty.mr/a.mr") << "Not a directory";
    QTest::newRow("no name") << QString("") << "a file name cannot be empty";
    // Opening memory works for anyone's own process, but nothing stands at its beginning.
    QTest::newRow("failing device") << "/proc/self/mem"
                                    << "Input/output error";
}

void tst_ExportProgram::fileThatCannotBeReadIsAnError()
{
    QFETCH(QString, file);
    QFETCH(QString, message);
    for (const QStringList &arguments : {QStringList{"info", file}, QStringList{"frames", file, m_place.path("no")}}) {
        const ToolRun run = runTool(arguments);
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(QString::fromUtf8(run.errors), QString("mirelle-export: %1: %2\n").arg(file, message));
        QVERIFY(!QFile::exists(m_place.path("no")));
    }
}

void tst_ExportProgram::errorOfTheFileHasLineAndColumn_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("cut") << QByteArray("<mr version=\"0.4\">\n<scene>\n") << QByteArray("Premature end of document");
    QTest::newRow("another version") << QByteArray("<?xml version=\"1.0\"?>\n\n<mr version=\"0.3\">\n\n</mr>")
                                     << QByteArray("The file is not an MR version 0.4 file");
    QTest::newRow("no XML") << QByteArray("Hello\nthere") << QByteArray("The file is not an MR version 0.4 file");
}

void tst_ExportProgram::errorOfTheFileHasLineAndColumn()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, message);
    const QString file = m_place.put("broken.mr", content);
    const ToolRun run = runTool({"info", file});
    QCOMPARE(run.exitCode, 1);
    const QRegularExpression line("^mirelle-export: " + QRegularExpression::escape(file) + ": " +
                                  QRegularExpression::escape(QString::fromUtf8(message)) +
                                  ", line [1-3], column [0-9]+\n$");
    QVERIFY2(line.match(QString::fromUtf8(run.errors)).hasMatch(), run.errors);
}

void tst_ExportProgram::damageIsAWarning()
{
    const QString file = m_place.put("damaged.mr", damagedScene());
    const ToolRun run = runTool({"info", file});
    QCOMPARE(run.exitCode, 0);
    const QByteArray start = "mirelle-export: " + file.toUtf8() + ": warning: Line ";
    QVERIFY2(run.errors.startsWith(start), run.errors);
    QCOMPARE(run.errors.count('\n'), 1);
}

void tst_ExportProgram::manyDamagesAreCounted_data()
{
    QTest::addColumn<int>("damages");
    QTest::addColumn<int>("lines");
    QTest::addColumn<QByteArray>("lastLine");
    QTest::newRow("as many as are listed") << 20 << 20 << QByteArray();
    QTest::newRow("one more") << 21 << 21 << QByteArray("and 1 more");
    QTest::newRow("many more") << 150 << 21 << QByteArray("and 130 more");
    QTest::newRow("more than are kept") << 1500 << 21 << QByteArray("and 1480 more");
}

void tst_ExportProgram::manyDamagesAreCounted()
{
    QFETCH(int, damages);
    QFETCH(QByteArray, lastLine);
    const QString file = m_place.put("damaged.mr", sceneOfDamages(damages));
    const ToolRun run = runTool({"info", "--json", file});
    QCOMPARE(run.exitCode, 0);
    QTEST(int(run.errors.count('\n')), "lines");
    const QByteArray start = "mirelle-export: " + file.toUtf8() + ": warning: ";
    for (const QByteArray &line : run.errors.trimmed().split('\n').first(20))
        QVERIFY2(line.startsWith(start + "Line "), line);
    if (!lastLine.isEmpty())
        QVERIFY2(run.errors.endsWith(start + lastLine + '\n'), run.errors);
    QCOMPARE(QJsonDocument::fromJson(run.output)["damages"].toArray().size(), std::min(damages, 1001));
}

void tst_ExportProgram::exceptionIsAnError_data()
{
    QTest::addColumn<std::function<void()>>("fail");
    QTest::addColumn<QByteArray>("message");
    const auto row = [](const char *name, const std::function<void()> &fail, const QByteArray &message) {
        QTest::newRow(name) << fail << "mirelle-export: " + message + '\n';
    };
    row(
        "no memory", [] { throw std::bad_alloc(); }, "there is not enough memory");
    row(
        "another", [] { throw std::runtime_error("no thread can be had"); }, "no thread can be had");
}

void tst_ExportProgram::exceptionIsAnError()
{
    QFETCH(std::function<void()>, fail);
    QTemporaryFile errors;
    QVERIFY(errors.open());
    Export::Console console(-1, errors.handle());
    const Export::ExitCode code = Export::runCaught(console, [&fail] {
        fail();
        return Export::ExitCode::Done;
    });
    QCOMPARE(int(code), 1);
    errors.seek(0);
    QTEST(errors.readAll(), "message");
}

void tst_ExportProgram::outputThatCannotBeWrittenIsAnError_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("info, full device") << "\"$0\" info \"$1\" >/dev/full" << QByteArray("No space left on device");
    QTest::newRow("info, closed") << "\"$0\" info --json \"$1\" >&-" << QByteArray("Bad file descriptor");
    QTest::newRow("info, pipe without a reader")
        << "(sleep 0.2; exec \"$0\" info \"$1\") | exec true; exit ${PIPESTATUS[0]}" << QByteArray("Broken pipe");
    QTest::newRow("help, full device") << "\"$0\" frames --help >/dev/full" << QByteArray("No space left on device");
    QTest::newRow("version, closed") << "\"$0\" --version >&-" << QByteArray("Bad file descriptor");
}

void tst_ExportProgram::outputThatCannotBeWrittenIsAnError()
{
    QFETCH(QString, script);
    QFETCH(QByteArray, reason);
    const ToolRun run = runShell(script, {m_place.put("a.mr", sceneOfAllKinds())});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errors, "mirelle-export: standard output: " + reason + '\n');
}

void tst_ExportProgram::closedErrorStreamDoesNoHarm()
{
    const QString file = m_place.put("a.mr", sceneOfAllKinds());
    const ToolRun good = runShell("\"$0\" info \"$1\" 2>&-", {file});
    QCOMPARE(good.exitCode, 0);
    QVERIFY(good.output.contains("Ink"));
    QCOMPARE(runShell("\"$0\" info \"$1\" 2>&-", {m_place.path("none.mr")}).exitCode, 1);
}

void tst_ExportProgram::framesNeedNoStreams()
{
    const QString file = m_place.put("walk.mr", sceneOfAllKinds());
    const ToolRun run = runShell("\"$0\" frames \"$1\" \"$2\" <&- >&- 2>&-", {file, m_place.path("closed")});
    QCOMPARE(run.exitCode, 0);
    const QStringList images = m_place.filesIn("closed");
    QCOMPARE(images.size(), 4);
    for (const QString &image : images)
        QVERIFY(isWholePng(m_place.path("closed/" + image)));
}

void tst_ExportProgram::sceneMayComeThroughAPipe()
{
    const ToolRun run = runShell("cat \"$1\" | \"$0\" info /dev/stdin", {m_place.put("a.mr", sceneOfAllKinds())});
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.output.startsWith("/dev/stdin\n"));
    QVERIFY(run.output.contains(" Ink\n"));
}

void tst_ExportProgram::namesAreUtf8InEveryLocale_data()
{
    QTest::addColumn<QString>("locale");
    QTest::newRow("none") << "";
    QTest::newRow("C") << "C";
    QTest::newRow("POSIX") << "POSIX";
    QTest::newRow("C.UTF-8") << "C.UTF-8";
    QTest::newRow("one that is not there") << "xx_YY.ISO-8859-1";
}

void tst_ExportProgram::namesAreUtf8InEveryLocale()
{
    QFETCH(QString, locale);
    const QString name = QString::fromUtf8("Bäume im Wind 🌳.mr");
    const QString file = m_place.put(name, sceneWithLayerName("Grün 🌿"));
    QProcessEnvironment environment;
    if (!locale.isEmpty())
        environment.insert("LC_ALL", locale);
    const ToolRun info = runTool({"info", file}, environment);
    QCOMPARE(info.exitCode, 0);
    QCOMPARE(info.errors, QByteArray());
    QVERIFY(info.output.startsWith(file.toUtf8() + '\n'));
    QVERIFY(info.output.contains(" Grün 🌿\n"));

    const QString folder = QString::fromUtf8("Bilder ÄÖÜ ") + QTest::currentDataTag();
    QCOMPARE(runTool({"frames", file, m_place.path(folder)}, environment).exitCode, 0);
    QCOMPARE(m_place.filesIn(folder), QStringList{QString::fromUtf8("Bäume im Wind 🌳.Grün 🌿.0001.png")});
}

void tst_ExportProgram::platformThatIsNotThereDoesNoHarm_data()
{
    QTest::addColumn<QString>("platform");
    QTest::addColumn<QString>("display");
    QTest::newRow("X without a display") << "xcb"
                                         << "";
    QTest::newRow("X with a display that does not answer") << "xcb"
                                                           << ":97531";
    QTest::newRow("Wayland without a display") << "wayland"
                                               << "";
    QTest::newRow("Wayland, then X, without a display") << "wayland;xcb"
                                                        << "";
    QTest::newRow("nothing, with a display that does not answer") << ""
                                                                  << ":97531";
}

void tst_ExportProgram::platformThatIsNotThereDoesNoHarm()
{
    QFETCH(QString, platform);
    QFETCH(QString, display);
    QProcessEnvironment environment = withoutDisplay();
    if (!platform.isEmpty())
        environment.insert("QT_QPA_PLATFORM", platform);
    if (!display.isEmpty())
        environment.insert("DISPLAY", display);
    const ToolRun run = runTool({"info", m_place.put("a.mr", sceneOfAllKinds())}, environment);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.errors, QByteArray());
}

void tst_ExportProgram::librariesAreSilentUnlessAsked()
{
    const QString file = m_place.put("a.mr", sceneOfAllKinds());
    // Qt complains of the folder for sockets that this leaves out, and of a locale without UTF-8.
    QProcessEnvironment environment;
    environment.insert("LC_ALL", "C");
    QCOMPARE(runTool({"info", file}, environment).errors, QByteArray());
    QVERIFY(!runTool({"info", "--verbose", file}, environment).errors.isEmpty());
}

void tst_ExportProgram::nothingOfTheUsersIsWritten()
{
    const QString file = m_place.put("a.mr", sceneOfAllKinds());
    QDir().mkpath(m_place.path("home/run"));
    QFile::setPermissions(m_place.path("home/run"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QProcessEnvironment environment;
    environment.insert("HOME", m_place.path("home"));
    environment.insert("XDG_RUNTIME_DIR", m_place.path("home/run"));
    QCOMPARE(runTool({"frames", file, m_place.path("out")}, environment).exitCode, 0);
    QCOMPARE(m_place.filesIn("home"), QStringList{"run"});
    QCOMPARE(m_place.filesIn("home/run"), QStringList());
}

void tst_ExportProgram::preferencesOfTheUserHaveNoInfluence()
{
    // A file without a frame size or a rate leaves them to the defaults, and those are the program's.
    const QString file = m_place.put("bare.mr", "<mr version=\"0.4\"><scene/></mr>");
    const ToolRun before = runTool({"info", file});
    QCOMPARE(before.exitCode, 0);
    const QByteArray store = "[Preferences]\nDefaultFrameSize=@Size(321 123)\nDefaultFrameRate=7\n";
    QDir().mkpath(m_place.path("config/Mirelle"));
    m_place.put("config/Mirelle/Mirelle.conf", store);
    QProcessEnvironment environment = withoutDisplay();
    environment.insert("XDG_CONFIG_HOME", m_place.path("config"));
    QCOMPARE(runTool({"info", file}, environment).output, before.output);
}

QTEST_MAIN(tst_ExportProgram)
#include "tst_exportprogram.moc"
