#include <utility>

#include "faults/scenes.h"
#include "support/rows.h"
#include "talm_flow/command_catalogue.h"
#include "talm_flow/conversion.h"

namespace talm_flow::test {
namespace {

constexpr int kFlow = 7;
constexpr int kStep = 2;

/// The context of a command on the stage.
std::vector<late_bound::Argument> CommandArguments() {
  return {901, kStep, 900, 12, 345, kFlow, "李雷", "10.0.0.7", 16, 1};
}

std::string TextOf(const Value& value) { return value.IsNull() ? "NULL" : JoinedText(value); }

std::string TextOf(late_bound::Result& result) {
  if (auto* const rows = std::get_if<std::unique_ptr<RowSet>>(&result)) {
    std::string text;
    for (const auto& row : RemainingRows(**rows)) text += row + '\n';
    return text;
  }
  const auto* const value = std::get_if<Value>(&result);
  return value != nullptr ? TextOf(*value) : std::string();
}

std::string TextOf(const late_bound::Argument& argument) {
  if (!argument.IsList()) return TextOf(argument.Single());
  std::string text;
  for (const auto& item : argument.Items()) text += item + '\n';
  return text;
}

}  // namespace

Stage::Stage(const Scene& scene) : scene_(scene), operation_(late_bound::Resolve(scene.operation)) {
  SetUp();
  for (const auto& statement : scene.before) world_.Run(statement);
  SetParameters();
  world_.ForgetTrace();
}

void Stage::SetUp() {
  world_.database().CreateFormTable(12, {{"Title", "InputText"},
                                         {"Amount", "InputNum"},
                                         {"Day", "InputTime"},
                                         {"Memo", "InputTextArea"},
                                         {"Result", "InputText"},
                                         {"Doc", "UpLoadFile"},
                                         {"Sign", "InputDigitalSign"}});
  for (const int form : {13, 14, 15, 16, 17}) world_.database().CreateFormTable(form, {{"Opinion", "InputText"}});
  for (const char* statement :
       {"Update TableName Set Sort=1 Where TableID=16", "Update TableName Set Sort=3 Where TableID=17",
        "Insert Into TableData12 (ID,name,inputtime,Title) Values (345,'kim','2026-01-02 03:04:05','Laptops')",
        "Insert Into TableData12 (ID,name,inputtime) Values (346,'lee','2026-01-03 00:00:00')",
        "Insert Into TableData13 (name,inputtime,Opinion) Values ('kim','2026-01-04 00:00:00','Yes')",
        "Insert Into TableData13 (name,inputtime,Opinion) Values ('lee','2026-01-05 00:00:00','No')",
        "Insert Into TableData14 (name,Opinion) Values ('kim','An invoice')",
        "Insert Into TableData15 (name,Opinion) Values ('kim','An answer')",
        "Insert Into TableData16 (name,Opinion) Values ('kim','An offer')",
        "Insert Into TableData17 (name,Opinion) Values ('kim','An order')",
        "Insert Into UserGroup (GroupName,UserName) Values ('board','kim')",
        "Insert Into UserGroup (GroupName,UserName) Values ('board','lee')",
        "Insert Into WorkFlowName (FlowName,Creater,Remark) Values ('first','kim','r')",
        "Insert Into WorkFlowName (FlowID,FlowName,Creater,Remark) Values (4,'small','kim','r')",
        "Insert Into WorkFlowName (FlowID,FlowName,Creater,Remark) Values (7,'tested','kim','r')",
        "Insert Into WorkFlowName (FlowID,FlowName,Creater,Remark) Values (8,'parent','lee','r')",
        "Insert Into WorkFlowName (FlowID,FlowName,Creater,Remark) Values (9,'mixed','lee','r')",
        "Insert Into WorkFlowFunctionInput (FlowID,InputTitle,OrderNo,Sort,ClassContent) Values (7,'Days',1,2,'')",
        "Insert Into WorkFlowFunctionInput (FlowID,InputTitle,OrderNo,Sort,ClassContent) Values (7,'Kind',2,5,'a,b')",
        "Insert Into WorkFlowExecuteID (ExecuteID,RootExecuteID,TableID,DataID,FlowID,Operator,IpAddress,OtherTableID,"
        "OtherDataID) Values (900,900,12,345,8,'kim','10.0.0.1',16,1)",
        "Insert Into WorkFlowExecuteID (ExecuteID,RootExecuteID,TableID,DataID,FlowID,Operator,IpAddress,OtherTableID,"
        "OtherDataID) Values (901,900,12,345,7,'kim','10.0.0.1',16,1)",
        "Insert Into WorkFlowChildRec (ParentExecuteID,ParentFlowNo,ChildExecuteID) Values (900,2,901)",
        "Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values "
        "(900,900,'amount','7')",
        "Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) "
        "Values (900,900,'applicant','kim')",
        "Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values "
        "(900,900,'name','b-c')",
        "Insert Into WorkFlowExecuteTimes (ExecuteID,FlowNo,Times) Values (901,3,1)",
        "Insert Into WorkFlowExecute (ExecuteID,FlowNo,Command,InputTime,HaveExeTimes) "
        "Values (901,3,'C_86','2026-01-31',1)",
        // The approval that is done, whose form record "DataID_PerApp" finds, and one that other instances wait for.
        "Insert Into DataApp (ExecuteID,AppedTableID,AppedDataID,Appover,FlowNo,AppTableID,AppDataID,Status,NoticInf,"
        "RelatingID) Values (901,12,345,'kim',1,12,346,3,'info',1)",
        "Insert Into DataApp (ExecuteID,AppedTableID,AppedDataID,Appover,FlowNo,AppTableID,AppDataID,RelatingID) "
        "Values (0,12,345,'lee',1,13,2,1)",
        "Insert Into WorkFlowExecute (ExecuteID,DataAppID,FlowNo,Command) Values (0,2,1,'C_2')",
        "Insert Into InUnitSub (ExecuteID,TableID,DataID,FlowNo,Status,NoticInf) Values (901,12,345,1,2,'info')",
        "Insert Into DataAtt (ExecuteID,AttedTableID,AttedDataID,AttName,AttTableID,AttDataID,NoticInf) "
        "Values (901,12,345,'kim',14,1,'info')",
        "Insert Into DataAnswer (TableID,DataID,AnswerTableID,AnswerDataID) Values (12,345,15,1)",
        "Insert Into TableFile (TableID,DataID,InUnitID,FileContent,FileName,Size,FileType) "
        "Values (16,1,'Opinion','PDF','offer.pdf',3,'pdf')",
        "Insert Into TablePicData (TablePicID,TableID,InUnitID,DataID,InputName) Values (5,16,'Opinion',1,'shop')"}) {
    world_.Run(statement);
  }
  world_.Step(4, 1, 0, "C_22");
  world_.Parameter(4, 1, "C_22_1", "started");
  world_.Parameter(4, 1, "C_22_2", "yes");
  world_.Step(kFlow, 1, 0, "C_2");
  world_.Step(kFlow, kStep, 1, "C_62");
  world_.Parameter(kFlow, kStep, "C_62_1", "who");
  world_.Step(kFlow, 3, 1, "C_22");
  world_.Parameter(kFlow, 3, "C_22_1", "jumped");
  world_.Parameter(kFlow, 3, "C_22_2", "yes");
  world_.Step(8, 1, 0, "C_22");
  world_.Step(8, 2, 1, "C_18");
  world_.Parameter(8, 2, "C_18_1", "7");
  world_.Parameter(8, 2, "C_18_3", "result|^|remark");
  world_.Step(8, 3, 2, "C_22");
  world_.Parameter(8, 3, "C_22_1", "went_on");
  world_.Parameter(8, 3, "C_22_2", "yes");
  world_.Step(9, 1, 0, "C_39");
  world_.Parameter(9, 1, "C_39_1", "sum");
  world_.Parameter(9, 1, "C_39_2", "(1+2)*3");
  world_.Step(9, 2, 1, "C_11");
  world_.Parameter(9, 2, "C_11_1", "sum");
  world_.Parameter(9, 2, "C_11_2", ">");
  world_.Parameter(9, 2, "C_11_3", "3");
  world_.Step(9, 3, 2, "C_18");
  world_.Parameter(9, 3, "C_18_1", "4");
  world_.Step(9, 4, 3, "C_16");
  world_.Parameter(9, 4, "C_16_1", "5");
  world_.Step(9, 5, 0, "C_2");
  const char* const approval[] = {"DataID_Submit", "\"@board\"", "\"TableID:13\"", "\"Please\"", "", "1", "24", "sum"};
  for (int k = 1; k <= 8; ++k) world_.Parameter(9, 5, "C_2_" + std::to_string(k), approval[k - 1]);
}

void Stage::SetParameters() {
  const auto name = std::string(operation_.name.substr(operation_.name.find('.') + 1));
  const auto command = DescribeCommand(name);
  if (!command || !scene_.arguments.empty()) return;
  for (std::size_t k = 1; k <= command->parameters.size(); ++k) {
    const std::string_view data = scene_.parameters.empty()       ? command->parameters[k - 1].example
                                  : k <= scene_.parameters.size() ? std::string_view(scene_.parameters[k - 1])
                                                                  : std::string_view();
    world_.Parameter(kFlow, kStep, name + "_" + std::to_string(k), data);
  }
}

std::string Stage::Call(Connection& connection, const host::Services& services) const {
  const bool is_command = scene_.operation.starts_with("Command.C_");
  auto arguments = is_command && scene_.arguments.empty() ? CommandArguments() : scene_.arguments;
  for (auto& argument : arguments) {
    if (!argument.IsList() && argument.Single() == Value(kFile)) argument = folder_.File("text.txt");
  }
  auto result = late_bound::Call(operation_, connection, services, arguments);
  std::string text = TextOf(result);
  for (const auto& argument : arguments) text += '|' + TextOf(argument);
  return text;
}

}  // namespace talm_flow::test
