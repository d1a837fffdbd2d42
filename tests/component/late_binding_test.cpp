#include <gmock/gmock.h>

#include "component/component_host.h"
#include "support/world.h"
#include "talm_flow/conversion.h"
#include "talm_flow/late_bound.h"

namespace talm_flow::test {
namespace {

using testing::HasSubstr;

class LateBindingTest : public ComponentTest {
 protected:
  LateBindingTest() {
    RunText(connection_, "Insert Into WorkFlowName (FlowName,Creater,Remark) Values ('请假','kim','R')");
  }

  Object connection_ = NewConnection();
  Object name_ = Create(u"TALM_Flow.Name");
  Object command_ = Create(u"TALM_Flow.Command");
  OwnedVariant on_ = ObjectOf(connection_);
};

TEST_F(LateBindingTest, ResultsAreOfTheirTypes) {
  const auto one = Whole(1);
  EXPECT_EQ(Call(name_, u"MaxFlowID", List(on_)).Line(), "1");
  EXPECT_EQ(Call(name_, u"FLOWEXISTS", List(on_, one)).Line(), "True");
  EXPECT_EQ(Call(name_, u"getflowname", List(on_, one)).Line(), "\"请假\"");
  EXPECT_EQ(Call(name_, u"GetRs", List(on_)).Line(), "object");
  EXPECT_EQ(Call(command_, u"AddExecuteTimes", List(on_, one, one)).Line(), "Empty");
}

TEST_F(LateBindingTest, ByReferenceArgumentsAreWrittenBack) {
  const auto one = Whole(1);
  OwnedVariant flow_name = Whole(7);
  OwnedVariant creater = Text("old");
  OwnedVariant remark;
  const auto outcome =
      Call(name_, u"GetAll", List(on_, one, ByReference(flow_name), ByReference(creater), ByReference(remark)));
  EXPECT_EQ(outcome.Line(), "True");
  EXPECT_EQ(Shown(flow_name.get()), "\"请假\"");
  EXPECT_EQ(Shown(creater.get()), "\"kim\"");
  EXPECT_EQ(Shown(remark.get()), "\"R\"");
}

TEST_F(LateBindingTest, ArgumentsByValueStayAsTheyAre) {
  const auto one = Whole(1);
  const auto text = Text("old");
  EXPECT_EQ(Call(name_, u"GetAll", List(on_, one, text, text, text)).Line(), "True");
  EXPECT_EQ(Shown(text.get()), "\"old\"");
}

TEST_F(LateBindingTest, TypedVariablesTakeWhatFits) {
  const auto reference = Text("TableID:12,DataID:345");
  std::int16_t table_id = 0;
  double data_id = 0;
  const auto separate = [&](const OwnedVariant& table, const OwnedVariant& data) {
    return Call(command_, u"SeparateTableIDAndDataID", List(reference, table, data)).Line();
  };
  EXPECT_EQ(separate(ByReference(kTalmInt16, &table_id), ByReference(kTalmDouble, &data_id)), "True");
  EXPECT_EQ(table_id, 12);
  EXPECT_EQ(data_id, 345);
  std::uint64_t big = 0;
  float small = 0;
  EXPECT_EQ(separate(ByReference(kTalmUint64, &big), ByReference(kTalmFloat, &small)), "True");
  EXPECT_EQ(big, 12U);
  EXPECT_EQ(small, 345.0F);
  std::int64_t currency = 0;
  std::int16_t boolean = 0;
  EXPECT_EQ(separate(ByReference(kTalmCurrency, &currency), ByReference(kTalmBoolean, &boolean)), "True");
  EXPECT_EQ(currency, 120000);
  EXPECT_EQ(boolean, -1);
  TalmText text = TalmTextFromUtf8("old");
  double date = 0;
  EXPECT_EQ(separate(ByReference(kTalmTextType, &text), ByReference(kTalmDate, &date)), "True");
  EXPECT_EQ(Utf8(text), "12");
  EXPECT_EQ(date, 345);
  TalmFreeText(text);
}

TEST_F(LateBindingTest, WhatDoesNotFitIntoAVariableIsToldWithItsPlace) {
  const auto reference = Text("TableID:12,DataID:345");
  std::int32_t table_id = 0;
  std::int8_t data_id = 7;
  TalmVariant reversed[] = {ByReference(kTalmInt8, &data_id).get(), ByReference(kTalmInt32, &table_id).get(),
                            reference.get()};
  TalmArguments arguments{.values = reversed, .names = nullptr, .count = 3, .named_count = 0};
  std::u16string name = u"SeparateTableIDAndDataID";
  auto* names = name.data();
  std::int32_t member = 0;
  ASSERT_EQ(command_->table->GetIDsOfNames(command_.get(), &component::kNoId, &names, 1, 0, &member), TALM_OK);
  std::uint32_t place = 99;
  EXPECT_EQ(command_->table->Invoke(command_.get(), member, &component::kNoId, 0, kTalmMethod, &arguments, nullptr,
                                    nullptr, &place),
            TALM_OVERFLOW);
  EXPECT_EQ(place, 0U);
  EXPECT_EQ(table_id, 12);
  EXPECT_EQ(data_id, 7);
}

TEST_F(LateBindingTest, NullFitsIntoNoTypedVariable) {
  RunText(connection_, "Update WorkFlowName Set Remark=Null");
  TalmText text = nullptr;
  std::int32_t number = 5;
  const auto one = Whole(1);
  OwnedVariant any;
  const auto get = [&](const OwnedVariant& remark) {
    return Call(name_, u"GetAll", List(on_, one, ByReference(any), ByReference(any), remark)).code;
  };
  EXPECT_EQ(get(ByReference(kTalmTextType, &text)), TALM_TYPE_MISMATCH);
  EXPECT_EQ(get(ByReference(kTalmInt32, &number)), TALM_TYPE_MISMATCH);
  OwnedVariant remark = Whole(5);
  EXPECT_EQ(get(ByReference(remark)), TALM_OK);
  EXPECT_EQ(Shown(remark.get()), "Null");
  OwnedVariant empty;
  EXPECT_EQ(get(ByReference(empty)), TALM_OK);
  EXPECT_EQ(Shown(empty.get()), "Empty") << "Null changes nothing about it";
}

TEST_F(LateBindingTest, VariablesThatDoNotChangeKeepTheirTypes) {
  float flow_no = 1.0F;
  OwnedVariant execute_id = Of(kTalmCurrency, [](TalmVariant& variant) { variant.as.currency = 10000; });
  OwnedVariant rest = Whole(0);
  const auto any = ByReference(rest);
  const auto outcome = Call(
      command_, u"C_22",
      List(on_, ByReference(execute_id), ByReference(kTalmFloat, &flow_no), any, any, any, any, any, any, any, any));
  EXPECT_EQ(outcome.code, TALM_OK) << outcome.Line();
  EXPECT_EQ(execute_id.get().type, kTalmCurrency);
  EXPECT_EQ(flow_no, 1.0F);
}

TEST_F(LateBindingTest, OptionalArgumentsMayBeMissing) {
  const auto select_name = Text("f");
  const auto zero = Whole(0);
  const auto one = Whole(1);
  const auto none = Text("");
  const auto more = Text(" id=x");
  const auto missing = Missing();
  EXPECT_THAT(Call(name_, u"FlowSelect", List(on_, select_name, zero, one, zero, zero, none)).Line(),
              HasSubstr("size=1>"));
  EXPECT_THAT(Call(name_, u"FlowSelect", List(on_, select_name, zero, one, zero, zero, none, missing)).Line(),
              HasSubstr("size=1>"));
  EXPECT_THAT(Call(name_, u"FlowSelect", List(on_, select_name, zero, one, zero, zero, none, more)).Line(),
              HasSubstr("size=1 id=x>"));
  EXPECT_EQ(Call(name_, u"FlowExists", List(on_, missing)).code, TALM_PARAMETER_NOT_FOUND);
}

TEST_F(LateBindingTest, WrongCountsAreTold) {
  const auto one = Whole(1);
  const auto text = Text("TableID:12");
  EXPECT_EQ(Call(name_, u"FlowExists").code, TALM_BAD_PARAMETER_COUNT);
  EXPECT_EQ(Call(name_, u"FlowExists", List(on_)).code, TALM_BAD_PARAMETER_COUNT);
  EXPECT_EQ(Call(name_, u"FlowExists", List(on_, one, one)).code, TALM_BAD_PARAMETER_COUNT);
  EXPECT_EQ(Call(name_, u"FlowExists", List(on_, one, Missing())).code, TALM_BAD_PARAMETER_COUNT);
  EXPECT_EQ(Call(command_, u"SeparateTableID", List(text)).code, TALM_BAD_PARAMETER_COUNT);
}

TEST_F(LateBindingTest, OperationsOnTextsTakeNoConnection) {
  const auto text = Text("TableID:12");
  OwnedVariant table;
  EXPECT_EQ(Call(command_, u"SeparateTableID", List(text, ByReference(table))).Line(), "True");
  EXPECT_EQ(Shown(table.get()), "12");
}

TEST_F(LateBindingTest, AListIsWrittenAsAnArray) {
  const auto text = Text("名称=1");
  OwnedVariant list = Whole(7);
  EXPECT_EQ(Call(command_, u"ExpressToArr", List(text, ByReference(list))).code, TALM_OK);
  EXPECT_EQ(Shown(list.get()), "[\"名称\",\"=\",\"1\"]");
  TalmArray* array = TalmCreateArray(kTalmTextType, 2);
  EXPECT_EQ(Call(command_, u"ExpressToArr", List(text, ByReference(kTalmArray | kTalmTextType, &array))).code, TALM_OK);
  OwnedVariant owned = Of(kTalmArray | kTalmTextType, [&](TalmVariant& variant) { variant.as.array = array; });
  EXPECT_EQ(Shown(owned.get()), "['名称','=','1']");
  // An array that somebody is looking at stays.
  array->locks = 1;
  EXPECT_EQ(Call(command_, u"ExpressToArr", List(text, ByReference(kTalmArray | kTalmTextType, &array))).code,
            TALM_TYPE_MISMATCH);
  array->locks = 0;
}

TEST_F(LateBindingTest, AnArrayIsNoSingleValue) {
  const auto array =
      Of(kTalmArray | kTalmVariant, [](TalmVariant& v) { v.as.array = TalmCreateArray(kTalmVariant, 1); });
  EXPECT_EQ(Call(name_, u"FlowExists", List(on_, array)).code, TALM_TYPE_MISMATCH);
}

TEST_F(LateBindingTest, WhatIsNoObjectIsNoConnection) {
  const auto one = Whole(1);
  const auto nothing = Of(kTalmObject);
  for (const auto* const value : {&one, &nothing}) {
    EXPECT_EQ(Call(name_, u"FlowExists", List(*value, one)).code, TALM_TYPE_MISMATCH);
  }
}

TEST_F(LateBindingTest, AConnectionMayComeByReferenceAndAsAnyObject) {
  const auto one = Whole(1);
  OwnedVariant variable = ObjectOf(connection_);
  EXPECT_EQ(Call(name_, u"FlowExists", List(ByReference(variable), one)).Line(), "True");
  TalmDispatch* object = connection_.get();
  EXPECT_EQ(Call(name_, u"FlowExists", List(ByReference(kTalmObject, &object), one)).Line(), "True");
  const auto unknown = UnknownOf(Reference<TalmUnknown>::Counting(reinterpret_cast<TalmUnknown*>(connection_.get())));
  EXPECT_EQ(Call(name_, u"FlowExists", List(unknown, one)).Line(), "True");
}

TEST_F(LateBindingTest, ErrorsArriveWithClassKindAndMessage) {
  const auto bad = Text("no number");
  const auto outcome = Call(name_, u"FlowExists", List(on_, bad));
  EXPECT_EQ(outcome.code, TALM_EXCEPTION);
  EXPECT_EQ(outcome.kind, "DatabaseError");
  EXPECT_EQ(outcome.source, "TALM_Flow.Name");
  EXPECT_THAT(outcome.message, HasSubstr("syntax error"));
  RunText(connection_, "Update WorkFlowName Set Remark=Null");
  const auto one = Whole(1);
  EXPECT_EQ(Call(name_, u"GetRemark", List(on_, one)).kind, "ConversionError");
  const auto in_out = Create(u"TALM_Flow.InOut");
  const auto path = Text("/no/such/folder/x.txt");
  EXPECT_THAT(Call(in_out, u"CreateTxt", List(path, path)).Line(), HasSubstr("FileError: the file"));
  const auto zero = Whole(0);
  const auto power = Text("2^1024");
  EXPECT_EQ(Call(command_, u"GetVariableValue", List(on_, zero, zero, power, zero, zero)).kind, "OverflowError");
  const auto url = Text("nosuch:x");
  EXPECT_EQ(Call(Create(u"TALM_Flow.Connection"), u"Open", List(url)).kind, "ArgumentError");
}

TEST_F(LateBindingTest, AnErrorLeavesWhatWasWrittenUntilThen) {
  OwnedVariant parent = Text("old");
  OwnedVariant flow_no = Text("old");
  OwnedVariant execute_parent = Text("old");
  const auto bad = Text("no number");
  const auto outcome = Call(command_, u"GetParentFlowParam",
                            List(on_, bad, ByReference(parent), ByReference(flow_no), ByReference(execute_parent)));
  EXPECT_EQ(outcome.kind, "DatabaseError");
  EXPECT_EQ(Shown(parent.get()), "\"old\"");
}

TEST_F(LateBindingTest, AResultThatNobodyWantsIsDropped) {
  const auto text = Text("Select FlowName From WorkFlowName");
  const std::vector<TalmVariant> arguments = List(text);
  EXPECT_EQ(TalmCall(connection_.get(), u"Execute", kTalmMethod, arguments.data(), 1, nullptr, nullptr), TALM_OK);
  const auto bad = Text("nonsense");
  const std::vector<TalmVariant> bad_arguments = List(bad);
  EXPECT_EQ(TalmCall(connection_.get(), u"Execute", kTalmMethod, bad_arguments.data(), 1, nullptr, nullptr),
            TALM_EXCEPTION);
}

/// What an operation gives and leaves, in one line, called by late binding and directly.
class EveryOperationTest : public ComponentTest, public testing::WithParamInterface<const late_bound::Operation*> {
 protected:
  /// Nothing depends on the clock or on anything but the database, which is the same in both: it has one flow.
  static constexpr const char* kFlow = "Insert Into WorkFlowName (FlowName,Creater,Remark) Values ('F','kim','R')";

  static std::string Line(const late_bound::Result& result) {
    if (const auto* const value = std::get_if<Value>(&result)) return Line(*value);
    return std::holds_alternative<std::monostate>(result) ? "Empty" : "object";
  }
  static std::string Line(const Value& value) {
    if (value.IsNull()) return "Null";
    if (value.IsText()) return '"' + value.Text() + '"';
    return JoinedText(value);
  }
  static std::string Line(const late_bound::Argument& argument) {
    if (!argument.IsList()) return Line(argument.Single());
    std::string text;
    for (const auto& item : argument.Items()) text += (text.empty() ? "\"" : ",\"") + item + '"';
    return "[" + text + "]";
  }

  std::string Directly() {
    World world;
    world.Run(kFlow);
    std::vector<late_bound::Argument> arguments(GetParam()->MaxArguments(), late_bound::Argument(1));
    std::string line;
    try {
      line = Line(late_bound::Call(*GetParam(), world.database(), world.services(), arguments));
    } catch (const FlowError& error) {
      line = std::string(error.Kind()) + ": " + error.what();
    }
    for (const auto& argument : arguments) line += " | " + Line(argument);
    return line;
  }

  std::string ByName() {
    const auto connection = NewConnection();
    RunText(connection, kFlow);
    const auto name = std::string(GetParam()->name);
    const auto dot = name.find('.');
    const std::string member = name.substr(dot + 1);
    const auto object =
        Create(u"TALM_Flow." + std::u16string(name.begin(), name.begin() + static_cast<std::ptrdiff_t>(dot)));
    std::vector<OwnedVariant> variables;
    for (std::size_t i = 0; i < GetParam()->MaxArguments(); ++i) variables.push_back(Whole(1));
    const auto on = ObjectOf(connection);
    std::vector<TalmVariant> arguments;
    if (GetParam()->takes_connection) arguments.push_back(on.get());
    for (auto& variable : variables) arguments.push_back(ByReference(variable).get());
    std::string line = Call(object, std::u16string(member.begin(), member.end()), arguments).Line();
    for (const auto& variable : variables) line += " | " + Shown(variable.get());
    return line;
  }
};

TEST_P(EveryOperationTest, IsTheSameByNameAsDirectly) { EXPECT_EQ(ByName(), Directly()); }

std::vector<const late_bound::Operation*> AllOperations() {
  std::vector<const late_bound::Operation*> all;
  for (const auto& operation : late_bound::Operations()) {
    // It writes a file of that name.
    if (operation.name != "InOut.CreateTxt") all.push_back(&operation);
  }
  return all;
}

INSTANTIATE_TEST_SUITE_P(All, EveryOperationTest, testing::ValuesIn(AllOperations()), [](const auto& test) {
  std::string name(test.param->name);
  name.replace(name.find('.'), 1, "_");
  return name;
});

}  // namespace
}  // namespace talm_flow::test
