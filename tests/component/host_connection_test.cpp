#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "component/component_host.h"
#include "talm_flow/text.h"

namespace talm_flow::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Request = ScriptObject::Request;

/// One of the versions of the platform's own connection interface.
constexpr TalmGuid kDataConnection = {0x00000550, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};

/// A host whose connection and row sets are its own objects, above a database that it reaches in its own way.
class HostConnectionTest : public ComponentTest {
 protected:
  /// Runs statements on the database and hands out row sets of the host's own.
  ScriptObject::Member Execute() {
    return [this](const Request& request) {
      EXPECT_EQ(request.arguments.size(), 1U);
      statements_.push_back(Utf8(request.arguments.at(0).as.text));
      auto outcome = Call(database_, u"Execute", request.arguments);
      if (outcome.code == TALM_EXCEPTION) return ScriptObject::Raise(request, "host: " + outcome.message, TALM_FAIL);
      if (outcome.result.get().as.object == nullptr) return ScriptObject::Give(request, Of(kTalmObject));
      return ScriptObject::Give(request, UnknownOf(RowSet(ObjectFrom(outcome.result))));
    };
  }

  /// A row set object that asks the database's for everything, and notes what it is asked.
  Reference<TalmUnknown> RowSet(const Object& rows) {
    ScriptObject::Members members;
    for (const auto* const name : {u"EOF", u"BOF", u"MoveNext", u"Close", u"AddNew", u"Update"}) {
      members.emplace_back(name, [this, rows, name = std::u16string(name)](const Request& request) {
        asked_.push_back(ToUtf8(name));
        return Forwarded(request, Use(rows, name, request.how, request.arguments));
      });
    }
    members.emplace_back(u"Fields", [this, rows](const Request& request) {
      if (fields_are_a_collection_) {
        if (!request.arguments.empty()) return TALM_MEMBER_NOT_FOUND;
        return ScriptObject::Give(
            request, UnknownOf(ScriptObject::Make({{u"Item", [rows](const Request& item) {
                                                      return Forwarded(item, Get(rows, u"Field", item.arguments));
                                                    }}})));
      }
      return Forwarded(request, Get(rows, u"Fields", request.arguments));
    });
    return ScriptObject::Make(std::move(members), binding_);
  }

  static TalmResult Forwarded(const Request& request, Outcome outcome) {
    if (outcome.code == TALM_EXCEPTION) return ScriptObject::Raise(request, outcome.message, TALM_FAIL);
    if (TALM_FAILED(outcome.code)) return outcome.code;
    return ScriptObject::Give(request, std::move(outcome.result));
  }

  /// The connection as an argument.
  OwnedVariant Connection() { return UnknownOf(ScriptObject::Make({{u"execute", Execute()}}, binding_)); }

  /// A connection whose `Execute` is something else.
  static OwnedVariant ConnectionThat(ScriptObject::Member execute) {
    return UnknownOf(ScriptObject::Make({{u"Execute", std::move(execute)}}));
  }

  void RunAFlow() {
    const auto on = Connection();
    const auto name = Text("相加");
    const auto text = Text(
        "//\r\nVer:Flow_V600\r\nFlowBegin\r\nFlowRemark:Adds\r\nStepBegin\r\nFlowNo:1\r\nParentNo:0\r\nSerial:1\r\n"
        "Remark:Add\r\nCommand:C_39\r\nParameterBegin\r\nC_39_1:Global_sum\r\nC_39_2:1+2*3\r\nParameterEnd\r\n"
        "FlowEnd\r\n");
    EXPECT_EQ(Call(name_, u"FlowAdd", List(on, name, name, text)).Line(), "0");
    const auto one = Whole(1);
    const auto zero = Whole(0);
    EXPECT_EQ(Call(command_, u"FlowExecute", List(on, one, zero, zero, name, name, zero, zero)).code, TALM_OK);
    const auto sum = Text("Global_sum");
    EXPECT_EQ(Call(command_, u"GetVariableValue", List(on, zero, zero, sum, zero, zero)).Line(), "\"7\"");
  }

  Object database_ = NewConnection();
  Object name_ = Create(u"TALM_Flow.Name");
  Object command_ = Create(u"TALM_Flow.Command");
  std::vector<std::string> statements_;
  std::vector<std::string> asked_;
  ScriptObject::Binding binding_ = ScriptObject::Binding::kPlain;
  bool fields_are_a_collection_ = false;
};

TEST_F(HostConnectionTest, StatementsAndRowsGoThroughTheHostsObjects) {
  RunText(database_, "Insert Into WorkFlowName (FlowName) Values ('A')");
  const auto on = Connection();
  const auto one = Whole(1);
  EXPECT_EQ(Call(name_, u"FlowExists", List(on, one)).Line(), "True");
  EXPECT_THAT(statements_, ElementsAre("Select Top 1 FlowID from WorkFlowName Where FlowID=1"));
  EXPECT_THAT(asked_, ElementsAre("EOF", "BOF", "Close"));
}

TEST_F(HostConnectionTest, AFlowRunsOnAHostsConnection) { RunAFlow(); }

TEST_F(HostConnectionTest, AFlowRunsOnObjectsWithExtendedLateBindingOnly) {
  binding_ = ScriptObject::Binding::kExtended;
  RunAFlow();
}

TEST_F(HostConnectionTest, AFlowRunsOnObjectsWhosePlainLateBindingIsHollow) {
  binding_ = ScriptObject::Binding::kHollowPlain;
  RunAFlow();
}

TEST_F(HostConnectionTest, AFlowRunsWhereFieldsAreACollectionOfValues) {
  fields_are_a_collection_ = true;
  RunAFlow();
}

TEST_F(HostConnectionTest, RowsAreAddedThroughTheHostsRowSet) {
  const auto table = Whole(12);
  const auto units = Text("Doc:UpLoadFile");
  ASSERT_EQ(Call(database_, u"CreateFormTable", List(table, units)).code, TALM_OK);
  RunText(database_, "Insert Into TableData12 (name) Values ('kim')");
  RunText(
      database_,
      "Insert Into TableFile (TableID,DataID,FileName,Size,FileType,FileContent) Values (9,9,'中.txt',2,'t',x'00FF')");
  RunText(database_, "Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Command) Values (1,1,0,'C_4')");
  const auto parameter = [&](const char* name, const char* data) {
    RunText(database_,
            std::string("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values (1,1,'") +
                name + "','" + data + "')");
  };
  parameter("C_4_1", "\"TableID:12,DataID:1\"");
  parameter("C_4_2", "\"InUnitID:Doc\"");
  parameter("C_4_3", "\"FileID:1\"");
  const auto on = Connection();
  const auto one = Whole(1);
  const auto name = Text("kim");
  const auto outcome = Call(command_, u"FlowExecute", List(on, one, table, one, name, name, one, one));
  EXPECT_EQ(outcome.code, TALM_OK) << outcome.Line();
  EXPECT_EQ(RowsOf(database_, "Select TableID,DataID,FileName,hex(FileContent) As H From TableFile Where ID=2"),
            "12|1|\"中.txt\"|\"00FF\"");
  EXPECT_THAT(asked_, testing::IsSupersetOf({"AddNew", "Update"}));
}

TEST_F(HostConnectionTest, ARowSetResultIsTheHostsOwnObject) {
  RunText(database_, "Insert Into WorkFlowName (FlowName) Values ('A')");
  const auto on = Connection();
  const auto outcome = Call(name_, u"GetRs", List(on));
  const auto rows = ObjectFrom(outcome.result);
  EXPECT_EQ(Call(rows, u"AddNew").code, TALM_OK);
  EXPECT_THAT(asked_, ElementsAre("AddNew")) << "nothing else happened to it";
}

TEST_F(HostConnectionTest, TheHostsErrorArrivesUnchanged) {
  const auto on = Connection();
  const auto bad = Text("no number");
  const auto outcome = Call(name_, u"FlowExists", List(on, bad));
  EXPECT_EQ(outcome.kind, "DatabaseError");
  EXPECT_THAT(outcome.message, testing::StartsWith("host: "));
  EXPECT_EQ(outcome.source, "TALM_Flow.Name");
}

TEST_F(HostConnectionTest, ObjectsThatAreNoConnectionsAreTold) {
  const auto one = Whole(1);
  const auto line = [&](const OwnedVariant& on) { return Call(name_, u"FlowExists", List(on, one)).Line(); };
  EXPECT_EQ(line(UnknownOf(ScriptObject::Make({}))), "DatabaseError: the connection's Execute is not there");
  EXPECT_EQ(line(ConnectionThat([](const Request&) { return TALM_BAD_PARAMETER_COUNT; })),
            "DatabaseError: the connection's Execute failed with the code 0x8002000E");
  EXPECT_EQ(line(ConnectionThat([](const Request& request) { return ScriptObject::Raise(request, "", TALM_FAIL); })),
            "DatabaseError: the connection's Execute failed with the code 0x80004005");
  EXPECT_EQ(line(ConnectionThat([](const Request& request) { return ScriptObject::Give(request, Whole(1)); })),
            "DatabaseError: the connection's Execute gave no row set");
  EXPECT_EQ(line(ConnectionThat(
                [](const Request& request) { return ScriptObject::Give(request, UnknownOf(ScriptObject::Make({}))); })),
            "DatabaseError: the row set's EOF is not there");
}

TEST_F(HostConnectionTest, AConnectionOfOursIsUsedDirectlyWhenTheHostWrapsIt) {
  const auto on = ObjectOf(database_);
  const auto one = Whole(1);
  EXPECT_EQ(Call(name_, u"FlowExists", List(on, one)).Line(), "False");
  EXPECT_TRUE(statements_.empty());
}

TEST_F(HostConnectionTest, TheHostMayDropTheObjectDuringItsCall) {
  auto object = Create(u"TALM_Flow.Name");
  auto* const raw = object.get();
  const auto on = ConnectionThat([&](const Request& request) {
    object = {};
    return ScriptObject::Raise(request, "gone", TALM_FAIL);
  });
  const auto one = Whole(1);
  const auto arguments = List(on, one);
  TalmException exception{};
  EXPECT_EQ(TalmCall(raw, u"FlowExists", kTalmMethod, arguments.data(), 2, nullptr, &exception), TALM_EXCEPTION);
  EXPECT_EQ(Utf8(exception.description), "gone");
  TalmClearException(&exception);
}

TEST_F(HostConnectionTest, ADataObjectsQueriesAreOpenedWithItsRowSetClass) {
  std::ofstream(ClassFile("ADODB.Recordset"))
      << "talm_flow class 1\nname=ADODB.Recordset\nclass={00000535-0000-0010-8000-00AA006D2EA4}\nlibrary="
      << TALM_FLOW_ROW_SET_SERVER << "\n";
  const auto data_object = ScriptObject::Make({{u"Execute", Execute()}}, binding_, kDataConnection);
  RunText(database_, "Insert Into WorkFlowName (FlowName) Values ('A')");
  const auto one = Whole(1);
  const auto on = UnknownOf(data_object);
  // The row set class of the test opens by the connection's Execute, and refuses another cursor than a keyset's.
  EXPECT_EQ(Call(name_, u"GetFlowName", List(on, one)).Line(), "\"opened as a keyset\"");
  EXPECT_THAT(statements_, ElementsAre("Select Top 1 FlowName from WorkFlowName Where FlowID=1"));
  std::filesystem::remove(ClassFile("ADODB.Recordset"));
  EXPECT_EQ(Call(name_, u"GetFlowName", List(on, one)).Line(), "\"A\"") << "without the class, by Execute";
}

}  // namespace
}  // namespace talm_flow::test
