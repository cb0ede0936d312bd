#pragma once

#include <string>
#include <vector>

#include "frames/BandedFrame.h"
#include "services/Population.h"

namespace excelexp {

/// A field of the current entity's record as both logs show it.
struct EntityLogLine {
  std::string_view title;
  std::string_view field;
};

/// What the two information frames do differently, beside the traits of every frame.
struct InformationFrameTraits {
  const FrameTraits& frame;
  const Population& population;
  std::string_view entity_columns;  ///< of the entity list: what the layouts find the entity by
  std::string_view entity_id;       ///< the one of them that holds the id
  std::string_view group_members;   ///< who can satisfy a group's condition: "id FROM tables"
  std::string_view record;          ///< the tables of an entity's record: "tables WHERE id"
  EntityLogLine log[2];
};

/// The frame of worksheets whose first item is an employee information report: the entities are the people
/// that this report's tables and filter select and the user may see. Later items change nothing about who is
/// printed.
class InformationFrame : public BandedFrame {
 public:
  /// Everything handed in outlives the frame.
  InformationFrame(BExcelExpEngCore* core, std::vector<WkSheetItem>& items,
                   const InformationFrameTraits& traits);

 protected:
  bool EntityListSql(std::string& sql) override;
  bool GroupListSql(std::string& sql) override;
  bool EntitySql(std::string& sql) override;
  bool LogEntity() override;

 private:
  /// " FROM tables WHERE " with the conditions on who is printed; `in_view` is the view's.
  std::string SelectedPeople(const std::string& in_view) const;

  const InformationFrameTraits& people_;
};

/// A population of employees. Financial items are printed beside the first one too.
class BExcelExpEngPrintFirstEmpRpt final : public InformationFrame {
 public:
  BExcelExpEngPrintFirstEmpRpt(BExcelExpEngCore* core, std::vector<WkSheetItem>& items);
  static const FrameTraits& Traits();
};

/// A population of persons, employed or not. Only items about persons are printed.
class BExcelExpEngPrintFirstPerRpt final : public InformationFrame {
 public:
  BExcelExpEngPrintFirstPerRpt(BExcelExpEngCore* core, std::vector<WkSheetItem>& items);
  static const FrameTraits& Traits();
};

}  // namespace excelexp
