#include "export/outputfolder.h"

#include <system_error>
#include <unistd.h>

namespace Export {

OutputFolder::~OutputFolder()
{
    // Takes nothing but empty folders: no file, no link that somebody else has put there.
    for (const std::filesystem::path &folder : m_made)
        static_cast<void>(rmdir(folder.c_str()));
}

QString OutputFolder::make(const QString &path)
{
    if (path.isEmpty())
        return QStringLiteral("a folder name cannot be empty");
    const std::filesystem::path folder(path.toStdString());
    std::error_code error;
    if (std::filesystem::is_directory(folder, error))
        return {};
    if (std::filesystem::exists(folder, error))
        return QStringLiteral("is not a folder");
    if (std::filesystem::is_symlink(folder, error))
        return QStringLiteral("is a link to nothing");

    for (auto part = folder; !part.empty() && !std::filesystem::exists(part, error); part = part.parent_path())
        m_made.push_back(part);
    std::filesystem::create_directories(folder, error);
    if (std::error_code ignored; std::filesystem::is_directory(folder, ignored))
        return {};
    return QStringLiteral("the folder cannot be made: %1").arg(QString::fromStdString(error.message()));
}

} // namespace Export
