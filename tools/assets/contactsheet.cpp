// Shows drawings for looking at: contact-sheet OUT.png FILE.svg... draws each at 1x and 3x on a dark, a middle and a
// light ground. Runs on the offscreen platform unless another is set.

#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QTextStream>

#include <algorithm>
#include <array>

namespace {

constexpr int columns = 5;
constexpr int margin = 6;
constexpr int captionHeight = 14;
constexpr int zoom = 3;
constexpr std::array grounds{QColor(45, 41, 38), QColor(151, 147, 143), QColor(255, 255, 255)};

/// One drawing's place on the sheet: for each ground the drawing as it is and enlarged, under its name.
void paintEntry(QPainter &painter, QSvgRenderer &drawing, const QString &name, QPoint at, int side)
{
    painter.setPen(Qt::black);
    painter.drawText(QRect(at, QSize(side * static_cast<int>(grounds.size()), captionHeight)), Qt::AlignVCenter, name);
    const QSizeF size = drawing.viewBoxF().size();
    QPoint corner = at + QPoint(0, captionHeight);
    for (const QColor &ground : grounds) {
        painter.fillRect(QRect(corner, QSize(side, side * (zoom + 1) / zoom)), ground);
        drawing.render(&painter, QRectF(corner, size));
        drawing.render(&painter, QRectF(corner + QPointF(0, size.height() + 2), size * zoom));
        corner.rx() += side;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() < 3) {
        QTextStream(stderr) << "usage: contact-sheet OUT.png FILE.svg..." << Qt::endl;
        return 2;
    }
    const QStringList files = arguments.mid(2);
    double largest = 1.0;
    for (const QString &file : files) {
        const QSizeF size = QSvgRenderer(file).viewBoxF().size();
        largest = std::max({largest, size.width(), size.height()});
    }
    const int side = static_cast<int>(largest * zoom) + margin;
    const QSize cell(side * static_cast<int>(grounds.size()) + margin,
                     side * (zoom + 1) / zoom + captionHeight + margin);
    const int rows = (static_cast<int>(files.size()) + columns - 1) / columns;
    QImage sheet(std::min(columns, static_cast<int>(files.size())) * cell.width(), rows * cell.height(),
                 QImage::Format_RGB32);
    sheet.fill(QColor(221, 216, 213));
    QPainter painter(&sheet);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < files.size(); ++i) {
        QSvgRenderer drawing(files[i]);
        if (!drawing.isValid())
            QTextStream(stderr) << "contact-sheet: cannot read " << files[i] << Qt::endl;
        const QPoint at((i % columns) * cell.width(), (i / columns) * cell.height());
        paintEntry(painter, drawing, QFileInfo(files[i]).completeBaseName(), at, side);
    }
    painter.end();
    return sheet.save(arguments[1]) ? 0 : 1;
}
