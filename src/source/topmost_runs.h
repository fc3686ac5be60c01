#pragma once
// Pictures stacked over time, as the tracks of an edit or the lanes of a storyline stack them:
// at each frame the one picture seen is the topmost of those under way there.

#include <cstddef>
#include <functional>
#include <vector>

namespace quillory {

struct StackedPicture {
  long long first = 0;  // its first frame
  long long end = 0;    // the frame after its last
  long long height = 0;   // its track or lane: the higher is seen
  std::size_t order = 0;  // of two at one height, the later is seen
};

// Calls `run(index, first, end)` for each longest run of frames over which picture `index` is
// the one seen, in time order. A picture that covers no frame is never seen. Sorts the
// pictures' bounds once: n log n in their number, whatever the length of the edit.
void topmost_runs(const std::vector<StackedPicture>& pictures,
                  const std::function<void(std::size_t, long long, long long)>& run);

}  // namespace quillory
