#pragma once

#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/randomnumbers.h"

#include <QImage>
#include <QModelIndex>
#include <QPainterPath>
#include <QUndoStack>

#include <memory>

namespace TestSupport {

constexpr QSize pickUpFrame(320, 240);

/// A scene of one layer with lines of all pens and erasers on it, in which is cut, picked up and stamped as the window
/// does it: with the same composites on its undo stack. It is the current scene. Needs a renderer.
class PickUpStage
{
public:
    /// \a cells blank originals; the first is active.
    explicit PickUpStage(int cells = 1);
    ~PickUpStage();
    Q_DISABLE_COPY_MOVE(PickUpStage)

    [[nodiscard]] Model::Scene &scene() const { return *m_scene.scene(); }
    [[nodiscard]] Model::MRScene *mrScene() { return &m_scene; }
    [[nodiscard]] QUndoStack &stack() const { return *scene().undoStack(); }
    [[nodiscard]] QModelIndex cell(int frameId) const { return m_scene.sceneModel()->index(frameId - 1, 0); }
    [[nodiscard]] Model::StrokeDrawing &drawing(int frameId = 1) const;
    /// The coverage of a drawing, blank rather than null where there is nothing.
    [[nodiscard]] QImage image(int frameId = 1) const;
    [[nodiscard]] const Model::FloatingSelection &selection() const { return m_scene.floatingSelection(); }

    /// Adds \a count lines at random, which the drawing makes pixels of: they bring none along.
    void addLines(RandomNumbers &random, int count, int frameId = 1);

    /// Draws a line on the active cell, as a step.
    void draw(std::unique_ptr<Model::Stroke> line);
    /// Picks up what lies inside \a path, all for an empty one. \return false where there is nothing.
    bool pickUp(const QPainterPath &path, bool cut, bool collapses = false);
    /// Lays the selection elsewhere.
    void place(const Model::FloatingSelection::Transform &transform);
    /// Stamps on the active cell, or on \a cells.
    void stamp(const QModelIndexList &cells = {});
    /// The selection goes without a stamp.
    void drop();

private:
    Model::MRScene m_scene;
};

/// A line across the frame by a random tool, without pixels of its own.
[[nodiscard]] std::unique_ptr<Model::Stroke> randomLine(RandomNumbers &random);

/// The kinds of lasso.
enum class Lasso { Round, Wobbling, Crossing, Star };
/// A lasso as a hand draws it, smoothed and simplified as the paper's: around (\a x, \a y), \a radius wide.
[[nodiscard]] QPainterPath lasso(Lasso kind, QPointF centre, double radius, RandomNumbers &random);
/// One of any kind, anywhere on the frame.
[[nodiscard]] QPainterPath randomLasso(RandomNumbers &random);

/// Marks with 255 the pixels of the frame whose centres lie within a pixel of the outline of \a path.
[[nodiscard]] QImage bandAround(const QPainterPath &path);
/// The largest difference of \a one and \a other outside of what \a band marks, in levels.
[[nodiscard]] int differenceOutside(const QImage &band, const QImage &one, const QImage &other);

} // namespace TestSupport
