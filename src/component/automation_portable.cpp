/// Texts, arrays and variants where the platform has none of its own.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <span>

#include "talm_flow/component.h"

namespace {

/// What a text's block has before its characters; its last four bytes are the size.
constexpr std::size_t kTextHead = 8;

/// What `TalmArray::features` tells of the elements.
constexpr std::uint16_t kHoldsTexts = 0x0100;
constexpr std::uint16_t kHoldsUnknown = 0x0200;
constexpr std::uint16_t kHoldsObjects = 0x0400;
constexpr std::uint16_t kHoldsVariants = 0x0800;

constexpr std::size_t ElementSize(std::uint16_t type) {
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
    case kTalmFloat:
      return 4;
    case kTalmInt64:
    case kTalmUint64:
    case kTalmDouble:
    case kTalmCurrency:
    case kTalmDate:
      return 8;
    case kTalmTextType:
      return sizeof(TalmText);
    case kTalmVariant:
      return sizeof(TalmVariant);
    default:
      return 0;
  }
}

template <typename Element>
std::span<Element> Elements(const TalmArray& array) {
  return {static_cast<Element*>(array.data), array.count};
}

void ReleaseObject(TalmUnknown* object) {
  if (object != nullptr) object->table->Release(object);
}

}  // namespace

TalmText TalmAllocateText(const char16_t* characters, std::uint32_t count) {
  // The size stands in 32 bits.
  if (count > UINT32_MAX / sizeof(char16_t) - kTextHead) return nullptr;
  const std::size_t bytes = count * sizeof(char16_t);
  auto* const block = static_cast<char*>(::operator new(kTextHead + bytes + sizeof(char16_t), std::nothrow));
  if (block == nullptr) return nullptr;
  const auto size = static_cast<std::uint32_t>(bytes);
  std::memcpy(block + kTextHead - sizeof size, &size, sizeof size);
  char* const text = block + kTextHead;
  if (characters == nullptr) {
    std::memset(text, 0, bytes);
  } else {
    std::memcpy(text, characters, bytes);
  }
  std::memset(text + bytes, 0, sizeof(char16_t));
  return reinterpret_cast<TalmText>(text);
}

std::uint32_t TalmTextLength(const char16_t* text) {
  if (text == nullptr) return 0;
  std::uint32_t size = 0;
  std::memcpy(&size, reinterpret_cast<const char*>(text) - sizeof size, sizeof size);
  return size / static_cast<std::uint32_t>(sizeof(char16_t));
}

void TalmFreeText(TalmText text) {
  if (text != nullptr) ::operator delete(reinterpret_cast<char*>(text) - kTextHead);
}

TalmArray* TalmCreateArray(std::uint16_t type, std::uint32_t count) {
  const std::size_t size = ElementSize(type);
  if (size == 0) return nullptr;
  void* const data = ::operator new(std::max<std::size_t>(size * count, 1), std::nothrow);
  void* const room = ::operator new(sizeof(TalmArray), std::nothrow);
  if (data == nullptr || room == nullptr) {
    ::operator delete(data);
    ::operator delete(room);
    return nullptr;
  }
  std::memset(data, 0, size * count);
  const bool texts = type == kTalmTextType;
  const bool variants = type == kTalmVariant;
  return ::new (room) TalmArray{.dimensions = 1,
                                .features = texts      ? kHoldsTexts
                                            : variants ? kHoldsVariants
                                                       : std::uint16_t{0},
                                .element_size = static_cast<std::uint32_t>(size),
                                .locks = 0,
                                .data = data,
                                .count = count,
                                .lower_bound = 0};
}

void TalmDestroyArray(TalmArray* array) {
  if (array == nullptr) return;
  if ((array->features & kHoldsTexts) != 0) std::ranges::for_each(Elements<TalmText>(*array), TalmFreeText);
  if ((array->features & (kHoldsUnknown | kHoldsObjects)) != 0) {
    std::ranges::for_each(Elements<TalmUnknown*>(*array), ReleaseObject);
  }
  if ((array->features & kHoldsVariants) != 0) {
    for (TalmVariant& element : Elements<TalmVariant>(*array)) TalmClearVariant(&element);
  }
  ::operator delete(array->data);
  ::operator delete(array);
}

void TalmClearVariant(TalmVariant* variant) {
  if (variant == nullptr) return;
  // Whatever releases must not find the variant again.
  const TalmVariant held = *variant;
  *variant = TalmVariant{};
  if (held.type == kTalmTextType) {
    TalmFreeText(held.as.text);
  } else if (held.type == kTalmObject || held.type == kTalmUnknown) {
    ReleaseObject(held.as.unknown);
  } else if ((held.type & kTalmArray) != 0 && (held.type & kTalmByReference) == 0) {
    TalmDestroyArray(held.as.array);
  }
}
