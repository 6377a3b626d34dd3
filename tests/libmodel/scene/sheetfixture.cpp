#include "sheetfixture.h"

#include "scenebuilder.h"

using namespace Model;

namespace TestSupport {

Sheet::Sheet()
{
    makeSmall(scene);
    source.setScene(&scene);
    model.setSourceModel(&source);
    model.setScene(&scene);
}

int Sheet::addColumn(const QString &column, bool linked)
{
    const auto layer = std::make_shared<StrokeLayer>(Qt::black, scene.frameSize());
    for (int frameId = 1; frameId < column.size(); ++frameId) {
        if (column.at(frameId) == '.')
            layer->insertCloneAfter(frameId);
        else
            layer->insertBlankAfter(frameId);
    }
    layer->setLinked(linked);
    return scene.insertLayer(layer, scene.layerCount());
}

int Sheet::addAudio()
{
    return scene.insertLayer(std::make_shared<AudioLayer>(), scene.layerCount());
}

int Sheet::addAnnotations(bool linked)
{
    const auto layer = std::make_shared<AnnotationLayer>();
    layer->setLinked(linked);
    return scene.insertLayer(layer, scene.layerCount());
}

void Sheet::setRange(int first, int last)
{
    scene.setFrameRange(first, last, first, 0);
}

QModelIndex Sheet::cell(int frameId, int column) const
{
    return model.index(frameId - scene.rangeFirst(), column);
}

QString Sheet::shown(int column) const
{
    QString text;
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex index = model.index(row, column);
        const bool isKey = index.data(SceneModel::KeyDrawingRole).toBool();
        if (!index.isValid())
            text += ' ';
        else if (index.data(SceneModel::BeyondLastRole).toBool())
            text += '_';
        else if (index.data(SceneModel::LocalCloneRole).toBool())
            text += isKey ? ':' : '.';
        else if (index.data(SceneModel::DistantCloneRole).toBool())
            text += isKey ? 'D' : 'd';
        else if (index.data(SceneModel::OriginalDrawingRole).toBool())
            text += isKey ? 'O' : 'o';
        else
            text += '?';
    }
    return text;
}

} // namespace TestSupport
