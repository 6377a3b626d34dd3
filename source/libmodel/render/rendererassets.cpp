#include "libmodel/render/rendererassets.h"

#include <QFileInfo>
#include <QImageReader>
#include <QStandardPaths>

namespace Model {

const std::array<const char *, 6> softnessCurveFiles = {
    "SoftnessCurve-pencil.png",        "SoftnessCurve-marker.png",       "SoftnessCurve-brush.png",
    "SoftnessCurve-eraserKneaded.png", "SoftnessCurve-eraserRubber.png", "SoftnessCurve-eraserVinyl.png",
};

const char *const paperTextureFile = "MRtexture.png";

namespace {

QImage readPicture(const QString &path, int maximumSide)
{
    QImageReader reader(path);
    // The size stands in the header of most formats, so that a huge picture is turned down before it is decoded.
    const QSize announced = reader.size();
    if (announced.width() > maximumSide || announced.height() > maximumSide)
        return {};
    const QImage image = reader.read();
    if (image.width() > maximumSide || image.height() > maximumSide)
        return {};
    return image;
}

} // namespace

QImage loadRendererImage(const QString &fileName, int maximumSide)
{
    const QStringList folders = QStandardPaths::standardLocations(QStandardPaths::AppDataLocation);
    for (const QString &folder : folders) {
        const QString path = folder + QLatin1Char('/') + fileName;
        if (!QFileInfo(path).isFile())
            continue;
        if (QImage image = readPicture(path, maximumSide); !image.isNull())
            return image;
    }
    return readPicture(QStringLiteral(":/shaders/") + fileName, maximumSide);
}

} // namespace Model
