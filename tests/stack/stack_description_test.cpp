#include "description/stack_description.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "basics/stack_error.h"
#include "support/temporary_directory.h"

namespace {

namespace fs = std::filesystem;
using JSON = nlohmann::json;

class StackDescription : public testing::Test {
 protected:
  STACK_DESCRIPTION Read(const std::string& text) const {
    WriteFile(Path("tile.json"), text);
    return ReadStackDescription(Path("tile.json"));
  }

  /// What is wrong with a description, without the file's name.
  std::string Complaint(const std::string& text) const {
    try {
      Read(text);
    } catch (const STACK_ERROR& error) {
      const std::string complaint = error.what();
      return complaint.substr(complaint.find(".json:") + std::string(".json:").size() + 1);
    }
    return "none";
  }

  std::string Path(const std::string& name) const { return folder_.File(name); }

  /// A description of two slaves without faults.
  JSON good = JSON::parse(R"({
      "common": {"INSAR_PARAMETER_POOL": "{name}/insar.pool", "log_pp": "log.pool",
                 "SLAVE_PARAMETER_POOL": "{name}/slave.pool", "SlaveIn": "/data/{name}/{name}.ras",
                 "SlaveOut": "out/{name}.ras", "KERNEL_TYPE": "cubic_convolution",
                 "KERNEL_COEFFICIENT": 2.5, "KERNEL_LENGTH": 8, "KERNEL_SUBPIX_POS": 64},
      "slaves": [{"name": "a"}, {"name": "b-2.x", "KERNEL_LENGTH": 16, "MaskOut": "out/../m.ras"}]})");

 private:
  TEMPORARY_DIRECTORY folder_;
};

TEST_F(StackDescription, GivesEachSlaveItsParameters) {
  const STACK_DESCRIPTION stack = Read(good.dump());
  EXPECT_EQ(stack.name, "tile");
  EXPECT_EQ(stack.directory, Path("tile.stack"));
  ASSERT_EQ(stack.slaves.size(), 2U);
  auto parameters = stack.slaves[0].parameters;
  EXPECT_EQ(parameters["INSAR_PARAMETER_POOL"], Path("a/insar.pool"));
  EXPECT_EQ(parameters["SlaveIn"], "/data/a/a.ras");
  EXPECT_EQ(parameters["SlaveOut"], fs::weakly_canonical(Path("out/a.ras")));
  EXPECT_EQ(parameters["KERNEL_COEFFICIENT"], "2.5");
  EXPECT_EQ(parameters.size(), good["common"].size());
  parameters = stack.slaves[1].parameters;
  EXPECT_EQ(parameters["KERNEL_LENGTH"], "16");
  EXPECT_EQ(parameters["MaskOut"], fs::weakly_canonical(Path("m.ras")));

  good.update({{"name", "other"}, {"directory", "runs/x/"}});
  EXPECT_EQ(Read(good.dump()).name, "other");
  EXPECT_EQ(STACK_DESCRIPTION(Read(good.dump())).directory, Path("runs/x/"));
}

TEST_F(StackDescription, TellsAllThatIsWrong) {
  good["slave"] = 1;
  good["common"]["SlaveIN"] = "x";
  good["common"]["lsl"] = "INFO";
  good["common"].erase("log_pp");
  good["slaves"][0].update({{"KERNEL_LENGTH", true}, {"MaskIn", "two words"}, {"pid", "x"}});
  good["slaves"][1].update({{"MAPPING_FORMAT", ""}, {"KERNEL_LENGTH", "abc"}, {"n_lines", 1.5}});
  good["slaves"].push_back({{"name", "a"}, {"log_pp", "l\nog_pp"}});
  good["slaves"].push_back({{"name", "../b"}, {"log_pp", std::string(2000, 'x')}});
  const std::string complaint = Complaint(good.dump());
  for (const char* line :
       {"unknown entry \"slave\"", "a: SlaveIN is no parameter", "a: lsl is no parameter",
        "a: pid is no parameter", "a: log_pp is missing",
        "a: the value of KERNEL_LENGTH is neither a text nor a number",
        "a: the value of MaskIn is empty, too long or holds blanks",
        "b-2.x: the value of MAPPING_FORMAT is empty",
        "b-2.x: KERNEL_LENGTH \"abc\" is no whole number and counts as 0",
        "b-2.x: n_lines \"1.5\" is no whole number and counts as 1",
        "a: the value of log_pp is empty, too long", "../b: the value of log_pp is empty, too long",
        "two slaves have the name a", "a slave's name has 1 to 100 letters"}) {
    EXPECT_NE(complaint.find(line), std::string::npos) << line << " not in:\n" << complaint;
  }
}

TEST_F(StackDescription, RefusesWhatIsNone) {
  EXPECT_NE(Complaint(R"({"slaves": [)").find("parse error"), std::string::npos);
  EXPECT_EQ(Complaint("[]"), "a description is a JSON object");
  EXPECT_EQ(Complaint("{}"), "\"slaves\" must be a list of at least one slave");
  EXPECT_EQ(Complaint(R"({"slaves": []})"), "\"slaves\" must be a list of at least one slave");
  EXPECT_EQ(Complaint(R"({"slaves": [{"name": 1}]})"),
            "every slave is an object with the text \"name\"");
  EXPECT_EQ(Complaint(R"({"slaves": [{"name": "a"}], "common": []})"),
            "\"common\" must be an object");
  EXPECT_EQ(Complaint(R"({"slaves": [{"name": "a"}], "name": 1})"),
            "\"name\" and \"directory\" must be texts");
  EXPECT_EQ(Complaint(R"({"slaves": [{"name": "a", "name": "b"}]})"),
            "given twice in one object: name");
  EXPECT_THROW(ReadStackDescription(Path("nothing.json")), STACK_ERROR);
}

TEST_F(StackDescription, RefusesOutputsThatClash) {
  const auto with = [&](const JSON& values) {
    JSON description = good;
    description["slaves"][1].update(values);
    return Complaint(description.dump());
  };
  const std::string out = fs::weakly_canonical(Path("out/a.ras"));
  fs::create_directory(Path("out"));
  EXPECT_EQ(with({{"SlaveOut", "out/../out/a.ras"}}).find("b-2.x: " + out + " is an output of a"),
            0U);
  EXPECT_EQ(with({{"MaskOut", "out/a.ras.partial"}}),
            "b-2.x: " + out + ".partial is an output of a too");
  EXPECT_EQ(with({{"MaskOut", "out/b-2.x.ras"}}).find("b-2.x: "), 0U);
  EXPECT_EQ(with({{"MaskOut", "a/slave.pool"}}),
            "b-2.x: output " + Path("a/slave.pool") + " is an input of the stack");

  // The same, through links.
  WriteFile(Path("image"), "");
  fs::create_hard_link(Path("image"), Path("hard"));
  fs::create_symlink(Path("image"), Path("soft"));
  for (const char* link : {"hard", "soft"}) {
    EXPECT_NE(with({{"SlaveIn", "image"}, {"MaskOut", link}}).find("is an input of the stack"),
              std::string::npos)
        << link;
  }
  EXPECT_EQ(with({{"SlaveIn", "hard"}, {"MaskOut", "image.ras"}}), "none");
}

}  // namespace
