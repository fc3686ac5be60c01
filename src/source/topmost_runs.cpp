#include "source/topmost_runs.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace quillory {

void topmost_runs(const std::vector<StackedPicture>& pictures,
                  const std::function<void(std::size_t, long long, long long)>& run) {
  struct Bound {
    long long frame;
    bool starts;
    std::size_t picture;
  };
  std::vector<Bound> bounds;
  bounds.reserve(pictures.size() * 2);
  for (std::size_t i = 0; i < pictures.size(); ++i) {
    if (pictures[i].first >= pictures[i].end) continue;
    bounds.push_back({pictures[i].first, true, i});
    bounds.push_back({pictures[i].end, false, i});
  }
  std::ranges::sort(bounds, {}, &Bound::frame);
  const auto lower = [&](std::size_t a, std::size_t b) {
    return std::pair(pictures[a].height, pictures[a].order) <
           std::pair(pictures[b].height, pictures[b].order);
  };
  // The pictures under way, the one seen last.
  std::set<std::size_t, decltype(lower)> under_way(lower);
  std::optional<std::size_t> seen;
  long long since = 0;
  for (std::size_t i = 0; i < bounds.size();) {
    const long long frame = bounds[i].frame;
    for (; i < bounds.size() && bounds[i].frame == frame; ++i) {
      if (bounds[i].starts) {
        under_way.insert(bounds[i].picture);
      } else {
        under_way.erase(bounds[i].picture);
      }
    }
    const std::optional<std::size_t> top =
        under_way.empty() ? std::nullopt : std::optional(*under_way.rbegin());
    if (top == seen) continue;
    if (seen) run(*seen, since, frame);
    seen = top;
    since = frame;
  }
}

}  // namespace quillory
