// Opening an export and creating its titles must stay linear in the size of the document:
// the time per clip should not grow from a thousand clips to a hundred thousand. The exports
// are the realistic synthetic ones that the shared generator writes.
//
//   build/tests/quillory_benchmark [--benchmark_filter=...]

#include <benchmark/benchmark.h>

#include "source/get_info_from_clips.h"
#include "test_support.h"
#include "titles/create_fcp_xml.h"
#include "titles/sequence_templates.h"

namespace quillory {
namespace {

void BM_OpenAndCreate(benchmark::State& state) {
  test::TempDir dir;
  const std::string source = dir.file("dailies.xml");
  const auto made = test::run_command({"/usr/bin/python3", QUILLORY_GEN_XMEML,
                                       std::to_string(state.range(0)), source});
  if (made.exit_code != 0) {
    state.SkipWithError(("cannot generate the export: " + made.err).c_str());
    return;
  }
  TitleSettings settings;
  settings.timecode_reader = true;
  NullSink out;
  for (auto _ : state) {
    const OpenedSource opened = get_info_from_clips(source, built_in_template(), false, out);
    create_fcp_xml(opened.templates, opened.clips, settings, dir.file("Quillory.xml"), out);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_OpenAndCreate)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quillory

BENCHMARK_MAIN();
