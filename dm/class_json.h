// Class definitions as JSON text, the form in which stores keep them.
#ifndef DM_CLASS_JSON_H
#define DM_CLASS_JSON_H

#include <memory>
#include <string>
#include <string_view>

#include "dm/class_def.h"
#include "dm/problem.h"

namespace dm {

// Writes definitions, one at a time.
class class_writer {
 public:
  class_writer();
  ~class_writer();
  // The definition as compact JSON, borrowed until the next call. A NUL byte follows it.
  std::string_view write(const class_def& definition);

 private:
  std::unique_ptr<struct json_text> json_;
};

// Reads definitions into lists.
class class_reader {
 public:
  class_reader();
  ~class_reader();
  // Adds the class that the text defines as an element of TAV_FLD_OBJ_DESC, and gives it,
  // borrowed. Null where the text is no class definition or the list cannot be built: `fault` then
  // says why, as the end of a sentence ("is no JSON text"), and the list may hold a part of the
  // class. Throws std::bad_alloc.
  tav_flist_t* read(const char* text, tav_flist_t* list, int32_t elem_id, const char*& fault);

 private:
  struct buffers;
  std::unique_ptr<buffers> buffers_;
};

}  // namespace dm

#endif
