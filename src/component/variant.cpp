#include "component/variant.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <system_error>

#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace talm_flow::component {
namespace {

constexpr std::int64_t kCurrencyUnit = 10000;
constexpr std::int64_t kSecondsPerDay = 86400;
constexpr double kSecondsPerDayAsDouble = 86400;
/// 1899-12-30, where the days of dates are counted from.
constexpr std::int64_t kFirstDay = -2209161600;
/// Days from there to the years 100 and 10000.
constexpr double kLeastDate = -657434;
constexpr double kDatesEnd = 2958466;
/// Whole numbers up to here are doubles too.
constexpr std::int64_t kDoublesAreExact = std::int64_t{1} << 53U;
/// References to references are followed no further: nobody makes them longer on purpose.
constexpr int kReferencesFollowed = 8;

[[noreturn]] void Refuse(TalmResult code) { throw Refusal{code, {}}; }

Value FromDouble(double number) {
  if (!std::isfinite(number)) Refuse(TALM_TYPE_MISMATCH);
  return number;
}

/// The number that the shortest text of a float tells: 0.1 stays 0.1.
Value FromFloat(float number) {
  if (!std::isfinite(number)) Refuse(TALM_TYPE_MISMATCH);
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  double result = 0;
  std::from_chars(digits.data(), end, result);
  return result;
}

Value FromUnsigned(std::uint64_t number) {
  if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
    return static_cast<double>(number);
  }
  return static_cast<std::int64_t>(number);
}

Value FromCurrency(std::int64_t amount) {
  if (amount % kCurrencyUnit == 0) return amount / kCurrencyUnit;
  return static_cast<double>(amount) / static_cast<double>(kCurrencyUnit);
}

Value FromDate(double date) {
  if (!(date >= kLeastDate && date < kDatesEnd)) Refuse(TALM_TYPE_MISMATCH);
  const double day = std::trunc(date);
  const auto seconds = static_cast<std::int64_t>(std::round(std::abs(date - day) * kSecondsPerDayAsDouble));
  return GeneralDateText(DateTime{kFirstDay + static_cast<std::int64_t>(day) * kSecondsPerDay + seconds});
}

double ToDate(DateTime moment) {
  const std::int64_t since = moment.seconds - kFirstDay;
  std::int64_t day = since / kSecondsPerDay;
  if (since % kSecondsPerDay < 0) --day;
  const double time = static_cast<double>(since - day * kSecondsPerDay) / kSecondsPerDayAsDouble;
  return day < 0 ? static_cast<double>(day) - time : static_cast<double>(day) + time;
}

/// A decimal number fills its variant, the type included.
Value FromDecimal(const TalmVariant& variant) {
  struct Decimal {
    std::uint16_t type;
    std::uint8_t scale;
    std::uint8_t sign;
    std::uint32_t high;
    std::uint64_t low;
  } decimal{};
  std::memcpy(&decimal, &variant, sizeof decimal);
  const bool negative = (decimal.sign & 0x80U) != 0;
  if (decimal.high == 0 && decimal.scale == 0 && decimal.low <= INT64_MAX) {
    const auto whole = static_cast<std::int64_t>(decimal.low);
    return negative ? -whole : whole;
  }
  const double digits = std::ldexp(static_cast<double>(decimal.high), 64) + static_cast<double>(decimal.low);
  const double number = digits / std::pow(10, decimal.scale);
  return negative ? -number : number;
}

Value FromArray(const TalmVariant& variant) {
  const TalmArray* const array = variant.as.array;
  if (variant.type != (kTalmArray | kTalmUint8) || array == nullptr || array->dimensions != 1) {
    Refuse(TALM_TYPE_MISMATCH);
  }
  return std::string(static_cast<const char*>(array->data), array->count);
}

Value FromObject(TalmUnknown* object) {
  const auto dispatch = object == nullptr ? Reference<TalmDispatch>() : Ask<TalmDispatch>(object, kDispatchId);
  if (!dispatch) Refuse(TALM_TYPE_MISMATCH);
  TalmArguments none{};
  OwnedVariant value;
  const TalmResult result = dispatch->table->Invoke(dispatch.get(), kTalmValueMember, &kNoId, 0, kTalmGet, &none,
                                                    &value.get(), nullptr, nullptr);
  // An object whose value is an object has none.
  if (TALM_FAILED(result) || ObjectIn(value.get()) != nullptr) Refuse(TALM_TYPE_MISMATCH);
  return ToValue(value.get());
}

std::size_t SizeOf(unsigned type) {
  switch (type) {
    case kTalmInt8:
    case kTalmUint8:
      return 1;
    case kTalmInt16:
    case kTalmUint16:
    case kTalmBoolean:
      return 2;
    case kTalmInt32:
    case kTalmUint32:
    case kTalmInt:
    case kTalmUint:
    case kTalmError:
    case kTalmFloat:
      return 4;
    default:
      return sizeof(void*);
  }
}

/// What a reference refers to, not owned.
TalmVariant Referred(const TalmVariant& reference) {
  if (reference.as.reference == nullptr) Refuse(TALM_TYPE_MISMATCH);
  const unsigned type = reference.type & ~unsigned{kTalmByReference};
  TalmVariant referred{};
  if (type == kTalmDecimal) {
    std::memcpy(&referred, reference.as.reference, 16);
  } else {
    std::memcpy(&referred.as, reference.as.reference, SizeOf(type));
  }
  referred.type = static_cast<std::uint16_t>(type);
  return referred;
}

Value FromPlain(const TalmVariant& variant) {
  const auto& as = variant.as;
  if ((variant.type & kTalmArray) != 0) return FromArray(variant);
  switch (variant.type) {
    case kTalmEmpty:
    case kTalmNull:
      return nullptr;
    case kTalmInt8:
      return as.int8;
    case kTalmUint8:
      return as.uint8;
    case kTalmInt16:
      return as.int16;
    case kTalmUint16:
      return as.uint16;
    case kTalmInt32:
    case kTalmInt:
      return as.int32;
    case kTalmUint32:
    case kTalmUint:
      return as.uint32;
    case kTalmInt64:
      return as.int64;
    case kTalmUint64:
      return FromUnsigned(as.uint64);
    case kTalmFloat:
      return FromFloat(as.float32);
    case kTalmDouble:
      return FromDouble(as.float64);
    case kTalmCurrency:
      return FromCurrency(as.currency);
    case kTalmDecimal:
      return FromDecimal(variant);
    case kTalmDate:
      return FromDate(as.date);
    case kTalmBoolean:
      return as.boolean != 0;
    case kTalmTextType:
      return ToUtf8(View(as.text));
    case kTalmObject:
    case kTalmUnknown:
      return FromObject(as.unknown);
    case kTalmError:
      Refuse(as.error == TALM_PARAMETER_NOT_FOUND ? TALM_PARAMETER_NOT_FOUND : TALM_TYPE_MISMATCH);
    default:
      Refuse(TALM_TYPE_MISMATCH);
  }
}

template <typename T>
void Put(const TalmVariant& by_reference, T value) {
  std::memcpy(by_reference.as.reference, &value, sizeof value);
}

/// To the nearest whole number, ties to the even one, within the type's range.
template <typename T>
void PutWhole(const TalmVariant& by_reference, const Value& value) {
  if (value.IsWhole()) {
    if (!std::in_range<T>(value.Whole())) Refuse(TALM_OVERFLOW);
    return Put(by_reference, static_cast<T>(value.Whole()));
  }
  const double rounded = RoundHalfEven(ToDouble(value));
  // The bound above the highest is a double in any case, the highest may be none.
  const double end = std::ldexp(1.0, std::numeric_limits<T>::digits);
  if (rounded < static_cast<double>(std::numeric_limits<T>::min()) || rounded >= end) Refuse(TALM_OVERFLOW);
  Put(by_reference, static_cast<T>(rounded));
}

void PutFloat(const TalmVariant& by_reference, const Value& value) {
  const double number = ToDouble(value);
  if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max())) Refuse(TALM_OVERFLOW);
  Put(by_reference, static_cast<float>(number));
}

void PutCurrency(const TalmVariant& by_reference, const Value& value) {
  PutWhole<std::int64_t>(by_reference, ToDouble(value) * static_cast<double>(kCurrencyUnit));
}

void PutDate(const TalmVariant& by_reference, const Value& value) {
  if (value.IsText()) {
    if (const auto moment = ParseDate(value.Text())) return Put(by_reference, ToDate(*moment));
  }
  const double date = ToDouble(value);
  if (date < kLeastDate || date >= kDatesEnd) Refuse(TALM_OVERFLOW);
  Put(by_reference, date);
}

void PutBoolean(const TalmVariant& by_reference, const Value& value) {
  bool truth = false;
  if (value.IsText() &&
      (EqualIgnoringAsciiCase(value.Text(), "true") || EqualIgnoringAsciiCase(value.Text(), "false"))) {
    truth = value.Text().size() == 4;
  } else {
    truth = ToDouble(value) != 0;
  }
  Put(by_reference, static_cast<std::int16_t>(truth ? -1 : 0));
}

void PutText(const TalmVariant& by_reference, const Value& value) {
  OwnedText text(NewText(ToText(value)));
  auto& variable = *static_cast<TalmText*>(by_reference.as.reference);
  TalmFreeText(std::exchange(variable, text.release()));
}

void PutConverted(const TalmVariant& by_reference, const Value& value) {
  switch (by_reference.type & ~unsigned{kTalmByReference}) {
    case kTalmInt8:
      return PutWhole<std::int8_t>(by_reference, value);
    case kTalmUint8:
      return PutWhole<std::uint8_t>(by_reference, value);
    case kTalmInt16:
      return PutWhole<std::int16_t>(by_reference, value);
    case kTalmUint16:
      return PutWhole<std::uint16_t>(by_reference, value);
    case kTalmInt32:
    case kTalmInt:
      return PutWhole<std::int32_t>(by_reference, value);
    case kTalmUint32:
    case kTalmUint:
      return PutWhole<std::uint32_t>(by_reference, value);
    case kTalmInt64:
      return PutWhole<std::int64_t>(by_reference, value);
    case kTalmUint64:
      return PutWhole<std::uint64_t>(by_reference, value);
    case kTalmFloat:
      return PutFloat(by_reference, value);
    case kTalmDouble:
      return Put(by_reference, ToDouble(value));
    case kTalmCurrency:
      return PutCurrency(by_reference, value);
    case kTalmDate:
      return PutDate(by_reference, value);
    case kTalmBoolean:
      return PutBoolean(by_reference, value);
    case kTalmTextType:
      return PutText(by_reference, value);
    default:
      Refuse(TALM_TYPE_MISMATCH);
  }
}

struct ArrayDestroyer {
  void operator()(TalmArray* array) const { TalmDestroyArray(array); }
};
using OwnedArray = std::unique_ptr<TalmArray, ArrayDestroyer>;

OwnedArray NewArray(TalmType type, std::size_t count) {
  OwnedArray array(TalmCreateArray(static_cast<std::uint16_t>(type), static_cast<std::uint32_t>(count)));
  if (!array) throw std::bad_alloc();
  return array;
}

OwnedArray TextArray(const late_bound::List& list) {
  auto array = NewArray(kTalmTextType, list.size());
  for (std::size_t i = 0; i < list.size(); ++i) static_cast<TalmText*>(array->data)[i] = NewText(list[i]);
  return array;
}

void PutList(const TalmVariant& by_reference, const late_bound::List& list) {
  if (by_reference.type != (kTalmByReference | kTalmArray | kTalmTextType)) Refuse(TALM_TYPE_MISMATCH);
  auto& variable = *static_cast<TalmArray**>(by_reference.as.reference);
  // Somebody who looks at the elements would lose them.
  if (variable != nullptr && variable->locks > 0) Refuse(TALM_TYPE_MISMATCH);
  OwnedArray old(std::exchange(variable, TextArray(list).release()));
}

bool IsUtf8(std::string_view text) {
  while (const std::size_t size = SequenceSize(text)) text.remove_prefix(size);
  return text.empty();
}

}  // namespace

const TalmVariant& Followed(const TalmVariant& variant) {
  const TalmVariant* followed = &variant;
  for (int i = 0; i < kReferencesFollowed; ++i) {
    if (followed->type != (kTalmByReference | kTalmVariant) || followed->as.reference == nullptr) return *followed;
    followed = static_cast<const TalmVariant*>(followed->as.reference);
  }
  Refuse(TALM_TYPE_MISMATCH);
}

bool IsMissing(const TalmVariant& variant) {
  const TalmVariant& followed = Followed(variant);
  return followed.type == kTalmError && followed.as.error == TALM_PARAMETER_NOT_FOUND;
}

TalmUnknown* ObjectIn(const TalmVariant& variant) {
  const TalmVariant& followed = Followed(variant);
  const TalmVariant plain = IsByReference(followed) ? Referred(followed) : followed;
  return plain.type == kTalmObject || plain.type == kTalmUnknown ? plain.as.unknown : nullptr;
}

Value ToValue(const TalmVariant& variant) {
  const TalmVariant& followed = Followed(variant);
  return FromPlain(IsByReference(followed) ? Referred(followed) : followed);
}

Value ArgumentOf(const Use& use, std::size_t index) {
  try {
    return ToValue(use[index]);
  } catch (const Refusal& refusal) {
    throw Refusal{refusal.code, index};
  }
}

void Hold(TalmVariant& held, const Value& value) {
  held = TalmVariant{};
  if (value.IsNull()) {
    held.type = kTalmNull;
  } else if (value.IsBoolean()) {
    held.type = kTalmBoolean;
    held.as.boolean = static_cast<std::int16_t>(value.Boolean() ? -1 : 0);
  } else if (value.IsText()) {
    Hold(held, std::string_view(value.Text()));
  } else if (value.IsWhole() && std::in_range<std::int32_t>(value.Whole())) {
    held.type = kTalmInt32;
    held.as.int32 = static_cast<std::int32_t>(value.Whole());
  } else if (value.IsWhole() && (value.Whole() > kDoublesAreExact || value.Whole() < -kDoublesAreExact)) {
    held.type = kTalmInt64;
    held.as.int64 = value.Whole();
  } else {
    // Script engines know no whole numbers of 64 bits.
    held.type = kTalmDouble;
    held.as.float64 = value.IsWhole() ? static_cast<double>(value.Whole()) : value.Double();
  }
}

void Hold(TalmVariant& held, std::string_view text) {
  if (!IsUtf8(text)) return HoldBytes(held, text);
  held = TalmVariant{};
  held.as.text = NewText(text);
  held.type = kTalmTextType;
}

void Hold(TalmVariant& held, const late_bound::List& list) {
  held = TalmVariant{};
  auto array = NewArray(kTalmVariant, list.size());
  for (std::size_t i = 0; i < list.size(); ++i) {
    TalmVariant& element = static_cast<TalmVariant*>(array->data)[i];
    element.as.text = NewText(list[i]);
    element.type = kTalmTextType;
  }
  held.as.array = array.release();
  held.type = kTalmArray | kTalmVariant;
}

void Hold(TalmVariant& held, Reference<TalmDispatch> object) {
  held = TalmVariant{};
  held.as.object = object.release();
  held.type = kTalmObject;
}

void HoldBytes(TalmVariant& held, std::string_view bytes) {
  held = TalmVariant{};
  auto array = NewArray(kTalmUint8, bytes.size());
  if (!bytes.empty()) std::memcpy(array->data, bytes.data(), bytes.size());
  held.as.array = array.release();
  held.type = kTalmArray | kTalmUint8;
}

void WriteBack(const TalmVariant& by_reference, const late_bound::Argument& value) {
  const TalmVariant& reference =
      by_reference.type == (kTalmByReference | kTalmVariant) ? Followed(by_reference) : by_reference;
  if (!IsByReference(reference)) {
    OwnedVariant made;
    value.IsList() ? Hold(made.get(), value.Items()) : Hold(made.get(), value.Single());
    // What the reference leads to is the caller's own variable.
    std::swap(const_cast<TalmVariant&>(reference), made.get());
    return;
  }
  if (reference.as.reference == nullptr) Refuse(TALM_TYPE_MISMATCH);
  if (value.IsList()) return PutList(reference, value.Items());
  try {
    PutConverted(reference, value.Single());
  } catch (const ConversionError&) {
    Refuse(TALM_TYPE_MISMATCH);
  }
}

}  // namespace talm_flow::component
