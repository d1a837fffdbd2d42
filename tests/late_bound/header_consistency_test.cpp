#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "support/places.h"
#include "talm_flow/late_bound.h"

namespace talm_flow::late_bound {
namespace {

/// An operation as a header declares it.
struct Declared {
  std::string argument_names;
  std::vector<Passing> arguments;
};

std::string ClassText(const std::string& class_name, const std::string& header) {
  std::ifstream file(test::SourcePath("include/talm_flow/" + header));
  std::ostringstream text;
  text << file.rdbuf();
  const auto bare = std::regex_replace(text.str(), std::regex("//[^\n]*"), "");
  const auto begin = bare.find("class TALM_FLOW_API " + class_name + " {");
  return bare.substr(begin, bare.find(" private:", begin) - begin);
}

void AddArgument(Declared& declared, const std::string& name, Passing passing) {
  if (!declared.arguments.empty()) declared.argument_names += ',';
  declared.argument_names += name;
  declared.arguments.push_back(passing);
}

void AddParameter(Declared& declared, const std::string& type, const std::string& name) {
  static const std::map<std::string, Passing> kPassing = {{"const Value&", Passing::kIn},
                                                          {"Value&", Passing::kByReference},
                                                          {"const Value*", Passing::kOptional},
                                                          {"std::vector<std::string>&", Passing::kList}};
  if (type == "Connection&") return;
  if (type == "InvocationContext&") {
    for (const auto* const member : {"ExecuteID", "FlowNo", "RootExecuteID", "TableID", "DataID", "FlowID", "Operator",
                                     "IpAddress", "OtherTableID", "OtherDataID"}) {
      AddArgument(declared, member, Passing::kByReference);
    }
    return;
  }
  AddArgument(declared, name, kPassing.at(type));
}

std::map<std::string, Declared> DeclaredOperations() {
  std::map<std::string, Declared> result;
  const std::regex operation(R"((\w+)\(([^;{()]*)\)\s*;)");
  const std::regex parameter(R"(((?:const )?[\w:<>]+[&*])\s+(\w+))");
  for (const auto& [class_name, header] :
       {std::pair{"Command", "command.h"}, std::pair{"Construction", "construction.h"}, std::pair{"InOut", "in_out.h"},
        std::pair{"Name", "name.h"}}) {
    const auto text = ClassText(class_name, header);
    for (std::sregex_iterator it(text.begin(), text.end(), operation), end; it != end; ++it) {
      Declared declared;
      const auto parameters = (*it)[2].str();
      for (std::sregex_iterator at(parameters.begin(), parameters.end(), parameter); at != end; ++at) {
        AddParameter(declared, (*at)[1], (*at)[2]);
      }
      result.emplace(class_name + ("." + (*it)[1].str()), std::move(declared));
    }
  }
  return result;
}

TEST(HeaderConsistencyTest, EveryPublicOperationOfTheHeadersIsInTheTable) {
  std::set<std::string> declared;
  for (const auto& [name, operation] : DeclaredOperations()) declared.insert(name);
  std::set<std::string> bound;
  for (const auto& operation : Operations()) bound.insert(std::string(operation.name));

  EXPECT_GT(declared.size(), 160U);
  EXPECT_EQ(bound, declared);
  EXPECT_EQ(bound.size(), Operations().size());
}

TEST(HeaderConsistencyTest, ArgumentsAreNamedAndPassedAsTheHeadersDeclareThem) {
  const auto declared = DeclaredOperations();
  for (const auto& operation : Operations()) {
    SCOPED_TRACE(operation.name);
    const auto found = declared.find(std::string(operation.name));
    ASSERT_NE(found, declared.end());
    EXPECT_EQ(operation.argument_names, found->second.argument_names);
    EXPECT_EQ(std::vector(operation.arguments.begin(), operation.arguments.end()), found->second.arguments);
  }
}

TEST(HeaderConsistencyTest, OnlyTheTrailingOptionalArgumentsMayBeLeftOff) {
  for (const auto& operation : Operations()) {
    SCOPED_TRACE(operation.name);
    const auto optional = std::ranges::count(operation.arguments, Passing::kOptional);
    EXPECT_EQ(operation.MinArguments() + static_cast<std::size_t>(optional), operation.MaxArguments());
  }
}

}  // namespace
}  // namespace talm_flow::late_bound
