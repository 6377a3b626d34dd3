#include "mainwindowfixture.h"

#include "app/recentfilesmenu.h"
#include "libmodel/base/settings.h"
#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/brokendisks.h"
#include "support/filedialoganswer.h"
#include "support/messageboxanswer.h"

#include <QFile>
#include <QFileDialog>
#include <QTest>
#include <QTextDocumentFragment>
#include <QUndoStack>
#include <QWindow>

#include <optional>

using Model::Scene;

namespace {

QByteArray contentOf(const QString &filename)
{
    QFile file(filename);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &filename, const QByteArray &content)
{
    QFile file(filename);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

} // namespace

/// Scenes and files as the user of the window opens, saves and closes them.
class tst_MainWindowFiles : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void savedFileOpensAgain();
    void savingAnUnmodifiedSceneWritesNothing();
    void unreadableFileIsToldAndLeavesTheOldScene();
    void unparsableFileIsToldAndLeavesTheOldScene();
    void damagedFileIsOpenedAndToldOf();
    void onlyTheFirstOfManyDamagesAreTold();
    void failedSaveLeavesTheOldFileAndTheSceneModified();
    void saveIntoAMissingFolderIsTold();
    void secondOpenWhileTheFirstRunsReturnsAtOnce();
    void cancellingTheSaveQuestionKeepsTheSceneAndTheWindow();
    void discardingAtTheSaveQuestionGoesOn();
    void recentFilesAreNewestFirstAndLimited();
    void nothingElseStartsWhileTheCloseQuestionIsUp();
    void savingAtTheSaveQuestionGoesOn();
    void failedSaveAtTheSaveQuestionKeepsTheScene();
    void saveAsAsksForANameAndWritesThere();
    void cancelledSaveAsChangesNothing();
    void failedSaveAsKeepsTheNewName();
    void failedSaveAsOfAnUnmodifiedSceneLeavesItToBeSaved();
    void sceneActionsAndTheirKeys_data();
    void sceneActionsAndTheirKeys();
    void openDialogBeginsInTheFolderOfTheLastScene();
    void failedOpenLeavesTheRendererAsItWas();
    void markupInARecentNameIsShownAsItIs();
    void openSceneOpensTheChosenFile();
    void fileChosenFromTheRecentOnesOpens();
};

void tst_MainWindowFiles::savedFileOpensAgain()
{
    const QString filename = m_folder->filePath("walk & run äöü.mr");
    drawLine();
    const QImage drawn = drawing().image().copy();
    scene()->setFilename(filename);
    QVERIFY(m_window->saveScene());
    QVERIFY(scene()->undoStack()->isClean());

    QVERIFY(m_window->openFile(filename));
    QCOMPARE(drawing().image(), drawn);
    QCOMPARE(scene()->filename(), filename);
    QVERIFY(scene()->undoStack()->isClean());
    QCOMPARE(Model::Settings::instance()->recentScenes(), QStringList{filename});
}

void tst_MainWindowFiles::savingAnUnmodifiedSceneWritesNothing()
{
    const QString filename = m_folder->filePath("kept.mr");
    scene()->setFilename(filename);
    QVERIFY(m_window->saveScene());
    QVERIFY(!QFile::exists(filename));
}

void tst_MainWindowFiles::unreadableFileIsToldAndLeavesTheOldScene()
{
    const Model::MRScene *before = m_window->currentScene();
    const QString filename = m_folder->filePath("nowhere.mr");
    Model::Settings::instance()->setRecentScenes({filename, "/other.mr"});
    MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(!m_window->openFile(filename));
    QCOMPARE(answer.count(), 1);
    QVERIFY(answer.text().startsWith("Cannot read file " + filename + ":\n"));
    QCOMPARE(answer.title(), QStringLiteral("nowhere.mr"));
    QCOMPARE(m_window->currentScene(), before);
    QCOMPARE(Model::Settings::instance()->recentScenes(), QStringList{"/other.mr"});
}

void tst_MainWindowFiles::unparsableFileIsToldAndLeavesTheOldScene()
{
    const Model::MRScene *before = m_window->currentScene();
    const QString filename = m_folder->filePath("old.mr");
    writeFile(filename, "<?xml version=\"1.0\"?>\n<!DOCTYPE mr>\n<mr version=\"0.3\"/>\n");
    MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(!m_window->openFile(filename));
    QCOMPARE(answer.count(), 1);
    QVERIFY(answer.text().startsWith("Parse error in file " + filename +
                                     ":\n\nThe file is not an MR version 0.4 file\nLine 3, column "));
    QCOMPARE(m_window->currentScene(), before);
}

void tst_MainWindowFiles::damagedFileIsOpenedAndToldOf()
{
    const QString filename = m_folder->filePath("damaged.mr");
    writeFile(filename, "<mr version=\"0.4\"><scene><layers><layer type=\"stroke\" visible=\"yes\">\n"
                        "<drawing type=\"original\"><strokes>AAAA</strokes></drawing>\n"
                        "<drawing type=\"original\"/></layer></layers></scene></mr>\n");
    MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(m_window->openFile(filename));
    QCOMPARE(answer.count(), 1);
    QCOMPARE(answer.title(), QGuiApplication::applicationDisplayName());
    QCOMPARE(answer.text(), "The file " + filename +
                                " is damaged. What could be read was opened:\n\n"
                                "Line 2: a drawing cannot be read to its end");
    QCOMPARE(scene()->filename(), filename);
    QCOMPARE(scene()->maximumFrameNumber(), 2);
    QVERIFY(scene()->undoStack()->isClean());
}

void tst_MainWindowFiles::onlyTheFirstOfManyDamagesAreTold()
{
    const QString filename = m_folder->filePath("damaged.mr");
    const QByteArray damaged("<drawing type=\"original\"><strokes>AAAA</strokes></drawing>\n");
    writeFile(filename, "<mr version=\"0.4\"><scene><layers><layer type=\"stroke\" visible=\"yes\">\n" +
                            damaged.repeated(13) + "</layer></layers></scene></mr>\n");
    MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(m_window->openFile(filename));
    QCOMPARE(answer.text().count("\nLine "), 10);
    QVERIFY2(answer.text().endsWith("\nLine 11: a drawing cannot be read to its end\n... and 3 more"),
             qPrintable(answer.text()));
}

void tst_MainWindowFiles::failedSaveLeavesTheOldFileAndTheSceneModified()
{
    const QString filename = m_folder->filePath("precious.mr");
    const QByteArray precious("weeks of work");
    writeFile(filename, precious);
    drawLine();
    scene()->setFilename(filename);
    MessageBoxAnswer answer(QMessageBox::Ok);
    {
        const TestSupport::FullDisk fullDisk;
        QVERIFY(!m_window->saveScene());
    }
    QCOMPARE(answer.count(), 1);
    QVERIFY(answer.text().startsWith("Cannot write file " + filename));
    QCOMPARE(contentOf(filename), precious);
    QVERIFY(!scene()->undoStack()->isClean());
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{"precious.mr"});
}

void tst_MainWindowFiles::saveIntoAMissingFolderIsTold()
{
    const QString filename = m_folder->filePath("gone/walk.mr");
    drawLine();
    scene()->setFilename(filename);
    MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(!m_window->saveScene());
    QCOMPARE(answer.count(), 1);
    QVERIFY(answer.text().startsWith("Cannot write file " + filename + ":\n"));
    QVERIFY(!scene()->undoStack()->isClean());
}

void tst_MainWindowFiles::secondOpenWhileTheFirstRunsReturnsAtOnce()
{
    drawLine();
    bool secondResult = true;
    MessageBoxAnswer answer(QMessageBox::Cancel);
    answer.beforeAnswering([this, &secondResult] { secondResult = m_window->openFile("/any.mr"); });
    QVERIFY(!m_window->openFile(m_folder->filePath("any.mr")));
    QVERIFY(!secondResult);
    // Only the save question of the first call came up.
    QCOMPARE(answer.count(), 1);
}

void tst_MainWindowFiles::cancellingTheSaveQuestionKeepsTheSceneAndTheWindow()
{
    drawLine();
    const Model::MRScene *before = m_window->currentScene();
    MessageBoxAnswer answer(QMessageBox::Cancel);
    QVERIFY(!m_window->close());
    QVERIFY(m_window->isVisible());
    QCOMPARE(answer.text(), QStringLiteral("\"Untitled\" has been modified.\n\nSave the scene?"));
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    QCOMPARE(m_window->currentScene(), before);
    QCOMPARE(answer.count(), 2);
}

void tst_MainWindowFiles::discardingAtTheSaveQuestionGoesOn()
{
    drawLine();
    MessageBoxAnswer answer(QMessageBox::Discard);
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    QCOMPARE(answer.count(), 1);
    QVERIFY(drawing().isEmpty());
}

void tst_MainWindowFiles::recentFilesAreNewestFirstAndLimited()
{
    for (int number = 1; number <= 12; ++number)
        RecentFilesMenu::add(QStringLiteral("/scenes/%1.mr").arg(number));
    RecentFilesMenu::add("/scenes/5.mr");
    const QStringList files = Model::Settings::instance()->recentScenes();
    QCOMPARE(files.size(), RecentFilesMenu::maximumCount);
    QCOMPARE(files.mid(0, 3), (QStringList{"/scenes/5.mr", "/scenes/12.mr", "/scenes/11.mr"}));

    auto *menu = m_window->findChild<RecentFilesMenu *>();
    emit menu->aboutToShow();
    QCOMPARE(menu->actions().size(), files.size());
    QCOMPARE(menu->actions().constFirst()->text(), QStringLiteral("5.mr"));
    QCOMPARE(menu->actions().constFirst()->toolTip(), QStringLiteral("/scenes/5.mr"));
}

void tst_MainWindowFiles::nothingElseStartsWhileTheCloseQuestionIsUp()
{
    drawLine();
    const Model::MRScene *before = m_window->currentScene();
    MessageBoxAnswer answer(QMessageBox::Cancel);
    bool opened = true;
    bool saved = true;
    bool savedAs = true;
    answer.beforeAnswering([&] {
        opened = m_window->openFile("/any.mr");
        saved = m_window->saveScene();
        savedAs = m_window->saveSceneAs();
        m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
        m_window->openScene();
    });
    QVERIFY(!m_window->close());
    QVERIFY(!opened && !saved && !savedAs);
    QCOMPARE(answer.count(), 1);
    QCOMPARE(m_window->currentScene(), before);
}

void tst_MainWindowFiles::savingAtTheSaveQuestionGoesOn()
{
    const QString filename = m_folder->filePath("kept.mr");
    drawLine();
    scene()->setFilename(filename);
    MessageBoxAnswer answer(QMessageBox::Save);
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    QCOMPARE(answer.count(), 1);
    QVERIFY(contentOf(filename).contains("<!DOCTYPE mr>"));
    QVERIFY(drawing().isEmpty());
}

void tst_MainWindowFiles::failedSaveAtTheSaveQuestionKeepsTheScene()
{
    drawLine();
    const Model::MRScene *before = m_window->currentScene();
    scene()->setFilename(m_folder->filePath("gone/kept.mr"));
    MessageBoxAnswer answer(QMessageBox::Save);
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    QCOMPARE(answer.count(), 2); // the question and the message that tells why
    QCOMPARE(m_window->currentScene(), before);
}

void tst_MainWindowFiles::saveAsAsksForANameAndWritesThere()
{
    Model::Settings::instance()->setDefaultSaveDir(m_folder->path());
    drawLine();
    FileDialogAnswer answer(m_folder->filePath("named"));
    bool enabledMeanwhile = true;
    answer.beforeAnswering([&] { enabledMeanwhile = action(MR::Action::ZoomIn)->isEnabled(); });
    QVERIFY(m_window->saveSceneAs());
    QCOMPARE(answer.title(), QStringLiteral("Save Scene"));
    QCOMPARE(answer.proposedFile(), m_folder->filePath("Untitled.mr"));
    QVERIFY(!enabledMeanwhile);
    QVERIFY(action(MR::Action::ZoomIn)->isEnabled());
    QCOMPARE(scene()->filename(), m_folder->filePath("named.mr"));
    QVERIFY(contentOf(m_folder->filePath("named.mr")).contains("<!DOCTYPE mr>"));
    QCOMPARE(Model::Settings::instance()->recentScenes(), QStringList{m_folder->filePath("named.mr")});
    QVERIFY(scene()->undoStack()->isClean());
}

void tst_MainWindowFiles::cancelledSaveAsChangesNothing()
{
    drawLine();
    FileDialogAnswer answer({});
    QVERIFY(!m_window->saveSceneAs());
    QCOMPARE(answer.count(), 1);
    QVERIFY(scene()->filename().isEmpty());
    QVERIFY(!scene()->undoStack()->isClean());
}

void tst_MainWindowFiles::failedSaveAsOfAnUnmodifiedSceneLeavesItToBeSaved()
{
    const QString filename = m_folder->filePath("second.mr");
    Model::Settings::instance()->setDefaultSaveDir(m_folder->path());
    QVERIFY(scene()->undoStack()->isClean());
    FileDialogAnswer name(filename);
    {
        const MessageBoxAnswer answer(QMessageBox::Ok);
        std::optional<TestSupport::FullDisk> fullDisk;
        name.beforeAnswering([&] { fullDisk.emplace(); });
        QVERIFY(!m_window->saveSceneAs());
        QCOMPARE(answer.count(), 1);
    }
    QVERIFY(!scene()->undoStack()->isClean());
    QVERIFY(m_window->windowTitle().startsWith("second.mr: *"));
    QVERIFY(m_window->saveScene());
    QVERIFY(QFile::exists(filename));
    QVERIFY(scene()->undoStack()->isClean());
}

void tst_MainWindowFiles::failedSaveAsKeepsTheNewName()
{
    const QString filename = m_folder->filePath("named.mr");
    Model::Settings::instance()->setDefaultSaveDir(m_folder->path());
    drawLine();
    FileDialogAnswer name(filename);
    {
        const MessageBoxAnswer answer(QMessageBox::Ok);
        std::optional<TestSupport::FullDisk> fullDisk;
        name.beforeAnswering([&] { fullDisk.emplace(); });
        QVERIFY(!m_window->saveSceneAs());
        QCOMPARE(answer.count(), 1);
        QVERIFY(answer.text().startsWith("Cannot write file " + filename));
    }
    QCOMPARE(scene()->filename(), filename);
    QVERIFY(m_window->windowTitle().startsWith("named.mr: *"));
    QVERIFY(!scene()->undoStack()->isClean());
    QVERIFY(Model::Settings::instance()->recentScenes().isEmpty());
    QVERIFY(!QFile::exists(filename));
    // With room on the disk again the next attempt goes there, and asks for no name.
    QVERIFY(m_window->saveScene());
    QCOMPARE(name.count(), 1);
    QVERIFY(scene()->undoStack()->isClean());
    QVERIFY(contentOf(filename).contains("<!DOCTYPE mr>"));
}

void tst_MainWindowFiles::sceneActionsAndTheirKeys_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<int>("key");
    QTest::newRow("new") << MR::Action::NewScene << int(Qt::Key_N);
    QTest::newRow("open") << MR::Action::OpenScene << int(Qt::Key_O);
}

// Each asks to save first, by key and by menu; and goes on if the answer is no.
void tst_MainWindowFiles::sceneActionsAndTheirKeys()
{
    QFETCH(MR::Action, which);
    QFETCH(int, key);
    const QString filename = m_folder->filePath("other.mr");
    scene()->setFilename(filename);
    drawLine();
    QVERIFY(m_window->saveScene());
    const FileDialogAnswer name(filename);
    const MessageBoxAnswer answer(QMessageBox::Discard);
    for (const bool byKey : {false, true}) {
        newCleanScene();
        drawLine();
        QVERIFY(!scene()->undoStack()->isClean());
        const Model::MRScene *before = m_window->currentScene();
        if (byKey) {
            m_window->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
            QTest::keyClick(m_window->windowHandle(), Qt::Key(key), Qt::ControlModifier);
        } else {
            action(which)->trigger();
        }
        QCOMPARE(answer.count(), byKey ? 2 : 1);
        QVERIFY(m_window->currentScene() != before);
        QVERIFY(scene()->undoStack()->isClean());
        QCOMPARE(scene()->filename(), which == MR::Action::OpenScene ? filename : QString());
    }
}

void tst_MainWindowFiles::openDialogBeginsInTheFolderOfTheLastScene()
{
    Model::Settings::instance()->setDefaultSaveDir(m_folder->path());
    FileDialogAnswer answer({});
    QStringList filters;
    QString folder;
    answer.beforeAnswering([&] {
        const auto *dialog = m_window->findChild<QFileDialog *>();
        filters = dialog->nameFilters();
        folder = dialog->directory().absolutePath();
    });
    m_window->openScene();
    QCOMPARE(answer.count(), 1);
    QCOMPARE(filters, QStringList{"MR Files (*.mr)"});
    QCOMPARE(folder, m_folder->path());
}

// The file says how large its frames are before it says what cannot be.
void tst_MainWindowFiles::failedOpenLeavesTheRendererAsItWas()
{
    const QString filename = m_folder->filePath("broken.mr");
    writeFile(filename, "<mr version=\"0.4\"><scene frameWidth=\"64\" frameHeight=\"32\"><layers>\n"
                        "<layer type=\"stroke\"><drawing type=\"sideways\"/></layer></layers></scene></mr>\n");
    const MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(!m_window->openFile(filename));
    QCOMPARE(answer.count(), 1);
    QCOMPARE(Model::OffscreenRenderer::instance()->size(), QSize(1920, 1080));
    drawLine();
    QCOMPARE(drawing().image().size(), QSize(1920, 1080));
}

void tst_MainWindowFiles::markupInARecentNameIsShownAsItIs()
{
    const QString name = QStringLiteral("/scenes/<b>walk</b>.mr");
    Model::Settings::instance()->setRecentScenes({name});
    auto *menu = m_window->findChild<RecentFilesMenu *>();
    emit menu->aboutToShow();
    const QString toolTip = menu->actions().constFirst()->toolTip();
    QVERIFY(!Qt::mightBeRichText(toolTip) || QTextDocumentFragment::fromHtml(toolTip).toPlainText() == name);
}

void tst_MainWindowFiles::openSceneOpensTheChosenFile()
{
    const QString filename = m_folder->filePath("chosen.mr");
    drawLine();
    scene()->setFilename(filename);
    QVERIFY(m_window->saveScene());
    newCleanScene();

    FileDialogAnswer answer(filename);
    m_window->openScene();
    QCOMPARE(answer.title(), QStringLiteral("Open Scene"));
    QCOMPARE(scene()->filename(), filename);
    QVERIFY(!drawing().isEmpty());
}

void tst_MainWindowFiles::fileChosenFromTheRecentOnesOpens()
{
    const QString filename = m_folder->filePath("recent.mr");
    drawLine();
    scene()->setFilename(filename);
    QVERIFY(m_window->saveScene());
    newCleanScene();

    auto *menu = m_window->findChild<RecentFilesMenu *>();
    emit menu->aboutToShow();
    menu->actions().constFirst()->trigger();
    QCOMPARE(scene()->filename(), filename);
}

QTEST_MAIN(tst_MainWindowFiles)
#include "tst_mainwindowfiles.moc"
