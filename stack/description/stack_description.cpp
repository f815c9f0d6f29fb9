#include "description/stack_description.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>

#include "app/parameter_table.h"
#include "basics/stack_error.h"
#include "description/slave_files.h"

namespace {

using JSON = nlohmann::json;

constexpr const char* slave_name_key = "name";

/// What is wrong with a description, line by line.
class COMPLAINTS {
 public:
  void Add(const std::string& line) { text_ += (text_.empty() ? "" : "\n") + line; }
  void ThrowIfAny(const std::filesystem::path& file) const {
    if (!text_.empty()) {
      throw STACK_ERROR(file.string() + ":\n" + text_);
    }
  }

 private:
  std::string text_;
};

/// Refuses keys that are given twice, of which the last would silently win.
class DUPLICATE_KEYS {
 public:
  bool operator()(int /*depth*/, JSON::parse_event_t event, JSON& parsed) {
    if (event == JSON::parse_event_t::object_start) {
      keys_.emplace_back();
    } else if (event == JSON::parse_event_t::object_end) {
      keys_.pop_back();
    } else if (event == JSON::parse_event_t::key && !keys_.back().insert(parsed).second) {
      throw STACK_ERROR("given twice in one object: " + parsed.get<std::string>());
    }
    return true;
  }

 private:
  std::vector<std::set<std::string>> keys_;
};

JSON Parse(const std::filesystem::path& file) {
  std::ifstream stream(file);
  if (!stream) {
    throw STACK_ERROR("can not read the stack description " + file.string());
  }
  try {
    return JSON::parse(stream, DUPLICATE_KEYS());
  } catch (const JSON::exception& error) {
    throw STACK_ERROR(file.string() + ": " + error.what());
  } catch (const STACK_ERROR& error) {
    throw STACK_ERROR(file.string() + ": " + error.what());
  }
}

/// File names begin with it and Slurm shows it, so that it holds only what is plain everywhere.
bool IsPlainName(const std::string& name) {
  constexpr std::string_view plain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._+-";
  constexpr std::size_t longest = 100;
  return !name.empty() && name.size() <= longest && name[0] != '.' && name[0] != '-' &&
         name.find_first_not_of(plain) == std::string::npos;
}

/// A configuration file holds one word a line, and reads longer lines in pieces.
bool FitsIntoConfigurationFile(const std::string& value) {
  constexpr std::size_t longest = 900;
  return !value.empty() && value.size() <= longest &&
         std::all_of(value.begin(), value.end(),
                     [](char c) { return static_cast<unsigned char>(c) > ' ' && c != '\x7f'; });
}

/// Null for a parameter that a description may not give: those that name the run, its places and
/// what its screen shows are the stack's own.
const PARAMETER_ENTRY* FindStackParameter(const std::string& name) {
  const PARAMETER_ENTRY* const parameter = name == "lsl" ? nullptr : FindParameter(name);
  return parameter != nullptr && parameter->source == PARAMETER_SOURCE::ANY ? parameter : nullptr;
}

class SLAVE_READER {
 public:
  SLAVE_READER(std::filesystem::path base, COMPLAINTS& complaints)
      : base_(std::move(base)), complaints_(complaints) {}

  STACK_SLAVE Read(const JSON& common, const JSON& entry) {
    STACK_SLAVE slave;
    slave.name = entry.value(slave_name_key, "");
    slave_name_ = slave.name;
    JSON parameters = common;
    parameters.update(entry);
    parameters.erase(slave_name_key);
    for (const auto& [name, value] : parameters.items()) {
      if (const PARAMETER_ENTRY* const parameter = FindStackParameter(name)) {
        slave.parameters[name] = Value(*parameter, value);
      } else {
        Complain(name + " is no parameter that a stack can give");
      }
    }
    RequireAll(slave);
    return slave;
  }

 private:
  void Complain(const std::string& text) { complaints_.Add(slave_name_ + ": " + text); }

  std::string Value(const PARAMETER_ENTRY& parameter, const JSON& json) {
    const std::string& name = parameter.name;
    if (!json.is_string() && !json.is_number()) {
      Complain("the value of " + name + " is neither a text nor a number");
      return "";
    }
    std::string value = json.is_string() ? json.get<std::string>() : json.dump();
    constexpr std::string_view place = "{name}";
    for (std::size_t at = 0; (at = value.find(place, at)) != std::string::npos;) {
      value.replace(at, place.size(), slave_name_);
      at += slave_name_.size();
    }
    if (!value.empty()) {
      value = WithAbsolutePath(parameter.kind, value);
    }
    if (!FitsIntoConfigurationFile(value)) {
      Complain("the value of " + name +
               " is empty, too long or holds blanks, which no configuration file can tell");
    } else if (const std::string complaint = NumberComplaint(parameter, value);
               !complaint.empty()) {
      Complain(name + " " + complaint);
    }
    return value;
  }

  /// Outputs are renamed to their final names: those of the files themselves, not of links to them.
  std::string WithAbsolutePath(PARAMETER_KIND kind, const std::string& value) const {
    if (kind == PARAMETER_KIND::OUTPUT) {
      std::error_code unresolved;
      const auto path = std::filesystem::weakly_canonical(base_ / value, unresolved);
      return unresolved ? (base_ / value).lexically_normal().string() : path.string();
    }
    if (kind == PARAMETER_KIND::POOL || kind == PARAMETER_KIND::RASTER) {
      return (base_ / value).lexically_normal().string();
    }
    return value;
  }

  void RequireAll(const STACK_SLAVE& slave) {
    for (const PARAMETER_ENTRY& parameter : Parameters()) {
      if (parameter.IsRequired() && !slave.parameters.contains(parameter.name)) {
        Complain(parameter.name + " is missing");
      }
    }
  }

  std::filesystem::path base_;
  COMPLAINTS& complaints_;
  std::string slave_name_;
};

void RefuseUnknownKeys(const JSON& description, COMPLAINTS& complaints) {
  for (const auto& [key, value] : description.items()) {
    if (key != "name" && key != "directory" && key != "common" && key != "slaves") {
      complaints.Add("unknown entry \"" + key + "\"");
    }
  }
}

void CheckShape(const JSON& description, const std::filesystem::path& file) {
  const auto refuse = [&](const char* text) { throw STACK_ERROR(file.string() + ": " + text); };
  if (!description.is_object()) {
    refuse("a description is a JSON object");
  }
  if (!description.contains("slaves") || !description["slaves"].is_array() ||
      description["slaves"].empty()) {
    refuse("\"slaves\" must be a list of at least one slave");
  }
  for (const JSON& entry : description["slaves"]) {
    if (!entry.is_object() || !entry.contains(slave_name_key) ||
        !entry[slave_name_key].is_string()) {
      refuse("every slave is an object with the text \"name\"");
    }
  }
  if (description.contains("common") && !description["common"].is_object()) {
    refuse("\"common\" must be an object");
  }
  for (const char* key : {"name", "directory"}) {
    if (description.contains(key) && !description[key].is_string()) {
      refuse("\"name\" and \"directory\" must be texts");
    }
  }
}

std::vector<STACK_SLAVE> ReadSlaves(const JSON& description, const std::filesystem::path& base,
                                    COMPLAINTS& complaints) {
  SLAVE_READER reader(base, complaints);
  std::vector<STACK_SLAVE> slaves;
  std::set<std::string> names;
  for (const JSON& entry : description["slaves"]) {
    slaves.push_back(reader.Read(description.value("common", JSON::object()), entry));
    const std::string& name = slaves.back().name;
    if (!IsPlainName(name)) {
      complaints.Add(
          "a slave's name has 1 to 100 letters, digits and ._+- and begins with none of "
          "the signs . and -: \"" +
          name + "\"");
    } else if (!names.insert(name).second) {
      complaints.Add("two slaves have the name " + name);
    }
  }
  return slaves;
}

}  // namespace

STACK_DESCRIPTION ReadStackDescription(const std::filesystem::path& file) {
  const JSON description = Parse(file);
  CheckShape(description, file);
  const std::filesystem::path path = std::filesystem::absolute(file);
  const std::filesystem::path base = std::filesystem::canonical(path.parent_path());

  COMPLAINTS complaints;
  RefuseUnknownKeys(description, complaints);
  STACK_DESCRIPTION stack;
  stack.file = base / path.filename();
  stack.base = base;
  stack.name = description.value("name", path.stem().string());
  if (!IsPlainName(stack.name)) {
    complaints.Add("a stack's name is made as those of its slaves are: \"" + stack.name + "\"");
  }
  const auto default_directory = path.filename().replace_extension(".stack").string();
  stack.directory =
      std::filesystem::weakly_canonical(base / description.value("directory", default_directory));
  // Slurm takes no path literally that has a backslash in it.
  if (!FitsIntoConfigurationFile(stack.directory.string()) ||
      stack.directory.string().find('\\') != std::string::npos) {
    complaints.Add("the directory's path is too long or holds blanks or backslashes: " +
                   stack.directory.string());
  }
  stack.slaves = ReadSlaves(description, base, complaints);
  for (const std::string& clash : ClashingOutputs(stack)) {
    complaints.Add(clash);
  }
  complaints.ThrowIfAny(file);
  return stack;
}
