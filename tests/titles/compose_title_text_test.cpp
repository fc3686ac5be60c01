#include "titles/compose_title_text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <ctime>

#include "test_support.h"

namespace quillory {
namespace {

ClipRecord clip_at(const DateTime& time) {
  ClipRecord clip;
  clip.time = time;
  return clip;
}

LineSettings lines(std::vector<LineSetting> given) {
  LineSettings settings;
  for (std::size_t i = 0; i < given.size(); ++i) settings[i] = given[i];
  return settings;
}

// What each choice shows, and the lines that show nothing, are previewed end to end
// (tests/cases/preview_*); here, what the date styles make of a time anywhere.
TEST(ComposeTitleText, DateStylesAreZeroPaddedWhateverLocaleAndZone) {
  test::EnvGuard tokyo("TZ", "Asia/Tokyo");
  tzset();
  std::setlocale(LC_ALL, "de_DE.UTF-8");  // ignored when not installed
  const auto all_styles = [](const DateTime& time) {
    return compose_title_text(clip_at(time), lines({{"", "Date (March 13, 2010), Time"},
                                                    {"", "Date (13 March 2010), Time"},
                                                    {"", "Date (3/13/2010), Time"},
                                                    {"", "Date (13/3/2010), Time"}}));
  };
  EXPECT_EQ(all_styles({2010, 3, 13, 14, 5, 0}),
            "March 13, 2010, 02:05 PM\r13 March 2010, 02:05 PM\r03/13/2010, 02:05 PM\r"
            "13/03/2010, 02:05 PM\r");
  {
    test::EnvGuard los_angeles("TZ", "America/Los_Angeles");
    tzset();
    EXPECT_EQ(all_styles({2010, 3, 3, 0, 7, 0}),
              "March 03, 2010, 12:07 AM\r03 March 2010, 12:07 AM\r03/03/2010, 12:07 AM\r"
              "03/03/2010, 12:07 AM\r");
  }
  std::setlocale(LC_ALL, "C");
  tzset();
  EXPECT_EQ(compose_title_text(clip_at(DateTime{2010, 7, 5, 9, 3, 0}),
                               lines({{"", "Date (3/13/2010), Time"}})),
            "07/05/2010, 09:03 AM\r");
  EXPECT_EQ(format_date_time({2010, 12, 31, 12, 0, 0}, "%B %I %p"), "December 12 PM");
}

}  // namespace
}  // namespace quillory
