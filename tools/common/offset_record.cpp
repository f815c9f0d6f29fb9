#include "common/offset_record.h"

#include "common/new_files.h"
#include "pool/parameter_pool_read_write_change.h"

namespace {

constexpr const char* posting_keys[] = {"offset_posting_rg", "offset_posting_az"};
constexpr const char* first_keys[] = {"offset_first_sample", "offset_first_line"};
constexpr const char* size_keys[] = {"n_samples", "n_lines"};

template <class T>
void WritePair(PARAMETER_POOL_READ_WRITE_CHANGE& pool, const char* const (&keys)[2],
               const RANGE_AZIMUTH<T>& pair) {
  pool.Write(keys[0], pair.range);
  pool.Write(keys[1], pair.azimuth);
}

template <class T>
void ReadPair(PARAMETER_POOL& pool, const char* const (&keys)[2], RANGE_AZIMUTH<T>& pair) {
  pool.Read(keys[0], pair.range);
  pool.Read(keys[1], pair.azimuth);
}

}  // namespace

void OFFSET_RECORD::Write(const std::string& path) const {
  WriteWholeFile(path, "# Shifts measured by slctool match\n");
  PARAMETER_POOL_READ_WRITE_CHANGE pool(path.c_str());
  WritePair(pool, posting_keys, posting);
  WritePair(pool, first_keys, first);
  WritePair(pool, size_keys, master_size);
  pool.Update();
}

OFFSET_RECORD OFFSET_RECORD::Read(const std::string& path) {
  PARAMETER_POOL pool(path.c_str());
  OFFSET_RECORD record;
  ReadPair(pool, posting_keys, record.posting);
  ReadPair(pool, first_keys, record.first);
  ReadPair(pool, size_keys, record.master_size);
  return record;
}
