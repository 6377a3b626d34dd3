#pragma once

#include <QMessageBox>
#include <QObject>
#include <functional>
#include <memory>
#include <utility>

class QWidget;

namespace Model {
class MRScene;
}

/// Scenes and the files they live in: the dialogs that ask for a name, reading and writing with progress, and the
/// messages that say which file failed and why.
///
/// Knows nothing of the window's widgets. The window decides which scene is current; this class never replaces it. It
/// also keeps shortcuts away from the dialogs (BusyScope).
class SceneFiles : public QObject
{
    Q_OBJECT

public:
    /// \a window is the parent of all dialogs, not owned.
    explicit SceneFiles(QWidget *window);

    /// Has \a prepare called when a scene is about to be written, behind all questions. If it returns false nothing is
    /// written, as on cancel.
    void setBeforeWriting(std::function<bool()> prepare) { m_prepare = std::move(prepare); }

    /// Asks for a scene file to open. \return an empty text when the user cancels.
    QString askForOpenName() const;

    /// Reads \a filename into a new scene, which is marked as unmodified and put first in the recent list.
    /// \return null when the file cannot be read or parsed, after a message that says so, or on cancel.
    std::unique_ptr<Model::MRScene> read(const QString &filename) const;

    /// Writes \a scene to its file, asking for a name when it has none; nothing is written when it is unmodified.
    /// \return true when the file on disk holds the scene.
    bool save(Model::MRScene &scene) const;

    /// Asks for a name, which \a scene goes by from then on, and writes it there. \return false on cancel and on
    /// failure.
    bool saveAs(Model::MRScene &scene) const;

    /// Asks to save \a scene if it is modified. \return false when the user cancels or saving fails: what was about to
    /// happen to the scene must not happen then.
    bool maybeSave(Model::MRScene &scene) const;

private:
    QString askForSaveName(const Model::MRScene &scene) const;
    bool write(Model::MRScene &scene, const QString &filename) const;
    /// Shows \a text beside \a icon, with \a reason in smaller print below if there is one. The program's name is the
    /// title unless there is another.
    void tell(QMessageBox::Icon icon, const QString &text, const QString &reason = {}, const QString &title = {}) const;

    bool isPrepared() const { return !m_prepare || m_prepare(); }

    QWidget *m_window;
    std::function<bool()> m_prepare;
};
