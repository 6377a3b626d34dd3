#pragma once

#include "app/keymeaning.h"

#include <QtGlobal>

#include <vector>

class QKeyEvent;

/// A key of the keyboard, told from others by its place where the system reports one: what it is called may change
/// while it is down, with a modifier or the layout.
struct KeyIdentity
{
    int key = 0;
    quint32 scanCode = 0; ///< 0 where the system reports none

    [[nodiscard]] static KeyIdentity of(const QKeyEvent &event);
    [[nodiscard]] bool isSameAs(const KeyIdentity &other) const;
};

/// The keys that are down and the gesture each of them is held for.
class HeldKeys
{
public:
    void press(const KeyIdentity &key, KeyGesture gesture);
    /// \return the gesture that \a key was held for, None if it was not.
    KeyGesture release(const KeyIdentity &key);
    /// Forgets all of them. \return their gestures, the last one pressed first.
    std::vector<KeyGesture> releaseAll();

    [[nodiscard]] bool isEmpty() const { return m_keys.empty(); }
    /// The gesture that \a key is held for, None if it is not.
    [[nodiscard]] KeyGesture gestureOf(const KeyIdentity &key) const;
    /// Whether any key is held for \a gesture.
    [[nodiscard]] bool isHeld(KeyGesture gesture) const;

private:
    struct Held
    {
        KeyIdentity key;
        KeyGesture gesture;
    };

    std::vector<Held> m_keys;
};
