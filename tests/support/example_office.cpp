#include "support/example_office.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "support/places.h"
#include "support/run_program.h"
#include "talm_flow/name.h"

namespace talm_flow::test {
namespace {

constexpr std::string_view kFirst = "budget_check";

std::filesystem::path Folder() { return SourcePath("examples/flows"); }

}  // namespace

std::vector<std::string> ExampleFlowNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(Folder())) {
    if (entry.path().extension() == ".flow") names.push_back(entry.path().stem().string());
  }
  std::ranges::sort(names, {}, [](const std::string& name) { return std::pair(name != kFirst, name); });
  return names;
}

ExampleOffice::ExampleOffice() {
  MakeForms();
  MakeRecords();
  MakeFlows();
  world_.ForgetTrace();
}

void ExampleOffice::MakeForms() {
  auto& database = world_.database();
  database.CreateFormTable(12, {{"Title", "InputText"},
                                {"Days", "InputNum"},
                                {"Amount", "InputNum"},
                                {"Due", "InputTime"},
                                {"Notes", "InputTextArea"},
                                {"Result", "InputText"},
                                {"Files", "UpLoadFile"},
                                {"Seal", "InputElectroSeal"}});
  for (const int form : {13, 14, 15, 16}) {
    database.CreateFormTable(form, {{"Opinion", "InputTextArea"}, {"Offer", "InputText"}});
  }
  world_.Run("Update TableName Set Sort=1 Where TableID=16");
}

void ExampleOffice::MakeRecords() {
  for (const char* statement :
       {"Insert Into TableData12 (name,inputtime,Title,Days,Amount) "
        "Values ('zhao','2026-01-30 08:00:00','Laptops',5,1200)",
        "Insert Into TableData12 (name,inputtime,Title) Values ('archive','2026-01-01 00:00:00','Kept')",
        "Insert Into TableData15 (name,inputtime) Values ('lee','2026-01-30 09:00:00')",
        "Insert Into TableData16 (name,inputtime,Offer) Values ('shop','2026-01-28 09:00:00','Three laptops')",
        "Insert Into DataAnswer (TableID,DataID,AnswerTableID,AnswerDataID) Values (12,1,15,1)",
        "Insert Into TableFile (TableID,DataID,InUnitID,FileContent,FileName,Size,FileType) "
        "Values (16,1,'Offer','PDF','offer.pdf',3,'pdf')",
        "Insert Into TablePicData (TablePicID,TableID,InUnitID,DataID,InputName) Values (7,16,'Offer',1,'shop')",
        "Insert Into UserGroup (GroupName,UserName) Values ('board','kim')",
        "Insert Into UserGroup (GroupName,UserName) Values ('board','lee')"}) {
    world_.Run(statement);
  }
}

void ExampleOffice::MakeFlows() {
  Name names(world_.services());
  for (const auto& name : ExampleFlowNames()) {
    const std::string text = ReadFile(Folder() / (name + ".flow"));
    if (names.FlowAdd(world_.connection(), name, "kim", text) != 0) throw std::runtime_error(name + " does not load");
    flows_.push_back({name, names.MaxFlowID(world_.connection())});
  }
}

}  // namespace talm_flow::test
