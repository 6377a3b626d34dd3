#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace TestSupport {

/// What a run of mirelle-export left behind.
struct ToolRun
{
    static constexpr int crashed = -1000;

    int exitCode = crashed; ///< crashed also when it was killed or never ended
    QByteArray output;
    QByteArray errors;
};

/// The built program.
[[nodiscard]] QString exportToolPath();

/// The environment of this test without what leads to a display.
[[nodiscard]] QProcessEnvironment withoutDisplay();

/// Runs mirelle-export with \a arguments, without a display unless \a environment says otherwise.
[[nodiscard]] ToolRun runTool(const QStringList &arguments, const QProcessEnvironment &environment = withoutDisplay());

/// Runs \a script in a shell without a display; "$0" is mirelle-export, "$1" and so on are \a arguments.
[[nodiscard]] ToolRun runShell(const QString &script, const QStringList &arguments);

/// A folder of a test's own for scenes and images.
class Workplace
{
public:
    /// The full name of \a name in the folder.
    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }
    /// Puts \a content into the file \a name. \return its full name.
    QString put(const QString &name, const QByteArray &content) const;
    /// The names of all files below the folder \a name, hidden ones included, sorted.
    [[nodiscard]] QStringList filesIn(const QString &name) const;

private:
    QTemporaryDir m_folder;
};

/// Is the file \a path a PNG from its first byte to its last, and can it be decoded?
[[nodiscard]] bool isWholePng(const QString &path);

} // namespace TestSupport
