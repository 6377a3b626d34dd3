#include "libmodel/actions/actionrecord.h"

#include "libmodel/actions/actionmanager.h"

#include <QAction>

namespace Model {

void ActionRecord::showFace(int face, int n) const
{
    if (!alternateText)
        return;
    if (face == 1) {
        action->setText(ActionManager::tr(alternateText->toUtf8().constData(), nullptr, n));
        if (alternateIcon)
            action->setIcon(*alternateIcon);
    } else {
        action->setText(text);
        action->setIcon(icon);
    }
    updateToolTip();
}

void ActionRecord::updateToolTip() const
{
    const QKeySequence shortcut = action->shortcut();
    action->setToolTip(shortcut.isEmpty() ? action->iconText()
                                          : ActionManager::tr("%1 [%2]", "Tooltip with shortcut")
                                                .arg(action->iconText(), shortcut.toString(QKeySequence::NativeText)));
}

} // namespace Model
