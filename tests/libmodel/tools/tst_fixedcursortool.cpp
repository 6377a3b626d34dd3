#include "libmodel/tools/fixedcursortools.h"

#include "libmodel/tools/cursors.h"

#include <QTest>

using namespace Model;

class tst_FixedCursorTool : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Q_INIT_RESOURCE(model); }

    void cursorComesFromTheType_data();
    void cursorComesFromTheType();
    void cursorIsMadeOnce();
    void unsupportedTypeIsReportedAndGetsTheArrow();
    void cloneIsOfTheSameClassAndMode();
    void cloneOfTheScrubbingToolKeepsItsDrag();
};

void tst_FixedCursorTool::cursorComesFromTheType_data()
{
    QTest::addColumn<Tool::Type>("type");
    QTest::addColumn<QString>("name");
    // Null: the middle.
    QTest::addColumn<QPoint>("hotSpot");
    QTest::newRow("hand") << Tool::Type::Hand << "pointer-hand" << QPoint();
    QTest::newRow("zoom") << Tool::Type::Zoom << "pointer-zoom" << QPoint(9, 9);
    QTest::newRow("rotate") << Tool::Type::Rotate << "pointer-rotate" << QPoint();
    QTest::newRow("lasso") << Tool::Type::Lasso << "pointer-lasso" << QPoint(13, 8);
    QTest::newRow("cutter") << Tool::Type::Cutter << "pointer-cutter" << QPoint(2, 24);
    QTest::newRow("scrubbing") << Tool::Type::Scrubbing << "pointer-scrub" << QPoint();
}

void tst_FixedCursorTool::cursorComesFromTheType()
{
    QFETCH(Tool::Type, type);
    QFETCH(QString, name);
    QFETCH(QPoint, hotSpot);
    const FixedCursorTool tool(type);
    const QPixmap picture = cursorPixmap(name);
    QVERIFY(!picture.isNull());
    const QPoint middle(picture.width() / 2, picture.height() / 2);
    QCOMPARE(tool.cursor().pixmap().cacheKey(), picture.cacheKey());
    QCOMPARE(tool.cursor().hotSpot(), hotSpot.isNull() ? middle : hotSpot);
}

void tst_FixedCursorTool::cursorIsMadeOnce()
{
    const ZoomTool tool;
    QCOMPARE(tool.cursor(), tool.cursor());
}

void tst_FixedCursorTool::unsupportedTypeIsReportedAndGetsTheArrow()
{
    QTest::ignoreMessage(QtWarningMsg, "Unsupported tool type!");
    const FixedCursorTool tool(Tool::Type::ZPR);
    QCOMPARE(tool.cursor().shape(), Qt::ArrowCursor);
}

void tst_FixedCursorTool::cloneIsOfTheSameClassAndMode()
{
    LassoTool tool;
    tool.setMode(3);
    const std::unique_ptr<Tool> clone = tool.clone();
    QVERIFY(qobject_cast<LassoTool *>(clone.get()));
    QCOMPARE(clone->type(), Tool::Type::Lasso);
    QCOMPARE(clone->mode(), 3);
}

void tst_FixedCursorTool::cloneOfTheScrubbingToolKeepsItsDrag()
{
    ScrubbingTool tool;
    QVERIFY(!tool.isDragging());
    tool.setDragging(true);
    const std::unique_ptr<Tool> clone = tool.clone();
    QVERIFY(qobject_cast<ScrubbingTool *>(clone.get())->isDragging());
}

QTEST_MAIN(tst_FixedCursorTool)
#include "tst_fixedcursortool.moc"
