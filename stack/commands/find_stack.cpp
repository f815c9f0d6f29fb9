#include "commands/find_stack.h"

#include "description/stack_description.h"

STACK_FOLDER FindStack(const std::string& name) {
  if (std::filesystem::is_directory(name)) {
    return STACK_FOLDER(std::filesystem::canonical(name));
  }
  return STACK_FOLDER(ReadStackDescription(name).directory);
}
