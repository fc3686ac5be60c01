// The manual page and --help name the same options: an option added to one is added to the
// other. The page writes a run of numbered options as "--label1 ... --label5".

#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "test_support.h"

namespace quillory {
namespace {

// Every option named in `text`, numbered ones as their first and last ("--line1", "--line5").
std::set<std::string> options_in(const std::string& text) {
  std::set<std::string> options;
  const std::regex option("--[a-z][a-z0-9-]*[a-z0-9]");
  for (std::sregex_iterator it(text.begin(), text.end(), option), end; it != end; ++it) {
    std::string name = it->str();
    if (std::isdigit(static_cast<unsigned char>(name.back())) && name.back() != '1') name.back() = '5';
    options.insert(name);
  }
  return options;
}

TEST(ManualPage, NamesEveryOptionOfHelpAndNoOther) {
  const auto help = test::run_command({QUILLORY_BINARY, "--help"});
  ASSERT_EQ(help.exit_code, 0);
  std::string page = test::read_file(QUILLORY_MANUAL);
  for (std::size_t at; (at = page.find("\\-")) != std::string::npos;) page.replace(at, 2, "-");
  EXPECT_EQ(options_in(page), options_in(help.out));
}

}  // namespace
}  // namespace quillory
