// Cut, move, turn, scale, stamp, draw and cut again, at random: thirty times over, with everything undone to the start
// and redone to the end. After every step the image must be what the strokes make when they are drawn anew.
//
//   tst_pickup_walk [--seed S] [--rounds N] [QTest options]
//
// --seed walks that way only and prints it.

#include "libmodel/strokes/compoundstroke.h"
#include "pickupstage.h"
#include "support/glfixture.h"

#include <QApplication>
#include <QDataStream>
#include <QTest>

#include <cstdio>

using namespace Model;
using namespace TestSupport;

namespace {

struct Options
{
    quint64 seed = 0; ///< 0 for those of every run
    int rounds = 30;
};
Options options;

constexpr int lines = 12;

/// What has to come back to the last bit.
struct State
{
    QString step; ///< what has led here
    QImage image;
    QByteArray strokes;
    QTransform place;
    bool floats;
};

QByteArray bytesOf(const CompoundStroke &strokes)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    strokes.write(stream);
    return bytes;
}

State stateOf(const PickUpStage &stage, const QString &step)
{
    return {step, stage.image(), bytesOf(stage.drawing().strokes()), stage.selection().transform().paperToContent(),
            !stage.selection().isNull()};
}

QString differenceOf(const QImage &one, const QImage &other)
{
    int count = 0;
    int worst = 0;
    QRect where;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const int difference = std::abs(one.constScanLine(y)[x] - other.constScanLine(y)[x]);
            if (difference == 0)
                continue;
            ++count;
            worst = std::max(worst, difference);
            where |= QRect(x, y, 1, 1);
        }
    }
    return QStringLiteral("%1 pixels differ by up to %2 within %3,%4 %5x%6")
        .arg(count)
        .arg(worst)
        .arg(where.x())
        .arg(where.y())
        .arg(where.width())
        .arg(where.height());
}

/// What is other in \a found; empty if nothing is.
QString difference(const State &expected, const State &found)
{
    if (found.image != expected.image)
        return differenceOf(expected.image, found.image);
    if (found.strokes != expected.strokes)
        return QStringLiteral("other strokes, %1 bytes for %2").arg(found.strokes.size()).arg(expected.strokes.size());
    if (found.floats != expected.floats || found.place != expected.place)
        return QStringLiteral("another selection floats, or elsewhere");
    return {};
}

QTransform around(QPointF pivot, const QTransform &transform)
{
    return QTransform::fromTranslate(-pivot.x(), -pivot.y()) * transform *
           QTransform::fromTranslate(pivot.x(), pivot.y());
}

/// Edits one drawing, and remembers all its states.
class Walk
{
public:
    explicit Walk(quint64 seed);

    /// \return what went wrong; empty if nothing did.
    QString run();
    [[nodiscard]] int steps() const { return int(m_states.size()) - 1; }

private:
    void round();
    void remember(const QString &step);
    [[nodiscard]] QString madeAnew() const;
    QString goBack();
    QString goForth();

    RandomNumbers m_random;
    PickUpStage m_stage;
    QList<State> m_states; ///< that at i is the one with i steps on the stack
    QString m_problem;     ///< of the first step after which the image is not what the strokes make
};

Walk::Walk(quint64 seed) : m_random(seed)
{
    m_stage.addLines(m_random, lines);
    // Everything is to be undone, not only the last 50 steps.
    m_stage.stack().setUndoLimit(0);
    m_states.append(stateOf(m_stage, QStringLiteral("the start")));
}

void Walk::remember(const QString &step)
{
    // What could not be done left no step.
    if (m_stage.stack().index() == m_states.size() - 1)
        return;
    m_states.append(stateOf(m_stage, step));
    if (options.seed != 0)
        std::printf("%d. %s: %d strokes\n", steps(), qPrintable(step), m_stage.drawing().strokes().recursiveCount());
    const QString problem = m_problem.isEmpty() ? madeAnew() : QString();
    if (!problem.isEmpty())
        m_problem = QStringLiteral("step %1 (%2): made anew, %3").arg(steps()).arg(step, problem);
}

// The image has been made part by part; made in one go it must be the same.
QString Walk::madeAnew() const
{
    const auto copy = std::static_pointer_cast<StrokeDrawing>(m_stage.drawing().clone());
    copy->rebuild(QRect(QPoint(0, 0), pickUpFrame));
    const QImage anew = copy->isEmpty() ? m_stage.image() : copy->image();
    return anew == m_stage.image() ? QString() : differenceOf(m_stage.image(), anew);
}

void Walk::round()
{
    const bool isBlank = m_stage.drawing().isEmpty();
    if (isBlank || m_random.chance(20)) {
        m_stage.draw(randomLine(m_random));
        remember(QStringLiteral("drawn"));
    }
    // Every cut across a line leaves it in both parts, so that without a collapse now and then the walk takes hours.
    const bool collapses = m_stage.drawing().strokes().recursiveCount() > 120 || m_random.chance(10);
    const bool whole = m_random.chance(5);
    const bool cut = whole || m_random.chance(85);
    bool isPickedUp = false;
    // Many a lasso encircles nothing.
    for (int tries = 0; tries < 10 && !isPickedUp; ++tries)
        isPickedUp = m_stage.pickUp(whole ? QPainterPath() : randomLasso(m_random), cut, collapses);
    if (!isPickedUp)
        return;
    remember(QStringLiteral("%1 picked up%2").arg(cut ? "cut and" : "", collapses ? ", collapsed" : ""));
    FloatingSelection::Transform place = m_stage.selection().transform();
    place.translation *= QTransform::fromTranslate(m_random.between(-60, 60), m_random.between(-500, 500) / 10.0);
    m_stage.place(place);
    remember(QStringLiteral("moved"));
    if (m_random.chance(60)) {
        const int degrees = m_random.between(-180, 180);
        place.rotation *= around(place.pivot, QTransform().rotate(degrees));
        m_stage.place(place);
        remember(QStringLiteral("turned by %1").arg(degrees));
    }
    if (m_random.chance(50)) {
        const double x = m_random.between(70, 150) / 100.0;
        const double y = m_random.chance(50) ? x : m_random.between(70, 150) / 100.0;
        place.scale *= around(place.pivot, QTransform::fromScale(x, y));
        m_stage.place(place);
        remember(QStringLiteral("scaled by %1, %2").arg(x).arg(y));
    }
    if (m_random.chance(5)) {
        m_stage.drop();
        remember(QStringLiteral("dropped"));
        return;
    }
    m_stage.stamp();
    remember(QStringLiteral("stamped"));
}

QString Walk::goBack()
{
    for (qsizetype i = m_states.size() - 2; i >= 0; --i) {
        m_stage.stack().undo();
        const QString problem = difference(m_states.at(i), stateOf(m_stage, QString()));
        if (!problem.isEmpty())
            return QStringLiteral("step %1 undone (%2): %3").arg(i + 1).arg(m_states.at(i + 1).step, problem);
    }
    return {};
}

QString Walk::goForth()
{
    for (qsizetype i = 1; i < m_states.size(); ++i) {
        m_stage.stack().redo();
        const QString problem = difference(m_states.at(i), stateOf(m_stage, QString()));
        if (!problem.isEmpty())
            return QStringLiteral("step %1 redone (%2): %3").arg(i).arg(m_states.at(i).step, problem);
    }
    return {};
}

QString Walk::run()
{
    for (int i = 0; i < options.rounds; ++i)
        round();
    QString problem = m_problem;
    if (problem.isEmpty())
        problem = goBack();
    if (problem.isEmpty())
        problem = goForth();
    // What was done again goes back by other records than what was done first.
    if (problem.isEmpty())
        problem = goBack();
    return problem;
}

} // namespace

class tst_PickUpWalk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(startRenderer(pickUpFrame)); }
    void everyStepGoesBackAndForthExactly_data();
    void everyStepGoesBackAndForthExactly();
};

void tst_PickUpWalk::everyStepGoesBackAndForthExactly_data()
{
    QTest::addColumn<quint64>("seed");
    if (options.seed != 0) {
        QTest::addRow("seed %lld", qint64(options.seed)) << options.seed;
        return;
    }
    for (quint64 seed = 1; seed <= 6; ++seed)
        QTest::addRow("seed %d", int(seed)) << seed;
}

void tst_PickUpWalk::everyStepGoesBackAndForthExactly()
{
    QFETCH(quint64, seed);
    Walk walk(seed);
    const QString problem = walk.run();
    QVERIFY2(problem.isEmpty(), qPrintable(QStringLiteral("tst_pickup_walk --seed %1: %2").arg(seed).arg(problem)));
    QVERIFY2(walk.steps() > 2 * options.rounds, "hardly a step was taken");
}

/// Takes our own options out of \a arguments, so that QTest sees only its own.
static bool readOptions(QStringList &arguments)
{
    bool good = true;
    const auto take = [&](const QString &name, quint64 value) {
        const qsizetype at = arguments.indexOf(name);
        if (at < 0)
            return value;
        bool isNumber = false;
        const quint64 number = arguments.value(at + 1).toULongLong(&isNumber);
        good = good && isNumber && number >= 1;
        arguments.remove(at, std::min<qsizetype>(2, arguments.size() - at));
        return number;
    };
    options.seed = take(QStringLiteral("--seed"), options.seed);
    options.rounds = int(take(QStringLiteral("--rounds"), quint64(options.rounds)));
    return good;
}

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QStringList arguments = QApplication::arguments();
    if (!readOptions(arguments)) {
        std::fprintf(stderr, "tst_pickup_walk: the options want numbers from 1\n");
        return 2;
    }
    tst_PickUpWalk test;
    return QTest::qExec(&test, arguments);
}

#include "tst_pickup_walk.moc"
