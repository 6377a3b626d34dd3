#pragma once

#include "libmodel/actions/actionmanager.h"

#include <QAction>

/// The action of that name from the catalogue; null if there is none, which is reported.
inline QAction *catalogueAction(MR::Action action)
{
    return Model::ActionManager::instance()->action(action);
}

/// Has \a slot of \a receiver called whenever \a action is triggered.
template<typename Receiver, typename Slot>
void onTriggered(MR::Action action, Receiver *receiver, Slot slot)
{
    QObject::connect(catalogueAction(action), &QAction::triggered, receiver, slot);
}
