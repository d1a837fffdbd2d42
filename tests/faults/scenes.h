#pragma once

/// Situations in which the public operations have something to do, for sweeps over all of them.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/run_program.h"
#include "support/world.h"
#include "talm_flow/late_bound.h"

namespace talm_flow::test {

/// One situation of one operation.
struct Scene {
  std::string operation;  ///< "Class.Operation"
  std::string title;      ///< what is particular about it; empty for the main one
  /// The arguments of the call; empty for a command, which is called on step 2 of instance 901.
  std::vector<late_bound::Argument> arguments{};
  /// Parameters of step 2 of flow 7, the first as "C_n_1"; for commands. A command without any takes the examples of
  /// the command table.
  std::vector<std::string> parameters{};
  /// Statements that make the situation.
  std::vector<std::string> before{};
};

/// All situations, those of an operation one behind the other.
[[nodiscard]] std::vector<Scene> Scenes();

/// Where scenes play: flow 7 runs as instance 901 on record 345 of form 12, below step 2 of flow 8, instance 900. Flow 4
/// is a small one to be started, flow 9 has something of everything.
class Stage {
 public:
  explicit Stage(const Scene& scene);

  [[nodiscard]] World& world() { return world_; }

  /// Calls the scene's operation. @returns its result and its arguments after the call, as a text.
  std::string Call(Connection& connection, const host::Services& services) const;

 private:
  void SetUp();
  void SetParameters();

  const Scene& scene_;
  const late_bound::Operation& operation_;
  TemporaryFolder folder_;
  World world_;
};

/// What a scene's argument "FILE" becomes: the name of a file that does not exist, in a folder of the stage's own.
inline constexpr std::string_view kFile = "FILE";

}  // namespace talm_flow::test
