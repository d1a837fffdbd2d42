#pragma once

/// The built program on a database of its own in a temporary folder.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "support/places.h"
#include "support/run_program.h"

namespace talm_flow::test {

class TalmflowTest : public testing::Test {
 protected:
  using Words = std::vector<std::string>;

  [[nodiscard]] ProgramResult Talmflow(const Words& words, std::string_view input = {},
                                       std::vector<std::string> environment = {}) const {
    environment.emplace_back("USER=kim");
    environment.emplace_back("TALMFLOW_DB=");
    return RunProgram(ProgramPath(), words, folder_, input, environment);
  }

  /// What it prints when it succeeds without a complaint.
  std::string Succeed(const Words& words, std::string_view input = {}) const {
    const auto result = Talmflow(words, input);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    return result.out;
  }
  nlohmann::json SucceedJson(Words words) const {
    words.insert(words.begin(), "--json");
    return nlohmann::json::parse(Succeed(words));
  }

  /// What it prints when it loads a definition, whatever is wrong with that.
  std::string Load(const std::string& file, Words options = {}) const {
    options.insert(options.begin(), {"import", file, "--force"});
    const auto result = Talmflow(options);
    EXPECT_EQ(result.status, 0) << result.err;
    return result.out;
  }

  /// What it complains about when it fails with a status and prints nothing.
  std::string Fail(int status, const Words& words, std::string_view input = {}) const {
    const auto result = Talmflow(words, input);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, testing::StartsWith("talmflow: "));
    return result.err;
  }

  /// The rows that a query gives, as the rpc shows them.
  nlohmann::json Rows(const std::string& query) const {
    const nlohmann::json request = {
        {"jsonrpc", "2.0"}, {"id", 1}, {"method", "Connection.Execute"}, {"params", {query}}};
    auto answer = nlohmann::json::parse(Succeed({"rpc"}, request.dump() + "\n"));
    EXPECT_FALSE(answer.contains("error")) << answer;
    return answer["result"]["value"];
  }

  void Write(const std::string& name, std::string_view bytes) const { WriteFile(folder_.path() / name, bytes); }
  [[nodiscard]] std::string Read(const std::string& name) const { return ReadFile(folder_.path() / name); }
  [[nodiscard]] std::string At(std::string_view name) const { return folder_.File(name); }
  [[nodiscard]] bool Exists(const std::string& name) const { return std::filesystem::exists(folder_.path() / name); }

 private:
  TemporaryFolder folder_;
};

/// One step of a definition text.
struct StepText {
  int number;
  int parent;
  std::string command;
  std::vector<std::string> parameters = {};
  std::string caption = {};
};

/// A definition text with LF line ends.
inline std::string Definition(const std::vector<StepText>& steps, const std::string& remark = {}) {
  std::string text = "//\nVer:Flow_V600\nFlowBegin\nFlowRemark:" + remark + "\n";
  for (const auto& step : steps) {
    text += "StepBegin\nFlowNo:" + std::to_string(step.number) + "\nParentNo:" + std::to_string(step.parent) +
            "\nSerial:0\nRemark:" + step.caption + "\nCommand:" + step.command + "\nParameterBegin\n";
    for (std::size_t k = 0; k < step.parameters.size(); ++k) {
      text += step.command + "_" + std::to_string(k + 1) + ":" + step.parameters[k] + "\n";
    }
    text += "ParameterEnd\n";
  }
  return text + "FlowEnd\n";
}

}  // namespace talm_flow::test
