#include "design/input_form.h"

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "design/text_of.h"
#include "talm_flow/text.h"

namespace talm_flow::design {

namespace {

enum class Kind { kText = 1, kNumber, kDate, kLongText, kChoice, kChoices, kYesNo, kPerson, kRecord };

Kind KindOf(const Value& sort) {
  for (int kind = static_cast<int>(Kind::kText); kind <= static_cast<int>(Kind::kRecord); ++kind) {
    if (SwitchIs(sort, kind)) return static_cast<Kind>(kind);
  }
  return Kind::kText;
}

/// Safe in an element and in a quoted attribute; line breaks too, which an attribute's reader may change.
void AppendHtml(std::string& out, std::string_view text) {
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      case '\r':
        out += "&#13;";
        break;
      case '\n':
        out += "&#10;";
        break;
      default:
        out += c;
    }
  }
}

class InputForm {
 public:
  InputForm(const host::CommonFunctions& common, bool is_table) : common_(common), is_table_(is_table) {}

  void Begin() { out_ += is_table_ ? "<table class=\"InputParameters\">\r\n" : "<ul class=\"InputParameters\">\r\n"; }
  void End() { out_ += is_table_ ? "</table>\r\n" : "</ul>\r\n"; }
  [[nodiscard]] std::string Take() { return std::move(out_); }

  void Row(std::size_t position, std::string_view title, const Value& sort, std::string_view options,
           std::string_view value) {
    name_ = "InputParameter_" + std::to_string(position);
    const Kind kind = KindOf(sort);
    out_ += is_table_ ? "<tr><th scope=\"row\">" : "<li>";
    Label(kind, title);
    out_ += is_table_ ? "</th><td>" : " ";
    Widget(kind, options, value);
    out_ += is_table_ ? "</td></tr>\r\n" : "</li>\r\n";
  }

 private:
  void Label(Kind kind, std::string_view title) {
    const bool is_group = kind == Kind::kChoices;
    out_ += is_group ? "<span id=\"" : "<label for=\"";
    out_ += name_;
    out_ += is_group ? "_Title\">" : "\">";
    AppendHtml(out_, title);
    out_ += is_group ? "</span>" : "</label>";
  }

  void Widget(Kind kind, std::string_view options, std::string_view value) {
    switch (kind) {
      case Kind::kText:
        return TextInput("text", "", value);
      case Kind::kNumber:
        return TextInput("number", " inputmode=\"decimal\"", value);
      case Kind::kDate:
        return TextInput("date", " autocomplete=\"off\"", value);
      case Kind::kLongText:
        return LongText(value);
      case Kind::kChoice:
        return Choice(options, value);
      case Kind::kChoices:
        return Choices(options, value);
      case Kind::kYesNo:
        return YesNo(value);
      case Kind::kPerson:
        return TextInput("person", "", value);
      case Kind::kRecord:
        return TextInput("record", "", value);
    }
  }

  void Open(std::string_view tag, std::string_view kind) {
    out_ += tag;
    out_ += " id=\"";
    out_ += name_;
    out_ += "\" name=\"";
    out_ += name_;
    out_ += "\" data-kind=\"";
    out_ += kind;
    out_ += '"';
  }

  void TextInput(std::string_view kind, std::string_view attributes, std::string_view value) {
    Open("<input type=\"text\"", kind);
    out_ += attributes;
    out_ += " value=\"";
    AppendHtml(out_, value);
    out_ += "\">";
  }

  void LongText(std::string_view value) {
    Open("<textarea", "longtext");
    out_ += " rows=\"4\" cols=\"40\">";
    // A browser passes over one line break at the very beginning.
    if (value.starts_with('\n')) out_ += '\n';
    AppendHtml(out_, value);
    out_ += "</textarea>";
  }

  void Option(std::string_view value, std::string_view shown, bool selected) {
    out_ += "<option value=\"";
    AppendHtml(out_, value);
    out_ += selected ? "\" selected>" : "\">";
    AppendHtml(out_, shown);
    out_ += "</option>";
  }

  void Choice(std::string_view options, std::string_view value) {
    const std::string_view chosen = TrimBlanks(value);
    Open("<select", "choice");
    out_ += '>';
    Option("", "", chosen.empty());
    for (const std::string_view item : Split(options, ",")) {
      const std::string_view option = TrimBlanks(item);
      Option(option, option, !option.empty() && option == chosen);
    }
    out_ += "</select>";
  }

  void Choices(std::string_view options, std::string_view values) {
    out_ += "<span id=\"" + name_ + "\" role=\"group\" aria-labelledby=\"" + name_ + "_Title\" data-kind=\"choices\">";
    std::size_t number = 0;
    for (const std::string_view item : Split(options, ",")) {
      const std::string_view option = TrimBlanks(item);
      const std::string id = name_ + '_' + std::to_string(++number);
      out_ += "<input type=\"checkbox\" id=\"" + id + "\" name=\"" + name_ + "\" value=\"";
      AppendHtml(out_, option);
      out_ += common_.InList(values, option) ? "\" checked>" : "\">";
      out_ += "<label for=\"" + id + "\">";
      AppendHtml(out_, option);
      out_ += "</label>";
    }
    out_ += "</span>";
  }

  void YesNo(std::string_view value) {
    const bool yes = SwitchIs(Value(value), 1);
    Open("<select", "yesno");
    out_ += '>';
    Option("0", "否", !yes);
    Option("1", "是", yes);
    out_ += "</select>";
  }

  const host::CommonFunctions& common_;
  bool is_table_;
  std::string name_;  // of the row being written
  std::string out_;
};

}  // namespace

std::string DisplayInputParameter(db::Session& session, const Value& flow_id, const Value& display_format,
                                  const Value& values) {
  const TextOf values_text(values);
  const std::vector<std::string_view> value_of = Split(values_text.view(), "|^|");
  InputForm form(session.host().common, SwitchIs(display_format, 1));
  const auto rows = session.Open("select Top 10000 * from WorkFlowFunctionInput where FlowID=", flow_id,
                                 " Order By OrderNo,InputTitle");
  if (!db::Session::HasRow(*rows)) return {};
  form.Begin();
  for (std::size_t position = 1; db::Session::HasRow(*rows); rows->MoveNext(), ++position) {
    const Value title = rows->Field("InputTitle");
    const Value options = rows->Field("ClassContent");
    form.Row(position, TextOf(title).view(), rows->Field("Sort"), TextOf(options).view(),
             position <= value_of.size() ? value_of[position - 1] : std::string_view());
  }
  form.End();
  return form.Take();
}

}  // namespace talm_flow::design
