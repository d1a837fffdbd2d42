#pragma once

/// One call, made to fail at each of its fault points in turn.

#include <cstddef>
#include <functional>
#include <string>

#include "support/fault_points.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/host/services.h"

namespace talm_flow::test {

/// A call of the component, on the connection and with the services that it is given. @returns what it gave, as a text.
using SweptCall = std::function<std::string(Connection&, const host::Services&)>;

struct SweepResult {
  std::size_t statements = 0;  ///< of the undisturbed run
  std::size_t points = 0;      ///< fault points of the undisturbed run, all of which were made to fail
  bool changes_rows = false;   ///< the undisturbed run left other rows than it found
};

/// Runs the call undisturbed, then once for each fault point with that point failing, and fails the test unless every
/// time: the very error object that was raised reaches the caller; nothing runs behind the fault; the rows are those
/// that stood at the same point of the undisturbed run; no row set stays open; the unit of work around the call takes
/// everything back; and the next call on the same connection works. Leaves the database as it was.
/// @param next  the next call; it must change no row.
[[nodiscard]] SweepResult Sweep(adapters::Database& database, const host::Services& services, const SweptCall& call,
                                const SweptCall& next);

/// The same, the next call being the call itself, undisturbed: it must give what it gave the first time.
[[nodiscard]] SweepResult Sweep(adapters::Database& database, const host::Services& services, const SweptCall& call);

}  // namespace talm_flow::test
