#include "libmodel/tools/toolmanager.h"

#include "libmodel/tools/cursors.h"
#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/penadjustmenttool.h"
#include "libmodel/tools/pentool.h"
#include "support/isolatedstore.h"

#include <QSignalSpy>
#include <QTest>

using namespace Model;
using Type = Tool::Type;
using PenType = Tool::PenType;
using EraserType = Tool::EraserType;

namespace {

double storedPercent(const char *path)
{
    return QSettings().value(QStringLiteral("Preferences/Tools/") + QLatin1String(path), -1.0).toDouble();
}

} // namespace

// The manager lives as long as the process, so the first test looks at it as it starts and the others bring it to where
// they need it.
class tst_ToolManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void startsWithStoredRangesAndNoTool();
    void everyTypeHasItsTool();
    void noneHasNoTool();
    void unknownTypeIsReported();
    void scribbleToolsHaveTheirOwnRanges();
    void scribblingWithOtherToolsIsReported();

    void settingAToolTellsCursorThenType();
    void settingTheSameToolDoesNothing();
    void sameTypeInAnotherModeGoesThroughTheWholeSequence();
    void settingNoneLeavesNoTool();
    void latestTypesRememberTheirFamilies();
    void managerDoesNotComeBackByItself();
    void toolFamiliesAreTold();
    void scrubbingKeepsTheCursorInPlace();
    void cursorOfTheCurrentToolOnlyIsPassedOn();

    void penTypeChangesTheCurrentPen();
    void penTypeIsToldEvenWhileErasing();
    void samePenTypeChangesNoTool();
    void eraserTypeChangesTheCurrentEraser();
    void newPenIsHeldLikeTheOldOne();

    void rangesOfTheCurrentToolAreStored();
    void rangesOfOtherToolsAreNotStored();
    void rangesAdjustedByDraggingAreStoredAfterwards_data();
    void rangesAdjustedByDraggingAreStoredAfterwards();
    void stepsActOnTheCurrentDrawingTool();
    void resettingPensRestoresAllPresets();
    void resettingErasersRestoresTheirOnlyPreset();
    void presetsAreSavedAndLoaded();

    void cursorSettingsActOnTheCurrentTool();
    void viewScaleReachesAllDrawingTools();
    void hugeTipsShowTheSmallCursor();

private:
    IsolatedStore m_store;
    ToolManager *m_manager = nullptr;
};

void tst_ToolManager::initTestCase()
{
    Q_INIT_RESOURCE(model);
    m_store.load(QStringLiteral("Preferences/Tools/Marker/SizeRangeUpperPercent"), 55.5);
    m_manager = ToolManager::instance();
}

void tst_ToolManager::init()
{
    if (m_manager->currentToolType() == Type::None)
        return;
    m_manager->setCurrentPenType(PenType::Pencil);
    m_manager->setCurrentEraserType(EraserType::RubberEraser);
    m_manager->setCurrentTool(Type::Hand, 0);
    m_manager->setCurrentTool(Type::Pen, 0);
    m_manager->resetDrawingToolSettings();
    m_manager->resetErasingToolSettings();
    m_manager->setViewScale(0.5);
    m_store.reset();
}

void tst_ToolManager::startsWithStoredRangesAndNoTool()
{
    QCOMPARE(m_manager->currentTool(), nullptr);
    QCOMPARE(m_manager->currentToolType(), Type::None);
    QCOMPARE(m_manager->currentToolMode(), 0);
    QCOMPARE(m_manager->latestDrawingToolType(), Type::None);
    QCOMPARE(m_manager->latestPaperToolType(), Type::None);
    QCOMPARE(m_manager->latestEditToolType(), Type::None);
    QCOMPARE(m_manager->currentPenType(), PenType::Pencil);
    QCOMPARE(m_manager->currentEraserType(), EraserType::RubberEraser);
    QVERIFY(!m_manager->isDrawingOrErasing());
    QVERIFY(!m_manager->isLassoOrCutter());

    QCOMPARE(m_manager->pen(PenType::Marker)->sizeMaxPercent(), 55.5);
    QCOMPARE(m_manager->pen(PenType::Marker)->sizeMinPercent(), 2.33);
    QCOMPARE(m_manager->pen(PenType::Pencil)->sizeMaxPercent(), 12.31);
    QCOMPARE(m_manager->eraser(EraserType::VinylEraser)->sizeLowerLimit(), 30.0);

    m_manager->setCurrentTool(Type::None, 0);
    QCOMPARE(m_manager->currentTool(), nullptr);
    m_manager->setCurrentTool(Type::Pen, 0);
    QCOMPARE(m_manager->currentTool(), m_manager->pen(PenType::Pencil));
}

void tst_ToolManager::everyTypeHasItsTool()
{
    for (int type = 0; type < 12; ++type) {
        const Tool *tool = m_manager->tool(static_cast<Type>(type));
        QVERIFY(tool);
        QCOMPARE(static_cast<int>(tool->type()), type);
    }
    QCOMPARE(m_manager->tool(Type::Pen), m_manager->pen(PenType::Pencil));
    QCOMPARE(m_manager->tool(Type::Eraser), m_manager->eraser(EraserType::RubberEraser));
}

void tst_ToolManager::noneHasNoTool()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
    QCOMPARE(m_manager->tool(Type::None), nullptr);
}

void tst_ToolManager::unknownTypeIsReported()
{
    QTest::ignoreMessage(QtWarningMsg, "It seems a new tool added but not listed here");
    QCOMPARE(m_manager->tool(static_cast<Type>(13)), nullptr);
}

void tst_ToolManager::scribbleToolsHaveTheirOwnRanges()
{
    const auto *pen = qobject_cast<PenTool *>(m_manager->scribbleTool(Type::Pen));
    QVERIFY(pen);
    QCOMPARE(pen->penType(), PenType::Marker);
    QVERIFY(pen != m_manager->pen(PenType::Marker));
    // Diameters 3 to 6, opacities 0.1 to 1.
    QCOMPARE(pen->radiusBase(), 1.5);
    QCOMPARE(pen->radiusRange(), 1.5);
    QCOMPARE(pen->opacityBase(), 0.1);
    QCOMPARE(pen->opacityBase() + pen->opacityRange(), 1.0);

    const auto *eraser = qobject_cast<EraserTool *>(m_manager->scribbleTool(Type::Eraser));
    QVERIFY(eraser);
    QCOMPARE(eraser->eraserType(), EraserType::RubberEraser);
    QCOMPARE(eraser->radiusBase(), 5.0);
    QCOMPARE(eraser->radiusRange(), 10.0);
    QCOMPARE(eraser->opacityBase(), 1.0);
    QCOMPARE(eraser->opacityRange(), 0.0);
}

void tst_ToolManager::scribblingWithOtherToolsIsReported()
{
    QTest::ignoreMessage(QtWarningMsg, "scribbleTool() should always be a DrawingTool");
    QCOMPARE(m_manager->scribbleTool(Type::Lasso), nullptr);
}

void tst_ToolManager::settingAToolTellsCursorThenType()
{
    QStringList order;
    const QObject context;
    connect(m_manager, &ToolManager::cursorChanged, &context, [&] { order << QStringLiteral("cursor"); });
    connect(m_manager, &ToolManager::currentToolTypeChanged, &context, [&](Type current, Type previous) {
        order << QStringLiteral("type");
        QCOMPARE(current, Type::Hand);
        QCOMPARE(previous, Type::Pen);
        QCOMPARE(m_manager->currentToolType(), Type::Hand);
    });
    m_manager->setCurrentTool(Type::Hand, 0);
    QCOMPARE(order, (QStringList{"cursor", "type"}));
    QCOMPARE(m_manager->cursor(), m_manager->tool(Type::Hand)->cursor());
}

void tst_ToolManager::settingTheSameToolDoesNothing()
{
    QSignalSpy types(m_manager, &ToolManager::currentToolTypeChanged);
    QSignalSpy cursors(m_manager, &ToolManager::cursorChanged);
    m_manager->setCurrentTool(Type::Pen, 0);
    QVERIFY(types.isEmpty());
    QVERIFY(cursors.isEmpty());
}

void tst_ToolManager::sameTypeInAnotherModeGoesThroughTheWholeSequence()
{
    QSignalSpy types(m_manager, &ToolManager::currentToolTypeChanged);
    QSignalSpy cursors(m_manager, &ToolManager::cursorChanged);
    m_manager->setCurrentTool(Type::Pen, 1);
    QCOMPARE(m_manager->currentToolMode(), 1);
    QCOMPARE(types.size(), 1);
    QCOMPARE(types[0], (QVariantList{QVariant::fromValue(Type::Pen), QVariant::fromValue(Type::Pen)}));
    QCOMPARE(cursors.size(), 1);
}

void tst_ToolManager::settingNoneLeavesNoTool()
{
    QSignalSpy types(m_manager, &ToolManager::currentToolTypeChanged);
    QSignalSpy cursors(m_manager, &ToolManager::cursorChanged);
    m_manager->setCurrentTool(Type::None, 0);
    QCOMPARE(m_manager->currentTool(), nullptr);
    QCOMPARE(types.size(), 1);
    QCOMPARE(types[0], (QVariantList{QVariant::fromValue(Type::None), QVariant::fromValue(Type::Pen)}));
    QVERIFY(cursors.isEmpty());
    QCOMPARE(m_manager->cursor().shape(), Qt::ArrowCursor);
    m_manager->setCurrentTool(Type::Pen, 0);
}

void tst_ToolManager::latestTypesRememberTheirFamilies()
{
    const auto expect = [this](Type set, Type drawing, Type paper, Type edit) {
        m_manager->setCurrentTool(set, 0);
        QCOMPARE(m_manager->latestDrawingToolType(), drawing);
        QCOMPARE(m_manager->latestPaperToolType(), paper);
        QCOMPARE(m_manager->latestEditToolType(), edit);
    };
    expect(Type::Eraser, Type::Eraser, Type::Eraser, Type::Eraser);
    expect(Type::Lasso, Type::Eraser, Type::Lasso, Type::Eraser);
    expect(Type::FloatingSelection, Type::Eraser, Type::FloatingSelection, Type::FloatingSelection);
    expect(Type::Cutter, Type::Eraser, Type::Cutter, Type::FloatingSelection);
    for (const Type passing :
         {Type::Hand, Type::Zoom, Type::Rotate, Type::ZPR, Type::OffPegs, Type::Scrubbing, Type::PenAdjustment})
        expect(passing, Type::Eraser, Type::Cutter, Type::FloatingSelection);
    expect(Type::Pen, Type::Pen, Type::Pen, Type::Pen);
}

void tst_ToolManager::managerDoesNotComeBackByItself()
{
    m_manager->setCurrentTool(Tool::Type::Eraser, 0);
    QSignalSpy spy(m_manager, &ToolManager::currentToolTypeChanged);
    m_manager->setCurrentTool(Tool::Type::Hand, 0);
    QTest::qWait(20);
    QCOMPARE(m_manager->currentToolType(), Tool::Type::Hand);
    // Who took the hand up knows from the signal, and from the latest types, where to go back to.
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0][1].value<Tool::Type>(), Tool::Type::Eraser);
    QCOMPARE(m_manager->latestDrawingToolType(), Tool::Type::Eraser);
    QCOMPARE(m_manager->latestPaperToolType(), Tool::Type::Eraser);
}

void tst_ToolManager::toolFamiliesAreTold()
{
    for (int i = 0; i < 12; ++i) {
        const auto type = static_cast<Type>(i);
        m_manager->setCurrentTool(type, 0);
        QCOMPARE(m_manager->isDrawingOrErasing(), type == Type::Pen || type == Type::Eraser);
        QCOMPARE(m_manager->isLassoOrCutter(), type == Type::Lasso || type == Type::Cutter);
        QCOMPARE(ToolManager::isLassoOrCutterType(type), type == Type::Lasso || type == Type::Cutter);
    }
}

void tst_ToolManager::scrubbingKeepsTheCursorInPlace()
{
    QSignalSpy cursors(m_manager, &ToolManager::cursorChanged);
    m_manager->setCurrentTool(Type::Scrubbing, 0);
    QVERIFY(cursors.isEmpty());
    m_manager->setCurrentTool(Type::Zoom, 0);
    QCOMPARE(cursors.size(), 1);
    QCOMPARE(cursors[0][0].value<QCursor>(), m_manager->tool(Type::Zoom)->cursor());
}

void tst_ToolManager::cursorOfTheCurrentToolOnlyIsPassedOn()
{
    QSignalSpy cursors(m_manager, &ToolManager::cursorChanged);
    m_manager->pen(PenType::Brush)->setSizeRangePercent(10, 20);
    QVERIFY(cursors.isEmpty());
    m_manager->pen(PenType::Pencil)->setSizeRangePercent(10, 20);
    QCOMPARE(cursors.size(), 1);
}

void tst_ToolManager::penTypeChangesTheCurrentPen()
{
    QSignalSpy types(m_manager, &ToolManager::currentToolTypeChanged);
    QSignalSpy penTypes(m_manager, &ToolManager::currentPenToolTypeChanged);
    QSignalSpy cursors(m_manager, &ToolManager::cursorChanged);
    m_manager->setCurrentPenType(PenType::Brush);
    QCOMPARE(m_manager->currentTool(), m_manager->pen(PenType::Brush));
    QCOMPARE(m_manager->currentPenType(), PenType::Brush);
    QCOMPARE(types.size(), 1);
    QCOMPARE(types[0], (QVariantList{QVariant::fromValue(Type::Pen), QVariant::fromValue(Type::Pen)}));
    QCOMPARE(penTypes.size(), 1);
    QCOMPARE(penTypes[0], (QVariantList{QVariant::fromValue(PenType::Brush), QVariant::fromValue(PenType::Pencil)}));
    QCOMPARE(cursors.size(), 1);
}

void tst_ToolManager::penTypeIsToldEvenWhileErasing()
{
    m_manager->setCurrentTool(Type::Eraser, 0);
    QSignalSpy types(m_manager, &ToolManager::currentToolTypeChanged);
    QSignalSpy penTypes(m_manager, &ToolManager::currentPenToolTypeChanged);
    m_manager->setCurrentPenType(PenType::Marker);
    QCOMPARE(m_manager->currentToolType(), Type::Eraser);
    QCOMPARE(m_manager->tool(Type::Pen), m_manager->pen(PenType::Marker));
    QVERIFY(types.isEmpty());
    QCOMPARE(penTypes.size(), 1);
}

void tst_ToolManager::samePenTypeChangesNoTool()
{
    QSignalSpy types(m_manager, &ToolManager::currentToolTypeChanged);
    QSignalSpy penTypes(m_manager, &ToolManager::currentPenToolTypeChanged);
    m_manager->setCurrentPenType(PenType::Pencil);
    QVERIFY(types.isEmpty());
    QCOMPARE(penTypes.size(), 1);
    QCOMPARE(penTypes[0], (QVariantList{QVariant::fromValue(PenType::Pencil), QVariant::fromValue(PenType::Pencil)}));
}

void tst_ToolManager::eraserTypeChangesTheCurrentEraser()
{
    m_manager->setCurrentEraserType(EraserType::KneadedEraser);
    QCOMPARE(m_manager->currentToolType(), Type::Pen);
    m_manager->setCurrentTool(Type::Eraser, 0);
    QSignalSpy types(m_manager, &ToolManager::currentToolTypeChanged);
    QSignalSpy penTypes(m_manager, &ToolManager::currentPenToolTypeChanged);
    m_manager->setCurrentEraserType(EraserType::VinylEraser);
    QCOMPARE(m_manager->currentTool(), m_manager->eraser(EraserType::VinylEraser));
    QCOMPARE(m_manager->currentEraserType(), EraserType::VinylEraser);
    QCOMPARE(types.size(), 1);
    QCOMPARE(types[0], (QVariantList{QVariant::fromValue(Type::Eraser), QVariant::fromValue(Type::Eraser)}));
    QVERIFY(penTypes.isEmpty());
}

void tst_ToolManager::newPenIsHeldLikeTheOldOne()
{
    m_manager->setCurrentTool(Type::Pen, 1);
    m_manager->setCurrentTool(Type::Eraser, 0);
    m_manager->setCurrentPenType(PenType::Marker);
    m_manager->setCurrentTool(Type::Pen, 0);
    // The pencil was last held in mode 1; taking it up again now must not bring that back.
    m_manager->setCurrentPenType(PenType::Pencil);
    QCOMPARE(m_manager->currentToolMode(), 0);
}

void tst_ToolManager::rangesOfTheCurrentToolAreStored()
{
    m_manager->pen(PenType::Pencil)->setSizeRangePercent(11, 22);
    QCOMPARE(storedPercent("Pencil/SizeRangeLowerPercent"), 11.0);
    QCOMPARE(storedPercent("Pencil/SizeRangeUpperPercent"), 22.0);
    QCOMPARE(storedPercent("Pencil/OpacityRangeLowerPercent"), -1.0);
    m_manager->pen(PenType::Pencil)->setOpacityRangePercent(33, 44);
    QCOMPARE(storedPercent("Pencil/OpacityRangeLowerPercent"), 33.0);
    QCOMPARE(storedPercent("Pencil/OpacityRangeUpperPercent"), 44.0);
}

void tst_ToolManager::rangesOfOtherToolsAreNotStored()
{
    m_manager->pen(PenType::Brush)->setSizeRangePercent(11, 22);
    m_manager->setCurrentTool(Type::Hand, 0);
    m_manager->pen(PenType::Pencil)->setSizeRangePercent(11, 22);
    m_manager->scribbleTool(Type::Pen)->setSizeRangePercent(0, 100);
    QVERIFY(QSettings().allKeys().isEmpty());
}

void tst_ToolManager::rangesAdjustedByDraggingAreStoredAfterwards_data()
{
    QTest::addColumn<Tool::Type>("next");
    QTest::newRow("back to the pen") << Type::Pen;
    QTest::newRow("on to the eraser") << Type::Eraser;
    QTest::newRow("on to the hand") << Type::Hand;
}

void tst_ToolManager::rangesAdjustedByDraggingAreStoredAfterwards()
{
    QFETCH(Tool::Type, next);
    static_cast<PenAdjustmentTool *>(m_manager->tool(Type::PenAdjustment))
        ->setDrawingTool(m_manager->pen(PenType::Pencil));
    m_manager->setCurrentTool(Type::PenAdjustment, 1);
    m_manager->pen(PenType::Pencil)->setIncDecSizeRangePercent(-2, 40);
    QVERIFY(QSettings().allKeys().isEmpty());
    m_manager->setCurrentTool(next, 0);
    QCOMPARE(storedPercent("Pencil/SizeRangeLowerPercent"), 0.0);
    QCOMPARE(storedPercent("Pencil/SizeRangeUpperPercent"), 40.0);
}

void tst_ToolManager::stepsActOnTheCurrentDrawingTool()
{
    PenTool *pencil = m_manager->pen(PenType::Pencil);
    pencil->setSizeRangePercent(6, 46);
    m_manager->decreaseDrawingToolSizeRange();
    QCOMPARE(pencil->sizeMaxPercent(), 36.0);
    QCOMPARE(storedPercent("Pencil/SizeRangeUpperPercent"), 36.0);
    m_manager->increaseDrawingToolSizeRange();
    QCOMPARE(pencil->sizeMaxPercent(), 46.0);
    m_manager->setCurrentTool(Type::Lasso, 0);
    m_manager->decreaseDrawingToolSizeRange();
    m_manager->increaseDrawingToolSizeRange();
    QCOMPARE(pencil->sizeMaxPercent(), 46.0);
}

void tst_ToolManager::resettingPensRestoresAllPresets()
{
    for (const auto penType : {PenType::Pencil, PenType::Marker, PenType::Brush}) {
        PenTool *pen = m_manager->pen(penType);
        pen->setSizeRangePercent(90, 91);
        for (int preset = 0; preset < 4; ++preset)
            ToolManager::savePreset(pen, static_cast<MR::ToolPreset>(preset));
    }
    m_manager->eraser(EraserType::VinylEraser)->setSizeRangePercent(1, 2);

    m_manager->resetDrawingToolSettings();

    QCOMPARE(m_manager->pen(PenType::Pencil)->sizeMaxPercent(), 12.31);
    QCOMPARE(m_manager->pen(PenType::Marker)->sizeMaxPercent(), 4.33);
    QCOMPARE(m_manager->pen(PenType::Brush)->sizeMaxPercent(), 6.67);
    QCOMPARE(storedPercent("Pencil/SizeRangeUpperPercent"), 12.31);
    QCOMPARE(storedPercent("Pencil/Preset1/SizeRangeUpperPercent"), 12.31);
    QCOMPARE(storedPercent("Pencil/Preset2/SizeRangeUpperPercent"), 32.82);
    QCOMPARE(storedPercent("Pencil/Preset3/SizeRangeUpperPercent"), 8.21);
    QCOMPARE(storedPercent("Marker/Preset2/OpacityRangeLowerPercent"), 67.0);
    QCOMPARE(storedPercent("Brush/Preset3/SizeRangeLowerPercent"), 3.07);
    QCOMPARE(m_manager->eraser(EraserType::VinylEraser)->sizeMaxPercent(), 2.0);
}

void tst_ToolManager::resettingErasersRestoresTheirOnlyPreset()
{
    for (const auto type : {EraserType::KneadedEraser, EraserType::RubberEraser, EraserType::VinylEraser})
        m_manager->eraser(type)->setSizeRangePercent(1, 2);
    m_manager->pen(PenType::Brush)->setSizeRangePercent(1, 2);

    m_manager->resetErasingToolSettings();

    QCOMPARE(m_manager->eraser(EraserType::KneadedEraser)->sizeMaxPercent(), 24.1);
    QCOMPARE(m_manager->eraser(EraserType::RubberEraser)->sizeMaxPercent(), 22.05);
    QCOMPARE(m_manager->eraser(EraserType::VinylEraser)->sizeMaxPercent(), 47.18);
    QCOMPARE(storedPercent("KneadedEraser/SizeRangeUpperPercent"), 24.1);
    QCOMPARE(storedPercent("VinylEraser/OpacityRangeUpperPercent"), 100.0);
    QCOMPARE(storedPercent("KneadedEraser/Preset1/SizeRangeUpperPercent"), -1.0);
    QCOMPARE(m_manager->pen(PenType::Brush)->sizeMaxPercent(), 2.0);
}

void tst_ToolManager::presetsAreSavedAndLoaded()
{
    PenTool *brush = m_manager->pen(PenType::Brush);
    ToolManager::loadPreset(brush, MR::ToolPreset::Preset2);
    QCOMPARE(brush->sizeMaxPercent(), 16.5);
    brush->setSizeRangePercent(12, 34);
    brush->setOpacityRangePercent(56, 78);
    ToolManager::savePreset(brush, MR::ToolPreset::Preset2);
    ToolManager::loadPreset(brush, MR::ToolPreset::Preset3);
    QCOMPARE(brush->sizeMaxPercent(), 38.97);
    ToolManager::loadPreset(brush, MR::ToolPreset::Preset2);
    QCOMPARE(brush->sizeMinPercent(), 12.0);
    QCOMPARE(brush->sizeMaxPercent(), 34.0);
    QCOMPARE(brush->opacityMinPercent(), 56.0);
    QCOMPARE(brush->opacityMaxPercent(), 78.0);
}

void tst_ToolManager::cursorSettingsActOnTheCurrentTool()
{
    QSignalSpy cursors(m_manager, &ToolManager::cursorChanged);
    Settings::instance()->setDrawCursorType(MR::DrawCursorType::FixedSmall);
    QCOMPARE(cursors.size(), 1);
    QCOMPARE(cursors[0][0].value<QCursor>().pixmap().cacheKey(),
             cursorPixmap(QStringLiteral("pointer-drawFixedFaint")).cacheKey());
    Settings::instance()->setDrawCursorOpacity(MR::DrawCursorOpacity::Opaque);
    QCOMPARE(m_manager->cursor().pixmap().cacheKey(),
             cursorPixmap(QStringLiteral("pointer-drawFixedOpaque")).cacheKey());
    m_manager->setCurrentTool(Type::Eraser, 0);
    QCOMPARE(m_manager->cursor().pixmap().cacheKey(),
             cursorPixmap(QStringLiteral("pointer-eraseFixedOpaque")).cacheKey());
    Settings::instance()->setDrawCursorOpacity(MR::DrawCursorOpacity::Faint);
    QCOMPARE(m_manager->cursor().pixmap().cacheKey(),
             cursorPixmap(QStringLiteral("pointer-eraseFixedFaint")).cacheKey());
}

void tst_ToolManager::viewScaleReachesAllDrawingTools()
{
    QSignalSpy cursors(m_manager, &ToolManager::cursorChanged);
    m_manager->setViewScale(4.0);
    QCOMPARE(cursors.size(), 1);
    QCOMPARE(m_manager->pen(PenType::Brush)->viewScale(), 4.0);
    QCOMPARE(m_manager->eraser(EraserType::KneadedEraser)->viewScale(), 4.0);
}

void tst_ToolManager::hugeTipsShowTheSmallCursor()
{
    // A diameter of 45 under a view of 11.3 is 508 logical pixels, 1017 of the picture; with 11.4 it would be 1026.
    m_manager->pen(PenType::Pencil)->setSizeRangePercent(0, 100);
    m_manager->setViewScale(11.3);
    QVERIFY(m_manager->cursor().pixmap().width() > 1000);
    m_manager->setViewScale(11.4);
    QCOMPARE(m_manager->cursor().pixmap().cacheKey(),
             cursorPixmap(QStringLiteral("pointer-drawFixedFaint")).cacheKey());
}

QTEST_MAIN(tst_ToolManager)
#include "tst_toolmanager.moc"
