#include "libmodel/images/imagefilequeue.h"

#include "libmodel/images/exrwriter.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QSaveFile>
#include <QThread>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <new>
#include <thread>
#include <utility>
#include <vector>

namespace Model {

namespace {

using ImageFormat = ExportFramesSettings::ImageFormat;

/// Images that need more than this together, in bytes, are encoded one after the other.
constexpr qint64 bytesAtATime = qint64(1) << 30;
/// What writing an OpenEXR file takes, in sizes of its image: floats and their halves, each with a copy.
constexpr int exrFactor = 10;

struct Job
{
    QImage image;
    QString fileName;
    qint64 bytes = 0; ///< what it takes while it is here
};

QString translated(const char *text)
{
    return QCoreApplication::translate("Model::ImageFileQueue", text);
}

bool encode(const QImage &image, ImageFormat format, QSaveFile &file, QString *reason)
{
    if (format == ImageFormat::OpenEXR)
        return writeExr(image, file, reason);
    if (image.isNull()) {
        *reason = translated("There is no image");
        return false;
    }
    // By way of the memory: the library prints what it thinks of a disk that takes no more.
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "png", -1)) {
        *reason = translated("The image cannot be encoded");
        return false;
    }
    if (file.write(buffer.data()) != buffer.size()) {
        *reason = file.errorString();
        return false;
    }
    return true;
}

/// Has \a image in a file beside \a file's name that only waits for its commit(). \return why it has not, otherwise an
/// empty text.
QString prepare(const QImage &image, ImageFormat format, QSaveFile &file)
{
    QString reason;
    try {
        if (!file.open(QIODevice::WriteOnly))
            return file.errorString();
        // What is still in a buffer must be on the disk ahead of commit(), which would not notice if it found no place.
        if (encode(image, format, file, &reason) && !file.flush())
            reason = file.errorString();
    } catch (const std::bad_alloc &) {
        reason = translated("Not enough memory");
    }
    if (!reason.isEmpty())
        file.cancelWriting();
    return reason;
}

} // namespace

/// The caller's thread fills `waiting`, the threads empty it:
///
///     enqueue() -> waiting -> a thread: prepare the file, wait for its turn, rename it, tell
///
/// A thread draws the number of its turn when it takes a job, so that a cancelled job leaves no gap.
class ImageFileQueue::Private
{
public:
    Private(ImageFormat writtenFormat, int threadCount);
    ~Private();

    void run();
    void write(Job job, quint64 turn);
    [[nodiscard]] bool hasRoom(qint64 bytes) const;

    const ImageFormat format;
    const size_t mostWaiting;

    mutable std::mutex mutex; ///< guards all that follows, but for the threads
    std::condition_variable changed;
    std::deque<Job> waiting;
    qint64 bytesHere = 0; ///< of the jobs that wait and those in work
    quint64 turnsGiven = 0;
    quint64 turnsOver = 0;
    bool closing = false;
    int written = 0;
    QStringList failures;

    std::vector<std::thread> threads;
};

ImageFileQueue::Private::Private(ImageFormat writtenFormat, int threadCount)
    : format(writtenFormat), mostWaiting(size_t(std::max(1, threadCount)))
{
    for (size_t i = 0; i < mostWaiting; ++i)
        threads.emplace_back(&Private::run, this);
}

ImageFileQueue::Private::~Private()
{
    {
        const std::lock_guard lock(mutex);
        closing = true;
    }
    changed.notify_all();
    for (std::thread &thread : threads)
        thread.join();
}

void ImageFileQueue::Private::run()
{
    std::unique_lock lock(mutex);
    while (true) {
        changed.wait(lock, [this] { return closing || !waiting.empty(); });
        if (waiting.empty())
            return;
        Job job = std::move(waiting.front());
        waiting.pop_front();
        const quint64 turn = turnsGiven++;
        lock.unlock();
        changed.notify_all();
        write(std::move(job), turn);
        lock.lock();
    }
}

void ImageFileQueue::Private::write(Job job, quint64 turn)
{
    QSaveFile file(job.fileName);
    QString reason = prepare(job.image, format, file);
    // Ahead of making room for others.
    job.image = QImage();
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this, turn] { return turnsOver == turn; });
    }
    // Nobody else is here until the turn is over.
    if (reason.isEmpty() && !file.commit())
        reason = file.errorString();
    {
        const std::lock_guard lock(mutex);
        if (reason.isEmpty())
            ++written;
        else
            failures += translated("%1: %2").arg(QDir::toNativeSeparators(job.fileName), reason);
        bytesHere -= job.bytes;
        ++turnsOver;
    }
    changed.notify_all();
}

bool ImageFileQueue::Private::hasRoom(qint64 bytes) const
{
    return waiting.size() < mostWaiting && (bytesHere == 0 || bytesHere + bytes <= bytesAtATime);
}

ImageFileQueue::ImageFileQueue(ImageFormat format, int threads)
    : d(std::make_unique<Private>(format, threads > 0 ? threads : QThread::idealThreadCount()))
{
}

ImageFileQueue::~ImageFileQueue() = default;

void ImageFileQueue::enqueue(const QImage &image, const QString &fileName)
{
    const qint64 bytes = qint64(image.sizeInBytes()) * (d->format == ImageFormat::OpenEXR ? exrFactor : 1);
    {
        std::unique_lock lock(d->mutex);
        d->changed.wait(lock, [this, bytes] { return d->hasRoom(bytes); });
        d->waiting.push_back({image, fileName, bytes});
        d->bytesHere += bytes;
    }
    d->changed.notify_all();
}

void ImageFileQueue::cancel()
{
    const std::lock_guard lock(d->mutex);
    for (const Job &job : d->waiting)
        d->bytesHere -= job.bytes;
    d->waiting.clear();
}

void ImageFileQueue::finish()
{
    std::unique_lock lock(d->mutex);
    d->changed.wait(lock, [this] { return d->waiting.empty() && d->turnsOver == d->turnsGiven; });
}

int ImageFileQueue::written() const
{
    const std::lock_guard lock(d->mutex);
    return d->written;
}

QStringList ImageFileQueue::failures() const
{
    const std::lock_guard lock(d->mutex);
    return d->failures;
}

} // namespace Model
