#include "pickupstage.h"

#include "libcommands/changetooltype.h"
#include "libcommands/cleardrawingmakingblank.h"
#include "libcommands/collapsevectordata.h"
#include "libcommands/cutpath.h"
#include "libcommands/floatingselectionnew.h"
#include "libcommands/floatingselectiontransform.h"
#include "libcommands/stroke.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/pentool.h"
#include "libmodel/tools/toolmanager.h"

#include <QLineF>

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace Model;

namespace TestSupport {

namespace {

constexpr int collapseScale = 2;

double fraction(RandomNumbers &random)
{
    return random.between(0, 10000) / 10000.0;
}

QPointF randomPoint(RandomNumbers &random)
{
    const double x = pickUpFrame.width() * (0.05 + 0.9 * fraction(random));
    const double y = pickUpFrame.height() * (0.05 + 0.9 * fraction(random));
    return {x, y};
}

double distanceToSegment(QPointF point, QPointF from, QPointF to)
{
    const QPointF along = to - from;
    const double squared = QPointF::dotProduct(along, along);
    const double share = squared > 0 ? QPointF::dotProduct(point - from, along) / squared : 0.0;
    return QLineF(point, from + along * std::clamp(share, 0.0, 1.0)).length();
}

} // namespace

PickUpStage::PickUpStage(int cells)
{
    ToolManager::instance()->setCurrentTool(Tool::Type::Pen, 0);
    scene().setFrameSize(pickUpFrame, MR::FitMode::FitModeIgnore);
    auto layer = std::make_shared<StrokeLayer>(QColor(Qt::black), pickUpFrame);
    while (layer->numFrames() < cells)
        layer->insertBlankAfter(layer->numFrames());
    scene().insertLayer(layer, 0);
    scene().setFrameRange(1, cells, 1, 0);
    MRScene::setCurrent(&m_scene);
}

PickUpStage::~PickUpStage()
{
    stack().clear();
    MRScene::setCurrent(nullptr);
    ToolManager::instance()->setCurrentTool(Tool::Type::Pen, 0);
}

StrokeDrawing &PickUpStage::drawing(int frameId) const
{
    return dynamic_cast<StrokeDrawing &>(*scene().item(0, frameId)->drawing);
}

QImage PickUpStage::image(int frameId) const
{
    const QImage &coverage = drawing(frameId).image();
    return coverage.isNull() ? blankCoverage(pickUpFrame) : coverage.copy();
}

void PickUpStage::addLines(RandomNumbers &random, int count, int frameId)
{
    while (count-- > 0)
        drawing(frameId).addStroke(randomLine(random));
}

void PickUpStage::draw(std::unique_ptr<Model::Stroke> line)
{
    MRScene::pushCommand(new Commands::Stroke(&m_scene, cell(scene().activeFrame()), std::move(line)));
}

bool PickUpStage::pickUp(const QPainterPath &path, bool cut, bool collapses)
{
    FloatingSelection picked = scene().floatingSelectionFrom(path);
    if (picked.isNull())
        return false;
    const QModelIndex active = cell(scene().activeFrame());
    picked.setCutOut(cut);
    picked.setCollapsesOnStamp(collapses);
    auto *parent = new QUndoCommand(QStringLiteral("New Floating Selection"));
    new Commands::FloatingSelectionNew(&m_scene, picked, parent);
    if (cut && path.isEmpty())
        new Commands::ClearDrawingMakingBlank(&m_scene, active, parent);
    else if (cut)
        new Commands::CutPath(&m_scene, active, path, parent);
    if (collapses)
        new Commands::CollapseVectorData(&m_scene, active, nullptr, parent);
    new Commands::ChangeToolType(&m_scene, Tool::Type::FloatingSelection, parent);
    MRScene::pushCommand(parent);
    return true;
}

void PickUpStage::place(const FloatingSelection::Transform &transform)
{
    MRScene::pushCommand(new Commands::FloatingSelectionTransform(&m_scene, transform));
}

void PickUpStage::stamp(const QModelIndexList &cells)
{
    auto *parent = new QUndoCommand(QStringLiteral("Stamp Floating Selection"));
    std::unique_ptr<Model::Stroke> stroke = selection().stampStroke(collapseScale, nullptr);
    if (cells.size() > 1)
        new Commands::Stroke(&m_scene, cells, std::move(stroke), parent);
    else
        new Commands::Stroke(&m_scene, cell(scene().activeFrame()), std::move(stroke), parent);
    new Commands::ChangeToolType(&m_scene, ToolManager::instance()->latestDrawingToolType(), parent);
    MRScene::pushCommand(parent);
}

void PickUpStage::drop()
{
    auto *parent = new QUndoCommand(QStringLiteral("Drop Floating Selection"));
    new Commands::FloatingSelectionNew(&m_scene, FloatingSelection(), parent);
    new Commands::ChangeToolType(&m_scene, ToolManager::instance()->latestDrawingToolType(), parent);
    MRScene::pushCommand(parent);
}

std::unique_ptr<Model::Stroke> randomLine(RandomNumbers &random)
{
    const PenTool pen(Tool::PenType(random.between(0, 2)));
    const EraserTool eraser(Tool::EraserType(random.between(0, 2)));
    auto line = std::make_unique<SingleStroke>(random.chance(75) ? static_cast<const Tool *>(&pen) : &eraser);
    QPointF at = randomPoint(random);
    double heading = 2 * std::numbers::pi * fraction(random);
    const double bend = 0.5 * fraction(random) - 0.25;
    const int samples = random.between(6, 40);
    for (int i = 0; i < samples; ++i) {
        line->addSample({at, 0.15 + 0.8 * fraction(random), quint32(5 * i)});
        heading += bend + 0.2 * (fraction(random) - 0.5);
        at += 8.0 * QPointF(std::cos(heading), std::sin(heading));
    }
    line->finish();
    return line;
}

QPainterPath lasso(Lasso kind, QPointF centre, double radius, RandomNumbers &random)
{
    constexpr int samples = 60;
    const PenTool pen(Tool::PenType::Marker);
    SingleStroke line(&pen);
    const double phase = 2 * std::numbers::pi * fraction(random);
    for (int i = 0; i <= samples; ++i) {
        const double angle = 2 * std::numbers::pi * i / samples;
        double reach = radius;
        QPointF at(std::cos(angle + phase), std::sin(angle + phase));
        if (kind == Lasso::Wobbling)
            reach *= 1 + 0.25 * std::sin(5 * angle) + 0.05 * fraction(random);
        else if (kind == Lasso::Crossing)
            at = {std::sin(angle), 0.8 * std::sin(2 * angle + 0.3)};
        else if (kind == Lasso::Star)
            at = {std::cos(2 * angle + phase) + 0.1 * std::cos(5 * angle), std::sin(2 * angle + phase)};
        line.addSample({centre + reach * at, 0.5, quint32(5 * i)});
    }
    line.finish();
    QPainterPath path = line.toPath();
    path.closeSubpath();
    path.setFillRule(Qt::WindingFill);
    return path.simplified();
}

QPainterPath randomLasso(RandomNumbers &random)
{
    const auto kind = Lasso(random.between(int(Lasso::Round), int(Lasso::Star)));
    const QPointF centre = randomPoint(random);
    const double radius = 25 + 60 * fraction(random);
    return lasso(kind, centre, radius, random);
}

QImage bandAround(const QPainterPath &path)
{
    // Made of straight lines on a larger scale, so that these lie close to the curves.
    constexpr double larger = 16;
    const QList<QPolygonF> polygons = path.toSubpathPolygons(QTransform::fromScale(larger, larger));
    QImage band = blankCoverage(pickUpFrame);
    for (const QPolygonF &polygon : polygons) {
        for (qsizetype i = 0; i < polygon.size(); ++i) {
            const QPointF from = polygon.at(i) / larger;
            const QPointF to = polygon.at((i + 1) % polygon.size()) / larger;
            const QRect reach = QRectF(from, to).normalized().toAlignedRect().adjusted(-2, -2, 2, 2) & band.rect();
            for (int y = reach.top(); y <= reach.bottom(); ++y) {
                for (int x = reach.left(); x <= reach.right(); ++x) {
                    if (distanceToSegment(QPointF(x + 0.5, y + 0.5), from, to) <= 1.0)
                        band.scanLine(y)[x] = 255;
                }
            }
        }
    }
    return band;
}

int differenceOutside(const QImage &band, const QImage &one, const QImage &other)
{
    if (one.size() != pickUpFrame || other.size() != pickUpFrame)
        return 256;
    int worst = 0;
    for (int y = 0; y < pickUpFrame.height(); ++y) {
        for (int x = 0; x < pickUpFrame.width(); ++x) {
            if (band.constScanLine(y)[x] == 0)
                worst = std::max(worst, std::abs(one.constScanLine(y)[x] - other.constScanLine(y)[x]));
        }
    }
    return worst;
}

} // namespace TestSupport
