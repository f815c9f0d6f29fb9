#pragma once

#include <pybind11/pybind11.h>

#include <functional>

#include "logging/logging.h"

/// What Python hands in to receive log lines, as `log(level, text)`; None for nobody.
using PYTHON_LOG = pybind11::object;

/// Runs `work` without the interpreter's lock and with a log of its own, whose lines `log`
/// receives, from any thread. Nothing is written anywhere else.
///
/// A failure is raised as the module's `Error`, with the lines that were logged at ALARM as its
/// text; an exception of `log` itself is raised when the work is done.
void CallLibrary(const PYTHON_LOG& log, const std::function<void()>& work);

/// Adds the class `Error` to the module.
void AddError(pybind11::module_& module);
