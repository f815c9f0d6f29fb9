#pragma once

#include <string>
#include <vector>

#include "pool/parameter_pool_list.h"
#include "pool/pool_lines.h"

/// The text of a pool file after an update: the lines of the file with every entry of a listed
/// key replaced by the item, and the items that the file does not hold appended. All other bytes
/// stay, the blocks of other entries as a whole. A line of such a block in which readers find a
/// listed key is replaced only where the key has no entry; where it has one behind that line, a
/// WARNING names the line.
///
/// With an entry go its block, if it is complete, the pieces in which a long line is read, and the
/// blank lines behind it, for which the one stands that ends each item; comment lines of an item
/// that stand in front of the entry already are not repeated. So repeated updates do not lengthen a
/// file.
std::string MergeIntoPool(const std::vector<POOL_LINE>& lines, const PARAMETER_POOL_LIST& items);
