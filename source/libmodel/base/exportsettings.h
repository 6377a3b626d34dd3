#pragma once

#include <QObject>
#include <QString>

namespace Model {

/// What every export asks: where to, which layers, which frames. A value.
struct ExportSettings
{
    Q_GADGET

public:
    enum class Layers {
        AllLayers,
        VisibleLayers,
        ActiveLayerOnly,
    };
    Q_ENUM(Layers)

    enum class Frames {
        AllFrames,
        RangeOnly,
    };
    Q_ENUM(Frames)

    /// Name of the file, or base of the file names; never stored, it comes from the scene.
    QString fileName;
    /// The folder to write to; empty until the first export.
    QString exportDir;
    Layers layers = Layers::AllLayers;
    Frames frames = Frames::AllFrames;

    bool operator==(const ExportSettings &other) const = default;
};

/// Options for writing frames as numbered image files.
struct ExportFramesSettings : ExportSettings
{
    Q_GADGET

public:
    /// What is written for a frame that repeats a drawing.
    enum class Clones {
        ExcludeClones,               ///< Nothing: the numbering has gaps.
        IncludeClones,               ///< A file whose name tells what it repeats.
        IncludeClonesSimpleSequence, ///< A file like any other.
    };
    Q_ENUM(Clones)

    enum class ImageFormat {
        PNG,
        OpenEXR,
    };
    Q_ENUM(ImageFormat)

    Clones clones = Clones::ExcludeClones;
    ImageFormat imageFormat = ImageFormat::PNG;
    /// One sequence of composed frames instead of one for each layer.
    bool combineLayers = false;
    /// Layers' colours are ignored.
    bool makeAllLinesBlack = false;
    /// The ground is transparent, otherwise white.
    bool includeAlpha = true;

    bool operator==(const ExportFramesSettings &other) const = default;
};

/// Options for writing an exposure sheet with its drawings as a package.
struct ExportExposureSheetSettings : ExportSettings
{
    Q_GADGET

public:
    enum class Format {
        OCA,
    };
    Q_ENUM(Format)

    enum class ImageFormat {
        PNG,
        OpenEXR,
    };
    Q_ENUM(ImageFormat)

    Format format = Format::OCA;
    ImageFormat imageFormat = ImageFormat::PNG;
    bool includeAudio = false;

    bool operator==(const ExportExposureSheetSettings &other) const = default;
};

/// Options for writing a movie clip.
struct ExportVideoSettings : ExportSettings
{
    Q_GADGET

public:
    enum class VideoFormat {
        GIF,
        MP4,
        ProRes,
    };
    Q_ENUM(VideoFormat)

    /// Size of the clip in percent of the frame size.
    int scalePercent = 100;
    VideoFormat videoFormat = VideoFormat::MP4;
    /// Asks for a transparent ground; only some formats can have one.
    bool includeAlpha = true;
    bool includeAudio = true;
    /// Whether there is any sound to include; never stored.
    bool sceneHasAudio = false;
    /// Tags for the file, as a list in GStreamer's notation; never stored.
    QString tags;

    bool operator==(const ExportVideoSettings &other) const = default;
};

} // namespace Model
