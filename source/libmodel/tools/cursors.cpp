#include "libmodel/tools/cursors.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QtMath>

#include <memory>

namespace Model {

namespace {

const QString pointerFolder = QStringLiteral(":/pointers/");

struct Pointer
{
    std::unique_ptr<QSvgRenderer> renderer;
    QPixmap pixmap;
    QPoint hotSpot;
};

/// What was decoded so far, by stem; names without a file stand here too, with nothing in them.
using PointerCache = QHash<QString, std::shared_ptr<Pointer>>;

PointerCache *cache = nullptr;

void dropCache()
{
    delete cache;
    cache = nullptr;
}

/// The pixel in the middle of the element that marks the hot spot, or of the whole picture.
QPoint hotSpotOf(const QSvgRenderer &renderer)
{
    const QString id = QStringLiteral("hotspot");
    const QPointF middle = renderer.elementExists(id)
                               ? renderer.transformForElement(id).map(renderer.boundsOnElement(id).center())
                               : renderer.viewBoxF().center();
    const QPointF fromCorner = middle - renderer.viewBoxF().topLeft();
    return {qFloor(fromCorner.x()), qFloor(fromCorner.y())};
}

std::shared_ptr<Pointer> decoded(const QString &name)
{
    auto pointer = std::make_shared<Pointer>();
    const QString filename = pointerFolder + name + QLatin1String(".svg");
    if (name.isEmpty() || !QFile::exists(filename))
        return pointer;
    auto renderer = std::make_unique<QSvgRenderer>(filename);
    if (!renderer->isValid())
        return pointer;
    pointer->pixmap = QPixmap(renderer->viewBox().size());
    pointer->pixmap.fill(Qt::transparent);
    QPainter painter(&pointer->pixmap);
    renderer->render(&painter);
    pointer->hotSpot = hotSpotOf(*renderer);
    pointer->renderer = std::move(renderer);
    return pointer;
}

const Pointer &pointerOf(const QString &name)
{
    if (!cache) {
        cache = new PointerCache;
        // Pixmaps must not outlive the application.
        qAddPostRoutine(dropCache);
    }
    std::shared_ptr<Pointer> &pointer = (*cache)[name];
    if (!pointer) {
        pointer = decoded(name);
        if (!name.isEmpty() && !pointer->renderer)
            qWarning("The pointer \"%s\" is missing", qUtf8Printable(name));
    }
    return *pointer;
}

} // namespace

void loadCursors()
{
    const QStringList files = QDir(pointerFolder).entryList({QStringLiteral("*.svg")}, QDir::Files);
    for (const QString &file : files)
        pointerOf(QFileInfo(file).completeBaseName());
}

QPixmap cursorPixmap(const QString &name)
{
    return pointerOf(name).pixmap;
}

QSvgRenderer *cursorRenderer(const QString &name)
{
    return pointerOf(name).renderer.get();
}

QCursor namedCursor(const QString &name, QPoint hotSpot)
{
    const QPixmap pixmap = cursorPixmap(name);
    return pixmap.isNull() ? QCursor(Qt::ArrowCursor) : QCursor(pixmap, hotSpot.x(), hotSpot.y());
}

QCursor namedCursor(const QString &name)
{
    return namedCursor(name, pointerOf(name).hotSpot);
}

QCursor rotatedCursor(const QString &name, double angleDegrees)
{
    QSvgRenderer *renderer = cursorRenderer(name);
    if (!renderer)
        return QCursor(Qt::ArrowCursor);
    const QSizeF size = renderer->viewBoxF().size();
    QPixmap pixmap((size * cursorPixelRatio).toSize());
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(pixmap.width() / 2.0, pixmap.height() / 2.0);
    painter.rotate(angleDegrees);
    const QSizeF drawn = size * cursorPixelRatio;
    renderer->render(&painter, QRectF(QPointF(-drawn.width() / 2, -drawn.height() / 2), drawn));
    painter.end();
    pixmap.setDevicePixelRatio(cursorPixelRatio);
    return QCursor(pixmap, qRound(size.width()) / 2, qRound(size.height()) / 2);
}

QCursor cursorForScreen(const QCursor &cursor, double screenRatio)
{
    const QPixmap pixmap = cursor.pixmap();
    if (pixmap.isNull() || QGuiApplication::platformName() != QLatin1String("xcb"))
        return cursor;
    const QSize size = (pixmap.deviceIndependentSize() * screenRatio).toSize();
    QImage image = pixmap.toImage();
    if (image.size() != size)
        image = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    image.setDevicePixelRatio(1.0);
    const QPointF hotSpot = QPointF(cursor.hotSpot()) * screenRatio;
    return QCursor(QPixmap::fromImage(image), qFloor(hotSpot.x()), qFloor(hotSpot.y()));
}

} // namespace Model
