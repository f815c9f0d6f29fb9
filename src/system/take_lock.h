#pragma once

/// flock(2), repeated after interruptions. False leaves the reason in `errno`.
bool TakeLock(int descriptor, int operation) noexcept;
