#include "app/mainwindow.h"
#include "libmodel/base/settings.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/startup.h"
#include "libui/uistartup.h"
#include "support/isolatedstore.h"
#include "support/messageboxanswer.h"

#include <QChildEvent>
#include <QDir>
#include <QFile>
#include <QProgressBar>
#include <QProgressDialog>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoCommand>
#include <QUndoStack>

namespace {

/// Presses "Cancel" in every progress dialog that comes into being while this lives, as soon as it has got somewhere.
class ImpatientUser : public QObject
{
    Q_OBJECT

public:
    ImpatientUser() { qApp->installEventFilter(this); }

    /// How many dialogs were cancelled.
    [[nodiscard]] int count() const { return m_count; }

    bool eventFilter(QObject *object, QEvent *event) override
    {
        // The button is the dialog's last part, so that by then the bar is there.
        auto *dialog = event->type() == QEvent::ChildAdded ? qobject_cast<QProgressDialog *>(object) : nullptr;
        auto *bar = dialog && dialog != m_dialog ? dialog->findChild<QProgressBar *>() : nullptr;
        if (bar) {
            m_dialog = dialog;
            connect(bar, &QProgressBar::valueChanged, this, [this, dialog](int value) {
                if (value < 1 || dialog->wasCanceled())
                    return;
                ++m_count;
                dialog->cancel();
            });
        }
        return false;
    }

private:
    QProgressDialog *m_dialog = nullptr; ///< the last one that was seen
    int m_count = 0;
};

QByteArray contentOf(const QString &filename)
{
    QFile file(filename);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &filename, const QByteArray &content)
{
    QFile file(filename);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s: %s", qPrintable(filename), qPrintable(file.errorString()));
}

/// A scene of another size than a new one, with \a drawings drawings.
QByteArray sceneFile(int drawings)
{
    return "<mr version=\"0.4\">\n<scene frameWidth=\"64\" frameHeight=\"32\" totalNumberOfDrawings=\"" +
           QByteArray::number(drawings) + "\">\n<layers>\n<layer type=\"stroke\" visible=\"yes\">\n" +
           QByteArray("<drawing type=\"original\"/>\n").repeated(drawings) + "</layer>\n</layers>\n</scene>\n</mr>\n";
}

} // namespace

/// What the window makes of a user who does not want to wait.
class tst_CancelledFiles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cancelledOpenLeavesTheOldSceneAndSaysNothing();
    void cancelledSaveLeavesTheFileAndTheSceneModified();

private:
    [[nodiscard]] Model::Scene *scene() const { return m_window->currentScene()->scene(); }
    [[nodiscard]] QString path(const QString &name = "walk.mr") const { return m_folder->filePath(name); }

    IsolatedStore m_store;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MainWindow> m_window;
};

void tst_CancelledFiles::initTestCase()
{
    Model::startUp();
    UI::startUp();
    m_window = std::make_unique<MainWindow>();
    QCOMPARE(m_window->startupError(), QString());
}

void tst_CancelledFiles::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    writeFile(path(), sceneFile(40));
    if (m_window->currentScene())
        scene()->undoStack()->setClean();
    QVERIFY(m_window->openFile(path()));
    Model::Settings::instance()->setRecentScenes({});
}

void tst_CancelledFiles::cancelledOpenLeavesTheOldSceneAndSaysNothing()
{
    writeFile(path("other.mr"), sceneFile(90));
    const Model::MRScene *before = m_window->currentScene();
    const MessageBoxAnswer answer(QMessageBox::Ok);
    {
        const ImpatientUser user;
        QVERIFY(!m_window->openFile(path("other.mr")));
        QCOMPARE(user.count(), 1);
    }
    QCOMPARE(answer.count(), 0);
    QCOMPARE(m_window->currentScene(), before);
    QCOMPARE(scene()->filename(), path());
    QCOMPARE(scene()->maximumFrameNumber(), 40);
    QVERIFY(Model::Settings::instance()->recentScenes().isEmpty());
    // Nobody is in a hurry now.
    QVERIFY(m_window->openFile(path("other.mr")));
    QCOMPARE(scene()->maximumFrameNumber(), 90);
}

void tst_CancelledFiles::cancelledSaveLeavesTheFileAndTheSceneModified()
{
    const QByteArray precious("weeks of work");
    writeFile(path(), precious);
    scene()->undoStack()->push(new QUndoCommand("Draw"));
    const MessageBoxAnswer answer(QMessageBox::Ok);
    {
        const ImpatientUser user;
        QVERIFY(!m_window->saveScene());
        QCOMPARE(user.count(), 1);
    }
    QCOMPARE(answer.count(), 0);
    QVERIFY(!scene()->undoStack()->isClean());
    QCOMPARE(contentOf(path()), precious);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"walk.mr"});
    QVERIFY(Model::Settings::instance()->recentScenes().isEmpty());

    QVERIFY(m_window->saveScene());
    QVERIFY(scene()->undoStack()->isClean());
    QVERIFY(contentOf(path()).endsWith("</mr>\n"));
}

QTEST_MAIN(tst_CancelledFiles)
#include "tst_cancelledfiles.moc"
