// Writes the computed pictures: make-assets FOLDER. Needs no display; the build calls it.

#include "papertextures.h"
#include "softnesscurves.h"
#include "storedpng.h"

#include <QDir>
#include <QTextStream>

namespace {

bool report(bool written, const QString &path)
{
    if (!written)
        QTextStream(stderr) << "make-assets: cannot write " << QDir::toNativeSeparators(path) << Qt::endl;
    return written;
}

bool write(const QImage &image, const QString &path)
{
    constexpr int smallest = 0; // Qt's PNG writer compresses the harder the lower the quality
    return report(image.save(path, "PNG", smallest), path);
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2) {
        QTextStream(stderr) << "usage: make-assets FOLDER" << Qt::endl;
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    if (!folder.mkpath(QStringLiteral("."))) {
        QTextStream(stderr) << "make-assets: cannot make " << folder.path() << Qt::endl;
        return 1;
    }
    bool written = true;
    for (const Assets::SoftnessCurve &curve : Assets::softnessCurves()) {
        const QString name = QStringLiteral("SoftnessCurve-%1.png").arg(curve.name);
        written = write(Assets::softnessImage(curve), folder.filePath(name)) && written;
    }
    // The grain is read at every start; being noise, it would hardly compress and take five times as long to load.
    const QString grain = folder.filePath(QStringLiteral("MRtexture.png"));
    written = report(Assets::writeStoredPng(Assets::paperGrain(), grain), grain) && written;
    written = write(Assets::deskLinen(), folder.filePath(QStringLiteral("linenBG.png"))) && written;
    return written ? 0 : 1;
}
