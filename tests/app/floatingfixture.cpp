#include "floatingfixture.h"

#include "app/pickup.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/viewtransform.h"

#include <QTest>
#include <QUndoStack>
#include <QWindow>

#include <algorithm>
#include <cstdlib>
#include <limits>

using Model::Tool;
using Model::ToolManager;

void FloatingFixture::init()
{
    MainWindowFixture::init();
    // However busy the machine, a drawing is as heavy as its test says.
    m_window->findChild<PickUp *>()->setHeavyLimit(std::numeric_limits<int>::max());
    paper()->resetView();
    drawLine();
    scene()->undoStack()->clear();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    paper()->setFocus();
}

void FloatingFixture::cleanup()
{
    if (!m_window->currentScene())
        return;
    if (floats())
        action(MR::Action::DropFloatingSelection)->trigger();
    action(MR::Action::Draw)->trigger();
}

Tool::Type FloatingFixture::tool()
{
    return ToolManager::instance()->currentToolType();
}

int FloatingFixture::steps() const
{
    return scene()->undoStack()->index();
}

QString FloatingFixture::undoText() const
{
    return scene()->undoStack()->undoText();
}

QImage FloatingFixture::ink(int frameId, int layerIdx) const
{
    const auto cell = scene()->item(layerIdx, frameId);
    const auto *drawing = cell ? dynamic_cast<const Model::StrokeDrawing *>(cell->drawing.get()) : nullptr;
    return drawing && !drawing->image().isNull() ? drawing->image().copy() : Model::blankCoverage(scene()->frameSize());
}

int FloatingFixture::difference(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return 256;
    int most = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            most = std::max(most, std::abs(a.constScanLine(y)[x] - b.constScanLine(y)[x]));
    }
    return most;
}

void FloatingFixture::lead(MR::Action which, QRect around)
{
    if (!action(which)->isChecked())
        action(which)->trigger();
    const QPoint corners[] = {around.topLeft(), around.topRight(), around.bottomRight(), around.bottomLeft(),
                              around.topLeft()};
    constexpr int pieces = 8;
    press(paperPoint(corners[0].x(), corners[0].y()));
    for (int side = 0; side < 4; ++side) {
        for (int i = 1; i <= pieces; ++i) {
            const QPoint at = corners[side] + (corners[side + 1] - corners[side]) * i / pieces;
            moveTo(paperPoint(at.x(), at.y()));
        }
    }
    release(paperPoint(around.left(), around.top()));
}

QPointF FloatingFixture::seen(QPointF content) const
{
    return paper()->view().paperToWidget().map(selection().transform().contentToPaper().map(content));
}

void FloatingFixture::drag(QPointF from, QPointF to, Qt::KeyboardModifiers modifiers)
{
    QTest::mousePress(paper(), Qt::LeftButton, modifiers, from.toPoint());
    moveTo(((from + to) / 2).toPoint());
    moveTo(to.toPoint());
    QTest::mouseRelease(paper(), Qt::LeftButton, modifiers, to.toPoint());
}

void FloatingFixture::click(QPoint at, Qt::KeyboardModifiers modifiers)
{
    QTest::mousePress(paper(), Qt::LeftButton, modifiers, at);
    QTest::mouseRelease(paper(), Qt::LeftButton, modifiers, at);
}

void FloatingFixture::key(Qt::Key which, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(m_window->windowHandle(), which, modifiers);
}

int FloatingFixture::addReferenceLayer()
{
    const int layerIdx = scene()->layerCount();
    scene()->insertLayer(std::make_shared<Model::ReferenceLayer>(scene()->frameSize()), layerIdx);
    scene()->undoStack()->clear();
    return layerIdx;
}
