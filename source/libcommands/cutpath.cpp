#include "libcommands/cutpath.h"

#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scenemodel.h"

#include <QGuiApplication>

namespace Commands {

namespace {

/// Shows the wait cursor for as long as it lives.
class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY_MOVE(WaitCursor)
};

} // namespace

CutPath::CutPath(Model::MRScene *scene, const QModelIndex &cell, const QPainterPath &path, QUndoCommand *parent)
    : RecordedCommand(scene, parent), m_cell(cell), m_path(path)
{
    setText(tr("Cutout"));
    if (scene && !scene->sceneModel()->drawing(cell))
        setObsolete(true);
}

QList<Model::SceneChange> CutPath::run(Model::SceneModel &model)
{
    const WaitCursor waitCursor;
    return model.cutPath(m_cell, m_path);
}

void CutPath::moveOn(Model::Scene &)
{
    // Nobody moves for a cut.
}

} // namespace Commands
