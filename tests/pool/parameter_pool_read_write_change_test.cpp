#include "pool/parameter_pool_read_write_change.h"

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdlib>

#include "base/vector.h"
#include "pool/pool_test.h"
#include "pool/pool_values.h"

namespace {

class POOL_WRITE : public POOL_TEST {
 protected:
  void SetUp() override { SetPool(""); }

  /// The text of a pool with this one entry.
  template <class T>
  std::string Written(const char* key, const T& value, const LIST<STRING>& comments = {}) {
    SetPool("");
    PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
    pool.Write(key, value, comments);
    pool.Update();
    return PoolText();
  }

  /// Writing this value is refused with ERROR, and nothing is registered.
  template <class ERROR, class T>
  void ExpectRefusal(const char* key, const T& value) {
    PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
    EXPECT_THROW(pool.Write(key, value), ERROR) << key;
    EXPECT_EQ(log_.Lines().back().rfind("ALARM : parameter pool: parameter key >> ", 0), 0U);
    pool.Update();
    EXPECT_EQ(PoolText(), "");
  }
};

/// The process with the numbers of another country, as far as the system can make its locale.
class COMMA_LOCALE {
 public:
  COMMA_LOCALE() {
    const std::string made = "localedef -i de_DE -f UTF-8 " + directory_.File("de_DE.UTF-8");
    is_there_ = std::system((made + " > /dev/null 2>&1").c_str()) == 0 &&
                ::setenv("LOCPATH", directory_.Path().c_str(), 1) == 0 &&
                std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
  }
  ~COMMA_LOCALE() {
    std::setlocale(LC_ALL, "C");
    ::unsetenv("LOCPATH");
  }
  COMMA_LOCALE(const COMMA_LOCALE&) = delete;
  COMMA_LOCALE& operator=(const COMMA_LOCALE&) = delete;
  bool IsThere() const { return is_there_; }

 private:
  TEMPORARY_DIRECTORY directory_;
  bool is_there_ = false;
};

TEST_F(POOL_WRITE, NumbersHaveAPointInACommaLocaleToo) {
  const std::string text = Written("key", 0.0055);
  const COMMA_LOCALE comma;
  if (!comma.IsThere()) {
    GTEST_SKIP() << "no locale can be made here";
  }
  EXPECT_EQ(std::to_string(0.5), "0,500000");
  EXPECT_EQ(Written("key", 0.0055), text);
  for (const auto& [written, value] :
       {std::pair("0.0055", 0.0055), std::pair("+1.5", 1.5), std::pair("0x1.8p1", 3.0)}) {
    SetPool(std::string("key FLT_15 ") + written + "\n");
    double read = 0.0;
    PARAMETER_POOL(Path()).Read("key", read);
    EXPECT_EQ(read, value);
  }
  Log().Message(LOGGING_LEVEL_T::ALARM, "%.2f", 0.5);
  Log() << LOGGING_LEVEL_T::ALARM << 0.25;
  EXPECT_TRUE(log_.Text().ends_with("ALARM : 0.50\nALARM : 0.250000\n")) << log_.Text();
}

/// Calls `visit(key, sample)` for samples of every type.
template <class VISIT>
void ForEachSample(VISIT visit) {
  VisitPoolElements([&](const auto& element) {
    using T = std::remove_cvref_t<decltype(element)>;
    int number = 0;
    const auto visit_next = [&](const auto& sample) {
      visit(STRING((PoolTypeWord(pool_type_of<T>) + std::to_string(number++)).c_str()), sample);
    };
    std::vector<T> samples = Samples<T>();
    for (const T& sample : samples) {
      visit_next(sample);
    }
    visit_next(ARRAY<T>());
    visit_next(VectorOf(samples));
    if constexpr (POOL_VALUE<MATRIX<T>>) {
      const int width = static_cast<int>(samples.size());
      samples.insert(samples.end(), samples.rbegin(), samples.rend());
      visit_next(MatrixOf(3, 7, width, samples));
      visit_next(MatrixOf<T>(3, 7, width, {}));
      MATRIX<T> without_columns;
      without_columns.Create(RANGE<int>(1, 3), RANGE<int>(2, 0));
      visit_next(without_columns);
    }
  });
}

TEST_F(POOL_WRITE, ReadsBackEqualForEveryTypeAndIsStable) {
  const auto write_all = [&] {
    PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
    ForEachSample([&](const STRING& key, const auto& sample) { pool.Write(key, sample); });
    pool.Update();
  };
  write_all();
  const std::string text = PoolText();
  PARAMETER_POOL reader(Path());
  ForEachSample([&]<class T>(const STRING& key, const T& sample) {
    T value{};
    reader.Read(key, value);
    EXPECT_EQ(Bytes(value), Bytes(sample)) << key.Text();
  });
  write_all();
  EXPECT_EQ(PoolText(), text);
}

TEST_F(POOL_WRITE, Layout) {
  EXPECT_EQ(Written("key", true), "key                             BOL             TRUE\n\n");
  EXPECT_EQ(Written("key", 1.5F),
            "key                             FLT_6           1.500000E+00\n\n");
  EXPECT_EQ(Written("key", 0.1),
            "key                             FLT_15          1.00000000000000006E-01\n\n");
  EXPECT_EQ(Written("key", STRING("a \"b\" \\")),
            "key                             STR             \"a \\\"b\\\" \\\\\"\n\n");
  EXPECT_EQ(Written("key_of_32_characters____________", POINT<int>(1, -2)),
            "key_of_32_characters____________ INT_32_INT_32   1 -2\n\n");
  VECTOR<short> vector;
  vector.Create(RANGE<int>(2, 1));
  vector.Origin()[2] = 7;
  EXPECT_EQ(Written("key", vector, {"first", "second\nthird"}),
            "#first\n#second\n#third\n"
            "key                             INT_16_V        2 1\n  {\n    7\n  }\n\n");
  EXPECT_EQ(Written("key", MatrixOf<char>(1, 2, 1, {3, 4})),
            "key                             INT_8_M         1 2 2 1\n"
            "  {\n    {\n      3\n    }\n    {\n      4\n    }\n  }\n\n");
}

TEST_F(POOL_WRITE, RefusesWhatWouldNotReadBack) {
  const std::string long_text(1024 - 48 - 2 + 1, 'x');
  ExpectRefusal<INVALID_PARAMETER_VALUE>("key", STRING("two\nlines"));
  ExpectRefusal<INVALID_PARAMETER_VALUE>("key", VectorOf<STRING>({"one\r"}));
  ExpectRefusal<INVALID_PARAMETER_VALUE>("key", STRING(long_text.c_str()));
  ExpectRefusal<PARAMETER_OUT_OF_BOUNDS>("key", -HUGE_VAL);
  ExpectRefusal<PARAMETER_OUT_OF_BOUNDS>("key", HUGE_VALF);
  for (const int first : {-1, largest_first_index + 1}) {
    ARRAY<int> vector;
    vector.Create(RANGE<int>(first, 1));
    ExpectRefusal<PARAMETER_OUT_OF_BOUNDS>("key", vector);
  }
  ExpectRefusal<PARAMETER_KEY_TOO_LONG>(std::string(101, 'k').c_str(), 1);
  for (const char* key : {"", "#key", " key", "two words", "two\tcolumns"}) {
    ExpectRefusal<ERROR_ARGUMENT>(key, 1);
  }
}

TEST_F(POOL_WRITE, AKeyOnceAndChangesOfKnownKeysOnly) {
  SetPool("in_file INT_32 1\n");
  PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
  pool.Write("new", 1);
  EXPECT_TRUE(log_.Has(std::string("TRACE : PP.Write ") + Path() + " new INT_32"));
  EXPECT_THROW(pool.Write("new", 2), PARAMETER_KEY_EXISTS);
  pool.Change("new", 3.0);
  pool.Change("in_file", 4);
  EXPECT_TRUE(log_.Has(std::string("TRACE : PP.Change ") + Path() + " in_file INT_32"));
  EXPECT_THROW(pool.Change("unknown", 5), PARAMETER_KEY_NOT_FOUND);
  int number = 0;
  pool.Read("in_file", number);
  EXPECT_EQ(number, 1) << "reading answers from the file";
  EXPECT_FALSE(pool.Exists("new"));

  pool.Update();
  double real = 0.0;
  pool.Read("new", real);
  EXPECT_EQ(real, 3.0);
  pool.Read("in_file", number);
  EXPECT_EQ(number, 4);
}

TEST_F(POOL_WRITE, DestructorUpdatesOnceAndReportsFailureUnlessAnotherIsOnItsWay) {
  const auto write = [&](auto act) {
    SetPool("");
    PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
    pool.Write("key", 1);
    act(pool);
  };
  write([](const auto&) {});
  EXPECT_TRUE(PARAMETER_POOL(Path()).Exists("key"));
  EXPECT_THROW(write([&](const auto&) { std::filesystem::remove(Path()); }),
               NO_UPDATE_PERMISSION_FOR_POOL);
  const auto fail = [&](const auto&) {
    std::filesystem::remove(Path());
    throw ERROR_DATA();
  };
  EXPECT_THROW(write(fail), ERROR_DATA);
  const std::string alarm = std::string("ALARM : no permission to change pool file: ") + Path() +
                            ": No such file or directory";
  const std::vector<std::string> lines = log_.Lines();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), alarm), 2);

  write([&](PARAMETER_POOL_READ_WRITE_CHANGE& pool) {
    std::filesystem::remove(Path());
    EXPECT_THROW(pool.Update(), NO_UPDATE_PERMISSION_FOR_POOL);
    SetPool("kept\n");
  });
  EXPECT_EQ(PoolText(), "kept\n") << "a failed update was tried again";
}

}  // namespace
