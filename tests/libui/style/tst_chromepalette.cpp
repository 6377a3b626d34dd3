#include "libui/style/chromepalette.h"

#include <QTest>

#include <cmath>

class tst_ChromePalette : public QObject
{
    Q_OBJECT

private slots:
    void textCanBeReadOnItsGround_data();
    void textCanBeReadOnItsGround();
    void disabledTextIsFaintButReadable_data();
    void disabledTextIsFaintButReadable();
    void disabledMenuEntriesAreNotEtched();
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
    QTest::addRow("link in a field") << QPalette::Link << QPalette::Base;
    QTest::addRow("link in a window") << QPalette::Link << QPalette::Window;
    QTest::addRow("visited link") << QPalette::LinkVisited << QPalette::Window;
}

void tst_ChromePalette::textCanBeReadOnItsGround()
{
    QFETCH(QPalette::ColorRole, text);
    QFETCH(QPalette::ColorRole, ground);
    const QPalette palette = UI::chromePalette();
    // 4.5 is what WCAG 2 asks of ordinary text.
    const double found = contrast(palette.color(text), palette.color(ground));
    QVERIFY2(found >= 4.5, qPrintable(QString::number(found)));
}

void tst_ChromePalette::disabledTextIsFaintButReadable_data()
{
    QTest::addColumn<QPalette::ColorRole>("text");
    QTest::addColumn<QPalette::ColorRole>("ground");
    QTest::addRow("window") << QPalette::WindowText << QPalette::Window;
    QTest::addRow("field") << QPalette::Text << QPalette::Base;
    QTest::addRow("button") << QPalette::ButtonText << QPalette::Button;
    QTest::addRow("selection") << QPalette::HighlightedText << QPalette::Highlight;
}

void tst_ChromePalette::disabledTextIsFaintButReadable()
{
    QFETCH(QPalette::ColorRole, text);
    QFETCH(QPalette::ColorRole, ground);
    const QPalette palette = UI::chromePalette();
    const double enabled = contrast(palette.color(QPalette::Active, text), palette.color(QPalette::Active, ground));
    const double disabled =
        contrast(palette.color(QPalette::Disabled, text), palette.color(QPalette::Disabled, ground));
    // 3 is what WCAG 2 asks of large text; of disabled text it asks nothing.
    QVERIFY2(disabled >= 3.0, qPrintable(QString::number(disabled)));
    QVERIFY2(disabled <= 0.7 * enabled, qPrintable(QStringLiteral("%1 of %2").arg(disabled).arg(enabled)));
}

void tst_ChromePalette::disabledMenuEntriesAreNotEtched()
{
    const QPalette palette = UI::chromePalette();
    QVERIFY(contrast(palette.color(QPalette::Disabled, QPalette::Light), palette.color(QPalette::Base)) < 1.1);
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
