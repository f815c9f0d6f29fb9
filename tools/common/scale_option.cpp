#include "common/scale_option.h"

#include <cmath>
#include <string>

CLI::Option* AddScaleOption(CLI::App& command, std::optional<double>& scale) {
  const CLI::Validator check(
      [](const std::string& text) {
        double number = 0.0;
        const bool is_factor =
            CLI::detail::lexical_cast(text, number) && std::isfinite(number) && number > 0.0;
        return is_factor || text == "auto" ? std::string() : text + " is no positive number";
      },
      "X|auto");
  return command
      .add_option_function<std::string>(
          "--scale",
          [&scale](const std::string& text) {
            scale = text == "auto" ? std::nullopt : std::optional(std::stod(text));
          },
          "Multiply all values by this; auto chooses a power of two by a sample of them")
      ->check(check);
}
