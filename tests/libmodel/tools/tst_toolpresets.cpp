#include "libmodel/tools/toolpresets.h"

#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/pentool.h"

#include <QTest>

using namespace Model;

class tst_ToolPresets : public QObject
{
    Q_OBJECT

private slots:
    void presetsSetLimitsAndRanges_data();
    void presetsSetLimitsAndRanges();
    void pencilAtZeroPercentIsHalfAPixelThick();
    void kneadedEraserNeverTakesMoreThanThreeQuarters();
    void erasersHaveOnePresetForAll();
};

void tst_ToolPresets::presetsSetLimitsAndRanges_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<int>("preset");
    // Lower and upper: size limits, opacity limits, size percent, opacity percent.
    QTest::addColumn<QList<double>>("numbers");

    const auto row = [](const char *tool, int preset, const QList<double> &numbers) {
        QTest::addRow("%s %d", tool, preset) << QString::fromLatin1(tool) << preset << numbers;
    };
    for (const int preset : {0, 1}) {
        row("Pencil", preset, {0.5, 45, 0, 0.75, 5.0, 12.31, 2.0, 56.0});
        row("Marker", preset, {0.5, 90, 0.1, 1.0, 2.33, 4.33, 5.0, 80.0});
        row("Brush", preset, {0.5, 180, 0.5, 1.0, 0, 6.67, 100, 100});
    }
    row("Pencil", 2, {0.5, 45, 0, 0.75, 8.72, 32.82, 2.0, 40.0});
    row("Pencil", 3, {0.5, 45, 0, 0.75, 1.17, 8.21, 3.0, 100});
    row("Marker", 2, {0.5, 90, 0.1, 1.0, 2.83, 10.75, 67.0, 100});
    row("Marker", 3, {0.5, 90, 0.1, 1.0, 1.67, 22.0, 0, 44.5});
    row("Brush", 2, {0.5, 180, 0.5, 1.0, 0.27, 16.5, 0, 100});
    row("Brush", 3, {0.5, 180, 0.5, 1.0, 3.07, 38.97, 80.0, 100});
    row("KneadedEraser", 0, {10, 135, 0, 0.75, 0, 24.1, 10.0, 100});
    row("RubberEraser", 0, {0.5, 90, 0.25, 1.0, 1.67, 22.05, 100, 100});
    row("VinylEraser", 0, {30, 180, 0.5, 1.0, 5.0, 47.18, 100, 100});
}

namespace {

std::unique_ptr<DrawingTool> toolNamed(const QString &name)
{
    for (int kind = 0; kind < 3; ++kind) {
        auto pen = std::make_unique<PenTool>(static_cast<Tool::PenType>(kind));
        if (pen->settingsName() == name)
            return pen;
        auto eraser = std::make_unique<EraserTool>(static_cast<Tool::EraserType>(kind));
        if (eraser->settingsName() == name)
            return eraser;
    }
    return nullptr;
}

QList<double> numbersOf(const DrawingTool &tool)
{
    return {tool.sizeLowerLimit(), tool.sizeUpperLimit(), tool.opacityLowerLimit(), tool.opacityUpperLimit(),
            tool.sizeMinPercent(), tool.sizeMaxPercent(), tool.opacityMinPercent(), tool.opacityMaxPercent()};
}

} // namespace

void tst_ToolPresets::presetsSetLimitsAndRanges()
{
    QFETCH(QString, tool);
    QFETCH(int, preset);
    QFETCH(QList<double>, numbers);
    const std::unique_ptr<DrawingTool> tested = toolNamed(tool);
    QVERIFY(tested);
    // From somewhere else, so that nothing of what stood before remains.
    tested->setSizeRangeLimits(170, 175);
    tested->setOpacityRangeLimits(0.97, 0.98);
    tested->setSizeRangePercent(98, 99);
    tested->setOpacityRangePercent(98, 99);
    applyPreset(*tested, static_cast<MR::ToolPreset>(preset));
    QCOMPARE(numbersOf(*tested), numbers);
}

void tst_ToolPresets::pencilAtZeroPercentIsHalfAPixelThick()
{
    PenTool tool(Tool::PenType::Pencil);
    applyPreset(tool, MR::ToolPreset::Default);
    tool.setSizeRangePercent(0, 0);
    QCOMPARE(2.0 * tool.radiusBase(), 0.5);
}

void tst_ToolPresets::kneadedEraserNeverTakesMoreThanThreeQuarters()
{
    EraserTool tool(Tool::EraserType::KneadedEraser);
    applyPreset(tool, MR::ToolPreset::Default);
    tool.setOpacityRangePercent(0, 100);
    QCOMPARE(tool.opacityBase() + tool.opacityRange(), 0.75);
}

void tst_ToolPresets::erasersHaveOnePresetForAll()
{
    for (int kind = 0; kind < 3; ++kind) {
        EraserTool first(static_cast<Tool::EraserType>(kind));
        applyPreset(first, MR::ToolPreset::Default);
        for (int preset = 1; preset < 4; ++preset) {
            EraserTool other(static_cast<Tool::EraserType>(kind));
            applyPreset(other, static_cast<MR::ToolPreset>(preset));
            QCOMPARE(numbersOf(other), numbersOf(first));
        }
    }
}

QTEST_GUILESS_MAIN(tst_ToolPresets)
#include "tst_toolpresets.moc"
