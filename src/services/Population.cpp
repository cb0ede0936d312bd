#include "services/Population.h"

#include "platform/host/Format.h"

namespace excelexp {
namespace {

std::string ViewTable(const BExcelExpEngCore* core) {
  return core->QueryViewTable == nullptr ? "" : core->QueryViewTable->sGetViewTableName();
}

}  // namespace

std::string QualifiedId(const Population& population) {
  return Joined({population.table, ".", population.id});
}

std::string InView(const BExcelExpEngCore* core, const Population& population) {
  return Joined(
      {population.table, ".", population.id, " IN (SELECT ", population.id, " FROM ", ViewTable(core), ")"});
}

std::string InViewOneByOne(const BExcelExpEngCore* core, const Population& population,
                           const std::string& id) {
  return Joined({population.table, ".", population.id, " IN (SELECT ", population.id, " FROM ",
                 ViewTable(core), " WHERE ", population.id, " = ", id, ")"});
}

std::string FilterCondition(int has_filter, const std::string& condition) {
  return has_filter == 0 || condition.empty() ? "" : "(" + condition + ")";
}

}  // namespace excelexp
