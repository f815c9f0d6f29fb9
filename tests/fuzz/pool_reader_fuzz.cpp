// Input: the text of a pool. All of its entries are read, as what they are and as other types. What
// could be read is written, if it is no text that a pool cannot hold, and must read back the same.

#include "fuzz/pool_target.h"

namespace {

template <class T>
void CheckRoundTrip(const T& value) {
  static const FUZZ_FILE file;
  Succeeds([&] {
    file.Set(PARAMETER_POOL_ITEM("key", value, {}).Entry());
    PARAMETER_POOL pool(file.Path());
    T again{};
    const bool is_read = Succeeds([&] { pool.Read("key", again); });
    Require(is_read && AreEqualInPools(value, again), "a value does not read back");
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const FUZZ_FILE file;
  SilenceLog();
  const std::string_view text = TextOf(data, size);
  file.Set(text);
  PARAMETER_POOL pool(file.Path());
  constexpr std::size_t key_limit = 8;
  for (const std::string& name : KeysOf(text, key_limit)) {
    const STRING key(name.c_str());
    Require(
        VisitEntry(pool, key, [](const auto& value) { CheckRoundTrip(value); }) <= pool.Exists(key),
        "an entry that does not exist was read");
    STRING word;
    Succeeds([&] { pool.Read(key, word); });
    int number = 0;
    Succeeds([&] { pool.Read(key, number); });
  }
  return 0;
}
