#pragma once

#include "libmodel/scene/mrscene.h"
#include "libui/paper/paper.h"
#include "libui/paper/paperpainter.h"
#include "libui/paper/pointerfilter.h"
#include "libui/paper/viewtransform.h"

#include <QCursor>
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
    void clearHover() { hover = previousHover = {}; }

    ViewTransform view;
    int topBarHeight = 0;
    PaperPainter::Look look;
    /// The tool's cursor as it was told, in its own pixels.
    QCursor toolCursor;

    QPointer<Model::MRScene> mrScene;
    std::vector<QMetaObject::Connection> sceneConnections;

    PointerFilter filter;
    Gesture gesture = Gesture::None;
    /// The last press, for double taps; none yet: no value.
    std::optional<PointerEvent> lastPress;
    /// Where the running pan began and where it has come to, widget coordinates.
    QPointF panFrom;
    QPointF panTo;
    /// Where the pointer hovered last and, elsewhere, before that; null where it isn't known.
    QPointF hover;
    QPointF previousHover;
    bool announcedPressed = false;
    bool middleDown = false;
    /// The middle button's press has turned the hand tool on.
    bool panTriggered = false;
};

} // namespace UI
