// Where a drawing has ink, and where a change may have touched it.

#include "coverageprobes.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/inktiles.h"
#include "strokedrawingfixture.h"
#include "support/glfixture.h"

#include <QDataStream>
#include <QtTest>

#include <random>

using namespace Model;

class tst_StrokeDrawingInk : public StrokeDrawingFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void inkedRectHoldsAllInk();
    void mapHoldsAllInk();
    void changesStayInsideTheTouchedRect();
};

void tst_StrokeDrawingInk::inkedRectHoldsAllInk()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({380, 40}, {450, 90}));
    drawing.addStroke(pen({100, 100}, {150, 120}));
    QVERIFY(drawing.inkedRect().contains(inkOf(drawing.image())));
    QVERIFY(QRect(QPoint(0, 0), frame).contains(drawing.inkedRect()));
    QVERIFY(drawing.inkedRect().left() > 80);
    drawing.resize({200, 150}, MR::FitMode::FitModeStretch);
    QVERIFY(drawing.inkedRect().contains(inkOf(drawing.image())));
}

void tst_StrokeDrawingInk::mapHoldsAllInk()
{
    constexpr quint32 seed = 20111;
    std::mt19937 random(seed);
    const auto below = [&](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    const auto part = [&] { return QRect(below(450) - 20, below(330) - 20, 1 + below(90), 1 + below(60)); };
    auto drawing = std::make_shared<StrokeDrawing>(frame);
    QTransform formerTransform;
    for (int step = 0; step < 300; ++step) {
        switch (below(12)) {
        case 0:
        case 1:
            drawing->removeLastStroke();
            break;
        case 2: {
            const QRect cut = part();
            drawing->cutPath(rectPath(cut.x(), cut.y(), cut.width(), cut.height()));
            break;
        }
        case 3:
            formerTransform = drawing->strokes().transform();
            drawing->resize(below(2) == 0 ? frame : QSize(257, 190), MR::FitMode::FitModeStretch);
            break;
        case 4: {
            QByteArray bytes;
            QDataStream out(&bytes, QIODevice::WriteOnly);
            QVERIFY(drawing->write(out));
            QDataStream in(bytes);
            QVERIFY(drawing->read(in));
            break;
        }
        case 5:
            drawing = std::dynamic_pointer_cast<StrokeDrawing>(drawing->clone());
            break;
        case 6:
            drawing->restoreTransform(formerTransform);
            break;
        case 7:
            drawing->addStroke(eraser(part().topLeft(), part().center()));
            break;
        default: {
            const QRect rect = part();
            QImage image(rect.size(), QImage::Format_Alpha8);
            image.fill(1 + below(255));
            drawing->addStroke(std::make_unique<BitmapStroke>(image, rect));
        }
        }
        if (below(3) != 0)
            continue;
        const QImage &image = drawing->image();
        QImage mapped(image.size(), QImage::Format_Alpha8);
        mapped.fill(0);
        drawing->ink().forEachRun(image.rect(), [&](QRect run) {
            for (int y = run.top(); y <= run.bottom(); ++y)
                std::fill_n(mapped.scanLine(y) + run.left(), run.width(), uchar(1));
        });
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.constScanLine(y)[x] != 0 && mapped.constScanLine(y)[x] == 0)
                    QFAIL(qPrintable(QString("seed %1, step %2 at %3, %4").arg(seed).arg(step).arg(x).arg(y)));
            }
        }
    }
}

void tst_StrokeDrawingInk::changesStayInsideTheTouchedRect()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    drawing.rebuild(QRect(QPoint(0, 0), frame));
    const auto isChangedOutside = [&](const QImage &before) {
        for (int y = 0; y < frame.height(); ++y) {
            for (int x = 0; x < frame.width(); ++x) {
                if (!drawing.touchedRect().contains(x, y) &&
                    coverageAt(before, x, y) != coverageAt(drawing.image(), x, y))
                    return true;
            }
        }
        return false;
    };
    for (int step = 0; step < 60; ++step) {
        const double scale = 0.3 + 0.043 * step;
        auto scaled = std::make_unique<CompoundStroke>();
        if (step % 2 == 0)
            scaled->append(pen({40.3, 30.6 + step}, {110.2, 30.6 + step}));
        else
            scaled->append(drawnStroke(m_pencil, frame, {40.3, 60.5}, {90.2, 60.5}));
        scaled->setTransform(QTransform::fromScale(scale, scale));
        const QImage before = drawing.image().copy();
        QVERIFY(drawing.addStroke(std::move(scaled)));
        QVERIFY(!isChangedOutside(before));
        QVERIFY(QRect(QPoint(0, 0), frame).contains(drawing.touchedRect()));
        const QImage after = drawing.image().copy();
        QVERIFY(drawing.removeLastStroke());
        QVERIFY(!isChangedOutside(after));
    }
}

QTEST_MAIN(tst_StrokeDrawingInk)
#include "tst_strokedrawing_ink.moc"
