#include "support/glfixture.h"

#include "libmodel/render/offscreenrenderer.h"

#include <QDebug>
#include <QDir>

// Must stand outside of any namespace: it names a symbol that the resource compiler makes.
static void initializeModelResources()
{
    Q_INIT_RESOURCE(model);
}

namespace TestSupport {

void registerModelResources()
{
    initializeModelResources();
}

bool startRenderer(QSize size)
{
    registerModelResources();
    Model::OffscreenRenderer *renderer = Model::OffscreenRenderer::instance();
    if (renderer->initialize(size))
        return true;
    qWarning().noquote() << "No renderer:" << renderer->errorString();
    return false;
}

} // namespace TestSupport
