#pragma once

#include "libmodel/base/exportsettings.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <memory>

namespace Model {

/// Encodes images on all cores and puts them on the disk, one after the other in the order in which they were given.
///
/// A file is written beside its name and renamed when it is whole, so that no half image is ever seen under the name.
/// Only so many images wait at a time as keep the cores busy: whoever gives more waits in enqueue(). The files are the
/// same, byte for byte, as if each had been written at once by the caller. For one thread; its own threads are no
/// concern of the caller's.
class ImageFileQueue
{
public:
    /// With \a threads (at least 1) threads; 0 for one per core.
    explicit ImageFileQueue(ExportFramesSettings::ImageFormat format, int threads = 0);
    /// Waits for what was enqueued.
    ~ImageFileQueue();

    ImageFileQueue(const ImageFileQueue &) = delete;
    ImageFileQueue &operator=(const ImageFileQueue &) = delete;

    /// Takes \a image to be written to \a fileName, over what stands there. Waits while too many images are waiting.
    void enqueue(const QImage &image, const QString &fileName);
    /// Forgets the images whose writing has not begun. What has begun becomes whole.
    void cancel();
    /// Waits until every file is written.
    void finish();
    /// The number of whole files that stand under their names.
    [[nodiscard]] int written() const;
    /// The files that could not be written, each with the reason: "FILE: reason".
    [[nodiscard]] QStringList failures() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Model
