#include "form/memory_form.h"

#include <gtest/gtest.h>

#include "titles/compose_title_text.h"

namespace quillory {
namespace {

TEST(MemoryForm, FormRefersToTheHeldControlsAndLinesReadInOrder) {
  MemoryForm memory;
  Form form = memory.form();
  for (int i = 0; i < 5; ++i) {
    memory.line_labels[static_cast<std::size_t>(i)].value = "label " + std::to_string(i + 1);
  }
  memory.line_popups[4].selected = "Scene";
  EXPECT_FALSE(form.templatePopup.titleOfSelectedItem());
  EXPECT_EQ(form.tcrCheckbox.state(), 0);
  const LineSettings lines = read_line_settings(form);
  EXPECT_EQ(lines[0].label, "label 1");
  EXPECT_EQ(lines[4].label, "label 5");
  EXPECT_FALSE(lines[0].choice);
  EXPECT_EQ(lines[4].choice, "Scene");
  form.xmlFileName.setStringValue("Edit 1.xml");
  EXPECT_EQ(memory.xmlFileName.value, "Edit 1.xml");
}

}  // namespace
}  // namespace quillory
