#include "libmodel/images/imagefilequeue.h"

#include "libmodel/base/diskfile.h"
#include "libmodel/images/exrwriter.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QSaveFile>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace Model {

namespace {

using ImageFormat = ExportFramesSettings::ImageFormat;

/// Images that need more than this together, in bytes, are encoded one after the other.
constexpr qint64 bytesAtATime = qint64(1) << 30;
/// What writing a PNG file takes at most, in sizes of its image: the image, one with straight alpha, and a file that
/// turns out no smaller.
constexpr int pngFactor = 3;
/// The same for OpenEXR: floats and their halves, each with a copy.
constexpr int exrFactor = 10;
/// Between two looks at what else there is while somebody waits.
constexpr std::chrono::milliseconds slice(20);

struct Job
{
    QImage image;
    QString fileName;
    QString refusal;     ///< why there is no image to be written; empty if there is one
    QString outOfMemory; ///< the failure for when there is not even memory to put one together
    qint64 bytes = 0;    ///< what it takes while it is here
};

QString translated(const char *text)
{
    return QCoreApplication::translate("Model::ImageFileQueue", text);
}

/// \return false with a \a reason when \a image is not in \a file.
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
    if (!writeAll(file, buffer.data().constData(), buffer.size())) {
        *reason = file.errorString();
        return false;
    }
    return true;
}

/// Has \a image on the disk in a file beside \a file's name that only waits for its commit(). \return why it has not,
/// otherwise an empty text.
QString prepare(const QImage &image, ImageFormat format, QSaveFile &file)
{
    if (isNameTooLong(file.fileName()))
        return qt_error_string(ENAMETOOLONG);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    QString reason;
    // commit() does not notice if what is still in its buffer, or in the system's, does not reach the disk.
    if (encode(image, format, file, &reason)) {
        if (!file.flush())
            reason = file.errorString();
        else if (!reachesDisk(file.handle()))
            reason = qt_error_string(errno);
    }
    if (!reason.isEmpty())
        file.cancelWriting();
    return reason;
}

QString failureOf(const QString &fileName, const QString &reason)
{
    return translated("%1: %2").arg(QDir::toNativeSeparators(fileName), reason);
}

Job jobFor(const QImage &image, const QString &fileName, const QString &refusal, qint64 bytes)
{
    return {image, fileName, refusal, failureOf(fileName, translated("Not enough memory")), bytes};
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
    /// \return the failure of \a job, "FILE: reason"; empty when its file stands there. Waits for \a turn.
    QString writtenOrFailure(Job &job, quint64 turn);
    void waitForTurn(quint64 turn);
    void add(Job job);
    /// Waits until \a condition holds. \return false when \a goesOn (may be empty) ended it before.
    template<class Condition>
    bool wait(std::unique_lock<std::mutex> &lock, const Waiting &goesOn, Condition condition);
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
    std::vector<QString> failures; ///< has room for one of each job that is here

    std::vector<std::thread> threads;
};

ImageFileQueue::Private::Private(ImageFormat writtenFormat, int threadCount)
    : format(writtenFormat), mostWaiting(size_t(std::max(1, threadCount)))
{
    threads.reserve(mostWaiting);
    try {
        while (threads.size() < mostWaiting)
            threads.emplace_back(&Private::run, this);
    } catch (const std::exception &error) {
        // Those that there are do the work; if there is none, the caller does.
        qWarning("Image files are written by %d threads: %s", int(threads.size()), error.what());
    }
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

void ImageFileQueue::Private::waitForTurn(quint64 turn)
{
    std::unique_lock lock(mutex);
    changed.wait(lock, [this, turn] { return turnsOver == turn; });
}

QString ImageFileQueue::Private::writtenOrFailure(Job &job, quint64 turn)
{
    try {
        QSaveFile file(job.fileName);
        QString reason = job.refusal.isEmpty() ? prepare(job.image, format, file) : job.refusal;
        // Ahead of making room for others.
        job.image = QImage();
        waitForTurn(turn);
        // Nobody else is here until the turn is over.
        if (reason.isEmpty() && !file.commit())
            reason = file.errorString();
        return reason.isEmpty() ? QString() : failureOf(job.fileName, reason);
    } catch (const std::exception &) {
        // Of all that is called here, nothing but the lack of memory throws.
        return job.outOfMemory;
    }
}

void ImageFileQueue::Private::write(Job job, quint64 turn)
{
    QString failure = writtenOrFailure(job, turn);
    job.image = QImage();
    waitForTurn(turn);
    {
        const std::lock_guard lock(mutex);
        if (failure.isEmpty())
            ++written;
        else
            failures.push_back(std::move(failure));
        bytesHere -= job.bytes;
        ++turnsOver;
    }
    changed.notify_all();
}

void ImageFileQueue::Private::add(Job job)
{
    std::unique_lock lock(mutex);
    const size_t jobsHere = waiting.size() + size_t(turnsGiven - turnsOver) + 1;
    // So that threads that are out of memory can tell of it.
    if (failures.capacity() < failures.size() + jobsHere)
        failures.reserve(2 * (failures.size() + jobsHere));
    const qint64 bytes = job.bytes;
    if (threads.empty()) {
        const quint64 turn = turnsGiven++;
        bytesHere += bytes;
        lock.unlock();
        write(std::move(job), turn);
        return;
    }
    waiting.push_back(std::move(job));
    bytesHere += bytes;
    lock.unlock();
    changed.notify_all();
}

template<class Condition>
bool ImageFileQueue::Private::wait(std::unique_lock<std::mutex> &lock, const Waiting &goesOn, Condition condition)
{
    if (!goesOn) {
        changed.wait(lock, condition);
        return true;
    }
    while (!changed.wait_for(lock, slice, condition)) {
        lock.unlock();
        const bool isToGoOn = goesOn();
        lock.lock();
        if (!isToGoOn)
            return condition();
    }
    return true;
}

bool ImageFileQueue::Private::hasRoom(qint64 bytes) const
{
    return waiting.size() < mostWaiting && (bytesHere == 0 || bytesHere + bytes <= bytesAtATime);
}

ImageFileQueue::ImageFileQueue(ImageFormat format, int threads)
    : d(std::make_unique<Private>(format, threads > 0 ? threads : QThread::idealThreadCount() + 1))
{
}

ImageFileQueue::~ImageFileQueue() = default;

bool ImageFileQueue::enqueue(const QImage &image, const QString &fileName, const Waiting &waiting)
{
    const qint64 bytes = qint64(image.sizeInBytes()) * (d->format == ImageFormat::OpenEXR ? exrFactor : pngFactor);
    {
        std::unique_lock lock(d->mutex);
        if (!d->wait(lock, waiting, [this, bytes] { return d->hasRoom(bytes); }))
            return false;
    }
    d->add(jobFor(image, fileName, {}, bytes));
    return true;
}

void ImageFileQueue::refuse(const QString &fileName, const QString &reason)
{
    d->add(jobFor({}, fileName, reason, 0));
}

void ImageFileQueue::cancel()
{
    {
        const std::lock_guard lock(d->mutex);
        for (const Job &job : d->waiting)
            d->bytesHere -= job.bytes;
        d->waiting.clear();
    }
    d->changed.notify_all();
}

bool ImageFileQueue::finish(const Waiting &waiting)
{
    std::unique_lock lock(d->mutex);
    return d->wait(lock, waiting, [this] { return d->waiting.empty() && d->turnsOver == d->turnsGiven; });
}

int ImageFileQueue::written() const
{
    const std::lock_guard lock(d->mutex);
    return d->written;
}

QStringList ImageFileQueue::failures() const
{
    const std::lock_guard lock(d->mutex);
    return {d->failures.cbegin(), d->failures.cend()};
}

} // namespace Model
