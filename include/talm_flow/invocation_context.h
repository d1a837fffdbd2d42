#pragma once

/// @file
/// The values that travel with every step.

#include "talm_flow/export.h"
#include "talm_flow/host/connection.h"
#include "talm_flow/value.h"

namespace talm_flow {

/// The eleven values that `Command::FlowExecuteByExecuteID`, `Command::NextCommand` and every command receive, by
/// reference, in this order. The caller owns all of them.
struct TALM_FLOW_API InvocationContext {
  Connection& ConnDB;    ///< the caller's open connection
  Value& ExecuteID;      ///< the running instance
  Value& FlowNo;         ///< the current step
  Value& RootExecuteID;  ///< the top instance of the tree
  Value& TableID;        ///< form table of the document that the instance works on
  Value& DataID;         ///< record of that document
  Value& FlowID;         ///< the flow definition
  Value& Operator;       ///< user who started the instance
  Value& IpAddress;      ///< client address of that user
  Value& OtherTableID;   ///< a second document, passed through unchanged
  Value& OtherDataID;    ///< record of the second document
};

}  // namespace talm_flow
