#pragma once

/// What a command tells the walk. The walk alone decides, from the command's row and this, what runs next.

#include <memory>
#include <utility>

#include "talm_flow/value.h"

namespace talm_flow::engine {

/// The values that stay the same for all steps of one running instance.
struct Instance {
  Value execute_id;
  Value root_execute_id;
  Value table_id;
  Value data_id;
  Value flow_id;
  Value operator_name;
  Value ip_address;
  Value other_table_id;
  Value other_data_id;
};

struct Outcome {
  enum class Kind {
    kDone,     ///< nothing to tell
    kTrue,     ///< the result is True
    kFalse,    ///< the result is False
    kRunStep,  ///< run `flow_no` of the same instance now
    kRunChild  ///< run step 1 of `child` now; the result is known when it has run
  };

  Kind kind = Kind::kDone;
  Value flow_no;
  std::unique_ptr<Instance> child;

  static Outcome Done() { return {}; }
  static Outcome Result(bool result) { return {result ? Kind::kTrue : Kind::kFalse, {}, nullptr}; }
  static Outcome RunStep(Value step) { return {Kind::kRunStep, std::move(step), nullptr}; }
  static Outcome RunChild(std::unique_ptr<Instance> instance) { return {Kind::kRunChild, {}, std::move(instance)}; }
};

}  // namespace talm_flow::engine
