#pragma once

#include "libmodel/base/exportsettings.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace Model {

/// Encodes images on all cores and puts them on the disk, one after the other in the order in which they were given.
///
/// A file is written beside its name and renamed when it is whole and on the disk, so that no half image is ever seen
/// under the name. Only so many images wait at a time as keep the cores busy: whoever gives more waits in enqueue().
/// The files are the same, byte for byte, as if each had been written at once by the caller. For one thread; its own
/// threads are no concern of the caller's. Where the system gives it none, the caller's thread does the work in
/// enqueue().
class ImageFileQueue
{
public:
    /// Called while somebody waits, about fifty times a second at the least. \return false to wait no longer.
    using Waiting = std::function<bool()>;

    /// With at most \a threads (at least 1) threads; 0 for as many as keep every core busy while one waits for the
    /// disk.
    explicit ImageFileQueue(ExportFramesSettings::ImageFormat format, int threads = 0);
    /// Waits for what was enqueued.
    ~ImageFileQueue();

    ImageFileQueue(const ImageFileQueue &) = delete;
    ImageFileQueue &operator=(const ImageFileQueue &) = delete;

    /// Takes \a image to be written to \a fileName, over what stands there. Waits while too many images are waiting,
    /// or while those that are here and this one together would take more memory than images may; \a image itself is
    /// held besides. \return false when \a waiting had it wait no longer: the image is not taken then.
    bool enqueue(const QImage &image, const QString &fileName, const Waiting &waiting = {});
    /// Tells of \a fileName, when its turn comes, as a file that cannot be written for \a reason.
    void refuse(const QString &fileName, const QString &reason);
    /// Forgets the images whose writing has not begun. What has begun becomes whole.
    void cancel();
    /// Waits until every file is written. \return false when \a waiting had it wait no longer.
    bool finish(const Waiting &waiting = {});
    /// The number of whole files that stand under their names.
    [[nodiscard]] int written() const;
    /// The files that could not be written, in the order in which they were given, each with the reason:
    /// "FILE: reason".
    [[nodiscard]] QStringList failures() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Model
