#pragma once

namespace Export {

/// Makes the process safe from what it may have been started with: streams that are closed (a file opened later would
/// take their place and get our messages), pipes that nobody reads, a limit on the size of files. Call it first of all.
void secureStreams();

/// Chooses how Qt starts: without windows, unless QT_QPA_PLATFORM names a platform that gives us more than that. Before
/// the application object is made.
void choosePlatform();

/// Silences what Qt, the model and the OpenGL driver write to the error stream by themselves, unless \a verbose. What
/// ends the process is always told. Before the application object is made.
void quietLibraries(bool verbose);

} // namespace Export
