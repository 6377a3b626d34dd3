#pragma once

#include <QtGlobal>

namespace Model {

/// How much memory the decoded images of a file may still take.
///
/// A few bytes of a file can state an image of any size. A file that needs more than the computer has is refused
/// before it is tried, for a program that was killed for memory can neither say why nor save anything.
class MemoryBudget
{
public:
    /// Three quarters of what SystemMemory says that there is to be had.
    MemoryBudget();
    /// \a bytes, not negative.
    explicit MemoryBudget(qint64 bytes);

    /// Takes \a bytes (not negative) off. \return false, with nothing taken, if there are not as many left.
    [[nodiscard]] bool take(qint64 bytes);
    [[nodiscard]] qint64 bytesLeft() const { return m_bytesLeft; }

private:
    qint64 m_bytesLeft;
};

} // namespace Model
