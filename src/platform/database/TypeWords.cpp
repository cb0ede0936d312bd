#include "platform/database/TypeWords.h"

#include <array>
#include <string_view>

#include "platform/database/Names.h"

namespace excelexp {
namespace {

struct TypeWord {
  std::string_view declared;
  std::string_view word;
};
constexpr std::array<TypeWord, 20> kTypeWords = {{
    {"char", "char"},
    {"varchar", "char"},
    {"character", "char"},
    {"nchar", "char"},
    {"nvarchar", "char"},
    {"text", "char"},
    {"character varying", "char"},
    {"long varchar", "char"},
    {"int", "integer"},
    {"integer", "integer"},
    {"smallint", "smallint"},
    {"tinyint", "smallint"},
    {"double", "double"},
    {"double precision", "double"},
    {"real", "double"},
    {"float", "double"},
    {"decimal", "decimal"},
    {"numeric", "decimal"},
    {"datetime", "timestamp"},
    {"timestamp", "timestamp"},
}};

}  // namespace

std::string TypeWordOf(const std::string& declared) {
  std::string word = FoldName(declared.substr(0, declared.find('(')));
  while (!word.empty() && word.back() == ' ') word.pop_back();
  for (const TypeWord& each : kTypeWords)
    if (each.declared == word) return std::string(each.word);
  return word;
}

}  // namespace excelexp
