#include "app/heldkeys.h"

#include <QKeyEvent>

#include <algorithm>

KeyIdentity KeyIdentity::of(const QKeyEvent &event)
{
    return {event.key(), event.nativeScanCode()};
}

bool KeyIdentity::isSameAs(const KeyIdentity &other) const
{
    return scanCode != 0 && other.scanCode != 0 ? scanCode == other.scanCode : key == other.key;
}

void HeldKeys::press(const KeyIdentity &key, KeyGesture gesture)
{
    release(key);
    m_keys.push_back({key, gesture});
}

KeyGesture HeldKeys::release(const KeyIdentity &key)
{
    const KeyGesture gesture = gestureOf(key);
    std::erase_if(m_keys, [&](const Held &held) { return held.key.isSameAs(key); });
    return gesture;
}

std::vector<KeyGesture> HeldKeys::releaseAll()
{
    std::vector<KeyGesture> gestures;
    for (auto held = m_keys.rbegin(); held != m_keys.rend(); ++held)
        gestures.push_back(held->gesture);
    m_keys.clear();
    return gestures;
}

KeyGesture HeldKeys::gestureOf(const KeyIdentity &key) const
{
    const auto found = std::ranges::find_if(m_keys, [&](const Held &held) { return held.key.isSameAs(key); });
    return found == m_keys.end() ? KeyGesture::None : found->gesture;
}

bool HeldKeys::isHeld(KeyGesture gesture) const
{
    return std::ranges::any_of(m_keys, [gesture](const Held &held) { return held.gesture == gesture; });
}
