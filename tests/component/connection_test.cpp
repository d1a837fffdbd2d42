#include <gmock/gmock.h>

#include "component/component_host.h"

namespace talm_flow::test {
namespace {

using testing::HasSubstr;

class ConnectionTest : public ComponentTest {
 protected:
  [[nodiscard]] Object Opened(const Object& connection, std::string_view query) const {
    return ObjectFrom(RunText(connection, query).result);
  }
};

TEST_F(ConnectionTest, OpensADatabaseByItsUrl) {
  const auto connection = Create(u"TALM_Flow.Connection");
  EXPECT_EQ(Get(connection, u"State").Line(), "0");
  const auto url = Text("sqlite:" + data().File("office.db"));
  const auto existing = Whole(0);
  EXPECT_EQ(Call(connection, u"Open", List(url, existing)).kind, "DatabaseError");
  EXPECT_EQ(Call(connection, u"Open", List(url)).code, TALM_OK);
  EXPECT_EQ(Get(connection, u"State").Line(), "1");
  EXPECT_EQ(Call(connection, u"Open", List(url)).Line(), "DatabaseError: the connection is open already");
  EXPECT_THAT(Call(connection, u"MissingTables").Line(), HasSubstr("\"WorkFlowName\""));
  EXPECT_EQ(Call(connection, u"CreateTables").code, TALM_OK);
  EXPECT_EQ(Call(connection, u"MissingTables").Line(), "[]");
  EXPECT_EQ(Call(connection, u"Close").code, TALM_OK);
  EXPECT_EQ(Call(connection, u"Open", List(url, existing)).code, TALM_OK);
}

TEST_F(ConnectionTest, WhatNeedsAnOpenConnectionSaysSo) {
  const auto connection = Create(u"TALM_Flow.Connection");
  const auto text = Text("Select 1");
  EXPECT_EQ(Call(connection, u"Execute", List(text)).Line(), "DatabaseError: the connection is not open");
  for (const auto* const member :
       {u"CreateTables", u"MissingTables", u"BeginTrans", u"CommitTrans", u"RollbackTrans"}) {
    EXPECT_EQ(Call(connection, member).Line(), "DatabaseError: the connection is not open");
  }
  const auto on = ObjectOf(connection);
  EXPECT_EQ(Call(Create(u"TALM_Flow.Name"), u"MaxFlowID", List(on)).Line(),
            "DatabaseError: the connection is not open");
  EXPECT_EQ(Call(connection, u"Close").code, TALM_OK);
}

TEST_F(ConnectionTest, TransactionsKeepOrTakeBack) {
  const auto connection = NewConnection();
  const auto add = [&] { return RunText(connection, "Insert Into WorkFlowName (FlowName) Values ('F')"); };
  EXPECT_EQ(Call(connection, u"BeginTrans").code, TALM_OK);
  (void)add();
  EXPECT_EQ(Call(connection, u"RollbackTrans").code, TALM_OK);
  EXPECT_EQ(RowsOf(connection, "Select Count(*) As C From WorkFlowName"), "0");
  EXPECT_EQ(Call(connection, u"BeginTrans").code, TALM_OK);
  (void)add();
  EXPECT_EQ(Call(connection, u"CommitTrans").code, TALM_OK);
  EXPECT_EQ(RowsOf(connection, "Select Count(*) As C From WorkFlowName"), "1");
  EXPECT_EQ(Call(connection, u"CommitTrans").kind, "DatabaseError");
}

TEST_F(ConnectionTest, FormTablesAreMade) {
  const auto connection = NewConnection();
  const auto table = Whole(12);
  const auto units = Text("Days:InputNum, Reason:InputText");
  EXPECT_EQ(Call(connection, u"CreateFormTable", List(table, units)).code, TALM_OK);
  RunText(connection, "Insert Into TableData12 (name,Days,Reason) Values ('kim',2,'病')");
  EXPECT_EQ(RowsOf(connection, "Select ID,name,Days,Reason From TableData12"), "1|\"kim\"|2.000000|\"病\"");
  const auto bad = Text("Days");
  EXPECT_EQ(Call(connection, u"CreateFormTable", List(table, bad)).Line(),
            "ArgumentError: \"Days\" is no input unit; one is Code:Type");
}

TEST_F(ConnectionTest, AStatementWithoutRowsGivesNothing) {
  EXPECT_EQ(RunText(NewConnection(), "Delete From WorkFlowName").Line(), "Nothing");
}

TEST_F(ConnectionTest, RowsAreReadAsHostsReadThem) {
  const auto connection = NewConnection();
  RunText(connection, "Insert Into WorkFlowName (FlowName,Creater) Values ('A','x')");
  RunText(connection, "Insert Into WorkFlowName (FlowName) Values ('B')");
  const auto rows = Opened(connection, "Select FlowName,Creater From WorkFlowName Order By FlowName");
  const auto name = Text("flowname");
  EXPECT_EQ(Get(rows, u"EOF").Line(), "False");
  EXPECT_EQ(Get(rows, u"BOF").Line(), "False");
  EXPECT_EQ(Get(rows, u"State").Line(), "1");
  const auto field = ObjectFrom(Get(rows, u"Fields", List(name)).result);
  EXPECT_EQ(Get(field, u"Value").Line(), "\"A\"");
  EXPECT_EQ(Get(field, u"Name").Line(), "\"FlowName\"");
  const auto fields = ObjectFrom(Get(rows, u"Fields").result);
  EXPECT_EQ(Get(fields, u"Count").Line(), "2");
  const auto second = Whole(1);
  EXPECT_EQ(Get(ObjectFrom(Get(fields, u"Item", List(second)).result), u"Name").Line(), "\"Creater\"");
  EXPECT_EQ(Call(rows, u"MoveNext").code, TALM_OK);
  EXPECT_EQ(Get(field, u"Value").Line(), "\"B\"") << "a field follows its row set";
  EXPECT_EQ(Get(rows, u"Field", List(second)).Line(), "Null");
  EXPECT_EQ(Call(rows, u"MoveNext").code, TALM_OK);
  EXPECT_EQ(Get(rows, u"EOF").Line(), "True");
  EXPECT_EQ(Get(field, u"Value").kind, "DatabaseError");
  EXPECT_EQ(Call(rows, u"MoveNext").kind, "DatabaseError");
  EXPECT_EQ(Call(rows, u"Close").code, TALM_OK);
  EXPECT_EQ(Call(rows, u"Close").code, TALM_OK);
  EXPECT_EQ(Get(rows, u"State").Line(), "0");
  EXPECT_EQ(Get(rows, u"EOF").Line(), "True");
}

TEST_F(ConnectionTest, ColumnsThatAreNotThereAreTold) {
  const auto connection = NewConnection();
  const auto rows = Opened(connection, "Select FlowID From WorkFlowName");
  const auto name = Text("NoSuch");
  const auto number = Whole(1);
  EXPECT_EQ(Get(rows, u"Fields", List(name)).Line(), "DatabaseError: the row set has no column NoSuch");
  EXPECT_EQ(Get(rows, u"Field", List(number)).Line(), "DatabaseError: the row set has no column number 1");
  EXPECT_EQ(Get(rows, u"Field").code, TALM_BAD_PARAMETER_COUNT);
  EXPECT_EQ(Get(rows, u"MoveNext").code, TALM_MEMBER_NOT_FOUND);
  EXPECT_EQ(Call(rows, u"NoSuch").code, TALM_UNKNOWN_NAME);
  EXPECT_EQ(Use(rows, u"EOF", kTalmPut, List(number)).code, TALM_MEMBER_NOT_FOUND);
}

TEST_F(ConnectionTest, TheDefaultMembersLeadToAFieldsValue) {
  const auto connection = NewConnection();
  const auto rows = Opened(connection, "Select 'v' As V");
  auto key = Text("V");
  TalmArguments arguments{.values = &key.get(), .names = nullptr, .count = 1, .named_count = 0};
  OwnedVariant field;
  EXPECT_EQ(rows->table->Invoke(rows.get(), kTalmValueMember, &component::kNoId, 0, kTalmMethod | kTalmGet, &arguments,
                                &field.get(), nullptr, nullptr),
            TALM_OK);
  // The field stands for its value where a value is wanted.
  const auto in_out = Create(u"TALM_Flow.InOut");
  const auto first = ObjectFrom(field);
  TalmArguments none{};
  OwnedVariant value;
  EXPECT_EQ(first->table->Invoke(first.get(), kTalmValueMember, &component::kNoId, 0, kTalmGet, &none, &value.get(),
                                 nullptr, nullptr),
            TALM_OK);
  EXPECT_EQ(Shown(value.get()), "\"v\"");
}

TEST_F(ConnectionTest, RowsAreAdded) {
  const auto connection = NewConnection();
  const auto rows = Opened(connection, "Select Top 1 * From TableFile");
  const auto set = [&](std::string_view column, const OwnedVariant& value) {
    const auto key = Text(column);
    return Use(ObjectFrom(Get(rows, u"Fields", List(key)).result), u"Value", kTalmPut, List(value)).Line();
  };
  EXPECT_THAT(set("FileName", Text("a.txt")), HasSubstr("DatabaseError"));
  EXPECT_EQ(Call(rows, u"AddNew").code, TALM_OK);
  EXPECT_EQ(set("TableID", Whole(12)), "Empty");
  EXPECT_EQ(set("FileName", Text("中.txt")), "Empty");
  const auto bytes = Of(kTalmArray | kTalmUint8, [](TalmVariant& variant) {
    variant.as.array = TalmCreateArray(kTalmUint8, 3);
    static_cast<char*>(variant.as.array->data)[1] = '\xFF';
  });
  EXPECT_EQ(set("FileContent", bytes), "Empty");
  EXPECT_EQ(Call(rows, u"Update").code, TALM_OK);
  EXPECT_EQ(RowsOf(connection, "Select TableID,FileName,hex(FileContent) As H From TableFile"),
            "12|\"中.txt\"|\"00FF00\"");
}

TEST_F(ConnectionTest, RowsOutliveTheirConnectionObject) {
  auto connection = NewConnection();
  RunText(connection, "Insert Into WorkFlowName (FlowName) Values ('A')");
  auto rows = Opened(connection, "Select FlowName From WorkFlowName");
  const auto name = Text("FlowName");
  const auto field = ObjectFrom(Get(rows, u"Fields", List(name)).result);
  EXPECT_EQ(Call(connection, u"Close").code, TALM_OK);
  connection = {};
  rows = {};
  EXPECT_EQ(Get(field, u"Value").Line(), "\"A\"");
}

}  // namespace
}  // namespace talm_flow::test
