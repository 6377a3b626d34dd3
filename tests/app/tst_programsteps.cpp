#include "app/application.h"
#include "app/mainwindow.h"
#include "app/program.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/startup.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/uistartup.h"
#include "support/isolatedstore.h"
#include "support/messageboxanswer.h"

#include <QFileOpenEvent>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>

#include <iostream>
#include <sstream>
#include <stdexcept>

/// The steps of the entry point, each by itself.
class tst_ProgramSteps : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void withoutAnArgumentANewSceneComesFromTheEventLoop();
    void fileThatCannotBeOpenedLeavesANewScene();
    void furtherArgumentsAreIgnored();
    void fileOpenEventGoesThroughTheSaveQuestion();
    void turnedStylusReachesTheWindow();
    void exceptionIsWrittenAndGivesMinusOne_data();
    void exceptionIsWrittenAndGivesMinusOne();
    void exitValueIsPassedOn();
    void cleanupTestCase();

private:
    Model::Scene *scene() const { return m_window->currentScene()->scene(); }

    std::unique_ptr<IsolatedStore> m_store;
    std::unique_ptr<MainWindow> m_window;
    QTemporaryDir m_folder;
};

void tst_ProgramSteps::initTestCase()
{
    m_store = std::make_unique<IsolatedStore>();
    Model::startUp();
    UI::startUp();
    m_window = std::make_unique<MainWindow>();
    Program::connectWindow(*static_cast<Application *>(qApp), *m_window);
}

void tst_ProgramSteps::withoutAnArgumentANewSceneComesFromTheEventLoop()
{
    Program::scheduleFirstScene(*m_window, {"mirelle"});
    m_window->show();
    QVERIFY(m_window->isVisible());
    QVERIFY(!m_window->currentScene());
    QTRY_VERIFY(m_window->currentScene());
    QCOMPARE(scene()->displayName(), QStringLiteral("Untitled"));

    scene()->setFilename(m_folder.filePath("first.mr"));
    scene()->undoStack()->push(new QUndoCommand);
    QVERIFY(m_window->saveScene());
    QVERIFY(m_window->close());
    QVERIFY(!m_window->currentScene());
}

void tst_ProgramSteps::fileThatCannotBeOpenedLeavesANewScene()
{
    MessageBoxAnswer answer(QMessageBox::Ok);
    Program::scheduleFirstScene(*m_window, {"mirelle", m_folder.filePath("nowhere.mr")});
    QTRY_VERIFY(m_window->currentScene());
    QCOMPARE(answer.count(), 1);
    QCOMPARE(answer.title(), QStringLiteral("nowhere.mr"));
    QCOMPARE(scene()->displayName(), QStringLiteral("Untitled"));
}

void tst_ProgramSteps::furtherArgumentsAreIgnored()
{
    MessageBoxAnswer answer(QMessageBox::Ok);
    Program::scheduleFirstScene(*m_window, {"mirelle", m_folder.filePath("first.mr"), m_folder.filePath("nowhere.mr")});
    QTRY_COMPARE(scene()->displayName(), QStringLiteral("first.mr"));
    QCoreApplication::processEvents();
    QCOMPARE(answer.count(), 0);
}

void tst_ProgramSteps::fileOpenEventGoesThroughTheSaveQuestion()
{
    scene()->undoStack()->push(new QUndoCommand);
    const Model::MRScene *before = m_window->currentScene();
    MessageBoxAnswer answer(QMessageBox::Cancel);
    QFileOpenEvent event(m_folder.filePath("first.mr"));
    QCoreApplication::sendEvent(qApp, &event);
    QCOMPARE(answer.count(), 1);
    QCOMPARE(answer.title(), QStringLiteral("Save"));
    QCOMPARE(m_window->currentScene(), before);
    scene()->undoStack()->setClean();
}

void tst_ProgramSteps::turnedStylusReachesTheWindow()
{
    emit static_cast<Application *>(qApp)->tabletPointerTypeChanged(QPointingDevice::PointerType::Eraser);
    QCOMPARE(Model::ToolManager::instance()->currentToolType(), Model::Tool::Type::Eraser);
}

void tst_ProgramSteps::exceptionIsWrittenAndGivesMinusOne_data()
{
    QTest::addColumn<bool>("isStandard");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("a standard exception by its text") << true << QByteArray("out of paper\n");
    QTest::newRow("anything else") << false << QByteArray("Unknown exception\n");
}

void tst_ProgramSteps::exceptionIsWrittenAndGivesMinusOne()
{
    QFETCH(bool, isStandard);
    QFETCH(QByteArray, text);
    std::ostringstream written;
    std::streambuf *old = std::cerr.rdbuf(written.rdbuf());
    const int exitValue = Program::runGuarded([isStandard]() -> int {
        if (isStandard)
            throw std::runtime_error("out of paper");
        throw 42;
    });
    std::cerr.rdbuf(old);
    QCOMPARE(exitValue, -1);
    QCOMPARE(QByteArray::fromStdString(written.str()), text);
}

void tst_ProgramSteps::exitValueIsPassedOn()
{
    QCOMPARE(Program::runGuarded([] { return 7; }), 7);
}

void tst_ProgramSteps::cleanupTestCase()
{
    m_window.reset();
}

int main(int argc, char *argv[])
{
    Application application(argc, argv);
    tst_ProgramSteps test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_programsteps.moc"
