#include "libui/style/chromepalette.h"

#include <QTest>

#include <cmath>

class tst_ChromePalette : public QObject
{
    Q_OBJECT

private slots:
    void textCanBeReadOnItsGround_data();
    void textCanBeReadOnItsGround();
    void nothingOfTheDesktopShowsThrough();
};

namespace {

/// Relative luminance by the WCAG 2 formula.
double luminance(QColor color)
{
    const auto linear = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(QColor a, QColor b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

} // namespace

void tst_ChromePalette::textCanBeReadOnItsGround_data()
{
    QTest::addColumn<QPalette::ColorRole>("text");
    QTest::addColumn<QPalette::ColorRole>("ground");
    QTest::addRow("window") << QPalette::WindowText << QPalette::Window;
    QTest::addRow("field") << QPalette::Text << QPalette::Base;
    QTest::addRow("other row") << QPalette::Text << QPalette::AlternateBase;
    QTest::addRow("button") << QPalette::ButtonText << QPalette::Button;
    QTest::addRow("tool tip") << QPalette::ToolTipText << QPalette::ToolTipBase;
    QTest::addRow("selection") << QPalette::HighlightedText << QPalette::Highlight;
    QTest::addRow("link") << QPalette::Link << QPalette::Base;
}

void tst_ChromePalette::textCanBeReadOnItsGround()
{
    QFETCH(QPalette::ColorRole, text);
    QFETCH(QPalette::ColorRole, ground);
    const QPalette palette = UI::chromePalette();
    // 4.5 is what WCAG 2 asks of ordinary text.
    QVERIFY(contrast(palette.color(text), palette.color(ground)) >= 4.5);
}

void tst_ChromePalette::nothingOfTheDesktopShowsThrough()
{
    const QPalette palette = UI::chromePalette();
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            if (role != QPalette::NoRole)
                QVERIFY2(palette.isBrushSet(group, QPalette::ColorRole(role)), qPrintable(QString::number(role)));
        }
    }
}

QTEST_MAIN(tst_ChromePalette)
#include "tst_chromepalette.moc"
