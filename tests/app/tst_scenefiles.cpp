#include "app/scenefiles.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/base/settings.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "support/brokendisks.h"
#include "support/isolatedstore.h"
#include "support/messageboxanswer.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoCommand>
#include <QUndoStack>
#include <QWidget>

#include <sys/stat.h>

using namespace TestSupport;

namespace {

const QByteArray precious("weeks of work");

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// What is told of files that could not be saved, word for word.
class tst_SceneFiles : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void savedSceneIsUnmodifiedAndRecent();
    void fileThatCannotBeBegunIsToldWithTheReason();
    void smallSceneOnAFullDiskIsToldWithTheReason();
    void largeSceneOnAFullDiskIsToldWithTheReasonBelow();
    void markupInANameIsShownAsItIs();
    void markupInAParseErrorIsShownAsItIs();
    void markupInTheSaveQuestionIsShownAsItIs();
    void folderOfThatNameIsToldWithTheReason();
    void pipeIsNotWaitedFor();

private:
    [[nodiscard]] QString path(const QString &name = "walk.mr") const { return m_folder->filePath(name); }

    IsolatedStore m_store;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<Model::MRScene> m_scene;
};

void tst_SceneFiles::init()
{
    m_store.reset();
    m_folder = std::make_unique<QTemporaryDir>();
    m_window = std::make_unique<QWidget>();
    m_scene = std::make_unique<Model::MRScene>();
    m_scene->scene()->setFilename(path());
    m_scene->scene()->undoStack()->push(new QUndoCommand("Draw"));
}

void tst_SceneFiles::cleanup()
{
    m_scene.reset();
    m_window.reset();
    m_folder.reset();
}

void tst_SceneFiles::savedSceneIsUnmodifiedAndRecent()
{
    const SceneFiles files(m_window.get());
    QVERIFY(files.save(*m_scene));
    QVERIFY(m_scene->scene()->undoStack()->isClean());
    QCOMPARE(Model::Settings::instance()->recentScenes(), QStringList{path()});
    QVERIFY(contentOf(path()).endsWith("</mr>\n"));
}

void tst_SceneFiles::fileThatCannotBeBegunIsToldWithTheReason()
{
    m_scene->scene()->setFilename(path("gone/walk.mr"));
    const SceneFiles files(m_window.get());
    const MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(!files.save(*m_scene));
    QCOMPARE(answer.count(), 1);
    QCOMPARE(answer.text(), "Cannot write file " + path("gone/walk.mr") + ":\nNo such file or directory.");
    QCOMPARE(answer.informativeText(), QString());
    QVERIFY(!m_scene->scene()->undoStack()->isClean());
    QVERIFY(Model::Settings::instance()->recentScenes().isEmpty());
}

void tst_SceneFiles::smallSceneOnAFullDiskIsToldWithTheReason()
{
    writeFile(path(), precious);
    const SceneFiles files(m_window.get());
    const MessageBoxAnswer answer(QMessageBox::Ok);
    {
        const FullDisk fullDisk;
        QVERIFY(!files.save(*m_scene));
    }
    QCOMPARE(answer.count(), 1);
    QCOMPARE(answer.text(), "Cannot write file " + path() + ":\nFile too large.");
    QCOMPARE(contentOf(path()), precious);
    QVERIFY(!m_scene->scene()->undoStack()->isClean());
}

void tst_SceneFiles::largeSceneOnAFullDiskIsToldWithTheReasonBelow()
{
    writeFile(path(), precious);
    const auto sound = std::make_shared<Model::AudioLayer>();
    sound->setOriginalAudioData(QByteArray(100'000, 'x'));
    m_scene->scene()->insertLayer(sound, 0);
    const SceneFiles files(m_window.get());
    const MessageBoxAnswer answer(QMessageBox::Ok);
    {
        const FullDisk fullDisk;
        QVERIFY(!files.save(*m_scene));
    }
    QCOMPARE(answer.count(), 1);
    QCOMPARE(answer.text(), "Cannot write file " + path());
    QCOMPARE(answer.informativeText(), QString("File too large"));
    QCOMPARE(contentOf(path()), precious);
    QVERIFY(!m_scene->scene()->undoStack()->isClean());
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"walk.mr"});
}

void tst_SceneFiles::markupInANameIsShownAsItIs()
{
    const QString name = path("<b>gone<br>%1%2/walk.mr");
    m_scene->scene()->setFilename(name);
    const SceneFiles files(m_window.get());
    MessageBoxAnswer answer(QMessageBox::Ok);
    Qt::TextFormat format = Qt::AutoText;
    answer.beforeAnswering([&] { format = m_window->findChild<QMessageBox *>()->textFormat(); });
    QVERIFY(!files.save(*m_scene));
    QCOMPARE(answer.text(), "Cannot write file " + name + ":\nNo such file or directory.");
    QCOMPARE(format, Qt::PlainText);
}

void tst_SceneFiles::markupInAParseErrorIsShownAsItIs()
{
    const QString name = path("<b>walk<br>%1%2.mr");
    // What the file says is in the message, and markup in a value that stands there is no markup to the user.
    writeFile(name, "<mr version=\"0.4\"><scene><layers><layer type=\"stroke\">\n"
                    "<drawing type=\"&lt;img src='x'>\"/></layer></layers></scene></mr>");
    const SceneFiles files(m_window.get());
    MessageBoxAnswer answer(QMessageBox::Ok);
    Qt::TextFormat format = Qt::AutoText;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    answer.beforeAnswering([&] {
        format = m_window->findChild<QMessageBox *>()->textFormat();
        icon = m_window->findChild<QMessageBox *>()->icon();
    });
    QVERIFY(!files.read(name));
    QCOMPARE(answer.count(), 1);
    QVERIFY2(answer.text().startsWith("Parse error in file " + name +
                                      ":\n\nThere is no drawing of the type \"<img src='x'>\"\nLine 2, column "),
             qPrintable(answer.text()));
    QCOMPARE(format, Qt::PlainText);
    QCOMPARE(icon, QMessageBox::Information);
    QCOMPARE(answer.title(), QGuiApplication::applicationDisplayName());
}

void tst_SceneFiles::markupInTheSaveQuestionIsShownAsItIs()
{
    m_scene->scene()->setFilename(path("<b>walk<br>x.mr"));
    const SceneFiles files(m_window.get());
    MessageBoxAnswer answer(QMessageBox::Cancel);
    Qt::TextFormat format = Qt::AutoText;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    answer.beforeAnswering([&] {
        const auto *box = m_window->findChild<QMessageBox *>();
        format = box->textFormat();
        icon = box->icon();
        buttons = box->standardButtons();
    });
    QVERIFY(!files.maybeSave(*m_scene));
    QCOMPARE(answer.text(), QStringLiteral("\"<b>walk<br>x.mr\" has been modified.\n\nSave the scene?"));
    QCOMPARE(answer.title(), QStringLiteral("Save"));
    QCOMPARE(format, Qt::PlainText);
    QCOMPARE(icon, QMessageBox::Warning);
    QCOMPARE(buttons, QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
}

void tst_SceneFiles::folderOfThatNameIsToldWithTheReason()
{
    QVERIFY(QDir().mkdir(path()));
    const SceneFiles files(m_window.get());
    const MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(!files.save(*m_scene));
    QVERIFY2(answer.text().startsWith("Cannot write file " + path() + ":\n"), qPrintable(answer.text()));
    QVERIFY(QFileInfo(path()).isDir());
}

void tst_SceneFiles::pipeIsNotWaitedFor()
{
    QCOMPARE(mkfifo(QFile::encodeName(path("pipe.mr")).constData(), 0600), 0);
    const SceneFiles files(m_window.get());
    const MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(!files.read(path("pipe.mr")));
    QCOMPARE(answer.text(), "Cannot read file " + path("pipe.mr") + ":\nIt is no ordinary file.");
}

QTEST_MAIN(tst_SceneFiles)
#include "tst_scenefiles.moc"
