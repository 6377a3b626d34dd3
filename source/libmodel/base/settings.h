#pragma once

#include "libmodel/base/backlightsettings.h"
#include "libmodel/base/exportsettings.h"
#include "libmodel/base/mr.h"

#include <QByteArray>
#include <QObject>
#include <QSize>
#include <QString>
#include <QStringList>

#include <memory>

namespace Model {

/// The ranges a user has given a drawing tool, each bound in percent (0 to 100) of the tool's own limits. A value.
struct ToolRanges
{
    double opacityLower = 0.0;
    double opacityUpper = 100.0;
    double sizeLower = 0.0;
    double sizeUpper = 100.0;

    bool operator==(const ToolRanges &other) const = default;
};

/// Where the parts of the main window stand. A value.
struct WindowLayout
{
    bool xSheetOnLeft = false;
    bool xSheetDetached = false;
    bool xSheetVisible = true;
    bool toolBarOnLeft = true;
    bool toolBarVisible = true;
    /// Logical pixels.
    int xSheetWidth = 0;

    bool operator==(const WindowLayout &other) const = default;
};

/// All preferences of the user, in memory and in the platform's settings store.
///
///     store --load()--> memory --getters--> program
///       ^------------------^----setters--------'
///
/// The store is read once, by load(). A setter given the value that already stands does nothing; otherwise it writes
/// the value's key at once and then tells of it, where there is a signal. Enumerations are stored by their keys; a
/// stored text that is no key reads as the enumeration's value 0. A stored value of any other kind that makes no sense
/// reads as the default, and calling its setter replaces it. One per process, GUI thread only.
class Settings : public QObject
{
    Q_OBJECT

public:
    /// The settings of this process; holds the defaults until load() is called.
    static Settings *instance();

    ~Settings() override;

    /// Reads every value from the store; what is not there gets its default. Sends no signals.
    void load();

    /// Sets the values the preferences dialog shows back to their defaults, through their setters: cursor type, locking
    /// of clones, transparency, grid type, collapsing, the sheet's top bar, autosaving and the interface scale.
    void resetPreferences();

    // Drawing and the paper.

    /// Whether drawing on a clone is refused instead of changing its original.
    [[nodiscard]] bool clonesLockedForDrawing() const;
    void setClonesLockedForDrawing(bool locked);
    [[nodiscard]] MR::GridType gridType() const;
    void setGridType(MR::GridType gridType);
    [[nodiscard]] MR::TransparencyType transparencyType() const;
    void setTransparencyType(MR::TransparencyType transparencyType);
    [[nodiscard]] MR::DrawCursorType drawCursorType() const;
    void setDrawCursorType(MR::DrawCursorType drawCursorType);
    [[nodiscard]] MR::DrawCursorOpacity drawCursorOpacity() const;
    void setDrawCursorOpacity(MR::DrawCursorOpacity drawCursorOpacity);
    /// Whether heavy drawings are turned into bitmaps without asking.
    [[nodiscard]] bool collapseAutomatically() const;
    void setCollapseAutomatically(bool collapse);
    /// Bitmap pixels per paper pixel of a collapsed drawing; the same in every run.
    [[nodiscard]] int collapseScale() const;
    /// Both sets of preferences and which one is used are stored, the two switches only kept.
    [[nodiscard]] BacklightSettings backlightSettings() const;
    void setBacklightSettings(const BacklightSettings &backlightSettings);

    // The exposure sheet.

    /// Whether layers show the buttons for what stands beyond their last drawing.
    [[nodiscard]] bool showBeyondButtons() const;
    void setShowBeyondButtons(bool show);
    /// Whether a drag slides drawings instead of adding clones; not stored, off at every start.
    [[nodiscard]] bool slideMode() const;
    void setSlideMode(bool slideMode);
    [[nodiscard]] MR::ThumbnailSize thumbnailSize() const;
    void setThumbnailSize(MR::ThumbnailSize thumbnailSize);
    [[nodiscard]] bool showXSheetTopBar() const;
    void setShowXSheetTopBar(bool show);

    // New scenes and folders.

    /// Folder of the scene last opened or saved; empty at first.
    [[nodiscard]] QString defaultSaveDir() const;
    void setDefaultSaveDir(const QString &dir);
    /// Folder of the last import; empty at first.
    [[nodiscard]] QString defaultImportDir() const;
    void setDefaultImportDir(const QString &dir);
    /// Pixels, 1 to 8192 each way.
    [[nodiscard]] QSize defaultFrameSize() const;
    void setDefaultFrameSize(QSize size);
    /// Frames per second, 0.1 to 60.
    [[nodiscard]] double defaultFrameRate() const;
    void setDefaultFrameRate(double framesPerSecond);
    /// 1 to 10000.
    [[nodiscard]] int defaultInitialNumberOfFrames() const;
    void setDefaultInitialNumberOfFrames(int count);
    [[nodiscard]] MR::FitMode defaultChangeFrameSizeFitMode() const;
    void setDefaultChangeFrameSizeFitMode(MR::FitMode fitMode);
    /// Absolute file names of scenes, newest first. How many are kept is up to the caller of the setter.
    [[nodiscard]] QStringList recentScenes() const;
    void setRecentScenes(const QStringList &filenames);
    /// Puts \a filename first, once.
    void addRecentScene(const QString &filename);
    void removeRecentScene(const QString &filename);

    // Backups.

    [[nodiscard]] bool autoSaveEnabled() const;
    void setAutoSaveEnabled(bool enabled);
    /// Minutes between backups.
    [[nodiscard]] int autoSaveIntervalMins() const;
    void setAutoSaveIntervalMins(int minutes);
    /// How many backup files are written in turn.
    [[nodiscard]] int autoSaveNumFiles() const;
    void setAutoSaveNumFiles(int count);

    // The interface.

    /// Size of the interface in percent.
    [[nodiscard]] int uiScalePercent() const;
    void setUiScalePercent(int scalePercent);
    [[nodiscard]] bool showVideoTutorialsOnStartup() const;
    void setShowVideoTutorialsOnStartup(bool show);
    /// Action lists are keys of MR::Action or "Spacer", separated by "|".
    [[nodiscard]] QString toolBarActionList() const;
    void setToolBarActionList(const QString &actionList);
    [[nodiscard]] QString primaryActionList() const;
    void setPrimaryActionList(const QString &actionList);
    [[nodiscard]] QString secondaryActionList() const;
    void setSecondaryActionList(const QString &actionList);
    /// Geometries are as QWidget saves them; empty if never stored.
    [[nodiscard]] QByteArray mainWindowGeometry() const;
    void setMainWindowGeometry(const QByteArray &geometry);
    [[nodiscard]] QByteArray referenceDisplayGeometry() const;
    void setReferenceDisplayGeometry(const QByteArray &geometry);
    [[nodiscard]] QByteArray xSheetWindowGeometry() const;
    void setXSheetWindowGeometry(const QByteArray &geometry);
    /// What was stored, completed with \a defaults.
    [[nodiscard]] WindowLayout windowLayout(const WindowLayout &defaults) const;
    void setWindowLayout(const WindowLayout &layout);

    // Exports. The names and tags of a structure are not stored.

    [[nodiscard]] ExportFramesSettings exportFramesSettings() const;
    void setExportFramesSettings(const ExportFramesSettings &settings);
    [[nodiscard]] ExportExposureSheetSettings exportExposureSheetSettings() const;
    void setExportExposureSheetSettings(const ExportExposureSheetSettings &settings);
    [[nodiscard]] ExportVideoSettings exportVideoSettings() const;
    void setExportVideoSettings(const ExportVideoSettings &settings);

    // Drawing tools, by DrawingTool::settingsName().

    /// What was stored for \a preset of the tool, completed with \a defaults.
    [[nodiscard]] ToolRanges toolRanges(const QString &toolName, MR::ToolPreset preset,
                                        const ToolRanges &defaults) const;
    void setToolRanges(const QString &toolName, MR::ToolPreset preset, const ToolRanges &ranges);
    void setToolSizeRange(const QString &toolName, MR::ToolPreset preset, double lowerPercent, double upperPercent);
    void setToolOpacityRange(const QString &toolName, MR::ToolPreset preset, double lowerPercent, double upperPercent);

signals:
    void showBeyondButtonsChanged(bool showBeyondButtons);
    void clonesLockedForDrawingChanged(bool clonesLockedForDrawing);
    void slideModeChanged(bool slideMode);
    void gridTypeChanged(MR::GridType gridType);
    void thumbnailSizeChanged(MR::ThumbnailSize thumbnailSize);
    void transparencyTypeChanged(MR::TransparencyType transparencyType);
    void drawCursorTypeChanged(MR::DrawCursorType drawCursorType);
    void drawCursorOpacityChanged(MR::DrawCursorOpacity drawCursorOpacity);
    void backlightSettingsChanged(const Model::BacklightSettings &backlightSettings);
    void collapseAutomaticallyChanged(bool collapse);
    void showXSheetTopBarChanged(bool show);
    /// One of the three autosave values has changed.
    void autoSaveChanged();
    void UIScaleChanged(int scalePercent);

private:
    Settings();

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Model
