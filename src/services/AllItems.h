#pragma once

#include <string>
#include <string_view>

namespace excelexp {

/// The kinds of analysis items that an "<ALL>" item can be confined to; another grouping expands to the items
/// of all kinds.
enum class ItemKinds { kPay, kTimesheet, kPayAndTimesheet };

/// The statement that lists the analysis items which an "<ALL>" item of that grouping stands for:
/// AnlysItem1Id, AnlysItemDesc, AnlysItemTypeId, in the order of the columns or rows they print to. It is not
/// confined to a project or data key.
std::string AllItemsSql(std::string_view grouping, ItemKinds kinds);

}  // namespace excelexp
