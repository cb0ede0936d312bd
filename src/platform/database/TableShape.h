#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/database/Names.h"

namespace excelexp {

/// What the key joins need to know of a table or view.
struct TableShape {
  struct Column {
    std::string name;
    std::string declared_type;
  };
  struct ForeignKey {
    std::string target;                                        ///< the table referred to
    std::vector<std::pair<std::string, std::string>> columns;  ///< own column, column of the target
  };

  std::string name;
  std::vector<Column> columns;  ///< those that SELECT * shows
  std::vector<ForeignKey> keys;

  const Column* Find(std::string_view column) const {
    for (const Column& each : columns)
      if (SameName(each.name, column)) return &each;
    return nullptr;
  }
};

/// Looks a table up by name, without regard to case; nullptr when there is none. The shape outlives the use.
using FindTable = std::function<const TableShape*(std::string_view name)>;

}  // namespace excelexp
