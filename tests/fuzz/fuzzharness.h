#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>

// What libFuzzer, and replay.cpp in its place, call.

/// Once, before anything else.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
/// Tries one input. Returns if nothing is wrong and ends the program otherwise. Always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace TestSupport {

/// Starts Qt without a screen, without OpenGL and without the user's settings. Nothing is logged, but for what ends the
/// program.
void startQt();

/// Ends the program, as what a sanitizer finds does, saying \a claim if it does not hold.
void require(bool holds, const char *claim);

/// The same for what a checker has to say; empty is good.
void requireNothingWrong(const QString &problem);

} // namespace TestSupport
