#include "libui/style/applicationfont.h"

#include "libmodel/base/settings.h"
#include "support/isolatedstore.h"

#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QToolTip>

#include <memory>

class tst_ApplicationFont : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void sizeFollowsTheScale_data();
    void sizeFollowsTheScale();
    void pixelSizesFollow();
    void changesLeadBackToTheBeginning();
    void scaleThatStandsAtTheStartCounts();
    void menusDialogsAndToolTipsFollow();
    void familyStays();

private:
    std::unique_ptr<IsolatedStore> m_store;
    QFont m_before;
};

namespace {

QFont pointFont(double size)
{
    QFont font;
    font.setPointSizeF(size);
    return font;
}

void setScale(int percent)
{
    Model::Settings::instance()->setUiScalePercent(percent);
}

} // namespace

void tst_ApplicationFont::init()
{
    m_store = std::make_unique<IsolatedStore>();
    m_before = QApplication::font();
}

void tst_ApplicationFont::cleanup()
{
    setScale(100);
    QApplication::setFont(m_before);
    m_store.reset();
}

void tst_ApplicationFont::sizeFollowsTheScale_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<double>("size");
    QTest::addRow("75") << 75 << 6.75;
    QTest::addRow("100") << 100 << 9.0;
    QTest::addRow("125") << 125 << 11.25;
    QTest::addRow("150") << 150 << 13.5;
}

void tst_ApplicationFont::sizeFollowsTheScale()
{
    QFETCH(int, percent);
    QFETCH(double, size);
    const UI::ApplicationFont font(pointFont(9.0));
    setScale(percent);
    QCOMPARE(QApplication::font().pointSizeF(), size);
    QCOMPARE(font.base().pointSizeF(), 9.0);
}

void tst_ApplicationFont::pixelSizesFollow()
{
    QFont base;
    base.setPixelSize(13);
    const UI::ApplicationFont font(base);
    setScale(125);
    // 16.25 without its fraction.
    QCOMPARE(QApplication::font().pixelSize(), 16);
    setScale(75);
    QCOMPARE(QApplication::font().pixelSize(), 9);
}

void tst_ApplicationFont::changesLeadBackToTheBeginning()
{
    const UI::ApplicationFont font(pointFont(9.0));
    for (int round = 0; round < 50; ++round) {
        for (int percent : {75, 150, 125, 100})
            setScale(percent);
    }
    QCOMPARE(QApplication::font().pointSizeF(), 9.0);
}

void tst_ApplicationFont::scaleThatStandsAtTheStartCounts()
{
    setScale(150);
    const UI::ApplicationFont font(pointFont(10.0));
    QCOMPARE(QApplication::font().pointSizeF(), 15.0);
}

void tst_ApplicationFont::menusDialogsAndToolTipsFollow()
{
    const UI::ApplicationFont font(pointFont(10.0));
    QMenuBar bar;
    QMenu *menu = bar.addMenu(QStringLiteral("Menu"));
    menu->addAction(QStringLiteral("An entry of some length"));
    QLabel label(QStringLiteral("Text"));
    const int barHeight = bar.sizeHint().height();
    const QSize menuSize = menu->sizeHint();
    setScale(150);
    QCoreApplication::processEvents();
    for (const QFont &found : {bar.font(), menu->font(), label.font(), QToolTip::font()})
        QCOMPARE(found.pointSizeF(), 15.0);
    QVERIFY(bar.sizeHint().height() > barHeight);
    QVERIFY(menu->sizeHint().width() > menuSize.width());
    QVERIFY(menu->sizeHint().height() > menuSize.height());
}

void tst_ApplicationFont::familyStays()
{
    QFont base = pointFont(9.0);
    base.setFamilies({QStringLiteral("Lucida Sans Unicode"), QStringLiteral("Sans Serif")});
    const UI::ApplicationFont font(base);
    setScale(125);
    QCOMPARE(QApplication::font().families(), base.families());
}

QTEST_MAIN(tst_ApplicationFont)
#include "tst_applicationfont.moc"
