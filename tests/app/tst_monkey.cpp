// The real window under a monkey's hands.
//
//   tst_monkey [--steps N] [--seed S] [--verbose]
//
// 100,000 steps with seed 1 unless told otherwise. --verbose prints each step.

#include "app/mainwindow.h"
#include "libmodel/actions/actionmanager.h"
#include "libmodel/base/settings.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/startup.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/floatingselection.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/dialogs/collapsedialog.h"
#include "libui/paper/paper.h"
#include "libui/paper/viewtransform.h"
#include "libui/uistartup.h"
#include "monkey.h"
#include "support/isolatedstore.h"
#include "support/sceneinvariants.h"
#include "support/scenesnapshot.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QFile>
#include <QHash>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <QUndoStack>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <unistd.h>

using Model::Tool;
using Model::ToolManager;

namespace {

struct Options
{
    int steps = 100'000;
    quint64 seed = 1;
    bool isVerbose = false;
};
Options options;

/// Steps between two times at which everything is let go of and looked at.
constexpr int stepsToRest = 50;
/// Steps between two walks through the undo stack.
constexpr int stepsToWalk = 1000;
/// Pages of the process that a scene like the monkey's, and what the libraries keep for later, may take more at the end
/// than after the first walks.
constexpr qint64 mostGrowth = 48LL << 20;
/// Levels by which a pixel of a seam may differ without being counted, and how many may differ by more in a picture.
constexpr int seamLevels = 32;
constexpr int mostSeamPixels = 300;

/// The most that did in this run, to be told at its end.
int largestSeam = 0;

int stepUnderWay = 0;

void tellStepOfCrash(int signal)
{
    char line[128];
    const int length = std::snprintf(line, sizeof line, "monkey: crash at step %d of --seed %llu\n", stepUnderWay,
                                     static_cast<unsigned long long>(options.seed));
    if (write(STDERR_FILENO, line, size_t(length)) < 0)
        _exit(1);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

qint64 residentBytes()
{
    malloc_trim(0);
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    return statm.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

/// A scene at one step of its undo stack.
struct State
{
    explicit State(const Model::Scene &scene);
    /// What is other than in \a other but for seams of lines; empty if nothing is.
    QString farFrom(const State &other) const;

    TestSupport::SceneSnapshot snapshot;
    std::vector<QImage> pictures; ///< of all cells, layer by layer
};

State::State(const Model::Scene &scene) : snapshot(scene)
{
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        for (int frameId = 1; scene.visualLayer(layerIdx) && frameId <= scene.lastFrame(layerIdx); ++frameId) {
            const auto *drawing = dynamic_cast<Model::StrokeDrawing *>(scene.item(layerIdx, frameId)->drawing.get());
            pictures.push_back(drawing ? drawing->image() : QImage());
        }
    }
}

QString State::farFrom(const State &other) const
{
    TestSupport::SceneSnapshot mine = snapshot;
    TestSupport::SceneSnapshot others = other.snapshot;
    for (TestSupport::SceneSnapshot *each : {&mine, &others}) {
        for (TestSupport::DrawingState &drawing : each->drawings)
            drawing.pixels = 0;
    }
    if (const QString diff = mine.diff(others); !diff.isEmpty())
        return diff;
    for (size_t i = 0; i < pictures.size(); ++i) {
        if (pictures[i] == other.pictures[i])
            continue;
        const QImage blank = Model::blankCoverage(snapshot.frameSize);
        const QImage &a = pictures[i].isNull() ? blank : pictures[i];
        const QImage &b = other.pictures[i].isNull() ? blank : other.pictures[i];
        int different = 0;
        for (int y = 0; y < a.height(); ++y) {
            for (int x = 0; x < a.width(); ++x)
                different += std::abs(a.constScanLine(y)[x] - b.constScanLine(y)[x]) > seamLevels ? 1 : 0;
        }
        largestSeam = std::max(largestSeam, different);
        if (different > mostSeamPixels)
            return QStringLiteral("%1 pixels of picture %2").arg(different).arg(i);
    }
    return {};
}

/// Closes every dialog and menu as soon as it is up, as somebody does who did not mean it. Only the question whether to
/// collapse is answered with yes every other time.
class Closer : public QObject
{
protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() != QEvent::Show)
            return false;
        if (auto *question = qobject_cast<UI::CollapseDialog *>(object); question && (++m_questions % 2) == 0)
            QTimer::singleShot(0, question, &QDialog::accept);
        else if (auto *dialog = qobject_cast<QDialog *>(object))
            QTimer::singleShot(0, dialog, &QDialog::reject);
        else if (auto *menu = qobject_cast<QMenu *>(object))
            QTimer::singleShot(0, menu, &QMenu::close);
        return false;
    }

private:
    int m_questions = 0;
};

} // namespace

/// Takes the place of the browser.
class NoBrowser : public QObject
{
    Q_OBJECT

public slots:
    void open(const QUrl &) {}
};

class tst_Monkey : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void nothingBreaksUnderRandomHands();
    void cleanupTestCase();

private:
    Model::Scene &scene() const { return *m_window->currentScene()->scene(); }
    QString brokenAtRest() const;
    QString brokenTool() const;
    static QString toolNobodyChose(const Monkey &monkey);
    QString walkThroughUndoStack() const;
    QString undoAll(std::vector<State> &states) const;
    QString redoAll(int top, std::vector<State> &states) const;

    std::unique_ptr<IsolatedStore> m_store;
    std::unique_ptr<MainWindow> m_window;
    Closer m_closer;
    NoBrowser m_browser;
};

void tst_Monkey::initTestCase()
{
    m_store = std::make_unique<IsolatedStore>();
    Model::startUp();
    UI::startUp();
    Model::Settings::instance()->setDefaultFrameSize({240, 160});
    Model::Settings::instance()->setDefaultInitialNumberOfFrames(4);
    for (const char *scheme : {"file", "https"})
        QDesktopServices::setUrlHandler(QLatin1String(scheme), &m_browser, "open");
    m_window = std::make_unique<MainWindow>();
    QCOMPARE(m_window->startupError(), QString());
    m_window->resize(480, 400);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_window->newSceneIfNoneOpen();
    qApp->installEventFilter(&m_closer);
}

/// What must be true of the tool and of what floats, also with keys and pens down, and anywhere in the undo stack.
QString tst_Monkey::brokenTool() const
{
    if (ToolManager::instance()->currentToolType() == Tool::Type::PenAdjustment &&
        !m_window->findChild<UI::Paper *>()->isDevicePressed())
        return QStringLiteral("a pen is adjusted by nobody");
    const bool isChosen = ToolManager::instance()->latestPaperToolType() == Tool::Type::FloatingSelection;
    const Model::FloatingSelection &selection = m_window->currentScene()->floatingSelection();
    if (isChosen && selection.isNull())
        return QStringLiteral("the selection's tool is chosen, and nothing floats");
    return !isChosen && selection.isCutOut() ? QStringLiteral("what was cut out is out of sight") : QString();
}

/// Everything is let go of: what must be true of the window then.
QString tst_Monkey::brokenAtRest() const
{
    const auto *paper = m_window->findChild<UI::Paper *>();
    if (paper->isDevicePressed())
        return QStringLiteral("the paper holds a contact");
    if (scene().hasActiveStroke())
        return QStringLiteral("a stroke is in progress");
    if (!paper->view().widgetToPaper().isInvertible())
        return QStringLiteral("the view cannot be inverted");
    const double level = paper->zoomLevel();
    if (level < 1.0 / 16.0 - 1e-9 || level > 16.0 + 1e-9)
        return QStringLiteral("zoom level %1").arg(level);
    const ToolManager *tools = ToolManager::instance();
    if (tools->currentToolMode() != 0)
        return QStringLiteral("the tool is held in mode %1").arg(tools->currentToolMode());
    const auto isChecked = [](MR::Action action) {
        return Model::ActionManager::instance()->action(action)->isChecked();
    };
    const QString stuck = QStringLiteral("tool %1 is stuck").arg(int(tools->currentToolType()));
    switch (tools->currentToolType()) {
    case Tool::Type::Pen:
    case Tool::Type::Eraser:
    case Tool::Type::ZPR: // its action may have chosen it for good
    case Tool::Type::Lasso:
    case Tool::Type::Cutter:
        return {};
    case Tool::Type::FloatingSelection:
        return brokenTool();
    case Tool::Type::Hand:
        return isChecked(MR::Action::Pan) ? QString() : stuck;
    case Tool::Type::Zoom:
        return isChecked(MR::Action::Zoom) ? QString() : stuck;
    case Tool::Type::Rotate:
        return isChecked(MR::Action::Rotate) ? QString() : stuck;
    case Tool::Type::OffPegs:
        return isChecked(MR::Action::OffPegs) ? QString() : stuck;
    default:
        return stuck;
    }
}

/// All keys and buttons are let go of: a tool that only moves the view or a frame is there because its action was
/// triggered, or it got stuck.
QString tst_Monkey::toolNobodyChose(const Monkey &monkey)
{
    static const QHash<Tool::Type, MR::Action> actions = {{Tool::Type::Hand, MR::Action::Pan},
                                                          {Tool::Type::Zoom, MR::Action::Zoom},
                                                          {Tool::Type::Rotate, MR::Action::Rotate},
                                                          {Tool::Type::ZPR, MR::Action::ZPR},
                                                          {Tool::Type::OffPegs, MR::Action::OffPegs}};
    const Tool::Type tool = ToolManager::instance()->currentToolType();
    const auto action = actions.constFind(tool);
    return action == actions.cend() || monkey.hasTriggered(*action)
               ? QString()
               : QStringLiteral("nobody chose tool %1").arg(int(tool));
}

/// Takes back everything there is and does it again, twice. A line that is drawn anew from its segments may differ in
/// the pixels of its seams from the one that grew under the pen, so pictures on the way back are only near those on the
/// way forth; both ways forth are the same to the last bit.
QString tst_Monkey::walkThroughUndoStack() const
{
    const int top = scene().undoStack()->index();
    std::vector<State> back{State(scene())};
    QString problem = undoAll(back);
    std::vector<State> forth{State(scene())};
    if (problem.isEmpty())
        problem = redoAll(top, forth);
    for (size_t i = 0; problem.isEmpty() && i < forth.size(); ++i)
        problem = forth[i].farFrom(back[forth.size() - 1 - i]);
    std::vector<State> backAgain{State(scene())};
    if (problem.isEmpty())
        problem = undoAll(backAgain);
    std::vector<State> forthAgain{State(scene())};
    if (problem.isEmpty())
        problem = redoAll(top, forthAgain);
    for (size_t i = 0; problem.isEmpty() && i < forth.size(); ++i)
        problem = forthAgain[i].snapshot.diff(forth[i].snapshot);
    return problem;
}

/// \return what was wrong in between.
QString tst_Monkey::undoAll(std::vector<State> &states) const
{
    QUndoStack *stack = scene().undoStack();
    while (stack->canUndo()) {
        const QString text = stack->undoText();
        stack->undo();
        if (const QString broken = TestSupport::brokenInvariant(scene()); !broken.isEmpty())
            return QStringLiteral("undo of \"%1\": %2").arg(text, broken);
        if (const QString broken = brokenTool(); !broken.isEmpty())
            return QStringLiteral("undo of \"%1\": %2").arg(text, broken);
        states.emplace_back(scene());
    }
    return {};
}

QString tst_Monkey::redoAll(int top, std::vector<State> &states) const
{
    QUndoStack *stack = scene().undoStack();
    while (stack->index() < top && stack->canRedo()) {
        const QString text = stack->redoText();
        stack->redo();
        if (const QString broken = TestSupport::brokenInvariant(scene()); !broken.isEmpty())
            return QStringLiteral("redo of \"%1\": %2").arg(text, broken);
        if (const QString broken = brokenTool(); !broken.isEmpty())
            return QStringLiteral("redo of \"%1\": %2").arg(text, broken);
        states.emplace_back(scene());
    }
    return stack->index() == top ? QString() : QStringLiteral("not everything could be redone");
}

void tst_Monkey::nothingBreaksUnderRandomHands()
{
    Monkey monkey(*m_window, options.seed);
    QStringList latest;
    qint64 residentAtFirst = 0;
    const auto tell = [&](int step, const QString &problem) {
        return QStringLiteral("step %1 of --seed %2: %3\nlatest steps:\n  %4")
            .arg(step)
            .arg(options.seed)
            .arg(problem, latest.join(QStringLiteral("\n  ")));
    };
    for (int step = 1; step <= options.steps; ++step) {
        stepUnderWay = step;
        latest << monkey.step();
        if (options.isVerbose)
            std::printf("%d %s\n", step, qPrintable(latest.last()));
        if (latest.size() > 60)
            latest.removeFirst();
        QCoreApplication::processEvents();
        QString problem = TestSupport::brokenInvariant(scene());
        if (problem.isEmpty())
            problem = brokenTool();
        if (problem.isEmpty() && step % stepsToRest == 0) {
            monkey.letGo();
            QCoreApplication::processEvents();
            const QString unchosen = toolNobodyChose(monkey);
            // Playback is no key that could be let go of; it goes on until it is stopped.
            QTest::keyClick(m_window->windowHandle(), Qt::Key_Escape);
            QCoreApplication::processEvents();
            problem = unchosen.isEmpty() ? brokenAtRest() : unchosen;
            // The window system may have had a word in between, as of a dialog that went. A hand moves on meanwhile.
            for (int more = 0; more < 5 && !problem.isEmpty() && unchosen.isEmpty(); ++more) {
                monkey.letGo();
                QTest::qWait(20);
                problem = brokenAtRest();
            }
            if (ToolManager::instance()->currentToolType() <= Tool::Type::Eraser)
                monkey.forgetTriggered();
        }
        if (problem.isEmpty() && step % stepsToWalk == 0) {
            problem = walkThroughUndoStack();
            if (step == 5 * stepsToWalk)
                residentAtFirst = residentBytes();
        }
        if (!problem.isEmpty())
            QFAIL(qPrintable(tell(step, problem)));
    }
    if (residentAtFirst == 0)
        return;
    const qint64 growth = residentBytes() - residentAtFirst;
    std::printf("monkey: %d steps; largest seam %d pixels; memory grew by %lld KiB\n", options.steps, largestSeam,
                static_cast<long long>(growth / 1024));
    QVERIFY2(growth < mostGrowth, qPrintable(QStringLiteral("%1 KiB more than in the beginning").arg(growth / 1024)));
}

void tst_Monkey::cleanupTestCase()
{
    qApp->removeEventFilter(&m_closer);
    for (const char *scheme : {"file", "https"})
        QDesktopServices::unsetUrlHandler(QLatin1String(scheme));
    // What was cut out is brought home, which would be a change to be asked about.
    Model::ActionManager::instance()->action(MR::Action::Draw)->trigger();
    scene().undoStack()->setClean();
    QVERIFY(m_window->close());
    m_window.reset();
}

int main(int argc, char *argv[])
{
    std::vector<char *> others{argv[0]};
    for (int i = 1; i < argc; ++i) {
        const bool hasValue = i + 1 < argc;
        if (hasValue && !std::strcmp(argv[i], "--seed"))
            options.seed = std::strtoull(argv[++i], nullptr, 10);
        else if (hasValue && !std::strcmp(argv[i], "--steps"))
            options.steps = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--verbose"))
            options.isVerbose = true;
        else
            others.push_back(argv[i]);
    }
    QApplication application(argc, argv);
    for (const int signal : {SIGSEGV, SIGABRT, SIGFPE, SIGBUS})
        std::signal(signal, tellStepOfCrash);
    tst_Monkey test;
    return QTest::qExec(&test, int(others.size()), others.data());
}

#include "tst_monkey.moc"
