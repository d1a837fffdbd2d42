/// What a host calls besides the objects, the same on every platform.

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "component/automation.h"
#include "component/error_codes.h"
#include "talm_flow/text.h"

using talm_flow::component::NewText;

TalmText TalmTextFromUtf8(const char* utf8) {
  try {
    return NewText(std::string_view(utf8 == nullptr ? "" : utf8));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

std::size_t TalmTextToUtf8(const char16_t* text, char* buffer, std::size_t size) {
  std::string utf8;
  try {
    utf8 = talm_flow::ToUtf8(talm_flow::component::View(text));
  } catch (const std::bad_alloc&) {
    utf8.clear();
  }
  if (buffer != nullptr && size > 0) {
    std::size_t fits = std::min(size - 1, utf8.size());
    // No half of a character stays at the end.
    while (fits > 0 && fits < utf8.size() && (static_cast<unsigned char>(utf8[fits]) & 0xC0U) == 0x80U) --fits;
    std::memcpy(buffer, utf8.data(), fits);
    buffer[fits] = '\0';
  }
  return utf8.size();
}

TalmResult TalmCall(TalmDispatch* object, const char16_t* member, std::uint16_t use, const TalmVariant* arguments,
                    std::uint32_t count, TalmVariant* result, TalmException* exception) {
  if (object == nullptr || member == nullptr || (count > 0 && arguments == nullptr)) return TALM_POINTER;
  std::int32_t number = kTalmUnknownMember;
  std::vector<TalmVariant> reversed;
  try {
    std::u16string name(member);
    char16_t* const names = name.data();
    const TalmResult found = object->table->GetIDsOfNames(object, &talm_flow::component::kNoId,
                                                          const_cast<char16_t**>(&names), 1, 0, &number);
    if (TALM_FAILED(found)) return found;
    reversed.assign(std::make_reverse_iterator(arguments + count), std::make_reverse_iterator(arguments));
  } catch (const std::bad_alloc&) {
    return TALM_OUT_OF_MEMORY;
  }
  std::int32_t put = kTalmPutArgument;
  const bool puts = (use & (kTalmPut | kTalmPutReference)) != 0;
  TalmArguments given{
      .values = reversed.data(), .names = puts ? &put : nullptr, .count = count, .named_count = puts ? 1U : 0U};
  return object->table->Invoke(object, number, &talm_flow::component::kNoId, 0, use, &given, result, exception,
                               nullptr);
}

void TalmClearException(TalmException* exception) {
  if (exception == nullptr) return;
  TalmFreeText(exception->source);
  TalmFreeText(exception->description);
  TalmFreeText(exception->help_file);
  *exception = TalmException{};
}

const char* TalmErrorKind(TalmResult code) {
  const auto& codes = talm_flow::component::kErrorCodes;
  const auto* const found = std::ranges::find(codes, code, &talm_flow::component::ErrorCode::code);
  return found == codes.end() ? nullptr : found->kind;
}
