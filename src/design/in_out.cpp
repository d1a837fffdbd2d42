#include "talm_flow/in_out.h"

#include <cstddef>
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

/// Both parts are copied before either is handed over: the text taken apart may be one of the two arguments.
void HandOver(const design::Parted& parted, Value& front, Value& back) {
  Value front_text(parted.front);
  Value back_text(parted.back);
  front = std::move(front_text);
  back = std::move(back_text);
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
  HandOver(design::SeparateLine(text.view()), ForntLine, BackLine);
}

void InOut::SeparateValue(const Value& StrAll, Value& ForntValue, Value& BackValue) {
  const TextOf text(StrAll);
  HandOver(design::SeparateValue(text.view()), ForntValue, BackValue);
}

bool InOut::IsSeparateLine(const Value& StrLine) { return design::IsSeparateLine(TextOf(StrLine).view()); }

void InOut::GetStepValue(const Value& StrAll, Value& BackLine, Value& FlowNo, Value& ParentNo, Value& Serial,
                         Value& Remark, Value& Command) {
  const Value kept = StrAll;
  const TextOf text(kept);
  const auto [values, back] = design::GetStepValue(text.view());
  FlowNo = NumberOrNone(values[design::kFlowNo]);
  ParentNo = NumberOrNone(values[design::kParentNo]);
  Serial = NumberOrNone(values[design::kSerial]);
  Remark = TextOrNone(values[design::kRemark]);
  Command = TextOrNone(values[design::kCommand]);
  if (back) BackLine = Value(*back);
}

void InOut::GetFunctionValue(const Value& StrAll, Value& BackLine, Value& InputTitle, Value& OrderNo, Value& Sort,
                             Value& ClassContent) {
  const Value kept = StrAll;
  const TextOf text(kept);
  const auto [values, back] = design::GetFunctionValue(text.view());
  InputTitle = TextOrNone(values[design::kInputTitle]);
  OrderNo = NumberOrNone(values[design::kOrderNo]);
  Sort = NumberOrNone(values[design::kSort]);
  ClassContent = TextOrNone(values[design::kClassContent]);
  if (back) BackLine = Value(*back);
}

bool InOut::IsFlowRemark(const Value& StrValue) { return design::IsFlowRemark(TextOf(StrValue).view()); }

}  // namespace talm_flow
