#pragma once

/// A host's own object, asked by the names of its members.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "component/automation.h"

namespace talm_flow::component {

/// Through plain late binding where the object has it and implements it, else through the extended kind of script engines'
/// objects.
class HostObject {
 public:
  /// @param what  how messages call the object.
  /// @throws Refusal  it has no late binding of either kind.
  HostObject(TalmUnknown* object, std::string what);

  /// Uses a member. Whatever goes wrong is the database's error: the host's own message where there is one.
  /// @throws DatabaseError
  OwnedVariant Use(std::u16string_view member, std::uint16_t how, std::span<const TalmVariant> arguments = {});

  /// As `Use` for what may not be there in this form: nothing happens and false is the answer when the member is no
  /// such thing, or takes no such arguments.
  bool TryUse(std::u16string_view member, std::uint16_t how, std::span<const TalmVariant> arguments,
              OwnedVariant& result);

  [[nodiscard]] bool HasInterface(const TalmGuid& interface_id) const;

  /// The object as the host's own callers know it; nothing when it has extended late binding only.
  [[nodiscard]] const Reference<TalmDispatch>& plain() const { return plain_; }

 private:
  TalmResult Find(std::u16string_view member, std::int32_t& number);
  TalmResult Attempt(std::u16string_view member, std::uint16_t how, std::span<const TalmVariant> arguments,
                     TalmVariant& result, TalmException& exception);
  TalmResult Invoke(std::int32_t number, std::uint16_t how, TalmArguments& arguments, TalmVariant& result,
                    TalmException& exception);
  [[noreturn]] void Fail(std::u16string_view member, TalmResult result, TalmException& exception) const;

  std::string what_;
  Reference<TalmDispatch> plain_;
  Reference<TalmExtendedDispatch> extended_;
  std::vector<std::pair<std::u16string, std::int32_t>> numbers_;
};

}  // namespace talm_flow::component
