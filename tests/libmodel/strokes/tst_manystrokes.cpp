#include "coverageprobes.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "strokemaking.h"
#include "support/cputimer.h"
#include "support/randomnumbers.h"

#include <QtTest>

using namespace Model;

/// Compounds with a great many children, to which one is added or from which one is taken.
class tst_ManyStrokes : public QObject
{
    Q_OBJECT

private slots:
    void boundsAreThoseOfWhatIsThereAfterEveryStep();
    void whatComesOnTopOfAKeepIsNotLimitedByIt();
    void knownPictureIsForgotten();
    void takingTheOutermostOffShrinksTheBounds();
    void costOfAStepDoesNotGrowWithTheDrawing();

private:
    TestPen m_pen{{5, 5, 1, 1}};
    TestEraser m_eraser{{5, 5, 1, 1}};

    static std::unique_ptr<Stroke> bitmap(QRect rect) { return std::make_unique<BitmapStroke>(QImage(), rect); }

    std::unique_ptr<Stroke> anyStroke(TestSupport::RandomNumbers &random) const
    {
        const QPoint at(random.between(-200, 600), random.between(-200, 500));
        const QRect rect(at, QSize(random.between(1, 90), random.between(1, 90)));
        switch (random.between(0, 3)) {
        case 0:
            return straightStroke(m_eraser, at, at + QPoint(30, 3));
        case 1: {
            auto group = std::make_unique<CompoundStroke>();
            group->append(bitmap(rect));
            group->setTransform(QTransform::fromTranslate(7, -3));
            return group;
        }
        default:
            return bitmap(rect);
        }
    }

    /// Around all children but erasers, in their own coordinates.
    static QRect boundsOfChildren(const CompoundStroke &compound)
    {
        QRect bounds;
        for (int i = 0; i < compound.count(); ++i) {
            if (compound.at(i).type() != Stroke::Type::Single)
                bounds |= compound.at(i).boundingRect();
        }
        return bounds;
    }
};

void tst_ManyStrokes::boundsAreThoseOfWhatIsThereAfterEveryStep()
{
    for (unsigned seed = 1; seed <= 40; ++seed) {
        TestSupport::RandomNumbers random(seed);
        CompoundStroke compound;
        for (int step = 0; step < 150; ++step) {
            const bool wasEmpty = compound.isEmpty();
            if (random.chance(60))
                QVERIFY(compound.append(anyStroke(random)));
            else
                QCOMPARE(compound.removeLast() == nullptr, wasEmpty);
            QCOMPARE(compound.boundingRect(), boundsOfChildren(compound));
        }
        while (!compound.isEmpty()) {
            QVERIFY(compound.removeLast());
            QCOMPARE(compound.boundingRect(), boundsOfChildren(compound));
        }
        QVERIFY(compound.boundingRect().isNull());
    }
}

void tst_ManyStrokes::whatComesOnTopOfAKeepIsNotLimitedByIt()
{
    CompoundStroke compound;
    // Radius 5 and a pixel of rim.
    compound.append(straightStroke(m_pen, {0, 40}, {200, 40}));
    compound.setKeep(rectPath(20, 20, 50, 50));
    QCOMPARE(compound.boundingRect(), QRect(QPoint(20, 34), QPoint(69, 45)));
    compound.append(bitmap({40, 40, 100, 10}));
    QCOMPARE(compound.boundingRect(), QRect(QPoint(20, 34), QPoint(139, 49)));
    QVERIFY(compound.removeLast());
    QCOMPARE(compound.boundingRect(), QRect(QPoint(20, 34), QPoint(69, 45)));
}

void tst_ManyStrokes::knownPictureIsForgotten()
{
    CompoundStroke compound;
    compound.append(bitmap({0, 0, 100, 100}));
    const QImage picture = blankCoverage({100, 100});
    compound.setPicture(picture, picture.rect());
    compound.append(bitmap({20, 20, 5, 5}));
    QVERIFY(compound.picture().isNull());
    compound.setPicture(picture, picture.rect());
    QVERIFY(compound.removeLast());
    QVERIFY(compound.picture().isNull());
}

void tst_ManyStrokes::takingTheOutermostOffShrinksTheBounds()
{
    const QRect inner(10, 10, 20, 20);
    // One that reaches further on a single side, and one that shares a side with the other.
    for (const QRect outer : {QRect(5, 15, 10, 5), QRect(25, 15, 10, 5), QRect(15, 5, 5, 10), QRect(15, 25, 5, 10),
                              QRect(10, 12, 5, 5), QRect(12, 12, 5, 5), QRect(0, 0, 100, 100)}) {
        CompoundStroke compound;
        compound.append(bitmap(inner));
        compound.append(bitmap(outer));
        QCOMPARE(compound.boundingRect(), inner | outer);
        QVERIFY(compound.removeLast());
        QCOMPARE(compound.boundingRect(), inner);
    }
}

void tst_ManyStrokes::costOfAStepDoesNotGrowWithTheDrawing()
{
    constexpr int many = 60'000;
    constexpr qint64 mostMilliseconds = 2'000; // looking at all of them each time takes some ten times as long
    TestSupport::RandomNumbers random(7);
    CompoundStroke compound;
    const TestSupport::CpuTimer timer;
    for (int i = 0; i < many; ++i)
        QVERIFY(compound.append(anyStroke(random)));
    for (int i = 0; i < many; ++i)
        QVERIFY(compound.removeLast());
    QVERIFY2(timer.milliseconds() < mostMilliseconds, qPrintable(QString::number(timer.milliseconds())));
}

QTEST_MAIN(tst_ManyStrokes)
#include "tst_manystrokes.moc"
