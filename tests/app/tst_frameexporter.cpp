#include "app/mainwindow.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/base/settings.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/startup.h"
#include "libui/paper/paper.h"
#include "libui/uistartup.h"
#include "support/filedialoganswer.h"
#include "support/isolatedstore.h"
#include "support/watcheddisk.h"

#include <QDir>
#include <QFileInfo>
#include <QMenuBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QUndoStack>

#include <functional>

using Model::ExportFramesSettings;
using Model::Scene;
using Model::Settings;
using TestSupport::StalledDisk;

namespace {

/// Presses the button of every progress dialog that is shown while it lives.
class ProgressAnswer : public QObject
{
public:
    ProgressAnswer() { qApp->installEventFilter(this); }
    ~ProgressAnswer() override { qApp->removeEventFilter(this); }

    bool eventFilter(QObject *object, QEvent *event) override
    {
        auto *dialog = qobject_cast<QProgressDialog *>(object);
        if (dialog && event->type() == QEvent::Show) {
            label = dialog->labelText();
            modality = dialog->windowModality();
            auto *button = dialog->findChild<QPushButton *>();
            buttonText = button->text();
            const auto press = [this, button] {
                button->click();
                if (m_afterAnswering)
                    m_afterAnswering();
            };
            QMetaObject::invokeMethod(button, press, Qt::QueuedConnection);
        }
        return false;
    }

    /// Runs \a action when a button was pressed.
    void afterAnswering(std::function<void()> action) { m_afterAnswering = std::move(action); }

    QString label;
    QString buttonText;
    Qt::WindowModality modality = Qt::NonModal;

private:
    std::function<void()> m_afterAnswering;
};

QAction *exportAction()
{
    return Model::ActionManager::instance()->mrAction(MR::Action::ExportFrames)->action;
}

} // namespace

class tst_FrameExporter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();
    void actionStandsInTheExportMenu();
    void framesGoWhereTheUserSays();
    void dialogProposesTheSceneInTheLastFolder();
    void sceneOfAFileIsProposedByItsName();
    void choiceIsRememberedAndOptionsAreKept();
    void storedOptionsAreUsed();
    void cancelledDialogWritesAndStoresNothing();
    void strokeUnderThePenIsInTheFrames();
    void nothingElseStartsWhileTheDialogIsUp();
    void keysOfActionsAreOutOfTheDialog();
    void filesThatCannotBeWrittenAreOnlyLogged();
    void exrFilesThatCannotBeWrittenAreLoggedOnce();
    void folderThatIsGoneIsNotProposed();
    void longExportShowsProgressAndCanBeCancelled();

private:
    Scene *scene() const { return m_window->currentScene()->scene(); }
    UI::Paper *paper() const { return m_window->findChild<UI::Paper *>(); }
    QStringList files() const { return QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }

    std::unique_ptr<IsolatedStore> m_store;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MainWindow> m_window;
};

void tst_FrameExporter::initTestCase()
{
    m_store = std::make_unique<IsolatedStore>();
    Model::startUp();
    UI::startUp();
    m_window = std::make_unique<MainWindow>();
    QCOMPARE(m_window->startupError(), QString());
    m_window->resize(900, 600);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void tst_FrameExporter::init()
{
    QTest::failOnWarning(QRegularExpression("."));
    m_store->reset();
    Settings::instance()->setDefaultFrameSize({320, 200});
    Settings::instance()->setDefaultInitialNumberOfFrames(3);
    m_folder = std::make_unique<QTemporaryDir>();
    if (m_window->currentScene())
        scene()->undoStack()->setClean();
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    scene()->setLayerName(0, "Line");
}

void tst_FrameExporter::cleanupTestCase()
{
    scene()->undoStack()->setClean();
    QVERIFY(m_window->close());
    m_window.reset();
}

void tst_FrameExporter::actionStandsInTheExportMenu()
{
    const auto menus = m_window->menuBar()->findChildren<QMenu *>();
    const auto found = std::find_if(menus.begin(), menus.end(), [](QMenu *menu) { return menu->title() == "Export"; });
    QVERIFY(found != menus.end());
    QVERIFY((*found)->actions().contains(exportAction()));
    QCOMPARE(exportAction()->text(), QString("Frames..."));
    QVERIFY(m_window->menuBar()->actions().constFirst()->menu()->actions().contains((*found)->menuAction()));
}

void tst_FrameExporter::framesGoWhereTheUserSays()
{
    FileDialogAnswer answer(m_folder->filePath("walk"));
    exportAction()->trigger();
    QCOMPARE(answer.count(), 1);
    QCOMPARE(answer.title(), QString("Export Frames"));
    QCOMPARE(files(), QStringList("walk.Line.0001.png"));
    QCOMPARE(QImage(m_folder->filePath("walk.Line.0001.png")).size(), QSize(320, 200));
}

void tst_FrameExporter::dialogProposesTheSceneInTheLastFolder()
{
    ExportFramesSettings stored;
    stored.exportDir = m_folder->path();
    Settings::instance()->setExportFramesSettings(stored);
    FileDialogAnswer answer({});
    m_window->exportFrames();
    QCOMPARE(answer.proposedFile(), m_folder->filePath("Untitled"));
}

void tst_FrameExporter::sceneOfAFileIsProposedByItsName()
{
    // Without an export before, in the folder of scenes.
    Settings::instance()->setDefaultSaveDir(m_folder->path());
    scene()->setFilename("/somewhere/else/shot.12.mr");
    FileDialogAnswer answer({});
    m_window->exportFrames();
    QCOMPARE(answer.proposedFile(), m_folder->filePath("shot.12"));
}

void tst_FrameExporter::choiceIsRememberedAndOptionsAreKept()
{
    ExportFramesSettings stored;
    stored.exportDir = "/elsewhere";
    stored.clones = ExportFramesSettings::Clones::IncludeClones;
    stored.includeAlpha = false;
    Settings::instance()->setExportFramesSettings(stored);
    FileDialogAnswer answer(m_folder->filePath("walk"));
    m_window->exportFrames();
    stored.exportDir = m_folder->path();
    QCOMPARE(Settings::instance()->exportFramesSettings(), stored);
}

void tst_FrameExporter::storedOptionsAreUsed()
{
    ExportFramesSettings stored;
    stored.clones = ExportFramesSettings::Clones::IncludeClones;
    stored.imageFormat = ExportFramesSettings::ImageFormat::OpenEXR;
    Settings::instance()->setExportFramesSettings(stored);
    FileDialogAnswer answer(m_folder->filePath("walk"));
    m_window->exportFrames();
    QCOMPARE(files(), QStringList({"walk.Line.0001.exr", "walk.Line.0002.hold.exr", "walk.Line.0003.hold.exr"}));
}

void tst_FrameExporter::cancelledDialogWritesAndStoresNothing()
{
    const ExportFramesSettings before = Settings::instance()->exportFramesSettings();
    FileDialogAnswer answer({});
    m_window->exportFrames();
    QCOMPARE(answer.count(), 1);
    QCOMPARE(Settings::instance()->exportFramesSettings(), before);
    QCOMPARE(files(), QStringList());
}

void tst_FrameExporter::strokeUnderThePenIsInTheFrames()
{
    Model::ActionManager::instance()->mrAction(MR::Action::Marker)->action->trigger();
    const QPoint centre = paper()->rect().center();
    QTest::mousePress(paper(), Qt::LeftButton, {}, centre - QPoint(60, 0));
    QTest::mouseMove(paper(), centre);
    QMouseEvent move(QEvent::MouseMove, centre, paper()->mapToGlobal(centre), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(paper(), &move);
    QVERIFY(scene()->hasActiveStroke());
    {
        FileDialogAnswer answer(m_folder->filePath("walk"));
        m_window->exportFrames();
    }
    QVERIFY(!scene()->hasActiveStroke());
    QTest::mouseRelease(paper(), Qt::LeftButton, {}, centre);
    QCOMPARE(scene()->undoStack()->count(), 1);
    const QImage image = QImage(m_folder->filePath("walk.Line.0001.png")).convertToFormat(QImage::Format_ARGB32);
    int inked = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            inked += image.pixelColor(x, y).alpha() > 0 ? 1 : 0;
    }
    QVERIFY2(inked > 20, qPrintable(QString::number(inked)));
}

void tst_FrameExporter::nothingElseStartsWhileTheDialogIsUp()
{
    const Model::MRScene *before = m_window->currentScene();
    FileDialogAnswer answer({});
    bool saved = true;
    answer.beforeAnswering([&] {
        saved = m_window->saveScene();
        m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
        m_window->exportFrames();
    });
    m_window->exportFrames();
    QVERIFY(!saved);
    QCOMPARE(answer.count(), 1);
    QCOMPARE(m_window->currentScene(), before);
}

void tst_FrameExporter::keysOfActionsAreOutOfTheDialog()
{
    FileDialogAnswer answer({});
    bool enabled = true;
    answer.beforeAnswering([&] { enabled = exportAction()->isEnabled(); });
    m_window->exportFrames();
    QVERIFY(!enabled);
    QVERIFY(exportAction()->isEnabled());
}

void tst_FrameExporter::filesThatCannotBeWrittenAreOnlyLogged()
{
    ExportFramesSettings stored;
    stored.clones = ExportFramesSettings::Clones::IncludeClonesSimpleSequence;
    Settings::instance()->setExportFramesSettings(stored);
    QVERIFY(QDir().mkdir(m_folder->filePath("walk.Line.0002.png")));
    const QString start = "Export Frames: " + m_folder->filePath("walk.Line.0002.png") + ": ";
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression('^' + QRegularExpression::escape(start)));
    // A message box would never be answered here.
    FileDialogAnswer answer(m_folder->filePath("walk"));
    m_window->exportFrames();
    QCOMPARE(files(), QStringList({"walk.Line.0001.png", "walk.Line.0003.png"}));
}

void tst_FrameExporter::exrFilesThatCannotBeWrittenAreLoggedOnce()
{
    ExportFramesSettings stored;
    stored.imageFormat = ExportFramesSettings::ImageFormat::OpenEXR;
    Settings::instance()->setExportFramesSettings(stored);
    QVERIFY(QDir().mkdir(m_folder->filePath("walk.Line.0001.exr")));
    const QString start = "Save EXR err: " + m_folder->filePath("walk.Line.0001.exr") + ": ";
    // A second one would fail the test.
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression('^' + QRegularExpression::escape(start)));
    FileDialogAnswer answer(m_folder->filePath("walk"));
    m_window->exportFrames();
    QCOMPARE(files(), QStringList());
}

void tst_FrameExporter::folderThatIsGoneIsNotProposed()
{
    Settings::instance()->setDefaultSaveDir(m_folder->path());
    ExportFramesSettings stored;
    stored.exportDir = m_folder->filePath("gone");
    Settings::instance()->setExportFramesSettings(stored);
    FileDialogAnswer answer({});
    m_window->exportFrames();
    QCOMPARE(answer.proposedFile(), m_folder->filePath("Untitled"));
}

void tst_FrameExporter::longExportShowsProgressAndCanBeCancelled()
{
    // More than can be at the disk and on the way to it.
    const int frames = 4 * (QThread::idealThreadCount() + 1);
    Settings::instance()->setDefaultInitialNumberOfFrames(frames);
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    scene()->setLayerName(0, "Line");
    ExportFramesSettings stored;
    stored.clones = ExportFramesSettings::Clones::IncludeClonesSimpleSequence;
    Settings::instance()->setExportFramesSettings(stored);

    ProgressAnswer progress;
    FileDialogAnswer answer(m_folder->filePath("walk"));
    const StalledDisk disk;
    // The disk takes nothing before somebody has lost patience.
    progress.afterAnswering([] { StalledDisk::release(); });
    m_window->exportFrames();
    QCOMPARE(progress.label, QString("Exporting Frames"));
    QCOMPARE(progress.buttonText, QString("Cancel"));
    QCOMPARE(progress.modality, Qt::WindowModal);
    const QStringList written = files();
    QVERIFY2(written.size() < frames, "the export ended before it was cancelled");
    // What was at the disk became whole.
    QVERIFY(!written.isEmpty());
    for (int i = 0; i < written.size(); ++i) {
        QCOMPARE(written.at(i), QString("walk.Line.%1.png").arg(i + 1, 4, 10, QChar('0')));
        QCOMPARE(QImage(m_folder->filePath(written.at(i))).size(), QSize(320, 200));
    }
    QVERIFY(m_window->findChildren<QProgressDialog *>().isEmpty());
}

QTEST_MAIN(tst_FrameExporter)
#include "tst_frameexporter.moc"
