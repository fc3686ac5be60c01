// Opening an export and creating its titles must stay linear in the size of the document:
// the time per clip should not grow from a thousand clips to a hundred thousand.
//
//   build/tests/quillory_benchmark [--benchmark_filter=...]

#include <benchmark/benchmark.h>

#include "source/get_info_from_clips.h"
#include "test_support.h"
#include "titles/create_fcp_xml.h"
#include "titles/sequence_templates.h"

namespace quillory {
namespace {

// One master clip per media file, each file defined in full inside its clip, as a bin export
// of dailies gives them.
std::string dailies(int clips) {
  std::string body;
  body.reserve(static_cast<std::size_t>(clips) * 1200);
  for (int i = 0; i < clips; ++i) {
    const std::string n = std::to_string(i);
    const std::string file = test::file_definition(
        "file-" + n, "A" + n + ".mov", "A" + std::to_string(i % 100), "01:00:00:00",
        test::metadata("com.apple.quicktime.creationdate", "2010-03-13T14:05:09-08:00"));
    body += test::media_clip("C" + n, "file-" + n, 100 + i % 50, file, "FALSE", 25,
                             "<track><clipitem><start>-1</start><end>-1</end></clipitem></track>");
  }
  return test::xmeml(body);
}

void BM_OpenAndCreate(benchmark::State& state) {
  const int clips = static_cast<int>(state.range(0));
  test::TempDir dir;
  const std::string source = dir.file("dailies.xml");
  test::write_file(source, dailies(clips));
  TitleSettings settings;
  settings.timecode_reader = true;
  NullSink out;
  for (auto _ : state) {
    const OpenedSource opened = get_info_from_clips(source, built_in_template(), out);
    create_fcp_xml(opened.templates, opened.clips, settings, dir.file("Quillory.xml"), out);
  }
  state.SetItemsProcessed(state.iterations() * clips);
}
BENCHMARK(BM_OpenAndCreate)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quillory

BENCHMARK_MAIN();
