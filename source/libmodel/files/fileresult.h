#pragma once

namespace Model {

/// How reading or writing a scene file ended. The numbers are the ones the callers report.
enum class FileResult {
    Success = 0,
    Error = 1,     ///< the reader or writer can say what went wrong
    Cancelled = 2, ///< the user pressed the progress dialog's button
};

} // namespace Model
