#include "platform/host/Format.h"

namespace excelexp {
namespace {

TEST(Format, DatesByPattern) {
  const DateTime moment = ParseDateTime("2024-03-05 07:08:09.045");
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"dd/mm/yyyy", "05/03/2024"},
      {"d/m/yy", "5/3/24"},
      {"ddmmyyyy", "05032024"},
      {"mmm", "Mar"},
      {"mmmm yyyy", "March 2024"},
      {"hh:nn:ss", "07:08:09"},
      {"hh:mm:ss", "07:08:09"},
      {"h:n:s.zzz", "7:8:9.045"},
      {"yyyy-mm-dd hh:nn", "2024-03-05 07:08"},
      {"'d' dd", "d 05"},
      {"mm hh mm", "03 07 08"},
      {"DD/MM/YYYY", "05/03/2024"},
      {"'open", "open"},
  };
  for (const auto& [pattern, text] : rows) EXPECT_EQ(FormatDateTime(pattern, moment), text) << pattern;
}

TEST(Format, NumbersBySections) {
  struct Row {
    std::string pattern;
    double value;
    std::string text;
  };
  const std::vector<Row> rows = {
      {"#0.00;-#0.00", 1234.5, "1234.50"},
      {"#0.00;-#0.00", -1234.5, "-1234.50"},
      {"#0.00;-#0.00", 0.0, "0.00"},
      {"#0.00;-#0.00", -0.001, "0.00"},
      {"#0.00;-#0.00", 2.675, "2.68"},
      {"#0.00;-#0.00", 1.005, "1.01"},
      {"#0.00;-#0.00", -0.005, "-0.01"},
      {"#0.00;-#0.00", 999.995, "1000.00"},
      {"#0.00;-#0.00", 1e15, "1000000000000000.00"},
      {"#0.00;-#0.00", 0.00499999, "0.00"},
      {"#,0.00;-#,0.00", 1234567.891, "1,234,567.89"},
      {"#,0;-#,0", 999.5, "1,000"},
      {"0.0#", 1.5, "1.5"},
      {"0.0#", 1.25, "1.25"},
      {"000", 7, "007"},
      {"0;(0);nil", -3, "(3)"},
      {"0;(0);nil", 0.2, "nil"},
      {"0", -3, "-3"},
      {"#", 0.0, ""},
  };
  for (const Row& row : rows)
    EXPECT_EQ(FormatFloat(row.pattern, row.value), row.text) << row.pattern << row.value;
}

TEST(Format, FloatTextReadsBackAndHasNoLocale) {
  const std::vector<std::pair<double, std::string>> rows = {
      {0.1, "0.1"},    {-0.0, "0"},     {1234.5, "1234.5"},   {100000.0, "100000"},
      {1e20, "1e+20"}, {1e-7, "1e-07"}, {0.00012, "0.00012"}, {1.0 / 3, "0.3333333333333333"}};
  for (const auto& [value, text] : rows) EXPECT_EQ(FloatToText(value), text);
}

}  // namespace
}  // namespace excelexp
