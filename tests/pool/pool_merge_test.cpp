#include "pool/pool_merge.h"

#include <fcntl.h>

#include <random>

#include "pool/pool_contents.h"
#include "pool/pool_test.h"

namespace {

constexpr const char* entry = "k                               INT_32          2\n\n";
constexpr const char* other_entry = "new                             STR             \"n\"\n\n";

class POOL_MERGE : public POOL_TEST {
 protected:
  /// What the pool of this text becomes when the entries "k" (and "new") are written.
  std::string Merged(std::string_view text, bool with_new = false) {
    PARAMETER_POOL_LIST items;
    items.Add(PARAMETER_POOL_ITEM("k", 2, {}));
    if (with_new) {
      items.Add(PARAMETER_POOL_ITEM("new", STRING("n"), {}));
    }
    return MergedWith(text, items);
  }

  std::string MergedWith(std::string_view text, const PARAMETER_POOL_LIST& items) {
    SetPool(text);
    return MergeIntoPool(ReadPoolLines(POOL_FILE(Path(), O_RDONLY)), items);
  }

  /// Merging replaces the part between the other two by the entry and keeps those.
  void ExpectReplaced(const std::string& before, const std::string& old_entry,
                      const std::string& behind) {
    EXPECT_EQ(Merged(before + old_entry + behind), before + entry + behind);
  }
};

TEST_F(POOL_MERGE, KeepsWhatFollowsADamagedEntry) {
  for (const char* behind : {
           "{\n1\n2\nnext INT_32 5\nlast STR_V 0 1\n{\nx\n}\n",
           "{\n1\n2\n",
           "{\n",
           "1\n2\n}\n",
       }) {
    SCOPED_TRACE(behind);
    ExpectReplaced("a INT_32 1\n", "k INT_32_V 0 3\n", behind);
  }
  ExpectReplaced("", "k INT_32_V 0 1\n{\n1\n}", "");
  ExpectReplaced("", "k INT_32 1\n", "{\n1\n}\n");
  ExpectReplaced("", "k INT_32 1\n", std::string(1100, ' ') + "long\n");
  ExpectReplaced("", "k INT_32 1\n", " indented\n# comment\n");
}

TEST_F(POOL_MERGE, DropsWholeBlocksAndNoLineOfOthers) {
  // Elements are what the key line counts, whatever they look like.
  ExpectReplaced("", "k STR_V 0 2\n{\nfoo STR bar\nplain text\n}\n", "last INT_32 1\n");
  ExpectReplaced("", "k STR_V 0 2\n{\n} }\n{\n}\n", "}\n");
  ExpectReplaced("", "k STR_M 0 1 0 2\n{\n{\na INT_32 1\n} x\n}\n}\n", "last INT_32 1\n");
  ExpectReplaced("", "k STR_V 0 3\n{\n1\n}\n", "last INT_32 1\n}\n");
  ExpectReplaced("keys STR_V 0 2\n{\nn\nk\n}\n", "k INT_32 1\n", "m STR_V 0 1\n{\nk\n}\n");
  EXPECT_TRUE(log_.Has(
      "WARN  : parameter pool: parameter key >> k << is still found first in line 4, in the block "
      "of keys"))
      << log_.Text();
  ExpectReplaced("keys STR_V 0 2\n{\nn\n", "k\n", "}\nm STR_V 0 1\n{\nk\n}\n");

  // A long line goes as a whole, but for what readers find in it.
  const std::string fill = "k STR " + std::string(1018, 'x');
  ExpectReplaced("", fill + std::string(3000, 'y') + " z\n", "last INT_32 1\n");
  ExpectReplaced("", fill, "next INT_32 5\n");
}

TEST_F(POOL_MERGE, AppendsBehindABlankLine) {
  const std::string both = std::string(entry) + other_entry;
  EXPECT_EQ(Merged("", true), both);
  EXPECT_EQ(Merged("a INT_32 1\n", true), "a INT_32 1\n\n" + both);
  EXPECT_EQ(Merged("a INT_32 1\n\n", true), "a INT_32 1\n\n" + both);
  EXPECT_EQ(Merged("a INT_32 1\r\n \r\n", true), "a INT_32 1\r\n \r\n" + both);
  EXPECT_EQ(Merged("a INT_32 1", true), "a INT_32 1\n\n" + both);
  EXPECT_EQ(Merged("k INT_32 1\na INT_32 1", true),
            entry + std::string("a INT_32 1\n\n") + other_entry);
}

TEST_F(POOL_MERGE, RefusesCommentsThatWouldNotReadBack) {
  const std::string longest(1023, 'c');
  PARAMETER_POOL_ITEM("k", 2, {longest.c_str(), (longest + "\r" + longest).c_str()});
  for (const std::string& text : {longest + "c", "a\n" + longest + "c", longest + "c\nb"}) {
    EXPECT_THROW(PARAMETER_POOL_ITEM("k", 2, {text.c_str()}), INVALID_PARAMETER_VALUE);
  }
}

TEST_F(POOL_MERGE, DoesNotRepeatCommentsThatStandThere) {
  PARAMETER_POOL_LIST items;
  items.Add(PARAMETER_POOL_ITEM("k", 2, {"note"}));
  const std::string once = MergedWith("a STR x#note\n", items);
  EXPECT_EQ(once, std::string("a STR x#note\n\n#note\n") + entry);
  EXPECT_EQ(MergedWith(once, items), once);
  EXPECT_EQ(MergedWith("a STR x#note\nk BOL TRUE\n", items),
            std::string("a STR x#note\n#note\n") + entry);
}

/// Pools put together at random from entries of the key and from other pieces, each of which
/// knows what becomes of it.
TEST_F(POOL_MERGE, KeepsAllButTheEntriesOfAnyPool) {
  std::string any_bytes = "#";
  for (int byte = 0; byte < 256; ++byte) {
    any_bytes += static_cast<char>(byte);
  }
  const std::vector<std::string> old_entries = {
      "k INT_32 1\n",
      "k\tFLT_15\t1.0 k\n\n\r\n \t \n",
      "k  STR \"k INT_32 1\"\r\n\r\n",
      "k INT_32_V 0 0\r\n {\r\n }\r\n\r\n",
      "k STR_V 0 4\n{\n{\n#\n k STR x\n \"}\"\n}\n\n\n",
      "k INT_32_M 0 1 0 1\n {\r\n {\r\n 1\r\n }\r\n }\r\n",
      "k FLT_15_M 0 2 0 1\n{\n{\n1\n}\n{\n2\n}\n}\n",
      "k FUTURE_M 0 1\n  {\n  {\n  }\n  }\n",
      "k\r",
  };
  const std::vector<std::string> others = {
      "# k INT_32 1\n",
      " k INT_32 1\r\n",
      "kk INT_32 1\n\n\n",
      "\tindented\n",
      "v STR_V 0 2\n{\n k\n\"k\"\n}\n",
      "m STR_M 0 1 0 1\r\n{\r\n{\r\nx\r\n}\r\n}\r\n",
      "damaged INT_32_V 0 99\n{\n1\n",
      "}\n",
      "no_type\r",
      "long STR " + std::string(5000, 'x') + " k INT_32 1\n",
      "#" + std::string(1023, '.') + "\n",
      any_bytes + "\n",
  };
  std::mt19937 random(7);
  const auto pick = [&](const std::vector<std::string>& pieces) {
    return pieces[random() % pieces.size()];
  };
  for (int round = 0; round < 300; ++round) {
    std::string before;
    std::string expected;
    for (auto piece = random() % 12 + 1; piece > 0; --piece) {
      const std::string kept = pick(others);
      const std::string replaced = pick(old_entries);
      before += kept + replaced;
      expected += kept + entry;
    }
    ASSERT_EQ(Merged(before), expected) << before;
  }
}

}  // namespace
