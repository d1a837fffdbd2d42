#pragma once

/// A host of the component server: registrations in a folder of its own, the library loaded, calls by name.

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "component/automation.h"
#include "support/temporary_folder.h"
#include "talm_flow/component.h"

namespace talm_flow::test {

using component::OwnedVariant;
using component::Reference;
using Object = Reference<TalmDispatch>;

/// The shared library under test.
[[nodiscard]] std::string LibraryPath();

/// Sets a variable of the environment as long as it lives.
class Setting {
 public:
  Setting(std::string name, std::optional<std::string> value);
  Setting(const Setting&) = delete;
  Setting& operator=(const Setting&) = delete;
  ~Setting();

 private:
  std::string name_;
  std::optional<std::string> before_;
};

/// The library's own entry points.
class Library {
 public:
  explicit Library(const std::string& path);
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library();

  /// With the reason of a failure.
  [[nodiscard]] TalmResult Register(std::string& message) const;
  [[nodiscard]] TalmResult Unregister(std::string& message) const;

  template <typename Function>
  [[nodiscard]] Function* Entry(const char* name) const {
    return reinterpret_cast<Function*>(Symbol(name));
  }
  [[nodiscard]] TalmResult Register() const { return Entry<TalmResult()>("DllRegisterServer")(); }
  [[nodiscard]] TalmResult Unregister() const { return Entry<TalmResult()>("DllUnregisterServer")(); }
  [[nodiscard]] TalmResult CanUnload() const { return Entry<TalmResult()>("DllCanUnloadNow")(); }
  [[nodiscard]] TalmResult ClassObject(const TalmGuid* class_id, const TalmGuid* interface_id, void** object) const {
    return Entry<decltype(::DllGetClassObject)>("DllGetClassObject")(class_id, interface_id, object);
  }

 private:
  [[nodiscard]] void* Symbol(const char* name) const;
  TalmResult Tell(std::int32_t install, std::string& message) const;

  void* handle_;
};

// ---- Values ---------------------------------------------------------------------------------------------------------

[[nodiscard]] OwnedVariant Of(std::uint16_t type, const std::function<void(TalmVariant&)>& fill = {});
[[nodiscard]] OwnedVariant Whole(std::int32_t number);
[[nodiscard]] OwnedVariant Text(std::string_view utf8);
[[nodiscard]] OwnedVariant Missing();
[[nodiscard]] OwnedVariant ObjectOf(const Object& object);
[[nodiscard]] OwnedVariant UnknownOf(const Reference<TalmUnknown>& object);
/// A reference to a variable of a type.
[[nodiscard]] OwnedVariant ByReference(std::uint16_t type, void* variable);
[[nodiscard]] inline OwnedVariant ByReference(OwnedVariant& variable) {
  return ByReference(kTalmVariant, &variable.get());
}

/// What a variant holds, so that its type shows: 7, "7", 7.000000, True, Null, Empty, [..] for arrays.
[[nodiscard]] std::string Shown(const TalmVariant& variant);
[[nodiscard]] std::string Utf8(const char16_t* text);

/// Arguments in natural order, not owned.
template <typename... Variants>
[[nodiscard]] std::vector<TalmVariant> List(const Variants&... variants) {
  return {variants.get()...};
}

// ---- Calls ----------------------------------------------------------------------------------------------------------

struct Outcome {
  TalmResult code = TALM_OK;
  OwnedVariant result;
  std::string kind;
  std::string message;
  std::string source;

  /// The result or the error in one line.
  [[nodiscard]] std::string Line() const;
};

[[nodiscard]] Outcome Use(const Object& object, std::u16string_view member, std::uint16_t how,
                          const std::vector<TalmVariant>& arguments);
[[nodiscard]] inline Outcome Call(const Object& object, std::u16string_view member,
                                  const std::vector<TalmVariant>& arguments = {}) {
  return Use(object, member, kTalmMethod, arguments);
}
[[nodiscard]] inline Outcome Get(const Object& object, std::u16string_view member,
                                 const std::vector<TalmVariant>& arguments = {}) {
  return Use(object, member, kTalmGet, arguments);
}
[[nodiscard]] Object ObjectFrom(const OwnedVariant& variant);

/// Runs a statement that must succeed.
Outcome RunText(const Object& connection, std::string_view statement);
/// The rows of a query: fields joined by "|", rows by "; ".
[[nodiscard]] std::string RowsOf(const Object& connection, std::string_view query);

// ---- A host's own objects -------------------------------------------------------------------------------------------

/// An object as a script makes one: its members are functions of any behaviour.
class ScriptObject {
 public:
  struct Request {
    std::uint16_t how;
    std::vector<TalmVariant> arguments;  ///< in natural order, not owned
    TalmVariant* result;
    TalmException* exception;
  };
  using Member = std::function<TalmResult(const Request&)>;
  using Members = std::vector<std::pair<std::u16string, Member>>;
  /// The last is extended too, and answers to the plain kind's name with nothing behind it.
  enum class Binding { kPlain, kExtended, kHollowPlain };

  /// The first member is the default one.
  /// @param also  a further interface that it says it has.
  [[nodiscard]] static Reference<TalmUnknown> Make(Members members, Binding binding = Binding::kPlain,
                                                   std::optional<TalmGuid> also = {});
  /// How many live.
  [[nodiscard]] static int Living();

  /// Answers of members.
  static TalmResult Give(const Request& request, OwnedVariant variant);
  static TalmResult Raise(const Request& request, std::string_view description, TalmResult code);
};

/// The classes are registered in a folder of the test's own; at its end nothing may be left alive.
class ComponentTest : public testing::Test {
 protected:
  ComponentTest();
  ~ComponentTest() override;

  [[nodiscard]] Object Create(std::u16string_view class_name) const;
  /// On a database in memory that has all tables.
  [[nodiscard]] Object NewConnection() const;
  [[nodiscard]] const Library& library() const { return library_; }
  [[nodiscard]] const TemporaryFolder& data() const { return data_; }
  [[nodiscard]] std::string ClassFile(std::string_view name) const {
    return data_.File("talm_flow/classes/" + std::string(name) + ".class");
  }

 private:
  TemporaryFolder data_;
  Setting setting_;
  Library library_;
};

}  // namespace talm_flow::test
