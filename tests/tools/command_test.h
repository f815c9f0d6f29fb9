#pragma once

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "tools/image_test.h"

/// Runs subcommands in this process, and other programs by the shell.
class COMMAND_TEST : public IMAGE_TEST {
 protected:
  /// What a command line prints, of a program with this one subcommand. Throws what it throws.
  static std::string Run(void (*add_command)(CLI::App&), const std::string& command_line) {
    CLI::App app;
    add_command(app);
    std::cout.copyfmt(std::ios(nullptr));  // as in a process of its own
    testing::internal::CaptureStdout();
    try {
      app.parse(command_line);
    } catch (...) {
      testing::internal::GetCapturedStdout();
      throw;
    }
    return testing::internal::GetCapturedStdout();
  }

  /// What a command of the shell prints on both outputs; std::runtime_error when it fails.
  static std::string Shell(const std::string& command) {
    struct CLOSE {
      void operator()(std::FILE* pipe) const { ::pclose(pipe); }
    };
    std::unique_ptr<std::FILE, CLOSE> pipe(::popen((command + " 2>&1").c_str(), "r"));
    std::string output;
    for (int character = 0; pipe && (character = std::fgetc(pipe.get())) != EOF;) {
      output += static_cast<char>(character);
    }
    if (!pipe || ::pclose(pipe.release()) != 0) {
      throw std::runtime_error(command + ": " + output);
    }
    return output;
  }
};
