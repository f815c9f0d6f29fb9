#pragma once

/// Runs the program: start of controller and log, the run itself, and its end. Never returns: it
/// leaves through the controller with status files and exit status 0, or 1 after a failure, or
/// 2 when a STOP file was found.
[[noreturn]] void RunDriver(int argc, char** argv);
