#pragma once

#include "libmodel/scene/mrscene.h"
#include "libui/paper/paper.h"
#include "libui/paper/paperpainter.h"
#include "libui/paper/pointerfilter.h"
#include "libui/paper/viewtransform.h"

#include <QMetaObject>
#include <QPointer>

#include <optional>
#include <vector>

namespace UI {

class Paper::Private
{
public:
    /// What the contact that is down does.
    enum class Gesture { None, Stroke, Pan };

    Model::Scene *scene() const { return mrScene ? mrScene->scene() : nullptr; }

    ViewTransform view;
    int topBarHeight = 0;
    PaperPainter::Look look;

    QPointer<Model::MRScene> mrScene;
    std::vector<QMetaObject::Connection> sceneConnections;

    PointerFilter filter;
    Gesture gesture = Gesture::None;
    /// The last press, for panning and for double taps; none yet: no value.
    std::optional<PointerEvent> lastPress;
    /// Where the pointer hovered last; null if it isn't known.
    QPointF hover;
    bool announcedPressed = false;
    bool middleDown = false;
    /// The middle button's press has turned the hand tool on.
    bool panTriggered = false;
};

} // namespace UI
