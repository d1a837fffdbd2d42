#pragma once

/// Owners of what crosses the binary interface, and small helpers for reading it.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "talm_flow/component.h"

namespace talm_flow::component {

inline constexpr TalmGuid kNoId{};
inline constexpr TalmGuid kUnknownId = TALM_UNKNOWN_INTERFACE_ID;
inline constexpr TalmGuid kClassFactoryId = TALM_CLASS_FACTORY_INTERFACE_ID;
inline constexpr TalmGuid kDispatchId = TALM_DISPATCH_INTERFACE_ID;
inline constexpr TalmGuid kExtendedDispatchId = TALM_EXTENDED_DISPATCH_INTERFACE_ID;

[[nodiscard]] inline bool Same(const TalmGuid& a, const TalmGuid& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

/// "{5B1E3A70-...}", in capitals.
[[nodiscard]] std::string GuidText(const TalmGuid& id);

/// What `GuidText` gives, read back; nothing when it is no such text.
[[nodiscard]] std::optional<TalmGuid> ParseGuid(std::string_view text);

/// The characters of a counted text.
[[nodiscard]] inline std::u16string_view View(const char16_t* text) { return {text, TalmTextLength(text)}; }

/// The characters of a text that ends with its first zero; none for null.
[[nodiscard]] inline std::u16string_view ZeroTerminated(const char16_t* text) {
  return text == nullptr ? std::u16string_view() : std::u16string_view(text);
}

/// A new counted text, for somebody else to free. @throws std::bad_alloc
[[nodiscard]] TalmText NewText(std::u16string_view characters);
[[nodiscard]] TalmText NewText(std::string_view utf8);

/// Hands a message to a caller who may not want it.
void GiveMessage(TalmText* message, std::string_view utf8) noexcept;

struct TextFreer {
  void operator()(char16_t* text) const { TalmFreeText(text); }
};
using OwnedText = std::unique_ptr<char16_t, TextFreer>;

/// A variant that goes with its owner.
class OwnedVariant {
 public:
  OwnedVariant() = default;
  OwnedVariant(OwnedVariant&& other) noexcept : variant_(std::exchange(other.variant_, TalmVariant{})) {}
  OwnedVariant& operator=(OwnedVariant&& other) noexcept {
    std::swap(variant_, other.variant_);
    return *this;
  }
  ~OwnedVariant() { TalmClearVariant(&variant_); }

  [[nodiscard]] TalmVariant& get() { return variant_; }
  [[nodiscard]] const TalmVariant& get() const { return variant_; }

 private:
  TalmVariant variant_{};
};

/// A counted reference to an object of any interface.
template <typename T>
class Reference {
 public:
  Reference() = default;
  /// Takes over a reference that somebody else counted.
  explicit Reference(T* counted) : object_(counted) {}
  Reference(const Reference& other) : Reference(Counting(other.object_)) {}
  Reference(Reference&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Reference& operator=(Reference other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Reference() {
    if (object_ != nullptr) object_->table->Release(object_);
  }

  /// Counts one more reference.
  [[nodiscard]] static Reference Counting(T* object) {
    if (object != nullptr) object->table->AddRef(object);
    return Reference(object);
  }

  [[nodiscard]] T* get() const { return object_; }
  T* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  /// Hands the reference on.
  [[nodiscard]] T* release() { return std::exchange(object_, nullptr); }

 private:
  T* object_ = nullptr;
};

/// The same object by another interface; nothing when it has none.
template <typename To, typename From>
[[nodiscard]] Reference<To> Ask(From* object, const TalmGuid& interface_id) {
  void* found = nullptr;
  if (TALM_FAILED(object->table->QueryInterface(object, &interface_id, &found))) return {};
  return Reference<To>(static_cast<To*>(found));
}

}  // namespace talm_flow::component
