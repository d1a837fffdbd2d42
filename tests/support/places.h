#pragma once

/// Where things are that tests need: known to one source alone, so that the objects of all others do not depend on the
/// folder they were built in and can be shared between checkouts.

#include <string>
#include <string_view>

namespace talm_flow::test {

/// A file of the project, as "examples/flows/budget_check.flow".
[[nodiscard]] std::string SourcePath(std::string_view path);

/// The program "talmflow" of this build; empty when it is not built.
[[nodiscard]] std::string ProgramPath();

}  // namespace talm_flow::test
