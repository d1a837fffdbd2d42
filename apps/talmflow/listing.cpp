#include "listing.h"

#include <algorithm>
#include <iostream>

#include "talm_flow/conversion.h"
#include "terminal.h"

namespace talm_flow::program {
namespace {

std::string Cell(const Json& json) {
  if (json.is_null()) return {};
  if (json.is_number_float()) return NumberText(json.get<double>());
  return Printable(json.is_string() ? json.get_ref<const std::string&>() : Dump(json));
}

std::string Member(std::string heading) {
  for (char& c : heading) c = c == ' ' ? '_' : static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  return heading;
}

std::string Line(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    line += cells[i];
    if (i + 1 < cells.size()) line.append(widths[i] - DisplayWidth(cells[i]) + 2, ' ');
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

}  // namespace

Json Listing::AsJson() const {
  Json result = Json::array();
  for (const auto& row : rows_) {
    Json& object = result.emplace_back(Json::object());
    for (std::size_t i = 0; i < columns_.size(); ++i) object[Member(columns_[i])] = row[i];
  }
  return result;
}

void Listing::Print(const GlobalOptions& options, const std::string& none) const {
  if (options.json) {
    std::cout << Dump(AsJson(), 2) << '\n';
  } else if (rows_.empty()) {
    std::cout << none << '\n';
  } else {
    PrintColumns();
  }
}

void Listing::PrintColumns(const std::string& indent) const {
  std::vector<std::size_t> widths;
  for (const auto& column : columns_) widths.push_back(DisplayWidth(column));
  std::vector<std::vector<std::string>> lines;
  for (const auto& row : rows_) {
    auto& line = lines.emplace_back();
    for (std::size_t i = 0; i < row.size(); ++i) {
      line.push_back(Cell(row[i]));
      widths[i] = std::max(widths[i], DisplayWidth(line.back()));
    }
  }
  std::cout << indent << Bold(Line(columns_, widths)) << '\n';
  for (const auto& line : lines) std::cout << indent << Line(line, widths) << '\n';
}

}  // namespace talm_flow::program
