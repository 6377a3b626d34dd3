#pragma once

#include <QString>

namespace Model {

/// The page that tells every key of the catalogue that something stands behind, by concern, and what other keys do.
///
/// An HTML document (well-formed XML, too) that looks for its style sheet and the other help pages beside it. It is
/// made from the table of actions: each such action with a shortcut is a row of a table of class "actions", whose first
/// cell has a `kbd` per shortcut and whose second cell has the action's text; keys without an action stand in tables of
/// class "gestures". Shortcuts are those of a platform that does not change its standard keys, in portable writing.
QString shortcutPage();

} // namespace Model
