// How long a user waits from starting the program to the first painted window with a sheet in it.

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <benchmark/benchmark.h>

namespace {

/// The screen's middle, where the sheet lies once the window is painted; black until then.
QRgb middleOfTheScreen()
{
    QScreen *screen = QGuiApplication::primaryScreen();
    const QPoint middle = screen->geometry().center();
    return screen->grabWindow(0, middle.x(), middle.y(), 1, 1).toImage().pixel(0, 0);
}

void startToFirstPaintedSheet(benchmark::State &state)
{
    const QRgb paper = qRgb(255, 255, 255);
    for (auto _ : state) {
        QProcess program;
        QElapsedTimer timer;
        timer.start();
        program.start(QStringLiteral(MIRELLE_PROGRAM), QStringList());
        while (middleOfTheScreen() != paper && timer.elapsed() < 20000)
            QThread::msleep(1);
        state.SetIterationTime(double(timer.nsecsElapsed()) * 1e-9);
        program.kill();
        program.waitForFinished();
        while (middleOfTheScreen() == paper)
            QThread::msleep(1);
    }
}
BENCHMARK(startToFirstPaintedSheet)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10)->Repetitions(3);

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
