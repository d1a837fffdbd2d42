/// Texts, arrays, variants and objects by their class names, as the platform has them.

// The tables of functions are told to C only, or where they are asked for.
#define CINTERFACE
#include <windows.h>
// After the platform's own.
#include <dispex.h>
#include <oleauto.h>

#include <cstddef>
#include <string>

#include "component/automation.h"
#include "talm_flow/component.h"
#include "talm_flow/text.h"

// The interface's own structures are the platform's.
static_assert(sizeof(TalmVariant) == sizeof(VARIANT) && offsetof(TalmVariant, as) == offsetof(VARIANT, lVal));
static_assert(sizeof(TalmArray) == sizeof(SAFEARRAY) && offsetof(TalmArray, data) == offsetof(SAFEARRAY, pvData) &&
              offsetof(TalmArray, count) == offsetof(SAFEARRAY, rgsabound) &&
              offsetof(TalmArray, locks) == offsetof(SAFEARRAY, cLocks));
static_assert(sizeof(TalmException) == sizeof(EXCEPINFO) &&
              offsetof(TalmException, source) == offsetof(EXCEPINFO, bstrSource) &&
              offsetof(TalmException, fill_in) == offsetof(EXCEPINFO, pfnDeferredFillIn) &&
              offsetof(TalmException, result) == offsetof(EXCEPINFO, scode));
static_assert(sizeof(TalmArguments) == sizeof(DISPPARAMS) &&
              offsetof(TalmArguments, named_count) == offsetof(DISPPARAMS, cNamedArgs));
static_assert(sizeof(TalmDispatchTable) == sizeof(IDispatchVtbl) &&
              sizeof(TalmExtendedDispatchTable) == sizeof(IDispatchExVtbl) &&
              sizeof(TalmClassFactoryTable) == sizeof(IClassFactoryVtbl));
static_assert(sizeof(TalmGuid) == sizeof(GUID) && sizeof(char16_t) == sizeof(OLECHAR));

namespace {

OLECHAR* Platform(char16_t* text) { return reinterpret_cast<OLECHAR*>(text); }
const OLECHAR* Platform(const char16_t* text) { return reinterpret_cast<const OLECHAR*>(text); }
SAFEARRAY* Platform(TalmArray* array) { return reinterpret_cast<SAFEARRAY*>(array); }

}  // namespace

TalmText TalmAllocateText(const char16_t* characters, std::uint32_t count) {
  return reinterpret_cast<TalmText>(::SysAllocStringLen(Platform(characters), count));
}

std::uint32_t TalmTextLength(const char16_t* text) { return ::SysStringLen(Platform(const_cast<char16_t*>(text))); }

void TalmFreeText(TalmText text) { ::SysFreeString(Platform(text)); }

TalmArray* TalmCreateArray(std::uint16_t type, std::uint32_t count) {
  return reinterpret_cast<TalmArray*>(::SafeArrayCreateVector(type, 0, count));
}

void TalmDestroyArray(TalmArray* array) { (void)::SafeArrayDestroy(Platform(array)); }

void TalmClearVariant(TalmVariant* variant) {
  if (variant != nullptr) (void)::VariantClear(reinterpret_cast<VARIANT*>(variant));
}

TalmResult TalmCreateObject(const char16_t* class_name, TalmDispatch** object, TalmText* message) {
  if (message != nullptr) *message = nullptr;
  if (class_name == nullptr || object == nullptr) return TALM_POINTER;
  *object = nullptr;
  CLSID id{};
  HRESULT result = ::CLSIDFromProgID(Platform(class_name), &id);
  void* made = nullptr;
  if (SUCCEEDED(result)) {
    const auto& dispatch = reinterpret_cast<const IID&>(talm_flow::component::kDispatchId);
    result = ::CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, dispatch, &made);
  }
  if (FAILED(result)) {
    talm_flow::component::GiveMessage(message, "the platform made no object of the class");
  } else {
    *object = static_cast<TalmDispatch*>(made);
  }
  return static_cast<TalmResult>(result);
}
