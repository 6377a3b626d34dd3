#include "libcommands/addannotation.h"

#include "libmodel/layers/annotationlayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <algorithm>

namespace Commands {

namespace {

/// Notes are coverage: they are equal by their bytes, whatever colours these stand for.
bool areEqual(const QImage &left, const QImage &right)
{
    if (left.size() != right.size() || left.depth() != right.depth())
        return false;
    for (int y = 0; y < left.height(); ++y) {
        const uchar *line = left.constScanLine(y);
        if (!std::equal(line, line + left.width() * left.depth() / 8, right.constScanLine(y)))
            return false;
    }
    return true;
}

} // namespace

AddAnnotation::AddAnnotation(Model::MRScene *scene, int frameId, const QImage &image, QUndoCommand *parent)
    : SceneCommand(scene, parent), m_frameId(frameId), m_new(image)
{
    setText(tr("Add Annotation"));
    if (!scene)
        return;
    const Model::Scene &model = *scene->scene();
    const auto *layer = dynamic_cast<const Model::AnnotationLayer *>(model.layer(model.annotationLayerIdx()));
    if (layer)
        m_old = layer->image(frameId);
    setObsolete(!layer || frameId < 1 || frameId > model.maximumFrameNumber() || areEqual(m_new, m_old));
}

bool AddAnnotation::setImage(const QImage &image)
{
    Model::MRScene *scene = mrScene();
    if (!scene)
        return false;
    Model::SceneModel &model = *scene->sceneModel();
    const QModelIndex index = model.index(m_frameId - 1, scene->scene()->annotationLayerIdx());
    return model.setData(index, image, Model::SceneModel::AnnotationImageRole);
}

void AddAnnotation::redo()
{
    if (!setImage(m_new))
        setObsolete(true);
}

void AddAnnotation::undo()
{
    setImage(m_old);
}

} // namespace Commands
