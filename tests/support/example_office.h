#pragma once

/// An installation in which every flow of examples/flows can run.

#include <string>
#include <vector>

#include "support/world.h"

namespace talm_flow::test {

class ExampleOffice {
 public:
  struct Flow {
    std::string name;  ///< the file's, without its ending
    int number;
  };

  /// Forms 12 to 16 with records, and all example flows; the budget check, which others start, is flow 1.
  ExampleOffice();

  [[nodiscard]] World& world() { return world_; }
  [[nodiscard]] const std::vector<Flow>& flows() const { return flows_; }

 private:
  void MakeForms();
  void MakeRecords();
  void MakeFlows();

  World world_;
  std::vector<Flow> flows_;
};

/// The names of the example flows, the budget check first.
[[nodiscard]] std::vector<std::string> ExampleFlowNames();

}  // namespace talm_flow::test
