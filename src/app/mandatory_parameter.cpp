#include "app/mandatory_parameter.h"

#include "base/memory_for.h"

std::string MandatoryParameter(CONTROLLER_IFC& controller, const char* name) {
  return WithMemoryFor("parameter", name, [&] {
    std::string value;
    controller.GetParameter(name, value);
    return value;
  });
}
