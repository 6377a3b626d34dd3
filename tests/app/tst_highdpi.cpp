#include "mainwindowfixture.h"

#include "libmodel/base/settings.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/viewtransform.h"

#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QScreen>
#include <QTest>

/// The window on screens of several pixels per logical pixel, and at the four sizes of the interface.
///
/// The program runs itself once for each ratio: a process has only one. With MIRELLE_SCREENSHOTS set to a folder,
/// pictures of the windows are left there.
class tst_HighDpi : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void screenHasTheRatio();
    void nothingOverlapsAtAnyScale_data();
    void nothingOverlapsAtAnyScale();
    void menusFitTheirEntries_data();
    void menusFitTheirEntries();
    void levelOneIsADevicePixelToAPaperPixel_data();
    void levelOneIsADevicePixelToAPaperPixel();
    void inkFallsUnderTheCursor();
    void cursorIsAsLargeAsItsRatioAsks_data();
    void cursorIsAsLargeAsItsRatioAsks();
    void ringOfADrawingToolLiesAboutItsHotSpot();
    void cleanup();

private:
    void show(int percent);
    void putSheetOnThePixelGrid();
};

namespace {

/// Set for the processes that run the tests themselves.
constexpr const char *ratioVariable = "QT_SCALE_FACTOR";
constexpr const char *ratios[] = {"1", "1.5", "2"};
constexpr int squareSide = 8;

double ratio()
{
    return qEnvironmentVariable(ratioVariable).toDouble();
}

void addScales()
{
    QTest::addColumn<int>("percent");
    for (const int percent : {75, 100, 125, 150})
        QTest::addRow("%d percent", percent) << percent;
}

void keepPicture(QWidget &widget, const QString &name)
{
    const QString folder = qEnvironmentVariable("MIRELLE_SCREENSHOTS");
    if (folder.isEmpty())
        return;
    const QString file = QStringLiteral("highdpi-%1-%2.png").arg(qEnvironmentVariable(ratioVariable), name);
    QVERIFY(widget.grab().save(QDir(folder).filePath(file)));
}

QString withoutMnemonics(const QString &text)
{
    QString result;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text.at(at) == QLatin1Char('&') && at + 1 < text.size())
            ++at;
        result += text.at(at);
    }
    return result;
}

/// A stroke whose coverage is a checkerboard over all of a frame of \a size.
std::unique_ptr<Model::SingleStroke> checkers(QSize size)
{
    QImage image(size, QImage::Format_Alpha8);
    for (int y = 0; y < size.height(); ++y) {
        uchar *line = image.scanLine(y);
        for (int x = 0; x < size.width(); ++x)
            line[x] = (x / squareSide + y / squareSide) % 2 ? 255 : 0;
    }
    auto stroke = std::make_unique<Model::SingleStroke>(size, Model::ToolManager::instance()->currentTool());
    stroke->addSample({.point = QPointF(0, 0), .pressure = 1.0, .timestamp = 0});
    stroke->addSample({.point = QPointF(size.width(), size.height()), .pressure = 1.0, .timestamp = 10});
    stroke->finish();
    stroke->setImage(image);
    return stroke;
}

/// Ink is blue on white, a marker's is faint; the lines across the sheet are fainter.
bool isInk(QRgb pixel)
{
    return qRed(pixel) < 220 && qRed(pixel) < qBlue(pixel) - 20;
}

} // namespace

void tst_HighDpi::cleanup()
{
    show(100);
}

/// Shows the window at \a percent, small enough for the screen at each ratio.
void tst_HighDpi::show(int percent)
{
    Model::Settings::instance()->setUiScalePercent(percent);
    m_window->setGeometry(20, 40, 900, 520);
    QTRY_COMPARE(m_window->size(), QSize(900, 520));
    for (int round = 0; round < 3; ++round)
        QCoreApplication::processEvents();
}

/// Sizes the window so that the centred sheet begins with a whole device pixel.
void tst_HighDpi::putSheetOnThePixelGrid()
{
    const auto isWhole = [](double pixels) { return std::abs(pixels - std::round(pixels)) < 1e-3; };
    for (int height = 520; height < 540; ++height) {
        m_window->resize(900, height);
        // With a ratio that is no whole number not every size can be had.
        if (!QTest::qWaitFor([this, height] { return m_window->height() == height; }, 200))
            continue;
        QCoreApplication::processEvents();
        paper()->resetView();
        const QPointF corner = paper()->view().paperToWidget().map(QPointF()) * ratio();
        if (isWhole(corner.x()) && isWhole(corner.y()))
            return;
    }
    QFAIL("no size puts the sheet on whole pixels");
}

void tst_HighDpi::screenHasTheRatio()
{
    QCOMPARE(m_window->devicePixelRatioF(), ratio());
    QCOMPARE(paper()->devicePixelRatioF(), ratio());
}

void tst_HighDpi::nothingOverlapsAtAnyScale_data()
{
    addScales();
}

void tst_HighDpi::nothingOverlapsAtAnyScale()
{
    QFETCH(int, percent);
    show(percent);
    QMenuBar *bar = m_window->menuBar();
    keepPicture(*m_window, QString::number(percent));

    // What the bar has no room for goes into a menu behind an arrow.
    const auto *overflow = bar->findChild<QWidget *>(QStringLiteral("qt_menubar_ext_button"));
    QVERIFY(!overflow || !overflow->isVisible());
    QRect before(0, 0, 0, bar->height());
    for (QAction *title : bar->actions()) {
        const QRect place = bar->actionGeometry(title);
        QVERIFY2(bar->rect().contains(place), qPrintable(title->text()));
        QVERIFY2(place.left() > before.right(), qPrintable(title->text()));
        const QFontMetrics metrics = bar->fontMetrics();
        QVERIFY2(place.width() >= metrics.horizontalAdvance(withoutMnemonics(title->text())),
                 qPrintable(title->text()));
        QVERIFY2(place.height() >= metrics.height(), qPrintable(title->text()));
        before = place;
    }
    const QRect paperPlace(paper()->mapTo(m_window.get(), QPoint()), paper()->size());
    QVERIFY(m_window->rect().contains(paperPlace));
    QVERIFY(!paperPlace.intersects(bar->geometry()));
    QCOMPARE(paperPlace.top(), bar->geometry().bottom() + 1);
    QCOMPARE(paperPlace.bottom(), m_window->rect().bottom());
    QCOMPARE(paperPlace.width(), m_window->width());
}

void tst_HighDpi::menusFitTheirEntries_data()
{
    addScales();
}

void tst_HighDpi::menusFitTheirEntries()
{
    QFETCH(int, percent);
    show(percent);
    for (QAction *title : m_window->menuBar()->actions()) {
        QMenu *menu = title->menu();
        const QSize size = menu->sizeHint();
        menu->popup(m_window->mapToGlobal(QPoint(20, 20)));
        const QRect available = m_window->screen()->availableGeometry();
        QVERIFY2(available.contains(menu->geometry()), qPrintable(title->text()));
        // A menu too high for the screen scrolls; it then has more to show than it is high.
        QVERIFY2(menu->height() >= size.height() || size.height() > available.height(), qPrintable(title->text()));
        const QFontMetrics metrics = menu->fontMetrics();
        for (QAction *entry : menu->actions()) {
            if (!entry->isSeparator())
                QVERIFY2(menu->actionGeometry(entry).height() >= metrics.height(), qPrintable(entry->text()));
            const int text = metrics.horizontalAdvance(withoutMnemonics(entry->text())) +
                             metrics.horizontalAdvance(entry->shortcut().toString(QKeySequence::NativeText));
            QVERIFY2(menu->width() >= text, qPrintable(entry->text()));
        }
        if (title == m_window->menuBar()->actions().at(1))
            keepPicture(*menu, QStringLiteral("menu-%1").arg(percent));
        menu->close();
    }
}

void tst_HighDpi::levelOneIsADevicePixelToAPaperPixel_data()
{
    addScales();
}

void tst_HighDpi::levelOneIsADevicePixelToAPaperPixel()
{
    QFETCH(int, percent);
    show(percent);
    putSheetOnThePixelGrid();
    QCOMPARE(paper()->zoomLevel(), 1.0);
    QVERIFY(scene()->addStroke(0, 1, checkers(scene()->frameSize())));
    QCoreApplication::processEvents();
    const QImage shown = paper()->grab().toImage();
    QCOMPARE(shown.devicePixelRatio(), ratio());

    // Along a line through the middle, away from the sheet's diagonals, every square is eight device pixels long.
    const int y = shown.height() / 2 + 60;
    QList<int> edges;
    for (int x = shown.width() / 4; x < shown.width() / 4 + 40 * squareSide; ++x) {
        if (isInk(shown.pixel(x, y)) != isInk(shown.pixel(x - 1, y)))
            edges << x;
    }
    keepPicture(*paper(), QStringLiteral("checkers-%1").arg(percent));
    QVERIFY2(edges.size() >= 38, qPrintable(QString::number(edges.size())));
    for (qsizetype edge = 1; edge < edges.size(); ++edge)
        QCOMPARE(edges.at(edge) - edges.at(edge - 1), squareSide);
    // They are sharp: no pixel is a mixture. Where the lines across the sheet pass, they tint it a little.
    for (int x = edges.first(); x < edges.last(); ++x) {
        const QColor color = shown.pixelColor(x, y);
        QVERIFY2(color.red() < 50 || color.red() > 235, qPrintable(color.name()));
    }
}

void tst_HighDpi::inkFallsUnderTheCursor()
{
    show(100);
    paper()->resetView();
    const QPoint from = paperPoint(-101, 37);
    const QPoint to = paperPoint(99, 37);
    press(from);
    moveTo(paperPoint(0, 37));
    moveTo(to);
    release(to);
    QCoreApplication::processEvents();
    keepPicture(*paper(), QStringLiteral("ink"));
    const QImage shown = paper()->grab().toImage();
    // The middle of the ink over the middle of the line.
    const int x = qRound(paperPoint(-40, 0).x() * ratio());
    const int expected = qRound((from.y()) * ratio());
    int first = -1;
    int last = -1;
    for (int y = expected - 40; y < expected + 40; ++y) {
        if (isInk(shown.pixel(x, y))) {
            first = first < 0 ? y : first;
            last = y;
        }
    }
    QVERIFY(first >= 0);
    QVERIFY2(std::abs((first + last) / 2.0 - expected) <= 1.5,
             qPrintable(QStringLiteral("%1 to %2, not about %3").arg(first).arg(last).arg(expected)));
}

void tst_HighDpi::cursorIsAsLargeAsItsRatioAsks_data()
{
    using Type = Model::Tool::Type;
    QTest::addColumn<Type>("type");
    QTest::addRow("pen") << Type::Pen;
    QTest::addRow("eraser") << Type::Eraser;
    QTest::addRow("hand") << Type::Hand;
    QTest::addRow("zoom") << Type::Zoom;
    QTest::addRow("rotate") << Type::Rotate;
    QTest::addRow("lasso") << Type::Lasso;
}

void tst_HighDpi::cursorIsAsLargeAsItsRatioAsks()
{
    QFETCH(Model::Tool::Type, type);
    Model::ToolManager::instance()->setCurrentTool(type, 0);
    const QCursor wanted = Model::ToolManager::instance()->cursor();
    const QCursor shown = paper()->cursor();
    QVERIFY(!shown.pixmap().isNull());
    // What X11 shows pixel by pixel is as large as the ratio makes it, and its hot spot counts those pixels.
    const QSizeF size = wanted.pixmap().deviceIndependentSize() * ratio();
    QVERIFY(std::abs(shown.pixmap().width() - size.width()) <= 1.0);
    QVERIFY(std::abs(shown.pixmap().height() - size.height()) <= 1.0);
    QVERIFY(std::abs(shown.hotSpot().x() - wanted.hotSpot().x() * ratio()) <= 1.0);
    QVERIFY(std::abs(shown.hotSpot().y() - wanted.hotSpot().y() * ratio()) <= 1.0);
    QVERIFY(shown.pixmap().rect().contains(shown.hotSpot()));
}

void tst_HighDpi::ringOfADrawingToolLiesAboutItsHotSpot()
{
    const QCursor shown = paper()->cursor();
    const QImage image = shown.pixmap().toImage();
    QRect drawn;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 0)
                drawn |= QRect(x, y, 1, 1);
        }
    }
    const QPointF middle = QRectF(drawn).center();
    QVERIFY2(std::abs(middle.x() - shown.hotSpot().x()) <= 1.5, qPrintable(QString::number(middle.x())));
    QVERIFY2(std::abs(middle.y() - shown.hotSpot().y()) <= 1.5, qPrintable(QString::number(middle.y())));
}

/// Runs this program with each ratio. \return how many of the runs failed.
static int runWithAllRatios(const QString &program, const QStringList &arguments)
{
    int failures = 0;
    for (const char *const value : ratios) {
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QLatin1String(ratioVariable), QLatin1String(value));
        child.setProcessEnvironment(environment);
        child.setProcessChannelMode(QProcess::ForwardedChannels);
        child.start(program, arguments);
        const bool passed =
            child.waitForFinished(-1) && child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0;
        if (!passed) {
            qWarning("failed at %s pixels per logical pixel", value);
            ++failures;
        }
    }
    return failures;
}

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet(ratioVariable)) {
        const QCoreApplication application(argc, argv);
        return runWithAllRatios(QCoreApplication::applicationFilePath(), QCoreApplication::arguments().mid(1));
    }
    QApplication application(argc, argv);
    tst_HighDpi test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_highdpi.moc"
