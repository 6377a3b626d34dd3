#include "libui/style/uiscale.h"

#include "libmodel/base/settings.h"
#include "support/isolatedstore.h"

#include <QSettings>
#include <QTest>

class tst_UiScale : public QObject
{
    Q_OBJECT

private slots:
    void fractionIsCutOff_data();
    void fractionIsCutOff();
    void factorIsThePercentage();
    void scaleOutOfRangeInTheStoreIsNormal_data();
    void scaleOutOfRangeInTheStoreIsNormal();
};

void tst_UiScale::fractionIsCutOff_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("pixels");
    QTest::addRow("normal") << 100 << 28.0 << 28;
    QTest::addRow("small") << 75 << 19.0 << 14;      // 14.25
    QTest::addRow("large") << 125 << 17.0 << 21;     // 21.25
    QTest::addRow("largest") << 150 << 11.0 << 16;   // 16.5
    QTest::addRow("whole") << 29 << 100.0 << 29;     // 29 in exact arithmetic, under it in binary fractions
    QTest::addRow("fraction") << 150 << 24.5 << 36;  // 36.75
    QTest::addRow("negative") << 75 << -19.0 << -14; // towards zero
}

void tst_UiScale::fractionIsCutOff()
{
    QFETCH(int, percent);
    QFETCH(double, value);
    QFETCH(int, pixels);
    const IsolatedStore store;
    Model::Settings::instance()->setUiScalePercent(percent);
    QCOMPARE(UI::scaled(value), pixels);
}

void tst_UiScale::factorIsThePercentage()
{
    const IsolatedStore store;
    Model::Settings::instance()->setUiScalePercent(125);
    QCOMPARE(UI::uiScale(), 1.25);
}

void tst_UiScale::scaleOutOfRangeInTheStoreIsNormal_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addRow("zero") << QVariant(0);
    QTest::addRow("negative") << QVariant(-150);
    QTest::addRow("huge") << QVariant(1000000);
    QTest::addRow("words") << QVariant(QStringLiteral("large"));
}

void tst_UiScale::scaleOutOfRangeInTheStoreIsNormal()
{
    QFETCH(QVariant, stored);
    const IsolatedStore store;
    QSettings().setValue(QStringLiteral("Preferences/UIScalePercent"), stored);
    Model::Settings::instance()->load();
    QCOMPARE(UI::uiScale(), 1.0);
    QCOMPARE(UI::scaled(44), 44);
}

QTEST_GUILESS_MAIN(tst_UiScale)
#include "tst_uiscale.moc"
