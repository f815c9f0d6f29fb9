#include "call.h"

#include <optional>
#include <string>
#include <utility>

#include "app/error_report.h"

namespace py = pybind11;

namespace {

/// The class of Python; lives as long as the interpreter.
PyObject* error_class = nullptr;

/// Hands on the lines of a call and keeps what they say about its failure.
class CALL_LOG {
 public:
  explicit CALL_LOG(const PYTHON_LOG& log) : log_(log), is_wanted_(!log.is_none()) {}

  void Receive(LOGGING_LEVEL_T level, std::string_view text) {
    if (level == LOGGING_LEVEL_T::ALARM) {
      reasons_ += (reasons_.empty() ? "" : "\n") + std::string(text);
    }
    if (is_wanted_) {
      const py::gil_scoped_acquire lock;
      Forward(level, text);
    }
  }

  /// To be called with the interpreter's lock.
  void RaiseFailure() const {
    PyErr_SetString(error_class, reasons_.c_str());
    throw py::error_already_set();
  }

  void RaiseErrorOfHandler() {
    if (error_) {
      throw py::error_already_set(std::move(*error_));
    }
  }

 private:
  void Forward(LOGGING_LEVEL_T level, std::string_view text) {
    const std::string_view tag = LevelTag(level);
    try {
      if (!error_) {
        log_(tag.substr(0, tag.find(' ')), text);
      }
    } catch (py::error_already_set& error) {
      error_ = std::move(error);
    }
  }

  const PYTHON_LOG& log_;
  const bool is_wanted_;
  std::string reasons_;
  std::optional<py::error_already_set> error_;
};

}  // namespace

void CallLibrary(const PYTHON_LOG& log, const std::function<void()>& work) {
  CALL_LOG lines(log);
  bool has_failed = false;
  {
    const py::gil_scoped_release unlocked;
    LOGGING call_log(
        [&](LOGGING_LEVEL_T level, std::string_view text) { lines.Receive(level, text); });
    const LOG_SCOPE scope(call_log);
    try {
      work();
    } catch (const std::exception&) {
      throw;  // has its own class in Python
    } catch (...) {
      LogCurrentException();
      has_failed = true;
    }
  }
  lines.RaiseErrorOfHandler();
  if (has_failed) {
    lines.RaiseFailure();
  }
}

void AddError(py::module_& module) {
  error_class =
      PyErr_NewExceptionWithDoc("resample.Error", "A failure, with the reasons that were logged.",
                                PyExc_RuntimeError, nullptr);
  if (error_class == nullptr) {
    throw py::error_already_set();
  }
  module.attr("Error") = py::handle(error_class);
}
