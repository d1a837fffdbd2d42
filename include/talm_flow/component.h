#pragma once

/// The in-process component server's binary interface, for hosts in any language; C and C++ may include this file.
///
/// An object is a pointer to a structure whose first member points to a table of functions. Tables, texts, variants and
/// arrays are laid out exactly as the Windows platform lays out IUnknown, IDispatch, BSTR, VARIANT and SAFEARRAY, so that
/// on Windows the platform's own headers describe the same things and its own functions work on them. Elsewhere this
/// header and its functions do; a host links libtalm_flow_loader for them.
///
/// Ownership: whoever is handed an object releases it; arguments stay the caller's; results, texts and variants that a
/// call gives are the caller's to release, free or clear. The server's functions free what the host's functions made, and
/// the other way round.
/// Threading: an object belongs to one thread at a time; objects of different threads are independent. Reference counts
/// may change on any thread.
/// Errors: no exception and no signal crosses this interface. docs/component.md tells the codes.

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <uchar.h>
#endif

/// How functions are called; on 64-bit machines there is but one way.
#if defined(_WIN32)
#define TALM_CALL __stdcall
#else
#define TALM_CALL
#endif

/// Marks what the shared libraries offer, however much else they hide.
#if defined(_WIN32)
#define TALM_EXPORT
#else
#define TALM_EXPORT __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

// ---- Results --------------------------------------------------------------------------------------------------------

/// What every function gives: negative is an error. `TALM_FAILED` tells.
typedef int32_t TalmResult;

#define TALM_RESULT(code) ((TalmResult)(code))
#define TALM_FAILED(result) ((result) < 0)

#define TALM_OK TALM_RESULT(0)
/// Done, and the answer is no.
#define TALM_FALSE TALM_RESULT(1)
#define TALM_NOT_IMPLEMENTED TALM_RESULT(0x80004001U)
/// The object has no such interface.
#define TALM_NO_INTERFACE TALM_RESULT(0x80004002U)
/// A pointer that must be given is null.
#define TALM_POINTER TALM_RESULT(0x80004003U)
#define TALM_FAIL TALM_RESULT(0x80004005U)
#define TALM_UNEXPECTED TALM_RESULT(0x8000FFFFU)
#define TALM_OUT_OF_MEMORY TALM_RESULT(0x8007000EU)
#define TALM_INVALID_ARGUMENT TALM_RESULT(0x80070057U)

/// The object has no member of that number, or not in the way it was asked for.
#define TALM_MEMBER_NOT_FOUND TALM_RESULT(0x80020003U)
/// An argument that must be given is missing.
#define TALM_PARAMETER_NOT_FOUND TALM_RESULT(0x80020004U)
/// An argument, or the variable for a result, is of a type that does not fit.
#define TALM_TYPE_MISMATCH TALM_RESULT(0x80020005U)
/// The object has no member of that name.
#define TALM_UNKNOWN_NAME TALM_RESULT(0x80020006U)
/// Arguments go by position.
#define TALM_NO_NAMED_ARGUMENTS TALM_RESULT(0x80020007U)
/// A variant's type is none that there is.
#define TALM_BAD_VARIANT_TYPE TALM_RESULT(0x80020008U)
/// The operation failed; the exception information tells how.
#define TALM_EXCEPTION TALM_RESULT(0x80020009U)
/// A value does not fit into the variable that was given for it.
#define TALM_OVERFLOW TALM_RESULT(0x8002000AU)
#define TALM_UNKNOWN_INTERFACE TALM_RESULT(0x80020001U)
#define TALM_BAD_INDEX TALM_RESULT(0x8002000BU)
/// Too few or too many arguments.
#define TALM_BAD_PARAMETER_COUNT TALM_RESULT(0x8002000EU)

/// A class cannot be made a part of another object.
#define TALM_NO_AGGREGATION TALM_RESULT(0x80040110U)
/// The library has no such class.
#define TALM_CLASS_NOT_AVAILABLE TALM_RESULT(0x80040111U)
/// A registration cannot be read, or written.
#define TALM_CANNOT_READ_REGISTRATION TALM_RESULT(0x80040150U)
#define TALM_CANNOT_WRITE_REGISTRATION TALM_RESULT(0x80040151U)
/// A registration file is there, and does not say what it must.
#define TALM_BAD_REGISTRATION TALM_RESULT(0x80040153U)
#define TALM_CLASS_NOT_REGISTERED TALM_RESULT(0x80040154U)
/// The text is no class name.
#define TALM_BAD_CLASS_NAME TALM_RESULT(0x800401F3U)
/// The registered library is not there, or cannot be loaded.
#define TALM_LIBRARY_NOT_FOUND TALM_RESULT(0x800401F8U)
/// The registered library is loaded, and is no component server.
#define TALM_ERROR_IN_LIBRARY TALM_RESULT(0x800401F9U)

/// The codes in the exception information, one a kind of error; the kinds are told in talm_flow/error.h.
#define TALM_FLOW_ERROR TALM_RESULT(0x80040200U)
#define TALM_DATABASE_ERROR TALM_RESULT(0x80040201U)
#define TALM_CONVERSION_ERROR TALM_RESULT(0x80040202U)
#define TALM_OVERFLOW_ERROR TALM_RESULT(0x80040203U)
#define TALM_SUBSCRIPT_ERROR TALM_RESULT(0x80040204U)
#define TALM_NESTING_ERROR TALM_RESULT(0x80040205U)
#define TALM_FILE_ERROR TALM_RESULT(0x80040206U)
#define TALM_ARGUMENT_ERROR TALM_RESULT(0x80040207U)

// ---- Values ---------------------------------------------------------------------------------------------------------

/// The number of a class or an interface.
typedef struct TalmGuid {
  uint32_t data1;    ///< the first 32 bits
  uint16_t data2;    ///< the next 16
  uint16_t data3;    ///< the next 16
  uint8_t data4[8];  ///< the rest, byte by byte
} TalmGuid;

/// UTF-16 characters with a zero behind the last and, in the four bytes before the first, their size in bytes. Null is
/// the empty text.
typedef char16_t* TalmText;

/// What a variant holds. With `kTalmArray` an array of it, with `kTalmByReference` a pointer to it.
typedef enum TalmType {
  kTalmEmpty = 0,
  kTalmNull = 1,
  kTalmInt16 = 2,
  kTalmInt32 = 3,
  kTalmFloat = 4,
  kTalmDouble = 5,
  kTalmCurrency = 6,  ///< ten-thousandths
  kTalmDate = 7,      ///< days since 1899-12-30, the time of day as the fraction's amount
  kTalmTextType = 8,
  kTalmObject = 9,    ///< with late binding
  kTalmError = 10,    ///< with the code `TALM_PARAMETER_NOT_FOUND`: an argument that is not given
  kTalmBoolean = 11,  ///< -1 is true, 0 false
  kTalmVariant = 12,
  kTalmUnknown = 13,  ///< an object
  kTalmDecimal = 14,
  kTalmInt8 = 16,
  kTalmUint8 = 17,
  kTalmUint16 = 18,
  kTalmUint32 = 19,
  kTalmInt64 = 20,
  kTalmUint64 = 21,
  kTalmInt = 22,
  kTalmUint = 23,
  kTalmArray = 0x2000,
  kTalmByReference = 0x4000
} TalmType;

typedef struct TalmUnknown TalmUnknown;
typedef struct TalmDispatch TalmDispatch;
typedef struct TalmClassFactory TalmClassFactory;
typedef struct TalmExtendedDispatch TalmExtendedDispatch;

/// An array of one dimension.
typedef struct TalmArray {
  uint16_t dimensions;    ///< 1
  uint16_t features;      ///< what the elements are, for whoever releases them
  uint32_t element_size;  ///< in bytes
  uint32_t locks;         ///< how many are looking at the elements
  void* data;             ///< the first element
  uint32_t count;         ///< how many elements there are
  int32_t lower_bound;    ///< the first element's index
} TalmArray;

/// One value of any type.
typedef struct TalmVariant {
  uint16_t type;         ///< a `TalmType`, with or without the flags
  uint16_t reserved[3];  ///< 0
  /// The value, by its type.
  union {
    /// A record of the host's; the component takes none. The largest member is the first: an empty initialiser clears no
    /// other.
    struct {
      void* data;         ///< its fields
      void* description;  ///< its type
    } record;
    int8_t int8;           ///< `kTalmInt8`
    uint8_t uint8;         ///< `kTalmUint8`
    int16_t int16;         ///< `kTalmInt16`
    uint16_t uint16;       ///< `kTalmUint16`
    int32_t int32;         ///< `kTalmInt32`, `kTalmInt`
    uint32_t uint32;       ///< `kTalmUint32`, `kTalmUint`
    int64_t int64;         ///< `kTalmInt64`
    uint64_t uint64;       ///< `kTalmUint64`
    float float32;         ///< `kTalmFloat`
    double float64;        ///< `kTalmDouble`
    int16_t boolean;       ///< `kTalmBoolean`
    TalmResult error;      ///< `kTalmError`
    int64_t currency;      ///< `kTalmCurrency`
    double date;           ///< `kTalmDate`
    TalmText text;         ///< `kTalmTextType`
    TalmUnknown* unknown;  ///< `kTalmUnknown`
    TalmDispatch* object;  ///< `kTalmObject`
    TalmArray* array;      ///< with `kTalmArray`
    void* reference;       ///< with `kTalmByReference`
  } as;
} TalmVariant;

// ---- Objects --------------------------------------------------------------------------------------------------------

/// Every object: it tells its interfaces and counts its references.
typedef struct TalmUnknownTable {
  /// The same object by another interface, counted. @returns TALM_NO_INTERFACE when it has none of that number.
  TalmResult(TALM_CALL* QueryInterface)(TalmUnknown* self, const TalmGuid* interface_id, void** object);
  /// Counts a reference. @returns how many there are.
  uint32_t(TALM_CALL* AddRef)(TalmUnknown* self);
  /// Drops a reference; the object goes with the last. @returns how many are left.
  uint32_t(TALM_CALL* Release)(TalmUnknown* self);
} TalmUnknownTable;
/// An object.
struct TalmUnknown {
  const TalmUnknownTable* table;  ///< what it can do
};

/// The arguments of a late-bound call, the last first.
typedef struct TalmArguments {
  TalmVariant* values;   ///< all of them
  int32_t* names;        ///< member numbers of the named ones, which come first
  uint32_t count;        ///< how many there are
  uint32_t named_count;  ///< how many of them are named
} TalmArguments;

/// How an operation failed. The texts are the caller's to free.
typedef struct TalmException {
  uint16_t code;                                               ///< 0: `result` holds the code
  uint16_t reserved;                                           ///< 0
  TalmText source;                                             ///< the class
  TalmText description;                                        ///< the message
  TalmText help_file;                                          ///< null
  uint32_t help_context;                                       ///< 0
  void* reserved_pointer;                                      ///< null
  TalmResult(TALM_CALL* fill_in)(struct TalmException* self);  ///< when not null, to be called before reading
  TalmResult result;                                           ///< `TALM_DATABASE_ERROR` and so on
} TalmException;

/// How a member is used.
enum { kTalmMethod = 1, kTalmGet = 2, kTalmPut = 4, kTalmPutReference = 8 };

/// Member numbers that mean the same everywhere.
enum { kTalmValueMember = 0, kTalmUnknownMember = -1, kTalmPutArgument = -3, kTalmEnumeratorMember = -4 };

/// An object with late binding: members are found by name and used by number.
typedef struct TalmDispatchTable {
  /// The same object by another interface, counted. @returns TALM_NO_INTERFACE when it has none of that number.
  TalmResult(TALM_CALL* QueryInterface)(TalmDispatch* self, const TalmGuid* interface_id, void** object);
  /// Counts a reference. @returns how many there are.
  uint32_t(TALM_CALL* AddRef)(TalmDispatch* self);
  /// Drops a reference; the object goes with the last. @returns how many are left.
  uint32_t(TALM_CALL* Release)(TalmDispatch* self);
  /// How many descriptions of its members the object has: none.
  TalmResult(TALM_CALL* GetTypeInfoCount)(TalmDispatch* self, uint32_t* count);
  /// A description of its members. @returns TALM_BAD_INDEX
  TalmResult(TALM_CALL* GetTypeInfo)(TalmDispatch* self, uint32_t index, uint32_t locale, void** information);
  /// The member number of a name, in any case. `interface_id` is all zero.
  TalmResult(TALM_CALL* GetIDsOfNames)(TalmDispatch* self, const TalmGuid* interface_id, char16_t** names,
                                       uint32_t count, uint32_t locale, int32_t* members);
  /// Uses a member. `interface_id` is all zero. `result` may be null; what it held is not cleared. `exception` may be null;
  /// it is filled when TALM_EXCEPTION is the result. `argument_error` may be null; it is set to the index in
  /// `arguments->values` of the argument that does not fit.
  TalmResult(TALM_CALL* Invoke)(TalmDispatch* self, int32_t member, const TalmGuid* interface_id, uint32_t locale,
                                uint16_t use, TalmArguments* arguments, TalmVariant* result, TalmException* exception,
                                uint32_t* argument_error);
} TalmDispatchTable;
/// An object with late binding.
struct TalmDispatch {
  const TalmDispatchTable* table;  ///< what it can do
};

/// The extended late binding of script engines' objects. The component asks for it; its own objects do without.
typedef struct TalmExtendedDispatchTable {
  /// The same object by another interface, counted. @returns TALM_NO_INTERFACE when it has none of that number.
  TalmResult(TALM_CALL* QueryInterface)(TalmExtendedDispatch* self, const TalmGuid* interface_id, void** object);
  /// Counts a reference. @returns how many there are.
  uint32_t(TALM_CALL* AddRef)(TalmExtendedDispatch* self);
  /// Drops a reference; the object goes with the last. @returns how many are left.
  uint32_t(TALM_CALL* Release)(TalmExtendedDispatch* self);
  /// How many descriptions of its members the object has: none.
  TalmResult(TALM_CALL* GetTypeInfoCount)(TalmExtendedDispatch* self, uint32_t* count);
  /// A description of its members. @returns TALM_BAD_INDEX
  TalmResult(TALM_CALL* GetTypeInfo)(TalmExtendedDispatch* self, uint32_t index, uint32_t locale, void** information);
  /// The member number of a name.
  TalmResult(TALM_CALL* GetIDsOfNames)(TalmExtendedDispatch* self, const TalmGuid* interface_id, char16_t** names,
                                       uint32_t count, uint32_t locale, int32_t* members);
  /// Uses a member.
  TalmResult(TALM_CALL* Invoke)(TalmExtendedDispatch* self, int32_t member, const TalmGuid* interface_id,
                                uint32_t locale, uint16_t use, TalmArguments* arguments, TalmVariant* result,
                                TalmException* exception, uint32_t* argument_error);
  /// The member number of a name.
  TalmResult(TALM_CALL* GetDispID)(TalmExtendedDispatch* self, TalmText name, uint32_t flags, int32_t* member);
  /// Uses a member, as `Invoke`.
  TalmResult(TALM_CALL* InvokeEx)(TalmExtendedDispatch* self, int32_t member, uint32_t locale, uint16_t use,
                                  TalmArguments* arguments, TalmVariant* result, TalmException* exception,
                                  void* caller);
  /// Not asked by the component.
  TalmResult(TALM_CALL* DeleteMemberByName)(TalmExtendedDispatch* self, TalmText name, uint32_t flags);
  /// Not asked by the component.
  TalmResult(TALM_CALL* DeleteMemberByDispID)(TalmExtendedDispatch* self, int32_t member);
  /// Not asked by the component.
  TalmResult(TALM_CALL* GetMemberProperties)(TalmExtendedDispatch* self, int32_t member, uint32_t asked,
                                             uint32_t* properties);
  /// Not asked by the component.
  TalmResult(TALM_CALL* GetMemberName)(TalmExtendedDispatch* self, int32_t member, TalmText* name);
  /// Not asked by the component.
  TalmResult(TALM_CALL* GetNextDispID)(TalmExtendedDispatch* self, uint32_t flags, int32_t member, int32_t* next);
  /// Not asked by the component.
  TalmResult(TALM_CALL* GetNameSpaceParent)(TalmExtendedDispatch* self, TalmUnknown** parent);
} TalmExtendedDispatchTable;
/// An object with extended late binding.
struct TalmExtendedDispatch {
  const TalmExtendedDispatchTable* table;  ///< what it can do
};

/// Makes objects of one class.
typedef struct TalmClassFactoryTable {
  /// The same object by another interface, counted. @returns TALM_NO_INTERFACE when it has none of that number.
  TalmResult(TALM_CALL* QueryInterface)(TalmClassFactory* self, const TalmGuid* interface_id, void** object);
  /// Counts a reference. @returns how many there are.
  uint32_t(TALM_CALL* AddRef)(TalmClassFactory* self);
  /// Drops a reference; the object goes with the last. @returns how many are left.
  uint32_t(TALM_CALL* Release)(TalmClassFactory* self);
  /// A new object. `outer` is null: the classes cannot be made a part of another object.
  TalmResult(TALM_CALL* CreateInstance)(TalmClassFactory* self, TalmUnknown* outer, const TalmGuid* interface_id,
                                        void** object);
  /// Keeps the library from being unloaded, or no longer.
  TalmResult(TALM_CALL* LockServer)(TalmClassFactory* self, int32_t lock);
} TalmClassFactoryTable;
/// A factory.
struct TalmClassFactory {
  const TalmClassFactoryTable* table;  ///< what it can do
};

/// The numbers of the interfaces, as initialisers of a `TalmGuid`.
#define TALM_UNKNOWN_INTERFACE_ID                      \
  {                                                    \
    0x00000000, 0, 0, { 0xC0, 0, 0, 0, 0, 0, 0, 0x46 } \
  }
#define TALM_CLASS_FACTORY_INTERFACE_ID                \
  {                                                    \
    0x00000001, 0, 0, { 0xC0, 0, 0, 0, 0, 0, 0, 0x46 } \
  }
#define TALM_DISPATCH_INTERFACE_ID                     \
  {                                                    \
    0x00020400, 0, 0, { 0xC0, 0, 0, 0, 0, 0, 0, 0x46 } \
  }
#define TALM_EXTENDED_DISPATCH_INTERFACE_ID                                        \
  {                                                                                \
    0xA6EF9860, 0xC720, 0x11D0, { 0x93, 0x37, 0x00, 0xA0, 0xC9, 0x0D, 0xCA, 0xA9 } \
  }

/// The numbers of the classes, as initialisers of a `TalmGuid`.
#define TALM_COMMAND_CLASS_ID                                                      \
  {                                                                                \
    0x5B1E3A70, 0x6C4D, 0x4F0E, { 0x9A, 0x21, 0x3D, 0x87, 0xC2, 0x5F, 0xE0, 0x01 } \
  }
#define TALM_CONSTRUCTION_CLASS_ID                                                 \
  {                                                                                \
    0x5B1E3A70, 0x6C4D, 0x4F0E, { 0x9A, 0x21, 0x3D, 0x87, 0xC2, 0x5F, 0xE0, 0x02 } \
  }
#define TALM_IN_OUT_CLASS_ID                                                       \
  {                                                                                \
    0x5B1E3A70, 0x6C4D, 0x4F0E, { 0x9A, 0x21, 0x3D, 0x87, 0xC2, 0x5F, 0xE0, 0x03 } \
  }
#define TALM_NAME_CLASS_ID                                                         \
  {                                                                                \
    0x5B1E3A70, 0x6C4D, 0x4F0E, { 0x9A, 0x21, 0x3D, 0x87, 0xC2, 0x5F, 0xE0, 0x04 } \
  }
#define TALM_CONNECTION_CLASS_ID                                                   \
  {                                                                                \
    0x5B1E3A70, 0x6C4D, 0x4F0E, { 0x9A, 0x21, 0x3D, 0x87, 0xC2, 0x5F, 0xE0, 0x05 } \
  }

// ---- The server: libtalm_flow ---------------------------------------------------------------------------------------

#ifndef _WIN32  // there the platform's headers declare them

/// Writes a registration file for each class, all or none. @returns TALM_OK, TALM_CANNOT_WRITE_REGISTRATION.
TALM_EXPORT TalmResult DllRegisterServer(void);

/// Removes the registration files that this library wrote; those of another library stay. @returns as above.
TALM_EXPORT TalmResult DllUnregisterServer(void);

/// The factory of a class. @returns also TALM_CLASS_NOT_AVAILABLE, TALM_NO_INTERFACE, TALM_POINTER.
TALM_EXPORT TalmResult DllGetClassObject(const TalmGuid* class_id, const TalmGuid* interface_id, void** object);

/// TALM_OK when no object of the library lives and nobody keeps it loaded, else TALM_FALSE.
TALM_EXPORT TalmResult DllCanUnloadNow(void);

#endif

/// As `DllRegisterServer` (`install` not 0) and `DllUnregisterServer`, with the reason of a failure as a text that the
/// caller frees. On Windows for the whole machine where this user may, else for the user alone.
/// @param message  may be null; set to null when all went well.
TALM_EXPORT TalmResult TalmRegisterClasses(int32_t install, TalmText* message);

// ---- For hosts: libtalm_flow_loader (and libtalm_flow, which has them too) ---------------------------------------------

/// Makes an object of a registered class, as "TALM_Flow.Command". Its library is loaded and stays so. On Windows the
/// calling thread must have entered an apartment.
/// @param message  may be null; else set to the reason of a failure, or to null. The caller frees it.
/// @returns TALM_BAD_CLASS_NAME, TALM_CLASS_NOT_REGISTERED, TALM_CANNOT_READ_REGISTRATION, TALM_BAD_REGISTRATION,
///          TALM_LIBRARY_NOT_FOUND, TALM_ERROR_IN_LIBRARY, or what the library answers.
TALM_EXPORT TalmResult TalmCreateObject(const char16_t* class_name, TalmDispatch** object, TalmText* message);

/// Calls a member by name with its arguments in their natural order; by-reference ones are variants of the type
/// `kTalmVariant | kTalmByReference`, or of the wanted type with that flag.
/// @param result     may be null; cleared by the caller.
/// @param exception  may be null; cleared by the caller with `TalmClearException`.
TALM_EXPORT TalmResult TalmCall(TalmDispatch* object, const char16_t* member, uint16_t use,
                                const TalmVariant* arguments, uint32_t count, TalmVariant* result,
                                TalmException* exception);

/// A new text of `count` characters; null when there is no memory. @param characters  null leaves them all zero.
TALM_EXPORT TalmText TalmAllocateText(const char16_t* characters, uint32_t count);
/// A new text of a UTF-8 text; bytes that are none become U+FFFD.
TALM_EXPORT TalmText TalmTextFromUtf8(const char* utf8);
/// How many UTF-16 characters a text has; 0 for null.
TALM_EXPORT uint32_t TalmTextLength(const char16_t* text);
/// Writes as much of the text as fits in UTF-8, and a zero. Halves of characters become U+FFFD.
/// @returns the whole text's size in bytes without the zero.
TALM_EXPORT size_t TalmTextToUtf8(const char16_t* text, char* buffer, size_t size);
TALM_EXPORT void TalmFreeText(TalmText text);

/// A new array of an element type that is a number, `kTalmTextType` or `kTalmVariant`, all zero; null when there is no
/// memory or the type is another.
TALM_EXPORT TalmArray* TalmCreateArray(uint16_t type, uint32_t count);
/// Frees the array and what its elements hold.
TALM_EXPORT void TalmDestroyArray(TalmArray* array);

/// Frees what a variant holds and makes it empty. What it refers to stays.
TALM_EXPORT void TalmClearVariant(TalmVariant* variant);
/// Frees the texts and zeroes the rest.
TALM_EXPORT void TalmClearException(TalmException* exception);
/// The name of the kind of error that a code in an exception stands for ("DatabaseError"); null when it is none.
TALM_EXPORT const char* TalmErrorKind(TalmResult code);

#ifdef __cplusplus
}
#endif
