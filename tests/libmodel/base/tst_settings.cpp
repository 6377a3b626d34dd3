#include "libmodel/base/settings.h"

#include "libmodel/base/settingsbatch.h"
#include "support/isolatedstore.h"

#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <map>

using Model::Settings;

namespace {

/// A value of the settings as seen from outside: its key, default, another value, and how it is read and changed.
struct Probe
{
    const char *path;
    QVariant initial;
    QVariant other;
    QVariant otherInStore;
    std::function<QVariant()> get;
    std::function<void()> setOther;
};

template<typename T, typename Setter>
Probe probe(const char *path, T (Settings::*getter)() const, Setter setter, const T &initial, const T &other,
            const QVariant &otherInStore)
{
    Settings *settings = Settings::instance();
    return {path,
            QVariant::fromValue(initial),
            QVariant::fromValue(other),
            otherInStore,
            [=] { return QVariant::fromValue((settings->*getter)()); },
            [=] { (settings->*setter)(other); }};
}

template<typename T, typename Setter>
Probe plain(const char *path, T (Settings::*getter)() const, Setter setter, const T &initial, const T &other)
{
    return probe(path, getter, setter, initial, other, QVariant::fromValue(other));
}

QList<Probe> probes()
{
    using S = Settings;
    const QString tools = QStringLiteral("Draw|Erase|Spacer|BacklightOnOff|Spacer|Pan|Zoom|Rotate|Spacer|"
                                         "AddBlankDrawing|ClearDrawingMakingBlank|DiscardDrawing");
    const QString dial = QStringLiteral("Play|Cutter|Erase|FitPaperToView|BacklightOnOff|ResetView|Draw|Lasso");
    const QString secondDial =
        QStringLiteral("ToggleXSheetDragMode|LoseDrawingMakingHold|AddBlankDrawing|PencilPreset2|PencilPreset1|"
                       "BrushPreset1|DiscardDrawing|ClearDrawingMakingBlank");
    const QString text = QStringLiteral("some, text; of mine");
    const QByteArray bytes("\x00\x01geometry", 10);
    return {
        plain("Preferences/ShowBeyondButtons", &S::showBeyondButtons, &S::setShowBeyondButtons, false, true),
        plain("Preferences/ClonesLockedForDrawing", &S::clonesLockedForDrawing, &S::setClonesLockedForDrawing, false,
              true),
        plain("Preferences/DefaultSaveDir", &S::defaultSaveDir, &S::setDefaultSaveDir, QString(), text),
        plain("Preferences/DefaultImportDir", &S::defaultImportDir, &S::setDefaultImportDir, QString(), text),
        plain("Preferences/DefaultFrameSize", &S::defaultFrameSize, &S::setDefaultFrameSize, QSize(1920, 1080),
              QSize(640, 8192)),
        plain("Preferences/DefaultFrameRate", &S::defaultFrameRate, &S::setDefaultFrameRate, 12.0, 12.5),
        plain("Preferences/DefaultInitialNumberOfFrames", &S::defaultInitialNumberOfFrames,
              &S::setDefaultInitialNumberOfFrames, 1, 240),
        probe("Preferences/DefaultChangeFrameSizeFitMode", &S::defaultChangeFrameSizeFitMode,
              &S::setDefaultChangeFrameSizeFitMode, MR::FitMode::FitModeKeepAspect, MR::FitMode::FitModeCropCenter,
              QStringLiteral("FitModeCropCenter")),
        plain("Preferences/ShowVideoTutorialsOnStartup", &S::showVideoTutorialsOnStartup,
              &S::setShowVideoTutorialsOnStartup, true, false),
        plain("Preferences/CollapseVectorDataAutomatically", &S::collapseAutomatically, &S::setCollapseAutomatically,
              false, true),
        plain("Preferences/UIScalePercent", &S::uiScalePercent, &S::setUiScalePercent, 100, 125),
        plain("Preferences/AutoSave/Enabled", &S::autoSaveEnabled, &S::setAutoSaveEnabled, false, true),
        plain("Preferences/AutoSave/IntervalMins", &S::autoSaveIntervalMins, &S::setAutoSaveIntervalMins, 15, 60),
        plain("Preferences/AutoSave/NumFiles", &S::autoSaveNumFiles, &S::setAutoSaveNumFiles, 3, 9),
        probe("Preferences/Grid/Type", &S::gridType, &S::setGridType, MR::GridType::FieldGuide, MR::GridType::Thirds,
              QStringLiteral("Thirds")),
        probe("Preferences/Transparency/Type", &S::transparencyType, &S::setTransparencyType,
              MR::TransparencyType::TransparencyWhite, MR::TransparencyType::TransparencyBlack,
              QStringLiteral("TransparencyBlack")),
        probe("Preferences/DrawCursor/Type", &S::drawCursorType, &S::setDrawCursorType, MR::DrawCursorType::AdaptToSize,
              MR::DrawCursorType::FixedSmall, QStringLiteral("FixedSmall")),
        probe("Preferences/DrawCursor/Opacity", &S::drawCursorOpacity, &S::setDrawCursorOpacity,
              MR::DrawCursorOpacity::Faint, MR::DrawCursorOpacity::Opaque, QStringLiteral("Opaque")),
        probe("Preferences/XSheet/ThumbnailSize", &S::thumbnailSize, &S::setThumbnailSize,
              MR::ThumbnailSize::ThumbnailMedium, MR::ThumbnailSize::ThumbnailTiny, QStringLiteral("ThumbnailTiny")),
        plain("Preferences/XSheet/ShowTopBar", &S::showXSheetTopBar, &S::setShowXSheetTopBar, false, true),
        plain("Preferences/ToolBar/ActionList", &S::toolBarActionList, &S::setToolBarActionList, tools, text),
        plain("Preferences/SpeedDials/PrimaryActionList", &S::primaryActionList, &S::setPrimaryActionList, dial, text),
        plain("Preferences/SpeedDials/SecondaryActionList", &S::secondaryActionList, &S::setSecondaryActionList,
              secondDial, text),
        plain("RecentFiles/RecentScenes", &S::recentScenes, &S::setRecentScenes, QStringList(),
              QStringList{QStringLiteral("/a, b.mr"), QStringLiteral("/c.mr")}),
        plain("MainWindow/geometry", &S::mainWindowGeometry, &S::setMainWindowGeometry, QByteArray(), bytes),
        plain("ReferenceDisplay/geometry", &S::referenceDisplayGeometry, &S::setReferenceDisplayGeometry, QByteArray(),
              bytes),
        plain("XSheetWindow/geometry", &S::xSheetWindowGeometry, &S::setXSheetWindowGeometry, QByteArray(), bytes),
    };
}

} // namespace

class tst_Settings : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_store.reset(); }

    void valuesStartAtTheirDefaults_data() { addProbes(); }
    void valuesStartAtTheirDefaults();
    void settersWriteTheirKeyAtOnce_data() { addProbes(); }
    void settersWriteTheirKeyAtOnce();
    void storedValuesAreLoaded_data() { addProbes(); }
    void storedValuesAreLoaded();
    void settingTheSameValueWritesNothing_data() { addProbes(); }
    void settingTheSameValueWritesNothing();

    void changesAreSignalledOnce();
    void settingTheSameValueSignalsNothing();
    void loadingSignalsNothing();
    void eachAutoSaveValueSignals();
    void gettersNeverTouchTheStore();

    void unknownGridTypeReadsAsFieldGuide();
    void unknownTransparencyTypeReadsAsSmallLightCheckers();
    void numberInPlaceOfAKeyReadsAsTheFirstValue();
    void valuesThatMakeNoSenseReadAsTheDefault_data();
    void valuesThatMakeNoSenseReadAsTheDefault();
    void settingTheDefaultReplacesWhatMadeNoSense_data() { valuesThatMakeNoSenseReadAsTheDefault_data(); }
    void settingTheDefaultReplacesWhatMadeNoSense();
    void valueThatReplacesNonsenseIsWrittenOnceAndNotSignalled();

    void slideModeIsNotStored();
    void collapseScaleIsTwo();
    void addingARecentSceneMovesItToTheFront();
    void removingARecentSceneLeavesTheOthers();
    void oneRecentSceneSurvivesTheStore();
    void resetPutsThePreferencesBack();
    void batchReachesTheDiskAtItsEnd();

private:
    static void addProbes();
    IsolatedStore m_store;
};

void tst_Settings::addProbes()
{
    QTest::addColumn<int>("index");
    const QList<Probe> all = probes();
    for (int i = 0; i < all.size(); ++i)
        QTest::newRow(all[i].path) << i;
}

void tst_Settings::valuesStartAtTheirDefaults()
{
    QFETCH(int, index);
    const Probe tested = probes()[index];
    QCOMPARE(tested.get(), tested.initial);
}

void tst_Settings::settersWriteTheirKeyAtOnce()
{
    QFETCH(int, index);
    const Probe tested = probes()[index];
    tested.setOther();
    QCOMPARE(tested.get(), tested.other);
    QCOMPARE(QSettings().allKeys(), QStringList(QString::fromLatin1(tested.path)));
    QCOMPARE(QSettings().value(QString::fromLatin1(tested.path)), tested.otherInStore);
}

void tst_Settings::storedValuesAreLoaded()
{
    QFETCH(int, index);
    const Probe tested = probes()[index];
    m_store.load(QString::fromLatin1(tested.path), tested.otherInStore);
    QCOMPARE(tested.get(), tested.other);
}

void tst_Settings::settingTheSameValueWritesNothing()
{
    QFETCH(int, index);
    const Probe tested = probes()[index];
    tested.setOther();
    QSettings().clear();
    tested.setOther();
    QVERIFY(QSettings().allKeys().isEmpty());
}

void tst_Settings::changesAreSignalledOnce()
{
    Settings *settings = Settings::instance();
    QSignalSpy beyond(settings, &Settings::showBeyondButtonsChanged);
    QSignalSpy clones(settings, &Settings::clonesLockedForDrawingChanged);
    QSignalSpy slide(settings, &Settings::slideModeChanged);
    QSignalSpy grid(settings, &Settings::gridTypeChanged);
    QSignalSpy thumbnail(settings, &Settings::thumbnailSizeChanged);
    QSignalSpy transparency(settings, &Settings::transparencyTypeChanged);
    QSignalSpy cursorType(settings, &Settings::drawCursorTypeChanged);
    QSignalSpy cursorOpacity(settings, &Settings::drawCursorOpacityChanged);
    QSignalSpy collapse(settings, &Settings::collapseAutomaticallyChanged);
    QSignalSpy topBar(settings, &Settings::showXSheetTopBarChanged);
    QSignalSpy scale(settings, &Settings::UIScaleChanged);

    settings->setShowBeyondButtons(true);
    settings->setClonesLockedForDrawing(true);
    settings->setSlideMode(true);
    settings->setGridType(MR::GridType::Safety);
    settings->setThumbnailSize(MR::ThumbnailSize::ThumbnailLarge);
    settings->setTransparencyType(MR::TransparencyType::TransparencyBlack);
    settings->setDrawCursorType(MR::DrawCursorType::FixedSmall);
    settings->setDrawCursorOpacity(MR::DrawCursorOpacity::Opaque);
    settings->setCollapseAutomatically(true);
    settings->setShowXSheetTopBar(true);
    settings->setUiScalePercent(150);

    const auto only = [](const QSignalSpy &spy) { return spy.size() == 1 ? spy[0][0] : QVariant(); };
    QCOMPARE(only(beyond), QVariant(true));
    QCOMPARE(only(clones), QVariant(true));
    QCOMPARE(only(slide), QVariant(true));
    QCOMPARE(only(grid), QVariant::fromValue(MR::GridType::Safety));
    QCOMPARE(only(thumbnail), QVariant::fromValue(MR::ThumbnailSize::ThumbnailLarge));
    QCOMPARE(only(transparency), QVariant::fromValue(MR::TransparencyType::TransparencyBlack));
    QCOMPARE(only(cursorType), QVariant::fromValue(MR::DrawCursorType::FixedSmall));
    QCOMPARE(only(cursorOpacity), QVariant::fromValue(MR::DrawCursorOpacity::Opaque));
    QCOMPARE(only(collapse), QVariant(true));
    QCOMPARE(only(topBar), QVariant(true));
    QCOMPARE(only(scale), QVariant(150));
    settings->setSlideMode(false);
}

void tst_Settings::settingTheSameValueSignalsNothing()
{
    Settings *settings = Settings::instance();
    QSignalSpy transparency(settings, &Settings::transparencyTypeChanged);
    QSignalSpy slide(settings, &Settings::slideModeChanged);
    QSignalSpy autoSave(settings, &Settings::autoSaveChanged);
    settings->setTransparencyType(MR::TransparencyType::TransparencyWhite);
    settings->setSlideMode(false);
    settings->setAutoSaveIntervalMins(15);
    QVERIFY(transparency.isEmpty());
    QVERIFY(slide.isEmpty());
    QVERIFY(autoSave.isEmpty());
}

void tst_Settings::loadingSignalsNothing()
{
    QSignalSpy grid(Settings::instance(), &Settings::gridTypeChanged);
    m_store.load(QStringLiteral("Preferences/Grid/Type"), QStringLiteral("Diagonals"));
    QCOMPARE(Settings::instance()->gridType(), MR::GridType::Diagonals);
    QVERIFY(grid.isEmpty());
}

void tst_Settings::eachAutoSaveValueSignals()
{
    Settings *settings = Settings::instance();
    QSignalSpy autoSave(settings, &Settings::autoSaveChanged);
    settings->setAutoSaveEnabled(true);
    QCOMPARE(autoSave.size(), 1);
    settings->setAutoSaveIntervalMins(5);
    QCOMPARE(autoSave.size(), 2);
    settings->setAutoSaveNumFiles(1);
    QCOMPARE(autoSave.size(), 3);
}

void tst_Settings::gettersNeverTouchTheStore()
{
    QSettings().setValue(QStringLiteral("Preferences/UIScalePercent"), 150);
    QCOMPARE(Settings::instance()->uiScalePercent(), 100);
}

void tst_Settings::unknownGridTypeReadsAsFieldGuide()
{
    Settings::instance()->setGridType(MR::GridType::Renaissance);
    m_store.load(QStringLiteral("Preferences/Grid/Type"), QStringLiteral("Hexagons"));
    QCOMPARE(Settings::instance()->gridType(), MR::GridType::FieldGuide);
}

void tst_Settings::unknownTransparencyTypeReadsAsSmallLightCheckers()
{
    m_store.load(QStringLiteral("Preferences/Transparency/Type"), QStringLiteral("Pink"));
    QCOMPARE(Settings::instance()->transparencyType(), MR::TransparencyType::TransparencySmallCheckersLight);
}

void tst_Settings::numberInPlaceOfAKeyReadsAsTheFirstValue()
{
    m_store.load(QStringLiteral("Preferences/XSheet/ThumbnailSize"), 3);
    QCOMPARE(Settings::instance()->thumbnailSize(), MR::ThumbnailSize::ThumbnailTiny);
}

void tst_Settings::valuesThatMakeNoSenseReadAsTheDefault_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QVariant>("stored");

    const auto row = [](const char *name, const char *path, const QVariant &stored) {
        QTest::newRow(name) << QString::fromLatin1(path) << stored;
    };
    row("size of words", "Preferences/DefaultFrameSize", QStringLiteral("large"));
    row("size without height", "Preferences/DefaultFrameSize", QSize(1920, 0));
    row("negative size", "Preferences/DefaultFrameSize", QSize(-1920, -1080));
    row("size beyond what is offered", "Preferences/DefaultFrameSize", QSize(1920, 8193));
    row("rate of words", "Preferences/DefaultFrameRate", QStringLiteral("fast"));
    row("rate of zero", "Preferences/DefaultFrameRate", 0.0);
    row("rate too high", "Preferences/DefaultFrameRate", 60.1);
    row("rate that is no number", "Preferences/DefaultFrameRate", QStringLiteral("nan"));
    row("no frames", "Preferences/DefaultInitialNumberOfFrames", 0);
    row("too many frames", "Preferences/DefaultInitialNumberOfFrames", 10001);
    row("scale of words", "Preferences/UIScalePercent", QStringLiteral("huge"));
    row("scale of zero", "Preferences/UIScalePercent", 0);
    row("interval of zero", "Preferences/AutoSave/IntervalMins", 0);
    row("negative file count", "Preferences/AutoSave/NumFiles", -1);
}

void tst_Settings::valuesThatMakeNoSenseReadAsTheDefault()
{
    QFETCH(QString, path);
    QFETCH(QVariant, stored);
    m_store.load(path, stored);
    const QList<Probe> all = probes();
    const auto tested = std::find_if(all.begin(), all.end(),
                                     [&path](const Probe &candidate) { return path == QLatin1String(candidate.path); });
    QVERIFY(tested != all.end());
    QCOMPARE(tested->get(), tested->initial);
}

void tst_Settings::settingTheDefaultReplacesWhatMadeNoSense()
{
    QFETCH(QString, path);
    QFETCH(QVariant, stored);
    m_store.load(path, stored);
    Settings *settings = Settings::instance();
    settings->setDefaultFrameSize(settings->defaultFrameSize());
    settings->setDefaultFrameRate(settings->defaultFrameRate());
    settings->setDefaultInitialNumberOfFrames(settings->defaultInitialNumberOfFrames());
    settings->setUiScalePercent(settings->uiScalePercent());
    settings->setAutoSaveIntervalMins(settings->autoSaveIntervalMins());
    settings->setAutoSaveNumFiles(settings->autoSaveNumFiles());
    const std::map<QString, QVariant> defaults{
        {"Preferences/DefaultFrameSize", QSize(1920, 1080)}, {"Preferences/DefaultFrameRate", 12.0},
        {"Preferences/DefaultInitialNumberOfFrames", 1},     {"Preferences/UIScalePercent", 100},
        {"Preferences/AutoSave/IntervalMins", 15},           {"Preferences/AutoSave/NumFiles", 3}};
    QCOMPARE(QSettings().value(path), defaults.at(path));
    // Nothing was wrong with the others.
    QCOMPARE(QSettings().allKeys(), QStringList(path));
}

void tst_Settings::valueThatReplacesNonsenseIsWrittenOnceAndNotSignalled()
{
    const QString path = QStringLiteral("Preferences/UIScalePercent");
    m_store.load(path, QStringLiteral("huge"));
    const QSignalSpy changed(Settings::instance(), &Settings::UIScaleChanged);
    Settings::instance()->setUiScalePercent(100);
    QCOMPARE(QSettings().value(path), QVariant(100));
    QSettings().clear();
    Settings::instance()->setUiScalePercent(100);
    QVERIFY(QSettings().allKeys().isEmpty());
    QCOMPARE(changed.count(), 0);
}

void tst_Settings::slideModeIsNotStored()
{
    Settings::instance()->setSlideMode(true);
    QVERIFY(Settings::instance()->slideMode());
    QVERIFY(QSettings().allKeys().isEmpty());
    Settings::instance()->setSlideMode(false);
}

void tst_Settings::collapseScaleIsTwo()
{
    QCOMPARE(Settings::instance()->collapseScale(), 2);
}

void tst_Settings::addingARecentSceneMovesItToTheFront()
{
    Settings *settings = Settings::instance();
    for (const char *name : {"/a.mr", "/b.mr", "/c.mr", "/a.mr"})
        settings->addRecentScene(QString::fromLatin1(name));
    QCOMPARE(settings->recentScenes(), (QStringList{"/a.mr", "/c.mr", "/b.mr"}));
    QCOMPARE(QSettings().value(QStringLiteral("RecentFiles/RecentScenes")).toStringList(), settings->recentScenes());
}

void tst_Settings::removingARecentSceneLeavesTheOthers()
{
    Settings *settings = Settings::instance();
    settings->setRecentScenes({"/a.mr", "/b.mr", "/c.mr"});
    settings->removeRecentScene(QStringLiteral("/b.mr"));
    settings->removeRecentScene(QStringLiteral("/none.mr"));
    QCOMPARE(settings->recentScenes(), (QStringList{"/a.mr", "/c.mr"}));
}

void tst_Settings::oneRecentSceneSurvivesTheStore()
{
    Settings *settings = Settings::instance();
    settings->addRecentScene(QStringLiteral("/one, with comma.mr"));
    settings->load();
    QCOMPARE(settings->recentScenes(), QStringList("/one, with comma.mr"));
}

void tst_Settings::resetPutsThePreferencesBack()
{
    Settings *settings = Settings::instance();
    settings->setDrawCursorType(MR::DrawCursorType::FixedSmall);
    settings->setClonesLockedForDrawing(true);
    settings->setTransparencyType(MR::TransparencyType::TransparencyBlack);
    settings->setGridType(MR::GridType::Renaissance);
    settings->setCollapseAutomatically(true);
    settings->setShowXSheetTopBar(true);
    settings->setAutoSaveEnabled(true);
    settings->setAutoSaveIntervalMins(60);
    settings->setAutoSaveNumFiles(9);
    settings->setUiScalePercent(150);
    settings->setDefaultSaveDir(QStringLiteral("/kept"));

    settings->resetPreferences();

    QCOMPARE(settings->drawCursorType(), MR::DrawCursorType::AdaptToSize);
    QCOMPARE(settings->clonesLockedForDrawing(), false);
    QCOMPARE(settings->transparencyType(), MR::TransparencyType::TransparencyWhite);
    QCOMPARE(settings->gridType(), MR::GridType::FieldGuide);
    QCOMPARE(settings->collapseAutomatically(), false);
    QCOMPARE(settings->showXSheetTopBar(), false);
    QCOMPARE(settings->autoSaveEnabled(), false);
    QCOMPARE(settings->autoSaveIntervalMins(), 15);
    QCOMPARE(settings->autoSaveNumFiles(), 3);
    QCOMPARE(settings->uiScalePercent(), 100);
    QCOMPARE(settings->defaultSaveDir(), QStringLiteral("/kept"));
    QCOMPARE(QSettings().value(QStringLiteral("Preferences/UIScalePercent")).toInt(), 100);
}

void tst_Settings::batchReachesTheDiskAtItsEnd()
{
    Settings *settings = Settings::instance();
    const QString filename = QSettings().fileName();
    const auto onDisk = [&filename](const char *text) {
        QFile file(filename);
        return file.open(QIODevice::ReadOnly) && file.readAll().contains(text);
    };
    {
        const Model::SettingsBatch outer;
        {
            const Model::SettingsBatch inner;
            settings->setUiScalePercent(125);
        }
        settings->setGridType(MR::GridType::Safety);
        QVERIFY(!onDisk("UIScalePercent=125"));
        QCOMPARE(settings->uiScalePercent(), 125);
    }
    QVERIFY(onDisk("UIScalePercent=125"));
    QVERIFY(onDisk("Safety"));
    settings->setUiScalePercent(150);
    QVERIFY(onDisk("UIScalePercent=150"));
}

QTEST_GUILESS_MAIN(tst_Settings)
#include "tst_settings.moc"
