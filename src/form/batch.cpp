#include "form/batch.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <filesystem>
#include <map>
#include <mutex>
#include <thread>

#include "source/incomplete_input.h"

namespace quillory {

namespace {

// FCPXML titles are written as FCPXML; a source is taken for one by its name, before it is read.
std::string output_extension(const std::string& source) {
  std::filesystem::path path(source);
  if (!path.has_filename()) path = path.parent_path();
  const std::string extension = path.extension().string();
  return extension == ".fcpxml" || extension == ".fcpxmld" ? ".fcpxml" : ".xml";
}

}  // namespace

BatchPlan plan_batch(const std::vector<std::string>& sources, const std::string& folder) {
  BatchPlan plan;
  const std::string prefix = folder.empty() || folder.back() == '/' ? folder : folder + "/";
  std::map<std::string, const std::string*> first_with;
  for (const auto& source : sources) {
    const std::string file = sequence_name_for(source) + output_extension(source);
    const auto [met, added] = first_with.emplace(file, &source);
    if (!added && plan.clash.empty()) {
      plan.clash = "quillory: " + *met->second + " and " + source + " would both write " +
                   prefix + file + "; rename one, or give them in separate runs";
    }
    plan.entries.push_back({source, prefix + file});
  }
  return plan;
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

namespace {

// The sequence or the template the form names and the open source lacks.
std::optional<BatchResult::Lacking> lacking(const Form& form, const OpenOutcome& opened,
                                            const Controller& controller) {
  if (opened.status == OpenStatus::NoSequence) {
    return BatchResult::Lacking{"sequence", *form.sourcePopup, opened.sequences};
  }
  if (!form.templatePopup) return std::nullopt;
  std::vector<std::string> names;
  for (const auto& title : controller.source().templates) names.push_back(title.name);
  if (std::find(names.begin(), names.end(), *form.templatePopup) != names.end()) return std::nullopt;
  return BatchResult::Lacking{"template", *form.templatePopup, std::move(names)};
}

}  // namespace

BatchResult run_on_source(const std::string& source, const Form& form, Controller& controller,
                          LineSink& out, const std::function<AssumptionReport()>& use) {
  BatchResult result;
  try {
    const OpenOutcome opened = controller.get_info_from_clips(source, form, out);
    if (opened.status == OpenStatus::NotXmeml) {
      result.message = "quillory: " + not_xmeml_message(source, opened);
      result.incomplete = opened.incomplete;
    } else if (opened.status == OpenStatus::Unreadable || opened.status == OpenStatus::Broken) {
      result.message = opened.error;
      result.incomplete = opened.incomplete;
    } else if ((result.lacking = lacking(form, opened, controller))) {
      result.message = "quillory: " + source + " has no " + result.lacking->kind + " \"" +
                       shown(result.lacking->named) + "\"";
    } else {
      result.report = use();
      result.written = true;
    }
  } catch (const IncompleteInput& error) {
    result.message = error.what();
    result.incomplete = true;
  } catch (const std::exception& error) {
    result.message = failure_message(error, source);
  }
  return result;
}

}  // namespace quillory
