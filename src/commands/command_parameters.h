#pragma once

/// The parameters of all commands, for the table in commands/command_table.cpp. Parameter k of a command stands at
/// k - 1; commands that take the same share a list.

#include <string_view>

#include "engine/command_table.h"

namespace talm_flow::commands {

using engine::Fits;
using engine::ParameterRow;
using engine::Taken;

// ---- Parameters that several commands take ---------------------------------------------------------------------------

constexpr ParameterRow Titled(ParameterRow row, std::string_view title) {
  row.title = title;
  return row;
}

constexpr ParameterRow Showing(ParameterRow row, std::string_view example) {
  row.example = example;
  return row;
}

constexpr ParameterRow Noted(ParameterRow row, std::string_view note) {
  row.note = note;
  return row;
}

constexpr ParameterRow Optional(ParameterRow row, std::string_view note) {
  row.required = false;
  return Noted(row, note);
}

inline constexpr ParameterRow kTarget{.title = "Variable",
                                      .taken = Taken::kVariable,
                                      .fits = Fits::kVariable,
                                      .required = true,
                                      .note = "name of the variable that is written, without quotes",
                                      .example = "result"};
inline constexpr ParameterRow kRecord{
    .title = "Record",
    .fits = Fits::kRecord,
    .required = true,
    .note = "a record reference, \"TableID:n,DataID:m\"; nothing is done when the host does not accept the record",
    .example = "DataID_Submit"};
inline constexpr ParameterRow kAnyRecord{.title = "Record",
                                         .fits = Fits::kRecord,
                                         .required = true,
                                         .note = "a record reference, \"TableID:n,DataID:m\"",
                                         .example = "DataID_Submit"};
inline constexpr ParameterRow kTable{
    .title = "Table",
    .fits = Fits::kTable,
    .required = true,
    .note = "a table reference, \"TableID:n\"; nothing is done when the host does not accept the table",
    .example = "\"TableID:12\""};
inline constexpr ParameterRow kUnit{
    .title = "Input unit",
    .fits = Fits::kUnit,
    .required = true,
    .note = "its code, or \"inunitid:code\"; nothing is done when the form has no such input unit",
    .example = "\"Result\""};
inline constexpr ParameterRow kNoticeTitle{.title = "Notice title",
                                           .note = "first 100 characters; empty: no notices are written",
                                           .example = "\"A request waits for you\""};
inline constexpr ParameterRow kNoticeInformation{
    .title = "Notice information", .note = "first 100 characters", .example = "\"Amount: \"+amount"};
inline constexpr ParameterRow kPersonExpression{
    .title = "People",
    .required = true,
    .note = "names, and groups as \"@group\", that the host's user-list service turns into names",
    .example = "\"kim,@board\""};
inline constexpr ParameterRow kNames{
    .title = "People",
    .required = true,
    .note = "names separated by \",\"; blanks around a name are cut, empty names skipped",
    .example = "\"kim,lee\""};
inline constexpr ParameterRow kFlag{.title = "Allowed",
                                    .taken = Taken::kStoredOrEvaluated,
                                    .fits = Fits::kFlag,
                                    .note = "1 or 0; anything else counts as 0",
                                    .example = "1"};
inline constexpr ParameterRow kEditFlag = Titled(kFlag, "Edit flag");
inline constexpr ParameterRow kTimeLimit{
    .title = "Time limit",
    .taken = Taken::kStoredOrEvaluated,
    .fits = Fits::kWholeNumber,
    .note = "a whole number in the host's unit, its sign is dropped; 0 for none; anything but a number counts as 0",
    .example = "48"};
inline constexpr ParameterRow kStep{
    .title = "Step",
    .taken = Taken::kAsStored,
    .fits = Fits::kStep,
    .required = true,
    .note = "number of a step of the same flow; nothing is done when it has no such step",
    .example = "3"};
inline constexpr ParameterRow kLinkText{.title = "Link text",
                                        .taken = Taken::kEvaluatedOrStored,
                                        .required = true,
                                        .note = "when that is empty too, nothing is assigned",
                                        .example = "\"Open\""};
inline constexpr ParameterRow kCondition{
    .title = "Condition",
    .taken = Taken::kAsStored,
    .fits = Fits::kCondition,
    .note =
        "comparisons \"field >= value\" (also <= < > <> =), joined by and, or and parentheses; and and or need a "
        "blank on each side; fields are name, inputtime, id and the form's input units; a value is an expression "
        "without parentheses and comparisons; empty for every record; a condition that does not parse finds nothing "
        "and assigns "
        "nothing",
    .example = "name=applicant and id>10"};
inline constexpr ParameterRow kItemPosition{
    .title = "Position",
    .taken = Taken::kStoredOrEvaluated,
    .fits = Fits::kWholeNumber,
    .note = "a whole number from 1, its sign is dropped; 0 and anything but a number count as 1",
    .example = "2"};
inline constexpr ParameterRow kStart{.title = "Start",
                                     .fits = Fits::kWholeNumber,
                                     .note =
                                         "position of a character, from 1; below 1, and anything but a number, "
                                         "counts as 1",
                                     .example = "1"};
inline constexpr ParameterRow kAnyText{.title = "Text", .example = "name"};
inline constexpr ParameterRow kList{.title = "List", .note = "items separated by \",\"", .example = "\"a,b,c\""};

constexpr ParameterRow Address(std::string_view title, std::string_view example) {
  return {.title = title,
          .required = true,
          .note = "separated by \",\" or blanks; empty items are skipped",
          .example = example};
}

constexpr ParameterRow ButtonText(std::string_view note) {
  return {.title = "Button text", .taken = Taken::kEvaluatedOrStored, .note = note, .example = "\"Decide\""};
}

constexpr ParameterRow Number(std::string_view note) {
  return {.title = "Value", .fits = Fits::kNumber, .required = true, .note = note, .example = "amount*2"};
}

constexpr ParameterRow Date(std::string_view title, bool required, std::string_view note) {
  return {.title = title, .fits = Fits::kDate, .required = required, .note = note, .example = "\"2026-01-31 9:05\""};
}

// ---- By command ------------------------------------------------------------------------------------------------------

inline constexpr ParameterRow kParametersOf1[] = {kRecord, kNoticeTitle, Titled(kPersonExpression, "Receivers")};
inline constexpr ParameterRow kParametersOf2[] = {
    kRecord,
    Titled(kPersonExpression, "Approvers"),
    {.title = "Approval form",
     .fits = Fits::kTable,
     .required = true,
     .note = "a table reference, \"TableID:n\"; nothing is done when the host does not accept it as an approval form",
     .example = "\"TableID:13\""},
    kNoticeTitle,
    ButtonText("first 50 characters; when empty as stored too, \"审批\""),
    kEditFlag,
    kTimeLimit,
    kNoticeInformation};
inline constexpr ParameterRow kParametersOf3[] = {
    kRecord,
    kNames,
    {.title = "Attention form",
     .fits = Fits::kTable,
     .required = true,
     .note = "a table reference, \"TableID:n\"; nothing is done when the host does not accept it as an attention form",
     .example = "\"TableID:14\""},
    kNoticeTitle,
    ButtonText("first 50 characters; when empty as stored too, \"附加\""),
    kEditFlag,
    kNoticeInformation};
inline constexpr ParameterRow kParametersOf4[] = {
    kRecord,
    kUnit,
    {.title = "Value",
     .note = "as the input unit's type asks: a text (first 4000 characters), a long text, a number, a date, file "
             "references separated by \",\", a picture reference; a value that does not fit the type is not written",
     .example = "\"approved\""}};
inline constexpr ParameterRow kParametersOf5[] = {
    kRecord,
    kUnit,
    {.title = "Value", .note = "as for C_4; a unit that takes pictures is left alone", .example = "\"approved\""}};
inline constexpr ParameterRow kParametersOf6[] = {kRecord, kNames, Titled(kFlag, "Grant")};
inline constexpr ParameterRow kParametersOf7[] = {kTable, kFlag};
inline constexpr ParameterRow kParametersOf8[] = {kRecord, kFlag};
inline constexpr ParameterRow kParametersOf9[] = {
    kRecord, kFlag,
    Showing(Titled(Optional(kTable,
                            "a table reference, \"TableID:n\"; needed when answers are allowed, and not read "
                            "otherwise; nothing is done when the host does not accept the table"),
                   "Answer form"),
            "\"TableID:15\"")};
inline constexpr ParameterRow kParametersOf10[] = {kTable};
inline constexpr ParameterRow kParametersOf11[] = {
    {.title = "Left value", .fits = Fits::kCompared, .example = "amount"},
    {.title = "Comparison",
     .taken = Taken::kAsStored,
     .fits = Fits::kComparison,
     .required = true,
     .note = "one of >= <= < > <> =, without blanks; any other text is never met; numbers compare as numbers, dates as "
             "moments; other texts are equal or not, and never less or greater",
     .example = ">="},
    {.title = "Right value", .fits = Fits::kCompared, .example = "1000"}};
inline constexpr ParameterRow kParametersOf12[] = {kRecord};
inline constexpr ParameterRow kParametersOf15[] = {
    {.title = "Runs",
     .taken = Taken::kStoredOrEvaluated,
     .fits = Fits::kWholeNumber,
     .required = true,
     .note = "a whole number, its sign is dropped; anything but a number counts as 0",
     .example = "3"},
    {.title = "Interval",
     .taken = Taken::kStoredOrEvaluated,
     .fits = Fits::kWholeNumber,
     .note = "a whole number in the unit of the host's scheduler, its sign is dropped; anything but a number counts as "
             "0",
     .example = "60"},
    kStep};
inline constexpr ParameterRow kParametersOf16[] = {kStep};
inline constexpr ParameterRow kParametersOf18[] = {
    {.title = "Flow",
     .taken = Taken::kAsStored,
     .fits = Fits::kFlow,
     .required = true,
     .note = "number of a flow; nothing is started, and the branch ends here, when there is no such flow",
     .example = "4"},
    {.title = "Handed values",
     .taken = Taken::kAsStored,
     .note = "kept for the designer; running the flow does not read it",
     .example = "amount"},
    {.title = "Receiving variables",
     .taken = Taken::kAsStored,
     .fits = Fits::kVariableList,
     .note = "names of variables separated by \"|^|\", which C_70 of the child flow writes",
     .example = "result|^|remark"}};
inline constexpr ParameterRow kParametersOf19[] = {
    {.title = "Left value", .example = "amount"},
    {.title = "Operator",
     .taken = Taken::kAsStored,
     .fits = Fits::kOperator,
     .required = true,
     .note = "one of + - * /; numbers are computed with; + and - add hours to a date and take them from it; + joins "
             "other texts; nothing is assigned for a division by 0 and where the values do not fit",
     .example = "*"},
    {.title = "Right value", .example = "2"},
    kTarget};
inline constexpr ParameterRow kParametersOf20[] = {
    Address("Receivers", "\"kim lee\""),
    {.title = "Text", .required = true, .note = "empty: nothing is queued", .example = "\"Please decide\""}};
inline constexpr ParameterRow kParametersOf21[] = {Address("Addresses", "\"kim@example.com\""),
                                                   {.title = "Title", .example = "\"Request\""},
                                                   {.title = "Text", .example = "\"Please decide\""}};
inline constexpr ParameterRow kParametersOf22[] = {
    kTarget,
    {.title = "Text", .taken = Taken::kAsStored, .note = "quotes and operators stay as they are", .example = "open"}};
inline constexpr ParameterRow kParametersOf31[] = {kTarget};
inline constexpr ParameterRow kParametersOf39[] = {kTarget, {.title = "Value", .example = "(amount+10)*2"}};
inline constexpr ParameterRow kParametersOf45[] = {
    kTarget, Noted(kAnyRecord, "a record reference, \"TableID:n,DataID:m\"; anything else assigns nothing")};
inline constexpr ParameterRow kParametersOf47[] = {kTarget, kRecord, kUnit};
inline constexpr ParameterRow kParametersOf48[] = {kTarget, Date("Date", true,
                                                                 "a date text; anything else assigns "
                                                                 "nothing")};
inline constexpr ParameterRow kParametersOf49[] = {kTarget, kRecord};
inline constexpr ParameterRow kParametersOf50[] = {kTarget, kTable};
inline constexpr ParameterRow kParametersOf51[] = {
    kTarget, Noted(kUnit, "its code, or \"inunitid:code\"; anything else assigns nothing")};
inline constexpr ParameterRow kParametersOf52[] = {kTarget,
                                                   {.title = "File",
                                                    .fits = Fits::kFile,
                                                    .required = true,
                                                    .note = "\"fileid:n\"; anything else assigns nothing",
                                                    .example = "\"fileid:7\""}};
inline constexpr ParameterRow kParametersOf53[] = {kTarget,
                                                   {.title = "Picture",
                                                    .fits = Fits::kPicture,
                                                    .required = true,
                                                    .note = "\"tablepicdataid:n\"; anything else assigns nothing",
                                                    .example = "\"tablepicdataid:7\""}};
inline constexpr ParameterRow kParametersOf54[] = {
    kTarget, Optional(kPersonExpression,
                      "names, and groups as \"@group\"; without any name left the empty text is "
                      "assigned")};
inline constexpr ParameterRow kParametersOf55[] = {kTarget, Number("a number; anything else assigns nothing")};
inline constexpr ParameterRow kParametersOf59[] = {kTarget, kAnyText};
inline constexpr ParameterRow kParametersOf66[] = {kTarget, {.title = "Value", .example = "amount"}};
inline constexpr ParameterRow kParametersOf69[] = {kTarget, kList};
inline constexpr ParameterRow kParametersOf70[] = {
    {.title = "Position",
     .taken = Taken::kAsStored,
     .fits = Fits::kPosition,
     .required = true,
     .note = "from 1, in the receiving variables of the parent's C_18 step; a fraction is cut; nothing is written when "
             "it is no number",
     .example = "1"},
    {.title = "Value", .taken = Taken::kAsStored, .note = "not evaluated", .example = "within"}};
inline constexpr ParameterRow kParametersOf76[] = {Titled(kRecord, "Source record"),
                                                   Showing(Titled(kRecord, "Target record"), "DataID_PerApp")};
inline constexpr ParameterRow kParametersOf77[] = {kTable, kCondition, kTarget};
inline constexpr ParameterRow kParametersOf78[] = {
    kList,
    {.title = "Item", .note = "compared with each item as it is; blanks around the items are cut", .example = "name"},
    kTarget};
inline constexpr ParameterRow kParametersOf79[] = {
    kTable, kCondition,
    Showing(Titled(Noted(kUnit, "name, inputtime, id or an input unit, in any case; any other text assigns nothing"),
                   "Field"),
            "\"name\""),
    kTarget};
inline constexpr ParameterRow kParametersOf80[] = {
    {.title = "Text", .note = "first 499 characters", .example = "\"Request approved\""}};
inline constexpr ParameterRow kParametersOf81[] = {
    Date("Date", false, "a date text; anything else counts as the current moment"), kTarget};
inline constexpr ParameterRow kParametersOf86[] = {Date("Moment", true, "a date text; anything else sets no timer"),
                                                   kStep};
inline constexpr ParameterRow kParametersOf87[] = {
    {.title = "List", .example = "\"a;b;c\""},
    {.title = "Separator",
     .taken = Taken::kStoredOrEvaluated,
     .note = "empty and \",\" are taken as stored and mean \",\"; so does an empty value",
     .example = "\";\""},
    kItemPosition,
    kTarget};
inline constexpr ParameterRow kParametersOf88[] = {kList, kItemPosition, kTarget};
inline constexpr ParameterRow kParametersOf90[] = {kAnyRecord, kLinkText, kTarget};
inline constexpr ParameterRow kParametersOf91[] = {
    {.title = "Page",
     .taken = Taken::kStoredOrEvaluated,
     .fits = Fits::kWholeNumber,
     .required = true,
     .note = "number of the page; anything but a number assigns nothing",
     .example = "5"},
    kLinkText,
    {.title = "Record parameters", .taken = Taken::kEvaluatedOrStored, .example = "DataID_Submit"},
    kTarget};
inline constexpr ParameterRow kParametersOf92[] = {Date("Date", true, "a date text; anything else assigns nothing"),
                                                   kTarget};
inline constexpr ParameterRow kParametersOf93[] = {
    kAnyText,
    {.title = "Sought text", .note = "compared with case; empty: nothing is replaced", .example = "\"-\""},
    {.title = "Replacement", .example = "\"/\""},
    Titled(Optional(kStart,
                    "position of a character, from 1; what stands before it is dropped; below 1, and anything "
                    "but a number, counts as 1"),
           "Start"),
    {.title = "Count",
     .fits = Fits::kWholeNumber,
     .note = "how many are replaced, from the start on; negative, and anything but a number: all",
     .example = "1"},
    kTarget};
inline constexpr ParameterRow kParametersOf94[] = {
    kAnyText,
    kStart,
    {.title = "Length",
     .fits = Fits::kWholeNumber,
     .note = "in characters; below 1, and anything but a number: to the end",
     .example = "4"},
    kTarget};
inline constexpr ParameterRow kParametersOf95[] = {kAnyText, kTarget};
inline constexpr ParameterRow kParametersOf96[] = {
    kAnyText,
    {.title = "Sought text", .note = "compared with case", .example = "\"-\""},
    Optional(kStart, "position of a character, from 1; below 1, and anything but a number, counts as 1"),
    kTarget};
inline constexpr ParameterRow kParametersOf97[] = {
    kRecord,
    kUnit,
    kNames,
    kNoticeTitle,
    ButtonText("first 50 characters; when empty as stored too, \"填写\""),
    kEditFlag,
    kTimeLimit,
    kNoticeInformation};

}  // namespace talm_flow::commands
