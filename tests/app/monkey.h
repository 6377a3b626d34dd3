#pragma once

#include "libmodel/base/mr.h"
#include "support/randomnumbers.h"

#include <QList>
#include <QPointF>
#include <QPointingDevice>
#include <QSet>
#include <QString>

class MainWindow;
class QAction;

namespace UI {
class Paper;
}

/// Somebody who works at the window without sense: triggers whatever is enabled, holds and lets go of keys, draws,
/// drags, picks up and stamps, turns wheels, and loses the focus. What it does follows from its seed alone.
///
/// All input goes in at the window system's end. Dialogs and menus that come up are somebody else's to close.
class Monkey
{
public:
    Monkey(MainWindow &window, quint64 seed);

    /// Does one thing. \return what, in a few words.
    QString step();

    /// Lets go of all keys and buttons.
    void letGo();

    /// Whether it has triggered \a action, by itself and not by a key or button, since it was made to forget.
    [[nodiscard]] bool hasTriggered(MR::Action action) const { return m_triggered.contains(action); }
    void forgetTriggered() { m_triggered.clear(); }

    /// The actions that it never triggers: those that end the program or go on in another one.
    static bool isTaboo(MR::Action action);

private:
    struct Key
    {
        int key;
        Qt::KeyboardModifiers modifiers;
        QString text;
    };

    QString triggerOneOf(const QList<MR::Action> &actions);
    QString triggerSomething();
    QString pressOrReleaseKey();
    QString drawStroke();
    QString adjustPen();
    QString dragMouse();
    QString leadLasso();
    QString handleDrawings();
    QString dragSelection();
    QString turnWheel();
    QString gesture();
    QString selectCells();
    QString loseFocus();
    QString beginAnew();

    void sendKey(QEvent::Type type, const Key &key, bool repeated = false);
    void dragAlong(const QList<QPointF> &way);
    void sendMouse(QEvent::Type type, QPointF position, Qt::MouseButton button);
    void sendPen(QPointF position, double pressure, Qt::MouseButtons buttons);
    void sendPen(QPointF position, double pressure, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers);
    QPointF somewhere();
    Qt::KeyboardModifiers heldModifiers() const;
    [[nodiscard]] bool isDown(int key) const;
    [[nodiscard]] bool wouldQuit(int key) const;
    [[nodiscard]] bool sceneIsLarge() const;

    MainWindow &m_window;
    UI::Paper &m_paper;
    TestSupport::RandomNumbers m_random;
    QPointingDevice m_pen;
    QSet<MR::Action> m_triggered;
    QList<Key> m_heldKeys;
    Qt::MouseButtons m_heldButtons;
    bool m_penDown = false;
    QPointF m_mouse;
    ulong m_clock = 1000;
};
