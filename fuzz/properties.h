#pragma once

/// What must hold for every input, whatever it is. A fuzzer calls a property with millions of inputs that it makes up;
/// the tests call each with the inputs of its corpus.
///
/// A property raises `Broken` when it does not hold. Everything else that reaches the caller is a fault as well.

#include <span>
#include <string_view>

namespace talm_flow::fuzz {

/// Numbers and dates in texts: read alike by an independent reader, written so that they are read back.
void CheckConversion(std::string_view input);
/// Expressions end after a bounded number of statements; literals are their texts; plain arithmetic agrees with an
/// independent calculation. Records: the expression, then "name=value" for each variable.
void CheckExpression(std::string_view input);
/// Tokens of a condition keep its characters; a lookup's statement holds comparisons of columns with literals and
/// nothing else. Records: the condition, then "name=value" for each variable.
void CheckCondition(std::string_view input);
/// References are read back from the texts that they are written as.
void CheckReference(std::string_view input);
/// Loading, writing out, loading and writing out again gives the same text; the checker takes every text.
void CheckDefinitionText(std::string_view input);
/// The drawing, the lists, the input form and the script arrays of any rows are balanced HTML, with the stored texts in
/// their places. Records: "S" parent caption, "P" data of the last step, "I" title, "O" options of the last title,
/// "N" the flow's remark, "V" the values of the input form.
void CheckDrawing(std::string_view input);
/// A quoted text comes back from the database as it was; escaped ones come back from scripts and pages.
void CheckQuoting(std::string_view input);
/// A statement made up from the input gives what the same statement gives in the engine's own dialect.
void CheckStatement(std::string_view input);
/// A statement text of any kind is taken apart without a loss, and recognised only as what it is. Records: two texts.
void CheckStatementText(std::string_view input);
/// Every line of a session is answered with one line of JSON, or not at all where no answer is due.
void CheckRpc(std::string_view input);

struct Property {
  std::string_view name;  ///< also the name of the corpus folder and of the fuzzer
  void (*check)(std::string_view input);
};

[[nodiscard]] std::span<const Property> Properties();

}  // namespace talm_flow::fuzz
