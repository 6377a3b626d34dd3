#include "libui/style/mrproxystyle.h"

#include "libmodel/base/settings.h"
#include "libui/style/applicationfont.h"
#include "libui/style/scrollbarlook.h"
#include "support/isolatedstore.h"

#include <QApplication>
#include <QListWidget>
#include <QPainter>
#include <QScopeGuard>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyleOptionSlider>
#include <QTest>

#include <cmath>
#include <memory>

/// The sheet's bars and the slim ones, by the pixels and rectangles that the style gives real scroll bars.
class tst_ScrollBarLook : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void horizontalSheetBarIsAGradientWithALightTop();
    void verticalSheetBarIsFlatWithALightLeftAndShadows();
    void sheetHandleIsTranslucentAndRounded();
    void sheetHandleHasCornersOfFour();
    void sheetBarPaintsNothingBesideItself_data();
    void sheetBarPaintsNothingBesideItself();
    void sheetHandleIsWhereTheSubControlIs_data();
    void sheetHandleIsWhereTheSubControlIs();
    void verticalSheetBarWithAPageOfItsRangeShowsNoHandle();
    void otherPagesAndBarsShowTheirHandle_data();
    void otherPagesAndBarsShowTheirHandle();
    void sheetBarWithoutRangeShowsNoHandle_data();
    void sheetBarWithoutRangeShowsNoHandle();
    void slimBarIsOneRoundedHandle();
    void slimBarWithoutRangeShowsNothing();
    void barsHaveNoArrowButtons_data();
    void barsHaveNoArrowButtons();
    void handleFollowsTheValue();
    void invertedBarBeginsAtTheFarEnd();
    void handleNeverGetsTooShortToGrasp();
    void handleOfAHugeRangeStaysInside();
    void horizontalHandleStartsAtTheRightWhereWritingDoes();
    void handleCanBeGraspedFromEdgeToEdge();
    void barCanBeDragged();
    void extentFollowsTheScale_data();
    void extentFollowsTheScale();
    void lookFollowsTheScale();
    void shownBarFollowsTheScale();

private:
    std::unique_ptr<IsolatedStore> m_store;
    UI::MRProxyStyle m_style;
};

namespace {

const char *const sheetTag = "X-Sheet ScrollBar";
const char *const slimTag = "ActionsList ScrollBar";

struct Range
{
    int maximum;
    int pageStep;
    int value;
};

/// A bar that tells how it asks its style to draw it.
class Bar : public QScrollBar
{
public:
    using QScrollBar::initStyleOption;
    using QScrollBar::QScrollBar;
};

std::unique_ptr<Bar> bar(QStyle &style, const char *tag, Qt::Orientation orientation, QSize size, Range range)
{
    auto scrollBar = std::make_unique<Bar>(orientation);
    scrollBar->setProperty(tag, true);
    scrollBar->setStyle(&style);
    scrollBar->setRange(0, range.maximum);
    scrollBar->setPageStep(range.pageStep);
    scrollBar->setValue(range.value);
    scrollBar->resize(size);
    return scrollBar;
}

QStyleOptionSlider optionOf(const Bar &scrollBar)
{
    QStyleOptionSlider option;
    scrollBar.initStyleOption(&option);
    return option;
}

QRect partOf(const Bar &scrollBar, QStyle::SubControl part)
{
    const QStyleOptionSlider option = optionOf(scrollBar);
    return scrollBar.style()->subControlRect(QStyle::CC_ScrollBar, &option, part, &scrollBar);
}

QImage picture(QWidget &widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    widget.render(&image, {}, {}, QWidget::RenderFlags());
    return image;
}

/// \a top over the opaque \a ground.
QColor over(QColor ground, QColor top)
{
    const auto mix = [&](int below, int above) { return qRound(below + (above - below) * top.alphaF()); };
    return QColor(mix(ground.red(), top.red()), mix(ground.green(), top.green()), mix(ground.blue(), top.blue()));
}

bool isNear(QColor found, QColor expected, int tolerance)
{
    return std::abs(found.red() - expected.red()) <= tolerance &&
           std::abs(found.green() - expected.green()) <= tolerance &&
           std::abs(found.blue() - expected.blue()) <= tolerance && found.alpha() == 255;
}

#define COMPARE_COLOR(found, expected, tolerance)                                                                      \
    QVERIFY2(isNear(found, expected, tolerance),                                                                       \
             qPrintable((found).name(QColor::HexArgb) + QStringLiteral(" is not ") + (expected).name()))

} // namespace

void tst_ScrollBarLook::init()
{
    m_store = std::make_unique<IsolatedStore>();
}

void tst_ScrollBarLook::cleanup()
{
    Model::Settings::instance()->setUiScalePercent(100);
    m_store.reset();
}

void tst_ScrollBarLook::horizontalSheetBarIsAGradientWithALightTop()
{
    const auto scrollBar = bar(m_style, sheetTag, Qt::Horizontal, {300, 20}, {0, 10, 0});
    const QImage image = picture(*scrollBar);
    for (int x : {0, 150, 299}) {
        COMPARE_COLOR(image.pixelColor(x, 0), QColor(113, 109, 105), 0);
        COMPARE_COLOR(image.pixelColor(x, 1), QColor(113, 109, 105), 0);
        // Of twenty units from (106, 102, 98) to (86, 82, 79) each row is one darker than that above it.
        COMPARE_COLOR(image.pixelColor(x, 2), QColor(104, 100, 96), 1);
        COMPARE_COLOR(image.pixelColor(x, 10), QColor(96, 92, 89), 1);
        COMPARE_COLOR(image.pixelColor(x, 19), QColor(86, 82, 79), 1);
    }
}

void tst_ScrollBarLook::verticalSheetBarIsFlatWithALightLeftAndShadows()
{
    const auto scrollBar = bar(m_style, sheetTag, Qt::Vertical, {20, 200}, {0, 10, 0});
    const QImage image = picture(*scrollBar);
    const QColor ground(115, 112, 108);
    const QColor edge(122, 118, 114);
    for (int y : {40, 100, 160}) {
        COMPARE_COLOR(image.pixelColor(0, y), edge, 0);
        COMPARE_COLOR(image.pixelColor(1, y), edge, 0);
        COMPARE_COLOR(image.pixelColor(2, y), ground, 0);
        COMPARE_COLOR(image.pixelColor(19, y), ground, 0);
    }
    // Alpha 67 at the ends, 15 sixteen pixels inwards, nothing after 32.
    for (int fromTop : {0, 16, 32}) {
        const int alpha = fromTop == 0 ? 67 : fromTop == 16 ? 15 : 0;
        COMPARE_COLOR(image.pixelColor(10, fromTop), over(ground, QColor(0, 0, 0, alpha)), 2);
        COMPARE_COLOR(image.pixelColor(10, 199 - fromTop), over(ground, QColor(0, 0, 0, alpha)), 2);
    }
    COMPARE_COLOR(image.pixelColor(0, 0), over(edge, QColor(0, 0, 0, 67)), 2);
}

void tst_ScrollBarLook::sheetHandleIsTranslucentAndRounded()
{
    const auto scrollBar = bar(m_style, sheetTag, Qt::Vertical, {20, 200}, {300, 100, 150});
    const QImage image = picture(*scrollBar);
    const QRect handle = partOf(*scrollBar, QStyle::SC_ScrollBarSlider);
    const QColor ground(115, 112, 108);
    // A page of 100 in 400 is a quarter of 200 pixels; half way it begins at 75.
    QCOMPARE(handle.top(), 75);
    QCOMPARE(handle.height(), 50);
    COMPARE_COLOR(image.pixelColor(handle.center()), over(ground, QColor(0, 0, 0, 64)), 1);
    COMPARE_COLOR(image.pixelColor(handle.center().x(), handle.top()), over(ground, QColor(0, 0, 0, 64)), 1);
    COMPARE_COLOR(image.pixelColor(handle.center().x(), handle.top() - 1), ground, 0);
    COMPARE_COLOR(image.pixelColor(handle.center().x(), handle.bottom() + 1), ground, 0);
    // Of a corner of radius 4 the outermost pixel stays wholly outside; the arc's middle is 1.17 from the corner.
    COMPARE_COLOR(image.pixelColor(handle.topLeft()), ground, 3);
    COMPARE_COLOR(image.pixelColor(handle.bottomRight()), ground, 3);
    COMPARE_COLOR(image.pixelColor(handle.topLeft() + QPoint(2, 2)), over(ground, QColor(0, 0, 0, 64)), 1);
}

void tst_ScrollBarLook::sheetHandleHasCornersOfFour()
{
    const auto scrollBar = bar(m_style, sheetTag, Qt::Vertical, {20, 200}, {300, 100, 150});
    const QImage image = picture(*scrollBar);
    const QRect handle = partOf(*scrollBar, QStyle::SC_ScrollBarSlider);
    const int ground = 115;
    const int full = image.pixelColor(handle.center()).red();
    double uncovered = 0;
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 5; ++x) {
            const int found = image.pixelColor(handle.topLeft() + QPoint(x, y)).red();
            uncovered += double(found - full) / (ground - full);
        }
    }
    // What a circle of radius 4 leaves of its quarter square.
    const double expected = 4.0 * 4.0 * (1.0 - M_PI / 4.0);
    QVERIFY2(std::abs(uncovered - expected) < 0.3, qPrintable(QString::number(uncovered)));
}

void tst_ScrollBarLook::sheetBarPaintsNothingBesideItself_data()
{
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::addRow("vertical") << Qt::Vertical;
    QTest::addRow("horizontal") << Qt::Horizontal;
}

void tst_ScrollBarLook::sheetBarPaintsNothingBesideItself()
{
    QFETCH(Qt::Orientation, orientation);
    const QSize size = orientation == Qt::Vertical ? QSize(20, 60) : QSize(60, 20);
    const auto scrollBar = bar(m_style, sheetTag, orientation, size, {300, 100, 0});
    QStyleOptionSlider option = optionOf(*scrollBar);
    option.rect.translate(10, 10);
    QImage image(80, 80, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    m_style.drawComplexControl(QStyle::CC_ScrollBar, &option, &painter, scrollBar.get());
    painter.end();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            QCOMPARE(image.pixelColor(x, y).alpha(), option.rect.contains(x, y) ? 255 : 0);
    }
}

void tst_ScrollBarLook::sheetHandleIsWhereTheSubControlIs_data()
{
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::addColumn<int>("value");
    QTest::addRow("vertical, first") << Qt::Vertical << 0;
    QTest::addRow("vertical, last") << Qt::Vertical << 300;
    QTest::addRow("horizontal, first") << Qt::Horizontal << 0;
    QTest::addRow("horizontal, between") << Qt::Horizontal << 77;
}

void tst_ScrollBarLook::sheetHandleIsWhereTheSubControlIs()
{
    QFETCH(Qt::Orientation, orientation);
    QFETCH(int, value);
    const QSize size = orientation == Qt::Vertical ? QSize(20, 200) : QSize(200, 20);
    const auto scrollBar = bar(m_style, sheetTag, orientation, size, {300, 100, value});
    const QImage with = picture(*scrollBar);
    const QRect handle = partOf(*scrollBar, QStyle::SC_ScrollBarSlider);
    scrollBar->setRange(0, 0);
    const QImage without = picture(*scrollBar);
    QRect changed;
    for (int y = 0; y < with.height(); ++y) {
        for (int x = 0; x < with.width(); ++x) {
            if (with.pixel(x, y) != without.pixel(x, y))
                changed |= QRect(x, y, 1, 1);
        }
    }
    QCOMPARE(changed, handle);
}

void tst_ScrollBarLook::verticalSheetBarWithAPageOfItsRangeShowsNoHandle()
{
    const auto scrollBar = bar(m_style, sheetTag, Qt::Vertical, {20, 200}, {100, 100, 50});
    const QImage image = picture(*scrollBar);
    for (int y = 32; y < 168; ++y)
        COMPARE_COLOR(image.pixelColor(10, y), QColor(115, 112, 108), 0);
}

void tst_ScrollBarLook::otherPagesAndBarsShowTheirHandle_data()
{
    QTest::addColumn<QByteArray>("tag");
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::addColumn<int>("pageStep");
    QTest::addRow("less than the range") << QByteArray(sheetTag) << Qt::Vertical << 99;
    QTest::addRow("more than the range") << QByteArray(sheetTag) << Qt::Vertical << 200;
    QTest::addRow("the range, horizontal") << QByteArray(sheetTag) << Qt::Horizontal << 100;
    QTest::addRow("the range, slim") << QByteArray(slimTag) << Qt::Vertical << 100;
}

void tst_ScrollBarLook::otherPagesAndBarsShowTheirHandle()
{
    QFETCH(QByteArray, tag);
    QFETCH(Qt::Orientation, orientation);
    QFETCH(int, pageStep);
    const QSize size = orientation == Qt::Vertical ? QSize(20, 200) : QSize(200, 20);
    const auto scrollBar = bar(m_style, tag, orientation, size, {100, pageStep, 50});
    const QImage with = picture(*scrollBar);
    scrollBar->setRange(0, 0);
    const QPoint middle = scrollBar->rect().center();
    QVERIFY(with.pixelColor(middle) != picture(*scrollBar).pixelColor(middle));
}

void tst_ScrollBarLook::sheetBarWithoutRangeShowsNoHandle_data()
{
    QTest::addColumn<int>("pageStep");
    QTest::addRow("no page") << 0;
    QTest::addRow("a page") << 100;
}

void tst_ScrollBarLook::sheetBarWithoutRangeShowsNoHandle()
{
    QFETCH(int, pageStep);
    const auto vertical = bar(m_style, sheetTag, Qt::Vertical, {20, 200}, {0, pageStep, 0});
    COMPARE_COLOR(picture(*vertical).pixelColor(10, 100), QColor(115, 112, 108), 0);
    const auto horizontal = bar(m_style, sheetTag, Qt::Horizontal, {200, 20}, {0, pageStep, 0});
    COMPARE_COLOR(picture(*horizontal).pixelColor(100, 10), QColor(96, 92, 89), 1);
}

void tst_ScrollBarLook::slimBarIsOneRoundedHandle()
{
    const auto scrollBar = bar(m_style, slimTag, Qt::Vertical, {20, 200}, {100, 100, 0});
    // A page of 100 in a range of 100 more is half the bar.
    QCOMPARE(partOf(*scrollBar, QStyle::SC_ScrollBarSlider), QRect(0, 0, 20, 100));
    const QImage image = picture(*scrollBar);
    QCOMPARE(image.pixelColor(10, 50), QColor(43, 41, 39));
    QCOMPARE(image.pixelColor(10, 1), QColor(43, 41, 39));
    // The radius is half the width: the ends are half circles, and the groove is clear.
    QVERIFY(image.pixelColor(0, 0) != QColor(43, 41, 39));
    QVERIFY(image.pixelColor(2, 2) != QColor(43, 41, 39));
    QCOMPARE(image.pixelColor(4, 4), QColor(43, 41, 39));
    QVERIFY(image.pixelColor(10, 150) != QColor(43, 41, 39));
    // Of a bar that lies on its side it is half the height.
    const QImage lying = picture(*bar(m_style, slimTag, Qt::Horizontal, {200, 20}, {100, 100, 0}));
    QCOMPARE(lying.pixelColor(10, 1), QColor(43, 41, 39));
    QVERIFY(lying.pixelColor(2, 2) != QColor(43, 41, 39));
}

void tst_ScrollBarLook::slimBarWithoutRangeShowsNothing()
{
    const auto scrollBar = bar(m_style, slimTag, Qt::Vertical, {20, 200}, {0, 100, 0});
    const QImage image = picture(*scrollBar);
    for (int y = 0; y < image.height(); y += 10)
        QVERIFY(image.pixelColor(10, y) != QColor(43, 41, 39));
}

void tst_ScrollBarLook::barsHaveNoArrowButtons_data()
{
    QTest::addColumn<QByteArray>("tag");
    QTest::addColumn<Qt::Orientation>("orientation");
    for (const char *tag : {sheetTag, slimTag}) {
        QTest::addRow("%s, vertical", tag) << QByteArray(tag) << Qt::Vertical;
        QTest::addRow("%s, horizontal", tag) << QByteArray(tag) << Qt::Horizontal;
    }
}

void tst_ScrollBarLook::barsHaveNoArrowButtons()
{
    QFETCH(QByteArray, tag);
    QFETCH(Qt::Orientation, orientation);
    const QSize size = orientation == Qt::Vertical ? QSize(20, 200) : QSize(200, 20);
    const auto scrollBar = bar(m_style, tag, orientation, size, {300, 100, 150});
    QVERIFY(partOf(*scrollBar, QStyle::SC_ScrollBarAddLine).isEmpty());
    QVERIFY(partOf(*scrollBar, QStyle::SC_ScrollBarSubLine).isEmpty());
    QCOMPARE(partOf(*scrollBar, QStyle::SC_ScrollBarGroove), scrollBar->rect());
    // The pages fill what the handle leaves.
    const int handle = orientation == Qt::Vertical ? partOf(*scrollBar, QStyle::SC_ScrollBarSlider).height()
                                                   : partOf(*scrollBar, QStyle::SC_ScrollBarSlider).width();
    const QRect before = partOf(*scrollBar, QStyle::SC_ScrollBarSubPage);
    const QRect behind = partOf(*scrollBar, QStyle::SC_ScrollBarAddPage);
    QCOMPARE(orientation == Qt::Vertical ? before.height() + handle + behind.height()
                                         : before.width() + handle + behind.width(),
             200);
    // It may be as short as a handle, where the base style asks for room for two arrows.
    const QSize hint = scrollBar->sizeHint();
    QVERIFY(std::max(hint.width(), hint.height()) <= 24);
}

void tst_ScrollBarLook::handleFollowsTheValue()
{
    const auto at = [this](int value, QStyle::SubControl part) {
        return partOf(*bar(m_style, slimTag, Qt::Vertical, {20, 200}, {100, 100, value}), part);
    };
    QCOMPARE(at(100, QStyle::SC_ScrollBarSlider), QRect(0, 100, 20, 100));
    QCOMPARE(at(50, QStyle::SC_ScrollBarSlider), QRect(0, 50, 20, 100));
    QCOMPARE(at(50, QStyle::SC_ScrollBarSubPage), QRect(0, 0, 20, 50));
    QCOMPARE(at(50, QStyle::SC_ScrollBarAddPage), QRect(0, 150, 20, 50));
}

void tst_ScrollBarLook::invertedBarBeginsAtTheFarEnd()
{
    const auto vertical = bar(m_style, slimTag, Qt::Vertical, {20, 200}, {100, 100, 0});
    vertical->setInvertedAppearance(true);
    QCOMPARE(partOf(*vertical, QStyle::SC_ScrollBarSlider), QRect(0, 100, 20, 100));
    const auto horizontal = bar(m_style, slimTag, Qt::Horizontal, {200, 20}, {100, 100, 0});
    horizontal->setInvertedAppearance(true);
    QCOMPARE(partOf(*horizontal, QStyle::SC_ScrollBarSlider), QRect(100, 0, 100, 20));
    // Turned twice it begins at the left again.
    horizontal->setLayoutDirection(Qt::RightToLeft);
    QCOMPARE(partOf(*horizontal, QStyle::SC_ScrollBarSlider), QRect(0, 0, 100, 20));
}

void tst_ScrollBarLook::handleNeverGetsTooShortToGrasp()
{
    QCOMPARE(partOf(*bar(m_style, slimTag, Qt::Vertical, {20, 200}, {100000, 1, 0}), QStyle::SC_ScrollBarSlider),
             QRect(0, 0, 20, 24));
    QCOMPARE(partOf(*bar(m_style, slimTag, Qt::Vertical, {20, 200}, {100000, 1, 100000}), QStyle::SC_ScrollBarSlider),
             QRect(0, 176, 20, 24));
    // A bar shorter than that is all handle.
    QCOMPARE(partOf(*bar(m_style, slimTag, Qt::Vertical, {20, 10}, {100000, 1, 0}), QStyle::SC_ScrollBarSlider),
             QRect(0, 0, 20, 10));
}

void tst_ScrollBarLook::handleOfAHugeRangeStaysInside()
{
    const int most = std::numeric_limits<int>::max();
    const auto scrollBar = bar(m_style, sheetTag, Qt::Vertical, {20, 200}, {most, most, most});
    const QRect handle = partOf(*scrollBar, QStyle::SC_ScrollBarSlider);
    QCOMPARE(handle.height(), 100);
    QVERIFY(scrollBar->rect().contains(handle));
}

void tst_ScrollBarLook::horizontalHandleStartsAtTheRightWhereWritingDoes()
{
    const auto scrollBar = bar(m_style, slimTag, Qt::Horizontal, {200, 20}, {100, 100, 0});
    scrollBar->setLayoutDirection(Qt::RightToLeft);
    QCOMPARE(partOf(*scrollBar, QStyle::SC_ScrollBarSlider), QRect(100, 0, 100, 20));
}

void tst_ScrollBarLook::handleCanBeGraspedFromEdgeToEdge()
{
    const auto scrollBar = bar(m_style, sheetTag, Qt::Vertical, {20, 200}, {300, 100, 150});
    const auto at = [&](QPoint position) {
        const QStyleOptionSlider option = optionOf(*scrollBar);
        return m_style.hitTestComplexControl(QStyle::CC_ScrollBar, &option, position, scrollBar.get());
    };
    QCOMPARE(at({0, 100}), QStyle::SC_ScrollBarSlider);
    QCOMPARE(at({19, 100}), QStyle::SC_ScrollBarSlider);
    QCOMPARE(at({10, 74}), QStyle::SC_ScrollBarSubPage);
    QCOMPARE(at({10, 125}), QStyle::SC_ScrollBarAddPage);
    QCOMPARE(at({10, 200}), QStyle::SC_None);
    scrollBar->setRange(0, 0);
    QCOMPARE(at({10, 100}), QStyle::SC_ScrollBarGroove);
}

void tst_ScrollBarLook::barCanBeDragged()
{
    const auto scrollBar = bar(m_style, sheetTag, Qt::Vertical, {20, 200}, {300, 100, 0});
    scrollBar->show();
    QTest::mousePress(scrollBar.get(), Qt::LeftButton, {}, {10, 25});
    QTest::mouseMove(scrollBar.get(), {10, 100});
    QMouseEvent move(QEvent::MouseMove, QPointF(10, 100), scrollBar->mapToGlobal(QPointF(10, 100)), Qt::NoButton,
                     Qt::LeftButton, {});
    QCoreApplication::sendEvent(scrollBar.get(), &move);
    QTest::mouseRelease(scrollBar.get(), Qt::LeftButton, {}, {10, 100});
    // 75 of the 150 pixels that the handle has to go.
    QVERIFY2(std::abs(scrollBar->value() - 150) <= 2, qPrintable(QString::number(scrollBar->value())));
}

void tst_ScrollBarLook::extentFollowsTheScale_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<int>("sheetExtent");
    QTest::addColumn<int>("slimExtent");
    QTest::addRow("75") << 75 << 13 << 9;
    QTest::addRow("100") << 100 << 18 << 12;
    QTest::addRow("125") << 125 << 22 << 15;
    QTest::addRow("150") << 150 << 27 << 18;
}

void tst_ScrollBarLook::extentFollowsTheScale()
{
    QFETCH(int, percent);
    QFETCH(int, sheetExtent);
    QFETCH(int, slimExtent);
    Model::Settings::instance()->setUiScalePercent(percent);
    const auto sheetBar = bar(m_style, sheetTag, Qt::Vertical, {20, 200}, {300, 100, 0});
    const auto slimBar = bar(m_style, slimTag, Qt::Horizontal, {200, 20}, {300, 100, 0});
    QCOMPARE(sheetBar->sizeHint().width(), sheetExtent);
    QCOMPARE(slimBar->sizeHint().height(), slimExtent);
}

void tst_ScrollBarLook::lookFollowsTheScale()
{
    Model::Settings::instance()->setUiScalePercent(150);
    const auto scrollBar = bar(m_style, sheetTag, Qt::Vertical, {30, 400}, {100000, 1, 50000});
    // Inset by 4.5 without its fraction, and not shorter than 36.
    const QRect handle = partOf(*scrollBar, QStyle::SC_ScrollBarSlider);
    QCOMPARE(handle, QRect(4, 182, 22, 36));
    // The shadow is 48 long: half way down, at 24, it has an alpha of 15, and at 40 a third of that.
    const QImage image = picture(*scrollBar);
    const QColor ground(115, 112, 108);
    for (int y : {24, 375})
        COMPARE_COLOR(image.pixelColor(15, y), over(ground, QColor(0, 0, 0, 15)), 1);
    for (int y : {40, 359})
        QVERIFY(image.pixelColor(15, y) != ground);
    for (int y : {48, 351})
        COMPARE_COLOR(image.pixelColor(15, y), ground, 0);
}

/// Nothing tells bars of the scale but the application's font, which changes with it.
void tst_ScrollBarLook::shownBarFollowsTheScale()
{
    const QFont before = QApplication::font();
    const auto restore = qScopeGuard([&] { QApplication::setFont(before); });
    const UI::ApplicationFont font(before);
    QListWidget list;
    list.verticalScrollBar()->setProperty(slimTag, true);
    list.verticalScrollBar()->setStyle(&m_style);
    list.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    list.resize(200, 200);
    list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&list));
    QCOMPARE(list.verticalScrollBar()->width(), 12);
    Model::Settings::instance()->setUiScalePercent(150);
    QTRY_COMPARE(list.verticalScrollBar()->width(), 18);
    Model::Settings::instance()->setUiScalePercent(100);
    QTRY_COMPARE(list.verticalScrollBar()->width(), 12);
}

QTEST_MAIN(tst_ScrollBarLook)
#include "tst_scrollbarlook.moc"
