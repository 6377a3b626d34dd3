#include "libui/style/mrproxystyle.h"

#include "libui/style/colors.h"

#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QStyleFactory>
#include <QStyleOption>
#include <QTest>

class tst_MRProxyStyle : public QObject
{
    Q_OBJECT

private slots:
    void widgetsWithoutTagGetTheBaseStyle_data();
    void widgetsWithoutTagGetTheBaseStyle();
    void slimBarIsOneRoundedHandle();
    void slimBarHandleFollowsTheValue();
    void slimBarWithoutRangeShowsNothing();
    void layerRenameFieldIsARoundedRectangle();
};

namespace {

const QSize barSize(20, 200);

std::unique_ptr<QScrollBar> bar(QStyle *style, bool tagged, int maximum, int value)
{
    auto scrollBar = std::make_unique<QScrollBar>(Qt::Vertical);
    scrollBar->setProperty("ActionsList ScrollBar", tagged);
    scrollBar->setStyle(style);
    scrollBar->setRange(0, maximum);
    scrollBar->setPageStep(100);
    scrollBar->setValue(value);
    scrollBar->resize(barSize);
    return scrollBar;
}

QRect sliderRect(const QScrollBar &scrollBar, QStyle::SubControl part)
{
    QStyleOptionSlider option;
    option.initFrom(&scrollBar);
    option.orientation = scrollBar.orientation();
    option.minimum = scrollBar.minimum();
    option.maximum = scrollBar.maximum();
    option.pageStep = scrollBar.pageStep();
    option.sliderPosition = option.sliderValue = scrollBar.value();
    option.rect = scrollBar.rect();
    return scrollBar.style()->subControlRect(QStyle::CC_ScrollBar, &option, part, &scrollBar);
}

QImage picture(QWidget &widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    widget.render(&image, {}, {}, QWidget::RenderFlags());
    return image;
}

} // namespace

void tst_MRProxyStyle::widgetsWithoutTagGetTheBaseStyle_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"scroll bar", "line edit", "false tag"})
        QTest::addRow("%s", kind) << QString::fromLatin1(kind);
}

void tst_MRProxyStyle::widgetsWithoutTagGetTheBaseStyle()
{
    QFETCH(QString, kind);
    UI::MRProxyStyle ours;
    const std::unique_ptr<QStyle> base(QStyleFactory::create(ours.baseStyle()->name()));
    QVERIFY(base);
    if (kind == QLatin1String("line edit")) {
        QLineEdit edit(QStringLiteral("text"));
        edit.resize(120, 30);
        edit.setStyle(base.get());
        const QImage expected = picture(edit);
        edit.setStyle(&ours);
        QCOMPARE(picture(edit), expected);
        return;
    }
    const auto plain = bar(base.get(), false, 300, 40);
    const auto proxied = bar(&ours, false, 300, 40);
    if (kind == QLatin1String("scroll bar"))
        proxied->setProperty("ActionsList ScrollBar", QVariant());
    QCOMPARE(picture(*proxied), picture(*plain));
    QCOMPARE(proxied->sizeHint(), plain->sizeHint());
    QCOMPARE(ours.pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, proxied.get()),
             base->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, plain.get()));
    for (const auto part : {QStyle::SC_ScrollBarSlider, QStyle::SC_ScrollBarGroove, QStyle::SC_ScrollBarAddLine})
        QCOMPARE(sliderRect(*proxied, part), sliderRect(*plain, part));
}

void tst_MRProxyStyle::slimBarIsOneRoundedHandle()
{
    UI::MRProxyStyle style;
    const auto scrollBar = bar(&style, true, 100, 0);
    QVERIFY(sliderRect(*scrollBar, QStyle::SC_ScrollBarAddLine).isEmpty());
    QVERIFY(sliderRect(*scrollBar, QStyle::SC_ScrollBarSubLine).isEmpty());
    // A page of 100 in a range of 100 more is half the bar.
    QCOMPARE(sliderRect(*scrollBar, QStyle::SC_ScrollBarSlider), QRect(0, 0, 20, 100));
    const QImage image = picture(*scrollBar);
    QCOMPARE(image.pixelColor(10, 50), QColor(43, 41, 39));
    QVERIFY(image.pixelColor(0, 0) != QColor(43, 41, 39));
    QVERIFY(image.pixelColor(10, 150) != QColor(43, 41, 39));
}

void tst_MRProxyStyle::slimBarHandleFollowsTheValue()
{
    UI::MRProxyStyle style;
    QCOMPARE(sliderRect(*bar(&style, true, 100, 100), QStyle::SC_ScrollBarSlider), QRect(0, 100, 20, 100));
    QCOMPARE(sliderRect(*bar(&style, true, 100, 50), QStyle::SC_ScrollBarSlider), QRect(0, 50, 20, 100));
    QCOMPARE(sliderRect(*bar(&style, true, 100, 50), QStyle::SC_ScrollBarSubPage), QRect(0, 0, 20, 50));
    QCOMPARE(sliderRect(*bar(&style, true, 100, 50), QStyle::SC_ScrollBarAddPage), QRect(0, 150, 20, 50));
}

void tst_MRProxyStyle::slimBarWithoutRangeShowsNothing()
{
    UI::MRProxyStyle style;
    const auto scrollBar = bar(&style, true, 0, 0);
    const QImage image = picture(*scrollBar);
    for (int y = 0; y < image.height(); y += 10)
        QVERIFY(image.pixelColor(10, y) != QColor(43, 41, 39));
}

void tst_MRProxyStyle::layerRenameFieldIsARoundedRectangle()
{
    UI::MRProxyStyle style;
    QLineEdit edit;
    edit.setProperty("X-Sheet layer rename", true);
    edit.setStyle(&style);
    edit.resize(120, 30);
    const QImage image = picture(edit);
    QCOMPARE(image.pixelColor(60, 3), UI::Colors::layerRenameField);
    QCOMPARE(image.pixelColor(60, 0), UI::Colors::layerRenameField);
    QVERIFY(image.pixelColor(0, 0) != UI::Colors::layerRenameField);
}

QTEST_MAIN(tst_MRProxyStyle)
#include "tst_mrproxystyle.moc"
