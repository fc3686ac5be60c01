#pragma once
// What --list and --preview print (on standard error: standard output carries only the
// system's own lines).

#include <ostream>

#include "form/controller_fields.h"
#include "form/controls.h"

namespace quillory::cli {

void print_listing(const ControllerFields& fields, std::ostream& err);

// Every clip's title text, carriage returns shown as line breaks, titles apart by a blank line.
void print_preview(const ControllerFields& fields, const Form& form, std::ostream& err);

}  // namespace quillory::cli
