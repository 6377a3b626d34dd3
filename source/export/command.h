#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// mirelle-export: scenes as images and as text, for scripts and render queues.
namespace Export {

class Arguments;
class Console;

/// What the process answers to whoever started it.
enum class ExitCode {
    Done = 0,
    Error = 1,     ///< the standard error stream tells what
    Cancelled = 2, ///< by a signal; every file that was written is whole
};

/// An option of a command, "--name" or "--name VALUE". Only a switch can have a short form.
struct Option
{
    QString name;      ///< without the dashes
    QString valueName; ///< what help calls a free value; empty for a switch and for a choice
    QStringList words; ///< the words that a choice takes, its default first; otherwise empty
    QString help;      ///< one line, without a full stop
    QString letter{};  ///< a short form, "h" for "-h"; empty if there is none

    [[nodiscard]] bool takesValue() const { return !valueName.isEmpty() || !words.isEmpty(); }
};

/// A sub-command as a row of the table in commands.cpp. Its class or functions stand in a file of their own.
struct Command
{
    QString name;
    QString summary;       ///< one sentence for help
    QStringList operands;  ///< what must follow the options, by the names that help uses
    QList<Option> options; ///< besides the common ones
    /// Does the work; an application object exists. What goes wrong has been told when it returns.
    ExitCode (*run)(const Arguments &arguments, Console &console);
};

} // namespace Export
