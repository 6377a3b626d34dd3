#pragma once

#include <QString>

#include <filesystem>
#include <vector>

namespace Export {

/// A folder to write into, made with all that it stands in where it does not exist. What was made is removed again, as
/// far as it is empty, unless it is kept.
class OutputFolder
{
public:
    OutputFolder() = default;
    ~OutputFolder();

    OutputFolder(const OutputFolder &) = delete;
    OutputFolder &operator=(const OutputFolder &) = delete;

    /// Makes the folder \a path. \return why that failed, empty if it did not. Once only.
    [[nodiscard]] QString make(const QString &path);
    /// Something stands in it, or is meant to.
    void keep() { m_made.clear(); }

private:
    std::vector<std::filesystem::path> m_made; ///< what did not exist before, the innermost first
};

} // namespace Export
