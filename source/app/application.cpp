#include "app/application.h"

#include <QFileOpenEvent>
#include <QPointerEvent>

Application::Application(int &argc, char **argv) : QApplication(argc, argv)
{
}

bool Application::event(QEvent *event)
{
    if (event->type() == QEvent::TabletEnterProximity) {
        const auto *pointer = dynamic_cast<QPointerEvent *>(event);
        if (const QPointingDevice *device = pointer ? pointer->pointingDevice() : nullptr) {
            const QPointingDevice::PointerType type = device->pointerType();
            if (type == QPointingDevice::PointerType::Pen || type == QPointingDevice::PointerType::Eraser)
                emit tabletPointerTypeChanged(type);
        }
        return true;
    }
    if (event->type() == QEvent::FileOpen)
        emit requestFileOpen(static_cast<QFileOpenEvent *>(event)->file());
    return QApplication::event(event);
}
