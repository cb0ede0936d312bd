#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/database/SqlClauses.h"
#include "platform/database/SqlTokens.h"
#include "platform/database/TableShape.h"

namespace excelexp {

/// A condition "column IN (SELECT Id FROM V)" with an integer Id, by its tokens.
struct InList {
  TokenSpan column;  ///< with its table or without
  std::size_t id;
  std::size_t view;
  std::size_t close;  ///< the parenthesis
};

/// Those that are a condition of a WHERE by themselves, or one of several with AND between them: whether one
/// is NULL or FALSE makes no difference there.
std::vector<InList> InListsOf(const std::vector<SqlToken>& tokens, const FindTable& find_table);

/// "SELECT EXISTS (...)" of a plain statement (SqlShape::IsPlain), with "EXISTS (SELECT Id FROM V WHERE T.a =
/// V.Id)" in place of "T.a IN (SELECT Id FROM V)": whether there are rows is then told by the first one, and
/// no list is made for it. nullopt for a statement without such a list.
std::optional<std::string> AsExistence(const std::string& sql, const FindTable& find_table);

}  // namespace excelexp
