// Random edits of random scenes, taken back and done again step by step.
//
//   tst_randomedits [--shard K] [--sequences N] [--first-seed S] [--seed S] [--edits N] [--keep-going] [--dangling]
//                   [QTest options]
//
// A shard is 5,000 sequences with seeds of their own; the first unless told otherwise. --sequences (or the
// environment's MIRELLE_RANDOM_EDITS) runs more or fewer. --seed runs one sequence and prints it. --keep-going goes on
// after a failure and prints a line for each. --dangling gives the scenes links that lead nowhere.

#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "support/modelwatch.h"
#include "support/sceneedits.h"
#include "support/scenegenerator.h"
#include "support/sceneinvariants.h"
#include "support/scenepictures.h"
#include "support/scenesnapshot.h"

#include <QApplication>
#include <QTest>
#include <QUndoStack>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <unistd.h>

using namespace Model;
using namespace TestSupport;

namespace {

struct Options
{
    qint64 sequences = 5000;
    qint64 firstSeed = 1;
    int edits = 30;
    bool prints = false;
    bool keepsGoing = false;
    bool dangling = false;
};
Options options;

struct KindCount
{
    qint64 tried = 0;
    qint64 did = 0; ///< of these, how many changed the scene
};

struct Counts
{
    qint64 sequences = 0;
    qint64 lookedAt = 0; ///< of the sequences, how many had their pictures compared with new ones
    qint64 turns = 0;    ///< back, perhaps forth, and on from there with another edit
    qint64 edits = 0;    ///< that changed the scene
    qint64 undone = 0;
    qint64 redone = 0;
    std::vector<KindCount> kinds = std::vector<KindCount>(editKinds().size());
};

quint64 seedUnderWay = 0;

/// An assertion ends the program where no script can be printed; the seed is enough to get one.
void tellSeedOfCrash(int signal)
{
    char line[128];
    const int length = std::snprintf(line, sizeof line, "random edits: crash with --seed %llu\n",
                                     static_cast<unsigned long long>(seedUnderWay));
    if (write(STDERR_FILENO, line, size_t(length)) < 0)
        _exit(1);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void makeScene(Scene &scene, RandomNumbers &random)
{
    fillScene(scene, random);
    if (options.dangling)
        addDanglingLinks(scene, random);
}

/// One scene with its edits.
class Sequence
{
public:
    Sequence(quint64 seed, Counts &counts);

    /// \return what went wrong, in one line; empty if nothing did.
    QString run();
    /// The scene at the start, the edits, and how to get the same again.
    [[nodiscard]] QString script() const;
    [[nodiscard]] QString detail() const { return m_detail; }

private:
    QString edit();
    QString push(Edit edit, size_t kind, bool &changed);
    QString turnBack();
    QString undo();
    QString redo();
    QString undoAll();
    QString redoAll();
    QString broken(const QString &when, const SceneSnapshot *expected);
    Scene &scene() const { return *m_mrScene.scene(); }
    QUndoStack &stack() const { return *m_mrScene.scene()->undoStack(); }

    quint64 m_seed;
    RandomNumbers m_random;
    Counts &m_counts;
    bool m_looksAtPictures;
    MRScene m_mrScene;
    std::array<ModelWatch, 2> m_watches; ///< of both models
    std::vector<SceneSnapshot> m_states; ///< that at i is the one with i steps on the stack
    QStringList m_steps;                 ///< the edits that are on the stack
    QStringList m_script;                ///< all edits
    QString m_start;
    QString m_detail;
};

Sequence::Sequence(quint64 seed, Counts &counts)
    : m_seed(seed),
      m_random(seed),
      m_counts(counts),
      m_looksAtPictures(seed % 20 == 0),
      m_watches{ModelWatch(m_mrScene.sceneModel()), ModelWatch(m_mrScene.frameRangeModel())}
{
    seedUnderWay = seed;
    MRScene::setCurrent(&m_mrScene);
    makeScene(scene(), m_random);
    m_states.emplace_back(m_mrScene);
    ++m_counts.sequences;
    m_counts.lookedAt += m_looksAtPictures;
}

QString Sequence::run()
{
    QString problem = broken(QStringLiteral("at the start"), nullptr);
    qint64 done = 0;
    // The stack forgets what is older than 50 steps.
    for (int tries = 0; problem.isEmpty() && done < options.edits && tries < 20 * options.edits &&
                        stack().index() < stack().undoLimit() - 1;
         ++tries) {
        const size_t kind = randomEditKind(m_random);
        Edit edit = editKinds()[kind].make(m_mrScene, m_random);
        if (!edit.command || edit.command->isObsolete())
            continue;
        bool changed = false;
        problem = push(std::move(edit), kind, changed);
        ++m_counts.kinds[kind].tried;
        m_counts.kinds[kind].did += changed;
        done += changed;
        if (problem.isEmpty() && m_random.chance(5))
            problem = turnBack();
    }
    m_counts.edits += done;
    if (problem.isEmpty())
        problem = undoAll();
    if (problem.isEmpty())
        problem = redoAll();
    // What was done again goes back by other records than what was done first.
    if (problem.isEmpty() && m_seed % 4 == 0)
        problem = undoAll();
    return problem;
}

QString Sequence::push(Edit edit, size_t kind, bool &changed)
{
    const int before = stack().index();
    const QUndoCommand *top = before > 0 ? stack().command(before - 1) : nullptr;
    const bool mayMerge = top && top->id() != -1 && top->id() == edit.command->id();
    const QString step = QString::fromLatin1(editKinds()[kind].name) + ' ' + edit.arguments;
    m_script.append(step);
    if (options.prints)
        std::printf("%s\n", qPrintable(step));

    MRScene::pushCommand(edit.command.release());

    SceneSnapshot now(m_mrScene);
    changed = now != m_states[size_t(before)];
    if (changed || stack().index() != before) {
        // What could have been redone is gone.
        m_states.resize(size_t(before) + 1);
        m_steps.resize(before);
    }
    if (stack().index() > before) {
        m_states.push_back(std::move(now));
        m_steps.append(step);
    } else if (stack().index() < before) {
        m_script.last() += QStringLiteral(" (merged away)");
        m_states.pop_back();
        m_steps.removeLast();
        return broken(QStringLiteral("after merging away ") + step, &m_states.back());
    } else if (mayMerge) {
        m_script.last() += QStringLiteral(" (merged)");
        m_states[size_t(before)] = std::move(now);
    } else if (changed) {
        m_detail = m_states.back().diff(now);
        return QStringLiteral("dropped, yet it did something: ") + step;
    }
    return broken(QStringLiteral("after ") + step, nullptr);
}

// Goes some steps back and some forth again, for the next edit to go on from there.
QString Sequence::turnBack()
{
    QString problem;
    for (int steps = m_random.between(1, 5); problem.isEmpty() && steps > 0 && stack().canUndo(); --steps)
        problem = undo();
    for (int steps = m_random.between(0, 3); problem.isEmpty() && steps > 0 && stack().canRedo(); --steps)
        problem = redo();
    ++m_counts.turns;
    m_script.append(QStringLiteral("back to step %1").arg(stack().index()));
    return problem;
}

QString Sequence::undo()
{
    const int index = stack().index();
    stack().undo();
    ++m_counts.undone;
    const QString step = m_steps.at(index - 1);
    if (stack().index() != index - 1)
        return QStringLiteral("not to be undone: ") + step;
    return broken(QStringLiteral("after the undo of ") + step, &m_states[size_t(index - 1)]);
}

QString Sequence::redo()
{
    const int index = stack().index();
    stack().redo();
    ++m_counts.redone;
    const QString step = m_steps.at(index);
    if (stack().index() != index + 1)
        return QStringLiteral("not to be redone: ") + step;
    return broken(QStringLiteral("after the redo of ") + step, &m_states[size_t(index + 1)]);
}

QString Sequence::undoAll()
{
    QString problem;
    while (problem.isEmpty() && stack().canUndo())
        problem = undo();
    return problem;
}

QString Sequence::redoAll()
{
    QString problem;
    while (problem.isEmpty() && stack().canRedo())
        problem = redo();
    return problem;
}

QString Sequence::broken(const QString &when, const SceneSnapshot *expected)
{
    const DanglingLinks dangling = options.dangling ? DanglingLinks::Allowed : DanglingLinks::Forbidden;
    if (const QString invariant = brokenInvariant(scene(), dangling); !invariant.isEmpty()) {
        m_detail = invariant;
        return QStringLiteral("invariant broken ") + when;
    }
    if (expected) {
        const SceneSnapshot now(m_mrScene);
        if (now != *expected) {
            m_detail = expected->diff(now);
            return QStringLiteral("another scene ") + when;
        }
    }
    if (m_looksAtPictures) {
        m_detail = stalePicture(scene());
        if (!m_detail.isEmpty())
            return QStringLiteral("out of date ") + when;
    }
    for (ModelWatch &watch : m_watches) {
        m_detail = watch.broken();
        if (!m_detail.isEmpty())
            return QStringLiteral("inconsistent model ") + when;
    }
    return {};
}

QString Sequence::script() const
{
    RandomNumbers random(m_seed);
    Scene atFirst;
    makeScene(atFirst, random);
    QString text = SceneSnapshot(atFirst).describe();
    for (qsizetype i = 0; i < m_script.size(); ++i)
        text += QStringLiteral("%1. %2\n").arg(i + 1).arg(m_script.at(i));
    return text + QStringLiteral("replay: tools/with-display build/dev/bin/tst_randomedits --seed %1 --edits %2%3\n")
                      .arg(m_seed)
                      .arg(options.edits)
                      .arg(options.dangling ? QStringLiteral(" --dangling") : QString());
}

} // namespace

class tst_RandomEdits : public QObject
{
    Q_OBJECT

private slots:
    void editsGoBackAndForthExactly();
    void everyKindOfEditDidSomething();
    void cleanupTestCase();

private:
    Counts m_counts;
};

void tst_RandomEdits::editsGoBackAndForthExactly()
{
    int failures = 0;
    const quint64 first = quint64(options.firstSeed);
    for (quint64 seed = first; seed < first + quint64(options.sequences); ++seed) {
        Sequence sequence(seed, m_counts);
        const QString problem = sequence.run();
        if (problem.isEmpty())
            continue;
        ++failures;
        std::printf("random edits: seed %llu: %s | %s\n", static_cast<unsigned long long>(seed), qPrintable(problem),
                    qPrintable(sequence.detail().section('\n', 0, 0)));
        if (options.keepsGoing)
            continue;
        std::printf("%s%s\n", qPrintable(sequence.script()), qPrintable(sequence.detail()));
        break;
    }
    std::fflush(stdout);
    QCOMPARE(failures, 0);
}

void tst_RandomEdits::everyKindOfEditDidSomething()
{
    if (options.sequences < 1000)
        QSKIP("Too few sequences were asked for.");
    for (size_t i = 0; i < editKinds().size(); ++i) {
        // A fair share of the edits, by the weight of the kind; half of that for what needs something that floats first.
        const QString name = QLatin1String(editKinds()[i].name);
        const bool needsFloating = name == "Stamp Floating Selection" || name == "Drop Floating Selection";
        const qint64 wanted = m_counts.edits * editKinds()[i].weight / (needsFloating ? 2000 : 1000);
        QVERIFY2(m_counts.kinds[i].did >= wanted, qPrintable(QStringLiteral("%1 changed %2 scenes in %3 tries")
                                                                 .arg(QLatin1String(editKinds()[i].name))
                                                                 .arg(m_counts.kinds[i].did)
                                                                 .arg(m_counts.kinds[i].tried)));
    }
}

void tst_RandomEdits::cleanupTestCase()
{
    std::printf(
        "random edits: %lld sequences from seed %lld, %lld edits that changed a scene, %lld undone, %lld redone, "
        "%lld turns back in the middle, both models under Qt's tester all along, pictures compared in %lld\n",
        m_counts.sequences, options.firstSeed, m_counts.edits, m_counts.undone, m_counts.redone, m_counts.turns,
        m_counts.lookedAt);
    QStringList kinds;
    for (size_t i = 0; i < editKinds().size(); ++i)
        kinds += QStringLiteral("%1 %2/%3")
                     .arg(QLatin1String(editKinds()[i].name))
                     .arg(m_counts.kinds[i].did)
                     .arg(m_counts.kinds[i].tried);
    std::printf("random edits: changed/tried: %s\n", qPrintable(kinds.join(QStringLiteral(", "))));
    std::fflush(stdout);
}

/// Takes our own options out of \a arguments, so that QTest sees only its own.
static bool readOptions(QStringList &arguments)
{
    bool good = true;
    const auto take = [&](const QString &name, qint64 value) {
        const qsizetype at = arguments.indexOf(name);
        if (at < 0)
            return value;
        bool isNumber = false;
        const qint64 number = arguments.value(at + 1).toLongLong(&isNumber);
        good = good && isNumber && number >= 1;
        arguments.remove(at, std::min<qsizetype>(2, arguments.size() - at));
        return number;
    };
    if (qEnvironmentVariableIsSet("MIRELLE_RANDOM_EDITS"))
        options.sequences = qEnvironmentVariableIntValue("MIRELLE_RANDOM_EDITS");
    options.sequences = take(QStringLiteral("--sequences"), options.sequences);
    options.edits = int(take(QStringLiteral("--edits"), options.edits));
    options.firstSeed = 1 + (take(QStringLiteral("--shard"), 1) - 1) * options.sequences;
    options.firstSeed = take(QStringLiteral("--first-seed"), options.firstSeed);
    if (const qint64 seed = take(QStringLiteral("--seed"), 0); seed != 0) {
        options.firstSeed = seed;
        options.sequences = 1;
        options.prints = true;
    }
    options.dangling = arguments.removeAll(QStringLiteral("--dangling")) > 0;
    options.keepsGoing = arguments.removeAll(QStringLiteral("--keep-going")) > 0;
    return good && options.sequences >= 1;
}

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QStringList arguments = QApplication::arguments();
    if (!readOptions(arguments)) {
        std::fprintf(stderr, "tst_randomedits: the options want numbers from 1\n");
        return 2;
    }
    std::signal(SIGABRT, tellSeedOfCrash);
    std::signal(SIGSEGV, tellSeedOfCrash);
    // All sequences are one test function, which may take longer than such functions usually do.
    qputenv("QTEST_FUNCTION_TIMEOUT", "86400000");
    tst_RandomEdits test;
    return QTest::qExec(&test, arguments);
}

#include "tst_randomedits.moc"
