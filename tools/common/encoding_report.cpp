#include "common/encoding_report.h"

#include <iostream>

void PrintEncoding(double scale, const ENCODING_COUNTS& counts, std::int64_t n_numbers) {
  std::cout << "scale: " << scale << "\n"
            << "clipped: " << counts.clipped << "\n"
            << "rounded: " << counts.rounded << "\n"
            << "rounded to zero: " << counts.vanished << "\n";
  if (counts.clipped + counts.vanished > n_numbers / 100) {
    std::cerr << "slctool: warning: more than 1 % of the numbers were clipped or rounded to zero; "
                 "--scale auto chooses a scale that suits them\n";
  }
}
