#pragma once

/// @file
/// A complete host over the same database as the flows, so that everything runs out of the box.
///
/// Its services read through the connection that the component hands them, below any observing wrapper
/// (`Connection::Unobserved`). It keeps nothing between calls but its settings. One thread at a time.

#include <memory>
#include <optional>

#include "talm_flow/conversion.h"
#include "talm_flow/export.h"
#include "talm_flow/host/services.h"

namespace talm_flow::host {

/// The encoding of text files that the reference host writes.
enum class TextEncoding {
  kUtf8,     ///< without a byte-order mark
  kGb18030,  ///< for exchange with older installations
};

/// Settings of the reference host.
struct TALM_FLOW_API ReferenceHostOptions {
  /// When set, the clock stands still at this moment.
  std::optional<DateTime> fixed_clock;
  /// Of the files that `InOut::CreateTxt` writes.
  TextEncoding text_encoding = TextEncoding::kUtf8;
};

/// Owns one object a service.
class TALM_FLOW_API ReferenceHost {
 public:
  /// With the machine's clock and UTF-8 unless the options say otherwise.
  explicit ReferenceHost(ReferenceHostOptions options = {});
  ReferenceHost(const ReferenceHost&) = delete;
  ReferenceHost& operator=(const ReferenceHost&) = delete;
  ~ReferenceHost();

  /// The services; valid as long as this host.
  [[nodiscard]] Services services();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace talm_flow::host
