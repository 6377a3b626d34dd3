#pragma once

#include <QProxyStyle>

namespace UI {

/// The program's style: the platform's default one, with a few controls redrawn.
///
/// A control is redrawn only if its widget carries one of these boolean dynamic properties; every other widget is left
/// to the base style wholly.
///
/// | property                           | control                                                      |
/// |------------------------------------|--------------------------------------------------------------|
/// | "X-Sheet ScrollBar"                | a scroll bar: thick and flat, no arrows                      |
/// | "ActionsList ScrollBar"            | a scroll bar: a slim rounded bar on a clear groove, no arrows |
/// | "X-Sheet Header", "X-Sheet Footer" | a header: its sections are bands with an edge                |
/// | "X-Sheet layer rename"             | a line edit: its frame is a filled rounded rectangle         |
/// | "Menu Marks"                       | a menu, a check box: marks as large as its font              |
class MRProxyStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /// Wraps the platform's default style.
    MRProxyStyle();

    using QProxyStyle::polish;
    void polish(QWidget *widget) override;

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget = nullptr) const override;
    SubControl hitTestComplexControl(ComplexControl control, const QStyleOptionComplex *option, const QPoint &position,
                                     const QWidget *widget = nullptr) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl subControl,
                         const QWidget *widget = nullptr) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option = nullptr,
                    const QWidget *widget = nullptr) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contentsSize,
                           const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option = nullptr, const QWidget *widget = nullptr,
                  QStyleHintReturn *returnData = nullptr) const override;
};

} // namespace UI
