#pragma once

#include "base/array.h"

/// An array that holds a one-dimensional numeric vector of a pool or of a mapping.
template <class T>
class VECTOR : public ARRAY<T> {};
