#include "description/slave_files.h"

#include <sys/stat.h>

#include <map>
#include <optional>
#include <set>
#include <utility>

#include "base/same_file.h"
#include "description/stack_folder.h"

namespace {

using FILE_ID = std::pair<dev_t, ino_t>;

std::optional<FILE_ID> IdOf(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    return std::nullopt;
  }
  return FILE_ID{status.st_dev, status.st_ino};
}

/// The inputs of all slaves, to be found by name and, through whatever links, by identity.
class INPUTS {
 public:
  explicit INPUTS(const std::vector<STACK_SLAVE>& slaves) {
    for (const STACK_SLAVE& slave : slaves) {
      Add(ValuesOf(slave.parameters, {PARAMETER_KIND::POOL, PARAMETER_KIND::RASTER}));
    }
  }

  bool Has(const std::string& path) const {
    const auto id = IdOf(path);
    return paths_.contains(path) || (id && ids_.contains(*id));
  }

 private:
  void Add(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
      if (paths_.insert(path).second) {
        if (const auto id = IdOf(path)) {
          ids_.insert(*id);
        }
      }
    }
  }

  std::set<std::string> paths_;
  std::set<FILE_ID> ids_;
};

}  // namespace

std::filesystem::path PartialOutput(const std::filesystem::path& output) {
  return output.string() + ".partial";
}

std::vector<std::string> ValuesOf(const std::map<std::string, std::string>& parameters,
                                  std::initializer_list<PARAMETER_KIND> kinds) {
  std::vector<std::string> values;
  for (const std::string& name : ParametersOf(kinds)) {
    if (const auto found = parameters.find(name); found != parameters.end()) {
      values.push_back(found->second);
    }
  }
  return values;
}

std::vector<std::string> ClashingOutputs(const STACK_DESCRIPTION& stack) {
  const INPUTS inputs(stack.slaves);
  const STACK_FOLDER folder(stack.directory);
  std::map<std::string, std::string> owners;  // of the outputs' paths
  std::vector<std::string> clashes;
  for (const STACK_SLAVE& slave : stack.slaves) {
    for (const std::string& output : ValuesOf(slave.parameters, {PARAMETER_KIND::OUTPUT})) {
      for (const std::string& path : {output, PartialOutput(output).string()}) {
        const auto [owner, is_new] = owners.emplace(path, slave.name);
        if (!is_new) {
          clashes.push_back(slave.name + ": " + path + " is an output of " + owner->second +
                            " too");
        } else if (inputs.Has(path)) {
          clashes.push_back(slave.name + ": output " + path + " is an input of the stack");
        } else if (folder.Owns(path) || IsSameFile(path.c_str(), stack.file.c_str())) {
          clashes.push_back(slave.name + ": output " + path + " is a file of the stack's own");
        }
      }
    }
  }
  return clashes;
}
