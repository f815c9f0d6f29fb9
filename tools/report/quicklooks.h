#pragma once

#include <string>
#include <vector>

#include "report/run_record.h"

/// A picture of the page, or the reason why there is none.
struct QUICKLOOK {
  std::string title;
  std::string caption;
  std::string png;  ///< bytes of the picture; empty when there is none
  std::string reason;
};

struct QUICKLOOK_GROUP {
  std::string title;
  std::vector<QUICKLOOK> pictures;
};

/// Draws the slave before and after the run, its mask, the shifts and, with the name of a `master`,
/// what the run was good for: interferogram and coherence before and after. Rasters that the run
/// was not given are left out.
std::vector<QUICKLOOK_GROUP> DrawQuicklooks(const RUN_RECORD& run, const std::string& master);
