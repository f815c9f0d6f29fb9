#pragma once

#include <functional>

/// Waits until a condition holds; false when it did not within a time after which something must be
/// wrong.
bool WaitUntil(const std::function<bool()>& condition);
