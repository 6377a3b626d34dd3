#include "sheetfixture.h"

#include <QSignalSpy>
#include <QTest>

#include <utility>

using namespace Model;
using namespace TestSupport;

namespace {

constexpr auto Slide = FrameRangeModel::SlideMode;
constexpr auto AddClones = FrameRangeModel::AddClonesMode;
constexpr auto NoDrag = FrameRangeModel::NoDrag;

} // namespace

class tst_FrameRangeModelDragHeader : public QObject
{
    Q_OBJECT

private slots:
    void lastFramesOfTheHeaderFollowTheDrag();
    void lastFramesOfNotesAndSoundFollowTheEndOfTheRange_data();
    void lastFramesOfNotesAndSoundFollowTheEndOfTheRange();
    void changedLastFramesAreToldInTheHeader();
    void rowHeadersShowNoBacklightDuringADrag();
};

void tst_FrameRangeModelDragHeader::lastFramesOfTheHeaderFollowTheDrag()
{
    Sheet sheet;
    sheet.addColumn("ooo", true);
    sheet.addColumn("ooooo", true);
    sheet.addColumn("oooooo");
    sheet.addColumn("oo");
    sheet.setRange(1, 4);
    const auto last = [&](int column) {
        return sheet.model.headerData(column, Qt::Horizontal, SceneModel::LayerLastFrameRole).toInt();
    };
    QCOMPARE(last(2), 7);
    sheet.model.beginDrag(AddClones, sheet.cell(3, 0));
    QCOMPARE(last(2), 4);
    sheet.model.setDragOffset(2);
    // The longest layer that goes along has put two cells out of the range.
    QCOMPARE(sheet.model.displayedLastFrame(), 6);
    QCOMPARE(last(0), 6);
    QCOMPARE(last(1), 8);
    QCOMPARE(last(2), 6);
    QCOMPARE(last(3), 3);
    sheet.model.endDrag();
    QCOMPARE(last(0), 4);
    QCOMPARE(last(2), 7);
}

void tst_FrameRangeModelDragHeader::lastFramesOfNotesAndSoundFollowTheEndOfTheRange_data()
{
    // Column 0 is linked, as are the notes, but not the sound; the range is all of the scene.
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("other");
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("notes");
    QTest::addColumn<int>("sound");
    QTest::newRow("at rest") << "oooo"
                             << "o" << 3 << 0 << 5 << 4;
    QTest::newRow("longer") << "oooo"
                            << "o" << 3 << 2 << 7 << 5;
    QTest::newRow("shorter") << "o..."
                             << "o" << 4 << -2 << 3 << 2;
    QTest::newRow("longer, but not the longest") << "oo.."
                                                 << "oooooooo" << 4 << 3 << 9 << 8;
    QTest::newRow("longer than the longest") << "oo.."
                                             << "oooooooo" << 4 << 6 << 11 << 9;
    QTest::newRow("shorter beside a longer one") << "oo.."
                                                 << "oooooooo" << 4 << -2 << 9 << 8;
}

void tst_FrameRangeModelDragHeader::lastFramesOfNotesAndSoundFollowTheEndOfTheRange()
{
    QFETCH(QString, column);
    QFETCH(QString, other);
    QFETCH(int, frame);
    QFETCH(int, offset);
    Sheet sheet;
    sheet.addColumn(column, true);
    sheet.addColumn(other);
    const int notes = sheet.addAnnotations(true);
    const int audio = sheet.addAudio();
    sheet.setRange(1, sheet.scene.maximumFrameNumber());
    QVERIFY(sheet.model.beginDrag(AddClones, sheet.cell(frame, 0)));
    sheet.model.setDragOffset(offset);
    QCOMPARE(sheet.model.offset(), offset);
    QTEST(sheet.model.headerData(notes, Qt::Horizontal, SceneModel::LayerLastFrameRole).toInt(), "notes");
    QTEST(sheet.model.headerData(audio, Qt::Horizontal, SceneModel::LayerLastFrameRole).toInt(), "sound");
}

void tst_FrameRangeModelDragHeader::changedLastFramesAreToldInTheHeader()
{
    Sheet sheet;
    sheet.addColumn("o.o");
    sheet.addColumn("oooooo");
    sheet.setRange(1, 4);
    QList<std::pair<int, int>> told;
    connect(&sheet.model, &QAbstractItemModel::headerDataChanged, this,
            [&](Qt::Orientation orientation, int first, int last) {
                if (orientation == Qt::Horizontal)
                    told.append({first, last});
            });
    const QList<std::pair<int, int>> once{{0, 1}};
    // The other layer is capped at the end of the range as soon as the drag begins.
    QVERIFY(sheet.model.beginDrag(AddClones, sheet.cell(3, 0)));
    QCOMPARE(std::exchange(told, {}), once);
    sheet.model.setDragOffset(1);
    QCOMPARE(std::exchange(told, {}), once);
    sheet.model.endDrag();
    QCOMPARE(std::exchange(told, {}), once);
    // A drag that is dropped.
    QVERIFY(sheet.model.beginDrag(AddClones, sheet.cell(3, 0)));
    told.clear();
    sheet.setRange(1, 3);
    QCOMPARE(sheet.model.dragMode(), NoDrag);
    QCOMPARE(std::exchange(told, {}), once);
    QVERIFY(sheet.model.beginDrag(Slide, sheet.cell(3, 0)));
    sheet.model.setDragOffset(-1);
    sheet.model.endDrag();
    QVERIFY(told.isEmpty());
}

void tst_FrameRangeModelDragHeader::rowHeadersShowNoBacklightDuringADrag()
{
    Sheet sheet;
    sheet.addColumn("ooo");
    sheet.setRange(1, 3);
    QVERIFY(sheet.model.headerData(0, Qt::Vertical, SceneModel::FrameBacklitRole).isValid());
    QSignalSpy changed(&sheet.model, &QAbstractItemModel::headerDataChanged);
    sheet.model.beginDrag(Slide, sheet.cell(2, 0));
    QVERIFY(!sheet.model.headerData(0, Qt::Vertical, SceneModel::FrameBacklitRole).isValid());
    QVERIFY(sheet.model.headerData(0, Qt::Vertical, SceneModel::ScrubFrameRole).isValid());
    QCOMPARE(changed.size(), 1);
    sheet.model.endDrag();
    QVERIFY(sheet.model.headerData(0, Qt::Vertical, SceneModel::FrameBacklitRole).isValid());
    QCOMPARE(changed.size(), 2);
}

QTEST_MAIN(tst_FrameRangeModelDragHeader)
#include "tst_framerangemodel_dragheader.moc"
