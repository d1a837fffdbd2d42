#pragma once

/// The values of one command's call, owned by a test.

#include "talm_flow/host/connection.h"
#include "talm_flow/invocation_context.h"
#include "talm_flow/value.h"

namespace talm_flow::test {

/// Step 1 of flow 7 in instance 901, its own root, on record 345 of form 12.
struct Invocation {
  Value execute_id = 901;
  Value flow_no = 1;
  Value root_execute_id = 901;
  Value table_id = 12;
  Value data_id = 345;
  Value flow_id = 7;
  Value operator_name = "李雷";
  Value ip_address = "10.0.0.7";
  Value other_table_id = 0;
  Value other_data_id = 0;

  /// The context of a call on a connection; it refers to this object.
  [[nodiscard]] InvocationContext On(Connection& connection) {
    return {connection, execute_id,    flow_no,    root_execute_id, table_id,     data_id,
            flow_id,    operator_name, ip_address, other_table_id,  other_data_id};
  }
};

}  // namespace talm_flow::test
