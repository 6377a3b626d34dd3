#pragma once

#include "app/scenefollower.h"

/// The actions on layers: a new one, what becomes of the active one, and which one is active.
///
/// Those that can be checked show how the active layer is set.
class LayerActions : public SceneFollower
{
    Q_OBJECT

public:
    explicit LayerActions(QObject *parent);

protected:
    void connectScene(Model::MRScene &scene) override;
    void actualize() override;

private:
    /// Makes a command for the active layer and pushes it; \a arguments follow the layer's index.
    template<typename Command, typename... Arguments>
    void push(Arguments... arguments);
    void addLayer();
    /// To the visual layer \a steps further down (up if negative) in the display order, or as far as there are any.
    void goBy(int steps);
    void setAllLinked(bool linked);
};
