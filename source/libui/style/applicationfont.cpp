#include "libui/style/applicationfont.h"

#include "libmodel/base/settings.h"
#include "libui/style/uiscale.h"

#include <QApplication>

namespace UI {

ApplicationFont::ApplicationFont(const QFont &base, QObject *parent) : QObject(parent), m_base(base)
{
    apply();
    connect(Model::Settings::instance(), &Model::Settings::UIScaleChanged, this, &ApplicationFont::apply);
}

void ApplicationFont::apply()
{
    QFont font = m_base;
    // A font has its size in points or in pixels; the other one reads -1.
    if (m_base.pixelSize() > 0)
        font.setPixelSize(qMax(1, scaled(m_base.pixelSize())));
    else
        font.setPointSizeF(m_base.pointSizeF() * uiScale());
    QApplication::setFont(font);
}

} // namespace UI
