#include "form/batch.h"

#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <exception>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>

#include "form/controller.h"
#include "source/incomplete_input.h"

namespace quillory {

BatchPlan plan_batch(const std::vector<std::string>& sources, const std::string& folder) {
  BatchPlan plan;
  const std::string prefix = folder.empty() || folder.back() == '/' ? folder : folder + "/";
  std::map<std::string, const std::string*> first_with;
  for (const auto& source : sources) {
    const std::string name = sequence_name_for(source);
    const auto [met, added] = first_with.emplace(name, &source);
    if (!added && plan.clash.empty()) {
      plan.clash = "quillory: " + *met->second + " and " + source + " would both write " +
                   prefix + name + ".xml; rename one, or give them in separate runs";
    }
    plan.entries.push_back({source, prefix + name + ".xml"});
  }
  return plan;
}

void make_output_folder(const std::string& folder) {
  for (std::size_t end = folder.find('/', 1);; end = folder.find('/', end + 1)) {
    const std::string level = folder.substr(0, end);
    struct stat info {};
    if (!level.empty() && ::stat(level.c_str(), &info) != 0 && ::mkdir(level.c_str(), 0777) != 0 &&
        errno != EEXIST) {
      throw std::system_error(errno, std::generic_category(),
                              "quillory: cannot create the output folder " + level);
    }
    if (end == std::string::npos) break;
  }
}

unsigned default_jobs() { return std::max(1U, std::thread::hardware_concurrency()); }

void run_in_parallel(std::size_t count, unsigned jobs,
                     const std::function<void(std::size_t)>& work) {
  std::atomic<std::size_t> next{0};
  std::exception_ptr failure;
  std::mutex failure_mutex;
  const auto take_work = [&] {
    for (std::size_t index; (index = next.fetch_add(1)) < count;) {
      try {
        work(index);
      } catch (...) {
        const std::lock_guard lock(failure_mutex);
        if (!failure) failure = std::current_exception();
      }
    }
  };
  {
    std::vector<std::jthread> helpers;
    const std::size_t threads = std::min<std::size_t>(std::max(1U, jobs), count);
    for (std::size_t i = 1; i < threads; ++i) helpers.emplace_back(take_work);
    take_work();
  }
  if (failure) std::rethrow_exception(failure);
}

BatchResult create_titles_for(const BatchEntry& entry, Form form, const OutputPaths& paths,
                              LineSink& out) {
  BatchResult result;
  try {
    Controller controller(paths);
    form.nameField = sequence_name_for(entry.source);
    const OpenOutcome opened = controller.get_info_from_clips(entry.source, form, out);
    if (opened.status == OpenStatus::NotXmeml) {
      result.message = "quillory: " + not_xmeml_message(entry.source, opened);
      result.incomplete = opened.incomplete;
      return result;
    }
    if (opened.status != OpenStatus::Opened) {
      result.message = opened.error;
      result.incomplete = opened.incomplete;
      return result;
    }
    result.clips = controller.source().clips.size();
    result.report = controller.create_fcp_xml(form, out, entry.output);
    result.written = true;
  } catch (const IncompleteInput& error) {
    result.message = error.what();
    result.incomplete = true;
  } catch (const std::exception& error) {
    result.message = failure_message(error, entry.source);
  }
  return result;
}

}  // namespace quillory
