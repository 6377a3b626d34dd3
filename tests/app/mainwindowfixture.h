#pragma once

#include "app/mainwindow.h"

#include "libmodel/base/mr.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libui/paper/paper.h"
#include "support/isolatedstore.h"

#include <QAction>
#include <QTemporaryDir>

#include <memory>

namespace Model {
class StrokeDrawing;
}

/// The action of \a which from the catalogue.
QAction *action(MR::Action which);

/// A window with a new scene for each test, and hands that draw on its paper.
class MainWindowFixture : public QObject
{
    Q_OBJECT

protected:
    UI::Paper *paper() const { return m_window->findChild<UI::Paper *>(); }
    Model::Scene *scene() const { return m_window->currentScene()->scene(); }
    const Model::StrokeDrawing &drawing(int frameId = 1) const;
    QPoint paperPoint(int dx, int dy) const { return paper()->rect().center() + QPoint(dx, dy); }
    void press(QPoint at);
    void moveTo(QPoint at);
    void release(QPoint at);
    void drawLine();
    void newCleanScene();
    /// Makes the sheet of the new scene's layer: 'o' for a drawing of its own, '-' for a hold, one letter per frame.
    /// Stands on frame 1 afterwards, with nothing to undo.
    void makeCells(const QByteArray &cells);
    /// A layer's sheet in the same letters, and 'd' for a distant clone.
    QByteArray cells(int layerIdx = 0) const;
    void goTo(int frameId, int layerIdx = 0);
    /// Selects frames of a layer, all within the playback range.
    void select(int firstFrame, int lastFrame, int layerIdx = 0);

    std::unique_ptr<IsolatedStore> m_store;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MainWindow> m_window;

protected slots:
    void initTestCase();
    void init();
    void cleanupTestCase();
};
