#include <cstdlib>
#include <iostream>
#include <map>

#include "listing.h"
#include "lookup.h"
#include "talm_flow/conversion.h"
#include "talm_flow/text.h"
#include "workspace.h"

namespace talm_flow::program {
namespace {

std::string UserName() {
  for (const auto* const variable : {"USER", "LOGNAME"}) {
    const char* const name = std::getenv(variable);
    if (name != nullptr && *name != '\0') return name;
  }
  return "talmflow";
}

class RecordAdd : public Subcommand {
 public:
  explicit RecordAdd(CLI::App& parent)
      : Subcommand(parent, "add", "Write a record into a form's table and print its reference",
                   "talmflow record add 12 REASON=holiday DAYS=3\n"
                   "talmflow record add 12 name=kim inputtime=\"2026-01-31 09:00\" DAYS=1\n"
                   "\nWithout name= and inputtime= the record is written by the present user, now.") {
    app().add_option("TABLE", table_, "The form's table number")->required();
    app().add_option("FIELD=VALUE", fields_, "A field's value; may be given several times");
  }

  void Run(const GlobalOptions& options) override {
    const auto table = IdOf(table_, "table number");
    Workspace workspace(options, Need::kComplete);
    RequireForm(workspace, table);
    const auto literals = Literals(workspace, table);
    std::string names;
    std::string values;
    for (const auto& [name, literal] : literals) {
      names += (names.empty() ? "" : ",") + name;
      values += (values.empty() ? "" : ",") + literal;
    }
    Record record{table, 0};
    workspace.Together([&] {
      const auto form_table = "TableData" + std::to_string(table);
      (void)workspace.database().Execute("Insert Into " + form_table + " (" + names + ") Values (" + values + ")");
      record.data = NumberOf(workspace.FirstField("Select Top 1 ID From " + form_table + " Order By ID Desc"));
    });
    if (options.json) {
      std::cout << Dump({{"table", record.table}, {"record", record.data}}) << '\n';
    } else {
      std::cout << TextOf(record) << '\n';
    }
  }

 private:
  /// The columns to write, each with its value as a literal.
  [[nodiscard]] std::map<std::string, std::string> Literals(Workspace& workspace, std::int64_t table) const {
    std::map<std::string, std::string> literals;
    for (const auto& field : fields_) {
      const auto equals = field.find('=');
      if (equals == std::string::npos || equals == 0) {
        throw UserError("\"" + field + "\" is no field; write FIELD=VALUE, as in DAYS=3");
      }
      const auto [name, type] = Column(workspace, table, field.substr(0, equals));
      literals[name] = Literal(workspace, name, type, field.substr(equals + 1));
    }
    const auto now = workspace.services().dates.FormatDateTime(workspace.services().clock.Now());
    literals.try_emplace("name", workspace.Literal(UserName()));
    literals.try_emplace("inputtime", workspace.Literal(now));
    return literals;
  }

  /// A field's column and type.
  static std::pair<std::string, std::string> Column(Workspace& workspace, std::int64_t table,
                                                    const std::string& field) {
    if (EqualIgnoringAsciiCase(field, "name")) return {"name", "InputText"};
    if (EqualIgnoringAsciiCase(field, "inputtime")) return {"inputtime", "InputTime"};
    const auto unit =
        workspace.services().forms.FindUnit(workspace.connection(), static_cast<std::int32_t>(table), field);
    if (!unit) {
      std::string known = "name, inputtime";
      for (const auto& row :
           workspace.Rows("Select InUnitID From TableInUnitConstruction Where TableID=" + std::to_string(table))) {
        known += ", " + JoinedText(row[0]);
      }
      throw UserError("the form " + std::to_string(table) + " has no field \"" + field + "\"; its fields are " + known);
    }
    return {unit->field, unit->type};
  }

  static std::string Literal(const Workspace& workspace, const std::string& name, const std::string& type,
                             const std::string& text) {
    if (type == "InputNum") {
      const auto number = ParseNumber(text);
      if (!number) throw UserError("the field " + name + " takes a number, not \"" + text + "\"");
      return NumberText(*number);
    }
    if (type == "InputTime") {
      const auto moment = ParseDate(text);
      if (!moment) throw UserError("the field " + name + " takes a date, not \"" + text + "\"");
      return workspace.Literal(workspace.services().dates.FormatDateTime(*moment));
    }
    return workspace.Literal(text);
  }

  std::string table_;
  std::vector<std::string> fields_;
};

class RecordShow : public Subcommand {
 public:
  explicit RecordShow(CLI::App& parent)
      : Subcommand(parent, "show", "Show the fields of a record",
                   "talmflow record show 12/345\ntalmflow record show 12/345 --json") {
    app().add_option("RECORD", record_, "The record as TABLE/DATA")->required();
  }

  void Run(const GlobalOptions& options) override {
    const auto record = RecordOf(record_);
    Workspace workspace(options, Need::kComplete);
    RequireRecord(workspace, record);
    const auto rows = workspace.database().Open("Select Top 1 * From TableData" + std::to_string(record.table) +
                                                " Where ID=" + std::to_string(record.data));
    if (options.json) {
      std::cout << Dump(ToJson(*rows)[0], 2) << '\n';
      return;
    }
    Listing listing({"Field", "Value"});
    for (std::size_t i = 0; i < rows->ColumnCount(); ++i) {
      listing.Add({rows->ColumnName(i), ToJson(rows->FieldAt(i))});
    }
    listing.PrintColumns();
  }

 private:
  std::string record_;
};

}  // namespace

void AddRecordSubcommands(CLI::App& parent, Subcommands& all) {
  auto* const record = parent.add_subcommand("record", "Write and show form records: the documents that flows work on");
  record->fallthrough()->require_subcommand(1);
  record->footer(Examples("talmflow record add 12 DAYS=3\ntalmflow record show 12/1"));
  all.push_back(std::make_unique<RecordAdd>(*record));
  all.push_back(std::make_unique<RecordShow>(*record));
}

}  // namespace talm_flow::program
