#include "pool/parameter_pool.h"

#include <functional>

#include "base/data_type.h"
#include "base/vector.h"
#include "pool/pool_test.h"
#include "pool/pool_values.h"

namespace {

using PARAMETER_POOL_READS = POOL_TEST;

/// An entry of the key "key" and whether a pool's reading of it yields what it should.
struct READ_CASE {
  std::string entry;
  PoolValueType type;
  std::function<bool(PARAMETER_POOL&)> reads_expected;
};

template <class T>
READ_CASE Case(const char* entry, const T& expected) {
  const auto reads_expected = [expected](PARAMETER_POOL& pool) {
    T value{};
    pool.Read("key", value);
    return Same(value, expected);
  };
  return {entry, pool_type_of<T>, reads_expected};
}

const std::vector<READ_CASE>& CasesOfAllTypes() {
  using BYT = unsigned char;
  static const std::vector<READ_CASE> cases = {
      Case("BOL FALSE", false),
      Case("BYT 255", BYT{255}),
      Case("INT_8 -128", char{-128}),
      Case("INT_16 -32768", short{-32768}),
      Case("INT_32 2147483647", 2147483647),
      Case("INT_64 -9223372036854775807", -9223372036854775807LL),
      Case("FLT_6 1.5e3 comment", 1500.0F),
      Case("FLT_15 -2.5E-3", -0.0025),
      Case("STR  two  words ", STRING("two  words ")),
      Case("CPL_6 1 -2.5", COMPLEX<float>{1.0F, -2.5F}),
      Case("CPL_15 1E300 0", COMPLEX<double>{1e300, 0.0}),
      Case("INT_32_INT_32 1 -2", POINT<int>(1, -2)),
      Case("INT_64_INT_64 4294967296 0", POINT<long long>(4294967296, 0)),
      Case("FLT_6_FLT_6 0.5 1", POINT<float>(0.5F, 1.0F)),
      Case("FLT_15_FLT_15\t0.5\t1e99", POINT<double>(0.5, 1e99)),
      Case("IDX_INT_32 7 -1", INDEX<int, int>(7, -1)),
      Case("IDX_FLT_6 7 0.25", INDEX<int, float>(7, 0.25F)),
      Case("IDX_FLT_15 -7 1e-300", INDEX<int, double>(-7, 1e-300)),
      Case("STR_STR \"a \\\" b\" : last words", TUPLE<STRING>("a \" b", "last words")),
      Case("BOL_V 0 2\n{\nTRUE\nFALSE\n}", Vector<bool>({true, false})),
      Case("BYT_V 0 1\n {\n   9\n }", Vector<BYT>({9})),
      Case("INT_8_V 0 1\n{\n-9\n}", Vector<char>({-9})),
      Case("INT_16_V 0 2\n{\n-9\n1\n}", Vector<short>({-9, 1})),
      Case("INT_32_V 2 2\n{\n5\n6\n}", Vector<int>({0, 0, 5, 6})),
      Case("INT_64_V 0 1\n{\n5000000000\n}", Vector<long long>({5000000000})),
      Case("FLT_6_V 0 1\n{\n0.5 rest\n}", Vector<float>({0.5F})),
      Case("FLT_15_V 1 1\n{\n0.1\n}", Vector<double>({0.0, 0.1})),
      Case("CPL_6_V 0 1\n{\n1 2\n}", Vector<COMPLEX<float>>({{1.0F, 2.0F}})),
      Case("CPL_15_V 0 1\n{\n1 2\n}", Vector<COMPLEX<double>>({{1.0, 2.0}})),
      Case("STR_V 0 3\n{\n a b\n\"c \\\\\" d\n}}\n}", Vector<STRING>({"a b", "c \\", "}}"})),
      Case("INT_32_INT_32_V 0 1\n{\n1 2\n}", Vector<POINT<int>>({{1, 2}})),
      Case("INT_64_INT_64_V 0 1\n{\n1 2\n}", Vector<POINT<long long>>({{1, 2}})),
      Case("FLT_6_FLT_6_V 0 1\n{\n1 2\n}", Vector<POINT<float>>({{1.0F, 2.0F}})),
      Case("FLT_15_FLT_15_V 0 1\n{\n1 2\n}", Vector<POINT<double>>({{1.0, 2.0}})),
      Case("IDX_INT_32_V 0 1\n{\n1 2\n}", Vector<INDEX<int, int>>({{1, 2}})),
      Case("IDX_FLT_6_V 0 1\n{\n1 2\n}", Vector<INDEX<int, float>>({{1, 2.0F}})),
      Case("IDX_FLT_15_V 0 1\n{\n1 2\n}", Vector<INDEX<int, double>>({{1, 2.0}})),
      Case("STR_STR_V 0 1\n{\n\"a\" - \"b\"\n}", Vector<TUPLE<STRING>>({{"a", "b"}})),
      Case("BYT_M 0 1 0 1\n{\n{\n1\n}\n}", Matrix<BYT>(0, 0, {{1}})),
      Case("INT_8_M 0 1 0 1\n{\n{\n-1\n}\n}", Matrix<char>(0, 0, {{-1}})),
      Case("INT_16_M 0 1 0 1\n{\n{\n-1\n}\n}", Matrix<short>(0, 0, {{-1}})),
      Case("INT_32_M 1 2 3 3\n{\n{\n1\n2\n3\n}\n{\n4\n5\n6\n}\n}",
           Matrix<int>(1, 3, {{1, 2, 3}, {4, 5, 6}})),
      Case("FLT_6_M 0 1 0 1\n{\n{\n.5\n}\n}", Matrix<float>(0, 0, {{0.5F}})),
      Case("FLT_15_M 0 1 0 2\n{\n{\n1e9\n2\n}\n}", Matrix<double>(0, 0, {{1e9, 2.0}})),
      Case("CPL_6_M 0 1 0 1\n{\n{\n1 2\n}\n}", Matrix<COMPLEX<float>>(0, 0, {{{1.0F, 2.0F}}})),
      Case("CPL_15_M 0 1 0 1\n{\n{\n1 2\n}\n}", Matrix<COMPLEX<double>>(0, 0, {{{1.0, 2.0}}})),
      Case("STR_M 0 1 0 2\n{\n{\n\"a\"\nb c\n}\n}", Matrix<STRING>(0, 0, {{"a", "b c"}}))};
  return cases;
}

std::string WithLineEnd(std::string_view text, std::string_view line_end) {
  std::string result;
  for (const char character : text) {
    result += character == '\n' ? std::string(line_end) : std::string(1, character);
  }
  return result;
}

TEST_F(PARAMETER_POOL_READS, EveryTypeWithAnyLineEnd) {
  for (const char* line_end : {"\n", "\r\n", "\r"}) {
    for (const READ_CASE& test : CasesOfAllTypes()) {
      SCOPED_TRACE(test.entry);
      SetPool(
          WithLineEnd("# key INT_32 1\n\n key BOL TRUE\nkey2 STR x\nkey " + test.entry, line_end));
      PARAMETER_POOL pool(Path());
      EXPECT_TRUE(test.reads_expected(pool));
      EXPECT_TRUE(
          log_.Has(std::string("TRACE : PP.Read ") + Path() + " key " + PoolTypeWord(test.type)))
          << log_.Text();
    }
  }
}

TEST_F(PARAMETER_POOL_READS, NothingAsAnotherType) {
  const READ_CASE* other = &CasesOfAllTypes().back();
  for (const READ_CASE& test : CasesOfAllTypes()) {
    SCOPED_TRACE(test.entry);
    SetPool("key " + test.entry);
    PARAMETER_POOL pool(Path());
    EXPECT_EQ(pool.TypeOf("key"), test.type);
    EXPECT_THROW(other->reads_expected(pool), WRONG_PARAMETER_TYPE);
    EXPECT_TRUE(log_.Has(std::string("ALARM : parameter pool: parameter key >> key << type ") +
                         PoolTypeWord(other->type) + " expected"));
    other = &test;
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
constexpr auto TooLarge = Refused<T, PARAMETER_OUT_OF_BOUNDS>;
template <class T>
constexpr auto Broken = Refused<T, ERROR_PARAMETER_POOL>;

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
      Invalid<bool>("BOL true", " << read value is : true but TRUE or FALSE are expected"),
      Invalid<BYT>("BYT 1.5E3", " << read value is : 1.5E3 BYT (no floating) value expected"),
      Invalid<char>("INT_8 1.E", " << read value is : 1.E BYT (no floating) value expected"),
      Invalid<short>("INT_16 E.", " << read value is : E. INT_8 (no floating) value expected"),
      Invalid<int>("INT_32 1.5E3", " << read value is : 1.5E3 INT_16 (no floating) value expected"),
      Invalid<long long>("INT_64 .E", " << read value is : .E INT_32 (no floating) value expected"),
      Invalid<BYT>("BYT 1-", " << read value is : 1- BYT (unsigned) value expected"),
      Invalid<BYT>("BYT 1x", " << read value is : 1x BYT (no additional character) value expected"),
      Invalid<char>("INT_8 1x",
                    " << read value is : 1x INT_8 (no additional character) value expected"),
      Invalid<short>("INT_16 1.5",
                     " << read value is : 1.5 INT_8 (no additional character) value expected"),
      Invalid<int>("INT_32 1e3",
                   " << read value is : 1e3 INT_32 (no additional character) value expected"),
      Invalid<long long>("INT_64 1,0",
                         " << read value is : 1,0 INT_64 (no additional character) value expected"),
      TooLarge<BYT>("BYT 256", " << read value is : 256 (value is out of range) BYT expected"),
      TooLarge<BYT>("BYT 4294967297",
                    " << read value is : 4294967297 (value is out of range) BYT expected"),
      TooLarge<char>("INT_8 128", " << read value is : 128 (value is out of range) INT_8 expected"),
      TooLarge<short>("INT_16 -32769",
                      " << read value is : -32769 (value is out of range) INT_16 expected"),
      TooLarge<float>("FLT_6 3.40282347E38",
                      " << read value is : 3.40282347E38 (value is out of range) FLT_6 expected"),
      TooLarge<double>("FLT_15 -1e309",
                       " << read value is : -1e309 (value is out of range) FLT_15 expected"),
      TooLarge<double>("FLT_15 inf",
                       " << read value is : inf (value is out of range) FLT_15 expected"),
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
      "half FLT_15 1.5e\nnan FLT_15 nan\nlargest FLT_6 3.4028234663852886e38\n");
  PARAMETER_POOL pool(Path());
  int number = -1;
  pool.Read("signs", number);
  EXPECT_EQ(number, 0);
  pool.Read("mixed", number);
  EXPECT_EQ(number, 5);
  pool.Read("wide", number);
  EXPECT_EQ(number, 2);
  float single = -1.0F;
  pool.Read("word", single);
  EXPECT_EQ(single, 0.0F);
  pool.Read("largest", single);
  EXPECT_EQ(single, std::numeric_limits<float>::max());
  double real = -1.0;
  pool.Read("half", real);
  EXPECT_EQ(real, 1.5);
  pool.Read("nan", real);
  EXPECT_TRUE(std::isnan(real));
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
  SetPool(" indented INT_32 1\n\ttabbed INT_32 1\nKEY INT_32 1\nkey INT_32 2\nkey INT_32 3\n");
  PARAMETER_POOL pool(Path());
  int number = 0;
  pool.Read("key", number);
  EXPECT_EQ(number, 2);
  EXPECT_FALSE(pool.Exists("indented"));
  EXPECT_FALSE(pool.Exists("tabbed"));
  EXPECT_FALSE(pool.Exists("ke"));
  EXPECT_TRUE(pool.Exists("KEY"));
}

TEST_F(PARAMETER_POOL_READS, AnUnknownTypeAsUnknown) {
  SetPool("key FLT_7 1\n");
  PARAMETER_POOL pool(Path());
  EXPECT_EQ(pool.TypeOf("key"), PoolValueType::UNKNOWN);
  float value = 0.0F;
  EXPECT_THROW(pool.Read("key", value), WRONG_PARAMETER_TYPE);
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

TEST_F(PARAMETER_POOL_READS, VectorsOfBothKindsAndMatricesInPlace) {
  SetPool("v FLT_15_V 0 1\n{\n0.5\n}\nm INT_32_M 1 1 2 1\n{\n{\n7\n}\n}\n");
  PARAMETER_POOL pool(Path());
  VECTOR<double> vector;
  pool.Read("v", vector);
  EXPECT_TRUE(Same<double>(vector, Vector({0.5})));
  MATRIX<int> matrix;
  matrix.Create(RANGE<int>(1, 1), RANGE<int>(2, 1));
  int* const* const table = matrix.GetNumRecMatrix();
  pool.Read("m", matrix);
  EXPECT_EQ(table[1][2], 7) << "a matrix of the same ranges keeps its storage";
}

TEST_F(PARAMETER_POOL_READS, EnumerationsByName) {
  BASIC::TYPES::DataType type;
  const std::string some_name = BASIC::TYPES::DataType(3).Name();
  SetPool("good STR \"" + some_name + "\"\nbad STR none\n");
  PARAMETER_POOL pool(Path());
  pool.ReadEnumeration("good", type);
  EXPECT_EQ(type.Id(), 3);
  EXPECT_THROW(pool.ReadEnumeration("bad", type), BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE);
  EXPECT_EQ(type.Id(), 3);
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
