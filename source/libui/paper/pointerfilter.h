#pragma once

#include "libui/paper/pointerevent.h"

#include <optional>

namespace UI {

/// Makes one contact of what may arrive twice, from the tablet and as the system's mouse.
///
/// | state        | tablet press | mouse press                               |
/// |--------------|--------------|-------------------------------------------|
/// | none down    | taken        | taken, unless it echoes the last release  |
/// | tablet down  | dropped      | dropped                                   |
/// | mouse down   | dropped      | dropped                                   |
///
/// An echo is a mouse press within 10 ms of the tablet's release and within 2 px of it (sum of both axes). A dropped
/// press takes its release with it.
class PointerFilter
{
public:
    /// \return true if the press begins a contact.
    [[nodiscard]] bool press(const PointerEvent &pointer);
    /// \return true if the release ends the contact that its device began.
    [[nodiscard]] bool release(const PointerEvent &pointer);
    /// \return true if \a device began the contact that is down.
    bool isDown(PointerDevice device) const { return m_down == device; }
    bool isAnyDown() const { return m_down.has_value(); }
    /// Forgets the contact: its release will not come.
    void cancel() { m_down.reset(); }

private:
    bool isEchoOfTablet(const PointerEvent &pointer) const;

    std::optional<PointerDevice> m_down;
    std::optional<PointerEvent> m_tabletRelease;
};

} // namespace UI
