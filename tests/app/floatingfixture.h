#pragma once

#include "app/floatingstate.h"
#include "libmodel/strokes/floatingselection.h"
#include "libmodel/tools/tool.h"
#include "mainwindowfixture.h"

#include <QRect>

/// A window in which things are picked up: hands that draw, lead a lasso around what they drew, and drag it.
///
/// Each test begins with a line of about 120 x 40 pixels about the middle of the paper, drawn at a zoom of 100 percent
/// with the marker.
class FloatingFixture : public MainWindowFixture
{
    Q_OBJECT

protected:
    Model::MRScene &mrScene() const { return *m_window->currentScene(); }
    const Model::FloatingSelection &selection() const { return mrScene().floatingSelection(); }
    bool floats() const { return FloatingState::floats(mrScene()); }
    static Model::Tool::Type tool();
    int steps() const;
    QString undoText() const;
    /// The coverage of a frame's drawing, blank for an empty one.
    QImage ink(int frameId = 1, int layerIdx = 0) const;
    /// The greatest difference between two pictures of coverage.
    static int difference(const QImage &a, const QImage &b);

    /// Leads the tool of \a which around \a around, counted from the middle of the paper in its widget's pixels.
    void lead(MR::Action which, QRect around);
    void lasso(QRect around) { lead(MR::Action::Lasso, around); }
    void cutter(QRect around) { lead(MR::Action::Cutter, around); }
    /// Around the right half of the line, and around all of it.
    static QRect rightHalf() { return {0, -60, 120, 120}; }
    static QRect wholeLine() { return {-120, -60, 240, 120}; }
    /// Where a point of the selection's content is seen, widget coordinates.
    QPointF seen(QPointF content) const;
    void drag(QPointF from, QPointF to, Qt::KeyboardModifiers modifiers = {});
    void click(QPoint at, Qt::KeyboardModifiers modifiers = {});
    void key(Qt::Key which, Qt::KeyboardModifiers modifiers = {});
    /// Inserts one, with nothing to undo. \return its index.
    int addReferenceLayer();

protected slots:
    void init();
    void cleanup();
};
