#pragma once

#include <QColor>
#include <QList>
#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

namespace Model {
class Scene;
}

namespace Export {

/// What `info` tells of a layer. A value.
struct LayerInfo
{
    QString kind; ///< "stroke", "reference", "audio" or "annotation"
    QString name;
    bool linked = false;
    int frames = 0; ///< its length: cells, or images of notes; 0 for sound

    /// The rest is told of layers with pictures only.
    struct Pictures
    {
        bool visible = true;
        double opacity = 1.0;        ///< 0 to 1
        std::optional<QColor> color; ///< none where the layer has no colour of its own
        QString beyond;              ///< past its last cell: "showNothing", "freezeLast" or "cycleDrawings"
        int originals = 0;
        int clones = 0;
        int distantClones = 0;
    };
    std::optional<Pictures> pictures;
};

/// What `info` tells of a scene. A value, apart from how it is told.
struct SceneInfo
{
    QString file; ///< as it was named
    QSize frameSize;
    double frameRate = 0.0; ///< frames per second
    int frames = 0;
    int rangeFirst = 0;
    int rangeLast = 0;
    int activeFrame = 0;
    int activeLayer = 0;     ///< place in layers
    QList<LayerInfo> layers; ///< from the top of the display order
    qsizetype soundBytes = 0;
    double soundOffset = 0.0; ///< frames
    int notes = 0;            ///< frames with a note

    // What only who opened the file knows.
    bool needsRendering = false; ///< strokes came without an image, and there is no OpenGL to make it
    QStringList damages;
    qsizetype damageCount = 0; ///< in all, beyond those that damages lists
};

/// Collects what there is to tell of \a scene itself.
[[nodiscard]] SceneInfo sceneInfo(const Model::Scene &scene);

/// \a info as a table for people; names from the file cannot steer a terminal.
[[nodiscard]] QString plainText(const SceneInfo &info);
/// \a info as a JSON object, without control characters; docs/mirelle-export.md lists the keys, which stay what they
/// are.
[[nodiscard]] QString jsonText(const SceneInfo &info);

} // namespace Export
