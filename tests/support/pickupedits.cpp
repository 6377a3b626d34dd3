#include "support/pickupedits.h"

#include "libcommands/cleardrawingmakingblank.h"
#include "libcommands/collapsevectordata.h"
#include "libcommands/cutpath.h"
#include "libcommands/floatingselectionnew.h"
#include "libcommands/floatingselectiontransform.h"
#include "libcommands/stroke.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QPainterPath>
#include <QPolygonF>

using namespace Model;

namespace TestSupport {

namespace {

constexpr int collapseScale = 2;

QString text(const QModelIndex &cell)
{
    return QStringLiteral("%1/%2").arg(cell.column()).arg(cell.row() + 1);
}

QString text(const QPainterPath &path)
{
    QString text = QStringLiteral(" path");
    for (int i = 0; i < path.elementCount(); ++i)
        text += QStringLiteral(" %1,%2").arg(path.elementAt(i).x).arg(path.elementAt(i).y);
    return text;
}

/// Any cell of any visual layer.
QModelIndex randomCell(const MRScene &mrScene, RandomNumbers &random)
{
    const Scene &scene = *mrScene.scene();
    int layerIdx = random.between(0, scene.layerCount() - 1);
    while (!scene.visualLayer(layerIdx))
        layerIdx = (layerIdx + 1) % scene.layerCount();
    return mrScene.sceneModel()->index(random.between(1, scene.lastFrame(layerIdx)) - 1, layerIdx);
}

QModelIndex activeCell(const MRScene &mrScene)
{
    return mrScene.sceneModel()->index(mrScene.scene()->activeFrame() - 1, mrScene.scene()->activeLayerIdx());
}

/// An area: a rectangle on whole pixels, an ellipse or a triangle. Mostly it meets what the drawing of \a cell holds.
QPainterPath randomArea(const MRScene &mrScene, const QModelIndex &cell, RandomNumbers &random)
{
    const QSize frame = mrScene.scene()->frameSize();
    const auto drawing = std::dynamic_pointer_cast<StrokeDrawing>(mrScene.sceneModel()->drawing(cell));
    const QRect ink = drawing ? drawing->inkedRect() : QRect();
    const QRect around = ink.isEmpty() || random.chance(20) ? QRect(QPoint(0, 0), frame) : ink;
    QPainterPath path;
    const QPoint corner{random.between(around.left() - 3, around.right()),
                        random.between(around.top() - 3, around.bottom())};
    const QSize extent{random.between(2, frame.width()), random.between(2, frame.height())};
    const QRectF rect(corner, extent);
    switch (random.between(0, 2)) {
    case 0:
        path.addRect(rect);
        break;
    case 1:
        path.addEllipse(rect);
        break;
    default:
        path.addPolygon(QPolygonF{rect.topLeft(), rect.topRight() + QPointF(0.5, 0.25), rect.bottomLeft()});
        path.closeSubpath();
    }
    return path;
}

Edit cutPath(MRScene &mrScene, RandomNumbers &random)
{
    const QModelIndex cell = randomCell(mrScene, random);
    const QPainterPath path = randomArea(mrScene, cell, random);
    return {std::make_unique<Commands::CutPath>(&mrScene, cell, path), text(cell) + text(path)};
}

Edit collapse(MRScene &mrScene, RandomNumbers &random)
{
    const QModelIndex cell = randomCell(mrScene, random);
    return {std::make_unique<Commands::CollapseVectorData>(&mrScene, cell, nullptr), text(cell)};
}

/// As the window does it for the lasso and the cutter, and for the whole drawing.
Edit pickUp(MRScene &mrScene, RandomNumbers &random)
{
    const QModelIndex cell = activeCell(mrScene);
    const QPainterPath path = random.chance(15) ? QPainterPath() : randomArea(mrScene, cell, random);
    const bool cut = path.isEmpty() || random.chance(60);
    const bool collapses = random.chance(25);
    FloatingSelection selection = mrScene.scene()->floatingSelectionFrom(path);
    if (selection.isNull())
        return {};
    selection.setCollapsesOnStamp(collapses);
    selection.setCutOut(cut);
    auto parent = std::make_unique<QUndoCommand>(QStringLiteral("New Floating Selection"));
    new Commands::FloatingSelectionNew(&mrScene, selection, parent.get());
    if (cut && path.isEmpty())
        new Commands::ClearDrawingMakingBlank(&mrScene, cell, parent.get());
    else if (cut)
        new Commands::CutPath(&mrScene, cell, path, parent.get());
    if (collapses)
        new Commands::CollapseVectorData(&mrScene, cell, nullptr, parent.get());
    return {std::move(parent), text(cell) + text(path) + (cut ? " cut" : " copied") + (collapses ? " collapsed" : "")};
}

QTransform aroundPoint(QPointF point, const QTransform &transform)
{
    return QTransform::fromTranslate(-point.x(), -point.y()) * transform *
           QTransform::fromTranslate(point.x(), point.y());
}

Edit moveSelection(MRScene &mrScene, RandomNumbers &random)
{
    FloatingSelection::Transform place = mrScene.floatingSelection().transform();
    const int kind = random.between(0, 2);
    const int x = random.between(-5, 5);
    const int y = random.between(-5, 5);
    if (kind == 0)
        place.translation *= QTransform::fromTranslate(x, y);
    else if (kind == 1)
        place.rotation *= aroundPoint(place.pivot, QTransform().rotate(15 * x));
    else
        place.scale *= aroundPoint(place.pivot, QTransform::fromScale(1 + 0.1 * x, 1 - 0.05 * y));
    return {std::make_unique<Commands::FloatingSelectionTransform>(&mrScene, place),
            QStringLiteral("kind %1 by %2, %3").arg(kind).arg(x).arg(y)};
}

Edit stamp(MRScene &mrScene, RandomNumbers &random)
{
    const FloatingSelection &selection = mrScene.floatingSelection();
    const int count = random.chance(50) ? 1 : random.between(2, 5);
    if (selection.isNull())
        return {};
    QModelIndexList cells;
    QString arguments;
    for (int i = 0; i < count; ++i) {
        cells.append(randomCell(mrScene, random));
        arguments += text(cells.constLast()) + ' ';
    }
    std::unique_ptr<Model::Stroke> stroke = selection.stampStroke(collapseScale, nullptr);
    auto parent = std::make_unique<QUndoCommand>(QStringLiteral("Stamp Floating Selection"));
    if (count == 1)
        new Commands::Stroke(&mrScene, activeCell(mrScene), std::move(stroke), parent.get());
    else
        new Commands::Stroke(&mrScene, cells, std::move(stroke), parent.get());
    if (selection.isCutOut()) {
        FloatingSelection kept = selection;
        kept.setCutOut(false);
        new Commands::FloatingSelectionNew(&mrScene, kept, parent.get());
    }
    return {std::move(parent), count == 1 ? text(activeCell(mrScene)) : arguments};
}

Edit drop(MRScene &mrScene, RandomNumbers &)
{
    if (mrScene.floatingSelection().isNull())
        return {};
    return {std::make_unique<Commands::FloatingSelectionNew>(&mrScene, FloatingSelection()), QString()};
}

} // namespace

std::vector<EditKind> pickUpKinds()
{
    return {
        {"CutPath", 4, cutPath},
        {"CollapseVectorData", 2, collapse},
        {"New Floating Selection", 6, pickUp},
        {"FloatingSelectionTransform", 4, moveSelection},
        {"Stamp Floating Selection", 5, stamp},
        {"Drop Floating Selection", 1, drop},
    };
}

} // namespace TestSupport
