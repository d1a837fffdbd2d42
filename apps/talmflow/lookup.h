#pragma once

/// From words of the command line to what they name in the database.

#include <cstdint>
#include <string>
#include <string_view>

#include "workspace.h"

namespace talm_flow::program {

struct Record {
  std::int64_t table = 0;
  std::int64_t data = 0;
};

/// Whether a text is one decimal digit or more, and nothing else.
[[nodiscard]] bool IsDigits(std::string_view text);

/// A number of at least 1 that fits 32 bits. @throws UserError  the word is none: "`shown` is no `what`".
[[nodiscard]] std::int64_t IdOf(std::string_view word, const std::string& what, std::string_view shown);
[[nodiscard]] inline std::int64_t IdOf(std::string_view word, const std::string& what) {
  return IdOf(word, what, word);
}

/// "12/345". @throws UserError  the word is something else.
[[nodiscard]] Record RecordOf(const std::string& word);
[[nodiscard]] std::string TextOf(const Record& record);

/// The number of the flow that a word names by its number or its name.
/// @throws UserError  there is none, or several flows have the name.
[[nodiscard]] std::int64_t FlowOf(Workspace& workspace, const std::string& word);

/// As messages show a flow: "flow 3 \"leave\"".
[[nodiscard]] std::string FlowTitle(Workspace& workspace, std::int64_t flow);

/// @throws UserError  the form, or the record, does not exist.
void RequireForm(Workspace& workspace, std::int64_t table);
void RequireRecord(Workspace& workspace, const Record& record);

/// A value as a number; 0 for Null and for texts that are none.
[[nodiscard]] std::int64_t NumberOf(const Value& value);

/// The caption of a step; Null when the flow has no such step.
[[nodiscard]] Value CaptionOf(Workspace& workspace, std::int64_t flow, std::int64_t step);

}  // namespace talm_flow::program
