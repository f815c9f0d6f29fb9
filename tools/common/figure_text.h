#pragma once

#include <string>

/// A measured figure with so many decimals; "none" when it is no finite number, as the coherence of
/// two images of zeros.
std::string FigureText(double value, int decimals);
