#pragma once

#include <filesystem>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "app/parameter_table.h"
#include "description/described_stack.h"

/// An output has this name until its run has succeeded.
std::filesystem::path PartialOutput(const std::filesystem::path& output);

/// The values of those parameters of a slave that are of these kinds.
std::vector<std::string> ValuesOf(const std::map<std::string, std::string>& parameters,
                                  std::initializer_list<PARAMETER_KIND> kinds);

/// A line for each output that is, under its final or its partial name, another output or an input
/// of any of the slaves, the description, or a file that the stack itself keeps.
std::vector<std::string> ClashingOutputs(const STACK_DESCRIPTION& stack);
