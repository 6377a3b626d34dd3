// Renders the window icon's sizes: render-icon LARGE.svg SMALL.svg FOLDER writes mr-icon_16.png to mr-icon_1024.png.
// To be run after a change of the drawings; its results are kept with the sources.

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QTextStream>

int main(int argc, char *argv[])
{
    if (argc != 4) {
        QTextStream(stderr) << "usage: render-icon LARGE.svg SMALL.svg FOLDER" << Qt::endl;
        return 2;
    }
    QSvgRenderer large(QString::fromLocal8Bit(argv[1]));
    QSvgRenderer small(QString::fromLocal8Bit(argv[2]));
    const QDir folder(QString::fromLocal8Bit(argv[3]));
    if (!large.isValid() || !small.isValid()) {
        QTextStream(stderr) << "render-icon: a drawing cannot be read" << Qt::endl;
        return 1;
    }
    constexpr int largestSimple = 32; // above it the full drawing holds
    for (const int size : {16, 32, 64, 128, 256, 512, 1024}) {
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        (size <= largestSimple ? small : large).render(&painter, QRectF(0, 0, size, size));
        painter.end();
        const QString path = folder.filePath(QStringLiteral("mr-icon_%1.png").arg(size));
        if (!image.save(path, "PNG", 0)) {
            QTextStream(stderr) << "render-icon: cannot write " << QDir::toNativeSeparators(path) << Qt::endl;
            return 1;
        }
    }
    return 0;
}
