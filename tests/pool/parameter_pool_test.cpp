#include "pool/parameter_pool.h"

#include <regex>

#include "pool/pool_test.h"
#include "pool/pool_values.h"

namespace {

class PARAMETER_POOL_READS : public POOL_TEST {
 protected:
  /// This text as a single value, as both elements of a vector, and in a matrix of one row.
  template <class T>
  void ExpectAll(const std::string& type, const std::string& text, const T& value) {
    Expect(type, text, value);
    const std::string elements = "{\n  " + text + "\n" + text + "\n}\n";
    Expect(type + "_V", "1 2\n" + elements, VectorOf<T>({T(), value, value}));
    if constexpr (POOL_VALUE<MATRIX<T>>) {
      Expect(type + "_M", "1 1 3 2\n{\n" + elements + "}", MatrixOf<T>(1, 3, 2, {value, value}));
    }
  }

  /// An entry of this type with any line end, which is nothing of any other type.
  template <class T>
  void Expect(const std::string& type, const std::string& entry, const T& expected) {
    const std::string text = "# key INT_32 1\n\n key BOL TRUE\nkey2 STR x\nkey " + type + " ";
    for (const std::string line_end : {"\n", "\r\n", "\r"}) {
      SCOPED_TRACE(type);
      SetPool(std::regex_replace(text + entry, std::regex("\n"), line_end));
      PARAMETER_POOL pool(Path());
      T value{};
      pool.Read("key", value);
      EXPECT_EQ(Bytes(value), Bytes(expected));
      EXPECT_EQ(log_.Lines().back(), std::string("TRACE : PP.Read ") + Path() + " key " + type);
      EXPECT_EQ(pool.TypeOf("key"), pool_type_of<T>);
      ARRAY<bool> other;
      if (type != "BOL_V") {
        EXPECT_THROW(pool.Read("key", other), WRONG_PARAMETER_TYPE);
        EXPECT_EQ(log_.Lines().back(),
                  "ALARM : parameter pool: parameter key >> key << type BOL_V expected");
      }
    }
  }
};

TEST_F(PARAMETER_POOL_READS, EveryTypeWithAnyLineEndAndNothingAsAnotherType) {
  ExpectAll<bool>("BOL", "TRUE", true);
  ExpectAll<unsigned char>("BYT", "255", 255);
  ExpectAll<char>("INT_8", "-128", -128);
  ExpectAll<short>("INT_16", "-32768", -32768);
  ExpectAll<int>("INT_32", "2147483647", 2147483647);
  ExpectAll<long long>("INT_64", "-9223372036854775807", -9223372036854775807LL);
  ExpectAll<float>("FLT_6", "1.5e3 comment", 1500.0F);
  ExpectAll<double>("FLT_15", "-2.5E-3", -0.0025);
  ExpectAll<STRING>("STR", "two  words ", "two  words ");
  ExpectAll<COMPLEX<float>>("CPL_6", "1 -2.5", {1.0F, -2.5F});
  ExpectAll<COMPLEX<double>>("CPL_15", "1E300 0", {1e300, 0.0});
  ExpectAll<POINT<int>>("INT_32_INT_32", "1 -2", {1, -2});
  ExpectAll<POINT<long long>>("INT_64_INT_64", "4294967296 0", {4294967296, 0});
  ExpectAll<POINT<float>>("FLT_6_FLT_6", "0.5 1", {0.5F, 1.0F});
  ExpectAll<POINT<double>>("FLT_15_FLT_15", "0.5\t1e99", {0.5, 1e99});
  ExpectAll<INDEX<int, int>>("IDX_INT_32", "7 -1", {7, -1});
  ExpectAll<INDEX<int, float>>("IDX_FLT_6", "7 0.25", {7, 0.25F});
  ExpectAll<INDEX<int, double>>("IDX_FLT_15", "-7 1e-300", {-7, 1e-300});
  ExpectAll<TUPLE<STRING>>("STR_STR", "\"a \\\" b\" : last words", {"a \" b", "last words"});
}

class PARAMETER_POOL_REFUSES : public POOL_TEST {
 protected:
  /// An entry that can not be read as T, and what is logged behind its key.
  template <class T, class ERROR = ERROR_PARAMETER_POOL>
  void Broken(const std::string& entry, const std::string& reason) {
    SCOPED_TRACE(entry);
    SetPool("key " + entry);
    PARAMETER_POOL pool(Path());
    try {
      T value{};
      pool.Read("key", value);
      ADD_FAILURE() << "was read";
    } catch (const ERROR_PARAMETER_POOL& error) {
      EXPECT_STREQ(error.what(), ERROR().what());
    }
    EXPECT_EQ(log_.Lines().back(), "ALARM : parameter pool: parameter key >> key << " + reason);
  }
  template <class T>
  void Invalid(const std::string& entry, const std::string& reason) {
    Broken<T, INVALID_PARAMETER_VALUE>(entry, reason);
  }
  /// The same for a single word, which the reason cites.
  template <class T, class ERROR = INVALID_PARAMETER_VALUE>
  void BadWord(const std::string& type, const std::string& word, const std::string& reason) {
    Broken<T, ERROR>(type + " " + word, "read value is : " + word + " " + reason);
  }
  template <class T>
  void TooLarge(const std::string& type, const std::string& word) {
    BadWord<T, PARAMETER_OUT_OF_BOUNDS>(type, word,
                                        "(value is out of range) " + type + " expected");
  }
};

TEST_F(PARAMETER_POOL_REFUSES, BadScalars) {
  using BYT = unsigned char;
  Broken<int>("", "no type information found");
  Invalid<int>("INT_32", "no parameter value in file");
  Invalid<STRING>("STR  ", "no parameter value in file");
  BadWord<bool>("BOL", "true", "but TRUE or FALSE are expected");
  BadWord<BYT>("BYT", "1.5E3", "BYT (no floating) value expected");
  BadWord<char>("INT_8", "1.E", "BYT (no floating) value expected");
  BadWord<short>("INT_16", "E.", "INT_8 (no floating) value expected");
  BadWord<int>("INT_32", "1.5E3", "INT_16 (no floating) value expected");
  BadWord<long long>("INT_64", ".E", "INT_32 (no floating) value expected");
  BadWord<BYT>("BYT", "1-", "BYT (unsigned) value expected");
  BadWord<BYT>("BYT", "1x", "BYT (no additional character) value expected");
  BadWord<char>("INT_8", "1x", "INT_8 (no additional character) value expected");
  BadWord<short>("INT_16", "1.5", "INT_8 (no additional character) value expected");
  BadWord<int>("INT_32", "1e3", "INT_32 (no additional character) value expected");
  BadWord<long long>("INT_64", "1,0", "INT_64 (no additional character) value expected");
  TooLarge<BYT>("BYT", "4294967297");
  TooLarge<char>("INT_8", "128");
  TooLarge<short>("INT_16", "-32769");
  TooLarge<float>("FLT_6", "3.40282347E38");
  TooLarge<double>("FLT_15", "-1e309");
  TooLarge<double>("FLT_15", "inf");
  Broken<POINT<double>>("FLT_15_FLT_15 1", "no second coordinate");
  Broken<INDEX<int, int>>("IDX_INT_32 1", "no value");
  Invalid<COMPLEX<double>>("CPL_15 1", "no imaginary part in CPL_6");
  for (const char* pair : {"\"a\"", "\"a\" :", "a : b"}) {
    Invalid<TUPLE<STRING>>(std::string("STR_STR ") + pair,
                           "no correct string tuple format (missing >>\"<< ?)");
  }
}

TEST_F(PARAMETER_POOL_REFUSES, BadRanges) {
  const char* vector = "no correct range for VECTOR or MATRIX";
  const char* matrix = "no correct range for MATRIX";
  // The last one would put gigabytes of default elements in front of one element.
  for (const char* range : {"0\n", "-1 1\n", "0 -1\n", "2147483647 1\n", "2147483646 1\n"}) {
    Invalid<ARRAY<int>>(std::string("INT_32_V ") + range + "{\n1\n}\n", vector);
  }
  Invalid<MATRIX<int>>("INT_32_M 0 1\n{\n{\n1\n}\n}\n", matrix);
  Invalid<MATRIX<int>>("INT_32_M 0 1 0\n{\n{\n1\n}\n}\n", vector);
  Invalid<MATRIX<int>>("INT_32_M 0 1 0 -1\n{\n{\n1\n}\n}\n", vector);
  // Counts of gigabytes, which must not be allocated for a few lines.
  Broken<ARRAY<unsigned char>>("BYT_V 0 2147483647\n{\n1\n",
                               "no value for index 1 due to end of file");
  Broken<MATRIX<double>>("FLT_15_M 0 2147483647 0 2147483647\n{\n{\n1\n",
                         "no value for index 1 due to end of file");
  Broken<MATRIX<double>>("FLT_15_M 0 2147483647 0 0\n{\n{\n}\n", "no { due to end of file");
}

TEST_F(PARAMETER_POOL_REFUSES, BadBlocks) {
  Broken<ARRAY<int>>("INT_32_V 0 1", "no { due to end of file");
  Broken<ARRAY<int>>("INT_32_V 0 1\n1\n}", "{ expected instead of 1 for INT_32_V");
  Broken<ARRAY<int>>("INT_32_V 4 3\n{\n1\n2", "no value for index 6 due to end of file");
  Broken<ARRAY<int>>("INT_32_V 0 1\n{\n1", "no } due to end of file");
  Broken<ARRAY<int>>("INT_32_V 0 1\n{\n1\n2\n}", "} expected instead of 2 for INT_32_V");
  Broken<ARRAY<int>>("INT_32_V 0 1\n{\n1\n\n}", "no } at end of INT_32_V");
  Invalid<ARRAY<int>>("INT_32_V 0 2\n{\n1\n\n}", "no parameter value in file");
  Broken<ARRAY<float>>("FLT_6_V 0 1\nx", "{ expected for FLT_4_V");
  Broken<ARRAY<float>>("FLT_6_V 0 1\n{\n1\nx", "no } at end of FLT_4_V");
  Broken<ARRAY<double>>("FLT_15_V 0 1\nx", "{ expected for FLT_8_V");
  Broken<ARRAY<double>>("FLT_15_V 0 1\n{\n1\nx", "no } at end of FLT_8_V");
  Broken<ARRAY<POINT<float>>>("FLT_6_FLT_6_V 0 1\nx",
                              "{ expected instead of x for INT_FLT_6_FLT_6_V");
  Broken<ARRAY<POINT<double>>>("FLT_15_FLT_15_V 0 1\nx", "{ expected for INT_FLT_15_FLT_15_V");
  Broken<ARRAY<POINT<double>>>("FLT_15_FLT_15_V 0 1\n{\n1 2\nx",
                               "} expected instead of x for INT_FLT_15_FLT__V");
  Broken<MATRIX<STRING>>("STR_M 0 1 0 1\nx", "{ expected instead of x for STR_15_M");
  Broken<MATRIX<double>>("FLT_15_M 0 1 0 1\n{\n{\n1\nx", "no } at end of FLT_8_V");
  Broken<MATRIX<double>>("FLT_15_M 0 1 0 1\n{\n{\n1\n}\nx", "} expected instead of x for FLT_15_M");
  Broken<ARRAY<STRING>>("STR_V 0 2\n{\na\n}\nb\n}", "STR_V length does not match entry count");
  Broken<ARRAY<TUPLE<STRING>>>("STR_STR_V 0 1\n{\n }",
                               "STR_STR_V length does not match entry count");
}

TEST_F(PARAMETER_POOL_READS, NumbersAsTheyScanFromTheFirstOfEqualKeys) {
  SetPool(
      " signs INT_32 7\nsigns INT_32 +-5\nsigns INT_32 8\nmixed INT_32 5-3\n"
      "wide INT_32 4294967298\nword FLT_6 word\nhalf FLT_6 1.5e\n"
      "largest FLT_6 3.4028234663852886e38\n indented INT_32 1\n");
  PARAMETER_POOL pool(Path());
  for (const auto& [key, expected] : {std::pair{"signs", 0}, {"mixed", 5}, {"wide", 2}}) {
    int number = -1;
    pool.Read(STRING(key), number);
    EXPECT_EQ(number, expected) << key;
  }
  constexpr float largest = std::numeric_limits<float>::max();
  for (const auto& [key, expected] :
       {std::pair{"word", 0.0F}, {"half", 1.5F}, {"largest", largest}}) {
    float number = -1.0F;
    pool.Read(STRING(key), number);
    EXPECT_EQ(number, expected) << key;
  }
  EXPECT_FALSE(pool.Exists("indented"));
  EXPECT_FALSE(pool.Exists("sign"));
}

TEST_F(PARAMETER_POOL_READS, TextsToTheClosingQuoteOrTheLineEnd) {
  SetPool("a STR \"closed\" rest\nb STR \"open \\\" \nc STR \"back\\\nd STR half \"quoted\"");
  PARAMETER_POOL pool(Path());
  for (const auto& [key, text] :
       {std::pair{"a", "closed"}, {"b", "open \" "}, {"c", "back"}, {"d", "half \"quoted\""}}) {
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

TEST_F(PARAMETER_POOL_READS, MissingKeysAreReportedAtTheErrorLevel) {
  SetPool("key INT_32 1\n");
  PARAMETER_POOL pool(Path());
  int number = 0;
  EXPECT_THROW(pool.Read("none", number), PARAMETER_KEY_NOT_FOUND);
  EXPECT_EQ(log_.Lines().back(), "ALARM : parameter pool: parameter key >> none << not found");
  pool.SetErrorLevel(LOGGING_LEVEL_T::INFO);
  EXPECT_THROW(pool.Read("none", number), PARAMETER_KEY_NOT_FOUND);
  EXPECT_EQ(log_.Lines().back(), "INFO  : parameter pool: parameter key >> none << not found");
  const std::size_t lines = log_.Lines().size();
  EXPECT_THROW(pool.TypeOf("none"), PARAMETER_KEY_NOT_FOUND);
  pool.SetErrorLevel(LOGGING_LEVEL_T::NO_MESSAGE);
  EXPECT_THROW(pool.Read("none", number), PARAMETER_KEY_NOT_FOUND);
  EXPECT_EQ(log_.Lines().size(), lines);
  pool.SetTraceLevel(LOGGING_LEVEL_T::INFO);
  pool.Read("key", number);
  EXPECT_EQ(log_.Lines().back(), std::string("INFO  : PP.Read ") + Path() + " key INT_32");
}

TEST_F(PARAMETER_POOL_READS, OnlyFromAnOpenFile) {
  EXPECT_THROW(PARAMETER_POOL{Directory().c_str()}, CAN_NOT_OPEN_POOL);
  PARAMETER_POOL closed;
  EXPECT_EQ(log_.Lines().back(), "TRACE : init pool");
  EXPECT_STREQ(closed.FileName(), "xxx.dat");
  int number = 0;
  EXPECT_THROW(closed.Read("key", number), ERROR_ALGORITHM);
  EXPECT_EQ(log_.Lines().back(), "ALARM : No file pointer given for parameter pool");
}

}  // namespace
