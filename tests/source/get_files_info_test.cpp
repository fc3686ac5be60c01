#include <gtest/gtest.h>

#include "source/media_file_record.h"
#include "xml/xml_nodes.h"
#include "test_support.h"

namespace quillory {
namespace {

using test::file_definition;
using test::metadata;

std::vector<MediaFileRecord> catalogue(const std::string& files) {
  const xml::Document doc = test::parse(test::xmeml(files));
  NullSink out;
  return get_files_info(xml::all_descendants(xml::as_node(doc.get()), "file"), out);
}

TEST(GetFilesInfo, RecordingTimeComesFromTheLastQualifyingEntryWithoutItsZone) {
  const auto creation = metadata("com.apple.quicktime.creationdate", "2010-03-13T14:05:09-08:00");
  const auto update = metadata("com.sony.lastupdate", "2011-01-27 15:22:20 +0100");
  const auto red_date = metadata("com.red.ltplugin.localDate", "20100313");
  const auto red_time = metadata("com.red.ltplugin.localTime", "140509");
  const std::pair<std::string, std::string> entries[] = {
      {creation + update, "2011-01-27 15:22:20 UTC"},
      {update + creation, "2010-03-13 14:05:09 UTC"},
      {metadata("creationdate", "2012-02-22T15:50:56+0100"), "2012-02-22 15:50:56 UTC"},
      {metadata("x.creationtime", "2011-10-25 13:46:34 +0000"), "2011-10-25 13:46:34 UTC"},
      {metadata("x.creationdate.", "2010-03-13"), "2010-03-13 00:00:00 UTC"},
      {metadata("x.CreationDate", "2010-03-13") + metadata("x.duration", "not a date"), "none"},
      // A RED camera's local date takes its time of day from the same file's local time.
      {red_date + red_time, "2010-03-13 14:05:09 UTC"},
      {metadata("com.red.ltplugin.localTime", "1405") + red_date, "2010-03-13 14:05:00 UTC"},
      {metadata("creationdate", "2009-01-01T10:00:00Z") + red_date, "2009-01-01 10:00:00 UTC"},
  };
  for (const auto& [metadata_entries, time] : entries) {
    const auto found = catalogue(file_definition("f", "a.mov", "", "", metadata_entries)).at(0).time;
    EXPECT_EQ(found ? to_string(*found) : "none", time) << metadata_entries;
  }
  const auto apart = catalogue(file_definition("a", "a.r3d", "", "", red_date) +
                               file_definition("b", "b.r3d", "", "", red_time));
  EXPECT_FALSE(apart[0].time) << "a local time of another file is not used";
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
