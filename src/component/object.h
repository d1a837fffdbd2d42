#pragma once

/// What all objects of the server have in common: counted references, late binding, and the border behind which errors
/// are codes.

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "component/automation.h"

namespace talm_flow::component {

/// A call is answered with a code of the interface, not with an error of the component.
struct Refusal {
  TalmResult code;
  std::optional<std::size_t> argument;  ///< whose argument is at fault, counted from the first
};

/// One use of a member.
struct Use {
  std::int32_t member;
  std::uint16_t how;  ///< `kTalmMethod` and so on, joined
  std::span<TalmVariant> reversed;
  TalmVariant* result;  ///< empty; null when the caller does not want it

  [[nodiscard]] bool Puts() const { return (how & (kTalmPut | kTalmPutReference)) != 0; }
  [[nodiscard]] std::size_t count() const { return reversed.size(); }
  /// An argument, counted from the first. The value that is put comes last.
  [[nodiscard]] TalmVariant& operator[](std::size_t index) const { return reversed[reversed.size() - 1 - index]; }
};

/// How many objects of this library live and how often it is kept loaded.
[[nodiscard]] std::atomic<std::int64_t>& KeepCount() noexcept;

/// An object begins its life with one reference and ends it with the last.
class Object : public TalmDispatch {
 public:
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  /// The object behind an interface pointer when this very library made it, else null.
  [[nodiscard]] static Object* FromHere(TalmUnknown* object);

  void AddReference() noexcept { ++references_; }
  std::uint32_t Release() noexcept;

  /// As an interface that somebody else will release.
  [[nodiscard]] Reference<TalmDispatch> AsDispatch() { return Reference<TalmDispatch>::Counting(this); }

 protected:
  Object() noexcept;
  virtual ~Object();

 private:
  friend struct ObjectTable;

  /// The class as errors tell it.
  [[nodiscard]] virtual std::string ClassName() const = 0;
  /// The number of a member, whatever the case of its name.
  [[nodiscard]] virtual std::optional<std::int32_t> Find(std::string_view name) const = 0;
  /// May throw anything.
  virtual void Invoke(const Use& use) = 0;

  std::atomic<std::uint32_t> references_ = 1;
};

/// A counted reference to one of our own objects.
template <typename T>
class Own {
 public:
  Own() = default;
  /// Takes over the reference that a new object has.
  explicit Own(T* counted) : object_(counted) {}
  /// As a more general one.
  template <typename Special>
  requires std::derived_from<Special, T> Own(Own<Special> other) : object_(other.release()) {}
  Own(const Own& other) : object_(other.object_) {
    if (object_ != nullptr) object_->AddReference();
  }
  Own(Own&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Own& operator=(Own other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Own() {
    if (object_ != nullptr) object_->Release();
  }

  /// A new object.
  template <typename... Arguments>
  [[nodiscard]] static Own Make(Arguments&&... arguments) {
    return Own(new T(std::forward<Arguments>(arguments)...));
  }

  /// One more reference to an object that lives.
  [[nodiscard]] static Own Counting(T* object) {
    object->AddReference();
    return Own(object);
  }

  [[nodiscard]] T* get() const { return object_; }
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }
  /// Hands the reference on.
  [[nodiscard]] T* release() { return std::exchange(object_, nullptr); }

 private:
  T* object_ = nullptr;
};

/// Answers a query for an interface with `object`, which has been found to have it, and counts the reference.
template <typename T>
TalmResult Answer(T* object, bool has_it, void** answer) {
  if (!has_it) return TALM_NO_INTERFACE;
  object->table->AddRef(object);
  *answer = object;
  return TALM_OK;
}

}  // namespace talm_flow::component
