#pragma once

#include <stdexcept>

/// What keeps a stack or one of its slaves from going on; the text is for a person.
class STACK_ERROR : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};
