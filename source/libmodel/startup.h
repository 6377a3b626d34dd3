#pragma once

namespace Model {

/// Starts the model layer: its resources, GStreamer, the compositing tables, the cursors, the settings, the tools and
/// the actions, in this order. Needs the application object. Works once; a second call does nothing.
void startUp();

/// Marks the model layer as not started. Frees nothing: what startUp() made lives as long as the process.
void shutDown();

} // namespace Model
