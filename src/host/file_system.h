#pragma once

#include "talm_flow/host/file_system.h"
#include "talm_flow/host/reference_host.h"

namespace talm_flow::host {

class ReferenceFileSystem : public FileSystem {
 public:
  explicit ReferenceFileSystem(TextEncoding encoding) : encoding_(encoding) {}

  void RequireEncodable(std::string_view file_name, std::string_view text) override;
  [[nodiscard]] bool FileExists(std::string_view file_name) override;
  void DeleteFile(std::string_view file_name) override;
  [[nodiscard]] std::unique_ptr<TextStream> CreateTextFile(std::string_view file_name) override;

 private:
  TextEncoding encoding_;
};

}  // namespace talm_flow::host
