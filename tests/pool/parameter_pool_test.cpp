#include "pool/parameter_pool.h"

#include <functional>
#include <regex>

#include "pool/pool_test.h"
#include "pool/pool_values.h"

namespace {

using PARAMETER_POOL_READS = POOL_TEST;

/// An entry of the key "key" and whether a pool's reading of it yields what it should.
struct READ_CASE {
  std::string type;
  std::string value;
  std::function<bool(PARAMETER_POOL&)> reads_expected;
};

template <class T>
READ_CASE Case(const std::string& type, const std::string& text, const T& expected) {
  const auto reads_expected = [expected](PARAMETER_POOL& pool) {
    T value{};
    pool.Read("key", value);
    return pool.TypeOf("key") == pool_type_of<T> && Same(value, expected);
  };
  return {type, text, reads_expected};
}

class CASES : public std::vector<READ_CASE> {
 public:
  /// This text as a single value, as both elements of a vector, and in a matrix of one row.
  template <class T>
  void Add(const std::string& type, const std::string& text, const T& value) {
    push_back(Case(type, text, value));
    const std::string elements = "{\n  " + text + "\n" + text + "\n}\n";
    push_back(Case(type + "_V", "1 2\n" + elements, VectorOf<T>({T(), value, value})));
    if constexpr (has_matrices<T>) {
      push_back(
          Case(type + "_M", "1 1 3 2\n{\n" + elements + "}", MatrixOf<T>(1, 3, 2, {value, value})));
    }
  }
};

CASES CasesOfAllTypes() {
  CASES cases;
  cases.Add<bool>("BOL", "TRUE", true);
  cases.Add<unsigned char>("BYT", "255", 255);
  cases.Add<char>("INT_8", "-128", -128);
  cases.Add<short>("INT_16", "-32768", -32768);
  cases.Add<int>("INT_32", "2147483647", 2147483647);
  cases.Add<long long>("INT_64", "-9223372036854775807", -9223372036854775807LL);
  cases.Add<float>("FLT_6", "1.5e3 comment", 1500.0F);
  cases.Add<double>("FLT_15", "-2.5E-3", -0.0025);
  cases.Add<STRING>("STR", "two  words ", "two  words ");
  cases.Add<COMPLEX<float>>("CPL_6", "1 -2.5", {1.0F, -2.5F});
  cases.Add<COMPLEX<double>>("CPL_15", "1E300 0", {1e300, 0.0});
  cases.Add<POINT<int>>("INT_32_INT_32", "1 -2", {1, -2});
  cases.Add<POINT<long long>>("INT_64_INT_64", "4294967296 0", {4294967296, 0});
  cases.Add<POINT<float>>("FLT_6_FLT_6", "0.5 1", {0.5F, 1.0F});
  cases.Add<POINT<double>>("FLT_15_FLT_15", "0.5\t1e99", {0.5, 1e99});
  cases.Add<INDEX<int, int>>("IDX_INT_32", "7 -1", {7, -1});
  cases.Add<INDEX<int, float>>("IDX_FLT_6", "7 0.25", {7, 0.25F});
  cases.Add<INDEX<int, double>>("IDX_FLT_15", "-7 1e-300", {-7, 1e-300});
  cases.Add<TUPLE<STRING>>("STR_STR", "\"a \\\" b\" : last words", {"a \" b", "last words"});
  return cases;
}

TEST_F(PARAMETER_POOL_READS, EveryTypeWithAnyLineEndAndNothingAsAnotherType) {
  const CASES cases = CasesOfAllTypes();
  ASSERT_EQ(cases.size(), 47U);
  for (const std::string line_end : {"\n", "\r\n", "\r"}) {
    const READ_CASE* other = &cases.back();
    for (const READ_CASE& test : cases) {
      SCOPED_TRACE(test.type);
      const std::string text =
          "# key INT_32 1\n\n key BOL TRUE\nkey2 STR x\nkey " + test.type + " " + test.value;
      SetPool(std::regex_replace(text, std::regex("\n"), line_end));
      PARAMETER_POOL pool(Path());
      EXPECT_TRUE(test.reads_expected(pool));
      EXPECT_EQ(log_.Lines().back(),
                std::string("TRACE : PP.Read ") + Path() + " key " + test.type);
      EXPECT_THROW(other->reads_expected(pool), WRONG_PARAMETER_TYPE);
      EXPECT_EQ(log_.Lines().back(), "ALARM : parameter pool: parameter key >> key << type " +
                                         other->type + " expected");
      other = &test;
    }
  }
}

/// An entry that cannot be read as T, what the error says and what is logged behind the key.
struct REFUSED_CASE {
  std::string entry;
  std::function<void(PARAMETER_POOL&)> read;
  std::string error;
  std::string reason;
};

template <class T, class ERROR>
REFUSED_CASE Refused(const char* entry, const char* reason) {
  const auto read = [](PARAMETER_POOL& pool) {
    T value{};
    pool.Read("key", value);
  };
  return {entry, read, ERROR().what(), reason};
}

template <class T>
constexpr auto Invalid = Refused<T, INVALID_PARAMETER_VALUE>;
template <class T>
constexpr auto Broken = Refused<T, ERROR_PARAMETER_POOL>;

/// The same for a single word, which the reason cites.
template <class T, class ERROR = INVALID_PARAMETER_VALUE>
REFUSED_CASE InvalidWord(const std::string& type, const std::string& word, const char* reason) {
  return Refused<T, ERROR>((type + " " + word).c_str(),
                           (" << read value is : " + word + " " + reason).c_str());
}
template <class T>
constexpr auto TooLargeWord = InvalidWord<T, PARAMETER_OUT_OF_BOUNDS>;

class PARAMETER_POOL_REFUSES : public POOL_TEST {
 protected:
  void Check(const std::vector<REFUSED_CASE>& cases) {
    for (const REFUSED_CASE& test : cases) {
      SCOPED_TRACE(test.entry);
      SetPool("key " + test.entry);
      PARAMETER_POOL pool(Path());
      try {
        test.read(pool);
        ADD_FAILURE() << "was read";
      } catch (const ERROR_PARAMETER_POOL& error) {
        EXPECT_EQ(error.what(), test.error);
      }
      EXPECT_EQ(log_.Lines().back(), "ALARM : parameter pool: parameter key >> key" + test.reason);
    }
  }
};

TEST_F(PARAMETER_POOL_REFUSES, BadScalars) {
  using BYT = unsigned char;
  Check({
      Broken<int>("", " << no type information found"),
      Invalid<int>("INT_32", " << no parameter value in file"),
      Invalid<STRING>("STR  ", " << no parameter value in file"),
      InvalidWord<bool>("BOL", "true", "but TRUE or FALSE are expected"),
      InvalidWord<BYT>("BYT", "1.5E3", "BYT (no floating) value expected"),
      InvalidWord<char>("INT_8", "1.E", "BYT (no floating) value expected"),
      InvalidWord<short>("INT_16", "E.", "INT_8 (no floating) value expected"),
      InvalidWord<int>("INT_32", "1.5E3", "INT_16 (no floating) value expected"),
      InvalidWord<long long>("INT_64", ".E", "INT_32 (no floating) value expected"),
      InvalidWord<BYT>("BYT", "1-", "BYT (unsigned) value expected"),
      InvalidWord<BYT>("BYT", "1x", "BYT (no additional character) value expected"),
      InvalidWord<char>("INT_8", "1x", "INT_8 (no additional character) value expected"),
      InvalidWord<short>("INT_16", "1.5", "INT_8 (no additional character) value expected"),
      InvalidWord<int>("INT_32", "1e3", "INT_32 (no additional character) value expected"),
      InvalidWord<long long>("INT_64", "1,0", "INT_64 (no additional character) value expected"),
      TooLargeWord<BYT>("BYT", "256", "(value is out of range) BYT expected"),
      TooLargeWord<BYT>("BYT", "4294967297", "(value is out of range) BYT expected"),
      TooLargeWord<char>("INT_8", "128", "(value is out of range) INT_8 expected"),
      TooLargeWord<short>("INT_16", "-32769", "(value is out of range) INT_16 expected"),
      TooLargeWord<float>("FLT_6", "3.40282347E38", "(value is out of range) FLT_6 expected"),
      TooLargeWord<double>("FLT_15", "-1e309", "(value is out of range) FLT_15 expected"),
      TooLargeWord<double>("FLT_15", "inf", "(value is out of range) FLT_15 expected"),
      Broken<POINT<double>>("FLT_15_FLT_15 1", " << no second coordinate"),
      Broken<INDEX<int, int>>("IDX_INT_32 1", " << no value"),
      Invalid<COMPLEX<double>>("CPL_15 1", " << no imaginary part in CPL_6"),
      Invalid<TUPLE<STRING>>("STR_STR \"a\"",
                             " << no correct string tuple format (missing >>\"<< ?)"),
      Invalid<TUPLE<STRING>>("STR_STR \"a\" :",
                             " << no correct string tuple format (missing >>\"<< ?)"),
      Invalid<TUPLE<STRING>>("STR_STR a : b",
                             " << no correct string tuple format (missing >>\"<< ?)"),
  });
}

TEST_F(PARAMETER_POOL_REFUSES, BadRanges) {
  const char* vector = " << no correct range for VECTOR or MATRIX";
  const char* matrix = " << no correct range for MATRIX";
  using BYTES = ARRAY<unsigned char>;
  Check({
      Invalid<ARRAY<int>>("INT_32_V 0\n{\n}\n", vector),
      Invalid<ARRAY<int>>("INT_32_V -1 1\n{\n1\n}\n", vector),
      Invalid<ARRAY<int>>("INT_32_V 0 -1\n{\n}\n", vector),
      Invalid<ARRAY<int>>("INT_32_V 2147483647 1\n{\n1\n}\n", vector),
      Invalid<MATRIX<int>>("INT_32_M 0 1\n{\n{\n1\n}\n}\n", matrix),
      Invalid<MATRIX<int>>("INT_32_M 0 1 0\n{\n{\n1\n}\n}\n", vector),
      Invalid<MATRIX<int>>("INT_32_M 0 1 0 -1\n{\n{\n1\n}\n}\n", vector),
      // Counts of gigabytes, which must not be allocated for a few lines.
      Broken<BYTES>("BYT_V 0 2147483647\n{\n1\n", " << no value for index 1 due to end of file"),
      Broken<MATRIX<double>>("FLT_15_M 0 2147483647 0 2147483647\n{\n{\n1\n",
                             " << no value for index 1 due to end of file"),
      Broken<MATRIX<double>>("FLT_15_M 0 2147483647 0 0\n{\n{\n}\n", " << no { due to end of file"),
  });
}

TEST_F(PARAMETER_POOL_REFUSES, BadBlocks) {
  using TEXTS = ARRAY<STRING>;
  Check({
      Broken<ARRAY<int>>("INT_32_V 0 1", " << no { due to end of file"),
      Broken<ARRAY<int>>("INT_32_V 0 1\n1\n}", " << { expected instead of 1 for INT_32_V"),
      Broken<ARRAY<int>>("INT_32_V 4 3\n{\n1\n2", " << no value for index 6 due to end of file"),
      Broken<ARRAY<int>>("INT_32_V 0 1\n{\n1", " << no } due to end of file"),
      Broken<ARRAY<int>>("INT_32_V 0 1\n{\n1\n2\n}", " << } expected instead of 2 for INT_32_V"),
      Broken<ARRAY<int>>("INT_32_V 0 1\n{\n1\n\n}", " << no } at end of INT_32_V"),
      Invalid<ARRAY<int>>("INT_32_V 0 2\n{\n1\n\n}", " << no parameter value in file"),
      Invalid<ARRAY<int>>("INT_32_V 0 2\n{\n1\n}\n",
                          " << read value is : } INT_32 (no additional character) value expected"),
      Broken<ARRAY<float>>("FLT_6_V 0 1\nx", " << { expected for FLT_4_V"),
      Broken<ARRAY<float>>("FLT_6_V 0 1\n{\n1\nx", " << no } at end of FLT_4_V"),
      Broken<ARRAY<double>>("FLT_15_V 0 1\nx", " << { expected for FLT_8_V"),
      Broken<ARRAY<double>>("FLT_15_V 0 1\n{\n1\nx", " << no } at end of FLT_8_V"),
      Broken<ARRAY<POINT<float>>>("FLT_6_FLT_6_V 0 1\nx",
                                  " << { expected instead of x for INT_FLT_6_FLT_6_V"),
      Broken<ARRAY<POINT<double>>>("FLT_15_FLT_15_V 0 1\nx",
                                   " << { expected for INT_FLT_15_FLT_15_V"),
      Broken<ARRAY<POINT<double>>>("FLT_15_FLT_15_V 0 1\n{\n1 2\nx",
                                   " << } expected instead of x for INT_FLT_15_FLT__V"),
      Broken<MATRIX<STRING>>("STR_M 0 1 0 1\nx", " << { expected instead of x for STR_15_M"),
      Broken<MATRIX<double>>("FLT_15_M 0 1 0 1\n{\n{\n1\nx", " << no } at end of FLT_8_V"),
      Broken<MATRIX<double>>("FLT_15_M 0 1 0 1\n{\n{\n1\n}\nx",
                             " << } expected instead of x for FLT_15_M"),
      Broken<TEXTS>("STR_V 0 2\n{\na\n}\nb\n}", " << STR_V length does not match entry count"),
      Broken<TEXTS>("STR_V 0 1\n{\na\nb\n}", " << STR_V length does not match entry count"),
      Broken<ARRAY<TUPLE<STRING>>>("STR_STR_V 0 1\n{\n }",
                                   " << STR_STR_V length does not match entry count"),
  });
}

TEST_F(PARAMETER_POOL_READS, NumbersAsTheyScan) {
  SetPool(
      "signs INT_32 +-5\nmixed INT_32 5-3\nwide INT_32 4294967298\nword FLT_6 word\n"
      "half FLT_15 1.5e\nlargest FLT_6 3.4028234663852886e38\n");
  PARAMETER_POOL pool(Path());
  const std::pair<const char*, int> integers[] = {{"signs", 0}, {"mixed", 5}, {"wide", 2}};
  for (const auto& [key, expected] : integers) {
    int number = -1;
    pool.Read(STRING(key), number);
    EXPECT_EQ(number, expected) << key;
  }
  float single = -1.0F;
  pool.Read("word", single);
  EXPECT_EQ(single, 0.0F);
  pool.Read("largest", single);
  EXPECT_EQ(single, std::numeric_limits<float>::max());
  double real = -1.0;
  pool.Read("half", real);
  EXPECT_EQ(real, 1.5);
}

TEST_F(PARAMETER_POOL_READS, TextsToTheClosingQuoteOrTheLineEnd) {
  SetPool(
      "a STR \"closed\" rest\nb STR \"open \\\" \nc STR \"back\\\nd STR half \"quoted\"\n"
      "e STR \"\"");
  PARAMETER_POOL pool(Path());
  const std::pair<const char*, const char*> expected[] = {
      {"a", "closed"}, {"b", "open \" "}, {"c", "back"}, {"d", "half \"quoted\""}, {"e", ""}};
  for (const auto& [key, text] : expected) {
    STRING value = "unset";
    pool.Read(STRING(key), value);
    EXPECT_STREQ(value.Text(), text) << key;
  }
}

TEST_F(PARAMETER_POOL_READS, LongLinesInPieces) {
  const std::string full_line = "#" + std::string(1023, '.');
  const std::string long_key(100, 'k');
  SetPool(full_line + "\nfirst INT_32 1\n" + full_line + "second INT_32 2\n" + "text STR " +
          std::string(1024, 'x') + "\n" + long_key + "tail INT_32 3\n");
  PARAMETER_POOL pool(Path());
  int number = 0;
  pool.Read("first", number);
  EXPECT_EQ(number, 1) << "a full line and its end are one line";
  pool.Read("second", number);
  EXPECT_EQ(number, 2) << "a piece of a longer line can hold a key";
  pool.Read((long_key + "another tail").c_str(), number);
  EXPECT_EQ(number, 3) << "100 characters of a key count";
  STRING text;
  pool.Read("text", text);
  EXPECT_EQ(text.Length(), 1024 - std::string_view("text STR ").size());
}

TEST_F(PARAMETER_POOL_READS, TheFirstOfEqualKeysAndNoneWithBlanksInFront) {
  SetPool(" indented INT_32 1\nkey INT_32 2\nkey INT_32 3\n");
  PARAMETER_POOL pool(Path());
  int number = 0;
  pool.Read("key", number);
  EXPECT_EQ(number, 2);
  EXPECT_FALSE(pool.Exists("indented"));
  EXPECT_FALSE(pool.Exists("ke"));
}

TEST_F(PARAMETER_POOL_READS, MissingKeysAreReportedAtTheErrorLevel) {
  SetPool("key INT_32 1\n");
  PARAMETER_POOL pool(Path());
  int number = 0;
  EXPECT_THROW(pool.Read("none", number), PARAMETER_KEY_NOT_FOUND);
  EXPECT_EQ(log_.Lines().back(), "ALARM : parameter pool: parameter key >> none << not found");
  pool.SetErrorLevel(LOGGING_LEVEL_T::INFO);
  EXPECT_THROW(pool.TypeOf("none"), PARAMETER_KEY_NOT_FOUND);
  EXPECT_EQ(log_.Lines().back(), "INFO  : parameter pool: parameter key >> none << not found");
  const std::size_t lines = log_.Lines().size();
  pool.SetErrorLevel(LOGGING_LEVEL_T::NO_MESSAGE);
  EXPECT_THROW(pool.Read("none", number), PARAMETER_KEY_NOT_FOUND);
  EXPECT_TRUE(pool.Exists("key"));
  pool.TypeOf("key");
  EXPECT_EQ(log_.Lines().size(), lines);
  pool.SetTraceLevel(LOGGING_LEVEL_T::INFO);
  pool.Read("key", number);
  EXPECT_EQ(log_.Lines().back(), std::string("INFO  : PP.Read ") + Path() + " key INT_32");
}

TEST_F(PARAMETER_POOL_READS, AMatrixOfTheSameRangesInPlace) {
  SetPool("m INT_32_M 1 1 2 1\n{\n{\n7\n}\n}\n");
  MATRIX<int> matrix = MatrixOf<int>(1, 2, 1, {0});
  int* const* const table = matrix.GetNumRecMatrix();
  PARAMETER_POOL(Path()).Read("m", matrix);
  EXPECT_EQ(table[1][2], 7);
}

TEST_F(PARAMETER_POOL_READS, OnlyFromAnOpenFile) {
  const std::string missing = (Directory() / "missing").string();
  EXPECT_THROW(PARAMETER_POOL{missing.c_str()}, CAN_NOT_OPEN_POOL);
  EXPECT_EQ(log_.Lines().back(), "ALARM : can not open parameter file " + missing);
  EXPECT_THROW(PARAMETER_POOL{Directory().c_str()}, CAN_NOT_OPEN_POOL);
  EXPECT_EQ(log_.Lines().back(),
            "ALARM : parameter file " + Directory().string() + " is a directory!");
  PARAMETER_POOL closed;
  EXPECT_EQ(log_.Lines().back(), "TRACE : init pool");
  EXPECT_STREQ(closed.FileName(), "xxx.dat");
  int number = 0;
  EXPECT_THROW(closed.Read("key", number), ERROR_ALGORITHM);
  EXPECT_EQ(log_.Lines().back(), "ALARM : No file pointer given for parameter pool");
}

}  // namespace
