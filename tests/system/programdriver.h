#pragma once

#include <QImage>
#include <QPoint>
#include <QProcess>
#include <QRect>
#include <QString>

/// Runs the real program on the test's X server and handles it as a person would: with xdotool's mouse and keys, and
/// by looking at the screen. Several may run side by side; each sees the windows of its own program only.
class ProgramDriver
{
public:
    ProgramDriver();
    ~ProgramDriver();

    /// Starts the program with \a arguments and \a extraEnvironment ("NAME=value").
    void start(const QStringList &arguments = {}, const QStringList &extraEnvironment = {});

    /// Waits until a window is on screen whose title matches \a pattern (a regular expression), and brings it to the
    /// front. \return its X window number, 0 when none came in time.
    quint64 waitForWindow(const QString &pattern, int timeoutMs = 15000);

    /// The same for a dialog, which is told by its window type from a window of the same title.
    quint64 waitForDialog(const QString &pattern, int timeoutMs = 15000);

    /// Brings the window \a window to the front and gives it the keyboard.
    void activate(quint64 window) const;

    /// Gives the window \a window the size \a size without its frame, in screen pixels.
    void resize(quint64 window, QSize size) const;

    /// The title of the window \a window; empty when it is gone.
    QString title(quint64 window) const;

    /// The area of the window \a window without its frame, in screen pixels.
    QRect geometry(quint64 window) const;

    /// What the screen shows within \a area, once two looks in a row are the same.
    QImage grabWhenSettled(QRect area) const;

    /// Draws through \a points (screen pixels) with the left button held, at a hand's pace.
    void drag(const QList<QPoint> &points) const;

    /// Presses a key combination as xdotool names it, such as "ctrl+z".
    void key(const QString &combination) const;

    /// Holds the key that xdotool calls \a key down, and lets go of it.
    void holdKey(const QString &key) const;
    void releaseKey(const QString &key) const;

    /// Moves the mouse to \a point of the screen.
    void moveMouse(QPoint point) const;

    /// Types \a text into what has the focus.
    void type(const QString &text) const;

    /// Waits for the program to end. \return its exit code, or -1000 when it crashed or still runs.
    int waitForExit(int timeoutMs = 15000);

    /// What the program wrote to its standard error so far.
    QByteArray standardError();

private:
    QString xdotool(const QStringList &arguments) const;
    /// The program's visible windows whose titles match \a pattern.
    QStringList windowsNamed(const QString &pattern) const;
    static QString run(const QString &tool, const QStringList &arguments);

    QProcess m_process;
};
