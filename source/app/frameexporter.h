#pragma once

#include <QObject>
#include <functional>

class QWidget;

namespace Model {
class Scene;
struct ExportFramesSettings;
} // namespace Model

/// The window's export of frames: asks where to, remembers the answer, and shows how far the work is.
///
/// Nobody is told of files that could not be written but the log.
class FrameExporter : public QObject
{
    Q_OBJECT

public:
    /// \a window is the parent of all dialogs, not owned.
    explicit FrameExporter(QWidget *window);

    /// Writes the frames of \a scene by the stored options, under a name that the user is asked for.
    /// If \a prepare, called behind that question, returns false, nothing is written.
    void exportFrames(const Model::Scene &scene, const std::function<bool()> &prepare) const;

private:
    /// Puts folder and base of the file names into \a settings. \return false when the user cancels.
    bool askForName(Model::ExportFramesSettings &settings) const;

    QWidget *m_window;
};
