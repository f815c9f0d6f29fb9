#include "common/scale_option.h"

#include <cmath>
#include <string>

namespace {

constexpr const char* automatic = "auto";

/// The range checks of the library let NaN pass.
std::string ErrorOfScale(const std::string& text) {
  double number = 0.0;
  const bool is_factor =
      CLI::detail::lexical_cast(text, number) && std::isfinite(number) && number > 0.0;
  return is_factor ? "" : text + " is no positive number";
}

}  // namespace

CLI::Option* AddScaleOption(CLI::App& command, double& scale) {
  return command.add_option("--scale", scale, "Multiply all values by this")
      ->check(CLI::Validator([](const std::string& text) { return ErrorOfScale(text); }, "X"));
}

CLI::Option* AddScaleOption(CLI::App& command, std::optional<double>& scale) {
  const auto error = [](const std::string& text) {
    return text == automatic ? std::string() : ErrorOfScale(text);
  };
  const auto take = [&scale](const std::string& text) {
    scale = text == automatic ? std::nullopt : std::optional(std::stod(text));
  };
  return command
      .add_option_function<std::string>(
          "--scale", take,
          "Multiply all values by this; auto chooses a power of two by a sample of them")
      ->check(CLI::Validator(error, "X|auto"));
}
