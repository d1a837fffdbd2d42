#include "host/user_list_service.h"

#include <array>
#include <iterator>
#include <unordered_set>
#include <utility>
#include <vector>

#include "host/statement.h"

namespace talm_flow::host {
namespace {

constexpr std::array<std::string_view, 10> kSeparators = {",", ";", " ", "\t", "\r", "\n", "、", "，", "；", "\u3000"};

std::size_t SeparatorSize(std::string_view text) {
  for (const std::string_view separator : kSeparators) {
    if (text.starts_with(separator)) return separator.size();
  }
  return 0;
}

void AppendItems(std::vector<std::string>& items, std::string_view expression) {
  std::size_t begin = 0;
  const auto end_item = [&](std::size_t end) {
    if (end > begin) items.emplace_back(expression.substr(begin, end - begin));
  };
  for (std::size_t at = 0; at < expression.size();) {
    const std::size_t size = SeparatorSize(expression.substr(at));
    if (size == 0) {
      ++at;
      continue;
    }
    end_item(at);
    at += size;
    begin = at;
  }
  end_item(expression.size());
}

std::vector<std::string> GroupItems(Connection& connection, const CommonFunctions& common, std::string_view group) {
  std::vector<std::string> items;
  const auto rows = connection.Open(
      StatementText(common, "Select UserName From UserGroup Where GroupName=", Literal{group}, " Order By ID"));
  for (; !rows->AtEnd(); rows->MoveNext()) AppendItems(items, JoinedText(rows->Field("UserName")));
  return items;
}

// Groups may hold each other in any depth and in circles: the items still to be looked at wait on a stack, and no
// group is opened twice.
class Expansion {
 public:
  Expansion(Connection& connection, const CommonFunctions& common) : connection_(connection), common_(common) {}

  void Add(std::vector<std::string> items) {
    pending_.insert(pending_.end(), std::make_move_iterator(items.rbegin()), std::make_move_iterator(items.rend()));
  }

  [[nodiscard]] std::string Names() {
    while (!pending_.empty()) {
      const auto [item, is_new] = seen_.insert(std::move(pending_.back()));
      pending_.pop_back();
      if (!is_new) continue;
      if (item->front() == '@') {
        Add(GroupItems(connection_, common_, std::string_view(*item).substr(1)));
      } else {
        if (!names_.empty()) names_ += ',';
        names_ += *item;
      }
    }
    return std::move(names_);
  }

 private:
  Connection& connection_;
  const CommonFunctions& common_;
  std::vector<std::string> pending_;
  std::unordered_set<std::string> seen_;
  std::string names_;
};

}  // namespace

std::string ReferenceUserListService::UserNames(Connection& connection, std::string_view expression) {
  std::vector<std::string> items;
  AppendItems(items, expression);
  Expansion expansion(connection.Unobserved(), common_);
  expansion.Add(std::move(items));
  return expansion.Names();
}

}  // namespace talm_flow::host
