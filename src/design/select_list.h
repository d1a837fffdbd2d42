#pragma once

/// The HTML selection lists. They open alike but for small things that pages rely on: who sets a script attribute
/// apart, the value of the empty choice, line ends.

#include <string>

#include "db/session.h"

namespace talm_flow::design {

/// What the caller of a selection list chooses; holds references to the call's arguments.
struct SelectList {
  const Value& name;
  const Value& is_multiple;  ///< 1: several may be chosen
  const Value& size;
  const Value& width;       ///< above 0: goes into the style
  const Value& have_space;  ///< 1: an empty choice comes first
  const Value& selected;
  const Value* script;  ///< further attribute text; null when left out
};

/// All flows by name (`Name::FlowSelect`).
[[nodiscard]] std::string FlowSelect(db::Session& session, const SelectList& list);

/// The input parameters of a flow by position (`Construction::InputParameterSelect`).
[[nodiscard]] std::string InputParameterSelect(db::Session& session, const Value& flow_id, const SelectList& list);

/// The variables of a flow's child flows (`Construction::VarSelect`).
[[nodiscard]] std::string VarSelect(db::Session& session, const Value& flow_id, const SelectList& list);

}  // namespace talm_flow::design
