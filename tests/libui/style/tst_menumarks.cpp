#include "libui/style/menumarks.h"

#include "libui/style/chromepalette.h"
#include "libui/style/mrproxystyle.h"

#include <QMenu>
#include <QPainter>
#include <QStyleOption>
#include <QTest>

#include <cmath>
#include <memory>

namespace {

/// Relative luminance, 0 for black to 1 for white.
double luminance(QColor color)
{
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// An entry's mark as the style paints it for a menu, on the menu's ground.
QImage painted(QStyle::PrimitiveElement element, int side, QStyle::State state)
{
    const UI::MRProxyStyle style;
    QMenu menu;
    menu.setProperty("Menu Marks", true);
    QStyleOption option;
    option.palette = UI::chromePalette();
    option.rect = QRect(4, 6, side, side);
    option.state = state;
    QImage image(side + 8, side + 12, QImage::Format_RGB32);
    image.fill(option.palette.color(QPalette::Window));
    QPainter painter(&image);
    style.drawPrimitive(element, &option, &painter, &menu);
    return image;
}

/// Where \a image differs clearly from its ground.
QRect extent(const QImage &image)
{
    QRect rect;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (std::abs(qGray(image.pixel(x, y)) - qGray(image.pixel(0, 0))) > 30)
                rect |= QRect(x, y, 1, 1);
        }
    }
    return rect;
}

} // namespace

class tst_MenuMarks : public QObject
{
    Q_OBJECT

private slots:
    void marksFillTheirRectangles_data();
    void marksFillTheirRectangles();
    void arrowsPointAway();
    void uncheckedBoxIsSeen_data();
    void uncheckedBoxIsSeen();
    void checkedBoxHoldsAMark();
    void elsewhereTheBaseStylePaints();
};

void tst_MenuMarks::marksFillTheirRectangles_data()
{
    QTest::addColumn<QStyle::PrimitiveElement>("element");
    QTest::addColumn<int>("side");
    for (const int side : {9, 12, 14, 18, 28}) {
        QTest::addRow("arrow, %d", side) << QStyle::PE_IndicatorArrowRight << side;
        QTest::addRow("arrow to the left, %d", side) << QStyle::PE_IndicatorArrowLeft << side;
        QTest::addRow("box, %d", side) << QStyle::PE_IndicatorCheckBox << side;
    }
}

void tst_MenuMarks::marksFillTheirRectangles()
{
    QFETCH(QStyle::PrimitiveElement, element);
    QFETCH(int, side);
    const QRect rect = extent(painted(element, side, QStyle::State_Enabled | QStyle::State_Off));
    QVERIFY(QRect(4, 6, side, side).contains(rect));
    QVERIFY2(rect.height() >= side - 2, qPrintable(QString::number(rect.height())));
}

void tst_MenuMarks::arrowsPointAway()
{
    const QImage right = painted(QStyle::PE_IndicatorArrowRight, 16, QStyle::State_Enabled);
    const QImage left = painted(QStyle::PE_IndicatorArrowLeft, 16, QStyle::State_Enabled);
    QCOMPARE(extent(right.copy(10, 0, 14, 28)).center().y(), 13);
    QVERIFY(extent(right.copy(4, 0, 6, 28)).height() > extent(right.copy(12, 0, 6, 28)).height() + 4);
    QVERIFY(extent(left.copy(14, 0, 6, 28)).height() > extent(left.copy(6, 0, 6, 28)).height() + 4);
}

void tst_MenuMarks::uncheckedBoxIsSeen_data()
{
    QTest::addColumn<QStyle::State>("state");
    QTest::addRow("plain") << QStyle::State(QStyle::State_Enabled | QStyle::State_Off);
    QTest::addRow("under the pointer") << QStyle::State(QStyle::State_Enabled | QStyle::State_Off |
                                                        QStyle::State_Selected);
    QTest::addRow("disabled") << QStyle::State(QStyle::State_Off);
}

void tst_MenuMarks::uncheckedBoxIsSeen()
{
    QFETCH(QStyle::State, state);
    const QImage image = painted(QStyle::PE_IndicatorCheckBox, 14, state);
    double brightest = 0.0;
    for (int x = 0; x < image.width(); ++x)
        brightest = std::max(brightest, luminance(image.pixelColor(x, 13)));
    // What has to be told from its ground, and is no text, should have a contrast of 3.
    const double found = (brightest + 0.05) / (luminance(image.pixelColor(0, 0)) + 0.05);
    QVERIFY2(found >= 3.0, qPrintable(QString::number(found)));
}

void tst_MenuMarks::checkedBoxHoldsAMark()
{
    const QImage off = painted(QStyle::PE_IndicatorCheckBox, 14, QStyle::State_Enabled | QStyle::State_Off);
    const QImage on = painted(QStyle::PE_IndicatorCheckBox, 14, QStyle::State_Enabled | QStyle::State_On);
    const QRect within(7, 9, 8, 8);
    QVERIFY(extent(off.copy(within)).isNull());
    QVERIFY(extent(on.copy(within)).width() >= 5);
}

void tst_MenuMarks::elsewhereTheBaseStylePaints()
{
    const UI::MRProxyStyle style;
    QStyleOptionButton option;
    option.palette = UI::chromePalette();
    option.rect = QRect(4, 6, 14, 14);
    option.state = QStyle::State_Enabled | QStyle::State_On;
    QImage images[2];
    for (QImage &image : images) {
        image = QImage(24, 24, QImage::Format_RGB32);
        image.fill(Qt::gray);
    }
    QPainter first(&images[0]);
    style.drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &first, nullptr);
    QPainter second(&images[1]);
    style.baseStyle()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &second, nullptr);
    QCOMPARE(images[0], images[1]);
}

QTEST_MAIN(tst_MenuMarks)
#include "tst_menumarks.moc"
