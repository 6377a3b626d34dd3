#include "libmodel/gstreamerenvironment.h"

namespace Model {

QList<std::pair<QByteArray, QByteArray>> bundledGstreamerEnvironment(const QDir &applicationDirectory)
{
    if (!applicationDirectory.exists(QStringLiteral("gstreamer")))
        return {};
    const auto folder = [&applicationDirectory](const QString &path) {
        QDir directory = applicationDirectory;
        directory.cd(path);
        return directory;
    };
    const QString plugins = folder(QStringLiteral("./gstreamer/lib/gstreamer-1.0")).absolutePath();
    const QString scanner = folder(QStringLiteral("./gstreamer/libexec/gstreamer-1.0"))
                                .absoluteFilePath(QStringLiteral("gst-plugin-scanner"));
    const QString whole = folder(QStringLiteral("./gstreamer")).absolutePath();
    return {{"GST_PLUGIN_SYSTEM_PATH", plugins.toLocal8Bit()},
            {"GST_PLUGIN_SCANNER", scanner.toLocal8Bit()},
            {"GTK_PATH", whole.toLocal8Bit()}};
}

} // namespace Model
