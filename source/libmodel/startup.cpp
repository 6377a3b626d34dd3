#include "libmodel/startup.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/base/settings.h"
#include "libmodel/gstreamerenvironment.h"
#include "libmodel/strokes/compositing.h"
#include "libmodel/tools/cursors.h"
#include "libmodel/tools/toolmanager.h"

#include <QCoreApplication>
#include <QDir>
#include <gst/gst.h>
#include <gst/pbutils/pbutils.h>

/// Resource initialisation has to be written outside of any namespace.
static void registerModelResources()
{
    Q_INIT_RESOURCE(model);
}

namespace Model {

namespace {

bool isStarted = false;

} // namespace

void startUp()
{
    if (isStarted)
        return;
    registerModelResources();
    for (const auto &[name, value] : bundledGstreamerEnvironment(QDir(QCoreApplication::applicationDirPath())))
        qputenv(name.constData(), value);
    gst_init(nullptr, nullptr);
    gst_pb_utils_init();
    initializeCompositingTables();
    loadCursors();
    Settings::instance()->load();
    ToolManager::instance();
    ActionManager::instance();
    isStarted = true;
}

void shutDown()
{
    isStarted = false;
}

} // namespace Model
