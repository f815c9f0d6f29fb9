#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "control/controller_ifc.h"
#include "logging/logging.h"
#include "support/process.h"
#include "support/temporary_directory.h"

/// The log, the controller and the signal dispositions belong to the process, so each body gets
/// a process of its own, forked from one that has none of them. It runs in an empty directory,
/// with a log as the program has it.
class PROCESS_TEST : public testing::Test {
 protected:
  using BODY = std::function<void()>;
  using CONTROLLER_BODY = std::function<void(CONTROLLER_IFC&)>;

  PROCESS Start(const BODY& body, const std::string& keyboard = "") const {
    PROCESS_SETTINGS settings;
    settings.directory = directory_.Path();
    settings.keyboard = keyboard;
    settings.prepare = [&]() -> bool {
      using enum LOGGING_LEVEL_T;
      static const LOGGING_USER log("", "resample", INFO, TRACE);
      body();
      std::exit(77);  // no exit status of a run
    };
    return PROCESS(settings);
  }
  PROCESS_END Run(const BODY& body, const std::string& keyboard = "") const {
    return Start(body, keyboard).Wait();
  }

  /// A body with a controller that was started with these arguments.
  static BODY WithController(std::vector<std::string> arguments, CONTROLLER_BODY body,
                             int supervisor_flag = 1) {
    return [=]() mutable {
      std::vector<char*> pointers = Pointers(arguments);
      CONTROLLER_IFC controller;
      controller.init(static_cast<int>(arguments.size()), pointers.data(), supervisor_flag);
      body(controller);
    };
  }
  PROCESS_END RunController(const std::vector<std::string>& arguments,
                            const CONTROLLER_BODY& body) const {
    return Run(WithController(arguments, body));
  }

  std::string Path(std::string_view name) const { return directory_.File(name); }
  bool Exists(std::string_view name) const { return std::filesystem::exists(Path(name)); }
  std::string Content(std::string_view name) const { return ReadFile(Path(name)); }

 private:
  TEMPORARY_DIRECTORY directory_;
};
