#include "libui/style/mrproxystyle.h"

#include "libui/style/colors.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QStyleFactory>
#include <QStyleOption>
#include <QTabBar>
#include <QTest>
#include <QToolButton>

#include <cmath>
#include <memory>

using MakeWidget = QWidget *(*)();
Q_DECLARE_METATYPE(MakeWidget)

class tst_MRProxyStyle : public QObject
{
    Q_OBJECT

private slots:
    void widgetsWithoutTagGetTheBaseStyle_data();
    void widgetsWithoutTagGetTheBaseStyle();
    void tagsThatAreFalseCountAsNone_data();
    void tagsThatAreFalseCountAsNone();
    void tagsMeantForOtherWidgetsChangeNothing_data();
    void tagsMeantForOtherWidgetsChangeNothing();
    void nothingNeedsAWidgetOrAnOption();
    void layerRenameFieldIsARoundedRectangle();
    void ownScrollBarsNeverFadeAway_data();
    void ownScrollBarsNeverFadeAway();
    void clearGrooveIsPaintedOverWhatLiesBehind();
    void checkBoxWithMenuMarksGrowsWithItsFont();
};

namespace {

constexpr const char *tags[] = {"X-Sheet ScrollBar", "ActionsList ScrollBar", "X-Sheet Header", "X-Sheet Footer",
                                "X-Sheet layer rename"};

QWidget *makeScrollBar(Qt::Orientation orientation)
{
    auto *bar = new QScrollBar(orientation);
    bar->setRange(0, 300);
    bar->setPageStep(100);
    bar->setValue(40);
    return bar;
}

QWidget *makeHeader()
{
    auto *header = new QHeaderView(Qt::Horizontal);
    header->setModel(new QStandardItemModel(1, 3, header));
    return header;
}

struct Kind
{
    const char *name;
    MakeWidget make;
};

// Widgets without a caret or an animation: these would differ from one picture to the next by themselves.
const Kind kinds[] = {
    {"vertical scroll bar", [] { return makeScrollBar(Qt::Vertical); }},
    {"horizontal scroll bar", [] { return makeScrollBar(Qt::Horizontal); }},
    {"header", makeHeader},
    {"line edit", []() -> QWidget * { return new QLineEdit(QStringLiteral("text")); }},
    {"push button", []() -> QWidget * { return new QPushButton(QStringLiteral("&Button")); }},
    {"tool button", []() -> QWidget * { return new QToolButton; }},
    {"check box", []() -> QWidget * { return new QCheckBox(QStringLiteral("Check")); }},
    {"radio button", []() -> QWidget * { return new QRadioButton(QStringLiteral("Radio")); }},
    {"combo box", []() -> QWidget * { return new QComboBox; }},
    {"spin box", []() -> QWidget * { return new QSpinBox; }},
    {"slider", []() -> QWidget * { return new QSlider(Qt::Horizontal); }},
    {"progress bar", []() -> QWidget * { return new QProgressBar; }},
    {"group box", []() -> QWidget * { return new QGroupBox(QStringLiteral("Group")); }},
    {"tab bar", []() -> QWidget * { return new QTabBar; }},
    {"list", []() -> QWidget * { return new QListWidget; }},
    {"menu bar", []() -> QWidget * { return new QMenuBar; }},
};

void addKinds()
{
    QTest::addColumn<MakeWidget>("make");
    for (const Kind &kind : kinds)
        QTest::addRow("%s", kind.name) << kind.make;
}

QImage picture(QWidget &widget, QStyle *style)
{
    widget.setStyle(style);
    for (QWidget *child : widget.findChildren<QWidget *>())
        child->setStyle(style);
    widget.resize(160, 60);
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    widget.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

/// The widget's picture and size by both styles are the same.
void compareWithBase(QWidget &widget)
{
    UI::MRProxyStyle ours;
    const std::unique_ptr<QStyle> base(QStyleFactory::create(ours.baseStyle()->name()));
    QVERIFY(base);
    const QImage expected = picture(widget, base.get());
    const QSize expectedSize = widget.sizeHint();
    QVERIFY(expected != QImage(expected.size(), expected.format()));
    QCOMPARE(picture(widget, &ours), expected);
    QCOMPARE(widget.sizeHint(), expectedSize);
    for (const auto metric : {QStyle::PM_ScrollBarExtent, QStyle::PM_ScrollBarSliderMin, QStyle::PM_HeaderMargin})
        QCOMPARE(ours.pixelMetric(metric, nullptr, &widget), base->pixelMetric(metric, nullptr, &widget));
    QCOMPARE(ours.styleHint(QStyle::SH_ScrollBar_Transient, nullptr, &widget),
             base->styleHint(QStyle::SH_ScrollBar_Transient, nullptr, &widget));
}

} // namespace

void tst_MRProxyStyle::widgetsWithoutTagGetTheBaseStyle_data()
{
    addKinds();
}

void tst_MRProxyStyle::widgetsWithoutTagGetTheBaseStyle()
{
    QFETCH(MakeWidget, make);
    const std::unique_ptr<QWidget> widget(make());
    compareWithBase(*widget);
}

void tst_MRProxyStyle::tagsThatAreFalseCountAsNone_data()
{
    addKinds();
}

void tst_MRProxyStyle::tagsThatAreFalseCountAsNone()
{
    QFETCH(MakeWidget, make);
    const std::unique_ptr<QWidget> widget(make());
    for (const char *tag : tags)
        widget->setProperty(tag, false);
    compareWithBase(*widget);
}

void tst_MRProxyStyle::tagsMeantForOtherWidgetsChangeNothing_data()
{
    QTest::addColumn<QByteArray>("tag");
    for (const char *tag : tags)
        QTest::addRow("%s", tag) << QByteArray(tag);
}

void tst_MRProxyStyle::tagsMeantForOtherWidgetsChangeNothing()
{
    QFETCH(QByteArray, tag);
    QPushButton button(QStringLiteral("Button"));
    button.setProperty(tag, true);
    UI::MRProxyStyle ours;
    const std::unique_ptr<QStyle> base(QStyleFactory::create(ours.baseStyle()->name()));
    const QImage expected = picture(button, base.get());
    QCOMPARE(picture(button, &ours), expected);
}

void tst_MRProxyStyle::nothingNeedsAWidgetOrAnOption()
{
    UI::MRProxyStyle ours;
    const std::unique_ptr<QStyle> base(QStyleFactory::create(ours.baseStyle()->name()));
    QCOMPARE(ours.pixelMetric(QStyle::PM_ScrollBarExtent), base->pixelMetric(QStyle::PM_ScrollBarExtent));
    QCOMPARE(ours.styleHint(QStyle::SH_ScrollBar_Transient), base->styleHint(QStyle::SH_ScrollBar_Transient));

    QStyleOptionHeader section;
    section.rect = QRect(0, 0, 80, 30);
    section.state = QStyle::State_Enabled;
    QStyleOptionSlider bar;
    bar.rect = QRect(0, 0, 20, 200);
    bar.orientation = Qt::Vertical;
    bar.maximum = 100;
    const auto draw = [&](const QStyle &style) {
        QImage image(100, 200, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        style.drawControl(QStyle::CE_HeaderSection, &section, &painter);
        style.drawComplexControl(QStyle::CC_ScrollBar, &bar, &painter);
        return image;
    };
    QCOMPARE(draw(ours), draw(*base));
    QCOMPARE(ours.subElementRect(QStyle::SE_HeaderLabel, &section, nullptr),
             base->subElementRect(QStyle::SE_HeaderLabel, &section, nullptr));
    QCOMPARE(ours.subControlRect(QStyle::CC_ScrollBar, &bar, QStyle::SC_ScrollBarSlider, nullptr),
             base->subControlRect(QStyle::CC_ScrollBar, &bar, QStyle::SC_ScrollBarSlider, nullptr));
    QCOMPARE(ours.hitTestComplexControl(QStyle::CC_ScrollBar, &bar, QPoint(10, 3), nullptr),
             base->hitTestComplexControl(QStyle::CC_ScrollBar, &bar, QPoint(10, 3), nullptr));
    QCOMPARE(ours.sizeFromContents(QStyle::CT_ScrollBar, &bar, QSize(10, 50), nullptr),
             base->sizeFromContents(QStyle::CT_ScrollBar, &bar, QSize(10, 50), nullptr));
    QScrollBar tagged;
    tagged.setProperty("X-Sheet ScrollBar", true);
    QCOMPARE(ours.pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &tagged), 18);
    QCOMPARE(ours.pixelMetric(QStyle::PM_ScrollBarSliderMin, nullptr, &tagged), 24);
}

void tst_MRProxyStyle::layerRenameFieldIsARoundedRectangle()
{
    UI::MRProxyStyle style;
    QLineEdit edit;
    edit.setProperty("X-Sheet layer rename", true);
    const QImage image = picture(edit, &style);
    // "#787571", with its corners of radius 4 cut.
    const QColor field(120, 117, 113);
    const QPoint last = QRect({}, image.size()).bottomRight();
    for (const QPoint &inside : {QPoint(80, 0), QPoint(80, 30), QPoint(80, last.y()), QPoint(0, 30), QPoint(2, 2)})
        QCOMPARE(image.pixelColor(inside), field);
    for (const QPoint &corner : {QPoint(0, 0), QPoint(last.x(), 0), QPoint(0, last.y()), last})
        QVERIFY(image.pixelColor(corner) != field);
    // What a circle of radius 4 leaves of its quarter square.
    double uncovered = 0;
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 5; ++x)
            uncovered += 1.0 - image.pixelColor(x, y).alphaF();
    }
    const double expected = 4.0 * 4.0 * (1.0 - M_PI / 4.0);
    QVERIFY2(std::abs(uncovered - expected) < 0.3, qPrintable(QString::number(uncovered)));
}

void tst_MRProxyStyle::ownScrollBarsNeverFadeAway_data()
{
    QTest::addColumn<QByteArray>("tag");
    QTest::addColumn<int>("fades");
    QTest::addRow("sheet") << QByteArray("X-Sheet ScrollBar") << 0;
    QTest::addRow("list") << QByteArray("ActionsList ScrollBar") << 0;
    QTest::addRow("other") << QByteArray("X-Sheet Header") << 1;
}

void tst_MRProxyStyle::ownScrollBarsNeverFadeAway()
{
    class FadingStyle : public QProxyStyle
    {
    public:
        int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                      QStyleHintReturn *returnData) const override
        {
            return hint == SH_ScrollBar_Transient ? 1 : QProxyStyle::styleHint(hint, option, widget, returnData);
        }
    };
    QFETCH(QByteArray, tag);
    UI::MRProxyStyle ours;
    ours.setBaseStyle(new FadingStyle);
    QScrollBar bar;
    bar.setProperty(tag, true);
    QTEST(ours.styleHint(QStyle::SH_ScrollBar_Transient, nullptr, &bar), "fades");
}

/// Were the bar taken for opaque, nothing would wipe the handle away where it was before.
void tst_MRProxyStyle::clearGrooveIsPaintedOverWhatLiesBehind()
{
    // This base leaves the bars opaque, as they make themselves.
    QStyle *base = QStyleFactory::create(QStringLiteral("Windows"));
    QVERIFY(base);
    UI::MRProxyStyle ours;
    ours.setBaseStyle(base);
    QScrollBar slim;
    slim.setProperty("ActionsList ScrollBar", true);
    QScrollBar plain;
    for (QScrollBar *bar : {&slim, &plain}) {
        bar->setStyle(&ours);
        bar->ensurePolished();
    }
    QVERIFY(!slim.testAttribute(Qt::WA_OpaquePaintEvent));
    QVERIFY(plain.testAttribute(Qt::WA_OpaquePaintEvent));
}

void tst_MRProxyStyle::checkBoxWithMenuMarksGrowsWithItsFont()
{
    const UI::MRProxyStyle ours;
    QCheckBox marked(QStringLiteral("Text"));
    marked.setProperty("Menu Marks", true);
    QFont font;
    for (const int pixels : {12, 24}) {
        font.setPixelSize(pixels);
        marked.setFont(font);
        // As high as its tallest letters, which are somewhat less than the font's size to somewhat more.
        const int side = ours.pixelMetric(QStyle::PM_IndicatorWidth, nullptr, &marked);
        QCOMPARE(ours.pixelMetric(QStyle::PM_IndicatorHeight, nullptr, &marked), side);
        QVERIFY2(side > pixels * 0.7 && side < pixels * 1.3, QByteArray::number(side).constData());
    }
}

QTEST_MAIN(tst_MRProxyStyle)
#include "tst_mrproxystyle.moc"
