#include "libmodel/startup.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/base/settings.h"
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

/// The folder \a path seen from the executable's; the executable's own folder when there is none.
QDir besideExecutable(const QString &path)
{
    QDir directory(QCoreApplication::applicationDirPath());
    directory.cd(path);
    return directory;
}

/// Lets a GStreamer that stands beside the executable, as in a bundle, be found before the system's. Without that
/// folder the user's environment stays as it is.
void setGstreamerEnvironment()
{
    if (!QDir(QCoreApplication::applicationDirPath()).exists(QStringLiteral("gstreamer")))
        return;
    const QDir plugins = besideExecutable(QStringLiteral("./gstreamer/lib/gstreamer-1.0"));
    qputenv("GST_PLUGIN_SYSTEM_PATH", plugins.absolutePath().toLocal8Bit());
    const QDir helpers = besideExecutable(QStringLiteral("./gstreamer/libexec/gstreamer-1.0"));
    qputenv("GST_PLUGIN_SCANNER", helpers.absoluteFilePath(QStringLiteral("gst-plugin-scanner")).toLocal8Bit());
    qputenv("GTK_PATH", besideExecutable(QStringLiteral("./gstreamer")).absolutePath().toLocal8Bit());
}

} // namespace

void startUp()
{
    if (isStarted)
        return;
    registerModelResources();
    setGstreamerEnvironment();
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
