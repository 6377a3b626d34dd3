#pragma once

#include <QIcon>
#include <QString>

#include <optional>

class QAction;

namespace Model {

/// An action of the catalogue with its faces: the ordinary one, and for some a second one that stands for it at times.
struct ActionRecord
{
    /// Child of the catalogue.
    QAction *action = nullptr;
    /// The ordinary face.
    QString text;
    QIcon icon;
    /// The second face; the text is the source text, translated when it is shown.
    std::optional<QString> alternateText = {};
    std::optional<QIcon> alternateIcon = {};
    /// What keeps the action from working at present; empty if nothing does, or nobody has said what.
    QString obstacle = {};

    /// Shows the ordinary face (0) or the second one (1), whose text is translated for \a n things. Does nothing
    /// without a second face.
    void showFace(int face, int n) const;

    /// Makes the tool tip tell the action's name and its first shortcut, and the obstacle in a line of its own.
    void updateToolTip() const;
};

} // namespace Model
