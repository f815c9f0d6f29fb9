#include "product/annotation_file.h"

#include <cpl_minixml.h>

#include <charconv>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <utility>

#include "gdal/gdal_errors.h"

namespace {

/// The root element: what stands before it are remarks of the file to its readers.
constexpr const char* root_element = "=product";

std::shared_ptr<CPLXMLNode> Parse(const std::string& path) {
  const GDAL_ERRORS errors;
  std::shared_ptr<CPLXMLNode> tree(CPLParseXMLFile(path.c_str()), CPLDestroyXMLNode);
  if (!tree) {
    errors.Throw("can not read " + path);
  }
  if (CPLGetXMLNode(tree.get(), root_element) == nullptr) {
    throw std::runtime_error(path + ": the element product is missing");
  }
  return tree;
}

/// Reads one number and moves on behind it; nothing where there is none.
std::optional<double> TakeNumber(const char*& position, const char* end) {
  double value = 0.0;
  const auto [rest, error] = std::from_chars(position + (*position == '+' ? 1 : 0), end, value);
  if (error != std::errc() || !std::isfinite(value)) {
    return std::nullopt;
  }
  position = rest;
  return value;
}

bool IsBlank(char character) {
  return character == ' ' || character == '\n' || character == '\r' || character == '\t';
}

}  // namespace

bool ANNOTATION::Has(const std::string& path) const {
  return CPLGetXMLNode(node_, path.c_str()) != nullptr;
}

std::string ANNOTATION::Text(const std::string& path) const {
  const char* text = CPLGetXMLValue(node_, path.c_str(), nullptr);
  if (text == nullptr) {
    Refuse(path, "is missing");
  }
  return text;
}

double ANNOTATION::Number(const std::string& path) const {
  return Numbers(path, 1)[0];
}

int ANNOTATION::Count(const std::string& path) const {
  const double number = Number(path);
  constexpr double most = 1 << 30;
  if (number != std::floor(number) || number < 0.0 || number > most) {
    Refuse(path, "is no count");
  }
  return static_cast<int>(number);
}

UTC_TIME ANNOTATION::Time(const std::string& path) const {
  const std::string text = Text(path);
  const auto time = UtcTimeOf(text);
  if (!time) {
    Refuse(path, "is no time: " + text);
  }
  return *time;
}

std::vector<double> ANNOTATION::Numbers(const std::string& path) const {
  const std::string text = Text(path);
  std::vector<double> numbers;
  const char* position = text.data();
  const char* const end = position + text.size();
  while (true) {
    while (position != end && IsBlank(*position)) {
      ++position;
    }
    if (position == end) {
      return numbers;
    }
    const auto number = TakeNumber(position, end);
    if (!number || (position != end && !IsBlank(*position))) {
      Refuse(path, "holds what is no number");
    }
    numbers.push_back(*number);
  }
}

std::vector<double> ANNOTATION::Numbers(const std::string& path, std::size_t count) const {
  std::vector<double> numbers = Numbers(path);
  if (numbers.size() != count) {
    Refuse(path, "has " + std::to_string(numbers.size()) + " numbers in place of " +
                     std::to_string(count));
  }
  return numbers;
}

std::vector<ANNOTATION> ANNOTATION::Children(const std::string& list,
                                             const std::string& name) const {
  CPLXMLNode* const parent = CPLGetXMLNode(node_, list.c_str());
  if (parent == nullptr) {
    Refuse(list, "is missing");
  }
  std::vector<ANNOTATION> children;
  for (CPLXMLNode* child = parent->psChild; child != nullptr; child = child->psNext) {
    if (child->eType == CXT_Element && child->pszValue == name) {
      std::string place = place_;
      place.append(list).append(".").append(name).append("[");
      place.append(std::to_string(children.size() + 1)).append("].");
      children.push_back(ANNOTATION(std::move(place), child));
    }
  }
  return children;
}

void ANNOTATION::Refuse(const std::string& path, const std::string& reason) const {
  throw std::runtime_error(place_ + path + " " + reason);
}

ANNOTATION_FILE::ANNOTATION_FILE(const std::string& path) : ANNOTATION_FILE(path, Parse(path)) {}

ANNOTATION_FILE::ANNOTATION_FILE(const std::string& path, std::shared_ptr<CPLXMLNode> tree)
    : ANNOTATION(path + ": ", CPLGetXMLNode(tree.get(), root_element)), tree_(std::move(tree)) {}
