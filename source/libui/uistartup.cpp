#include "libui/uistartup.h"

#include "libui/style/applicationfont.h"
#include "libui/style/chromepalette.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPointer>

// The resource's initialiser lies in the global namespace, so the macro can't stand inside ours.
static void registerResources()
{
    Q_INIT_RESOURCE(ui);
}

namespace UI {

namespace {

bool started = false;

/// Belongs to the application object.
QPointer<ApplicationFont> applicationFont;

} // namespace

void startUp()
{
    if (started)
        return;
    registerResources();
    QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/PassionOne-Regular.ttf"));

    // Where the family isn't installed, its place is taken by the platform's own sans serif.
    QFont font = QApplication::font();
    const QString platformFamily = QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
    font.setFamilies({QStringLiteral("Lucida Sans Unicode"), platformFamily});
    applicationFont = new ApplicationFont(font, qApp);
    QApplication::setPalette(chromePalette());
    started = true;
}

void shutDown()
{
    if (applicationFont) {
        QApplication::setFont(applicationFont->base());
        delete applicationFont;
    }
    started = false;
}

} // namespace UI
