#include "component/host_object.h"

#include <algorithm>

#include "component/object.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::component {
namespace {

/// Names are found in any case, as hosts' languages have it.
constexpr std::uint32_t kCaseInsensitiveName = 8;

std::string CodeText(TalmResult code) {
  std::string text = "0x";
  for (int shift = 28; shift >= 0; shift -= 4) {
    text += "0123456789ABCDEF"[static_cast<std::uint32_t>(code) >> static_cast<unsigned>(shift) & 0x0FU];
  }
  return text;
}

bool MeansOtherForm(TalmResult result) {
  return result == TALM_MEMBER_NOT_FOUND || result == TALM_BAD_PARAMETER_COUNT || result == TALM_UNKNOWN_NAME ||
         result == TALM_TYPE_MISMATCH;
}

/// Clears itself.
struct OwnedException : TalmException {
  OwnedException() : TalmException{} {}
  OwnedException(const OwnedException&) = delete;
  OwnedException& operator=(const OwnedException&) = delete;
  ~OwnedException() { TalmClearException(this); }
};

}  // namespace

HostObject::HostObject(TalmUnknown* object, std::string what) : what_(std::move(what)) {
  plain_ = Ask<TalmDispatch>(object, kDispatchId);
  if (plain_) return;
  extended_ = Ask<TalmExtendedDispatch>(object, kExtendedDispatchId);
  if (!extended_) throw Refusal{TALM_TYPE_MISMATCH, {}};
}

bool HostObject::HasInterface(const TalmGuid& interface_id) const {
  return static_cast<bool>(plain_ ? Ask<TalmUnknown>(plain_.get(), interface_id)
                                  : Ask<TalmUnknown>(extended_.get(), interface_id));
}

TalmResult HostObject::Find(std::u16string_view member, std::int32_t& number) {
  const auto known = std::ranges::find(numbers_, member, [](const auto& entry) { return entry.first; });
  if (known != numbers_.end()) {
    number = known->second;
    return TALM_OK;
  }
  OwnedText name(NewText(member));
  char16_t* names = name.get();
  TalmResult result = TALM_NOT_IMPLEMENTED;
  if (!extended_) result = plain_->table->GetIDsOfNames(plain_.get(), &kNoId, &names, 1, 0, &number);
  // Some engines' objects have the plain interface and nothing behind it.
  if (!extended_ && result == TALM_NOT_IMPLEMENTED) {
    extended_ = Ask<TalmExtendedDispatch>(plain_.get(), kExtendedDispatchId);
  }
  if (extended_) result = extended_->table->GetDispID(extended_.get(), names, kCaseInsensitiveName, &number);
  if (!TALM_FAILED(result)) numbers_.emplace_back(member, number);
  return result;
}

TalmResult HostObject::Invoke(std::int32_t number, std::uint16_t how, TalmArguments& arguments, TalmVariant& result,
                              TalmException& exception) {
  TalmVariant* const wanted = (how & (kTalmPut | kTalmPutReference)) != 0 ? nullptr : &result;
  if (!extended_) {
    return plain_->table->Invoke(plain_.get(), number, &kNoId, 0, how, &arguments, wanted, &exception, nullptr);
  }
  return extended_->table->InvokeEx(extended_.get(), number, 0, how, &arguments, wanted, &exception, nullptr);
}

TalmResult HostObject::Attempt(std::u16string_view member, std::uint16_t how, std::span<const TalmVariant> arguments,
                               TalmVariant& result, TalmException& exception) {
  std::int32_t number = 0;
  const TalmResult found = Find(member, number);
  if (TALM_FAILED(found)) return found;
  std::vector<TalmVariant> reversed(arguments.rbegin(), arguments.rend());
  std::int32_t put = kTalmPutArgument;
  const bool puts = (how & (kTalmPut | kTalmPutReference)) != 0;
  TalmArguments given{.values = reversed.data(),
                      .names = puts ? &put : nullptr,
                      .count = static_cast<std::uint32_t>(reversed.size()),
                      .named_count = puts ? 1U : 0U};
  return Invoke(number, how, given, result, exception);
}

void HostObject::Fail(std::u16string_view member, TalmResult result, TalmException& exception) const {
  if (result == TALM_EXCEPTION) {
    if (exception.fill_in != nullptr) (void)exception.fill_in(&exception);
    if (exception.result != 0) result = exception.result;
    auto description = ToUtf8(View(exception.description));
    if (!description.empty()) throw DatabaseError(description, {}, CodeText(result));
  }
  const auto name = what_ + "'s " + ToUtf8(member);
  if (result == TALM_UNKNOWN_NAME) throw DatabaseError(name + " is not there", {}, CodeText(result));
  throw DatabaseError(name + " failed with the code " + CodeText(result), {}, CodeText(result));
}

OwnedVariant HostObject::Use(std::u16string_view member, std::uint16_t how, std::span<const TalmVariant> arguments) {
  OwnedVariant result;
  OwnedException exception;
  const TalmResult code = Attempt(member, how, arguments, result.get(), exception);
  if (TALM_FAILED(code)) Fail(member, code, exception);
  return result;
}

bool HostObject::TryUse(std::u16string_view member, std::uint16_t how, std::span<const TalmVariant> arguments,
                        OwnedVariant& result) {
  OwnedException exception;
  const TalmResult code = Attempt(member, how, arguments, result.get(), exception);
  if (MeansOtherForm(code)) return false;
  if (TALM_FAILED(code)) Fail(member, code, exception);
  return true;
}

}  // namespace talm_flow::component
