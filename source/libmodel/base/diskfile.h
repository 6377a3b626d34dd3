#pragma once

#include <QtGlobal>

class QIODevice;
class QString;

namespace Model {

// What QSaveFile leaves to whoever wants to be sure of a file.

/// Writes the \a size bytes at \a bytes to \a device. A disk that fills up in between takes a part of them and gives no
/// reason; it does when it is asked to take the rest, so that the device's errorString() can be shown after a false.
[[nodiscard]] bool writeAll(QIODevice &device, const char *bytes, qint64 size);

/// Waits until all that was written to the open \a descriptor is on the disk, which is where some disks first tell that
/// they are full or broken. Usable from any thread. \return false, with errno set, if it is not there.
[[nodiscard]] bool reachesDisk(int descriptor);

/// Waits until the folder of \a fileName, too, tells on the disk that the file is a new one. Only what a power cut
/// finds depends on it, the old file or the new; where it cannot be had, nothing has failed.
void syncFolder(const QString &fileName);

/// Is the name of the file \a fileName, or of the file that it links to, too long to be written to by a QSaveFile? Such
/// a file has a point and six letters more in its name until it is complete. False for a folder that is not there.
[[nodiscard]] bool isNameTooLong(const QString &fileName);

/// Is there something called \a fileName that is neither a file nor a folder? Opening such a thing may wait for ever,
/// and putting a file in its place takes it from whoever else uses it.
[[nodiscard]] bool isPipeOrDevice(const QString &fileName);

} // namespace Model
