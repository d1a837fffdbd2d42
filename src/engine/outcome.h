#pragma once

/// What a command tells the walk. The walk alone decides, from the command's row and this, what runs next.

#include <utility>

#include "talm_flow/value.h"

namespace talm_flow::engine {

struct Outcome {
  enum class Kind {
    kDone,       ///< nothing to tell
    kTrue,       ///< the result is True
    kFalse,      ///< the result is False
    kRunStep,    ///< run step `number` of the same instance now
    kStartChild  ///< start flow `number` as a child instance; the result is known when it has run
  };

  Kind kind = Kind::kDone;
  Value number;

  static Outcome Done() { return {}; }
  static Outcome Result(bool result) { return {result ? Kind::kTrue : Kind::kFalse, {}}; }
  static Outcome RunStep(Value flow_no) { return {Kind::kRunStep, std::move(flow_no)}; }
  static Outcome StartChild(Value flow_id) { return {Kind::kStartChild, std::move(flow_id)}; }
};

}  // namespace talm_flow::engine
