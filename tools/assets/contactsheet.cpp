// Shows drawings for looking at: make-contact-sheet [options] OUT.png FILE.svg|FOLDER...
//
// Each drawing stands under its file's name, once for each size and ground. Runs on the offscreen platform unless
// another is set; the build target contact-sheet makes the sheets of all our drawings.

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QTextStream>

#include <algorithm>

namespace {

constexpr int gap = 4;
constexpr int captionHeight = 14;
constexpr int leastCellWidth = 160; // a caption needs it
const QColor pageColour(255, 255, 255);

/// What is on a sheet and how.
struct Layout
{
    QList<int> sides;      ///< longest sides of the drawings, in pixels of the drawing
    QList<QColor> grounds; ///< one row in each cell for each
    int enlarge = 1;       ///< how many pixels of the sheet a pixel of a drawing covers in each direction
    int columns = 5;       ///< cells in a row

    /// How large one cell is, its caption and its gaps included.
    QSize cell() const
    {
        int width = gap;
        for (const int side : sides)
            width += side * enlarge + gap;
        const int largest = *std::max_element(sides.begin(), sides.end()) * enlarge;
        const int rows = static_cast<int>(grounds.size());
        return {std::max(width, leastCellWidth) + gap, captionHeight + rows * (largest + 2 * gap) + gap};
    }
};

/// \a drawing in a square of \a side pixels, its longest side filling it.
QImage rendered(QSvgRenderer &drawing, int side)
{
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QRectF place(QPointF(), drawing.viewBoxF().size().scaled(side, side, Qt::KeepAspectRatio));
    place.moveCenter(QRectF(image.rect()).center());
    drawing.render(&painter, place);
    return image;
}

void paintCell(QPainter &painter, const QString &file, QPoint corner, const Layout &layout)
{
    QSvgRenderer drawing(file);
    if (!drawing.isValid())
        QTextStream(stderr) << "make-contact-sheet: cannot read " << QDir::toNativeSeparators(file) << Qt::endl;
    const QSize cell = layout.cell();
    painter.setPen(Qt::black);
    painter.drawText(QRect(corner, QSize(cell.width() - gap, captionHeight)), Qt::AlignVCenter,
                     QFileInfo(file).completeBaseName());
    const int largest = *std::max_element(layout.sides.begin(), layout.sides.end()) * layout.enlarge;
    QRect row(corner + QPoint(0, captionHeight), QSize(cell.width() - gap, largest + 2 * gap));
    for (const QColor &ground : layout.grounds) {
        painter.fillRect(row, ground);
        int x = row.left() + gap;
        for (const int side : layout.sides) {
            const QSize size(side * layout.enlarge, side * layout.enlarge);
            painter.drawImage(QRect(QPoint(x, row.top() + gap), size), rendered(drawing, side));
            x += size.width() + gap;
        }
        row.translate(0, row.height());
    }
}

QStringList drawingsAt(const QStringList &places)
{
    QStringList files;
    for (const QString &place : places) {
        if (!QFileInfo(place).isDir()) {
            files.append(place);
            continue;
        }
        const QDir folder(place);
        for (const QString &name : folder.entryList({QStringLiteral("*.svg")}, QDir::Files, QDir::Name))
            files.append(folder.filePath(name));
    }
    return files;
}

/// The layout that the options ask for; without sides or grounds if one of them cannot be read.
Layout layoutFrom(const QCommandLineParser &parser)
{
    Layout layout;
    for (const QString &side : parser.value(QStringLiteral("sizes")).split(u',')) {
        const int pixels = side.toInt();
        if (pixels < 1 || pixels > 1024)
            return {};
        layout.sides.append(pixels);
    }
    for (const QString &ground : parser.value(QStringLiteral("grounds")).split(u',')) {
        if (!QColor::isValidColor(ground))
            return {};
        layout.grounds.append(QColor(ground));
    }
    layout.enlarge = std::clamp(parser.value(QStringLiteral("enlarge")).toInt(), 1, 32);
    layout.columns = std::clamp(parser.value(QStringLiteral("columns")).toInt(), 1, 64);
    return layout;
}

} // namespace

int main(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    // The grounds are a light and a dark panel of the program's chrome.
    parser.addOptions(
        {{QStringLiteral("sizes"), QStringLiteral("Sides in pixels."), QStringLiteral("n,n..."),
          QStringLiteral("16,32,48")},
         {QStringLiteral("grounds"), QStringLiteral("Colours to draw on."), QStringLiteral("name,..."),
          QStringLiteral("#ddd8d5,#4c4844")},
         {QStringLiteral("enlarge"), QStringLiteral("Show pixels n times as large."), QStringLiteral("n"),
          QStringLiteral("1")},
         {QStringLiteral("columns"), QStringLiteral("Drawings in a row."), QStringLiteral("n"), QStringLiteral("8")}});
    parser.addPositionalArgument(QStringLiteral("OUT.png"), QStringLiteral("The sheet."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Drawings or folders of them."));
    parser.process(application);

    const QStringList arguments = parser.positionalArguments();
    const QStringList files = drawingsAt(arguments.mid(1));
    const Layout layout = layoutFrom(parser);
    if (files.isEmpty() || layout.sides.isEmpty() || layout.grounds.isEmpty()) {
        QTextStream(stderr) << parser.helpText();
        return 2;
    }
    const int count = static_cast<int>(files.size());
    const QSize cell = layout.cell();
    QImage sheet(std::min(layout.columns, count) * cell.width() + gap,
                 (count + layout.columns - 1) / layout.columns * cell.height() + gap, QImage::Format_RGB32);
    sheet.fill(pageColour);
    QPainter painter(&sheet);
    QFont font = painter.font();
    font.setPixelSize(captionHeight - 4);
    painter.setFont(font);
    for (int i = 0; i < count; ++i) {
        const QPoint corner(i % layout.columns * cell.width(), i / layout.columns * cell.height());
        paintCell(painter, files[i], corner + QPoint(gap, gap), layout);
    }
    painter.end();
    return QDir().mkpath(QFileInfo(arguments.first()).path()) && sheet.save(arguments.first()) ? 0 : 1;
}
