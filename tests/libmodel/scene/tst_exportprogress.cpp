#include "libmodel/base/dialogprogress.h"
#include "scenebuilder.h"
#include "support/noprogress.h"
#include "support/watcheddisk.h"
#include "support/watchedprogress.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProgressDialog>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <utility>

using namespace Model;
using namespace TestSupport;

namespace {

/// Does something in the moment in which a progress dialog is shown.
class OnShown : public QObject
{
public:
    explicit OnShown(std::function<void(QProgressDialog *)> action) : m_action(std::move(action))
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject *object, QEvent *event) override
    {
        auto *dialog = qobject_cast<QProgressDialog *>(object);
        if (dialog && event->type() == QEvent::Show)
            m_action(dialog);
        return false;
    }

private:
    std::function<void(QProgressDialog *)> m_action;
};

/// A real dialog that lets a stalled disk go on once its cancel is seen.
class ReleasingProgress : public DialogProgress
{
public:
    explicit ReleasingProgress(QWidget *window) : DialogProgress(window, "Working", "Stop", 0) {}

    [[nodiscard]] bool wasCancelled() const override
    {
        const bool isCancelled = DialogProgress::wasCancelled();
        if (isCancelled && m_msToSee < 0) {
            m_msToSee = m_sinceClick.elapsed();
            StalledDisk::release();
        }
        return isCancelled;
    }
    void click(QProgressDialog *dialog)
    {
        m_sinceClick.start();
        dialog->findChild<QPushButton *>()->click();
    }
    /// From the click on the button until it was seen, in milliseconds; -1 if it never was.
    [[nodiscard]] qint64 msToSee() const { return m_msToSee; }

private:
    QElapsedTimer m_sinceClick;
    mutable qint64 m_msToSee = -1;
};

/// Cancelled as soon as a number of frames was advanced to.
class CancelledAt : public Progress
{
public:
    explicit CancelledAt(int frames) : m_frames(frames) {}
    void reset() override {}
    void setSteps(int, int) override {}
    void advance() override { ++m_advanced; }
    void finish() override { m_finished = true; }
    [[nodiscard]] bool wasCancelled() const override { return m_advanced >= m_frames; }
    [[nodiscard]] int advanced() const { return m_advanced; }
    [[nodiscard]] bool isFinished() const { return m_finished; }

private:
    int m_frames;
    int m_advanced = 0;
    bool m_finished = false;
};

/// A user who cancels as soon as \a count files stand in \a folder.
class CancelledWhenWritten : public NoProgress
{
public:
    CancelledWhenWritten(const QString &folder, int count) : m_folder(folder), m_count(count) {}
    bool wasCancelled() const override { return QDir(m_folder).entryList(QDir::Files).size() >= m_count; }

private:
    QString m_folder;
    int m_count;
};

struct Export
{
    /// With layers of these names and numbers of originals.
    explicit Export(const QList<std::pair<QString, int>> &layers)
    {
        makeSmall(scene);
        for (const auto &[name, frames] : layers)
            scene.setLayerName(addStrokeLayer(scene, frames), name);
        settings.fileName = "walk";
        settings.exportDir = folder.path();
    }
    /// With so many layers of one frame.
    explicit Export(int layers) : Export(numbered(layers)) {}

    static QList<std::pair<QString, int>> numbered(int layers)
    {
        QList<std::pair<QString, int>> list;
        for (int i = 0; i < layers; ++i)
            list.append({QString::number(i), 1});
        return list;
    }
    [[nodiscard]] QStringList files() const { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden); }

    Scene scene;
    QTemporaryDir folder;
    ExportFramesSettings settings;
};

} // namespace

class tst_ExportProgress : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cancelIsSeenWhileTheDiskStalls_data();
    void cancelIsSeenWhileTheDiskStalls();
    void windowLivesWhileTheDiskStalls();
    void exportCountsAsDoneWhenNothingIsLeftToCancel();
    void cancelLeavesTheFramesBeforeIt_data();
    void cancelLeavesTheFramesBeforeIt();
    void cancelWithinAFrameIsHeeded();
    void cancelLeavesOnlyWholeFiles();

private:
    QWidget m_window;
};

void tst_ExportProgress::init()
{
    QTest::failOnWarning(QRegularExpression("."));
    m_window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&m_window));
}

void tst_ExportProgress::cancelIsSeenWhileTheDiskStalls_data()
{
    QTest::addColumn<int>("layers"); // all in one frame
    QTest::addColumn<bool>("combined");
    QTest::addColumn<FileResult>("outcome");
    QTest::newRow("more pictures than may wait") << 60 << false << FileResult::Cancelled;
    // What is being written becomes whole, and then nothing is missing.
    QTest::newRow("one picture, at the end of the export") << 1 << false << FileResult::Success;
    QTest::newRow("one picture of many layers") << 50 << true << FileResult::Success;
}

void tst_ExportProgress::cancelIsSeenWhileTheDiskStalls()
{
    QFETCH(int, layers);
    QFETCH(bool, combined);
    Export e(layers);
    e.settings.combineLayers = combined;
    ReleasingProgress progress(&m_window);
    // Long enough after the dialog's coming for the export to be waiting for the disk.
    const OnShown shown([&](QProgressDialog *dialog) {
        QTimer::singleShot(200, dialog, [&progress, dialog] { progress.click(dialog); });
    });
    const StalledDisk disk;
    const FrameExportResult result = e.scene.exportFrames(e.settings, progress);
    QTEST(result.outcome, "outcome");
    QVERIFY(progress.msToSee() >= 0);
    // It is seen within 100; the rest is for a machine that has other things to do.
    QVERIFY2(progress.msToSee() <= 500, qPrintable(QString::number(progress.msToSee())));
    QCOMPARE(e.files().size(), result.written);
    QVERIFY(result.written <= 2 * (QThread::idealThreadCount() + 1));
}

void tst_ExportProgress::windowLivesWhileTheDiskStalls()
{
    Export e(60);
    DialogProgress progress(&m_window, "Working", "Stop", 0);
    const StalledDisk disk;
    int ticks = 0;
    QTimer ticking;
    connect(&ticking, &QTimer::timeout, this, [&] {
        if (++ticks == 10)
            StalledDisk::release();
    });
    ticking.start(10);
    // Without a life beside the waiting this would never end.
    const FrameExportResult result = e.scene.exportFrames(e.settings, progress);
    QVERIFY(ticks >= 10);
    QCOMPARE(result.outcome, FileResult::Success);
    QCOMPARE(result.written, 60);
}

void tst_ExportProgress::exportCountsAsDoneWhenNothingIsLeftToCancel()
{
    // The user presses the button when the last file stands there, and before anybody has said so.
    Export e(3);
    CancelledWhenWritten progress(e.settings.exportDir, 3);
    QCOMPARE(e.scene.exportFrames(e.settings, progress).outcome, FileResult::Success);
    QCOMPARE(e.files().size(), 3);
}

void tst_ExportProgress::cancelLeavesTheFramesBeforeIt_data()
{
    QTest::addColumn<int>("frames"); // advanced to when the user cancels
    QTest::addColumn<bool>("combined");
    for (int frames = 0; frames <= 12; ++frames) {
        QTest::addRow("frame %d", frames) << frames << false;
        QTest::addRow("frame %d, combined", frames) << frames << true;
    }
}

void tst_ExportProgress::cancelLeavesTheFramesBeforeIt()
{
    QFETCH(int, frames);
    QFETCH(bool, combined);
    Export e({{"A", 12}});
    e.settings.combineLayers = combined;
    CancelledAt progress(frames);
    const FrameExportResult result = e.scene.exportFrames(e.settings, progress);
    QCOMPARE(result.outcome, FileResult::Cancelled);
    QCOMPARE(progress.advanced(), frames);
    QVERIFY(!progress.isFinished());
    const QStringList files = e.files();
    QCOMPARE(files.size(), result.written);
    QVERIFY(result.written <= frames);
    // Frames are on the disk in their order, and each of them whole.
    for (int i = 0; i < files.size(); ++i) {
        QCOMPARE(files.at(i), QString("walk.A.%1.png").arg(i + 1, 4, 10, QChar('0')));
        QCOMPARE(QImage(e.folder.filePath(files.at(i))).size(), sceneFrame);
    }
    QCOMPARE(result.failures, QStringList());
}

void tst_ExportProgress::cancelWithinAFrameIsHeeded()
{
    Export e(30);
    WatchedProgress progress(4);
    const FrameExportResult result = e.scene.exportFrames(e.settings, progress);
    QCOMPARE(result.outcome, FileResult::Cancelled);
    QVERIFY(e.files().size() < 4);
    QCOMPARE(e.files().size(), result.written);
}

void tst_ExportProgress::cancelLeavesOnlyWholeFiles()
{
    Export e({{"A", 10}});
    e.scene.setFrameSize({700, 600}, MR::FitMode::FitModeIgnore);
    for (int frameId = 1; frameId <= 10; ++frameId)
        e.scene.addStroke(0, frameId, block(QRect(0, 0, 600, 500), 99));
    CancelledAt progress(7);
    const FrameExportResult result = e.scene.exportFrames(e.settings, progress);
    QCOMPARE(result.outcome, FileResult::Cancelled);
    QCOMPARE(e.files().size(), result.written);
    for (const QString &name : e.files())
        QVERIFY(!QImage(e.folder.filePath(name)).isNull());
}

QTEST_MAIN(tst_ExportProgress)
#include "tst_exportprogress.moc"
