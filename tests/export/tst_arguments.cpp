#include "export/arguments.h"

#include <QTest>

using namespace Export;

namespace {

ExitCode doNothing(const Arguments &, Console &)
{
    return ExitCode::Done;
}

const Command command{
    .name = "paint",
    .summary = {},
    .operands = {"WALL", "COLOUR"},
    .options = {{"tool", {}, {"brush", "roller"}, {}}, {"coats", "NUMBER", {}, {}}, {"twice", {}, {}, {}}},
    .run = doNothing,
};

} // namespace

/// The words behind a command's name.
class tst_Arguments : public QObject
{
    Q_OBJECT

private slots:
    void wrongWordsAreNamed_data();
    void wrongWordsAreNamed();
    void wordsAreTakenApart_data();
    void wordsAreTakenApart();
    void whatIsNotGivenHasItsDefault();
    void choiceIsThePlaceOfTheWord();
    void firstErrorIsTold();
    void helpMakesEverythingElseGood_data();
    void helpMakesEverythingElseGood();
};

void tst_Arguments::wrongWordsAreNamed_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *name, const QStringList &words, const QString &error) {
        QTest::newRow(name) << words << error;
    };
    row("unknown option", {"--tol", "a", "b"}, "--tol: no such option; see mirelle-export paint --help");
    row("unknown option with value", {"--tol=x", "a", "b"}, "--tol: no such option; see mirelle-export paint --help");
    row("beginning of an option", {"--tw", "a", "b"}, "--tw: no such option; see mirelle-export paint --help");
    row("letter that is none", {"-x", "a", "b"}, "-x: no such option; see mirelle-export paint --help");
    row("no letter", {"-=x", "a", "b"}, "-: no such option; see mirelle-export paint --help");
    row("value for a letter", {"-h=yes", "a", "b"}, "-h: takes no value");
    row("single dash", {"-twice", "a", "b"}, "-twice: no such option; see mirelle-export paint --help");
    row("wrong word", {"--tool", "spoon", "a", "b"}, "--tool: \"spoon\" is not one of brush, roller");
    row("word in capitals", {"--tool=Brush", "a", "b"}, "--tool: \"Brush\" is not one of brush, roller");
    row("empty word", {"--tool=", "a", "b"}, "--tool: \"\" is not one of brush, roller");
    row("choice at the end", {"a", "b", "--tool"}, "--tool: needs a value, one of brush, roller");
    row("option instead of the choice", {"--tool", "--twice", "a", "b"}, "--tool: needs a value, one of brush, roller");
    row("value at the end", {"a", "b", "--coats"}, "--coats: needs a value");
    row("value for a switch", {"--twice=yes", "a", "b"}, "--twice: takes no value");
    row("nothing", {}, "WALL is missing; see mirelle-export paint --help");
    row("second operand", {"a"}, "COLOUR is missing; see mirelle-export paint --help");
    row("third operand", {"a", "b", "c", "d"}, "\"c\" is one argument too many; see mirelle-export paint --help");
}

void tst_Arguments::wrongWordsAreNamed()
{
    QFETCH(QStringList, words);
    QTEST(Arguments(command, words).error(), "error");
}

void tst_Arguments::wordsAreTakenApart_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("coats");
    QTest::addColumn<bool>("twice");
    QTest::addColumn<QStringList>("operands");
    const QStringList ab{"a", "b"};
    QTest::newRow("operands only") << ab << QString() << false << ab;
    QTest::newRow("options in front") << QStringList{"--coats", "3", "--twice", "a", "b"} << "3" << true << ab;
    QTest::newRow("options behind") << QStringList{"a", "b", "--twice", "--coats", "3"} << "3" << true << ab;
    QTest::newRow("options between") << QStringList{"a", "--coats", "3", "b"} << "3" << false << ab;
    QTest::newRow("equals sign") << QStringList{"--coats=3", "a", "b"} << "3" << false << ab;
    QTest::newRow("equals sign in the value") << QStringList{"--coats=x=y", "a", "b"} << "x=y" << false << ab;
    QTest::newRow("empty value") << QStringList{"--coats=", "a", "b"} << "" << false << ab;
    QTest::newRow("empty value as a word") << QStringList{"--coats", "", "a", "b"} << "" << false << ab;
    QTest::newRow("value like an option") << QStringList{"--coats=--twice", "a", "b"} << "--twice" << false << ab;
    QTest::newRow("negative value") << QStringList{"--coats", "-3", "a", "b"} << "-3" << false << ab;
    QTest::newRow("given again") << QStringList{"--coats", "3", "--coats=4", "a", "b"} << "4" << false << ab;
    QTest::newRow("switch given again") << QStringList{"--twice", "--twice", "a", "b"} << QString() << true << ab;
    QTest::newRow("end of options") << QStringList{"--", "--twice", "-b"} << QString() << false
                                    << QStringList{"--twice", "-b"};
    QTest::newRow("two ends of options") << QStringList{"--", "--", "b"} << QString() << false
                                         << QStringList{"--", "b"};
    QTest::newRow("lone dash") << QStringList{"-", "b"} << QString() << false << QStringList{"-", "b"};
    QTest::newRow("empty operand") << QStringList{"", "b"} << QString() << false << QStringList{"", "b"};
    QTest::newRow("equals sign in an operand")
        << QStringList{"a=1", "b"} << QString() << false << QStringList{"a=1", "b"};
}

void tst_Arguments::wordsAreTakenApart()
{
    QFETCH(QStringList, words);
    QFETCH(QStringList, operands);
    const Arguments arguments(command, words);
    QCOMPARE(arguments.error(), QString());
    QTEST(arguments.value("coats"), "coats");
    QTEST(arguments.has("twice"), "twice");
    QCOMPARE(arguments.operand(0), operands.at(0));
    QCOMPARE(arguments.operand(1), operands.at(1));
}

void tst_Arguments::whatIsNotGivenHasItsDefault()
{
    const Arguments arguments(command, {"a", "b"});
    QVERIFY(!arguments.has("coats"));
    QCOMPARE(arguments.value("coats", "7"), QString("7"));
    QCOMPARE(arguments.choice("tool"), 0);
}

void tst_Arguments::choiceIsThePlaceOfTheWord()
{
    QCOMPARE(Arguments(command, {"--tool", "brush", "a", "b"}).choice("tool"), 0);
    QCOMPARE(Arguments(command, {"--tool=roller", "a", "b"}).choice("tool"), 1);
}

void tst_Arguments::firstErrorIsTold()
{
    QCOMPARE(Arguments(command, {"--twice=1", "--tool=spoon", "a"}).error(), QString("--twice: takes no value"));
}

void tst_Arguments::helpMakesEverythingElseGood_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::newRow("alone") << QStringList{"--help"};
    QTest::newRow("behind an error") << QStringList{"--spoon", "--help"};
    QTest::newRow("in front of one") << QStringList{"--help", "--spoon", "a", "b", "c"};
    QTest::newRow("letter") << QStringList{"-h"};
    QTest::newRow("letter behind an error") << QStringList{"--spoon", "-h"};
}

void tst_Arguments::helpMakesEverythingElseGood()
{
    QFETCH(QStringList, words);
    const Arguments arguments(command, words);
    QVERIFY(arguments.has("help"));
    QCOMPARE(arguments.error(), QString());
}

QTEST_GUILESS_MAIN(tst_Arguments)
#include "tst_arguments.moc"
