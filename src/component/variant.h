#pragma once

/// Between variants and the component's values.
///
/// Empty and Null are Null. Numbers of every kind, currency and decimals among them, are whole numbers or doubles; dates
/// are general date-and-time texts; bytes are a text of them. An object stands for its default member's value. What fits
/// nowhere (other arrays, errors, numbers that are not finite) is refused.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "component/object.h"
#include "talm_flow/late_bound.h"
#include "talm_flow/value.h"

namespace talm_flow::component {

/// The variant that a reference to a variant leads to; any other is itself.
[[nodiscard]] const TalmVariant& Followed(const TalmVariant& variant);

/// Whether the variant is the customary mark of an argument that is not given.
[[nodiscard]] bool IsMissing(const TalmVariant& variant);

/// The object that a variant holds or refers to; null when it holds none.
[[nodiscard]] TalmUnknown* ObjectIn(const TalmVariant& variant);

/// @throws Refusal  without an argument number.
[[nodiscard]] Value ToValue(const TalmVariant& variant);

/// A call's argument as a value. @throws Refusal  with the argument's number.
[[nodiscard]] Value ArgumentOf(const Use& use, std::size_t index);

/// A new variant, for `held` to own. Texts that are no UTF-8 are the bytes of binary content.
void Hold(TalmVariant& held, const Value& value);
void Hold(TalmVariant& held, const late_bound::List& list);
void Hold(TalmVariant& held, std::string_view text);
/// Takes over the reference.
void Hold(TalmVariant& held, Reference<TalmDispatch> object);

[[nodiscard]] inline bool IsByReference(const TalmVariant& variant) { return (variant.type & kTalmByReference) != 0; }

/// Writes a value into the caller's variable, converted to the variable's type.
/// @throws Refusal  without an argument number: it does not fit.
void WriteBack(const TalmVariant& by_reference, const late_bound::Argument& value);

/// Bytes as an array of them.
void HoldBytes(TalmVariant& held, std::string_view bytes);

}  // namespace talm_flow::component
