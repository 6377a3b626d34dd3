// The tools whose cursor follows the zone or handle under the pointer.

#include "libmodel/tools/cursors.h"
#include "libmodel/tools/floatingselectiontool.h"
#include "libmodel/tools/offpegstool.h"
#include "libmodel/tools/zprtool.h"

#include <QSignalSpy>
#include <QTest>

using namespace Model;
using FSCursorType = FloatingSelectionTool::FSCursorType;

class tst_ZoneTools : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Q_INIT_RESOURCE(model); }

    void zprCursorFollowsTheZone();
    void zprKeepsThePressPosition();
    void offPegsCursorFollowsTheZone();
    void sameZoneTellsNothing();

    void plainHandlesHaveNamedCursors_data();
    void plainHandlesHaveNamedCursors();
    void edgesAndPivotHaveTheArrow();
    void turnedHandlesHaveTurnedCursors_data();
    void turnedHandlesHaveTurnedCursors();
    void anglesUnderADegreeRedrawNothing();
    void anglesMatterOnlyToTurnedHandles();
    void blockedStampIsForbidden();
    void clonesKeepTheirState();
};

void tst_ZoneTools::zprCursorFollowsTheZone()
{
    ZPRTool tool;
    tool.setCursorType(ZPRTool::ZPRCursorType::Rotate);
    QCOMPARE(tool.cursor().pixmap().cacheKey(), cursorPixmap(QStringLiteral("pointer-rotate")).cacheKey());
    tool.setCursorType(ZPRTool::ZPRCursorType::Pan);
    QCOMPARE(tool.cursor().pixmap().cacheKey(), cursorPixmap(QStringLiteral("pointer-hand")).cacheKey());
    tool.setCursorType(ZPRTool::ZPRCursorType::Zoom);
    QCOMPARE(tool.cursor().pixmap().cacheKey(), cursorPixmap(QStringLiteral("pointer-zoom")).cacheKey());
    QCOMPARE(tool.cursor().hotSpot(), QPoint(9, 9));
}

void tst_ZoneTools::zprKeepsThePressPosition()
{
    ZPRTool tool;
    tool.setPressPosGlobal(QPoint(12, 34));
    QCOMPARE(tool.pressPosGlobal(), QPoint(12, 34));
}

void tst_ZoneTools::offPegsCursorFollowsTheZone()
{
    OffPegsTool tool;
    QCOMPARE(tool.cursor().pixmap().cacheKey(), cursorPixmap(QStringLiteral("pointer-rotate")).cacheKey());
    tool.setCursorType(OffPegsTool::OPCursorType::Pan);
    QCOMPARE(tool.cursor().pixmap().cacheKey(), cursorPixmap(QStringLiteral("pointer-hand")).cacheKey());
    tool.setCursorType(OffPegsTool::OPCursorType::PutBack);
    QCOMPARE(tool.cursor().shape(), Qt::ArrowCursor);
}

void tst_ZoneTools::sameZoneTellsNothing()
{
    OffPegsTool tool;
    QSignalSpy changes(&tool, &Tool::cursorChanged);
    tool.setCursorType(OffPegsTool::OPCursorType::Pan);
    tool.setCursorType(OffPegsTool::OPCursorType::Pan);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes[0][0].value<QCursor>().pixmap().cacheKey(), tool.cursor().pixmap().cacheKey());
}

void tst_ZoneTools::plainHandlesHaveNamedCursors_data()
{
    QTest::addColumn<FSCursorType>("type");
    QTest::addColumn<QString>("name");
    QTest::newRow("move") << FSCursorType::Move << "pointer-move";
    QTest::newRow("skew sideways") << FSCursorType::SkewHorizontal << "pointer-skewHorizontal";
    QTest::newRow("skew up and down") << FSCursorType::SkewVertical << "pointer-skewVertical";
    QTest::newRow("squash and stretch") << FSCursorType::SquashStretch << "pointer-squashStretch";
    QTest::newRow("stamp") << FSCursorType::Stamp << "pointer-stamp";
}

void tst_ZoneTools::plainHandlesHaveNamedCursors()
{
    QFETCH(FSCursorType, type);
    QFETCH(QString, name);
    FloatingSelectionTool tool;
    tool.setCursorType(type);
    QVERIFY(!cursorPixmap(name).isNull());
    QCOMPARE(tool.cursor().pixmap().cacheKey(), cursorPixmap(name).cacheKey());
    QCOMPARE(tool.cursor().hotSpot(), namedCursor(name).hotSpot());
}

void tst_ZoneTools::edgesAndPivotHaveTheArrow()
{
    FloatingSelectionTool tool;
    for (const auto type : {FSCursorType::HorizontalEdge, FSCursorType::VerticalEdge, FSCursorType::Pivot}) {
        tool.setCursorType(type);
        QCOMPARE(tool.cursor().shape(), Qt::ArrowCursor);
    }
}

void tst_ZoneTools::turnedHandlesHaveTurnedCursors_data()
{
    QTest::addColumn<FSCursorType>("type");
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("offset");
    QTest::newRow("rotate") << FSCursorType::Rotate << "pointer-rotate" << 90.0;
    QTest::newRow("scale") << FSCursorType::Scale << "pointer-scale" << 0.0;
    QTest::newRow("scale and rotate") << FSCursorType::ScaleRotate << "pointer-scaleRotate" << 0.0;
}

void tst_ZoneTools::turnedHandlesHaveTurnedCursors()
{
    QFETCH(FSCursorType, type);
    QFETCH(QString, name);
    QFETCH(double, offset);
    FloatingSelectionTool tool;
    tool.setCursorType(type);
    for (const double angle : {0.0, 33.0, -120.0}) {
        tool.setHandleAngle(angle);
        QCOMPARE(tool.cursor().pixmap().toImage(), rotatedCursor(name, angle + offset).pixmap().toImage());
    }
}

void tst_ZoneTools::anglesUnderADegreeRedrawNothing()
{
    FloatingSelectionTool tool;
    tool.setCursorType(FSCursorType::Scale);
    tool.setHandleAngle(10.0);
    QSignalSpy changes(&tool, &Tool::cursorChanged);
    tool.setHandleAngle(10.9);
    tool.setHandleAngle(9.1);
    QVERIFY(changes.isEmpty());
    QCOMPARE(tool.handleAngle(), 10.0);
    tool.setHandleAngle(11.0);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(tool.handleAngle(), 11.0);
}

void tst_ZoneTools::anglesMatterOnlyToTurnedHandles()
{
    FloatingSelectionTool tool;
    tool.setCursorType(FSCursorType::Move);
    QSignalSpy changes(&tool, &Tool::cursorChanged);
    tool.setHandleAngle(45.0);
    QVERIFY(changes.isEmpty());
    tool.setCursorType(FSCursorType::Scale);
    QCOMPARE(tool.cursor().pixmap().toImage(), rotatedCursor(QStringLiteral("pointer-scale"), 45.0).pixmap().toImage());
}

void tst_ZoneTools::blockedStampIsForbidden()
{
    FloatingSelectionTool tool;
    for (const int mode : {1, 2, 3}) {
        tool.setMode(mode);
        QCOMPARE(tool.cursor().shape(), Qt::ForbiddenCursor);
    }
    tool.setMode(4);
    QCOMPARE(tool.cursor().pixmap().cacheKey(), cursorPixmap(QStringLiteral("pointer-stamp")).cacheKey());
}

void tst_ZoneTools::clonesKeepTheirState()
{
    FloatingSelectionTool selection;
    selection.setCursorType(FSCursorType::Scale);
    selection.setHandleAngle(20.0);
    selection.setMode(1);
    const auto clone = selection.clone();
    auto *copy = qobject_cast<FloatingSelectionTool *>(clone.get());
    QVERIFY(copy);
    QCOMPARE(copy->cursorType(), FSCursorType::Scale);
    QCOMPARE(copy->handleAngle(), 20.0);
    QCOMPARE(copy->mode(), 1);

    ZPRTool zpr;
    zpr.setCursorType(ZPRTool::ZPRCursorType::Zoom);
    zpr.setPressPosGlobal(QPoint(1, 2));
    const auto zprClone = zpr.clone();
    QCOMPARE(qobject_cast<ZPRTool *>(zprClone.get())->cursorType(), ZPRTool::ZPRCursorType::Zoom);
    QCOMPARE(qobject_cast<ZPRTool *>(zprClone.get())->pressPosGlobal(), QPoint(1, 2));

    OffPegsTool offPegs;
    offPegs.setCursorType(OffPegsTool::OPCursorType::PutBack);
    const auto offPegsClone = offPegs.clone();
    QCOMPARE(qobject_cast<OffPegsTool *>(offPegsClone.get())->cursorType(), OffPegsTool::OPCursorType::PutBack);
}

QTEST_MAIN(tst_ZoneTools)
#include "tst_zonetools.moc"
