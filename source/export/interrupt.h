#pragma once

namespace Export {

/// From now on the first signal that asks the process to stop (Ctrl+C, a polite kill, a closed terminal) only raises a
/// flag; the second ends it at once. A signal that whoever started the process had it ignore stays ignored.
void watchForInterrupt();

/// Has the process been asked to stop?
[[nodiscard]] bool wasInterrupted();

} // namespace Export
