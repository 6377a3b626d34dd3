#include "libmodel/base/mr.h"

#include <QMetaEnum>
#include <QSet>
#include <QTest>

namespace {

template<typename T>
QStringList keys()
{
    const QMetaEnum meta = QMetaEnum::fromType<T>();
    QStringList result;
    for (int i = 0; i < meta.keyCount(); ++i) {
        if (meta.value(i) != i)
            return {};
        result << QString::fromLatin1(meta.key(i));
    }
    return result;
}

} // namespace

class tst_MR : public QObject
{
    Q_OBJECT

private slots:
    void enumerationsHaveTheirKeysInOrder_data();
    void enumerationsHaveTheirKeysInOrder();
    void actionsAreDenseAndUnique();
    void actionsKeepTheirNumbers_data();
    void actionsKeepTheirNumbers();
};

void tst_MR::enumerationsHaveTheirKeysInOrder_data()
{
    QTest::addColumn<QStringList>("actual");
    QTest::addColumn<QString>("expected");

    QTest::newRow("cursor type") << keys<MR::DrawCursorType>() << "AdaptToSize FixedSmall";
    QTest::newRow("cursor opacity") << keys<MR::DrawCursorOpacity>() << "Faint Opaque";
    QTest::newRow("fit mode") << keys<MR::FitMode>()
                              << "FitModeStretch FitModeKeepAspect FitModeKeepAspectByExpanding FitModeCropCenter "
                                 "FitModeIgnore";
    QTest::newRow("grid type") << keys<MR::GridType>() << "FieldGuide Safety Thirds Diagonals Renaissance";
    QTest::newRow("grid status") << keys<MR::GridStatus>() << "GridOn GridOff";
    QTest::newRow("thumbnail size") << keys<MR::ThumbnailSize>()
                                    << "ThumbnailTiny ThumbnailSmall ThumbnailMedium ThumbnailLarge";
    QTest::newRow("tool preset") << keys<MR::ToolPreset>() << "Default Preset1 Preset2 Preset3";
    QTest::newRow("transparency type") << keys<MR::TransparencyType>()
                                       << "TransparencySmallCheckersLight TransparencySmallCheckersDark "
                                          "TransparencyLargeCheckersLight TransparencyLargeCheckersDark "
                                          "TransparencyWhite TransparencyLightGrey TransparencyDarkGrey "
                                          "TransparencyBlack";
    QTest::newRow("annotation pen type") << keys<MR::AnnotationPenType>() << "ScribblePen DrawToolPen";
}

void tst_MR::enumerationsHaveTheirKeysInOrder()
{
    QFETCH(QStringList, actual);
    QFETCH(QString, expected);
    QCOMPARE(actual, expected.split(QLatin1Char(' ')));
}

void tst_MR::actionsAreDenseAndUnique()
{
    const QStringList actions = keys<MR::Action>();
    QCOMPARE(actions.size(), 198);
    QCOMPARE(QSet<QString>(actions.begin(), actions.end()).size(), 198);
}

void tst_MR::actionsKeepTheirNumbers_data()
{
    QTest::addColumn<int>("value");
    const QList<std::pair<const char *, int>> actions = {
        {"NoAction", 0},
        {"NewScene", 1},
        {"Quit", 11},
        {"Undo", 12},
        {"AddBlankDrawing", 16},
        {"CycleSelectedDrawingsOnce", 28},
        {"Draw", 29},
        {"NonDrawingAction", 31},
        {"Pencil", 33},
        {"BrushPreset3", 44},
        {"VinylEraser", 47},
        {"ToggleCursor", 54},
        {"Play", 55},
        {"FrameRate12_5", 62},
        {"JumpToEnd", 78},
        {"BacklightOnOff", 87},
        {"Toggle1Or3Drawings", 88},
        {"CustomizeBacklight", 89},
        {"Pan", 90},
        {"ViewToX1", 98},
        {"OffPegs", 110},
        {"XSheetShow", 111},
        {"ThumbnailSizeLarger", 139},
        {"Lasso", 140},
        {"FloatingSelection", 147},
        {"NewPaintLayer", 148},
        {"ToolBar", 153},
        {"Settings", 161},
        {"VideoTutorials", 162},
        {"About", 166},
        {"ImportReferenceLayer", 167},
        {"ClonesLockedForDrawing", 172},
        {"TransparencyShownAsBlack", 180},
        {"UIScale150", 197},
    };
    for (const auto &[key, value] : actions)
        QTest::newRow(key) << value;
}

void tst_MR::actionsKeepTheirNumbers()
{
    QFETCH(int, value);
    QCOMPARE(QMetaEnum::fromType<MR::Action>().keyToValue(QTest::currentDataTag()), value);
}

QTEST_GUILESS_MAIN(tst_MR)
#include "tst_mr.moc"
