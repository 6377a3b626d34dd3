// Which frames shine through, on sheets written as text: one letter for each frame of a layer, o for a drawing, c for a
// hold, d for a distant clone, k for a key drawing, h for a hold marked as one.

#include "libmodel/scene/backlightframes.h"

#include <QTest>

using namespace Model;

namespace {

using ShowOption = BacklightSetting::ShowOption;

/// A sheet of the layers that shine through, the active one first.
BacklightSheet sheet(const QStringList &layers, int activeFrame, int rangeFirst, int rangeLast)
{
    BacklightSheet result;
    result.activeFrame = activeFrame;
    result.rangeFirst = rangeFirst;
    result.rangeLast = rangeLast;
    result.lastFrame = static_cast<int>(layers.first().size());
    for (const QString &layer : layers)
        result.maximumFrame = std::max(result.maximumFrame, static_cast<int>(layer.size()));
    result.hasNewDrawing = [layers](int frameId) {
        for (const QString &layer : layers) {
            if (frameId >= 1 && frameId <= layer.size() && QString("odk").contains(layer.at(frameId - 1)))
                return true;
        }
        return false;
    };
    result.isKeyDrawing = [layers](int frameId) {
        return frameId >= 1 && frameId <= layers.first().size() &&
               QString("kh").contains(layers.first().at(frameId - 1));
    };
    return result;
}

BacklightSheet wholeSheet(const QString &layer, int activeFrame)
{
    return sheet({layer}, activeFrame, 1, static_cast<int>(layer.size()));
}

/// The frames as "frame:hue ...", in painting order.
QString text(const QList<BacklightFrame> &frames)
{
    QStringList parts;
    for (const BacklightFrame &frame : frames)
        parts += QString("%1:%2").arg(frame.frameId).arg(frame.hueShift);
    return parts.join(' ');
}

BacklightSetting levels(int before, int after, ShowOption option = ShowOption::StopAtEnds)
{
    BacklightSetting setting;
    setting.opacityLevelsBefore = QList<double>(before, 0.5);
    setting.opacityLevelsAfter = QList<double>(after, 0.5);
    setting.showOption = option;
    return setting;
}

} // namespace

class tst_BacklightFrames : public QObject
{
    Q_OBJECT

private slots:
    void neighboursOfAFrame_data();
    void neighboursOfAFrame();
    void levelsAreGivenInOrderOfDistance();
    void levelListThatStartsFaintlyShowsNothingOnThatSide_data();
    void levelListThatStartsFaintlyShowsNothingOnThatSide();
    void faintLevelEndsTheListForGood();
    void rangeOfTwoFramesHoldsOneNeighbourAndStops();
    void withoutTintAllHuesStay();
    void wrappedFrameStandsOnBothSides();
    void onlyKeyDrawingsOfTheActiveLayerCount_data();
    void onlyKeyDrawingsOfTheActiveLayerCount();
    void opacitiesAreComparedFuzzily();
};

void tst_BacklightFrames::neighboursOfAFrame_data()
{
    QTest::addColumn<QStringList>("layers");
    QTest::addColumn<QList<int>>("position"); // active frame, first and last of the range
    QTest::addColumn<ShowOption>("option");
    QTest::addColumn<QString>("expected"); // with two levels on each side

    const auto stop = ShowOption::StopAtEnds;
    const auto wrap = ShowOption::WrapAtEnds;
    const auto outside = ShowOption::ShowOutsideRange;
    const auto row = [](const char *name, const QStringList &layers, const QList<int> &position, ShowOption option,
                        const char *expected) {
        QTest::newRow(name) << layers << position << option << QString(expected);
    };
    row("in the middle", {"ooooo"}, {3, 1, 5}, stop, "1:-60 5:60 2:-30 4:30");
    row("first of the range", {"ooooo"}, {1, 1, 5}, stop, "3:60 2:30");
    row("last of the range", {"ooooo"}, {5, 1, 5}, stop, "3:-60 4:-30");
    row("range ends inside", {"oooooo"}, {4, 3, 5}, stop, "3:-30 5:30");
    row("holds are left out", {"occoccocco"}, {4, 1, 10}, stop, "10:60 1:-30 7:30");
    row("distant clones count", {"odcdo"}, {4, 1, 5}, stop, "1:-60 2:-30 5:30");
    row("held drawing is no neighbour", {"ocoocco"}, {6, 1, 7}, stop, "1:-60 3:-30 7:30");
    row("hold of the first drawing", {"occo"}, {3, 1, 4}, stop, "4:30");
    row("range begins in a hold", {"ocooc"}, {3, 2, 5}, stop, "2:-30 4:30");
    row("first of the range held", {"occcc"}, {3, 2, 5}, stop, "");
    row("another layer's drawings count", {"occcc", "ocooc"}, {5, 1, 5}, stop, "1:-60 3:-30");
    row("frames of the longer layer alone", {"oo", "ocoo"}, {1, 1, 4}, stop, "3:60 2:30");
    row("behind the last cell", {"oooo"}, {5, 1, 4}, stop, "3:-60 4:-30");
    row("behind the last cell, inside the range", {"oo", "ooooo"}, {3, 1, 5}, stop, "1:-60 5:60 2:-30 4:30");
    row("behind the last cell, the range ends before", {"oooooo"}, {7, 1, 4}, stop, "");
    row("wrapped from the last", {"ooooo"}, {5, 1, 5}, wrap, "3:-60 2:60 4:-30 1:30");
    row("wrapped from the first", {"ooooo"}, {1, 1, 5}, wrap, "4:-60 3:60 5:-30 2:30");
    row("wrapped at a range inside", {"oooooo"}, {4, 2, 4}, wrap, "2:-60 3:60 3:-30 2:30");
    row("wrapped to the last drawing, not its hold", {"ooocc"}, {1, 1, 5}, wrap, "2:-60 3:60 3:-30 2:30");
    row("wrapped behind the last cell", {"oooo"}, {5, 1, 4}, wrap, "3:-60 2:60 4:-30 1:30");
    row("wrapped, the other layer longer", {"oo", "oooo"}, {1, 1, 4}, wrap, "1:-60 3:60 2:-30 2:30");
    row("outside of the range", {"ooooooo"}, {4, 3, 5}, outside, "2:-60 6:60 3:-30 5:30");
    row("outside, first of all", {"ooooo"}, {1, 1, 3}, outside, "3:60 2:30");
    row("outside, last of all", {"ooooo"}, {5, 3, 5}, outside, "3:-60 4:-30");
    row("outside, behind the last cell", {"ooooo"}, {6, 1, 5}, outside, "4:-60 5:-30");
    row("outside, a held range begins nowhere", {"occco"}, {4, 2, 4}, outside, "5:30");
    row("one frame", {"o"}, {1, 1, 1}, stop, "");
    row("one frame, wrapped", {"o"}, {1, 1, 1}, wrap, "1:-60 1:60 1:-30 1:30");
}

void tst_BacklightFrames::neighboursOfAFrame()
{
    QFETCH(QStringList, layers);
    QFETCH(QList<int>, position);
    QFETCH(ShowOption, option);
    QFETCH(QString, expected);
    const BacklightSheet cells = sheet(layers, position.at(0), position.at(1), position.at(2));
    QCOMPARE(text(backlightFrames(levels(2, 2, option), false, cells)), expected);
}

void tst_BacklightFrames::levelsAreGivenInOrderOfDistance()
{
    BacklightSetting setting;
    setting.opacityLevelsBefore = {0.4, 0.3, 0.2};
    setting.opacityLevelsAfter = {0.6, 0.5};
    const QList<BacklightFrame> expected{{2, 0.2, -90}, {3, 0.3, -60}, {7, 0.5, 60}, {4, 0.4, -30}, {6, 0.6, 30}};
    QCOMPARE(backlightFrames(setting, false, wholeSheet("ooooooooo", 5)), expected);
}

void tst_BacklightFrames::levelListThatStartsFaintlyShowsNothingOnThatSide_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("0") << 0.0 << false;
    QTest::newRow("0.005") << 0.005 << false;
    QTest::newRow("0.01") << 0.01 << false;
    QTest::newRow("0.011") << 0.011 << true;
}

void tst_BacklightFrames::levelListThatStartsFaintlyShowsNothingOnThatSide()
{
    QFETCH(double, level);
    QFETCH(bool, isShown);
    BacklightSetting setting;
    setting.opacityLevelsBefore = {level, 0.5, 0.5};
    setting.opacityLevelsAfter = {0.5};
    QCOMPARE(text(backlightFrames(setting, false, wholeSheet("ooooooo", 4))),
             QString(isShown ? "1:-90 2:-60 3:-30 5:30" : "5:30"));
    std::swap(setting.opacityLevelsBefore, setting.opacityLevelsAfter);
    QCOMPARE(text(backlightFrames(setting, false, wholeSheet("ooooooo", 4))),
             QString(isShown ? "7:90 6:60 3:-30 5:30" : "3:-30"));
}

void tst_BacklightFrames::faintLevelEndsTheListForGood()
{
    BacklightSetting setting;
    setting.opacityLevelsBefore = {0.5, 0.0, 0.5};
    setting.opacityLevelsAfter = {};
    QCOMPARE(text(backlightFrames(setting, false, wholeSheet("ooooooo", 5))), QString("4:-30"));
}

void tst_BacklightFrames::rangeOfTwoFramesHoldsOneNeighbourAndStops()
{
    QCOMPARE(text(backlightFrames(levels(3, 3), false, sheet({"oooooo"}, 3, 3, 4))), QString("4:30"));
    QCOMPARE(text(backlightFrames(levels(3, 3), false, sheet({"oooooo"}, 4, 3, 4))), QString("3:-30"));
}

void tst_BacklightFrames::withoutTintAllHuesStay()
{
    BacklightSetting setting = levels(2, 2);
    setting.hueShift = BacklightSetting::HueShift::NoHueShift;
    QCOMPARE(text(backlightFrames(setting, false, wholeSheet("ooooo", 3))), QString("1:0 5:0 2:0 4:0"));
}

void tst_BacklightFrames::wrappedFrameStandsOnBothSides()
{
    BacklightSetting setting;
    setting.opacityLevelsBefore = {0.4};
    setting.opacityLevelsAfter = {0.3};
    setting.showOption = ShowOption::WrapAtEnds;
    const QList<BacklightFrame> expected{{1, 0.4, -30}, {1, 0.3, 30}};
    QCOMPARE(backlightFrames(setting, false, wholeSheet("oo", 2)), expected);
}

void tst_BacklightFrames::onlyKeyDrawingsOfTheActiveLayerCount_data()
{
    QTest::addColumn<QStringList>("layers");
    QTest::addColumn<int>("activeFrame");
    QTest::addColumn<ShowOption>("option");
    QTest::addColumn<QString>("expected");
    const auto stop = ShowOption::StopAtEnds;
    const auto wrap = ShowOption::WrapAtEnds;
    const auto outside = ShowOption::ShowOutsideRange;
    QTest::newRow("between keys") << QStringList{"koookooko"} << 3 << stop << "8:60 1:-30 5:30";
    QTest::newRow("on a key") << QStringList{"koookooko"} << 5 << stop << "1:-30 8:30";
    QTest::newRow("first of the range is no key") << QStringList{"oooook"} << 4 << stop << "6:30";
    QTest::newRow("keys of others do not count") << QStringList{"oooooo", "kkkkkk"} << 3 << stop << "";
    QTest::newRow("marked hold") << QStringList{"oohooo"} << 5 << stop << "3:-30";
    QTest::newRow("wrapped") << QStringList{"okoooko"} << 7 << wrap << "2:-60 6:60 6:-30 2:30";
    QTest::newRow("outside") << QStringList{"koooook"} << 4 << outside << "1:-30 7:30";
    // The held drawing is passed over as the nearest that qualifies, which is a key here.
    QTest::newRow("on a hold") << QStringList{"kokoco"} << 5 << stop << "1:-30";
}

void tst_BacklightFrames::onlyKeyDrawingsOfTheActiveLayerCount()
{
    QFETCH(QStringList, layers);
    QFETCH(int, activeFrame);
    QFETCH(ShowOption, option);
    QFETCH(QString, expected);
    const int last = static_cast<int>(layers.first().size());
    const BacklightSheet cells = sheet(layers, activeFrame, 1, last);
    QCOMPARE(text(backlightFrames(levels(2, 2, option), true, cells)), expected);
}

void tst_BacklightFrames::opacitiesAreComparedFuzzily()
{
    const BacklightFrame frame{3, 0.3, 30};
    QCOMPARE(frame, (BacklightFrame{3, 0.1 + 0.2, 30}));
    QVERIFY(!(frame == BacklightFrame{3, 0.3001, 30}));
    QVERIFY(!(frame == BacklightFrame{4, 0.3, 30}));
    QVERIFY(!(frame == BacklightFrame{3, 0.3, -30}));
}

QTEST_APPLESS_MAIN(tst_BacklightFrames)
#include "tst_backlightframes.moc"
