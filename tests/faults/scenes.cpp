#include "faults/scenes.h"

#include <algorithm>
#include <utility>

#include "talm_flow/command_catalogue.h"

namespace talm_flow::test {
namespace {

const std::string kRecord = "\"TableID:12,DataID:345\"";

const std::string kDefinition =
    "//\r\nVer:Flow_V600\r\nFlowBegin\r\nFlowRemark:r\r\nStepBegin\r\nFlowNo:1\r\nCommand:C_2\r\nParameterBegin\r\n"
    "C_2_1:a\r\nC_2_2:b\r\nParameterEnd\r\nStepBegin\r\nFlowNo:2\r\nParentNo:1\r\nCommand:C_1\r\n"
    "FunctionParameterBegin\r\nInputTitle:t\r\nFunctionParameterEnd\r\nFlowEnd\r\n";

/// What a step's run takes.
std::vector<late_bound::Argument> Context(int instance, int step, int flow) {
  return {instance, step, 900, 12, 345, flow, "kim", "10.0.0.1", 16, 1};
}

/// The parent's link is gone and so is everything that waits.
const std::vector<std::string> kNothingWaits = {"Delete From WorkFlowChildRec", "Delete From WorkFlowExecute"};

std::vector<Scene> EngineScenes() {
  return {
      {"Command.FlowExecute", "", {9, 12, 345, "kim", "10.0.0.1", 0, 0}},
      {"Command.FlowExecute", "ThatEnds", {4, 12, 345, "kim", "10.0.0.1", 0, 0}},
      {"Command.FlowExecute", "OfAnUnknownFlow", {99, 12, 345, "kim", "10.0.0.1", 0, 0}},
      {"Command.FlowExecuteAfter", "", {901, 1}},
      {"Command.FlowExecuteAfter", "WithSomethingOpen", {901, 1}, {}, {"Update DataApp Set Status=0"}},
      {"Command.FlowExecuteByExecuteID", "", Context(901, 2, 7)},
      {"Command.FlowExecuteByExecuteID", "ThatWaits", Context(901, 5, 9)},
      {"Command.NextCommand", "", Context(901, 1, 7)},
      {"Command.EndFlow", "", {900}, {}, kNothingWaits},
      {"Command.EndFlow", "OfATreeThatWaits", {900}},
      {"Command.EndFlow",
       "WithALiveTimer",
       {901},
       {},
       {"Delete From WorkFlowChildRec", "Update WorkFlowExecute Set HaveExeTimes=0"}},
      {"Command.ExecuteIDExists", "", {901, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr}},
      {"Command.GetParameterData", "", {4, 1, "C_22_1"}},
      {"Command.IsExecuteOverTimes", "", {901, 3}},
      {"Command.AddExecuteTimes", "", {901, 3}},
      {"Command.AddExecuteTimes", "ForTheFirstTime", {901, 4}},
      {"Command.ChangeAppStatusToFinish", "", {2, 1}},
      {"Command.ChangeInUnitSubStatusToFinish", "", {1}, {}, {"Update InUnitSub Set Status=0"}},
      {"Command.NotAppExists", "", {2}},
      {"Command.GetNoticInfFromDataApp", "", {1}},
      {"Command.GetNoticInfFromInUnitSub", "", {1}},
      {"Command.GetNoticInfFromDataAtt", "", {1}},
      {"Command.GetFlowNoApprov", "", {7, 2}},
      {"Command.GetFlowNoInUnitSub", "", {7, 2}},
      {"Command.ChildFlowFinish", "", {901}},
      {"Command.GetParentFlowParam", "", {901, nullptr, nullptr, nullptr}},
      {"Command.FlowNotice", "", {12, 345, "kim", "News"}},
      {"Command.DataTran", "", {12, 345, "kim", "lee,max", "r"}},
      {"Command.DataTran",
       "ToOneWhoHasIt",
       {12, 345, "kim", "lee", "r"},
       {},
       {"Insert Into DataRec (TableID,DataID,Recver,Status) Values (12,345,'lee',1)"}},
      {"Command.UpdateVariableValue", "", {901, 900, "amount", "8"}},
      {"Command.UpdateVariableValue", "OfTheInstance", {901, 900, "Private_x", "8"}},
      {"Command.UpdateVariableValue", "OfTheSystem", {901, 900, "Global_x", "8"}},
      {"Command.GetVariableValue",
       "",
       {901, 900, "(amount+1)*Private_x+Global_x+DataID_PerApp+DataID_Submit", 12, 345}},
      {"Command.GetVarTypeByName", "", {"Global_x"}},
      {"Command.ExpressToArr", "", {"a=1 and b>2", nullptr}},
      {"Command.SeparateTableIDAndDataID", "", {"TableID:12,DataID:345", nullptr, nullptr}},
      {"Command.SeparateTableID", "", {"TableID:12", nullptr}},
      {"Command.SeparateInUnitID", "", {"inunitid:ab", nullptr}},
      {"Command.SeparateFileID", "", {"fileid:1", nullptr}},
      {"Command.SeparateTablePicDataID", "", {"tablepicdataid:1", nullptr}},
  };
}

std::vector<Scene> DesignScenes() {
  return {
      {"Construction.MaxFlowNo", "", {7}},
      {"Construction.FlowNoExists", "", {7, 1}},
      {"Construction.GetParentNo", "", {7, 2}},
      {"Construction.GetStepQty", "", {9, 4}},
      {"Construction.GetMaxStepQty", "", {9, 1}},
      {"Construction.GetChildFlowNo", "", {9, 1}},
      {"Construction.InChild", "", {9, 1, 4}},
      {"Construction.ChildExists", "", {9, 1}},
      {"Construction.DelCommand", "", {9, 2}},
      {"Construction.DelCommand", "RefusedForTheRoot", {9, 1}},
      {"Construction.GetCommand", "", {9, 1}},
      {"Construction.DisplayFlow", "", {9, 1, "f"}},
      {"Construction.DisplayNextFlowStep", "", {9, 1, 1, "f"}},
      {"Construction.DisplayPerFlowStep", "", {9, 1, 1, "f"}},
      {"Construction.CreateFlowArr", "", {9}},
      {"Construction.AddInputParameter", "", {7, " t ", 3, 1, ""}},
      {"Construction.UpdateInputParameter", "", {1, "u", 3, 1, ""}},
      {"Construction.DelInputParameter", "", {1}},
      {"Construction.GetParameterIDStr", "", {7}},
      {"Construction.InputParameterSelect", "", {7, "n", 0, 1, 0, 0, "1", ""}},
      {"Construction.GetChildFlowIDStrByFlowID", "", {9}},
      {"Construction.GetVarNameStrByFlowID", "", {9}},
      {"Construction.VarSelect", "", {9, "n", 0, 1, 0, 0, "started", ""}},
      {"Construction.DisplayInputParameter", "", {7, 1, "3|^|a"}},
      {"InOut.MakeConstructionBak", "", {9}},
      {"InOut.MakeConstructionBak", "WithInputParameters", {7}},
      {"InOut.CreateTxt", "", {kFile, "text"}},
      {"InOut.CreatFlow", "", {7, kDefinition}},
      {"InOut.CreatFlow", "OfAnUnknownFlow", {99, kDefinition}},
      {"InOut.SeparateLine", "", {"a\r\nb", nullptr, nullptr}},
      {"InOut.SeparateValue", "", {"a\r\nb", nullptr, nullptr}},
      {"InOut.IsSeparateLine", "", {"StepBegin"}},
      {"InOut.GetStepValue", "", {"FlowNo:1\r\n", nullptr, nullptr, nullptr, nullptr, nullptr, nullptr}},
      {"InOut.GetFunctionValue", "", {"InputTitle:t\r\n", nullptr, nullptr, nullptr, nullptr, nullptr}},
      {"InOut.IsFlowRemark", "", {"FlowRemark:r"}},
      {"Name.FlowSave", "", {7, "n", "c", kDefinition}},
      {"Name.FlowAdd", "", {"n", "c", kDefinition}},
      {"Name.GetRs", "", {}},
      {"Name.GetAll", "", {7, nullptr, nullptr, nullptr}},
      {"Name.GetFlowName", "", {7}},
      {"Name.GetCreater", "", {7}},
      {"Name.GetRemark", "", {7}},
      {"Name.FlowExists", "", {7}},
      {"Name.Add", "", {"n", "c", "r"}},
      {"Name.Update", "", {7, "n", "c", "r"}},
      {"Name.Del", "", {7}},
      {"Name.FlowSelect", "", {"n", 0, 1, 0, 0, "7", ""}},
      {"Name.MaxFlowID", "", {}},
  };
}

/// Situations of commands in which the examples of the command table would do nothing, or not all there is to do.
std::vector<Scene> CommandScenes() {
  const std::string has_receipt = "Insert Into DataRec (TableID,DataID,Recver,Status) Values (12,345,'lee',1)";
  const std::string has_properties = "Insert Into DataPro (TableID,DataID) Values (12,345)";
  const std::vector<late_bound::Argument> on_kind_3 = {901, 2, 900, 12, 345, 7, "kim", "10.0.0.1", 17, 1};
  return {
      {"Command.C_1", "ToOneWhoHasIt", {}, {kRecord, "\"News\"", "\"@board,max\""}, {has_receipt}},
      {"Command.C_2",
       "ForAGroup",
       {},
       {kRecord, "\"@board\"", "\"TableID:13\"", "\"T\"", "", "amount", "amount", "\"i\""}},
      {"Command.C_2", "WithoutATimeLimit", {}, {kRecord, "\"kim\"", "\"TableID:13\"", "", "", "0", "0", ""}},
      {"Command.C_4", "WithANumber", {}, {kRecord, "\"Amount\"", "amount"}},
      {"Command.C_4", "WithADate", {}, {kRecord, "\"Day\"", "\"2026-01-31\""}},
      {"Command.C_4", "WithALongText", {}, {kRecord, "\"inunitid:Memo\"", "name"}},
      {"Command.C_4", "WithFiles", {}, {kRecord, "\"Doc\"", "\"fileid:1,1\""}},
      {"Command.C_4", "WithAPicture", {}, {kRecord, "\"Sign\"", "\"tablepicdataid:1\""}},
      {"Command.C_5", "WithFiles", {}, {kRecord, "\"Doc\"", "\"fileid:1\""}},
      {"Command.C_6",
       "TakenAway",
       {},
       {kRecord, "\"kim,lee\"", "0"},
       {"Insert Into DataAllowEdit (TableID,DataID,Name) Values (12,345,'lee')"}},
      {"Command.C_7", "", {}, {}, {"Update TableName Set AddEnable=0"}},
      {"Command.C_8", "WithARow", {}, {kRecord, "1"}, {has_properties}},
      {"Command.C_9", "WithARow", {}, {kRecord, "1", "\"TableID:15\""}, {has_properties}},
      {"Command.C_9", "Forbidden", {}, {kRecord, "0", ""}},
      {"Command.C_9",
       "ForbiddenWithARow",
       {},
       {kRecord, "0", ""},
       {"Insert Into DataPro (TableID,DataID,AnswerEnable) Values (12,345,1)"}},
      {"Command.C_18", "WhoseFlowWaits", {}, {"9", "", ""}},
      {"Command.C_19", "OnADate", {}, {"\"2026-01-31 9:05\"", "+", "amount", "result"}},
      {"Command.C_37",
       "",
       on_kind_3,
       {},
       {"Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values (7,2,'C_37_1','result')"}},
      {"Command.C_38",
       "",
       on_kind_3,
       {},
       {"Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values (7,2,'C_38_1','result')"}},
      {"Command.C_39", "Overwriting", {}, {"amount", "(amount+1)*2"}},
      {"Command.C_47",
       "OfFiles",
       {},
       {"result", "\"TableID:12,DataID:345\"", "\"Doc\""},
       {"Insert Into TableFile (TableID,DataID,InUnitID,FileName) Values (12,345,'Doc','a')"}},
      {"Command.C_54", "OfAGroup", {}, {"result", "\"@board;max\""}},
      {"Command.C_74", "", {}, {}, {"Update WorkFlowChildRec Set ExecuteParent=0"}},
      {"Command.C_76",
       "WithFiles",
       {},
       {kRecord, "\"TableID:12,DataID:346\""},
       {"Update TableData12 Set Title='T',Memo='M',Amount=1,Day='2026-01-31' Where ID=345",
        "Insert Into TableFile (TableID,DataID,InUnitID,FileContent,FileName) Values (12,345,'Doc','c','a')",
        "Insert Into TablePicData (TablePicID,TableID,InUnitID,DataID) Values (7,12,'Sign',345)"}},
      {"Command.C_77",
       "WithEveryKindOfField",
       {},
       {"\"TableID:12\"", "(name=applicant or id>1+1) and inputtime>\"2026-01-01\" and title<>name", "result"}},
      {"Command.C_79", "OfEveryRecord", {}, {"\"TableID:12\"", "", "\"Title\"", "result"}},
  };
}

}  // namespace

std::vector<Scene> Scenes() {
  std::vector<Scene> scenes = EngineScenes();
  std::ranges::move(DesignScenes(), std::back_inserter(scenes));
  std::vector<Scene> commands = CommandScenes();
  for (const auto& command : DescribeCommands()) {
    const std::string operation = "Command." + std::string(command.name);
    const auto main = std::ranges::find_if(
        commands, [&](const Scene& scene) { return scene.operation == operation && scene.title.empty(); });
    if (main == commands.end()) scenes.push_back({operation, ""});
  }
  std::ranges::move(commands, std::back_inserter(scenes));
  return scenes;
}

}  // namespace talm_flow::test
