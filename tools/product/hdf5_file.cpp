#include "product/hdf5_file.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace {

/// HDF5 prints its errors unless it is told not to.
void BeQuiet() {
  H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
}

hid_t Open(const std::string& path) {
  BeQuiet();
  return H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
}

std::vector<hsize_t> LengthsOf(const HDF5_ID& data_set) {
  const HDF5_ID space(H5Dget_space(data_set.Get()));
  const int n_dimensions = H5Sget_simple_extent_ndims(space.Get());
  std::vector<hsize_t> lengths(static_cast<std::size_t>(std::max(n_dimensions, 0)));
  H5Sget_simple_extent_dims(space.Get(), lengths.data(), nullptr);
  return lengths;
}

/// Texts have a fixed length, or the library allocates them.
std::optional<std::string> ReadText(const HDF5_ID& attribute) {
  const HDF5_ID type(H5Aget_type(attribute.Get()));
  const HDF5_ID space(H5Aget_space(attribute.Get()));
  if (H5Tget_class(type.Get()) != H5T_STRING || H5Sget_simple_extent_npoints(space.Get()) != 1) {
    return std::nullopt;
  }
  const HDF5_ID memory_type(H5Tcopy(type.Get()));
  if (H5Tis_variable_str(type.Get()) > 0) {
    char* text = nullptr;
    if (H5Aread(attribute.Get(), memory_type.Get(), &text) < 0 || text == nullptr) {
      return std::nullopt;
    }
    const std::string copy = text;
    H5free_memory(text);
    return copy;
  }
  std::string text(H5Tget_size(type.Get()), '\0');
  if (H5Aread(attribute.Get(), memory_type.Get(), text.data()) < 0) {
    return std::nullopt;
  }
  return text.substr(0, text.find('\0'));
}

}  // namespace

HDF5_FILE::HDF5_FILE(const std::string& path) : path_(path), file_(Open(path)) {
  if (!file_.IsValid()) {
    throw std::runtime_error("can not open " + path + " as HDF5");
  }
}

bool HDF5_FILE::IsOne(const std::string& path) {
  BeQuiet();
  return H5Fis_hdf5(path.c_str()) > 0;
}

bool HDF5_FILE::Has(const std::string& name) const {
  // Each part of the path has to be there before the next can be asked for.
  for (std::size_t end = name.find('/', 1);; end = name.find('/', end + 1)) {
    if (H5Lexists(file_.Get(), name.substr(0, end).c_str(), H5P_DEFAULT) <= 0) {
      return false;
    }
    if (end == std::string::npos) {
      return true;
    }
  }
}

HDF5_ID HDF5_FILE::DataSet(const std::string& name) const {
  if (!Has(name)) {
    Refuse(name, "is missing");
  }
  HDF5_ID data_set(H5Dopen2(file_.Get(), name.c_str(), H5P_DEFAULT));
  if (!data_set.IsValid()) {
    Refuse(name, "is no data set");
  }
  return data_set;
}

std::vector<hsize_t> HDF5_FILE::Lengths(const std::string& name) const {
  return LengthsOf(DataSet(name));
}

HDF5_NUMBERS HDF5_FILE::Numbers(const std::string& name, int n_dimensions) const {
  const HDF5_ID data_set = DataSet(name);
  const HDF5_ID type(H5Dget_type(data_set.Get()));
  const H5T_class_t kind = H5Tget_class(type.Get());
  if (kind != H5T_FLOAT && kind != H5T_INTEGER) {
    Refuse(name, "holds no numbers");
  }
  HDF5_NUMBERS numbers;
  numbers.lengths = LengthsOf(data_set);
  // One number may also stand in a vector of its own.
  const auto is_one = [](hsize_t length) { return length == 1; };
  const bool is_single =
      n_dimensions == 0 && std::all_of(numbers.lengths.begin(), numbers.lengths.end(), is_one);
  if (!is_single && std::ssize(numbers.lengths) != n_dimensions) {
    Refuse(name, "has " + std::to_string(numbers.lengths.size()) + " dimensions in place of " +
                     std::to_string(n_dimensions));
  }
  std::size_t count = 1;
  for (const hsize_t length : numbers.lengths) {
    count *= length;
  }
  numbers.values.resize(count);
  if (count == 0 || H5Dread(data_set.Get(), H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT,
                            numbers.values.data()) < 0) {
    Refuse(name, count == 0 ? "is empty" : "can not be read");
  }
  for (const double value : numbers.values) {
    if (!std::isfinite(value)) {
      Refuse(name, "holds what is no number");
    }
  }
  return numbers;
}

std::optional<std::string> HDF5_FILE::TextAttribute(const std::string& name,
                                                    const std::string& attribute) const {
  const HDF5_ID data_set = DataSet(name);
  if (H5Aexists(data_set.Get(), attribute.c_str()) <= 0) {
    return std::nullopt;
  }
  return ReadText(HDF5_ID(H5Aopen(data_set.Get(), attribute.c_str(), H5P_DEFAULT)));
}

void HDF5_FILE::Refuse(const std::string& name, const std::string& reason) const {
  throw std::runtime_error(path_ + ": " + name + " " + reason);
}
