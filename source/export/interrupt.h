#pragma once

namespace Export {

/// From now on a signal that asks the process to stop (Ctrl+C, a polite kill, a closed terminal) only raises a flag.
/// Such signals come in pairs, from the kernel and from a shell or to a process and to its group, so that those behind
/// the first mean nothing more; but for Ctrl+C half a second later, which is somebody losing patience, and ends the
/// process at once. A signal that whoever started the process had it ignore stays ignored.
void watchForInterrupt();

/// Has the process been asked to stop?
[[nodiscard]] bool wasInterrupted();

} // namespace Export
