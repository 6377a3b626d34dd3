#include "libui/paper/paperbrushes.h"

#include <QTest>

class tst_PaperBrushes : public QObject
{
    Q_OBJECT

private slots:
    void checkersTileAndOthersArePlain_data();
    void checkersTileAndOthersArePlain();
    void checkersGroundAndSquaresComeFromOneBase();
    void unknownTypeIsTheNearest();
    void deskIsWarmGreyWithoutItsTexture();
};

void tst_PaperBrushes::checkersTileAndOthersArePlain_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("tiled");
    for (int type = 0; type < 8; ++type)
        QTest::addRow("%d", type) << type << (type < 4);
}

void tst_PaperBrushes::checkersTileAndOthersArePlain()
{
    QFETCH(int, type);
    QFETCH(bool, tiled);
    const QBrush brush = UI::paperBrush(static_cast<MR::TransparencyType>(type));
    QCOMPARE(brush.style(), tiled ? Qt::TexturePattern : Qt::SolidPattern);
    QVERIFY(!tiled || brush.texture().width() == brush.texture().height());
}

void tst_PaperBrushes::checkersGroundAndSquaresComeFromOneBase()
{
    const QImage tile = UI::paperBrush(MR::TransparencyType::TransparencySmallCheckersDark).texture().toImage();
    const QColor square = tile.pixelColor(0, 0);
    const QColor ground = tile.pixelColor(tile.width() - 1, 0);
    // 5 % lighter and 5 % darker than the base: in value, 1.05 squared apart.
    QVERIFY(std::abs(ground.valueF() / square.valueF() - 1.05 * 1.05) < 0.02);
}

void tst_PaperBrushes::unknownTypeIsTheNearest()
{
    QCOMPARE(UI::paperBrush(static_cast<MR::TransparencyType>(99)), QBrush(QColor(0, 0, 0)));
    QCOMPARE(UI::paperBrush(static_cast<MR::TransparencyType>(-1)).style(), Qt::TexturePattern);
}

void tst_PaperBrushes::deskIsWarmGreyWithoutItsTexture()
{
    // This program registers no resources.
    const QBrush desk = UI::deskBrush();
    QCOMPARE(desk.style(), Qt::SolidPattern);
    QCOMPARE(desk.color().red() - desk.color().green(), 4);
    QCOMPARE(desk.color().green() - desk.color().blue(), 4);
}

QTEST_MAIN(tst_PaperBrushes)
#include "tst_paperbrushes.moc"
