#include "libui/style/colors.h"

#include <QTest>

using namespace UI;

class tst_Colors : public QObject
{
    Q_OBJECT

private slots:
    void coloursAreAsAgreed_data();
    void coloursAreAsAgreed();
};

void tst_Colors::coloursAreAsAgreed_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<QList<int>>("channels");
    const auto row = [](const char *name, const QColor &color, const QList<int> &channels) {
        QTest::newRow(name) << color << channels;
    };
    row("floating panel", Colors::floatingPanel, {45, 41, 38, 170});
    row("controls bar", Colors::controlsBar, {45, 41, 38, 191});
    row("hairline", Colors::hairline, {60, 56, 52, 255});
    row("raised band, top", Colors::raisedBandTop, {100, 96, 92, 255});
    row("raised band, bottom", Colors::raisedBandBottom, {116, 112, 108, 255});
    row("recessed band", Colors::recessedBand, {92, 88, 84, 255});
    row("light hairline", Colors::lightHairline, {132, 128, 124, 255});
    row("light panel", Colors::lightPanel, {221, 216, 213, 255});
    row("heading shadow", Colors::headingShadow, {43, 41, 39, 128});
    row("section heading", Colors::sectionHeading, {151, 147, 143, 255});
    row("overlay heading", Colors::overlayHeading, {57, 57, 57, 255});
    row("overlay ground", Colors::overlayGround, {65, 61, 58, 255});
    row("sheet bar, top", Colors::sheetBarTop, {106, 102, 98, 255});
    row("sheet bar, bottom", Colors::sheetBarBottom, {86, 82, 79, 255});
    row("sheet bar, top edge", Colors::sheetBarTopEdge, {113, 109, 105, 255});
    row("sheet side bar", Colors::sheetSideBar, {115, 112, 108, 255});
    row("sheet side bar, edge", Colors::sheetSideBarEdge, {122, 118, 114, 255});
    row("sheet bar, handle", Colors::sheetBarHandle, {0, 0, 0, 64});
    row("sheet shadow", Colors::sheetShadow, {0, 0, 0, 67});
    row("sheet shadow, middle", Colors::sheetShadowMiddle, {0, 0, 0, 15});
    row("sheet shadow, end", Colors::sheetShadowEnd, {0, 0, 0, 0});
    row("section, pressed edge", Colors::pressedSectionEdge, {64, 64, 64, 255});
    row("section, current edge", Colors::currentSectionEdge, {80, 80, 80, 255});
    row("slim bar", Colors::slimBar, {43, 41, 39, 255});
    row("layer rename field", Colors::layerRenameField, {120, 117, 113, 255});
}

void tst_Colors::coloursAreAsAgreed()
{
    QFETCH(QColor, color);
    QFETCH(QList<int>, channels);
    const QList<int> found{color.red(), color.green(), color.blue(), color.alpha()};
    QCOMPARE(found, channels);
}

QTEST_GUILESS_MAIN(tst_Colors)
#include "tst_colors.moc"
