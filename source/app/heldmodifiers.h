#pragma once

#include "app/heldkeys.h"

#include <Qt>

#include <vector>

/// Which modifier keys are down, the left and the right one told apart: of two Shift keys one can go and Shift stays.
class HeldModifiers
{
public:
    /// The modifier that \a key makes; none for Alt Gr, which chooses letters, and for all other keys.
    [[nodiscard]] static Qt::KeyboardModifier modifierOf(int key);

    void press(const KeyIdentity &key);
    void release(const KeyIdentity &key);
    /// Forgets the keys of all modifiers but \a modifiers: they have been released unseen.
    void keepOnly(Qt::KeyboardModifiers modifiers);
    void releaseAll() { m_keys.clear(); }

    /// Shift, Control, Alt and Meta as they are down.
    [[nodiscard]] Qt::KeyboardModifiers modifiers() const;

private:
    std::vector<KeyIdentity> m_keys;
};
