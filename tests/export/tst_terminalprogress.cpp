#include "export/terminalprogress.h"

#include "export/console.h"
#include "export/interrupt.h"
#include "terminal.h"

#include <QTest>

#include <csignal>

using namespace Export;
using namespace TestSupport;

/// Progress as a line on a terminal.
class tst_TerminalProgress : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void firstStepIsShownAtOnce();
    void stepsInOneMomentAreShownOnce();
    void laterStepIsShown();
    void resetTakesTheLineAway();
    void finishTakesTheLineAway();
    void fixedStepsAreShownWhateverIsSet();
    void valueNeverGoesPastTheEnd();
    void signalIsACancelThatLasts();

private:
    /// Longer than what is between two pictures of the line.
    static constexpr int pauseMs = 150;

    const Terminal m_terminal{80};
};

void tst_TerminalProgress::init()
{
    static_cast<void>(m_terminal.read()); // what the test before took away in the end
}

void tst_TerminalProgress::firstStepIsShownAtOnce()
{
    Console console(-1, m_terminal.programSide());
    TerminalProgress progress(console, "Reading");
    progress.setSteps(96, 0);
    QCOMPARE(shownLines(m_terminal.read()), QStringList{"Reading  0 of 96"});
}

void tst_TerminalProgress::stepsInOneMomentAreShownOnce()
{
    Console console(-1, m_terminal.programSide());
    TerminalProgress progress(console, "Reading");
    progress.setSteps(100'000, 0);
    for (int i = 0; i < 1000; ++i)
        progress.advance();
    QCOMPARE(m_terminal.read().count('\r'), 1);
}

void tst_TerminalProgress::laterStepIsShown()
{
    Console console(-1, m_terminal.programSide());
    TerminalProgress progress(console, "Reading");
    progress.setSteps(96, 7);
    progress.advance();
    QTest::qSleep(pauseMs);
    progress.advance();
    QCOMPARE(shownLines(m_terminal.read()), QStringList{"Reading  9 of 96"});
}

void tst_TerminalProgress::resetTakesTheLineAway()
{
    Console console(-1, m_terminal.programSide());
    TerminalProgress progress(console, "Reading");
    progress.setSteps(96, 3);
    progress.reset();
    QCOMPARE(shownLines(m_terminal.read()), QStringList());
    progress.setSteps(5, 0);
    QCOMPARE(shownLines(m_terminal.read()), QStringList{"Reading  0 of 5"});
}

void tst_TerminalProgress::finishTakesTheLineAway()
{
    Console console(-1, m_terminal.programSide());
    TerminalProgress progress(console, "Reading");
    progress.setSteps(96, 3);
    progress.finish();
    QCOMPARE(shownLines(m_terminal.read()), QStringList());
}

void tst_TerminalProgress::fixedStepsAreShownWhateverIsSet()
{
    Console console(-1, m_terminal.programSide());
    TerminalProgress progress(console, "Exporting frame", 24);
    progress.setSteps(96, 0);
    QTest::qSleep(pauseMs);
    progress.advance();
    QCOMPARE(shownLines(m_terminal.read()), QStringList{"Exporting frame  1 of 24"});
}

void tst_TerminalProgress::valueNeverGoesPastTheEnd()
{
    Console console(-1, m_terminal.programSide());
    TerminalProgress progress(console, "Reading");
    progress.setSteps(2, 2);
    QTest::qSleep(pauseMs);
    progress.advance();
    QCOMPARE(shownLines(m_terminal.read()), QStringList{"Reading  2 of 2"});
}

void tst_TerminalProgress::signalIsACancelThatLasts()
{
    Console console(-1, m_terminal.programSide());
    TerminalProgress progress(console, "Reading");
    watchForInterrupt();
    QVERIFY(!progress.wasCancelled());
    std::raise(SIGTERM);
    QVERIFY(progress.wasCancelled());
    progress.reset();
    QVERIFY(progress.wasCancelled());
}

QTEST_GUILESS_MAIN(tst_TerminalProgress)
#include "tst_terminalprogress.moc"
