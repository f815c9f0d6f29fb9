#include "common/figure_text.h"

#include <cmath>
#include <iomanip>
#include <sstream>

std::string FigureText(double value, int decimals) {
  if (!std::isfinite(value)) {
    return "none";
  }
  std::ostringstream text;
  text << std::fixed << std::setprecision(decimals) << value;
  return text.str();
}
