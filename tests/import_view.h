#pragma once
// Reads a written title sequence the way importers that resolve ids do (the FCP 7 XML adapter
// of OpenTimelineIO, Premiere Pro, DaVinci Resolve): every element with an id stands for the
// first element of the document that carries that id, whatever it holds itself.

#include <string>
#include <vector>

namespace quillory::test {

struct ImportView {
  // One line per item of the sequence's tracks, in track order, e.g.
  // "V2 generatoritem Quillory Card 0-96 96 rate 24 file  text A001C003\r...".
  std::vector<std::string> as_written;  // each item as it stands, its file as defined anywhere
  // Each item, and its file, as the first of its id; an item that importers cannot read ends
  // with what it lacks, e.g. " unreadable, no <in> <out>".
  std::vector<std::string> as_resolved;
  std::string sequence_rate;  // the sequence's timebase
};

ImportView read_as_importers_do(const std::string& xml_text);

}  // namespace quillory::test
