// Class definitions as JSON text, straight from and into lists.
#ifndef DM_CLASS_JSON_H
#define DM_CLASS_JSON_H

#include <memory>
#include <string>
#include <string_view>

#include "dm/class_def.h"
#include "dm/problem.h"

namespace dm {

// Writes definitions; the text of one is gone with the next.
class class_writer {
 public:
  class_writer();
  ~class_writer();
  // Compact JSON, NUL-terminated.
  std::string_view write(const class_def& definition);

 private:
  std::unique_ptr<struct json_text> json_;
};

// Reads definitions into lists.
class class_reader {
 public:
  class_reader();
  ~class_reader();
  // Adds the class that the text defines as an element of TAV_FLD_OBJ_DESC, and gives it
  // (borrowed). Null for a text that is none of ours, with what is wrong with it, or when the list
  // cannot be built; a part of the class may then be there.
  tav_flist_t* read(const char* text, tav_flist_t* list, int32_t elem_id, const char*& fault);

 private:
  struct buffers;
  std::unique_ptr<buffers> buffers_;
};

}  // namespace dm

#endif
