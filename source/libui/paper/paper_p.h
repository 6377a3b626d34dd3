#pragma once

#include "libmodel/scene/mrscene.h"
#include "libmodel/tools/tool.h"
#include "libui/paper/floatingselectionview.h"
#include "libui/paper/lassoline.h"
#include "libui/paper/paper.h"
#include "libui/paper/paperoverlay.h"
#include "libui/paper/paperpainter.h"
#include "libui/paper/penadjustmentdrag.h"
#include "libui/paper/pointerfilter.h"
#include "libui/paper/scrubdrag.h"
#include "libui/paper/viewdrag.h"
#include "libui/paper/viewtransform.h"
#include "libui/paper/viewzones.h"

#include <QBasicTimer>
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
    enum class Gesture { None, Stroke, View, OffPegs, PutBack, Lasso, Floating, Scrub, PenAdjustment };
    /// Which of the toolkit's touch gestures leads.
    enum class Touch { None, Pinch, Pan };

    Model::Scene *scene() const { return mrScene ? mrScene->scene() : nullptr; }
    /// What is seen is the active frame, not another one that is shown for the moment. There must be a scene.
    bool showsActiveFrame() const;
    /// The scene's floating selection is to be seen, if it has one.
    bool floats() const;
    /// The active layer is one that can be picked up from. There must be a scene.
    bool canPickUp() const;
    void clearHover() { hover = previousHover = {}; }
    /// The frame that is seen: the active one, or another that is shown for the moment.
    int shownFrame() const;
    ViewZones::OffPegs offPegsZoneAt(QPointF position) const { return zones.offPegsZoneAt(position, view.isOffPegs()); }
    PaperOverlay overlay() const;
    /// Where the running gesture shows its sign, as large as it may be. Widget coordinates.
    QRect symbolRect() const;
    /// The button that puts the frame back, with its edges. Widget coordinates.
    QRect buttonRect() const;
    /// Where the floating selection and its handles show, null without one.
    QRect floatingRect() const { return floating.isNull() ? QRect() : floating.bounds(view); }
    void rebuildGrid();
    void rebuildZones() { zones = ViewZones(view.usableRect(), scale); }

    ViewTransform view;
    ViewZones zones;
    /// Of the interface, 1.0 for 100 percent.
    double scale = 1.0;
    int topBarHeight = 0;
    PaperPainter::Look look;
    MR::GridStatus gridStatus = MR::GridStatus::GridOff;
    MR::GridType gridType = MR::GridType::FieldGuide;
    QPainterPath grid;
    Model::Tool::Type toolType = Model::Tool::Type::None;
    /// The tool's cursor as it was told, in its own pixels.
    QCursor toolCursor;
    /// Another cursor says that it can do nothing here.
    bool isForbidden = false;

    QPointer<Model::MRScene> mrScene;
    std::vector<QMetaObject::Connection> sceneConnections;

    PointerFilter filter;
    Gesture gesture = Gesture::None;
    /// The last press, for double taps; none yet: no value.
    std::optional<PointerEvent> lastPress;
    /// Where the pointer was last seen, widget coordinates; nowhere: no value.
    std::optional<QPointF> lastPosition;
    Qt::KeyboardModifiers lastModifiers;
    /// Where the pointer hovered last and, elsewhere, before that; null where it isn't known.
    QPointF hover;
    QPointF previousHover;
    bool announcedPressed = false;
    bool middleDown = false;
    /// The middle button's press has turned the hand tool on.
    bool panTriggered = false;

    ViewDrag drag;
    ScrubDrag scrub;
    PenAdjustmentDrag penAdjustment;
    LassoLine lasso;
    bool lassoCuts = false;
    bool isOverButton = false;

    FloatingSelectionView floating;
    QBasicTimer edgeTimer;

    bool nativeGesturing = false;
    Touch touch = Touch::None;
    /// A pen or mouse came in between: what is left of the touch does nothing.
    bool touchIgnored = false;
    /// Between two fingers, logical pixels; 0 for another number of them.
    double fingerSpan = 0.0;
    ViewTransform::Fingers fingersFrom;
    ViewTransform::Fingers fingersTo;
};

} // namespace UI
