#pragma once

#include "libmodel/tools/cursors.h"
#include "libmodel/tools/tool.h"

#include <QString>

#include <optional>

namespace Model {

/// What pens and erasers share: the ranges of size and opacity within which pressure moves.
///
///     limits (paper pixels, fraction) --percent range--> base (at no pressure) and range (added at full pressure)
///
/// A user sets ranges in percent of the tool's limits, never sizes. Sizes are diameters, radii half of them, both in
/// paper pixels. Stepping a range keeps unclamped working values, so a range driven against a limit springs back by the
/// same steps in its old proportions; setting a range in any other way ends the stepping.
class DrawingTool : public Tool
{
    Q_OBJECT

public:
    /// A range in percent, or limits; lower is never above upper.
    struct Range
    {
        double lower = 0.0;
        double upper = 100.0;

        bool operator==(const Range &other) const = default;
    };

    static constexpr double smallestSize = 0.5;
    static constexpr double largestSize = 180.0;

    /// Radius at no pressure.
    [[nodiscard]] double radiusBase() const { return m_radiusBase; }
    /// What full pressure adds to the radius.
    [[nodiscard]] double radiusRange() const { return m_radiusRange; }
    /// Opacity at no pressure, 0 to 1.
    [[nodiscard]] double opacityBase() const { return m_opacityBase; }
    /// What full pressure adds to the opacity.
    [[nodiscard]] double opacityRange() const { return m_opacityRange; }

    [[nodiscard]] double sizeMinPercent() const { return m_sizePercent.lower; }
    [[nodiscard]] double sizeMaxPercent() const { return m_sizePercent.upper; }
    [[nodiscard]] double opacityMinPercent() const { return m_opacityPercent.lower; }
    [[nodiscard]] double opacityMaxPercent() const { return m_opacityPercent.upper; }
    [[nodiscard]] double sizeLowerLimit() const { return m_sizeLimits.lower; }
    [[nodiscard]] double sizeUpperLimit() const { return m_sizeLimits.upper; }
    [[nodiscard]] double opacityLowerLimit() const { return m_opacityLimits.lower; }
    [[nodiscard]] double opacityUpperLimit() const { return m_opacityLimits.upper; }

    /// The bounds of the ranges as stepping sees them: the working values while stepping, else the set percentages.
    [[nodiscard]] double incDecSizeMinPercent() const;
    [[nodiscard]] double incDecSizeMaxPercent() const;
    [[nodiscard]] double incDecOpacityMinPercent() const;
    [[nodiscard]] double incDecOpacityMaxPercent() const;

    /// Logical pixels of the view per paper pixel, above 0. Until a view tells, one pixel of the cursor's picture
    /// stands for one paper pixel.
    [[nodiscard]] double viewScale() const { return m_viewScale; }

    /// The tool's name for the user.
    [[nodiscard]] virtual QString displayName() const = 0;
    /// The tool's name in the settings.
    [[nodiscard]] virtual QString settingsName() const = 0;

    /// A cursor for a tip between the radii \a inner and \a outer (paper pixels), with \a scale pixels of the cursor's
    /// picture per paper pixel.
    [[nodiscard]] virtual QCursor makeCursor(double inner, double outer, double scale, bool faint) const = 0;

    [[nodiscard]] QCursor cursor() const override;

public slots:
    /// Sets the diameters that 0 and 100 percent mean; both within smallestSize and largestSize, the lower one
    /// following the upper one.
    void setSizeRangeLimits(double lowerLimit, double upperLimit);
    /// Sets the opacities that 0 and 100 percent mean; both within 0 and 1, the lower one following the upper one.
    void setOpacityRangeLimits(double lowerLimit, double upperLimit);
    /// Sets the range of sizes; both bounds within 0 and 100, the lower one following the upper one.
    void setSizeRangePercent(double sizeMinPercent, double sizeMaxPercent);
    /// Sets the range of opacities in the same way.
    void setOpacityRangePercent(double opacityMinPercent, double opacityMaxPercent);
    /// Sets the range of sizes and keeps the bounds, however far outside of 0 to 100, as working values.
    void setIncDecSizeRangePercent(double sizeMinPercent, double sizeMaxPercent);
    /// The same for opacities.
    void setIncDecOpacityRangePercent(double opacityMinPercent, double opacityMaxPercent);

    void decreaseSizeRange();
    void increaseSizeRange();
    void decreaseOpacityRange();
    void increaseOpacityRange();

    /// Sets how large the paper is seen, which the cursor follows.
    void setViewScale(double viewScale);
    void updateCursor() override;

signals:
    /// \a toolName is settingsName().
    void sizeRangeChanged(const QString &toolName, double lowerPercent, double upperPercent);
    void opacityRangeChanged(const QString &toolName, double lowerPercent, double upperPercent);

protected:
    explicit DrawingTool(Type type, QObject *parent = nullptr);

    /// The small cursor that does not tell the size.
    [[nodiscard]] virtual QCursor fixedCursor(bool faint) const = 0;

    /// Takes over ranges, limits, working values and view scale of \a other; tells nobody.
    void copyState(const DrawingTool &other);

private:
    /// All that a cursor depends on: same look, same cursor.
    struct CursorLook
    {
        bool adapts = true;
        bool faint = true;
        double inner = 0.0;
        double outer = 0.0;
        double scale = 0.0;

        bool operator==(const CursorLook &other) const = default;
    };

    [[nodiscard]] CursorLook cursorLook() const;

    double m_radiusBase = 0.5;
    double m_radiusRange = 4.5;
    double m_opacityBase = 0.0;
    double m_opacityRange = 1.0;
    Range m_sizePercent;
    Range m_opacityPercent;
    Range m_sizeLimits{1.0, 10.0};
    Range m_opacityLimits{0.0, 1.0};
    std::optional<Range> m_sizeSteps;
    std::optional<Range> m_opacitySteps;
    double m_viewScale = 1.0 / cursorPixelRatio;
    mutable std::optional<CursorLook> m_look;
    mutable QCursor m_cursor;
};

} // namespace Model
