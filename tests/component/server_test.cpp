#include "component/component_host.h"

namespace talm_flow::test {
namespace {

constexpr TalmGuid kNameClass = TALM_NAME_CLASS_ID;
constexpr TalmGuid kUnknownClass = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
using component::kClassFactoryId;
using component::kDispatchId;
using component::kNoId;
using component::kUnknownId;

class ServerTest : public ComponentTest {
 protected:
  [[nodiscard]] Reference<TalmClassFactory> Factory() const {
    void* factory = nullptr;
    EXPECT_EQ(library().ClassObject(&kNameClass, &kClassFactoryId, &factory), TALM_OK);
    return Reference<TalmClassFactory>(static_cast<TalmClassFactory*>(factory));
  }
  static Object Made(const Reference<TalmClassFactory>& factory) {
    void* object = nullptr;
    EXPECT_EQ(factory->table->CreateInstance(factory.get(), nullptr, &kDispatchId, &object), TALM_OK);
    return Object(static_cast<TalmDispatch*>(object));
  }
};

TEST_F(ServerTest, UnknownClassesAreNotAvailable) {
  void* object = this;
  EXPECT_EQ(library().ClassObject(&kUnknownClass, &kClassFactoryId, &object), TALM_CLASS_NOT_AVAILABLE);
  EXPECT_EQ(object, nullptr);
}

TEST_F(ServerTest, AFactoryHasTheInterfaceOfFactoriesOnly) {
  void* object = this;
  EXPECT_EQ(library().ClassObject(&kNameClass, &kDispatchId, &object), TALM_NO_INTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(library().ClassObject(&kNameClass, &kUnknownId, &object), TALM_OK);
  const Reference<TalmUnknown> released(static_cast<TalmUnknown*>(object));
}

TEST_F(ServerTest, NullPointersAreRefused) {
  void* object = nullptr;
  EXPECT_EQ(library().ClassObject(&kNameClass, &kClassFactoryId, nullptr), TALM_POINTER);
  EXPECT_EQ(library().ClassObject(nullptr, &kClassFactoryId, &object), TALM_POINTER);
  EXPECT_EQ(library().ClassObject(&kNameClass, nullptr, &object), TALM_POINTER);
  const auto factory = Factory();
  EXPECT_EQ(factory->table->CreateInstance(factory.get(), nullptr, &kDispatchId, nullptr), TALM_POINTER);
  EXPECT_EQ(factory->table->QueryInterface(factory.get(), &kUnknownId, nullptr), TALM_POINTER);
  const auto made = Made(factory);
  EXPECT_EQ(made->table->QueryInterface(made.get(), nullptr, &object), TALM_POINTER);
  EXPECT_EQ(made->table->QueryInterface(made.get(), &kUnknownId, nullptr), TALM_POINTER);
}

TEST_F(ServerTest, ObjectsAreNoPartOfOthers) {
  const auto factory = Factory();
  const auto outer = Made(factory);
  void* object = this;
  EXPECT_EQ(
      factory->table->CreateInstance(factory.get(), reinterpret_cast<TalmUnknown*>(outer.get()), &kUnknownId, &object),
      TALM_NO_AGGREGATION);
  EXPECT_EQ(object, nullptr);
}

TEST_F(ServerTest, AnObjectWithoutTheWantedInterfaceGoesAgain) {
  void* object = this;
  {
    const auto factory = Factory();
    EXPECT_EQ(factory->table->CreateInstance(factory.get(), nullptr, &kClassFactoryId, &object), TALM_NO_INTERFACE);
    EXPECT_EQ(object, nullptr);
  }
  EXPECT_EQ(library().CanUnload(), TALM_OK);
}

TEST_F(ServerTest, ReferencesAreCounted) {
  const auto factory = Factory();
  auto object = Made(factory);
  EXPECT_EQ(object->table->AddRef(object.get()), 2U);
  EXPECT_EQ(object->table->Release(object.get()), 1U);
  void* same = nullptr;
  EXPECT_EQ(object->table->QueryInterface(object.get(), &kUnknownId, &same), TALM_OK);
  EXPECT_EQ(same, object.get());
  EXPECT_EQ(object->table->Release(object.get()), 1U);
  EXPECT_EQ(factory->table->AddRef(factory.get()), 2U);
  EXPECT_EQ(factory->table->Release(factory.get()), 1U);
}

TEST_F(ServerTest, TheLibraryMayGoOnlyWhenNothingLives) {
  EXPECT_EQ(library().CanUnload(), TALM_OK);
  {
    auto factory = Factory();
    EXPECT_EQ(library().CanUnload(), TALM_FALSE);
    const auto object = Made(factory);
    factory = {};
    EXPECT_EQ(library().CanUnload(), TALM_FALSE);
  }
  EXPECT_EQ(library().CanUnload(), TALM_OK);
}

TEST_F(ServerTest, ALockKeepsTheLibrary) {
  auto factory = Factory();
  EXPECT_EQ(factory->table->LockServer(factory.get(), 1), TALM_OK);
  EXPECT_EQ(factory->table->LockServer(factory.get(), 1), TALM_OK);
  factory = {};
  EXPECT_EQ(library().CanUnload(), TALM_FALSE);
  factory = Factory();
  EXPECT_EQ(factory->table->LockServer(factory.get(), 0), TALM_OK);
  EXPECT_EQ(factory->table->LockServer(factory.get(), 0), TALM_OK);
}

TEST_F(ServerTest, ObjectsTellNoTypeInformation) {
  const auto object = Made(Factory());
  std::uint32_t count = 7;
  EXPECT_EQ(object->table->GetTypeInfoCount(object.get(), &count), TALM_OK);
  EXPECT_EQ(count, 0U);
  void* information = this;
  EXPECT_EQ(object->table->GetTypeInfo(object.get(), 0, 0, &information), TALM_BAD_INDEX);
  EXPECT_EQ(information, nullptr);
}

TEST_F(ServerTest, NamesAreFoundInAnyCase) {
  const auto object = Made(Factory());
  const auto number = [&](const char16_t* name) {
    std::int32_t member = -7;
    auto* changeable = const_cast<char16_t*>(name);
    EXPECT_EQ(object->table->GetIDsOfNames(object.get(), &kNoId, &changeable, 1, 0, &member), TALM_OK);
    return member;
  };
  EXPECT_EQ(number(u"GetFlowName"), number(u"getflowname"));
  EXPECT_NE(number(u"GetFlowName"), number(u"GetRemark"));
}

TEST_F(ServerTest, UnknownNamesAreTold) {
  const auto object = Made(Factory());
  // The last is an operation of another class.
  for (const auto* const name : {u"NoSuchThing", u"", u"Name.GetRemark", u"FlowExecute"}) {
    std::int32_t member = 7;
    auto* changeable = const_cast<char16_t*>(name);
    EXPECT_EQ(object->table->GetIDsOfNames(object.get(), &kNoId, &changeable, 1, 0, &member), TALM_UNKNOWN_NAME);
    EXPECT_EQ(member, kTalmUnknownMember);
  }
}

TEST_F(ServerTest, ArgumentsHaveNoNames) {
  const auto object = Made(Factory());
  std::u16string member = u"GetFlowName";
  std::u16string argument = u"FlowID";
  char16_t* names[] = {member.data(), argument.data()};
  std::int32_t numbers[] = {7, 7};
  EXPECT_EQ(object->table->GetIDsOfNames(object.get(), &kNoId, names, 2, 0, numbers), TALM_UNKNOWN_NAME);
  EXPECT_GT(numbers[0], 0);
  EXPECT_EQ(numbers[1], kTalmUnknownMember);
  TalmVariant values[2] = {};
  TalmArguments arguments{.values = values, .names = &numbers[1], .count = 2, .named_count = 1};
  EXPECT_EQ(
      object->table->Invoke(object.get(), numbers[0], &kNoId, 0, kTalmMethod, &arguments, nullptr, nullptr, nullptr),
      TALM_NO_NAMED_ARGUMENTS);
}

TEST_F(ServerTest, CallsThatAreNoneAreRefused) {
  const auto object = Made(Factory());
  TalmArguments none{};
  const auto invoke = [&](std::int32_t member, const TalmGuid& id, std::uint16_t use, TalmArguments* arguments) {
    return object->table->Invoke(object.get(), member, &id, 0, use, arguments, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(invoke(0, kNoId, kTalmMethod, &none), TALM_MEMBER_NOT_FOUND);
  EXPECT_EQ(invoke(1, kNoId, kTalmMethod, &none), TALM_MEMBER_NOT_FOUND) << "an operation of another class";
  EXPECT_EQ(invoke(100000, kNoId, kTalmMethod, &none), TALM_MEMBER_NOT_FOUND);
  EXPECT_EQ(invoke(-1, kNoId, kTalmMethod, &none), TALM_MEMBER_NOT_FOUND);
  EXPECT_EQ(invoke(1, kUnknownId, kTalmMethod, &none), TALM_UNKNOWN_INTERFACE);
  EXPECT_EQ(invoke(1, kNoId, kTalmMethod, nullptr), TALM_INVALID_ARGUMENT);
  EXPECT_EQ(Get(object, u"MaxFlowID").code, TALM_MEMBER_NOT_FOUND) << "an operation is no property";
}

}  // namespace
}  // namespace talm_flow::test
