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
    QString toolTip = action->iconText();
    if (!shortcut.isEmpty()) {
        toolTip = ActionManager::tr("%1 [%2]", "Tooltip with shortcut")
                      .arg(toolTip, shortcut.toString(QKeySequence::NativeText));
    }
    if (!obstacle.isEmpty())
        toolTip += QLatin1Char('\n') + obstacle;
    action->setToolTip(toolTip);
}

} // namespace Model
