#include "app/clipboardpicture.h"

#include "libmodel/files/memorybudget.h"
#include "libmodel/files/pictureblock.h"

#include <QCoreApplication>
#include <QMimeData>

#include <algorithm>

namespace {

const QString png = QStringLiteral("image/png");

/// The format that the picture of \a data comes in.
QString formatOf(const QMimeData &data)
{
    const QStringList formats = data.formats();
    if (formats.contains(png))
        return png;
    const auto found = std::ranges::find_if(formats, [](const QString &format) { return format.startsWith("image/"); });
    return found != formats.end() ? *found : QStringLiteral("image");
}

QString problemWith(const QMimeData &data, const QString &reason)
{
    return QCoreApplication::translate("ClipboardPicture", "The picture on the clipboard (%1) cannot be pasted:\n%2.")
        .arg(formatOf(data), reason);
}

} // namespace

bool ClipboardPicture::isOn(const QMimeData &data)
{
    return data.hasImage() || data.hasFormat(png);
}

ClipboardPicture ClipboardPicture::of(const QMimeData &data, Model::MemoryBudget &memory)
{
    if (data.hasFormat(png)) {
        const Model::DecodedImage decoded = Model::decodePng(data.data(png), memory);
        if (decoded.exceedsMemory)
            return {{},
                    problemWith(data,
                                QCoreApplication::translate("ClipboardPicture", "It needs more memory than there is"))};
        if (!decoded.isDamaged)
            return {decoded.image, {}};
    }
    const auto image = qvariant_cast<QImage>(data.imageData());
    if (!image.isNull())
        return {image, {}};
    return {{}, problemWith(data, QCoreApplication::translate("ClipboardPicture", "It is damaged, or too large"))};
}
