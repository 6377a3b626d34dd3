#pragma once

#include <QImage>
#include <QString>

class QMimeData;

namespace Model {
class MemoryBudget;
}

/// A picture from the system's clipboard, whoever put it there.
struct ClipboardPicture
{
    QImage image;    ///< Null where none could be had.
    QString problem; ///< Why, as a sentence for the user; empty if there is an image.

    /// Does \a data have a picture, as far as its formats tell?
    [[nodiscard]] static bool isOn(const QMimeData &data);
    /// Takes the picture from \a data, with no more memory than \a memory allows for. Large ones come as PNG.
    [[nodiscard]] static ClipboardPicture of(const QMimeData &data, Model::MemoryBudget &memory);
};
