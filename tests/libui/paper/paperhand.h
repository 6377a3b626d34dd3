#pragma once

#include "libmodel/tools/toolmanager.h"
#include "paperstage.h"

#include <QTest>

#include <cmath>

namespace TestSupport {

/// A pen or a mouse over a stage, so that a test can be told of either.
class Hand
{
public:
    Hand(PaperStage &stage, bool pen) : m_stage(stage), m_pen(pen) {}

    void press(QPointF position, Qt::KeyboardModifiers modifiers = {})
    {
        if (m_pen)
            m_stage.penPress(position, 0.7, modifiers);
        else
            m_stage.mousePress(position, Qt::LeftButton, modifiers);
    }
    void move(QPointF position)
    {
        if (m_pen)
            m_stage.penMove(position);
        else
            m_stage.mouseMove(position);
    }
    void release(QPointF position)
    {
        if (m_pen)
            m_stage.penRelease(position);
        else
            m_stage.mouseRelease(position);
        // So that the next press is no double tap and no echo.
        m_stage.pause(2000);
    }
    void drag(QPointF from, QPointF to)
    {
        press(from);
        move(to);
        release(to);
    }
    void tapTwice(QPointF position)
    {
        for (int i = 0; i < 2; ++i) {
            press(position);
            if (m_pen)
                m_stage.penRelease(position);
            else
                m_stage.mouseRelease(position);
        }
        m_stage.pause(2000);
    }

private:
    PaperStage &m_stage;
    bool m_pen;
};

inline bool isNear(QPointF a, QPointF b, double within = 1e-6)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) <= within;
}

/// The data rows of a test that is to be done by either.
inline void addDevices()
{
    QTest::addColumn<bool>("pen");
    QTest::addRow("pen") << true;
    QTest::addRow("mouse") << false;
}

/// The scene takes what the paper tells, as the main window does.
inline void answerOffPegs(PaperStage &stage)
{
    QObject::connect(stage.paper.get(), &UI::Paper::offPegsTransformChanged, stage.paper.get(),
                     [&](const QTransform &transform) { stage.scene()->setCurrentDrawingOffPegsTransform(transform); });
}

template<typename ToolClass>
ToolClass *toolOf(Model::Tool::Type type)
{
    return qobject_cast<ToolClass *>(Model::ToolManager::instance()->tool(type));
}

} // namespace TestSupport
