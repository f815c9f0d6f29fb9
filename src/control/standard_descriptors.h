#pragma once

/// Opens the null device in place of standard input, output and error as far as they are closed.
/// Otherwise the first files of the run would get their numbers, and the lines of the screen would
/// be written into a pool or an output. False when the null device cannot be opened.
bool OpenStandardDescriptors() noexcept;
