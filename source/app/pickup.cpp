#include "app/pickup.h"

#include "app/busyscope.h"
#include "app/catalogueaction.h"
#include "app/stampactions.h"
#include "app/toolswitch.h"
#include "libcommands/changetooltype.h"
#include "libcommands/cleardrawingmakingblank.h"
#include "libcommands/collapsevectordata.h"
#include "libcommands/cutpath.h"
#include "libcommands/floatingselectionnew.h"
#include "libmodel/base/settings.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/colortable.h"
#include "libmodel/strokes/floatingselection.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/dialogs/collapsedialog.h"
#include "libui/paper/inputsuspension.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPainter>
#include <QPolygonF>

#include <cmath>
#include <memory>
#include <optional>

using Model::FloatingSelection;
using Model::MRScene;

namespace {

/// The area that a hand encloses at least if it means to, paper pixels.
constexpr double smallestArea = 0.25;

double areaOf(const QPolygonF &polygon)
{
    double twice = 0.0;
    for (qsizetype i = 0; i < polygon.size(); ++i) {
        const QPointF from = polygon.at(i);
        const QPointF to = polygon.at((i + 1) % polygon.size());
        twice += from.x() * to.y() - to.x() * from.y();
    }
    return std::abs(twice) / 2.0;
}

bool enclosesAnything(const QPainterPath &path)
{
    double area = 0.0;
    const QList<QPolygonF> polygons = path.toSubpathPolygons();
    for (const QPolygonF &polygon : polygons)
        area += areaOf(polygon);
    return area >= smallestArea;
}

/// What \a selection looks like in \a color on white paper; null if it has no picture.
QImage pictureOf(const FloatingSelection &selection, const QColor &color)
{
    const QImage coverage = selection.image();
    if (coverage.isNull())
        return {};
    QImage picture(coverage.size(), QImage::Format_RGB32);
    if (picture.isNull())
        return {};
    picture.fill(Qt::white);
    QImage ink(coverage.constBits(), coverage.width(), coverage.height(), coverage.bytesPerLine(),
               QImage::Format_Indexed8);
    ink.setColorTable(Model::colorTable(color));
    QPainter painter(&picture);
    painter.setOpacity(selection.opacity());
    painter.drawImage(0, 0, ink);
    return picture;
}

} // namespace

PickUp::PickUp(ToolSwitch *toolSwitch, StampActions *stamps, bool &busy, QWidget *window)
    : SceneFollower(window), m_toolSwitch(toolSwitch), m_stamps(stamps), m_busy(busy), m_window(window)
{
    onTriggered(MR::Action::PickUpAllOfThisDrawing, this, &PickUp::pickUpAll);
    onTriggered(MR::Action::CollapseVectorData, this, &PickUp::collapse);
}

QModelIndex PickUp::activeCell() const
{
    return mrScene()->sceneModel()->index(scene()->activeFrame() - 1, scene()->activeLayerIdx());
}

void PickUp::onLassoingCompleted(const QPainterPath &path, bool cut)
{
    // An empty path would mean all of the drawing.
    if (enclosesAnything(path))
        pickUp(path, cut);
}

void PickUp::pickUpAll()
{
    if (!mrScene())
        return;
    emit aboutToEdit();
    m_toolSwitch->giveBackAll();
    pickUp({}, true);
}

void PickUp::pickUp(const QPainterPath &path, bool cut)
{
    if (!mrScene() || UI::InputSuspension::isActive())
        return;
    // What was cut out must not be lost for what takes its place; but nor be stamped for nothing.
    const bool takesPlace = mrScene()->floatingSelection().isCutOut();
    if (takesPlace && !path.isEmpty() && scene()->floatingSelectionFrom(path).isNull())
        return;
    m_stamps->bringHomeAhead(tr("New Floating Selection"), [&] { takeUp(path, cut); });
}

void PickUp::takeUp(const QPainterPath &path, bool cut)
{
    QElapsedTimer timer;
    timer.start();
    FloatingSelection selection = scene()->floatingSelectionFrom(path);
    if (selection.isNull())
        return;
    const auto *layer = qobject_cast<const Model::StrokeLayer *>(scene()->layer(scene()->activeLayerIdx()));
    if (const QImage picture = pictureOf(selection, layer ? layer->color() : QColor(Qt::black)); !picture.isNull())
        QGuiApplication::clipboard()->setImage(picture);
    const bool isHeavy = timer.elapsed() > m_heavyLimitMs;
    selection.setCollapsesOnStamp(isHeavy && decideToCollapse());
    selection.setCutOut(cut);
    push(selection, path, cut);
}

bool PickUp::decideToCollapse()
{
    if (Model::Settings::instance()->collapseAutomatically())
        return true;
    const BusyScope busy(m_busy);
    UI::CollapseDialog dialog(m_window);
    connect(&dialog, &UI::CollapseDialog::helpRequested, this,
            [this, &dialog] { m_pages.open(WebPages::Page::Collapsing, &dialog); });
    return dialog.exec() == QDialog::Accepted;
}

void PickUp::push(const FloatingSelection &selection, const QPainterPath &path, bool cut)
{
    const QModelIndex cell = activeCell();
    auto step = std::make_unique<QUndoCommand>(tr("New Floating Selection"));
    new Commands::FloatingSelectionNew(mrScene(), selection, step.get());
    if (cut && path.isEmpty())
        new Commands::ClearDrawingMakingBlank(mrScene(), cell, step.get());
    else if (cut)
        new Commands::CutPath(mrScene(), cell, path, step.get());
    // Where all was picked up, nothing is left to be collapsed.
    if (selection.collapsesOnStamp() && !(cut && path.isEmpty()))
        new Commands::CollapseVectorData(mrScene(), cell, m_window, step.get());
    new Commands::ChangeToolType(mrScene(), Model::Tool::Type::FloatingSelection, step.get());
    // Progress runs an event loop in the middle of the step.
    std::optional<BusyScope> busy;
    if (selection.collapsesOnStamp())
        busy.emplace(m_busy);
    MRScene::pushCommand(step.release());
}

void PickUp::collapse()
{
    if (!mrScene() || UI::InputSuspension::isActive())
        return;
    emit aboutToEdit();
    const BusyScope busy(m_busy);
    MRScene::pushCommand(new Commands::CollapseVectorData(mrScene(), activeCell(), m_window));
}
