#pragma once

/// Reading HTML strictly: what a browser would mend is a fault here.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace talm_flow::test {

struct HtmlElement {
  std::string name;                                             ///< in lower case
  std::vector<std::pair<std::string, std::string>> attributes;  ///< names in lower case, values as written
  std::string text;                                             ///< as written, without that of elements inside
};

struct HtmlReading {
  std::string fault;                  ///< what is wrong and where; empty when nothing is
  std::vector<HtmlElement> elements;  ///< in the order of their begin tags
};

/// Takes a piece of HTML apart. Every element that can have an end tag has one, in its parent; rows stand in tables,
/// cells in rows, options in lists, items in lists; attributes have different names and well-formed values; nothing
/// but letters begins a tag behind "<" or "</"; comments and declarations are refused. What stands in a script is text
/// up to "</script", in a text area up to "</textarea". "/>" ends an element at once, as in XML.
[[nodiscard]] HtmlReading ReadHtml(std::string_view html);

}  // namespace talm_flow::test
