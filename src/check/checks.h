#pragma once

/// The checks of a definition, by theme.

#include <cstdint>
#include <unordered_map>

#include "check/definition.h"
#include "check/expression_check.h"
#include "check/report.h"

namespace talm_flow::check {

/// The steps of a definition by number, and the edges of their tree. A number that was given twice stands for the
/// first step that has it: that is the one whose command runs.
class Tree {
 public:
  explicit Tree(const Definition& definition);

  [[nodiscard]] const std::vector<const Step*>& steps() const { return steps_; }
  /// The index in `steps()` of a number.
  [[nodiscard]] std::optional<std::size_t> Find(std::int64_t number) const;
  /// The children of the step at an index, as indexes.
  [[nodiscard]] const std::vector<std::vector<std::size_t>>& children() const { return children_; }
  /// The step that a parameter of kind "step" names, when the flow has it.
  [[nodiscard]] std::optional<std::size_t> Target(const Step& step, int k) const;

 private:
  std::vector<const Step*> steps_;
  std::unordered_map<std::int64_t, std::size_t> by_number_;
  std::vector<std::vector<std::size_t>> children_;
};

/// Step numbers, parents, circles, steps that are never run.
void CheckStructure(const Definition& definition, const Tree& tree, Report& report);

/// Commands and their parameters, with the expressions in them.
void CheckParameters(const Definition& definition, const Tree& tree, Report& report);

/// A lookup condition (C_77, C_79).
void CheckCondition(std::string_view condition, const ExpressionContext& context);

/// Jumps, and the outcomes of tasks.
void CheckFlowOfControl(const Tree& tree, Report& report);

/// The steps that run whenever step 1 does, whatever values there are.
[[nodiscard]] std::vector<bool> SurelyRun(const Tree& tree);

/// Child flows in the database: whether they exist, whether they start each other without end, what they hand back.
/// `definition` takes the place of the stored flow `definition.flow`, if it has a number.
void CheckChildFlows(db::Session& session, const Definition& definition, const Tree& tree, Report& report);

}  // namespace talm_flow::check
