#include "pools/pool_setting.h"

#include <new>
#include <stdexcept>

#include "pool/parameter_pool_read_write_change.h"
#include "pools/pool_words.h"

namespace {

template <class T>
std::vector<T> TakeAll(POOL_WORDS& words) {
  std::vector<T> values;
  while (!words.Empty()) {
    words.Take(values.emplace_back());
  }
  return values;
}

template <class T>
void Build(POOL_WORDS& words, int, T& value) {
  words.Take(value);
}

/// bool has a type of its own to hold the elements: std::vector<bool> has no references.
template <class T>
void Build(POOL_WORDS& words, int, ARRAY<T>& vector) {
  struct HOLDER {
    T value{};
  };
  std::vector<HOLDER> values;
  while (!words.Empty()) {
    words.Take(values.emplace_back().value);
  }
  if (vector.Create(RANGE<int>(0, static_cast<int>(values.size()))) != CONTAINER_OK) {
    throw std::bad_alloc();
  }
  for (std::size_t i = 0; i < values.size(); ++i) {
    vector.Pointer(0)[i] = values[i].value;
  }
}

template <class T>
void Build(POOL_WORDS& words, int columns, MATRIX<T>& matrix) {
  const std::vector<T> values = TakeAll<T>(words);
  const int count = static_cast<int>(values.size());
  if (columns < 1 || count % columns != 0) {
    throw std::invalid_argument("--columns has to tell how many elements a row of the matrix has");
  }
  if (matrix.Create(RANGE<int>(0, count / columns), RANGE<int>(0, columns)) != CONTAINER_OK) {
    throw std::bad_alloc();
  }
  T* const* const rows = matrix.GetNumRecMatrix();
  for (int i = 0; i < count; ++i) {
    rows[i / columns][i % columns] = values[static_cast<std::size_t>(i)];
  }
}

}  // namespace

void SetPoolEntry(const std::string& path, const std::string& key, const std::string& type_word,
                  const std::vector<std::string>& words, int columns) {
  PARAMETER_POOL_READ_WRITE_CHANGE pool(path.c_str());
  const auto write = [&](auto value) {
    POOL_WORDS values(words);
    Build(values, columns, value);
    if (!values.Empty()) {
      throw std::invalid_argument("more values than " + type_word + " holds");
    }
    pool.Write(key.c_str(), value);
  };
  if (!VisitPoolType(PoolTypeOfWord(type_word), write)) {
    throw std::invalid_argument(type_word + " is no type of a pool");
  }
  pool.Update();
}
