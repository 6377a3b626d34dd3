// Renders a drawing as a picture of a dialog: render-graphic DRAWING.svg PIXELS PICTURE.png makes PIXELS of each unit
// of the drawing's size.

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QTextStream>

int main(int argc, char *argv[])
{
    constexpr int mostPixels = 8;
    const int pixels = argc == 4 ? QString::fromLocal8Bit(argv[2]).toInt() : 0;
    if (pixels < 1 || pixels > mostPixels) {
        QTextStream(stderr) << "usage: render-graphic DRAWING.svg PIXELS PICTURE.png" << Qt::endl;
        return 2;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    if (!drawing.isValid()) {
        QTextStream(stderr) << "render-graphic: the drawing cannot be read" << Qt::endl;
        return 1;
    }
    QImage picture(drawing.defaultSize() * pixels, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    drawing.render(&painter);
    painter.end();
    const QString path = QString::fromLocal8Bit(argv[3]);
    if (!picture.save(path, "PNG")) {
        QTextStream(stderr) << "render-graphic: cannot write " << QDir::toNativeSeparators(path) << Qt::endl;
        return 1;
    }
    return 0;
}
