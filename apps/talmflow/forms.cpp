#include <algorithm>
#include <iostream>

#include "listing.h"
#include "lookup.h"
#include "talm_flow/conversion.h"
#include "workspace.h"

namespace talm_flow::program {
namespace {

using Units = std::vector<std::pair<std::string, std::string>>;

constexpr std::string_view kTypes[] = {"InputText",     "SelectPosition", "SelectClass",      "InputCheckBox",
                                       "InputRadioBox", "InputHide",      "SelectDept",       "SelectOrg",
                                       "SelectUser",    "AutoCal",        "InputNum",         "InputTime",
                                       "InputTextArea", "UpLoadFile",     "InputDigitalSign", "InputElectroSeal"};

void RequireType(const std::string& type) {
  if (std::ranges::find(kTypes, type) != std::end(kTypes)) return;
  std::string known;
  for (const auto& name : kTypes) known.append(known.empty() ? "" : ", ").append(name);
  throw UserError("--unit: there is no input type \"" + type + "\"; the types are " + known);
}

Units UnitsOf(const std::vector<std::string>& words) {
  Units units;
  for (const auto& word : words) {
    const auto colon = word.find(':');
    if (colon == std::string::npos || colon == 0) {
      throw UserError("--unit: \"" + word + "\" is no input unit; write CODE:TYPE, as in DAYS:InputNum");
    }
    auto type = word.substr(colon + 1);
    RequireType(type);
    units.emplace_back(word.substr(0, colon), std::move(type));
  }
  return units;
}

class FormAdd : public Subcommand {
 public:
  explicit FormAdd(CLI::App& parent)
      : Subcommand(parent, "add", "Create the table of a form",
                   "talmflow form add 12 --unit REASON:InputText --unit DAYS:InputNum\n"
                   "talmflow form add 13 --unit OPINION:InputTextArea --kind 1") {
    app().add_option("TABLE", table_, "The form's table number")->required();
    app()
        .add_option("--unit", units_, "An input unit as CODE:TYPE; may be given several times")
        ->required()
        ->take_all();
    app().add_option("--kind", kind_, "The form's kind, a number; commands C_35 to C_38 look for kinds 1 and 3");
  }

  void Run(const GlobalOptions& options) override {
    const auto table = IdOf(table_, "table number");
    const auto units = UnitsOf(units_);
    Workspace workspace(options, Need::kComplete);
    if (workspace.services().tables.AcceptTable(workspace.connection(), table)) {
      throw UserError("the form " + table_ + " exists already");
    }
    workspace.Together([&] {
      workspace.database().CreateFormTable(static_cast<std::int32_t>(table), units);
      if (kind_ != 0) {
        (void)workspace.database().Execute("Update TableName Set Sort=" + std::to_string(kind_) +
                                           " Where TableID=" + std::to_string(table));
      }
    });
    if (options.json) {
      std::cout << Dump({{"table", table}, {"kind", kind_}, {"units", units.size()}}) << '\n';
    } else {
      std::cout << "Created the form " << table << " with " << units.size()
                << (units.size() == 1 ? " input unit\n" : " input units\n");
    }
  }

 private:
  std::string table_;
  std::vector<std::string> units_;
  std::int32_t kind_ = 0;
};

class FormList : public Subcommand {
 public:
  explicit FormList(CLI::App& parent)
      : Subcommand(parent, "list", "List the forms with their input units",
                   "talmflow form list\ntalmflow form list --json") {}

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kComplete);
    Listing listing({"Table", "Kind", "Add enabled", "Units"});
    for (const auto& form : workspace.Rows("Select TableID,Sort,AddEnable From TableName Order By TableID")) {
      std::string units;
      for (const auto& unit : workspace.Rows("Select InUnitID,InUnitType From TableInUnitConstruction Where TableID=" +
                                             JoinedText(form[0]))) {
        units += (units.empty() ? "" : ", ") + JoinedText(unit[0]) + ":" + JoinedText(unit[1]);
      }
      listing.Add({ToJson(form[0]), ToJson(form[1]), ToJson(form[2]), units});
    }
    listing.Print(options, "There are no forms.");
  }
};

}  // namespace

void AddFormSubcommands(CLI::App& parent, Subcommands& all) {
  auto* const form = parent.add_subcommand("form", "Create and list forms: the tables of documents");
  form->fallthrough()->require_subcommand(1);
  form->footer(Examples("talmflow form add 12 --unit REASON:InputText --unit DAYS:InputNum\ntalmflow form list"));
  all.push_back(std::make_unique<FormAdd>(*form));
  all.push_back(std::make_unique<FormList>(*form));
}

}  // namespace talm_flow::program
