#pragma once

/// Objects whose members stand in a table: `kMembers` of the class, with the member of number 0 first.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "component/object.h"
#include "talm_flow/text.h"

namespace talm_flow::component {

template <typename T>
struct Member {
  std::string_view name;
  int uses;           ///< `kTalmMethod` and so on, joined
  std::size_t least;  ///< arguments, the value that is put not counted
  std::size_t most;
  void (T::*call)(const Use& use);
};

/// Reading a property and calling a method are the same thing to most callers.
inline constexpr int kRead = kTalmMethod | kTalmGet;

/// `T::kMembers` and `T::kHasDefault` tell the members; with a default member that is the first.
template <typename T>
class MemberObject : public Object {
  [[nodiscard]] static std::int32_t NumberOfFirst() { return T::kHasDefault ? kTalmValueMember : kTalmValueMember + 1; }

  [[nodiscard]] std::optional<std::int32_t> Find(std::string_view name) const override {
    const auto& members = T::kMembers;
    const auto found = std::ranges::find_if(
        members, [&](const Member<T>& member) { return EqualIgnoringAsciiCase(member.name, name); });
    if (found == std::end(members)) return std::nullopt;
    return static_cast<std::int32_t>(found - std::begin(members)) + NumberOfFirst();
  }

  void Invoke(const Use& use) override {
    const auto& members = T::kMembers;
    const auto index = static_cast<std::int64_t>(use.member) - NumberOfFirst();
    if (index < 0 || index >= static_cast<std::int64_t>(std::size(members))) throw Refusal{TALM_MEMBER_NOT_FOUND, {}};
    const Member<T>& member = members[static_cast<std::size_t>(index)];
    if ((member.uses & use.how) == 0) throw Refusal{TALM_MEMBER_NOT_FOUND, {}};
    const std::size_t given = use.count() - (use.Puts() ? 1 : 0);
    if (given < member.least || given > member.most) throw Refusal{TALM_BAD_PARAMETER_COUNT, {}};
    (static_cast<T&>(*this).*member.call)(use);
  }
};

}  // namespace talm_flow::component
