#include "export/console.h"
#include "terminal.h"

#include <QTemporaryFile>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

using namespace Export;
using namespace TestSupport;

namespace {

/// A pipe whose reading end can be asked for what arrived.
class Pipe
{
public:
    Pipe()
    {
        if (pipe(m_ends) != 0)
            qFatal("There is no pipe");
    }
    ~Pipe()
    {
        closeReader();
        close(m_ends[1]);
    }
    Q_DISABLE_COPY_MOVE(Pipe)

    int writer() const { return m_ends[1]; }
    void closeReader()
    {
        if (m_ends[0] >= 0)
            close(m_ends[0]);
        m_ends[0] = -1;
    }
    /// What was written, which must be something and less than a pipe holds.
    QByteArray content() const
    {
        char buffer[4096];
        const ssize_t count = read(m_ends[0], buffer, sizeof buffer);
        return {buffer, std::max<ssize_t>(count, 0)};
    }

private:
    int m_ends[2] = {-1, -1};
};

} // namespace

/// What the program writes, and where.
class tst_Console : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void textIsWrittenInUtf8();
    void messageNamesTheProgram();
    void warningNamesItself();
    void controlCharactersOfAMessageAreShownAsReplaced_data();
    void controlCharactersOfAMessageAreShownAsReplaced();
    void unreadPipeIsAnError();
    void fullDeviceIsAnError();
    void pipeHasNoStatusLine();
    void statusIsReplacedInPlace();
    void shorterStatusLeavesNothingOfTheLonger();
    void statusFitsTheTerminal_data();
    void statusFitsTheTerminal();
    void messageTakesThePlaceOfTheStatus();
    void statusIsGoneInTheEnd();
};

void tst_Console::initTestCase()
{
    std::signal(SIGPIPE, SIG_IGN);
}

void tst_Console::textIsWrittenInUtf8()
{
    const Pipe output;
    const Pipe errors;
    Console console(output.writer(), errors.writer());
    QCOMPARE(int(console.write(QString::fromUtf8("Bäume 🌳\n"))), 0);
    QCOMPARE(output.content(), QByteArray("Bäume 🌳\n"));
}

void tst_Console::messageNamesTheProgram()
{
    const Pipe errors;
    Console console(-1, errors.writer());
    console.message("walk.mr", "is empty");
    QCOMPARE(errors.content(), QByteArray("mirelle-export: walk.mr: is empty\n"));
}

void tst_Console::warningNamesItself()
{
    const Pipe errors;
    Console console(-1, errors.writer());
    console.warning("walk.mr", "Line 3: half a drawing");
    QCOMPARE(errors.content(), QByteArray("mirelle-export: walk.mr: warning: Line 3: half a drawing\n"));
}

void tst_Console::controlCharactersOfAMessageAreShownAsReplaced_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    const QString replaced = QChar(QChar::ReplacementCharacter);
    QTest::newRow("escape") << "a\x1b[2Jb"
                            << "a" + replaced + "[2Jb";
    QTest::newRow("line break") << "a\nb"
                                << "a" + replaced + "b";
    QTest::newRow("delete") << QString("a\x7f") << "a" + replaced;
    QTest::newRow("control sequence in one") << QString(QChar(0x9b)) + "2J" << replaced + "2J";
    QTest::newRow("line separator") << QString(QChar(0x2028)) << replaced;
    QTest::newRow("right-to-left override") << QString("a") + QChar(0x202e) + "b"
                                            << "a" + replaced + "b";
    QTest::newRow("isolate") << QString("a") + QChar(0x2066) + "b"
                             << "a" + replaced + "b";
    QTest::newRow("right-to-left mark") << QString(QChar(0x200f)) << replaced;
    QTest::newRow("soft hyphen") << QString(QChar(0xad)) << replaced;
    QTest::newRow("tag beyond 16 bits") << "a" + QString::fromUcs4(U"\U000E0041") + "b"
                                        << "a" + replaced + "b";
    QTest::newRow("non-joiner") << QString("a") + QChar(0x200c) + "b" << QString("a") + QChar(0x200c) + "b";
    QTest::newRow("joined emoji") << QString::fromUtf8("👩‍🎨") << QString::fromUtf8("👩‍🎨");
}

void tst_Console::controlCharactersOfAMessageAreShownAsReplaced()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    QCOMPARE(printable(text), shown);
    const Pipe errors;
    Console console(-1, errors.writer());
    console.message(text);
    QCOMPARE(QString::fromUtf8(errors.content()), "mirelle-export: " + shown + "\n");
}

void tst_Console::unreadPipeIsAnError()
{
    Pipe output;
    const Pipe errors;
    output.closeReader();
    Console console(output.writer(), errors.writer());
    QCOMPARE(int(console.write("text")), 1);
    QCOMPARE(errors.content(), QByteArray("mirelle-export: standard output: Broken pipe\n"));
}

void tst_Console::fullDeviceIsAnError()
{
    const Pipe errors;
    const int full = open("/dev/full", O_WRONLY);
    QVERIFY(full >= 0);
    Console console(full, errors.writer());
    QCOMPARE(int(console.write("text")), 1);
    close(full);
    QCOMPARE(errors.content(), QByteArray("mirelle-export: standard output: No space left on device\n"));
}

void tst_Console::pipeHasNoStatusLine()
{
    const Pipe errors;
    Console console(-1, errors.writer());
    QVERIFY(!console.hasStatusLine());
    console.showStatus("Reading");
    console.clearStatus();
    console.message("end");
    QCOMPARE(errors.content(), QByteArray("mirelle-export: end\n"));
}

void tst_Console::statusIsReplacedInPlace()
{
    const Terminal terminal(80);
    Console console(-1, terminal.programSide());
    QVERIFY(console.hasStatusLine());
    console.showStatus("1 of 3");
    console.showStatus("2 of 3");
    QCOMPARE(shownLines(terminal.read()), QStringList{"2 of 3"});
}

void tst_Console::shorterStatusLeavesNothingOfTheLonger()
{
    const Terminal terminal(80);
    Console console(-1, terminal.programSide());
    console.showStatus("Reading a lot");
    console.showStatus("Done");
    QCOMPARE(shownLines(terminal.read()), QStringList{"Done"});
}

void tst_Console::statusFitsTheTerminal_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("shown");
    QTest::newRow("wide") << 40 << "0123456789";
    QTest::newRow("just wide enough") << 11 << "0123456789";
    QTest::newRow("as wide as the text") << 10 << "012345678";
    QTest::newRow("narrow") << 4 << "012";
    QTest::newRow("one column") << 1 << "";
}

void tst_Console::statusFitsTheTerminal()
{
    QFETCH(QString, shown);
    QFETCH(int, columns);
    const Terminal terminal(columns);
    Console console(-1, terminal.programSide());
    console.showStatus("0123456789");
    const QByteArray written = terminal.read();
    QCOMPARE(shownLines(written).join('\n'), shown);
    QVERIFY(widestLine(written) < columns);
}

void tst_Console::messageTakesThePlaceOfTheStatus()
{
    const Terminal terminal(80);
    Console console(-1, terminal.programSide());
    console.showStatus("a status that is longer than the message below");
    console.message("oh");
    console.showStatus("on");
    QCOMPARE(shownLines(terminal.read()), (QStringList{"mirelle-export: oh", "on"}));
}

void tst_Console::statusIsGoneInTheEnd()
{
    const Terminal terminal(80);
    {
        Console console(-1, terminal.programSide());
        console.showStatus("Reading");
    }
    QCOMPARE(shownLines(terminal.read()), QStringList());
}

QTEST_GUILESS_MAIN(tst_Console)
#include "tst_console.moc"
