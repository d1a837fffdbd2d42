#pragma once

/// Statements made up from choices, in two dialects: as a flow's component writes them, and as the engine reads them.
///
///   statement = select | insert | update | delete | identity
///   select    = "select" ["distinct"] ["Top" n] list "from" source ["where" condition] ["order by" terms]
///             | select ["union" ["all"]] select
///   condition = comparisons with literals, "in" and "exists" with selects inside, "and", "or", parentheses
///
/// Keywords come in any case, pieces with any blanks and comments between them. In the engine's dialect the row limit
/// stands at the end, and key order is asked for wherever it is promised: in the outermost select over one table, in
/// one that feeds an insert, and in every one with "Top". That it is promised there is known from how the statement was
/// made, not from its text.

#include <string>
#include <utility>

#include "property.h"

namespace talm_flow::fuzz {

struct MadeStatement {
  std::string component;  ///< the text for the adapter
  std::string engine;     ///< the same in the engine's dialect
  bool ordered = true;    ///< whether the order of its rows is promised
};

/// What creates and fills the tables that made statements work on.
[[nodiscard]] const std::vector<std::string>& StatementsOfTables();

[[nodiscard]] MadeStatement MakeStatement(Choices& choices);

}  // namespace talm_flow::fuzz
