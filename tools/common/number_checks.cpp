#include "common/number_checks.h"

#include <cmath>
#include <string>

namespace {

bool IsFinite(const std::string& text, double& number) {
  return CLI::detail::lexical_cast(text, number) && std::isfinite(number);
}

}  // namespace

const CLI::Validator positive_number(
    [](std::string& text) {
      double number = 0.0;
      return IsFinite(text, number) && number > 0.0 ? "" : text + " is no positive number";
    },
    "POSITIVE");

const CLI::Validator non_negative_number(
    [](std::string& text) {
      double number = 0.0;
      return IsFinite(text, number) && number >= 0.0 ? "" : text + " is no number from 0 on";
    },
    "NONNEGATIVE");
