#include <stdexcept>
#include "platform/host/DateTime.h"

namespace excelexp {
namespace {

TEST(DateTime, ReadsStoredDates) {
  EXPECT_EQ(ParseDateTime("1900-01-01").days, 2.0);
  EXPECT_EQ(ParseDateTime(" 2024-02-29 ").days, 45351.0);
  EXPECT_EQ(ParseDateTime("2024-03-05 12:00:00").days, 45356.5);
  EXPECT_EQ(ParseDateTime("2024-03-05T06:00").days, 45356.25);
  EXPECT_EQ(ParseDateTime("18:00:00").days, 0.75);
  const CivilTime civil = DecodeDateTime(ParseDateTime("2024-03-05 23:59:59.9991"));
  EXPECT_EQ(civil.day, 5);
  EXPECT_EQ(civil.millisecond, 999);
}

TEST(DateTime, RefusesWhatIsNoDate) {
  for (const char* text : {"", "2023-02-29", "2024-13-01", "2024-1-1", "05/03/2024", "2024-03-05 24:00:00",
                           "2024-03-05 12:00:00.", "2024-03-05x", "-024-01-01",
                           "2024-03-05 "
                           "1",
                           "0000-01-01"}) {
    EXPECT_THROW(ParseDateTime(text), std::invalid_argument) << text;
  }
}

TEST(DateTime, BeforeDayZeroTimeStillRunsForward) {
  const DateTime moment = EncodeDateTime({1899, 12, 29, 6, 0, 0, 0});
  EXPECT_EQ(moment.days, -1.25);
  EXPECT_EQ(DecodeDateTime(moment).hour, 6);
  EXPECT_EQ(DecodeDateTime(moment).day, 29);
}

}  // namespace
}  // namespace excelexp
