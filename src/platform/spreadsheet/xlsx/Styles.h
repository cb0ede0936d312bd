#pragma once

namespace excelexp {
class FormatCensus;
class Workbook;
}  // namespace excelexp

namespace excelexp::xlsx {

class Package;

/// Adds the part that defines the cell formats; a cell names one by its index in the census.
void WriteStyles(Package& package, const Workbook& workbook, const FormatCensus& formats);

}  // namespace excelexp::xlsx
