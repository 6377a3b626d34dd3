#pragma once

#include "app/scenefollower.h"
#include "libmodel/base/mr.h"

/// The actions that edit cells of the exposure sheet, each one undo step on the selected cells or on the active one.
///
/// While several cells are selected the actions show their second face, which tells so.
class EditActions : public SceneFollower
{
    Q_OBJECT

public:
    explicit EditActions(QObject *parent);

    /// Selects all cells of visual layers within the playback range.
    void selectAllDrawings();

protected:
    void connectScene(Model::MRScene &scene) override;
    void actualize() override;

private:
    void edit(MR::Action action);
    void backDelete();
    void toggleKeyDrawing();
    void unmarkAllKeyDrawings();

    int m_shownCount = 0;
};
