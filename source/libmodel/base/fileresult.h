#pragma once

namespace Model {

/// How reading, writing or exporting ended. The numbers are the ones the callers report.
enum class FileResult {
    Success = 0,
    Error = 1,     ///< whoever did the work can say what went wrong
    Cancelled = 2, ///< the user broke it off
};

} // namespace Model
