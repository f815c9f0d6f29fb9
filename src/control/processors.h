#pragma once

/// Number of worker threads to use, at least 1: the leading decimal number of the environment
/// variable "PARALLEL", or the online processors of the system without it. A value that is not a
/// number of at least 1 is reported at WARNING and treated as absent.
int NumberOfProcessors();
