#include "libmodel/layers/cellref.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QSignalSpy>
#include <QTest>

using namespace Model;

class tst_Layer : public QObject
{
    Q_OBJECT

private slots:
    void newLayerHasTheDefaults();
    void everyLayerHasAnIdentityOfItsOwn();
    void aNullIdentifierIsIgnored();
    void nameChangeIsToldOnce();
    void linkedChangeIsToldOnce();
    void beyondLastTakesOnlyOtherKnownModes_data();
    void beyondLastTakesOnlyOtherKnownModes();
    void typesAreToldApart_data();
    void typesAreToldApart();
    void aReferenceIsNullWhenEitherHalfIs();
    void newCellsHaveIdentitiesOfTheirOwn();
};

void tst_Layer::newLayerHasTheDefaults()
{
    const StrokeLayer layer(Qt::red, QSize(10, 10));
    QCOMPARE(layer.name(), QString());
    QVERIFY(!layer.isLinked());
    QVERIFY(!layer.identifier().isNull());
    QCOMPARE(layer.beyondLast(), Layer::ShowNothing);
}

void tst_Layer::everyLayerHasAnIdentityOfItsOwn()
{
    const StrokeLayer one(Qt::red, QSize(10, 10));
    const StrokeLayer other(Qt::red, QSize(10, 10));
    QVERIFY(one.identifier() != other.identifier());
}

void tst_Layer::aNullIdentifierIsIgnored()
{
    StrokeLayer layer(Qt::red, QSize(10, 10));
    const QUuid wanted = QUuid::createUuid();
    layer.setIdentifier(wanted);
    layer.setIdentifier(QUuid());
    QCOMPARE(layer.identifier(), wanted);
}

void tst_Layer::nameChangeIsToldOnce()
{
    StrokeLayer layer(Qt::red, QSize(10, 10));
    QSignalSpy changed(&layer, &Layer::nameChanged);
    layer.setName("Hand");
    layer.setName("Hand");
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().toString(), "Hand");
}

void tst_Layer::linkedChangeIsToldOnce()
{
    StrokeLayer layer(Qt::red, QSize(10, 10));
    QSignalSpy changed(&layer, &Layer::linkedChanged);
    layer.setLinked(true);
    layer.setLinked(true);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().toBool(), true);
}

void tst_Layer::beyondLastTakesOnlyOtherKnownModes_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("taken");
    QTest::newRow("equal") << 1 << false;
    QTest::newRow("freeze") << 2 << true;
    QTest::newRow("cycle") << 3 << true;
    QTest::newRow("below") << 0 << false;
    QTest::newRow("above") << 4 << false;
}

void tst_Layer::beyondLastTakesOnlyOtherKnownModes()
{
    QFETCH(int, mode);
    QFETCH(bool, taken);
    StrokeLayer layer(Qt::red, QSize(10, 10));
    QCOMPARE(layer.setLayerBeyondLast(static_cast<Layer::LayerBeyondLast>(mode)), taken);
    QCOMPARE(int(layer.beyondLast()), taken ? mode : 1);
}

void tst_Layer::typesAreToldApart_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("visual");
    QTest::addColumn<bool>("draw");
    QTest::newRow("none") << 0 << false << false;
    QTest::newRow("stroke") << 1 << true << true;
    QTest::newRow("paint") << 2 << true << true;
    QTest::newRow("reference") << 3 << true << false;
    QTest::newRow("audio") << 4 << false << false;
    QTest::newRow("annotation") << 5 << false << false;
}

void tst_Layer::typesAreToldApart()
{
    QFETCH(int, type);
    QFETCH(bool, visual);
    QFETCH(bool, draw);
    QCOMPARE(Layer::isVisualType(type), visual);
    QCOMPARE(Layer::isDrawType(type), draw);
}

void tst_Layer::aReferenceIsNullWhenEitherHalfIs()
{
    const QUuid some = QUuid::createUuid();
    QVERIFY(CellRef{}.isNull());
    QVERIFY((CellRef{some, QUuid()}).isNull());
    QVERIFY((CellRef{QUuid(), some}).isNull());
    QVERIFY(!(CellRef{some, some}).isNull());
}

void tst_Layer::newCellsHaveIdentitiesOfTheirOwn()
{
    const auto drawing = std::make_shared<StrokeDrawing>(QSize(4, 4));
    const LayerItem one(LayerItem::Type::Original, drawing);
    const LayerItem other(LayerItem::Type::Clone, drawing);
    QVERIFY(!one.identifier.isNull());
    QVERIFY(one.identifier != other.identifier);
    QVERIFY(one.offPegsTransform.isIdentity());
    QVERIFY(!one.keyDrawing);
    QVERIFY(one.clones.isEmpty());
    QVERIFY(one.origin.isNull());
}

QTEST_MAIN(tst_Layer)
#include "tst_layer.moc"
