// Saving where something is in the way: the old file stays byte for byte, nothing is left lying about, and the reason
// is told. Where the system lets the test mount, it has real full and read-only disks; otherwise only a limit on the
// size of files.

#include "scenefixture.h"

#include "libmodel/files/scenefile.h"
#include "libmodel/files/scenewriter.h"
#include "libmodel/strokes/stroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/brokendisks.h"
#include "support/randomnumbers.h"
#include "support/smalldisk.h"
#include "support/watchedprogress.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Model;
using namespace TestSupport;

namespace {

bool canMount = false;

const QByteArray precious("weeks of work");

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush())
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
}

/// A null array if there is no such file.
QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A scene whose document has about \a numFrames times 500 bytes.
std::unique_ptr<Scene> sceneOf(int numFrames)
{
    auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1, numFrames), 0);
    RandomNumbers random(7);
    for (int frameId = 1; frameId <= numFrames; ++frameId)
        drawingAt(*scene, 0, frameId).addStroke(block(QRect(0, 0, 16, 8), random.between(1, 255)));
    return scene;
}

SaveOutcome save(Scene &scene, const QString &path, WatchedProgress &progress)
{
    SceneWriter writer(&scene, progress);
    return saveSceneFile(writer, path);
}

SaveOutcome save(Scene &scene, const QString &path)
{
    WatchedProgress progress;
    return save(scene, path, progress);
}

} // namespace

class tst_SceneFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void savedFileIsTheDocument();
    void anyNameIsWritten_data();
    void anyNameIsWritten();
    void nameWithoutRoomForSixLettersIsTold();
    void relativeNameIsWritten();
    void folderIsRefused();
    void pipeIsRefused();
    void deviceIsRefused();
    void emptyNameIsRefused();
    void framesTooLargeToBeReadLeaveTheOldFile();
    void symbolicLinkStaysAndItsTargetIsWritten_data();
    void symbolicLinkStaysAndItsTargetIsWritten();
    void danglingLinkGetsItsTarget();
    void permissionsAreKept_data();
    void permissionsAreKept();
    void newFileHasThePermissionsOfAnyNewFile();
    void readOnlyFileIsLeft();
    void readOnlyFolderIsTold();
    void readOnlyDiskIsTold();
    void missingFolderIsTold();
    void vanishedFileIsWrittenAnew();
    void fileVanishingMeanwhileIsWrittenAnew();
    void folderVanishingMeanwhileIsTold();
    void documentBeyondTheSizeLimitLeavesTheOldFile_data();
    void documentBeyondTheSizeLimitLeavesTheOldFile();
    void fullDiskLeavesTheOldFile_data();
    void fullDiskLeavesTheOldFile();
    void saveAfterAFailureSucceeds();
    void cancelAtEveryLookLeavesTheOldFile();
    void cancelOfANewFileLeavesNone();
    void unfinishedFileIsNamedLikeTheSceneOrNotAtAll();
    void oldFileStandsUntilTheNewOneIsWhole();

private:
    [[nodiscard]] QString path(const QString &name = "scene.mr") const { return m_folder->filePath(name); }
    [[nodiscard]] QStringList entries() const
    {
        return QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_SceneFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_SceneFile::cleanup()
{
    m_folder.reset();
}

void tst_SceneFile::savedFileIsTheDocument()
{
    const auto scene = sceneOf(40);
    writeFile(path(), precious);
    const SaveOutcome outcome = save(*scene, path());
    QCOMPARE(outcome.result, FileResult::Success);
    QVERIFY(outcome.reason.isEmpty());
    QCOMPARE(contentOf(path()), written(*scene));
    QCOMPARE(entries(), QStringList{"scene.mr"});
}

void tst_SceneFile::anyNameIsWritten_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("spaces") << " my  first scene .mr";
    QTest::newRow("umlauts") << "Größe Übung.mr";
    QTest::newRow("decomposed umlaut") << QString::fromUtf8("u\u0308ber.mr");
    QTest::newRow("emoji") << QString::fromUtf8("🎬 walk 🚶‍♀️.mr");
    QTest::newRow("shell characters") << "-a'b\"c$d`e;f|g*h?i[j]\\k%1%2&l.mr";
    QTest::newRow("line break") << "two\nlines.mr";
    QTest::newRow("six capital Xes") << "XXXXXX.mr";
    QTest::newRow("no ending") << "scene";
    QTest::newRow("hidden") << ".mr";
    QTest::newRow("248 bytes") << QString(245, 'n') + ".mr";
    QTest::newRow("248 bytes of umlauts") << QString(122, QChar(0xe4)) + "x.mr";
}

void tst_SceneFile::anyNameIsWritten()
{
    QFETCH(QString, name);
    const auto scene = sceneOf(2);
    for (int time = 0; time < 2; ++time) {
        const SaveOutcome outcome = save(*scene, path(name));
        QVERIFY2(outcome.result == FileResult::Success, qPrintable(outcome.reason));
        QCOMPARE(contentOf(path(name)), written(*scene));
        QCOMPARE(entries(), QStringList{name});
    }
}

void tst_SceneFile::nameWithoutRoomForSixLettersIsTold()
{
    // A file system takes 255 bytes; the new file has a point and six letters more.
    const QString name = QString(246, 'n') + ".mr";
    writeFile(path(name), precious);
    const SaveOutcome outcome = save(*sceneOf(2), path(name));
    QCOMPARE(outcome.result, FileResult::Error);
    QCOMPARE(outcome.stage, SaveOutcome::Stage::File);
    QCOMPARE(outcome.reason, QString("File name too long"));
    QCOMPARE(contentOf(path(name)), precious);
    QCOMPARE(entries(), QStringList{name});
}

void tst_SceneFile::relativeNameIsWritten()
{
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_folder->path()));
    const auto scene = sceneOf(2);
    const SaveOutcome outcome = save(*scene, "scene.mr");
    QVERIFY(QDir::setCurrent(before));
    QCOMPARE(outcome.result, FileResult::Success);
    QCOMPARE(contentOf(path()), written(*scene));
}

void tst_SceneFile::folderIsRefused()
{
    QVERIFY(QDir().mkdir(path()));
    writeFile(path("scene.mr/inside"), precious);
    const SaveOutcome outcome = save(*sceneOf(2), path());
    QCOMPARE(outcome.result, FileResult::Error);
    QCOMPARE(outcome.stage, SaveOutcome::Stage::File);
    QVERIFY2(outcome.reason.contains("directory"), qPrintable(outcome.reason));
    QCOMPARE(contentOf(path("scene.mr/inside")), precious);
    QCOMPARE(entries(), QStringList{"scene.mr"});
}

void tst_SceneFile::pipeIsRefused()
{
    QCOMPARE(mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
    const SaveOutcome outcome = save(*sceneOf(2), path());
    QCOMPARE(outcome.result, FileResult::Error);
    QCOMPARE(outcome.stage, SaveOutcome::Stage::File);
    QCOMPARE(outcome.reason, QString("It is no ordinary file"));
    struct stat status
    {
    };
    QCOMPARE(stat(QFile::encodeName(path()).constData(), &status), 0);
    QVERIFY(S_ISFIFO(status.st_mode));
}

void tst_SceneFile::deviceIsRefused()
{
    // By a link, so that nothing is lost should it not be.
    QVERIFY(QFile::link("/dev/null", path()));
    const SaveOutcome outcome = save(*sceneOf(2), path());
    QCOMPARE(outcome.result, FileResult::Error);
    QCOMPARE(outcome.reason, QString("It is no ordinary file"));
    QVERIFY(QFileInfo(path()).isSymLink());
}

void tst_SceneFile::emptyNameIsRefused()
{
    const SaveOutcome outcome = save(*sceneOf(2), QString());
    QCOMPARE(outcome.result, FileResult::Error);
    QVERIFY(!outcome.reason.isEmpty());
}

void tst_SceneFile::framesTooLargeToBeReadLeaveTheOldFile()
{
    writeFile(path(), precious);
    const auto scene = emptyScene();
    scene->setFrameSize({8193, 1}, MR::FitMode::FitModeIgnore);
    const SaveOutcome outcome = save(*scene, path());
    QCOMPARE(outcome.result, FileResult::Error);
    QCOMPARE(outcome.stage, SaveOutcome::Stage::File); // of which the reason is told
    QVERIFY2(outcome.reason.startsWith("The frames are larger than 8192 pixels"), qPrintable(outcome.reason));
    QCOMPARE(contentOf(path()), precious);
}

void tst_SceneFile::symbolicLinkStaysAndItsTargetIsWritten_data()
{
    QTest::addColumn<QStringList>("links"); // each points to the next, the last to real/target.mr
    QTest::newRow("absolute") << QStringList{"/real/target.mr"};
    QTest::newRow("relative") << QStringList{"real/target.mr"};
    QTest::newRow("chain") << QStringList{"second.mr", "third.mr", "real/target.mr"};
}

void tst_SceneFile::symbolicLinkStaysAndItsTargetIsWritten()
{
    QFETCH(QStringList, links);
    QVERIFY(QDir(m_folder->path()).mkdir("real"));
    writeFile(path("real/target.mr"), precious);
    QString name = "scene.mr";
    for (const QString &link : links) {
        const QString target = link.startsWith('/') ? m_folder->path() + link : link;
        QCOMPARE(symlink(QFile::encodeName(target).constData(), QFile::encodeName(path(name)).constData()), 0);
        name = link;
    }
    const QStringList before = entries();
    const auto scene = sceneOf(2);
    QCOMPARE(save(*scene, path()).result, FileResult::Success);
    QVERIFY(QFileInfo(path()).isSymLink());
    QVERIFY(!QFileInfo(path("real/target.mr")).isSymLink());
    QCOMPARE(contentOf(path("real/target.mr")), written(*scene));
    QCOMPARE(entries(), before);
    QCOMPARE(QDir(path("real")).entryList(QDir::Files), QStringList{"target.mr"});
}

void tst_SceneFile::danglingLinkGetsItsTarget()
{
    QVERIFY(QFile::link(path("later.mr"), path()));
    const auto scene = sceneOf(2);
    QCOMPARE(save(*scene, path()).result, FileResult::Success);
    QVERIFY(QFileInfo(path()).isSymLink());
    QCOMPARE(contentOf(path("later.mr")), written(*scene));
}

void tst_SceneFile::permissionsAreKept_data()
{
    QTest::addColumn<int>("mode");
    for (const int mode : {0600, 0640, 0644, 0664, 0755})
        QTest::addRow("%o", mode) << mode;
}

void tst_SceneFile::permissionsAreKept()
{
    QFETCH(int, mode);
    writeFile(path(), precious);
    QCOMPARE(chmod(QFile::encodeName(path()).constData(), mode_t(mode)), 0);
    QCOMPARE(save(*sceneOf(2), path()).result, FileResult::Success);
    struct stat status
    {
    };
    QCOMPARE(stat(QFile::encodeName(path()).constData(), &status), 0);
    QCOMPARE(int(status.st_mode & 07777), mode);
}

void tst_SceneFile::newFileHasThePermissionsOfAnyNewFile()
{
    const mode_t before = umask(027);
    const SaveOutcome outcome = save(*sceneOf(2), path());
    umask(before);
    QCOMPARE(outcome.result, FileResult::Success);
    struct stat status
    {
    };
    QCOMPARE(stat(QFile::encodeName(path()).constData(), &status), 0);
    QCOMPARE(int(status.st_mode & 07777), 0640);
}

void tst_SceneFile::readOnlyFileIsLeft()
{
    writeFile(path(), precious);
    QCOMPARE(chmod(QFile::encodeName(path()).constData(), 0444), 0);
    SaveOutcome outcome;
    {
        const OrdinaryUser user(m_folder->path());
        outcome = save(*sceneOf(2), path());
    }
    QCOMPARE(outcome.result, FileResult::Error);
    QCOMPARE(outcome.stage, SaveOutcome::Stage::File);
    QVERIFY2(outcome.reason.contains("not writable"), qPrintable(outcome.reason));
    QCOMPARE(contentOf(path()), precious);
    QCOMPARE(entries(), QStringList{"scene.mr"});
}

void tst_SceneFile::readOnlyFolderIsTold()
{
    writeFile(path(), precious);
    QCOMPARE(chmod(QFile::encodeName(path()).constData(), 0666), 0);
    const QByteArray folder = QFile::encodeName(m_folder->path());
    QCOMPARE(chmod(folder.constData(), 0555), 0);
    SaveOutcome overOld;
    SaveOutcome newName;
    {
        const OrdinaryUser user(m_folder->path());
        overOld = save(*sceneOf(2), path());
        newName = save(*sceneOf(2), path("other.mr"));
    }
    QCOMPARE(chmod(folder.constData(), 0755), 0);
    for (const SaveOutcome &outcome : {overOld, newName}) {
        QCOMPARE(outcome.result, FileResult::Error);
        QCOMPARE(outcome.stage, SaveOutcome::Stage::File);
        QCOMPARE(outcome.reason, QString("Permission denied"));
    }
    QCOMPARE(contentOf(path()), precious);
    QCOMPARE(entries(), QStringList{"scene.mr"});
}

void tst_SceneFile::readOnlyDiskIsTold()
{
    // Where nothing can be mounted, the folder of the system's own knobs does: no file can be made in there by anybody.
    std::unique_ptr<SmallDisk> disk;
    QString name = "/proc/sys/scene.mr";
    if (canMount) {
        disk = std::make_unique<SmallDisk>(m_folder->path(), "size=64k");
        writeFile(path(), precious);
        disk->makeReadOnly();
        name = path();
    }
    const SaveOutcome outcome = save(*sceneOf(2), name);
    QCOMPARE(outcome.result, FileResult::Error);
    QCOMPARE(outcome.stage, SaveOutcome::Stage::File);
    QVERIFY(!outcome.reason.isEmpty());
    if (canMount) {
        QVERIFY2(outcome.reason.contains("not writable") || outcome.reason == "Read-only file system",
                 qPrintable(outcome.reason));
        QCOMPARE(contentOf(path()), precious);
        QCOMPARE(entries(), QStringList{"scene.mr"});
    }
}

void tst_SceneFile::missingFolderIsTold()
{
    const SaveOutcome outcome = save(*sceneOf(2), path("gone/scene.mr"));
    QCOMPARE(outcome.result, FileResult::Error);
    QCOMPARE(outcome.stage, SaveOutcome::Stage::File);
    QCOMPARE(outcome.reason, QString("No such file or directory"));
    QVERIFY(entries().isEmpty());
}

void tst_SceneFile::vanishedFileIsWrittenAnew()
{
    const auto scene = sceneOf(2);
    QCOMPARE(save(*scene, path()).result, FileResult::Success);
    QVERIFY(QFile::remove(path()));
    QCOMPARE(save(*scene, path()).result, FileResult::Success);
    QCOMPARE(contentOf(path()), written(*scene));
}

void tst_SceneFile::fileVanishingMeanwhileIsWrittenAnew()
{
    writeFile(path(), precious);
    const auto scene = sceneOf(2);
    WatchedProgress progress;
    progress.atEachLook([this] { QFile::remove(path()); });
    QCOMPARE(save(*scene, path(), progress).result, FileResult::Success);
    QCOMPARE(contentOf(path()), written(*scene));
    QCOMPARE(entries(), QStringList{"scene.mr"});
}

void tst_SceneFile::folderVanishingMeanwhileIsTold()
{
    QVERIFY(QDir().mkdir(path("going")));
    WatchedProgress progress;
    progress.atEachLook([this] { QDir(path("going")).removeRecursively(); });
    const SaveOutcome outcome = save(*sceneOf(2), path("going/scene.mr"), progress);
    QCOMPARE(outcome.result, FileResult::Error);
    QCOMPARE(outcome.stage, SaveOutcome::Stage::File);
    QCOMPARE(outcome.reason, QString("No such file or directory"));
    QVERIFY(entries().isEmpty());
}

void tst_SceneFile::documentBeyondTheSizeLimitLeavesTheOldFile_data()
{
    QTest::addColumn<int>("numFrames");
    QTest::addColumn<int>("limit"); // bytes
    QTest::addColumn<int>("stage");
    // A file's buffer takes 16 kB: a smaller document fails when it is flushed, a larger one on the way.
    QTest::newRow("no byte") << 2 << 0 << int(SaveOutcome::Stage::File);
    QTest::newRow("some bytes") << 2 << 1000 << int(SaveOutcome::Stage::File);
    QTest::newRow("large, no byte") << 200 << 0 << int(SaveOutcome::Stage::Document);
    QTest::newRow("large, half of it") << 200 << 50000 << int(SaveOutcome::Stage::Document);
}

void tst_SceneFile::documentBeyondTheSizeLimitLeavesTheOldFile()
{
    QFETCH(int, numFrames);
    QFETCH(int, limit);
    QFETCH(int, stage);
    writeFile(path(), precious);
    const auto scene = sceneOf(numFrames);
    QVERIFY(written(*scene).size() > limit);
    SaveOutcome outcome;
    {
        const FullDisk full{rlim_t(limit)};
        outcome = save(*scene, path());
    }
    QCOMPARE(outcome.result, FileResult::Error);
    QCOMPARE(int(outcome.stage), stage);
    QCOMPARE(outcome.reason, QString("File too large"));
    QCOMPARE(contentOf(path()), precious);
    QCOMPARE(entries(), QStringList{"scene.mr"});
}

void tst_SceneFile::fullDiskLeavesTheOldFile_data()
{
    QTest::addColumn<bool>("isMounted");
    QTest::addColumn<int>("numFrames");
    QTest::addColumn<int>("filling"); // kB, of 256
    QTest::addColumn<int>("stage");
    if (canMount) {
        QTest::newRow("no room at all") << true << 2 << 256 << int(SaveOutcome::Stage::File);
        QTest::newRow("room for a part") << true << 500 << 128 << int(SaveOutcome::Stage::Document);
        QTest::newRow("no room for a large one") << true << 500 << 256 << int(SaveOutcome::Stage::Document);
    } else {
        QTest::newRow("limit on files") << false << 500 << 0 << int(SaveOutcome::Stage::Document);
    }
}

void tst_SceneFile::fullDiskLeavesTheOldFile()
{
    QFETCH(bool, isMounted);
    QFETCH(int, numFrames);
    QFETCH(int, filling);
    QFETCH(int, stage);
    std::unique_ptr<SmallDisk> disk;
    std::unique_ptr<FullDisk> limit;
    QStringList kept{"scene.mr"};
    if (isMounted)
        disk = std::make_unique<SmallDisk>(m_folder->path(), "size=256k");
    writeFile(path(), precious);
    if (isMounted) {
        QFile others(path("others"));
        QVERIFY(others.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        const QByteArray page(4096, 'x');
        for (int kB = 0; kB < filling && others.write(page) == page.size(); kB += 4) {
        }
        kept.prepend("others");
    } else {
        limit = std::make_unique<FullDisk>(100000);
    }
    const auto scene = sceneOf(numFrames);
    const SaveOutcome outcome = save(*scene, path());
    limit.reset();
    QCOMPARE(outcome.result, FileResult::Error);
    QCOMPARE(int(outcome.stage), stage);
    QCOMPARE(outcome.reason, isMounted ? QString("No space left on device") : QString("File too large"));
    QCOMPARE(contentOf(path()), precious);
    QCOMPARE(entries(), kept);
}

void tst_SceneFile::saveAfterAFailureSucceeds()
{
    const auto scene = sceneOf(100);
    WatchedProgress progress;
    SceneWriter writer(scene.get(), progress);
    {
        const FullDisk full(100);
        QCOMPARE(saveSceneFile(writer, path()).result, FileResult::Error);
    }
    QVERIFY(entries().isEmpty());
    QCOMPARE(save(*scene, path()).result, FileResult::Success);
    QCOMPARE(contentOf(path()), written(*scene));
}

void tst_SceneFile::cancelAtEveryLookLeavesTheOldFile()
{
    const auto scene = sceneOf(60);
    writeFile(path(), precious);
    // After the scene's attributes, after the order, after the attributes of the one layer, after each drawing.
    constexpr int looks = 1 + 1 + 1 + 60;
    for (int look = 1; look <= looks; ++look) {
        WatchedProgress progress(look);
        const SaveOutcome outcome = save(*scene, path(), progress);
        QCOMPARE(outcome.result, FileResult::Cancelled);
        QVERIFY(outcome.reason.isEmpty());
        QCOMPARE(progress.looks(), look);
        QCOMPARE(contentOf(path()), precious);
        QCOMPARE(entries(), QStringList{"scene.mr"});
    }
    WatchedProgress later(looks + 1);
    QCOMPARE(save(*scene, path(), later).result, FileResult::Success);
    QCOMPARE(later.looks(), looks);
    QCOMPARE(contentOf(path()), written(*scene));
}

void tst_SceneFile::cancelOfANewFileLeavesNone()
{
    WatchedProgress progress(3);
    QCOMPARE(save(*sceneOf(2), path(), progress).result, FileResult::Cancelled);
    QVERIFY(entries().isEmpty());
}

void tst_SceneFile::unfinishedFileIsNamedLikeTheSceneOrNotAtAll()
{
    writeFile(path(), precious);
    WatchedProgress progress;
    QStringList seen;
    progress.atEachLook([&] { seen += entries(); });
    QCOMPARE(save(*sceneOf(2), path(), progress).result, FileResult::Success);
    seen.removeAll("scene.mr");
    const QRegularExpression unfinishedName("^scene\\.mr\\.[A-Za-z]{6}$");
    for (const QString &name : std::as_const(seen))
        QVERIFY2(unfinishedName.match(name).hasMatch(), qPrintable(name));
}

void tst_SceneFile::oldFileStandsUntilTheNewOneIsWhole()
{
    writeFile(path(), precious);
    WatchedProgress progress;
    int whole = 0;
    progress.atEachLook([&] { whole += contentOf(path()) == precious; });
    QCOMPARE(save(*sceneOf(100), path(), progress).result, FileResult::Success);
    QCOMPARE(whole, progress.looks());
}

int main(int argc, char *argv[])
{
    canMount = takePrivateMounts();
    QApplication application(argc, argv);
    tst_SceneFile test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_scenefile.moc"
