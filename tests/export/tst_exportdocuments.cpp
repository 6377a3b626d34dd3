#include "exporttool.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

using namespace TestSupport;

namespace {

QString packaged(const QString &name)
{
    QFile file(QStringLiteral(MIRELLE_PACKAGING) + '/' + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("There is no %s", qPrintable(file.fileName()));
    return QString::fromUtf8(file.readAll());
}

QString helpOf(const QStringList &command)
{
    return QString::fromUtf8(runTool(command + QStringList{"--help"}).output);
}

/// What the first group of \a pattern matches in \a text, each once, sorted.
QStringList allMatches(const QString &text, const QString &pattern)
{
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    QStringList found;
    for (auto match = expression.globalMatch(text); match.hasNext();)
        found += match.next().captured(1);
    found.removeDuplicates();
    found.sort();
    return found;
}

/// The options that the help of \a command lists, with their dashes; without a command those of the program.
QStringList optionsOf(const QStringList &command)
{
    return allMatches(helpOf(command), "^  (--[a-z-]+)");
}

/// The part of the text \a of that begins behind \a from and ends in front of \a to.
QString between(const QString &of, const QString &from, const QString &to)
{
    return of.section(from, 1).section(to, 0, 0);
}

/// What bash offers for the last of \a words, the ones before it given.
QStringList offeredByBash(const QStringList &words)
{
    const QString script = "shopt -s extglob; source \"$1\"; shift; COMP_WORDS=(mirelle-export \"$@\"); "
                           "COMP_CWORD=$#; COMPREPLY=(); _mirelle_export; printf '%s\\n' \"${COMPREPLY[@]}\"";
    const ToolRun run =
        runShell(script, QStringList{QStringLiteral(MIRELLE_PACKAGING "/completions/mirelle-export.bash")} + words);
    if (!run.errors.isEmpty())
        qWarning("%s", run.errors.constData());
    QStringList offered = QString::fromUtf8(run.output).split('\n', Qt::SkipEmptyParts);
    offered.sort();
    return offered;
}

} // namespace

/// Help, manual page and completions tell of the same options.
class tst_ExportDocuments : public QObject
{
    Q_OBJECT

private slots:
    void manualPageHasTheOptions_data();
    void manualPageHasTheOptions();
    void manualPageHasTheWords();
    void bashOffersTheOptions_data();
    void bashOffersTheOptions();
    void bashOffersTheWords_data();
    void bashOffersTheWords();
    void bashOffersScenesAndFolders();
    void zshOffersTheOptions_data();
    void zshOffersTheOptions();
    void zshOffersTheWords();
    void fishOffersTheOptions_data();
    void fishOffersTheOptions();
    void fishOffersTheWords();
    void manualPageIsWellFormed();
    void completionIsWellFormed_data();
    void completionIsWellFormed();
    void readersGuideHasTheOptions();

private:
    static void addCommands();
    static QHash<QString, QString> choices();
};

/// A row for the program itself and for each of its commands.
void tst_ExportDocuments::addCommands()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("program") << "";
    const QStringList commands = allMatches(between(helpOf({}), "\nCommands:\n", "\nOptions:"), "^  ([a-z]+)$");
    QCOMPARE(commands, (QStringList{"frames", "info"}));
    for (const QString &command : commands)
        QTest::newRow(qPrintable(command)) << command;
}

/// The options of frames that take one of some words, with these words as help has them: "png|exr".
QHash<QString, QString> tst_ExportDocuments::choices()
{
    const QString help = helpOf({"frames"});
    QHash<QString, QString> found;
    for (const QString &option : optionsOf({"frames"})) {
        const QStringList words = allMatches(help, "^  " + option + " ([a-z|]+)$");
        if (!words.isEmpty())
            found.insert(option, words.first());
    }
    if (found.size() != 4)
        qFatal("The help of frames has %d choices", int(found.size()));
    return found;
}

void tst_ExportDocuments::manualPageHasTheOptions_data()
{
    addCommands();
}

void tst_ExportDocuments::manualPageHasTheOptions()
{
    QFETCH(QString, command);
    const QString page = packaged("mirelle-export.1").replace("\\-", "-");
    const QString common = between(page, "\n.SH OPTIONS\n", "\nInstead of a command:\n");
    QString part = between(page, "\nInstead of a command:\n", "\n.SH ");
    if (!command.isEmpty())
        part = between(page, "\n.SS mirelle-export " + command + '\n', "\n.S") + '\n' + common;
    QCOMPARE(allMatches(part, "^\\.(?:B|BI|BR) (--[a-z-]+)"),
             optionsOf(command.isEmpty() ? QStringList() : QStringList{command}));
}

void tst_ExportDocuments::manualPageHasTheWords()
{
    const QString page = packaged("mirelle-export.1").replace("\\-", "-");
    const auto wanted = choices();
    for (auto choice = wanted.begin(); choice != wanted.end(); ++choice) {
        const QString words = allMatches(page, "^\\.BR " + choice.key() + "\\\\~ ([a-z |]+)$").join(',');
        QCOMPARE(QString(words).remove(' '), choice.value());
    }
}

void tst_ExportDocuments::bashOffersTheOptions_data()
{
    addCommands();
}

void tst_ExportDocuments::bashOffersTheOptions()
{
    QFETCH(QString, command);
    if (command.isEmpty())
        QCOMPARE(offeredByBash({"--"}), optionsOf({}));
    else
        QCOMPARE(offeredByBash({command, "--"}), optionsOf({command}));
}

void tst_ExportDocuments::bashOffersTheWords_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("offered");
    QTest::newRow("commands") << QStringList{"i"} << "info";
    const auto wanted = choices();
    for (auto choice = wanted.begin(); choice != wanted.end(); ++choice) {
        QStringList words = choice.value().split('|');
        words.sort();
        const QString offered = words.join('|');
        QTest::newRow(qPrintable(choice.key())) << QStringList{"frames", choice.key(), ""} << offered;
        QTest::newRow(qPrintable(choice.key() + " =")) << QStringList{"frames", choice.key(), "="} << offered;
        QTest::newRow(qPrintable(choice.key() + " = begun"))
            << QStringList{"frames", choice.key(), "=", words.first().left(2)} << words.first();
    }
}

void tst_ExportDocuments::bashOffersTheWords()
{
    QFETCH(QStringList, words);
    QTEST(offeredByBash(words).join('|'), "offered");
}

void tst_ExportDocuments::bashOffersScenesAndFolders()
{
    const Workplace place;
    place.put("walk.mr", "");
    place.put("walk.txt", "");
    QDir().mkpath(place.path("walks"));
    QCOMPARE(offeredByBash({"info", place.path("wal")}), (QStringList{place.path("walk.mr"), place.path("walks")}));
}

void tst_ExportDocuments::zshOffersTheOptions_data()
{
    addCommands();
}

void tst_ExportDocuments::zshOffersTheOptions()
{
    QFETCH(QString, command);
    const QString function = command.isEmpty() ? "_mirelle_export" : "_mirelle_export_" + command;
    const QString part = between(packaged("completions/_mirelle-export"), '\n' + function + "() {\n", "\n}\n");
    QCOMPARE(allMatches(part, "^ +'(?:\\(\\* -\\))?(--[a-z-]+)"),
             optionsOf(command.isEmpty() ? QStringList() : QStringList{command}));
}

void tst_ExportDocuments::zshOffersTheWords()
{
    const QString completion = packaged("completions/_mirelle-export");
    const auto wanted = choices();
    for (auto choice = wanted.begin(); choice != wanted.end(); ++choice) {
        const QStringList words = allMatches(completion, '\'' + choice.key() + "=\\[[^]]*\\]:[a-z]+:\\(([a-z ]+)\\)'");
        QCOMPARE(words.join(',').replace(' ', '|'), choice.value());
    }
}

void tst_ExportDocuments::fishOffersTheOptions_data()
{
    addCommands();
}

void tst_ExportDocuments::fishOffersTheOptions()
{
    QFETCH(QString, command);
    const QString condition = command.isEmpty() ? QString("none") : command;
    QStringList options = allMatches(packaged("completions/mirelle-export.fish"),
                                     "^complete -c mirelle-export -n \\$" + condition + " -l ([a-z-]+) ");
    for (QString &option : options)
        option.prepend("--");
    QCOMPARE(options, optionsOf(command.isEmpty() ? QStringList() : QStringList{command}));
}

void tst_ExportDocuments::fishOffersTheWords()
{
    const QString completion = packaged("completions/mirelle-export.fish");
    const auto wanted = choices();
    for (auto choice = wanted.begin(); choice != wanted.end(); ++choice) {
        const QStringList words = allMatches(completion, "\\$frames -l " + choice.key().mid(2) + " -x -a '([a-z ]+)' ");
        QCOMPARE(words.join(',').replace(' ', '|'), choice.value());
    }
}

void tst_ExportDocuments::manualPageIsWellFormed()
{
    const ToolRun run = runShell("groff -man -ww -Tutf8 -rHY=0 \"$1\" >/dev/null",
                                 {QStringLiteral(MIRELLE_PACKAGING "/mirelle-export.1")});
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(run.exitCode, 0);
}

void tst_ExportDocuments::completionIsWellFormed_data()
{
    QTest::addColumn<QString>("check");
    QTest::addColumn<QString>("file");
    QTest::newRow("bash") << "bash -n"
                          << "mirelle-export.bash";
    QTest::newRow("zsh") << "zsh -n"
                         << "_mirelle-export";
    QTest::newRow("fish") << "fish --no-execute"
                          << "mirelle-export.fish";
}

void tst_ExportDocuments::completionIsWellFormed()
{
    QFETCH(QString, check);
    QFETCH(QString, file);
    const ToolRun run = runShell(check + " \"$1\"", {QStringLiteral(MIRELLE_PACKAGING "/completions/") + file});
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(run.exitCode, 0);
}

void tst_ExportDocuments::readersGuideHasTheOptions()
{
    const QString guide = packaged("../docs/mirelle-export.md");
    QStringList wanted = optionsOf({"frames"}) + optionsOf({"info"}) + optionsOf({});
    wanted.removeDuplicates();
    wanted.sort();
    QCOMPARE(allMatches(guide, "`(--[a-z-]+)"), wanted);
}

QTEST_GUILESS_MAIN(tst_ExportDocuments)
#include "tst_exportdocuments.moc"
