#include <gtest/gtest.h>

#include "source/media_file_record.h"
#include "xml/xpath_query.h"
#include "test_support.h"

namespace quillory {
namespace {

using test::file_definition;
using test::metadata;

std::vector<MediaFileRecord> catalogue(const std::string& files) {
  const xml::Document doc = test::parse(test::xmeml(files));
  NullSink out;
  return get_files_info(xml::XPathQuery("//file").all(xml::as_node(doc.get())), out);
}

std::optional<DateTime> time_of(const std::string& metadata_entries) {
  return catalogue(file_definition("f", "a.mov", "", "", metadata_entries)).at(0).time;
}

TEST(GetFilesInfo, LastQualifyingEntryDecidesWithoutApplyingTheZone) {
  const auto creation = metadata("com.apple.quicktime.creationdate", "2010-03-13T14:05:09-08:00");
  const auto update = metadata("com.sony.lastupdate", "2011-01-27 15:22:20 +0100");
  EXPECT_EQ(time_of(creation + update), (DateTime{2011, 1, 27, 15, 22, 20}));
  EXPECT_EQ(time_of(update + creation), (DateTime{2010, 3, 13, 14, 5, 9}));
  EXPECT_EQ(time_of(metadata("creationdate", "2012-02-22T15:50:56+0100")),
            (DateTime{2012, 2, 22, 15, 50, 56}));
  EXPECT_EQ(time_of(metadata("x.creationtime", "2011-10-25 13:46:34 +0000")),
            (DateTime{2011, 10, 25, 13, 46, 34}));
  EXPECT_EQ(time_of(metadata("x.creationdate.", "2010-03-13")), (DateTime{2010, 3, 13, 0, 0, 0}));
  EXPECT_FALSE(time_of(metadata("x.CreationDate", "2010-03-13")));
  EXPECT_FALSE(time_of(metadata("x.duration", "not a date")));
}

TEST(GetFilesInfo, RedLocalDatePairsWithTheLocalTimeOfTheSameFile) {
  const auto date = metadata("com.red.ltplugin.localDate", "20100313");
  EXPECT_EQ(time_of(date + metadata("com.red.ltplugin.localTime", "140509")),
            (DateTime{2010, 3, 13, 14, 5, 9}));
  EXPECT_EQ(time_of(metadata("com.red.ltplugin.localTime", "1405") + date),
            (DateTime{2010, 3, 13, 14, 5, 0}));
  const auto result = catalogue(
      file_definition("a", "a.r3d", "", "", date) +
      file_definition("b", "b.r3d", "", "", metadata("com.red.ltplugin.localTime", "140509")));
  EXPECT_FALSE(result[0].time);
  const auto earlier = metadata("creationdate", "2009-01-01T10:00:00Z");
  EXPECT_EQ(time_of(earlier + date), (DateTime{2009, 1, 1, 10, 0, 0}));
}

TEST(GetFilesInfo, BrokenDefinitionsFailNamingTheElementAndLine) {
  const std::pair<std::string, std::string> cases[] = {
      {"<file id=\"x\"><pathurl>p</pathurl></file>", "has no <name> (<file> at line 4 of test document)"},
      {file_definition("f", "a", "", "", "<metadata><key>k</key></metadata>"), "no <value>"},
      {file_definition("f", "a", "", "", metadata("creationdate", "13/03/2010")),
       "\"13/03/2010\", which is not a date"},
      {file_definition("f", "a", "", "", metadata("x.localDate", "20100313") +
                                             metadata("com.red.ltplugin.localTime", "990000")),
       "not a valid time of day"},
  };
  for (const auto& [files, message] : cases) {
    try {
      catalogue(files);
      ADD_FAILURE() << "no error for " << files;
    } catch (const std::runtime_error& error) {
      EXPECT_NE(std::string(error.what()).find(message), std::string::npos) << error.what();
    }
  }
}

TEST(DateTime, ReadsTheFormsCamerasWriteAndRejectsTheRest) {
  const DateTime expected{2010, 3, 13, 14, 5, 9};
  for (const char* text : {"2010-03-13T14:05:09", "2010-03-13 14:05:09", "2010-03-13T14:05:09Z",
                           "2010-03-13T14:05:09+01:00", "2010-03-13T14:05:09+0100",
                           "2010-03-13T14:05:09-08", "2010-03-13 14:05:09 +0100",
                           "2010-03-13T14:05:09.750Z", "20100313T140509", " 2010-03-13T14:05:09 "}) {
    EXPECT_EQ(parse_date_time(text), expected) << text;
  }
  EXPECT_EQ(parse_date_time("20100313"), (DateTime{2010, 3, 13, 0, 0, 0}));
  EXPECT_EQ(parse_date_time("2010-03-13T14:05"), (DateTime{2010, 3, 13, 14, 5, 0}));
  EXPECT_EQ(parse_date_time("2012-02-29"), (DateTime{2012, 2, 29, 0, 0, 0}));
  for (const char* text : {"", "2010-13-01", "2011-02-29", "2010-03-13T25:00:00", "13/03/2010",
                           "2010-03-13T14:05:09 PST", "2010-03-1314:05", "March 13, 2010"}) {
    EXPECT_FALSE(parse_date_time(text)) << text;
  }
}

}  // namespace
}  // namespace quillory
