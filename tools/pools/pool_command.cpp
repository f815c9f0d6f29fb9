#include "pools/pool_command.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>

#include "common/new_files.h"
#include "logging/logging.h"
#include "logging/printable_text.h"
#include "pools/pool_listing.h"
#include "pools/pool_setting.h"
#include "pools/pool_template.h"
#include "pools/resample_keys.h"

namespace {

using JSON = nlohmann::ordered_json;

/// What the log warns of while it lives, as of a copy that a killed update has left, goes to
/// standard error, each once.
class SHOWN_WARNINGS {
 public:
  SHOWN_WARNINGS() {
    Log().SetReceiver([this](LOGGING_LEVEL_T level, std::string_view text) {
      if (level == LOGGING_LEVEL_T::WARNING && shown_.emplace(text).second) {
        std::cerr << "slctool: warning: " << text << "\n";
      }
    });
  }
  ~SHOWN_WARNINGS() { Log().SetReceiver({}); }
  SHOWN_WARNINGS(const SHOWN_WARNINGS&) = delete;
  SHOWN_WARNINGS& operator=(const SHOWN_WARNINGS&) = delete;

 private:
  std::set<std::string, std::less<>> shown_;
};

/// Bytes that are no UTF-8 are replaced.
std::string Dump(const JSON& value, int indentation = -1) {
  return value.dump(indentation, ' ', false, JSON::error_handler_t::replace);
}

std::string ScalarText(const JSON& value) {
  if (value.is_string()) {
    return value.get<std::string>();
  }
  return value.is_boolean() ? (value.get<bool>() ? "TRUE" : "FALSE") : Dump(value);
}

/// The scalars of an element or a row on one line, texts set apart by a TAB.
std::string LineText(const JSON& value) {
  if (!value.is_array()) {
    return ScalarText(value);
  }
  std::string line;
  for (const JSON& part : value) {
    const bool is_text = part.is_string() && part != "nan";
    line += (line.empty() && &part == &value.front() ? "" : is_text ? "\t" : " ") + LineText(part);
  }
  return line;
}

bool HasBlock(const std::string& type) {
  return type.ends_with("_V") || type.ends_with("_M");
}

/// The value as far as it fits into the last column of a table.
std::string ShortText(const LISTED_ENTRY& entry) {
  constexpr std::size_t longest = 60;
  if (entry.value.is_null()) {
    return "(can not be read)";
  }
  std::string text = Dump(entry.value);
  if (entry.type.ends_with("_M")) {
    const std::size_t columns = entry.value.empty() ? 0 : entry.value.front().size();
    text.insert(0, std::to_string(entry.value.size()) + " x " + std::to_string(columns) + " ");
  }
  return text.size() > longest ? text.substr(0, longest - 3) + "..." : text;
}

void PrintTable(const POOL_LISTING& listing) {
  std::size_t key_width = 0;
  std::size_t type_width = 0;
  for (const LISTED_ENTRY& entry : listing.entries) {
    key_width = std::max(key_width, PrintableText(entry.key).size());
    type_width = std::max(type_width, PrintableText(entry.type).size());
  }
  for (const LISTED_ENTRY& entry : listing.entries) {
    std::cout << std::left << std::setw(static_cast<int>(key_width)) << PrintableText(entry.key)
              << "  " << std::setw(static_cast<int>(type_width)) << PrintableText(entry.type)
              << "  " << PrintableText(ShortText(entry)) << "\n";
  }
}

void PrintJson(const POOL_LISTING& listing) {
  JSON entries = JSON::array();
  for (const LISTED_ENTRY& entry : listing.entries) {
    entries.push_back(
        {{"key", entry.key}, {"type", entry.type}, {"line", entry.line}, {"value", entry.value}});
  }
  std::cout << Dump(entries, 2) << "\n";
}

void PrintValue(const std::string& file, const std::string& key) {
  const SHOWN_WARNINGS warnings;
  const POOL_LISTING listing = ListPool(file);
  const auto found = std::find_if(listing.entries.begin(), listing.entries.end(),
                                  [&](const LISTED_ENTRY& entry) { return entry.key == key; });
  if (found == listing.entries.end()) {
    throw std::runtime_error(file + " has no entry " + key);
  }
  for (const POOL_FAULT& fault : listing.faults) {
    if (fault.key == key && found->value.is_null()) {
      std::string message = file;
      message.append(":").append(std::to_string(fault.line)).append(": ").append(key);
      throw std::runtime_error(PrintableText(message.append(": ").append(fault.reason)));
    }
  }
  if (!HasBlock(found->type)) {
    std::cout << LineText(found->value) << "\n";
    return;
  }
  for (const JSON& element : found->value) {
    std::cout << LineText(element) << "\n";
  }
}

struct CHECK_OPTIONS {
  std::string file;
  std::string program;
  std::string role;
};

std::vector<std::string> RunFaults(const POOL_LISTING& listing, const CHECK_OPTIONS& options) {
  if (options.program.empty()) {
    return {};
  }
  const bool is_slave_pool =
      options.role.empty() ? LooksLikeSlavePool(listing) : options.role == "slave";
  const std::string role = is_slave_pool ? "slave pool" : "INSAR pool";
  std::vector<std::string> faults = FaultsForResample(options.file, listing, is_slave_pool);
  for (std::string& text : faults) {
    text.insert(0, "as " + role + ": ");
  }
  return faults;
}

void Check(const CHECK_OPTIONS& options) {
  const SHOWN_WARNINGS warnings;
  const POOL_LISTING listing = ListPool(options.file);
  for (const POOL_FAULT& fault : listing.faults) {
    std::cout << options.file << ":" << fault.line << ": "
              << PrintableText(fault.key + ": " + fault.reason) << "\n";
  }
  const std::vector<std::string> run_faults = RunFaults(listing, options);
  for (const std::string& text : run_faults) {
    std::cout << options.file << ": " << PrintableText(text) << "\n";
  }
  std::cout << "entries: " << listing.entries.size() << "\n"
            << "faults: " << listing.faults.size() + run_faults.size() << "\n";
  if (!listing.faults.empty() || !run_faults.empty()) {
    throw std::runtime_error(options.file + " has faults");
  }
}

struct NEW_OPTIONS {
  std::string file;
  std::string program;
  POOL_ROLE role = POOL_ROLE::INSAR;
};

void AddNew(CLI::App& pool) {
  CLI::App* command =
      pool.add_subcommand("new", "Write a pool with all entries of a run, to be filled in");
  const auto options = std::make_shared<NEW_OPTIONS>();
  command->add_option("FILE", options->file, "Parameter pool that is not there yet")->required();
  command->add_option("--for", options->program, "The program that is to read it")
      ->required()
      ->check(CLI::IsMember({"resample"}));
  const std::map<std::string, POOL_ROLE> roles = {{"insar", POOL_ROLE::INSAR},
                                                  {"slave", POOL_ROLE::SLAVE}};
  command->add_option("--as", options->role, "Which pool it is to be; without it, the INSAR pool")
      ->transform(CLI::CheckedTransformer(roles));
  command->callback([options] {
    if (std::filesystem::exists(std::filesystem::symlink_status(options->file))) {
      throw std::runtime_error(options->file + " is there already");
    }
    WriteWholeFile(options->file, PoolTemplate(options->role));
  });
}

void AddList(CLI::App& pool) {
  CLI::App* command = pool.add_subcommand("list", "Show all entries as a table");
  const auto file = std::make_shared<std::string>();
  const auto as_json = std::make_shared<bool>(false);
  command->add_option("FILE", *file, "Parameter pool")->required();
  command->add_flag("--json", *as_json, "As JSON, with whole values and line numbers");
  command->callback([file, as_json] {
    const SHOWN_WARNINGS warnings;
    const POOL_LISTING listing = ListPool(*file);
    *as_json ? PrintJson(listing) : PrintTable(listing);
  });
}

void AddGet(CLI::App& pool) {
  CLI::App* command = pool.add_subcommand(
      "get", "Print a value, of a vector one element and of a matrix one row a line");
  const auto file = std::make_shared<std::string>();
  const auto key = std::make_shared<std::string>();
  command->add_option("FILE", *file, "Parameter pool")->required();
  command->add_option("KEY", *key, "Its key")->required();
  command->callback([file, key] { PrintValue(*file, *key); });
}

struct SET_OPTIONS {
  std::string file;
  std::string key;
  std::string type;
  std::vector<std::string> values;
  int columns = 0;
  bool create = false;

  void WriteTo(const std::string& path) const { SetPoolEntry(path, key, type, values, columns); }
};

void Set(const SET_OPTIONS& options) {
  const SHOWN_WARNINGS warnings;
  if (!options.create || std::filesystem::exists(options.file)) {
    options.WriteTo(options.file);
    return;
  }
  NEW_FILE pool(options.file);
  std::ofstream(pool.Path()).flush();
  options.WriteTo(pool.Path());
  pool.Finish();
}

void AddSet(CLI::App& pool) {
  CLI::App* command = pool.add_subcommand("set", "Write an entry, new or in place of an old one");
  const auto options = std::make_shared<SET_OPTIONS>();
  command->add_option("FILE", options->file, "Parameter pool")->required();
  command->add_option("KEY", options->key, "Its key")->required();
  command->add_option("TYPE", options->type, "Its type word, such as INT_32 or FLT_15_V")
      ->required();
  command->add_option("VALUE", options->values, "The value, or all elements row by row");
  command->add_option("--columns", options->columns, "Elements of a row, for a matrix");
  command->add_flag("--create", options->create, "Make the pool if it is not there");
  command->callback([options] { Set(*options); });
}

void AddCheck(CLI::App& pool) {
  CLI::App* command =
      pool.add_subcommand("check", "Read every entry and tell what is wrong, on which line");
  const auto options = std::make_shared<CHECK_OPTIONS>();
  command->add_option("FILE", options->file, "Parameter pool")->required();
  auto* program =
      command
          ->add_option("--for", options->program, "Tell also what a run of resample would refuse")
          ->check(CLI::IsMember({"resample"}));
  command->add_option("--as", options->role, "Which pool it is to be; without it, as its keys tell")
      ->check(CLI::IsMember({"insar", "slave"}))
      ->needs(program);
  command->callback([options] { Check(*options); });
}

}  // namespace

void AddPoolCommand(CLI::App& app) {
  CLI::App& pool = *app.add_subcommand("pool", "Show, change and check parameter pools");
  pool.require_subcommand(1);
  AddNew(pool);
  AddList(pool);
  AddGet(pool);
  AddSet(pool);
  AddCheck(pool);
}
