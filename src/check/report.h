#pragma once

/// Collecting findings. Every kind of finding has its code here and its example in docs/checks.md.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "check/definition.h"
#include "talm_flow/definition_check.h"

namespace talm_flow::check {

/// In the order of the table in report.cpp, which gives each its number.
enum class Code {
  kNoFirstStep,
  kDuplicateStep,
  kBadStepNumber,
  kCircle,
  kOrphan,
  kNeverRun,
  kTooManyChildren,
  kNoSteps,
  kNoVersion,
  kNotClosed,
  kNoParameter,
  kBadNumber,
  kLostMarker,
  kLostLine,
  kSwallowedKey,
  kNotCarried,
  kUnknownCommand,
  kNoCommand,
  kMissingParameter,
  kSurplusParameter,
  kRepeatedParameter,
  kBadStep,
  kBadSign,
  kBadFlag,
  kBadVariable,
  kBlankInVariable,
  kBadReference,
  kBadNumericValue,
  kBadDate,
  kBadPosition,
  kBadFlow,
  kNoSuchFlow,
  kBadCondition,
  kBadConditionValue,
  kTooManyTokens,
  kParentheses,
  kOperandMissing,
  kOperatorMissing,
  kErrorText,
  kNegative,
  kNotRepresentable,
  kNotClosedLiteral,
  kBlankBesideLiteral,
  kBlankInName,
  kLiteralInName,
  kUnquoted,
  kDateComputed,
  kCommaInNumber,
  kMisspeltName,
  kJumpToItself,
  kEndlessJump,
  kEndlessChildren,
  kChildCircle,
  kNoApproval,
  kFillInOutcome,
  kReturnedTooMuch,
};

/// Where a finding belongs.
struct Place {
  const Step* step = nullptr;
  const Parameter* parameter = nullptr;
  std::string parameter_name{};  ///< of a parameter that is not there
  std::size_t line = 0;          ///< 0: the parameter's, or else the step's
};

class Report {
 public:
  void Add(Code code, const Place& place, std::string problem, std::string advice);

  /// The findings in the order of the definition's steps.
  [[nodiscard]] Findings Take(const Definition& definition);

 private:
  struct Entry {
    const Step* step;
    Finding finding;
  };
  std::vector<Entry> entries_;
};

/// A stored text between double quotes for a sentence: shortened, control characters made visible.
[[nodiscard]] std::string Shown(std::string_view text);

}  // namespace talm_flow::check
