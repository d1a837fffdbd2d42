#include "support/temporary_folder.h"

#include <random>
#include <system_error>

namespace talm_flow::test {

TemporaryFolder::TemporaryFolder() {
  std::random_device random;
  do {
    path_ = std::filesystem::temp_directory_path() / ("talm_flow_test_" + std::to_string(random()));
  } while (!std::filesystem::create_directory(path_));
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace talm_flow::test
