#include "titles/compose_title_text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <ctime>

#include "test_support.h"

namespace quillory {
namespace {

std::string in_every_style(const DateTime& time) {
  ClipRecord clip;
  clip.time = time;
  return compose_title_text(clip, {{{"", "Date (March 13, 2010), Time"},
                                    {"", "Date (13 March 2010), Time"},
                                    {"", "Date (3/13/2010), Time"},
                                    {"", "Date (13/3/2010), Time"}}});
}

// What each choice shows, and the lines that show nothing, are previewed end to end
// (tests/cases/preview_*); here, what the date styles make of a time anywhere.
TEST(ComposeTitleText, DateStylesAreZeroPaddedWhateverLocaleAndZone) {
  std::setlocale(LC_ALL, "de_DE.UTF-8");  // ignored when not installed
  for (const char* zone : {"Asia/Tokyo", "America/Los_Angeles"}) {
    const test::EnvGuard tz("TZ", zone);
    tzset();
    EXPECT_EQ(in_every_style({2010, 3, 13, 14, 5, 0}),
              "March 13, 2010, 02:05 PM\r13 March 2010, 02:05 PM\r03/13/2010, 02:05 PM\r"
              "13/03/2010, 02:05 PM\r");
    EXPECT_EQ(in_every_style({2010, 3, 3, 0, 7, 0}),
              "March 03, 2010, 12:07 AM\r03 March 2010, 12:07 AM\r03/03/2010, 12:07 AM\r"
              "03/03/2010, 12:07 AM\r");
  }
  std::setlocale(LC_ALL, "C");
  tzset();
  EXPECT_EQ(in_every_style({2010, 7, 5, 9, 3, 0}),
            "July 05, 2010, 09:03 AM\r05 July 2010, 09:03 AM\r07/05/2010, 09:03 AM\r"
            "05/07/2010, 09:03 AM\r");
  EXPECT_EQ(format_date_time({2010, 12, 31, 12, 0, 0}, "%B %I %p"), "December 12 PM");
}

}  // namespace
}  // namespace quillory
