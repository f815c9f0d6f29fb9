#pragma once

#include <hdf5.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Owns an HDF5 identifier of any kind.
class HDF5_ID {
 public:
  explicit HDF5_ID(hid_t id) noexcept : id_(id) {}
  HDF5_ID(HDF5_ID&& other) noexcept : id_(std::exchange(other.id_, H5I_INVALID_HID)) {}
  HDF5_ID& operator=(HDF5_ID&& other) noexcept {
    std::swap(id_, other.id_);
    return *this;
  }
  ~HDF5_ID() {
    if (id_ >= 0) {
      H5Idec_ref(id_);
    }
  }

  bool IsValid() const noexcept { return id_ >= 0; }
  hid_t Get() const noexcept { return id_; }

 private:
  hid_t id_;
};

/// Numbers with the lengths of their dimensions.
struct HDF5_NUMBERS {
  std::vector<hsize_t> lengths;
  std::vector<double> values;
};

/// A file of HDF5, open for reading. What is missing or of another kind is a std::runtime_error
/// that names file and field.
class HDF5_FILE {
 public:
  explicit HDF5_FILE(const std::string& path);

  static bool IsOne(const std::string& path);

  bool Has(const std::string& name) const;
  /// All numbers of a data set are finite.
  HDF5_NUMBERS Numbers(const std::string& name, int n_dimensions) const;
  double Number(const std::string& name) const { return Numbers(name, 0).values[0]; }
  /// The text of an attribute, if there is one.
  std::optional<std::string> TextAttribute(const std::string& name,
                                           const std::string& attribute) const;
  HDF5_ID DataSet(const std::string& name) const;
  std::vector<hsize_t> Lengths(const std::string& name) const;

  [[noreturn]] void Refuse(const std::string& name, const std::string& reason) const;

 private:
  std::string path_;
  HDF5_ID file_;
};
