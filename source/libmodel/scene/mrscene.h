#pragma once

#include "libmodel/strokes/floatingselection.h"

#include <QObject>

#include <memory>

class QItemSelectionModel;
class QUndoCommand;

namespace Model {

class FrameRangeModel;
class Scene;
class SceneModel;

/// A scene as it is worked on: the document with the table models and the selection that views and commands see it
/// through.
/// One of them is the current one, which commands are pushed on.
class MRScene : public QObject
{
    Q_OBJECT

public:
    explicit MRScene(QObject *parent = nullptr);
    /// If this is the current scene, there is none afterwards.
    ~MRScene() override;

    /// The document; owned by this object.
    [[nodiscard]] Scene *scene() const;
    /// The table over the document; owned by this object.
    [[nodiscard]] SceneModel *sceneModel() const;

    /// The playback range of that table, which the views show; owned by this object.
    [[nodiscard]] FrameRangeModel *frameRangeModel() const;
    /// The selected cells, as indexes of frameRangeModel(). Its current index is that of the active frame and
    /// layer (during a drag it stays where it is), invalid where the range does not show them. Owned by this object,
    /// and deleted when control returns to the event loop after its end.
    [[nodiscard]] QItemSelectionModel *selectionModel() const;

    /// The floating selection that lies over the active drawing; a null one for none.
    [[nodiscard]] const FloatingSelection &floatingSelection() const;
    /// Puts \a selection (a null one for none) in the place of the present one. \return the former.
    FloatingSelection setFloatingSelection(const FloatingSelection &selection);
    /// Gives the floating selection another place; nothing without one, and for a transform that is equal or
    /// unusable.
    void setFloatingSelectionTransform(const FloatingSelection::Transform &transform);

    /// The scene that is being worked on, null for none.
    [[nodiscard]] static MRScene *current();
    /// \a scene (may be null) is not owned.
    static void setCurrent(MRScene *scene);
    /// Pushes \a command on the undo stack of the current scene, which runs and owns it. Without a current scene the
    /// command is deleted and reported, and so is one deleted that is obsolete already, which leaves the stack as it
    /// stands. Null does nothing.
    static void pushCommand(QUndoCommand *command);

public slots:
    /// No cell is selected any more; the current index stays.
    void clearSelection();

signals:
    /// Another selection floats, or none any more.
    void floatingSelectionChanged();
    /// The floating selection lies elsewhere.
    void floatingSelectionTransformChanged(const Model::FloatingSelection::Transform &transform);

private:
    void followActivePosition();
    void onSheetChanged();

    FloatingSelection m_floatingSelection;
    std::unique_ptr<Scene> m_scene;
    std::unique_ptr<SceneModel> m_sceneModel;
    std::unique_ptr<FrameRangeModel> m_frameRangeModel;
    QItemSelectionModel *m_selectionModel; ///< deleted later than this object, when no view can be in its midst
};

} // namespace Model
