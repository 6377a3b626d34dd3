// A program that is killed while it saves:  tst_savekilled [--kills N] [--seed S] [QTest options]
//
// Whatever the moment, the file on disk is one complete version.

#include "savernotes.h"

#include "support/randomnumbers.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <thread>

using namespace TestSupport;

namespace {

int kills = 200;
quint64 seed = 1;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Starts the program that saves to \a path without an end, noting where it stands in \a notes, and kills it at a
/// \a moment from 0 to 1 of the time that saving takes it twice over. \return false if it could not be started, or
/// ended by itself.
bool saveAndKill(const QString &path, const QString &notes, double moment)
{
    QProcess saver;
    saver.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    saver.start(MIRELLE_SCENESAVER, {path, notes, "endless"});
    if (!saver.waitForReadyRead(30000))
        return false;
    const double durationUs = saver.readAllStandardOutput().toDouble();
    std::this_thread::sleep_for(std::chrono::microseconds(std::llround(2 * durationUs * moment)));
    if (saver.state() != QProcess::Running)
        return false;
    saver.kill();
    return saver.waitForFinished(30000) && saver.exitStatus() == QProcess::CrashExit;
}

/// Where the killed programs stood.
struct Moments
{
    int between = 0;    ///< two saves, or before the first
    int opening = 0;    ///< the file, and nothing was written yet
    int writing = 0;    ///< the document
    int completing = 0; ///< all was written, and had to reach the disk and get its name

    void add(const QString &notesPath)
    {
        QFile file(notesPath);
        SaverNotes notes;
        if (!file.open(QIODevice::ReadOnly) ||
            file.read(reinterpret_cast<char *>(&notes), sizeof notes) != sizeof notes)
            qFatal("%s: no notes", qPrintable(notesPath));
        if (notes.begun == notes.ended)
            ++between;
        else if (notes.looks == 0)
            ++opening;
        else
            ++(notes.looks == looksOfVersion((notes.begun - 1) % 2) ? completing : writing);
    }
};

} // namespace

class tst_SaveKilled : public QObject
{
    Q_OBJECT

private slots:
    void fileIsAlwaysOneCompleteVersion();
};

void tst_SaveKilled::fileIsAlwaysOneCompleteVersion()
{
    const QTemporaryDir folder;
    const QString first = folder.filePath("first");
    const QString second = folder.filePath("second");
    QCOMPARE(QProcess::execute(MIRELLE_SCENESAVER, {first, second}), 0);
    const std::array versions{contentOf(first), contentOf(second)};
    QVERIFY(versions[0].size() > 100'000 && versions[1].size() > 100'000);
    QVERIFY(versions[0] != versions[1]);

    const QString scenes = folder.filePath("scenes");
    QVERIFY(QDir().mkdir(scenes));
    const QString path = scenes + "/scene.mr";
    QVERIFY(QFile::copy(first, path));

    const QRegularExpression unfinishedName("^scene\\.mr\\.[A-Za-z]{6}$");
    const QString notes = folder.filePath("notes");
    Moments moments;
    int leftOver = 0;
    std::array<int, 2> found{};
    RandomNumbers random(seed);
    for (int kill = 1; kill <= kills; ++kill) {
        QVERIFY(saveAndKill(path, notes, random.between(0, 1'000'000) / 1e6));
        moments.add(notes);
        const QByteArray content = contentOf(path);
        QVERIFY2(content == versions[0] || content == versions[1],
                 qPrintable(QString("kill %1 of seed %2 left %3 bytes").arg(kill).arg(seed).arg(content.size())));
        ++found[content == versions[1]];
        const QStringList names = QDir(scenes).entryList(QDir::Files | QDir::Hidden);
        for (const QString &name : names) {
            if (name == "scene.mr")
                continue;
            QVERIFY2(unfinishedName.match(name).hasMatch(), qPrintable(name));
            ++leftOver;
            QVERIFY(QFile::remove(scenes + '/' + name));
        }
    }
    std::printf("killed saves: %d between two, %d opening, %d writing, %d completing; %d left a file; "
                "the scene was %d times one version and %d times the other\n",
                moments.between, moments.opening, moments.writing, moments.completing, leftOver, found[0], found[1]);
    // Not a matter of luck: it saves nearly all of the time. How long the disk takes is another matter.
    QVERIFY(moments.writing + moments.completing >= kills / 2);
    QVERIFY(moments.writing >= kills / 50);
    QVERIFY(found[0] >= kills / 20 && found[1] >= kills / 20);
}

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    for (const auto &[name, set] :
         {std::pair<QString, void (*)(const QString &)>("--kills", [](const QString &value) { kills = value.toInt(); }),
          std::pair<QString, void (*)(const QString &)>("--seed",
                                                        [](const QString &value) { seed = value.toULongLong(); })}) {
        const qsizetype at = arguments.indexOf(name);
        if (at < 0 || at + 1 >= arguments.size())
            continue;
        set(arguments.at(at + 1));
        arguments.remove(at, 2);
    }
    tst_SaveKilled test;
    return QTest::qExec(&test, arguments);
}

#include "tst_savekilled.moc"
