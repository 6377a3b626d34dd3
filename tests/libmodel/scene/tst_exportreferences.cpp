#include "libmodel/layers/referencelayer.h"
#include "libmodel/strokes/imagedrawing.h"
#include "scenebuilder.h"
#include "support/watchedprogress.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace Model;
using namespace TestSupport;

namespace {

std::shared_ptr<LayerItem> cellWith(const QColor &color)
{
    QImage picture(sceneFrame, QImage::Format_ARGB32_Premultiplied);
    picture.fill(color);
    return std::make_shared<LayerItem>(LayerItem::Type::Original, std::make_shared<ImageDrawing>(picture));
}

/// A scene with reference pictures in the colours of \a colors and with strokes of \a frames frames without ink.
struct Export
{
    Export(const QList<QColor> &colors, int frames)
    {
        makeSmall(scene);
        addStrokeLayer(scene, frames);
        QList<std::shared_ptr<LayerItem>> cells;
        for (const QColor &color : colors)
            cells.append(cellWith(color));
        layer = std::make_shared<ReferenceLayer>(sceneFrame);
        layer->setFrames(cells);
        scene.insertLayer(layer, 0);
        settings.fileName = "walk";
        settings.exportDir = folder.path();
        settings.combineLayers = true;
        settings.clones = ExportFramesSettings::Clones::IncludeClonesSimpleSequence;
    }
    /// The colour of each combined frame, with straight alpha.
    [[nodiscard]] QList<QColor> colors(int frames)
    {
        WatchedProgress progress;
        if (scene.exportFrames(settings, progress).written != frames)
            return {};
        QList<QColor> found;
        for (int frameId = 1; frameId <= frames; ++frameId) {
            const QImage image(folder.filePath(QString("walk.000%1.png").arg(frameId)));
            found.append(image.convertToFormat(QImage::Format_ARGB32).pixelColor(5, 5));
        }
        return found;
    }

    Scene scene;
    std::shared_ptr<ReferenceLayer> layer;
    QTemporaryDir folder;
    ExportFramesSettings settings;
};

/// The painter has 256 opacities, and each multiplication may be one off.
bool hasOpacity(const QColor &color, double opacity)
{
    return std::abs(color.alpha() - 255 * opacity) <= 2;
}

} // namespace

class tst_ExportReferences : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void frozenReferenceIsInEveryCombinedFrame();
    void cycledReferenceIsInEveryCombinedFrame();
    void endedReferenceIsInNoFrameBehindIt();
    void opacityOfAReferenceCombinesWithThePainters_data();
    void opacityOfAReferenceCombinesWithThePainters();
};

void tst_ExportReferences::init()
{
    QTest::failOnWarning(QRegularExpression("."));
}

void tst_ExportReferences::frozenReferenceIsInEveryCombinedFrame()
{
    Export e({Qt::red, Qt::green}, 5);
    e.layer->setOpacity(1);
    e.layer->setLayerBeyondLast(Layer::FreezeLast);
    QCOMPARE(e.colors(5), QList<QColor>({QColor(255, 0, 0), QColor(0, 255, 0), QColor(0, 255, 0), QColor(0, 255, 0),
                                         QColor(0, 255, 0)}));
}

void tst_ExportReferences::cycledReferenceIsInEveryCombinedFrame()
{
    Export e({Qt::red, Qt::green}, 5);
    e.layer->setOpacity(1);
    e.layer->setLayerBeyondLast(Layer::CycleDrawings);
    QCOMPARE(e.colors(5), QList<QColor>({QColor(255, 0, 0), QColor(0, 255, 0), QColor(255, 0, 0), QColor(0, 255, 0),
                                         QColor(255, 0, 0)}));
}

void tst_ExportReferences::endedReferenceIsInNoFrameBehindIt()
{
    Export e({Qt::red}, 3);
    e.layer->setOpacity(1);
    e.layer->setLayerBeyondLast(Layer::ShowNothing);
    QCOMPARE(e.colors(3), QList<QColor>({QColor(255, 0, 0), QColor(0, 0, 0, 0), QColor(0, 0, 0, 0)}));
}

void tst_ExportReferences::opacityOfAReferenceCombinesWithThePainters_data()
{
    QTest::addColumn<double>("opacity");
    QTest::addColumn<double>("expected"); // the painter's, which is the layer's, times the layer's
    QTest::newRow("full") << 1.0 << 1.0;
    QTest::newRow("half, as at first") << 0.5 << 0.25;
    QTest::newRow("a fifth") << 0.2 << 0.04;
    QTest::newRow("none") << 0.0 << 0.0;
}

void tst_ExportReferences::opacityOfAReferenceCombinesWithThePainters()
{
    QFETCH(double, opacity);
    QFETCH(double, expected);
    Export e({Qt::red}, 1);
    QCOMPARE(e.layer->opacity(), 0.5);
    e.layer->setOpacity(opacity);
    const QList<QColor> found = e.colors(1);
    QCOMPARE(found.size(), 1);
    QVERIFY2(hasOpacity(found.first(), expected), qPrintable(found.first().name(QColor::HexArgb)));
}

QTEST_MAIN(tst_ExportReferences)
#include "tst_exportreferences.moc"
