#include "app/heldmodifiers.h"

#include <algorithm>

Qt::KeyboardModifier HeldModifiers::modifierOf(int key)
{
    switch (key) {
    case Qt::Key_Shift:
        return Qt::ShiftModifier;
    case Qt::Key_Control:
        return Qt::ControlModifier;
    case Qt::Key_Alt:
        return Qt::AltModifier;
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
        return Qt::MetaModifier;
    default:
        return Qt::NoModifier;
    }
}

void HeldModifiers::press(const KeyIdentity &key)
{
    if (std::ranges::none_of(m_keys, [&](const KeyIdentity &held) { return held.isSameAs(key); }))
        m_keys.push_back(key);
}

void HeldModifiers::release(const KeyIdentity &key)
{
    if (std::erase_if(m_keys, [&](const KeyIdentity &held) { return held.isSameAs(key); }) > 0)
        return;
    // While Shift is down the Alt key goes by the name of Meta.
    const Qt::KeyboardModifier modifier =
        modifierOf(key.key) == Qt::MetaModifier ? Qt::AltModifier : modifierOf(key.key);
    std::erase_if(m_keys, [modifier](const KeyIdentity &held) { return modifierOf(held.key) == modifier; });
}

void HeldModifiers::keepOnly(Qt::KeyboardModifiers modifiers)
{
    std::erase_if(m_keys, [modifiers](const KeyIdentity &held) {
        const Qt::KeyboardModifier modifier = modifierOf(held.key);
        // Pressed under Shift, the Alt key goes by the name of Meta.
        return !modifiers.testFlag(modifier) && !(modifier == Qt::MetaModifier && modifiers.testFlag(Qt::AltModifier));
    });
}

Qt::KeyboardModifiers HeldModifiers::modifiers() const
{
    Qt::KeyboardModifiers all;
    for (const KeyIdentity &key : m_keys)
        all |= modifierOf(key.key);
    return all;
}
