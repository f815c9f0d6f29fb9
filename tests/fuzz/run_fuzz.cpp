// Input: a whole small run, as sections of text that each begin with a line "[name]".
//
//   [arguments]     a parameter and its value a line
//   [insar.pool]    the INSAR pool, which is the log pool as well
//   [slave.pool]    the slave's pool
//   [slave.ras] [mask.ras] [rg.map] [az.map]
//                   columns, rows and type word of a raster, the rest of the line aside; then
//                   numbers that fill its pixels over and over, those of complex pixels being the
//                   bits of the components
//
// The run takes place in this process, with the plain core. If it succeeds it must do so again with
// a fast one and two threads, with the same result up to the rounding of a tie.

#include <sys/resource.h>

#include <cmath>
#include <cstring>
#include <map>
#include <optional>

#include "app/resample_run.h"
#include "core/codec_visit.h"
#include "core/core_variant.h"
#include "fuzz/controller_target.h"
#include "raster/raster_header.h"

namespace {

constexpr std::int64_t pixel_limit = 4096;

std::map<std::string, std::string> Sections(std::string_view text) {
  std::map<std::string, std::string> sections;
  TakeUpTo(text, "[");
  while (!text.empty()) {
    const std::string name(TakeUpTo(text, "]\n"));
    sections[name] = TakeUpTo(text, "\n[");
  }
  return sections;
}

/// Numbers from a text, over and over; 0 without any.
class NUMBERS {
 public:
  explicit NUMBERS(std::string_view text) : text_(text), position_(text_.c_str()) {}
  NUMBERS(const NUMBERS&) = delete;
  NUMBERS& operator=(const NUMBERS&) = delete;

  double Next() {
    char* end = nullptr;
    double number = std::strtod(position_, &end);
    if (end == position_) {
      number = std::strtod(text_.c_str(), &end);
    }
    position_ = end;
    return number;
  }

 private:
  const std::string text_;
  const char* position_;
};

/// The number as an integer modulo its width; 0 for what has none.
template <class INTEGER>
INTEGER ToInteger(double number) {
  const bool has_integer = std::abs(number) < 0x1p62;
  return static_cast<INTEGER>(has_integer ? static_cast<std::int64_t>(number) : 0);
}

template <class COMPONENT>
void Append(std::string& bytes, COMPONENT component) {
  bytes.append(reinterpret_cast<const char*>(&component), sizeof(component));
}

std::string RasterBytes(std::string_view section) {
  NUMBERS head(TakeUpTo(section, "\n"));
  NUMBERS values(section);
  RASTER_HEADER header(0, 0, PIXEL_TYPE::OTHERS);
  header.width = ToInteger<std::uint32_t>(head.Next());
  header.height = ToInteger<std::uint32_t>(head.Next());
  header.type = ToInteger<std::uint32_t>(head.Next());
  header.depth = header.type == 1 ? 8 : 32;
  const RASTER_HEADER::BYTES words = header.Encode();
  std::string bytes(words.begin(), words.end());
  const auto count = std::uint64_t{header.width} * header.height;
  for (std::uint64_t i = 0; i < count && i < std::uint64_t{pixel_limit}; ++i) {
    switch (header.type) {
      case 1:
        Append(bytes, ToInteger<std::uint8_t>(values.Next()));
        break;
      case 99:
      case 199:
      case 200:
        Append(bytes, static_cast<float>(values.Next()));
        break;
      default:
        Append(bytes, ToInteger<std::uint16_t>(values.Next()));
        Append(bytes, ToInteger<std::uint16_t>(values.Next()));
    }
  }
  return bytes;
}

/// While it lives no file can become larger than what a small output takes.
class SHORT_FILES {
 public:
  SHORT_FILES() {
    ::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = 2 * 4 * pixel_limit;
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~SHORT_FILES() { ::setrlimit(RLIMIT_FSIZE, &before_); }
  SHORT_FILES(const SHORT_FILES&) = delete;
  SHORT_FILES& operator=(const SHORT_FILES&) = delete;

 private:
  rlimit before_{};
};

std::vector<std::string> ArgumentWords(std::map<std::string, std::string>& sections,
                                       const char* processors) {
  std::vector<std::string> words = {"resample"};
  const auto add = [&](std::string name, std::string_view value) {
    words.push_back("-" + std::move(name));
    words.emplace_back(value);
  };
  add("KERNEL_TYPE", "truncated_sinc_kaiser_weight");
  add("KERNEL_COEFFICIENT", "2.5");
  add("KERNEL_LENGTH", "8");
  add("KERNEL_SUBPIX_POS", "16");
  add("n_lines", "12");  // or it is asked for, and that takes the alarm clock of the fuzzer
  std::string_view lines = sections["arguments"];
  while (!lines.empty()) {
    std::string_view line = TakeUpTo(lines, "\n");
    const std::string name(TakeUpTo(line, " "));
    add(name.c_str(), std::string(line).c_str());
  }
  // Nothing outside of the directory, and nothing on the screen.
  for (const auto& [name, value] : {std::pair("INSAR_PARAMETER_POOL", "insar.pool"),
                                    {"log_pp", "insar.pool"},
                                    {"SLAVE_PARAMETER_POOL", "slave.pool"},
                                    {"SlaveIn", "slave.ras"},
                                    {"RG_MAPPING_FILE", "rg.map"},
                                    {"AZ_MAPPING_FILE", "az.map"},
                                    {"SlaveOut", "out.ras"},
                                    {"MaskOut", "out_mask.ras"},
                                    {"no_of_cpu", processors},
                                    {"pid", "resample"},
                                    {"status", ""},
                                    {"pcf", "none"},
                                    {"lfn", "/dev/null"},
                                    {"lfl", "TRACE"},
                                    {"lsl", "NO_MESSAGE"}}) {
    add(name, value);
  }
  if (sections.count("mask.ras") > 0) {
    add("MaskIn", "mask.ras");
  }
  return words;
}

struct OUTPUT {
  std::string image;
  std::string mask;
};

/// Nothing when the run was refused.
std::optional<OUTPUT> Run(const std::vector<std::string>& words, const char* core) {
  ::setenv("RESAMPLE_SIMD", core, 1);
  ARGUMENTS arguments(words);
  CONTROLLER_IFC controller;
  Start(controller, arguments);
  std::optional<RESAMPLE_RUN> run;
  const SHORT_FILES short_files;
  const bool is_done = Succeeds([&] {
    try {
      run.emplace(controller);
      run->Execute({.display_name = "fuzz",
                    .version = "0",
                    .compiled_by = "",
                    .compile_date = "2020-01-01T00:00:00",
                    .configuration_file = "",
                    .full_version = ""});
    } catch (...) {
      run.reset();
      throw;
    }
  });
  run.reset();
  return is_done ? std::optional(OUTPUT{ReadFile("out.ras"), ReadFile("out_mask.ras")})
                 : std::nullopt;
}

/// How far components may lie apart: one step of their format.
double Step(INT_16_CODEC, double) {
  return 1.0;
}
double Step(BINARY_16_CODEC, double value) {
  return 1.3e-4 + std::abs(value) * 0x1p-10;
}

/// Components may differ by a rounded tie, and by what rounding leaves of large values that cancel.
template <class CODEC>
void CompareImages(CODEC codec, const std::string& plain, const std::string& fast) {
  using COMPONENT = typename CODEC::COMPONENT;
  const auto number_at = [](const std::string& image, std::size_t i) {
    COMPONENT component{};
    std::memcpy(&component, image.data() + i, sizeof component);
    return CODEC::Decode(component);
  };
  constexpr std::size_t size = sizeof(COMPONENT);
  for (std::size_t i = RASTER_HEADER::size; i + size <= plain.size(); i += size) {
    const double a = number_at(plain, i);
    const double b = number_at(fast, i);
    const bool are_equal = (std::isnan(a) && std::isnan(b)) || a == b;
    Require(are_equal || std::abs(a - b) <= Step(codec, a),
            "component " + std::to_string(i / size) + ": " + std::to_string(a) +
                " != " + std::to_string(b));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool is_there = (GoToOwnDirectory(), true);
  std::map<std::string, std::string> sections = Sections(TextOf(data, size));
  if (!is_there || sections["arguments"].find('/') != std::string::npos) {
    return 0;
  }
  SilenceLog();
  WriteFile("insar.pool", sections["insar.pool"]);
  WriteFile("slave.pool", sections["slave.pool"]);
  for (const char* raster : {"slave.ras", "mask.ras", "rg.map", "az.map"}) {
    WriteFile(raster, RasterBytes(sections.count(raster) > 0 ? sections[raster] : ""));
  }
  const std::optional<OUTPUT> plain = Run(ArgumentWords(sections, "1"), "plain");
  if (!plain) {
    return 0;
  }
  const auto variants = CoreVariants();
  const CORE_VARIANT& variant = variants[1 + size % (variants.size() - 1)];
  const char* core = variant.is_supported() ? variant.name : "x86-64";
  const std::optional<OUTPUT> fast = Run(ArgumentWords(sections, "2"), core);
  Require(fast.has_value(), "what the plain core did, a fast one refused");
  Require(plain->mask == fast->mask, "masks differ");
  Require(plain->image.size() == fast->image.size(), "sizes differ");
  constexpr std::size_t type_byte = 23;
  const auto type_word = static_cast<unsigned char>(plain->image[type_byte]);
  VisitCodec(PixelTypeFromWords(type_word, 0),
             [&](auto codec) { CompareImages(codec, plain->image, fast->image); });
  return 0;
}
