#pragma once

#include <QProxyStyle>

namespace UI {

/// The program's style: the platform's default one, with a few controls redrawn.
///
/// A control is redrawn only if its widget carries one of these boolean dynamic properties; every other widget is left
/// to the base style wholly.
///
/// | property                | control                                                      |
/// |-------------------------|--------------------------------------------------------------|
/// | "X-Sheet layer rename"  | a line edit: its frame is a filled rounded rectangle         |
/// | "ActionsList ScrollBar" | a scroll bar: a slim rounded bar on a clear groove, no arrows |
class MRProxyStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /// Wraps the platform's default style.
    MRProxyStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget = nullptr) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl subControl,
                         const QWidget *widget = nullptr) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option = nullptr,
                    const QWidget *widget = nullptr) const override;
};

} // namespace UI
