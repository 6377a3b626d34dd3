#pragma once

#include <QtGlobal>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <sys/syscall.h>
#include <unistd.h>

namespace TestSupport {

/// A disk that can be slow or broken: everything that this program waits for to be on the disk goes by here. Include it
/// in one source file of a test.
class WatchedDisk
{
public:
    static WatchedDisk &instance()
    {
        static WatchedDisk disk;
        return disk;
    }

    /// Nobody's file reaches the disk before release().
    void stall() { m_isStalled = true; }
    void release()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_isStalled = false;
        }
        m_changed.notify_all();
    }
    /// No file reaches the disk from now on.
    void setBroken(bool broken) { m_isBroken = broken; }
    /// How many files have reached the disk or were to do so.
    [[nodiscard]] int count() const { return m_count; }

    int sync(int descriptor)
    {
        ++m_count;
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return !m_isStalled; });
        }
        if (m_isBroken) {
            errno = EIO;
            return -1;
        }
        return int(syscall(SYS_fsync, descriptor));
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::atomic_bool m_isStalled = false;
    std::atomic_bool m_isBroken = false;
    std::atomic_int m_count = 0;
};

/// Keeps all files from the disk for as long as it lives, or until release().
class StalledDisk
{
public:
    StalledDisk() { WatchedDisk::instance().stall(); }
    ~StalledDisk() { release(); }
    Q_DISABLE_COPY_MOVE(StalledDisk)

    static void release() { WatchedDisk::instance().release(); }
};

/// Lets no file reach the disk for as long as it lives.
class BrokenDisk
{
public:
    BrokenDisk() { WatchedDisk::instance().setBroken(true); }
    ~BrokenDisk() { WatchedDisk::instance().setBroken(false); }
    Q_DISABLE_COPY_MOVE(BrokenDisk)
};

} // namespace TestSupport

/// Stands in for the system's own.
extern "C" int fsync(int descriptor)
{
    return TestSupport::WatchedDisk::instance().sync(descriptor);
}
