#include "talm_flow/in_out.h"

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

#include "design/definition_reader.h"
#include "design/definition_text.h"
#include "design/definition_writer.h"
#include "design/text_of.h"

namespace talm_flow {
namespace {

using db::Session;
using design::TextOf;
using Given = std::optional<std::string_view>;

/// Writes what was read into a call's arguments. Everything is a copy by now: the text that was taken apart may be one
/// of these arguments.
template <std::size_t count>
void HandOver(Value (&&read)[count], const std::array<std::reference_wrapper<Value>, count>& arguments) {
  for (std::size_t i = 0; i < count; ++i) arguments[i].get() = std::move(read[i]);
}

Value NumberOrNone(const Given& given) { return given ? Value(*given) : Value(0); }
Value TextOrNone(const Given& given) { return Value(given.value_or("")); }

}  // namespace

std::string InOut::MakeConstructionBak(Connection& ConnDB, const Value& FlowID) {
  Session session(ConnDB, services_);
  return design::MakeConstructionBak(session, FlowID);
}

void InOut::CreateTxt(const Value& FileName, const Value& StrContent) {
  design::CreateTxt(services_.files, TextOf(FileName).view(), TextOf(StrContent).view());
}

std::int16_t InOut::CreatFlow(Connection& ConnDB, const Value& FlowID, const Value& StrContent) {
  Session session(ConnDB, services_);
  return design::CreatFlow(session, FlowID, TextOf(StrContent).view());
}

void InOut::SeparateLine(const Value& StrAll, Value& ForntLine, Value& BackLine) {
  const TextOf text(StrAll);
  const auto [front, back] = design::SeparateLine(text.view());
  HandOver({Value(front), Value(back)}, {ForntLine, BackLine});
}

void InOut::SeparateValue(const Value& StrAll, Value& ForntValue, Value& BackValue) {
  const TextOf text(StrAll);
  const auto [front, back] = design::SeparateValue(text.view());
  HandOver({Value(front), Value(back)}, {ForntValue, BackValue});
}

bool InOut::IsSeparateLine(const Value& StrLine) { return design::IsSeparateLine(TextOf(StrLine).view()); }

void InOut::GetStepValue(const Value& StrAll, Value& BackLine, Value& FlowNo, Value& ParentNo, Value& Serial,
                         Value& Remark, Value& Command) {
  const TextOf text(StrAll);
  const auto [values, back] = design::GetStepValue(text.view());
  HandOver({NumberOrNone(values[design::kFlowNo]), NumberOrNone(values[design::kParentNo]),
            NumberOrNone(values[design::kSerial]), TextOrNone(values[design::kRemark]),
            TextOrNone(values[design::kCommand]), back ? Value(*back) : BackLine},
           {FlowNo, ParentNo, Serial, Remark, Command, BackLine});
}

void InOut::GetFunctionValue(const Value& StrAll, Value& BackLine, Value& InputTitle, Value& OrderNo, Value& Sort,
                             Value& ClassContent) {
  const TextOf text(StrAll);
  const auto [values, back] = design::GetFunctionValue(text.view());
  HandOver(
      {TextOrNone(values[design::kInputTitle]), NumberOrNone(values[design::kOrderNo]),
       NumberOrNone(values[design::kSort]), TextOrNone(values[design::kClassContent]), back ? Value(*back) : BackLine},
      {InputTitle, OrderNo, Sort, ClassContent, BackLine});
}

bool InOut::IsFlowRemark(const Value& StrValue) { return design::IsFlowRemark(TextOf(StrValue).view()); }

}  // namespace talm_flow
