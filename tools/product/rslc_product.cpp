#include "product/rslc_product.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "common/binary16.h"
#include "product/centroid_fit.h"

namespace {

std::string BandOf(const std::string& group) {
  const std::size_t begin = std::string("/science/").size();
  return group.substr(begin, group.find('/', begin) - begin);
}

/// Runs in order, with those that touch put together and empty ones left out.
std::vector<SAMPLE_RUN> Union(std::vector<SAMPLE_RUN> runs) {
  std::sort(runs.begin(), runs.end(),
            [](const SAMPLE_RUN& a, const SAMPLE_RUN& b) { return a.first < b.first; });
  std::vector<SAMPLE_RUN> merged;
  for (const SAMPLE_RUN& run : runs) {
    if (run.first >= run.end) {
      continue;
    }
    if (!merged.empty() && run.first <= merged.back().end) {
      merged.back().end = std::max(merged.back().end, run.end);
    } else {
      merged.push_back(run);
    }
  }
  return merged;
}

/// The standard's binary16, which the library has no name for.
HDF5_ID Binary16Type() {
  HDF5_ID type(H5Tcopy(H5T_IEEE_F32LE));
  H5Tset_fields(type.Get(), 15, 10, 5, 0, 10);
  H5Tset_size(type.Get(), 2);
  H5Tset_ebias(type.Get(), 15);
  return type;
}

/// How a pair of the file is read: its parts as they are there, in this machine's byte order.
struct PAIR_TYPE {
  HDF5_ID type;
  std::size_t part_size;
};

PAIR_TYPE PairTypeOf(const HDF5_FILE& file, const std::string& name, const HDF5_ID& data_set) {
  const HDF5_ID type(H5Dget_type(data_set.Get()));
  if (H5Tget_class(type.Get()) != H5T_COMPOUND || H5Tget_nmembers(type.Get()) != 2) {
    file.Refuse(name, "is no complex image");
  }
  const HDF5_ID first(H5Tget_member_type(type.Get(), 0));
  const HDF5_ID second(H5Tget_member_type(type.Get(), 1));
  const std::size_t size = H5Tget_size(first.Get());
  if (H5Tget_class(first.Get()) != H5T_FLOAT || H5Tget_class(second.Get()) != H5T_FLOAT ||
      H5Tget_size(second.Get()) != size || (size != 2 && size != 4 && size != 8)) {
    file.Refuse(name, "is no complex image of binary16, binary32 or binary64");
  }
  const HDF5_ID part = size == 2
                           ? Binary16Type()
                           : HDF5_ID(H5Tcopy(size == 4 ? H5T_NATIVE_FLOAT : H5T_NATIVE_DOUBLE));
  PAIR_TYPE pair = {HDF5_ID(H5Tcreate(H5T_COMPOUND, 2 * size)), size};
  for (unsigned member = 0; member < 2; ++member) {
    char* const member_name = H5Tget_member_name(type.Get(), member);
    // The real part comes first, by whatever order the file has.
    const std::string text = member_name;
    H5free_memory(member_name);
    const bool is_imaginary = text.starts_with('i') || text.starts_with('I');
    H5Tinsert(pair.type.Get(), text.c_str(), is_imaginary ? size : 0, part.Get());
  }
  return pair;
}

template <class PART>
double ValueOf(PART part) {
  return part;
}
double ValueOf(std::uint16_t bits) {
  return Binary16ToDouble(bits);
}

class RSLC_PIXELS final : public SLC_PIXELS {
 public:
  RSLC_PIXELS(const HDF5_FILE& file, const std::string& name)
      : file_(file),
        name_(name),
        data_set_(file.DataSet(name)),
        pair_(PairTypeOf(file, name, data_set_)),
        lengths_(file.Lengths(name)) {}

  std::int64_t LinesAtOnce() const override {
    constexpr hsize_t usual_pixels = 1 << 22;
    const HDF5_ID creation(H5Dget_create_plist(data_set_.Get()));
    hsize_t chunk[2] = {1, 1};
    if (H5Pget_layout(creation.Get()) == H5D_CHUNKED) {
      H5Pget_chunk(creation.Get(), 2, chunk);
    }
    // Whole rows of chunks, so that none is decompressed twice.
    const hsize_t chunks = std::max<hsize_t>(usual_pixels / (lengths_[1] * chunk[0]), 1);
    return static_cast<std::int64_t>(std::min(chunks * chunk[0], lengths_[0]));
  }

  PIXEL_TYPE Type() const override {
    switch (pair_.part_size) {
      case 2:
        return PIXEL_TYPE::C_FLT_2;
      case 4:
        return PIXEL_TYPE::C_FLT_6;
      default:
        return PIXEL_TYPE::C_FLT_15;
    }
  }

  void Read(std::int64_t first_line, std::span<std::complex<double>> values) override {
    switch (pair_.part_size) {
      case 2:
        return ReadParts<std::uint16_t>(first_line, values);
      case 4:
        return ReadParts<float>(first_line, values);
      default:
        return ReadParts<double>(first_line, values);
    }
  }

 private:
  template <class PART>
  void ReadParts(std::int64_t first_line, std::span<std::complex<double>> values) {
    const hsize_t first[2] = {static_cast<hsize_t>(first_line), 0};
    const hsize_t count[2] = {values.size() / lengths_[1], lengths_[1]};
    const HDF5_ID window(H5Dget_space(data_set_.Get()));
    const HDF5_ID memory(H5Screate_simple(2, count, nullptr));
    std::vector<PART> parts(2 * values.size());
    if (H5Sselect_hyperslab(window.Get(), H5S_SELECT_SET, first, nullptr, count, nullptr) < 0 ||
        H5Dread(data_set_.Get(), pair_.type.Get(), memory.Get(), window.Get(), H5P_DEFAULT,
                parts.data()) < 0) {
      file_.Refuse(name_, "can not be read");
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i] = {ValueOf(parts[2 * i]), ValueOf(parts[2 * i + 1])};
    }
  }

  const HDF5_FILE& file_;
  std::string name_;
  HDF5_ID data_set_;
  PAIR_TYPE pair_;
  std::vector<hsize_t> lengths_;
};

/// The part of a table of several ranges that lies around an image.
CENTROID_TABLE Around(const SLC_IMAGE& image, const CENTROID_TABLE& table) {
  const std::vector<double>& times = table.range_times;
  const double last_time = image.first_range_time + static_cast<double>(image.n_samples - 1) /
                                                        image.range_sampling_frequency;
  const auto first =
      std::clamp(std::upper_bound(times.begin(), times.end(), image.first_range_time),
                 times.begin() + 1, times.end() - 1);
  const auto last =
      std::clamp(std::lower_bound(times.begin(), times.end(), last_time), first, times.end() - 1);
  CENTROID_TABLE part;
  part.azimuth_times = table.azimuth_times;
  part.range_times.assign(first - 1, last + 1);
  for (const std::vector<double>& row : table.values) {
    part.values.emplace_back(row.begin() + (first - 1 - times.begin()),
                             row.begin() + (last + 1 - times.begin()));
  }
  return part;
}

/// Whether a table has values at all for positions from first to last.
bool Meets(const std::vector<double>& axis, double first, double last) {
  return axis.size() == 1 || (axis.front() <= last && first <= axis.back());
}

bool Rises(const std::vector<double>& values) {
  return std::adjacent_find(values.begin(), values.end(), std::greater_equal<>()) == values.end();
}

}  // namespace

RSLC_PRODUCT::RSLC_PRODUCT(const std::string& path) : file_(path) {
  for (const char* band : {"LSAR", "SSAR"}) {
    for (const char* kind : {"RSLC", "SLC"}) {
      const std::string group = std::string("/science/") + band + "/" + kind;
      if (file_.Has(group + "/swaths")) {
        groups_.push_back(group);
        break;
      }
    }
  }
  for (const std::string& group : groups_) {
    const std::string prefix = groups_.size() > 1 ? BandOf(group) + "/" : "";
    for (const char* frequency : {"A", "B"}) {
      for (const char* polarisation : {"HH", "HV", "VH", "VV", "RH", "RV", "LH", "LV"}) {
        if (file_.Has(group + "/swaths/frequency" + frequency + "/" + polarisation)) {
          images_.push_back({prefix + frequency, 0, polarisation});
        }
      }
    }
  }
  if (images_.empty()) {
    file_.Refuse("/science/LSAR|SSAR/RSLC|SLC/swaths/frequencyA|B/HH, HV, VH, VV, ...",
                 "is missing");
  }
}

std::string RSLC_PRODUCT::Description() const {
  std::string bands;
  for (const std::string& group : groups_) {
    bands += " " + BandOf(group);
  }
  return "RSLC in HDF5," + bands;
}

std::string RSLC_PRODUCT::GroupOf(const SLC_IMAGE_NAME& name) const {
  const std::string band = name.part.substr(0, name.part.find('/'));
  const auto found = std::find_if(groups_.begin(), groups_.end(),
                                  [&](const std::string& group) { return BandOf(group) == band; });
  return found == groups_.end() ? groups_.front() : *found;
}

std::string RSLC_PRODUCT::FrequencyOf(const SLC_IMAGE_NAME& name) const {
  return GroupOf(name) + "/swaths/frequency" + name.part.back();
}

UTC_TIME RSLC_PRODUCT::EpochOf(const std::string& times) const {
  const std::string words = "seconds since ";
  const auto units = file_.TextAttribute(times, "units");
  if (!units) {
    file_.Refuse(times, "has no attribute units, which tells its epoch");
  }
  const auto epoch =
      units->starts_with(words) ? UtcTimeOf(units->substr(words.size())) : std::nullopt;
  if (!epoch) {
    file_.Refuse(times, "has the units \"" + *units + "\", not seconds since a date");
  }
  return *epoch;
}

HDF5_NUMBERS RSLC_PRODUCT::Axis(const std::string& name, hsize_t length) const {
  HDF5_NUMBERS axis = file_.Numbers(name, 1);
  if (axis.lengths[0] != length) {
    file_.Refuse(name, "has " + std::to_string(axis.lengths[0]) + " elements in place of " +
                           std::to_string(length));
  }
  if (!Rises(axis.values)) {
    file_.Refuse(name, "does not rise");
  }
  return axis;
}

double RSLC_PRODUCT::Spacing(const std::string& name, const std::string& axis_name,
                             const HDF5_NUMBERS& axis) const {
  const double spacing = file_.Number(name);
  const double steps = static_cast<double>(axis.values.size() - 1);
  const double length = axis.values.back() - axis.values.front();
  if (!(spacing > 0.0) || std::abs(length - steps * spacing) > 0.5 * spacing) {
    file_.Refuse(name, "does not fit " + axis_name);
  }
  return spacing;
}

SLC_IMAGE RSLC_PRODUCT::Describe(const SLC_IMAGE_NAME& name) const {
  const std::string swaths = GroupOf(name) + "/swaths";
  const std::string frequency = FrequencyOf(name);
  const std::vector<hsize_t> lengths = file_.Lengths(frequency + "/" + name.polarisation);
  if (lengths.size() != 2 || lengths[0] < 1 || lengths[1] < 1) {
    file_.Refuse(frequency + "/" + name.polarisation, "is no image");
  }
  SLC_IMAGE image;
  image.n_lines = static_cast<std::int64_t>(lengths[0]);
  image.n_samples = static_cast<std::int64_t>(lengths[1]);
  image.imaging_mode = "SM";
  const HDF5_NUMBERS times = Axis(swaths + "/zeroDopplerTime", lengths[0]);
  image.first_line = EpochOf(swaths + "/zeroDopplerTime") + times.values[0];
  image.line_rate =
      1.0 / Spacing(swaths + "/zeroDopplerTimeSpacing", swaths + "/zeroDopplerTime", times);
  const HDF5_NUMBERS ranges = Axis(frequency + "/slantRange", lengths[1]);
  image.first_range_time = 2.0 * ranges.values[0] / speed_of_light;
  image.range_spacing =
      Spacing(frequency + "/slantRangeSpacing", frequency + "/slantRange", ranges);
  image.range_sampling_frequency = speed_of_light / (2.0 * image.range_spacing);
  const std::string along_track = frequency + "/sceneCenterAlongTrackSpacing";
  image.azimuth_spacing = file_.Has(along_track) ? file_.Number(along_track) : 0.0;
  image.centroid = Centroid(name, image);
  image.valid = ValidSamples(frequency, image);
  return image;
}

CENTROID_POLYNOMIALS RSLC_PRODUCT::Centroid(const SLC_IMAGE_NAME& name,
                                            const SLC_IMAGE& image) const {
  const std::string parameters = GroupOf(name) + "/metadata/processingInformation/parameters";
  const std::string table_name = parameters + "/frequency" + name.part.back() + "/dopplerCentroid";
  const HDF5_NUMBERS table = file_.Numbers(table_name, 2);
  const std::string times_name = parameters + "/zeroDopplerTime";
  const HDF5_NUMBERS times = Axis(times_name, table.lengths[0]);
  const HDF5_NUMBERS ranges = Axis(parameters + "/slantRange", table.lengths[1]);

  CENTROID_TABLE centroid;
  const double offset = SecondsBetween(image.first_line, EpochOf(times_name));
  for (const double time : times.values) {
    centroid.azimuth_times.push_back(offset + time);
  }
  for (const double range : ranges.values) {
    centroid.range_times.push_back(2.0 * range / speed_of_light);
  }
  for (auto row = table.values.begin(); row != table.values.end();
       row += std::ssize(ranges.values)) {
    centroid.values.emplace_back(row, row + std::ssize(ranges.values));
  }
  const double height = static_cast<double>(image.n_lines - 1) / image.line_rate;
  const double width = static_cast<double>(image.n_samples - 1) / image.range_sampling_frequency;
  if (!Meets(centroid.azimuth_times, 0.0, height) ||
      !Meets(centroid.range_times, image.first_range_time, image.first_range_time + width)) {
    file_.Refuse(table_name, "lies elsewhere than the image, by " + times_name + " and " +
                                 parameters + "/slantRange");
  }
  const double good = 1e-4 * image.line_rate;
  const double enough = 5e-3 * image.line_rate;
  const CENTROID_POLYNOMIALS fit = FitCentroid(centroid, good);
  return fit.departure <= enough ? fit : FitCentroid(Around(image, centroid), good);
}

std::vector<std::vector<SAMPLE_RUN>> RSLC_PRODUCT::ValidSamples(const std::string& frequency,
                                                                const SLC_IMAGE& image) const {
  const std::string count_name = frequency + "/numberOfSubSwaths";
  const double count = file_.Number(count_name);
  if (!(count >= 1.0 && count <= 100.0)) {
    file_.Refuse(count_name, "is not from 1 to 100");
  }
  const auto n_lines = static_cast<std::size_t>(image.n_lines);
  std::vector<std::vector<SAMPLE_RUN>> lines(n_lines);
  for (int swath = 1; swath <= static_cast<int>(count); ++swath) {
    const std::string name = frequency + "/validSamplesSubSwath" + std::to_string(swath);
    const HDF5_NUMBERS samples = file_.Numbers(name, 2);
    if (samples.lengths[0] != n_lines || samples.lengths[1] != 2) {
      file_.Refuse(name, "has the size " + std::to_string(samples.lengths[0]) + " x " +
                             std::to_string(samples.lengths[1]) + " in place of " +
                             std::to_string(n_lines) + " x 2");
    }
    for (std::size_t line = 0; line < n_lines; ++line) {
      // Columns are those of the product that this one may be a part of.
      const auto column = [&](std::size_t i) {
        return static_cast<std::int64_t>(
            std::clamp(samples.values[2 * line + i], 0.0, static_cast<double>(image.n_samples)));
      };
      lines[line].push_back({column(0), column(1)});
    }
  }
  for (std::vector<SAMPLE_RUN>& runs : lines) {
    runs = Union(std::move(runs));
  }
  return lines;
}

std::unique_ptr<SLC_PIXELS> RSLC_PRODUCT::Pixels(const SLC_IMAGE_NAME& name) const {
  return std::make_unique<RSLC_PIXELS>(file_, FrequencyOf(name) + "/" + name.polarisation);
}
