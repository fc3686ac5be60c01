#pragma once
// The media file catalogue indexed by file id: records found as a search from the start would
// find them, the first record of an id winning.

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "source/media_file_record.h"

namespace quillory {

class Catalogue {
 public:
  explicit Catalogue(std::vector<MediaFileRecord> records) : records_(std::move(records)) {
    for (std::size_t i = 0; i < records_.size(); ++i) {
      if (records_[i].id) {
        by_id_.emplace(*records_[i].id, i);
      } else if (!first_without_id_) {
        first_without_id_ = i;
      }
    }
  }

  const MediaFileRecord* find(const std::optional<std::string>& id) const {
    if (!id) return first_without_id_ ? &records_[*first_without_id_] : nullptr;
    const auto found = by_id_.find(*id);
    return found == by_id_.end() ? nullptr : &records_[found->second];
  }

 private:
  std::vector<MediaFileRecord> records_;
  std::unordered_map<std::string, std::size_t> by_id_;
  std::optional<std::size_t> first_without_id_;
};

}  // namespace quillory
