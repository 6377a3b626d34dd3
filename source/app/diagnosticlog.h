#pragma once

/// Starts the diagnostic log; called once, right behind the creation of the application object.
///
/// Logging categories whose name ends in ".ram" are switched on, and each of their messages replaces the file of that
/// name in the folder "mirelle" under the working directory: the file is a snapshot of the latest message, not a
/// history. All other messages go where they went before. The category "app.focus.ram" follows the keyboard focus.
/// With the environment variable MR_TRACE_EVENTS set, an EventTracer watches the application.
void startDiagnosticLog();
