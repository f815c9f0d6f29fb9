#pragma once

#include <ctime>
#include <string>

/// A duration in words, as the log's trailer shows it: each part that is not zero as a blank, its
/// number and its unit (" 1 hour(s) 2 second(s)"), below one second " less than 1 second".
std::string ExecutionTime(std::time_t seconds);
