#pragma once
// What the fuzz targets run on each input, also run by the test suite on every input kept in
// fuzz/regressions/. Each returns normally for any input: an input the core refuses ends in
// the exception it throws, which is caught here; only a crash, a leak, a hang, a sanitizer's
// report or a written document that a strict parse does not take without a word is a finding.

#include <cstddef>
#include <cstdint>

namespace quillory::fuzz {

// Loading with repair, on the bytes as a source document.
void load(const std::uint8_t* data, std::size_t size);

// Opening (cataloguing the files, collecting clips and templates), strictly and tolerantly.
void open(const std::uint8_t* data, std::size_t size);

// Opening, then creating titles into a temporary folder; the first eight bytes choose the
// settings (tolerant, import-safe, Timecode Reader, template, rate, the five lines). What is
// written is parsed again without recovery, and aborts on any diagnostic.
void create(const std::uint8_t* data, std::size_t size);

}  // namespace quillory::fuzz
