#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <sstream>

#include "design/design_test.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;

using DefinitionWriterTest = DesignTest;

constexpr std::string_view kHead =
    "//表示注释\r\n"
    "//请不要编辑本文件，否则，可能会破坏文件结构\r\n"
    "//把本文件的数据导入某个指定的流程，会删除这个流程的以前结构\r\n"
    "//换行符号分割开各个属性\r\n"
    "//格式版本\r\n"
    "Ver:Flow_V600\r\n"
    "//这里开始记录流程结构，用FlowBegin开始，用FlowEnd结束\r\n"
    "FlowBegin\r\n"
    "////这里记录该流程的说明\r\n";
constexpr std::string_view kStepComment = "//这里记录每个步骤，用StepBegin开始，用StepEnd结束\r\n";
constexpr std::string_view kParameterComment = "//这里记录指令参数，用ParameterBegin开始，用ParameterEnd结束\r\n";
constexpr std::string_view kInputComment =
    "//这里记录每个子流程参数，用FunctionParameterBegin开始，用FunctionParameterEnd结束\r\n";

TEST_F(DefinitionWriterTest, AFlowIsWrittenWithItsStepsParametersAndInputParameters) {
  Flow(3, "Leave", "Ann", "Demo");
  world.Run(
      "Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values "
      "(3,1,0,1,'Approve','C_2')");
  world.Step(3, 2, 1, "C_5");
  world.Step(4, 1, 0, "C_5");
  world.Parameter(3, 1, "C_2_1", "first value");
  world.Parameter(3, 1, "C_2_2", "line one\r\nline two");
  Input(3, "Amount", 1, 1, "");
  Input(3, "类别", 2, 5, "a,b");
  EXPECT_EQ(
      in_out.MakeConstructionBak(db, 3),
      Joined({kHead, "FlowRemark:Demo\r\n", kStepComment,
              "StepBegin\r\nFlowNo:1\r\nParentNo:0\r\nSerial:1\r\nRemark:Approve\r\nCommand:C_2\r\n", kParameterComment,
              "ParameterBegin\r\nC_2_1:first value\r\nC_2_2:line one\r\nline two\r\nParameterEnd\r\n", kStepComment,
              "StepBegin\r\nFlowNo:2\r\nParentNo:1\r\nSerial:0\r\nRemark:Step 2\r\nCommand:C_5\r\n", kParameterComment,
              "ParameterBegin\r\nParameterEnd\r\n", kInputComment,
              "FunctionParameterBegin\r\nInputTitle:Amount\r\nOrderNo:1\r\nSort:1\r\nClassContent:\r\n"
              "FunctionParameterEnd\r\n",
              kInputComment,
              "FunctionParameterBegin\r\nInputTitle:类别\r\nOrderNo:2\r\nSort:5\r\nClassContent:a,b\r\n"
              "FunctionParameterEnd\r\nFlowEnd\r\n"}));
  EXPECT_THAT(world.trace(), ElementsAre("select Top 1 Remark From WorkFlowName where FlowID=3",
                                         "select Top 10000 * from WorkFlowConstruction where FlowID=3",
                                         "select Top 10000 * from WorkFlowParameter where FlowID=3 and FlowNo=1",
                                         "select Top 10000 * from WorkFlowParameter where FlowID=3 and FlowNo=2",
                                         "select Top 10000 * from WorkFlowFunctionInput where FlowID=3"));
}

TEST_F(DefinitionWriterTest, NullColumnsAddNothing) {
  world.Run("Insert Into WorkFlowName (FlowID) Values (3)");
  world.Run("Insert Into WorkFlowConstruction (FlowID,FlowNo) Values (3,1)");
  world.Run("Insert Into WorkFlowParameter (FlowID,FlowNo) Values (3,1)");
  world.Run("Insert Into WorkFlowFunctionInput (FlowID) Values (3)");
  EXPECT_EQ(in_out.MakeConstructionBak(db, 3),
            Joined({kHead, "FlowRemark:\r\n", kStepComment,
                    "StepBegin\r\nFlowNo:1\r\nParentNo:\r\nSerial:\r\nRemark:\r\nCommand:\r\n", kParameterComment,
                    "ParameterBegin\r\n:\r\nParameterEnd\r\n", kInputComment,
                    "FunctionParameterBegin\r\nInputTitle:\r\nOrderNo:\r\nSort:\r\nClassContent:\r\n"
                    "FunctionParameterEnd\r\nFlowEnd\r\n"}));
}

TEST_F(DefinitionWriterTest, AnUnknownFlowCannotBeWritten) {
  EXPECT_THROW((void)in_out.MakeConstructionBak(db, 3), DatabaseError);
  EXPECT_THAT(world.trace(), ElementsAre("select Top 1 Remark From WorkFlowName where FlowID=3"));
}

class RoundTripTest : public DesignTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(RoundTripTest, BringsEveryValueIntoTheOtherFlow) {
  const std::string value = GetParam();
  Flow(1, "source", "Ann", value);
  Flow(2, "target", "Bob", "old");
  for (const int step : {1, 2, 30}) {
    world.Run("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values (1," +
              std::to_string(step) + ",1,7," + Literal(value) + "," + Literal(value) + ")");
    world.Parameter(1, step, "C_98_8", value);
    world.Parameter(1, step, "C_1_1", "");
  }
  Input(1, value, 3, 5, value);
  world.Step(2, 99, 0, "C_99");
  const std::string text = in_out.MakeConstructionBak(db, 1);
  ASSERT_EQ(in_out.CreatFlow(db, 2, text), 0);
  const auto same = [this](const std::string& columns, const std::string& table) {
    const std::string query = "select " + columns + " from " + table + " where FlowID=";
    EXPECT_EQ(world.Rows(query + "2"), world.Rows(query + "1")) << table;
  };
  same("Remark", "WorkFlowName");
  same("FlowNo,ParentNo,Serial,Remark,Command", "WorkFlowConstruction");
  same("FlowNo,ParameterName,ParameterData", "WorkFlowParameter");
  same("InputTitle,OrderNo,Sort,ClassContent", "WorkFlowFunctionInput");
  EXPECT_EQ(in_out.MakeConstructionBak(db, 2), text);
  EXPECT_EQ(world.Row("select FlowName from WorkFlowName where FlowID=2"), "target");
}

INSTANTIATE_TEST_SUITE_P(Values, RoundTripTest,
                         ::testing::Values("", "plain", " blanks ", "审批：同意，请假", "a:b::", "line one\r\nline two",
                                           "\r\nbehind an empty line", "ends with one\r\n", "\r\n\r\n", "C_3_9:x",
                                           "x\r\nC_99_1:y\r\nflowend\r\n StepBegin", "lone\rand\nbreaks",
                                           "'; delete from WorkFlowName; --", "\"\\?$1:a@b%_", "\t",
                                           "𝔘𝔫𝔦 \xE2\x80\xA8"));

/// A file system that writes down what is asked of it.
class RecordingFiles : public host::FileSystem {
 public:
  RecordingFiles(std::vector<std::string>& calls, std::size_t failing) : calls_(calls), failing_(failing) {}

  void RequireEncodable(std::string_view file_name, std::string_view text) override {
    Call("require " + std::string(file_name) + " " + std::string(text));
  }
  [[nodiscard]] bool FileExists(std::string_view file_name) override {
    Call("exists " + std::string(file_name));
    return exists;
  }
  void DeleteFile(std::string_view file_name) override { Call("delete " + std::string(file_name)); }
  [[nodiscard]] std::unique_ptr<host::TextStream> CreateTextFile(std::string_view file_name) override {
    Call("create " + std::string(file_name));
    return std::make_unique<Stream>(*this);
  }

  bool exists = true;

 private:
  struct Stream : host::TextStream {
    explicit Stream(RecordingFiles& owner) : files(owner) {}
    void WriteLine(std::string_view text) override { files.Call("write " + std::string(text)); }
    void Close() override { files.Call("close"); }
    RecordingFiles& files;
  };

  void Call(const std::string& call) {
    calls_.push_back(call);
    if (calls_.size() == failing_) throw FileError("the file was made to fail");
  }

  std::vector<std::string>& calls_;
  std::size_t failing_;
};

host::Services WithFiles(const host::Services& s, host::FileSystem& files) {
  return {s.common, s.records, s.tables, s.user_lists, s.forms, s.dates, s.urls, s.clock, files};
}

const std::vector<std::string> kFileCalls = {"require f.txt text", "exists f.txt", "delete f.txt",
                                             "create f.txt",       "write text",   "close"};

TEST_F(DefinitionWriterTest, AFileIsReplacedWhenItsTextCanBeWritten) {
  std::vector<std::string> calls;
  RecordingFiles files(calls, 0);
  InOut(WithFiles(world.services(), files)).CreateTxt("f.txt", "text");
  EXPECT_EQ(calls, kFileCalls);
  calls.clear();
  files.exists = false;
  InOut(WithFiles(world.services(), files)).CreateTxt("f.txt", 12);
  EXPECT_THAT(calls, ElementsAre("require f.txt 12", "exists f.txt", "create f.txt", "write 12", "close"));
}

TEST_F(DefinitionWriterTest, AFailureOfTheFileSystemEndsTheWriting) {
  for (std::size_t failing = 1; failing <= kFileCalls.size(); ++failing) {
    std::vector<std::string> calls;
    RecordingFiles files(calls, failing);
    EXPECT_THROW(InOut(WithFiles(world.services(), files)).CreateTxt("f.txt", "text"), FileError);
    EXPECT_EQ(calls, std::vector(kFileCalls.begin(), kFileCalls.begin() + static_cast<std::ptrdiff_t>(failing)));
  }
}

class TextFileTest : public DesignTest {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override { std::filesystem::remove_all(folder_); }
  [[nodiscard]] std::string Path(std::string_view file_name) const { return (folder_ / file_name).string(); }
  static std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
  }

 private:
  std::filesystem::path folder_ =
      std::filesystem::path(::testing::TempDir()) /
      (std::string("talm_flow_") + ::testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST_F(TextFileTest, EndsWithOneMoreLineEnd) {
  in_out.CreateTxt(Path("flow.txt"), "流程\r\nFlowEnd\r\n");
  EXPECT_EQ(Content(Path("flow.txt")), "流程\r\nFlowEnd\r\n\r\n");
}

TEST_F(TextFileTest, ReplacesALongerOne) {
  in_out.CreateTxt(Path("flow.txt"), "a much longer content than what follows");
  in_out.CreateTxt(Path("flow.txt"), "short");
  EXPECT_EQ(Content(Path("flow.txt")), "short\r\n");
}

TEST_F(TextFileTest, InAMissingFolderCannotBeWritten) {
  EXPECT_THROW(in_out.CreateTxt(Path("missing/flow.txt"), "x"), FileError);
}

TEST_F(TextFileTest, ReadBackLoadsTheSameFlow) {
  Flow(1, "a", "", "说明");
  world.Step(1, 1, 0, "C_2");
  const std::string text = in_out.MakeConstructionBak(db, 1);
  in_out.CreateTxt(Path("flow.txt"), text);
  ASSERT_EQ(in_out.CreatFlow(db, 1, Content(Path("flow.txt"))), 0);
  EXPECT_EQ(in_out.MakeConstructionBak(db, 1), text);
}

}  // namespace
}  // namespace talm_flow::test
