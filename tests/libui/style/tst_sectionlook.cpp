#include "libui/style/mrproxystyle.h"

#include "libui/style/chromepalette.h"

#include <QHeaderView>
#include <QPainter>
#include <QStandardItemModel>
#include <QStyleOptionHeader>
#include <QTest>

/// The sections of the sheet's header and footer, as the style paints them for a tagged header view.
class tst_SectionLook : public QObject
{
    Q_OBJECT

private slots:
    void bandAndEdgeFollowTheState_data();
    void bandAndEdgeFollowTheState();
    void emptyAreaIsABandAtRest();
    void realHeaderShowsBands();
    void ampersandsShowAsTheyStand_data();
    void ampersandsShowAsTheyStand();
    void longNamesAreShortened();
    void realHeaderShowsItsLabels();
    void labelStandsTwoFromTheEdges();
    void labelTakesAlignmentAndColourOfItsSection_data();
    void labelTakesAlignmentAndColourOfItsSection();
    void iconIsShownBesideTheLabel();

private:
    UI::MRProxyStyle m_style;
};

namespace {

const QRect sectionRect(10, 5, 80, 30);

QStyleOptionHeader sectionOption(QStyle::State state, const QString &text = {})
{
    QStyleOptionHeader option;
    option.rect = sectionRect;
    option.state = state;
    option.text = text;
    option.textAlignment = Qt::AlignCenter;
    option.palette = UI::chromePalette();
    return option;
}

QImage painted(const UI::MRProxyStyle &style, QStyle::ControlElement element, const QStyleOptionHeader &option,
               const char *tag)
{
    QWidget header;
    header.setProperty(tag, true);
    QImage image(100, 40, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::magenta);
    QPainter painter(&image);
    style.drawControl(element, &option, &painter, &header);
    return image;
}

/// The number of pixels within \a rect that are of light text: nothing else in these pictures has so much green.
int textPixels(const QImage &image, const QRect &rect)
{
    int found = 0;
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x)
            found += image.pixelColor(x, y).green() > 150;
    }
    return found;
}

bool isNear(QColor found, QColor expected)
{
    return std::abs(found.red() - expected.red()) <= 1 && std::abs(found.green() - expected.green()) <= 1 &&
           std::abs(found.blue() - expected.blue()) <= 1;
}

} // namespace

void tst_SectionLook::bandAndEdgeFollowTheState_data()
{
    QTest::addColumn<QByteArray>("tag");
    QTest::addColumn<QStyle::State>("state");
    QTest::addColumn<QColor>("top");
    QTest::addColumn<QColor>("edge");
    const QColor raised(100, 96, 92);
    const QColor recessed(92, 88, 84);
    for (const char *tag : {"X-Sheet Header", "X-Sheet Footer"}) {
        QTest::addRow("%s at rest", tag) << QByteArray(tag) << QStyle::State(QStyle::State_Enabled) << raised
                                         << QColor(132, 128, 124);
        QTest::addRow("%s current", tag) << QByteArray(tag) << QStyle::State(QStyle::State_Enabled | QStyle::State_On)
                                         << raised << QColor(80, 80, 80);
        QTest::addRow("%s pressed", tag) << QByteArray(tag)
                                         << QStyle::State(QStyle::State_Enabled | QStyle::State_On |
                                                          QStyle::State_Sunken)
                                         << recessed << QColor(64, 64, 64);
        QTest::addRow("%s disabled", tag)
            << QByteArray(tag) << QStyle::State(QStyle::State_On) << recessed << QColor(60, 56, 52);
    }
}

void tst_SectionLook::bandAndEdgeFollowTheState()
{
    QFETCH(QByteArray, tag);
    QFETCH(QStyle::State, state);
    QFETCH(QColor, top);
    QFETCH(QColor, edge);
    const QImage image = painted(m_style, QStyle::CE_HeaderSection, sectionOption(state), tag);
    const QColor bottom(116, 112, 108);
    for (int x : {sectionRect.left(), sectionRect.center().x(), sectionRect.right()}) {
        QCOMPARE(image.pixelColor(x, sectionRect.top()), edge);
        QVERIFY(isNear(image.pixelColor(x, sectionRect.top() + 1), top));
        const QColor middle((top.red() + bottom.red()) / 2, (top.green() + bottom.green()) / 2,
                            (top.blue() + bottom.blue()) / 2);
        QVERIFY(isNear(image.pixelColor(x, sectionRect.top() + 15), middle));
        QVERIFY(isNear(image.pixelColor(x, sectionRect.bottom()), bottom));
    }
    QCOMPARE(image.pixelColor(sectionRect.topLeft() - QPoint(1, 0)), QColor(Qt::magenta));
    QCOMPARE(image.pixelColor(sectionRect.bottomRight() + QPoint(0, 1)), QColor(Qt::magenta));
}

void tst_SectionLook::emptyAreaIsABandAtRest()
{
    const QImage image =
        painted(m_style, QStyle::CE_HeaderEmptyArea, sectionOption(QStyle::State_Enabled), "X-Sheet Header");
    QCOMPARE(image.pixelColor(sectionRect.topLeft()), QColor(132, 128, 124));
    QVERIFY(isNear(image.pixelColor(sectionRect.bottomRight()), QColor(116, 112, 108)));
}

void tst_SectionLook::realHeaderShowsBands()
{
    QStandardItemModel model(1, 2);
    QHeaderView header(Qt::Horizontal);
    header.setProperty("X-Sheet Header", true);
    header.setStyle(&m_style);
    header.setModel(&model);
    header.resize(400, 30);
    QImage image(header.size(), QImage::Format_ARGB32_Premultiplied);
    header.viewport()->resize(header.size());
    header.render(&image);
    // On the first section, on the second, and behind both.
    for (int x : {2, 110, 390}) {
        QVERIFY(isNear(image.pixelColor(x, 1), QColor(100, 96, 92)));
        QVERIFY(isNear(image.pixelColor(x, 29), QColor(116, 112, 108)));
    }
}

void tst_SectionLook::ampersandsShowAsTheyStand_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"Ink & Paint", "A && B", "&Name", "Tail&"})
        QTest::addRow("%s", text) << QString::fromLatin1(text);
}

void tst_SectionLook::ampersandsShowAsTheyStand()
{
    QFETCH(QString, text);
    const QStyleOptionHeader option = sectionOption(QStyle::State_Enabled, text);
    const QImage found = painted(m_style, QStyle::CE_HeaderLabel, option, "X-Sheet Header");
    QImage expected(found.size(), found.format());
    expected.fill(Qt::magenta);
    QPainter painter(&expected);
    painter.setPen(QColor(221, 216, 213));
    painter.drawText(sectionRect, Qt::AlignCenter, text);
    painter.end();
    QCOMPARE(found, expected);
}

void tst_SectionLook::longNamesAreShortened()
{
    const QStyleOptionHeader option = sectionOption(QStyle::State_Enabled, QString(200, QLatin1Char('W')));
    const QImage found = painted(m_style, QStyle::CE_HeaderLabel, option, "X-Sheet Header");
    for (int y = 0; y < found.height(); ++y) {
        QCOMPARE(found.pixelColor(sectionRect.left() - 1, y), QColor(Qt::magenta));
        QCOMPARE(found.pixelColor(sectionRect.right() + 1, y), QColor(Qt::magenta));
    }
    // It begins at the left: were it cut at both ends, as text too long for its place is, it would have no dots.
    QImage whole(found.size(), found.format());
    whole.fill(Qt::magenta);
    QPainter painter(&whole);
    painter.setPen(QColor(221, 216, 213));
    painter.drawText(sectionRect, Qt::AlignCenter, option.text);
    painter.end();
    QVERIFY(found != whole);
}

void tst_SectionLook::realHeaderShowsItsLabels()
{
    // Only the first of both sections has a label.
    QStandardItemModel model(1, 2);
    model.setHorizontalHeaderLabels({QStringLiteral("HHHH"), QString()});
    QHeaderView header(Qt::Horizontal);
    header.setProperty("X-Sheet Header", true);
    header.setStyle(&m_style);
    header.setPalette(UI::chromePalette());
    header.setModel(&model);
    header.resize(400, 30);
    header.viewport()->resize(header.size());
    QImage image(header.size(), QImage::Format_ARGB32_Premultiplied);
    header.render(&image);
    const int width = header.sectionSize(0);
    QVERIFY(textPixels(image, QRect(0, 0, width, 30)) > 10);
    QCOMPARE(textPixels(image, QRect(width, 0, width, 30)), 0);
}

void tst_SectionLook::labelStandsTwoFromTheEdges()
{
    QWidget header;
    header.setProperty("X-Sheet Header", true);
    const QStyleOptionHeader option = sectionOption(QStyle::State_Enabled);
    QCOMPARE(m_style.subElementRect(QStyle::SE_HeaderLabel, &option, &header), QRect(12, 5, 76, 30));
}

void tst_SectionLook::labelTakesAlignmentAndColourOfItsSection_data()
{
    QTest::addColumn<int>("alignment");
    QTest::addColumn<QPalette::ColorGroup>("group");
    QTest::addRow("left") << int(Qt::AlignLeft | Qt::AlignVCenter) << QPalette::Active;
    QTest::addRow("right, at the bottom") << int(Qt::AlignRight | Qt::AlignBottom) << QPalette::Active;
    QTest::addRow("disabled") << int(Qt::AlignCenter) << QPalette::Disabled;
}

void tst_SectionLook::labelTakesAlignmentAndColourOfItsSection()
{
    QFETCH(int, alignment);
    QFETCH(QPalette::ColorGroup, group);
    QStyleOptionHeader option =
        sectionOption(group == QPalette::Active ? QStyle::State_Enabled : QStyle::State_None, QStringLiteral("Ink"));
    option.textAlignment = Qt::Alignment(alignment);
    option.palette.setCurrentColorGroup(group);
    QImage expected(100, 40, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::magenta);
    QPainter painter(&expected);
    painter.setPen(UI::chromePalette().color(group, QPalette::ButtonText));
    painter.drawText(sectionRect, alignment, option.text);
    painter.end();
    QCOMPARE(painted(m_style, QStyle::CE_HeaderLabel, option, "X-Sheet Header"), expected);
}

void tst_SectionLook::iconIsShownBesideTheLabel()
{
    QPixmap red(16, 16);
    red.fill(Qt::red);
    QStyleOptionHeader option = sectionOption(QStyle::State_Enabled, QStringLiteral("Ink"));
    option.icon = QIcon(red);
    const QImage image = painted(m_style, QStyle::CE_HeaderLabel, option, "X-Sheet Header");
    QVERIFY(textPixels(image, sectionRect) > 5);
    int redPixels = 0;
    for (int y = sectionRect.top(); y <= sectionRect.bottom(); ++y) {
        for (int x = sectionRect.left(); x <= sectionRect.right(); ++x)
            redPixels += image.pixelColor(x, y) == QColor(Qt::red);
    }
    QCOMPARE(redPixels, 16 * 16);
}

QTEST_MAIN(tst_SectionLook)
#include "tst_sectionlook.moc"
