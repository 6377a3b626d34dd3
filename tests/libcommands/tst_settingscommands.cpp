#include "commandstage.h"
#include "libcommands/changeframesize.h"
#include "libcommands/changescenesettings.h"
#include "libcommands/setframerate.h"
#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"

#include <QAbstractButton>
#include <QProgressDialog>
#include <QTest>
#include <QWidget>

#include <cmath>

using namespace Commands;
using Model::MRScene;
using Model::Scene;
using TestSupport::CommandStage;

namespace {

std::unique_ptr<Model::Stroke> block(QRect rect)
{
    QImage coverage(rect.size(), QImage::Format_Alpha8);
    coverage.fill(200);
    return std::make_unique<Model::BitmapStroke>(coverage, rect);
}

const QUuid copyId = QUuid::fromString(QStringLiteral("{0000000c-0000-4000-8000-000000000000}"));

} // namespace

/// Frame rate and frame size.
class tst_SettingsCommands : public QObject
{
    Q_OBJECT

private slots:
    void rateIsSetAndComesBack();
    void ratesMergeAndBackToTheStartIntoNone();
    void soundBeforeTheFirstFrameComesBackExactly_data();
    void soundBeforeTheFirstFrameComesBackExactly();
    void presentRateIsObsolete_data();
    void presentRateIsObsolete();
    void rateIsLimited_data();
    void rateIsLimited();
    void sizeIsChangedAndAllComesBackExactly_data();
    void sizeIsChangedAndAllComesBackExactly();
    void drawingOfAnotherSizeHasItAgain();
    void keptAspectIsUndoneByTheOppositeRule();
    void copiesAreKnownAgainAfterUndo();
    void presentOrImpossibleSizeIsObsolete_data();
    void dialogTellsOfTheProgress();
    void presentOrImpossibleSizeIsObsolete();
    void settingsAreOneStep();
    void settingsWithOneChangeDoThatOne();
    void settingsAsTheyAreAreObsolete();
};

void tst_SettingsCommands::rateIsSetAndComesBack()
{
    CommandStage stage({"A"});
    stage.scene().setFrameRate(12);
    QCOMPARE(stage.walk(new SetFrameRate(stage.mrScene(), 25)), QString());
    QCOMPARE(stage.scene().frameRate(), 25.0);
    stage.stack().undo();
    QCOMPARE(stage.scene().frameRate(), 12.0);
}

void tst_SettingsCommands::ratesMergeAndBackToTheStartIntoNone()
{
    CommandStage stage({"A"});
    stage.scene().setFrameRate(12);
    for (const double rate : {15.0, 24.0, 30.0}) {
        MRScene::pushCommand(new SetFrameRate(stage.mrScene(), rate));
        QCOMPARE(stage.stack().count(), 1);
    }
    stage.stack().undo();
    QCOMPARE(stage.scene().frameRate(), 12.0);
    stage.stack().redo();
    QCOMPARE(stage.scene().frameRate(), 30.0);
    MRScene::pushCommand(new SetFrameRate(stage.mrScene(), 12));
    QCOMPARE(stage.stack().count(), 0);
    QCOMPARE(stage.scene().frameRate(), 12.0);
}

void tst_SettingsCommands::soundBeforeTheFirstFrameComesBackExactly_data()
{
    QTest::addColumn<QList<double>>("rates");
    QTest::newRow("one step") << QList<double>{0.1};
    QTest::newRow("merged steps") << QList<double>{25, 0.1, 7};
    QTest::newRow("merged into none") << QList<double>{25, 0.1, 12};
}

void tst_SettingsCommands::soundBeforeTheFirstFrameComesBackExactly()
{
    QFETCH(const QList<double>, rates);
    CommandStage stage({"A"});
    stage.scene().setFrameRate(12);
    auto &sound = dynamic_cast<Model::AudioLayer &>(*stage.scene().layer(stage.scene().audioLayerIdx()));
    sound.setOffset(-1.23);
    const TestSupport::SceneSnapshot before = stage.snapshot();
    for (const double rate : rates)
        MRScene::pushCommand(new SetFrameRate(stage.mrScene(), rate));
    const TestSupport::SceneSnapshot after = stage.snapshot();
    stage.stack().undo();
    QCOMPARE(before.diff(stage.snapshot()), QString());
    stage.stack().redo();
    QCOMPARE(after.diff(stage.snapshot()), QString());
}

void tst_SettingsCommands::presentRateIsObsolete_data()
{
    QTest::addColumn<double>("present");
    QTest::addColumn<double>("wanted");
    QTest::newRow("equal") << 12.0 << 12.0;
    QTest::newRow("equal but for rounding") << 12.0 << 12.0 * (1 + 1e-14);
    QTest::newRow("above the limit at it") << 60.0 << 100.0;
    QTest::newRow("below the limit at it") << 0.1 << -3.0;
    QTest::newRow("no number") << 12.0 << std::nan("");
}

void tst_SettingsCommands::presentRateIsObsolete()
{
    QFETCH(const double, present);
    QFETCH(const double, wanted);
    CommandStage stage({"A"});
    stage.scene().setFrameRate(present);
    QVERIFY(stage.isRefused(new SetFrameRate(stage.mrScene(), wanted)));
}

void tst_SettingsCommands::rateIsLimited_data()
{
    QTest::addColumn<double>("wanted");
    QTest::addColumn<double>("rate");
    QTest::newRow("too fast") << 100.0 << 60.0;
    QTest::newRow("too slow") << 0.0 << 0.1;
    QTest::newRow("another rate by little") << 12.0 * (1 + 1e-10) << 12.0 * (1 + 1e-10);
}

void tst_SettingsCommands::rateIsLimited()
{
    QFETCH(const double, wanted);
    QFETCH(const double, rate);
    CommandStage stage({"A"});
    stage.scene().setFrameRate(12);
    QCOMPARE(stage.walk(new SetFrameRate(stage.mrScene(), wanted)), QString());
    QCOMPARE(stage.scene().frameRate(), rate);
}

void tst_SettingsCommands::sizeIsChangedAndAllComesBackExactly_data()
{
    QTest::addColumn<MR::FitMode>("fitMode");
    QTest::addColumn<QSize>("size");
    const auto modes = QMetaEnum::fromType<MR::FitMode>();
    for (int i = 0; i < modes.keyCount(); ++i) {
        const auto mode = MR::FitMode(modes.value(i));
        for (const QSize size : {QSize(17, 61), QSize(111, 33), QSize(96, 64), QSize(7, 5)})
            QTest::addRow("%s %dx%d", modes.key(i), size.width(), size.height()) << mode << size;
    }
}

void tst_SettingsCommands::sizeIsChangedAndAllComesBackExactly()
{
    QFETCH(const MR::FitMode, fitMode);
    QFETCH(const QSize, size);
    CommandStage stage({"A a B A* _", "C A*"});
    stage.scene().item(0, 2)->offPegsTransform = QTransform().rotate(11.3).translate(0.7, -3.1);
    stage.scene().item(1, 2)->offPegsTransform = QTransform::fromTranslate(2, 1);
    const QImage picture = stage.drawing(3).image();
    QCOMPARE(picture.size(), TestSupport::stageFrame);
    QWidget window;
    QCOMPARE(stage.walk(new ChangeFrameSize(&window, stage.mrScene(), size, fitMode)), QString());
    QCOMPARE(stage.scene().frameSize(), size);
    QCOMPARE(stage.drawing(3).size(), size);
    QCOMPARE(stage.drawing(3).image().size(), size);
    stage.stack().undo();
    QCOMPARE(stage.drawing(3).image(), picture);
}

void tst_SettingsCommands::drawingOfAnotherSizeHasItAgain()
{
    CommandStage stage({"A", "B"});
    for (const int layerIdx : {0, 1}) {
        // One of them has the size that is to come.
        auto other = std::make_shared<Model::StrokeDrawing>(layerIdx == 0 ? QSize(20, 20) : QSize(33, 44));
        other->addStroke(block({3, 4, 5, 6}));
        stage.scene().replaceDrawing(layerIdx, 1, other);
    }
    const TestSupport::SceneSnapshot before = stage.snapshot();
    MRScene::pushCommand(new ChangeFrameSize(nullptr, stage.mrScene(), {33, 44}, MR::FitMode::FitModeKeepAspect));
    const TestSupport::SceneSnapshot after = stage.snapshot();
    stage.stack().undo();
    QCOMPARE(before.diff(stage.snapshot()), QString());
    stage.stack().redo();
    QCOMPARE(after.diff(stage.snapshot()), QString());
}

void tst_SettingsCommands::keptAspectIsUndoneByTheOppositeRule()
{
    CommandStage stage({"A"});
    MRScene::pushCommand(new ChangeFrameSize(nullptr, stage.mrScene(), {24, 32}, MR::FitMode::FitModeKeepAspect));
    // 48 x 32 into 24 x 32: half as large.
    QCOMPARE(stage.drawing(1).strokes().transform().m11(), 0.5);
    double scale = 0;
    connect(&stage.scene(), &Scene::frameSizeChanged, this,
            [&] { scale = stage.drawing(1).strokes().transform().m11(); });
    stage.stack().undo();
    // Fitted into 48 x 32 again it would stay half as large, since the height is the same.
    QCOMPARE(scale, 1.0);
}

void tst_SettingsCommands::copiesAreKnownAgainAfterUndo()
{
    CommandStage stage({"A B"});
    stage.drawing(2).setCopyId(copyId);
    MRScene::pushCommand(new ChangeFrameSize(nullptr, stage.mrScene(), {60, 50}, MR::FitMode::FitModeStretch));
    QVERIFY(!stage.model().findOriginal(copyId).isValid());
    stage.stack().undo();
    QCOMPARE(stage.model().findOriginal(copyId), stage.cell(2));
    QVERIFY(stage.drawing(1).copyId().isNull());
    stage.stack().redo();
    QVERIFY(!stage.model().findOriginal(copyId).isValid());
}

void tst_SettingsCommands::presentOrImpossibleSizeIsObsolete_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("present") << TestSupport::stageFrame;
    QTest::newRow("invalid") << QSize();
    QTest::newRow("empty") << QSize(0, 10);
    QTest::newRow("negative") << QSize(10, -10);
    QTest::newRow("too wide for a file") << QSize(8193, 10);
    QTest::newRow("too high for a file") << QSize(10, 8193);
}

void tst_SettingsCommands::presentOrImpossibleSizeIsObsolete()
{
    QFETCH(const QSize, size);
    CommandStage stage({"A"});
    QVERIFY(stage.isRefused(new ChangeFrameSize(nullptr, stage.mrScene(), size, MR::FitMode::FitModeStretch)));
}

void tst_SettingsCommands::settingsAreOneStep()
{
    CommandStage stage({"A B"});
    stage.scene().setFrameRate(12);
    auto *command = new ChangeSceneSettings(nullptr, stage.mrScene(), {20, 30}, MR::FitMode::FitModeCropCenter, 25);
    QCOMPARE(command->childCount(), 2);
    QCOMPARE(command->child(0)->text(), "Set Frame Rate");
    QCOMPARE(command->child(1)->text(), "Change frame size");
    QCOMPARE(stage.walk(command), QString());
    QCOMPARE(stage.scene().frameRate(), 25.0);
    QCOMPARE(stage.scene().frameSize(), QSize(20, 30));
}

void tst_SettingsCommands::settingsWithOneChangeDoThatOne()
{
    CommandStage stage({"A B"});
    stage.scene().setFrameRate(12);
    const QSize present = stage.scene().frameSize();
    QCOMPARE(stage.walk(new ChangeSceneSettings(nullptr, stage.mrScene(), present, MR::FitMode::FitModeStretch, 25)),
             QString());
    QCOMPARE(stage.scene().frameRate(), 25.0);
    QCOMPARE(stage.walk(new ChangeSceneSettings(nullptr, stage.mrScene(), {9, 8}, MR::FitMode::FitModeStretch, 25)),
             QString());
    QCOMPARE(stage.scene().frameSize(), QSize(9, 8));
}

void tst_SettingsCommands::settingsAsTheyAreAreObsolete()
{
    CommandStage stage({"A B"});
    QVERIFY(stage.isRefused(new ChangeSceneSettings(nullptr, stage.mrScene(), stage.scene().frameSize(),
                                                    MR::FitMode::FitModeStretch, stage.scene().frameRate())));
}

void tst_SettingsCommands::dialogTellsOfTheProgress()
{
    CommandStage stage({"A a B", "C D"});
    // This one has got the size already, and counts as well.
    auto other = std::make_shared<Model::StrokeLayer>(Qt::black, QSize(9, 8));
    other->insertCloneAfter(1);
    stage.scene().insertLayer(other, 2);
    other->setFrameSize({9, 8}, MR::FitMode::FitModeStretch, nullptr);
    QCOMPARE(other->frameSize(), QSize(9, 8));
    QWidget window;
    int seen = 0;
    const auto look = [&](int value) {
        const auto *dialog = window.findChild<QProgressDialog *>();
        QVERIFY(dialog);
        QCOMPARE(dialog->labelText(), "Resizing all frames...");
        QVERIFY(!dialog->findChild<QAbstractButton *>());
        QCOMPARE(dialog->minimumDuration(), 2000);
        QVERIFY(dialog->isModal());
        QCOMPARE(dialog->minimumSize(), dialog->maximumSize());
        QCOMPARE(dialog->minimumSize(), dialog->sizeHint());
        QCOMPARE(dialog->minimum(), 0);
        QCOMPARE(dialog->maximum(), 3 + 2 + 2 + 1);
        QCOMPARE(dialog->value(), value);
        ++seen;
    };
    connect(&stage.scene(), &Scene::frameSizeAboutToChange, this, [&] { look(0); });
    connect(&stage.scene(), &Scene::frameSizeChanged, this, [&] { look(3 + 2 + 2); });
    MRScene::pushCommand(new ChangeFrameSize(&window, stage.mrScene(), {9, 8}, MR::FitMode::FitModeStretch));
    QCOMPARE(seen, 2);
    stage.stack().undo();
    QCOMPARE(seen, 4);
    QVERIFY(!window.findChild<QProgressDialog *>());
}

QTEST_MAIN(tst_SettingsCommands)
#include "tst_settingscommands.moc"
