#pragma once

namespace quillory::cli {

// The exit status of the quillory command; scripts depend on these values.
enum class ExitCode : int {
  Success = 0,  // the document was written (or listed / previewed)
  Failed = 1,   // the source is not an xmeml document, or an operation ended with an error
  Usage = 2,    // the command line is wrong
};

}  // namespace quillory::cli
