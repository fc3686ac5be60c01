#include "batch_console.h"

#include <iostream>
#include <numeric>

namespace quillory::cli {
namespace {

// A JSON document as an element of an array: each of its lines indented one level more, so
// that the array reads as if dumped whole.
std::string as_element(const std::string& document) {
  std::string element = "  ";
  for (std::size_t i = 0; i < document.size(); ++i) {
    const bool last = i + 1 == document.size();
    if (document[i] == '\n' && last) break;
    element += document[i];
    if (document[i] == '\n') element += "  ";
  }
  return element;
}

// A failure message that names the source: the message's own words when they do, else the
// source's path in front of them.
std::string naming(const std::string& source, const std::string& message) {
  if (message.find(source) != std::string::npos) return message;
  const std::string prefix = "quillory: ";
  const bool prefixed = message.rfind(prefix, 0) == 0;
  return prefix + source + ": " + (prefixed ? message.substr(prefix.size()) : message);
}

}  // namespace

BatchConsole::BatchConsole(std::vector<std::string> sources, std::string done_as, bool json_array,
                           bool shown)
    : sources_(std::move(sources)),
      done_as_(std::move(done_as)),
      json_array_(json_array),
      shown_(shown),
      waiting_(sources_.size()),
      clips_done_(sources_.size()),
      clips_total_(sources_.size()),
      line_(std::cerr) {}

void BatchConsole::progress(std::size_t index, std::size_t done, std::size_t total) {
  if (!shown_) return;  // each clip of every thread comes here: no lock when nothing is drawn
  const std::lock_guard lock(mutex_);
  clips_done_[index] = done;
  clips_total_[index] = total;
  draw();
}

void BatchConsole::finished(std::size_t index, FinishedSource result) {
  const std::lock_guard lock(mutex_);
  if (!result.outcome.failure.empty()) clips_done_[index] = clips_total_[index] = 0;
  waiting_[index] = std::move(result);
  ++finished_;
  print_ready();
  draw();
}

void BatchConsole::print_ready() {
  for (; printed_ < waiting_.size() && waiting_[printed_]; ++printed_) {
    line_.wipe();
    print(printed_, *waiting_[printed_]);
    waiting_[printed_].reset();  // its lines are out: free them
  }
}

void BatchConsole::print(std::size_t index, const FinishedSource& result) {
  if (json_array_) {
    std::cout << (index == 0 ? "[\n" : ",\n") << as_element(result.out);
  } else {
    std::cout << result.out;
  }
  std::cout.flush();
  std::cerr << result.err;
  if (!result.outcome.failure.empty()) {
    std::cerr << naming(sources_[index], result.outcome.failure) << "\n";
    failed_.push_back(sources_[index]);
  }
  std::cerr.flush();
}

void BatchConsole::draw() {
  if (!shown_ || !line_.due()) return;
  line_.draw(std::to_string(finished_) + "/" + std::to_string(sources_.size()) + " exports, " +
             std::to_string(std::accumulate(clips_done_.begin(), clips_done_.end(), std::size_t{0})) +
             "/" +
             std::to_string(std::accumulate(clips_total_.begin(), clips_total_.end(), std::size_t{0})) +
             " clips");
}

ExitCode BatchConsole::close() {
  const std::lock_guard lock(mutex_);
  print_ready();
  line_.wipe();
  if (json_array_) std::cout << "\n]\n" << std::flush;
  std::cerr << "quillory: " << sources_.size() - failed_.size() << " of " << sources_.size()
            << " exports " << done_as_;
  for (std::size_t i = 0; i < failed_.size(); ++i) std::cerr << (i == 0 ? "; failed: " : ", ") << failed_[i];
  std::cerr << "\n";
  return failed_.empty() ? ExitCode::Success : ExitCode::Failed;
}

}  // namespace quillory::cli
