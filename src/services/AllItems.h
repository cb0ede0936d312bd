#pragma once

#include <string>
#include <string_view>

namespace excelexp {

/// The statement that lists the analysis items which an "<ALL>" item of that grouping stands for:
/// AnlysItem1Id, AnlysItemDesc, AnlysItemTypeId, in the order of the columns or rows they print to. It is not
/// confined to a project or data key. Layouts and the formula decoder ask by this same text, so that decoded
/// references and printed positions agree.
std::string AllItemsSql(std::string_view grouping);

}  // namespace excelexp
