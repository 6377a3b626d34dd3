#pragma once

#include <QMainWindow>
#include <QPointingDevice>
#include <memory>

class QTransform;

namespace Model {
class MRScene;
}

/// The program's one window: it owns the open scene and passes on what the menus, the pen and the views ask for.
///
/// The work stands in classes of its own: SceneFiles reads and writes, FrameExporter writes frames, MenuBar lays out
/// the menus, UI::Paper draws. What acts on the open scene is a SceneFollower: EditActions, LayerActions, StepActions,
/// PlaybackActions, DrawingClipboard, PickUp, StampActions, and ActionStates, which knows what can be done. ToolSwitch,
/// KeyGestures and Scrubbing turn keys and actions into tools; ViewSteps, LightTable and FullScreen are about what is
/// seen.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// How newScene() comes to the size, the rate and the length of the scene.
    enum class NewSceneBehaviour {
        UseDefaults = 0, ///< takes the stored defaults
    };

    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Why the program cannot run here (no usable OpenGL, for example); empty when all is well.
    QString startupError() const;

    /// The open scene, owned by the window; null while none is open.
    Model::MRScene *currentScene() const;

    /// Turns what the pen is about, if it is down (a stroke, a frame that is moved off its pegs), into an undo step on
    /// the active cell. To be called before anything that changes tool, frame, layer or scene.
    void commitStroke();

public slots:
    /// Replaces the scene by a new one, after asking to save a modified one.
    void newScene(MainWindow::NewSceneBehaviour behaviour);

    /// Makes a new scene from the defaults unless one is open.
    void newSceneIfNoneOpen();

    /// Asks for a scene file and opens it.
    void openScene();

    /// Asks to save a modified scene. \return false when what was about to happen must not happen, and while another
    /// operation on scene or files runs.
    bool maybeSave();

    /// \return true when the file holds the scene, or when there is no scene.
    bool saveScene();

    /// Like saveScene(), under a name that the user is asked for.
    bool saveSceneAs();

    /// Opens \a filename after asking to save a modified scene. \return true when it is open; the old scene stays
    /// otherwise.
    bool openFile(QString filename);

    /// The same as maybeSave().
    bool closeAllScenes();

    /// Writes the scene's frames as image files, under a name that the user is asked for.
    void exportFrames();

    /// The end \a pointerType of the stylus came near the tablet.
    void setTabletPointerType(QPointingDevice::PointerType pointerType);

signals:
    void resized(QResizeEvent *event);

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private slots:
    void actualizeTitlebar();
    void actualizeTitlebar(double zoomLevel);
    void resizeRenderer(QSize frameSize);

private:
    class Private;

    void createCentralWidget();
    void createUndoActions();
    void createActions();
    void createGestures();
    void createPickUp();
    void createMenus();
    void connectFileActions();
    void setCurrentScene(std::unique_ptr<Model::MRScene> scene);
    void addDrawingToDrawOn();
    void moveOffPegs(const QTransform &transform);
    void actualizePegs();
    void comeToRest();
    bool saveIfWanted();
    bool replaceScene(const QString &filename);

    std::unique_ptr<Private> d;
};
