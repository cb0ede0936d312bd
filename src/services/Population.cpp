#include "services/Population.h"

namespace excelexp {
namespace {

std::string ViewTable(const BExcelExpEngCore* core) {
  return core->QueryViewTable == nullptr ? "" : core->QueryViewTable->sGetViewTableName();
}

std::string SelectFromView(const BExcelExpEngCore* core, const Population& population) {
  return QualifiedId(population) + " IN (SELECT " + std::string(population.id) + " FROM " + ViewTable(core);
}

}  // namespace

std::string QualifiedId(const Population& population) {
  return std::string(population.table) + "." + std::string(population.id);
}

std::string InView(const BExcelExpEngCore* core, const Population& population) {
  return SelectFromView(core, population) + ")";
}

std::string InViewOneByOne(const BExcelExpEngCore* core, const Population& population,
                           const std::string& id) {
  return SelectFromView(core, population) + " WHERE " + std::string(population.id) + " = " + id + ")";
}

std::string FilterCondition(int has_filter, const std::string& condition) {
  return has_filter == 0 || condition.empty() ? "" : "(" + condition + ")";
}

}  // namespace excelexp
