// Reporting of the tool's own modules: findings, failures and error buffers.
//
// What is reported is a row of the table of findings, what it is about, and the arguments of its
// text. Nothing else prints, logs and raises flags.
#ifndef DEPLOY_REPORT_H
#define DEPLOY_REPORT_H

#include <string>
#include <string_view>
#include <vector>

#include "dd/call.h"
#include "deploy/findings.h"

namespace deploy {

enum class definition_side { INTERFACE, IMPLEMENTATION };

// The entries that an entry stands in, the innermost first.
struct entry_path {
  const char* name;
  const entry_path* around = nullptr;
};

// What a finding is about; null where it is about none. All is borrowed.
struct subject {
  const char* class_name = nullptr;
  const char* related_class = nullptr;
  const char* field = nullptr;         // a field definition, or a field entry of the class
  const entry_path* around = nullptr;  // the entry
  definition_side side = definition_side::INTERFACE;  // of the class
  const char* table = nullptr;
  const char* column = nullptr;
  const char* attribute = nullptr;  // its keyword
};

// The entries of a node: what a pass over them hands down instead of a subject for each.
struct entry_scope {
  const char* class_name;
  const entry_path* around = nullptr;

  subject of(const char* field, definition_side side = definition_side::INTERFACE) const {
    return {.class_name = class_name, .field = field, .around = around, .side = side};
  }
};

// What else a text says.
struct finding_arguments {
  const tav_ebuf* ebuf = nullptr;  // of the call that failed; logged too
  const char* file = nullptr;
  int line = 0;
  const char* message = nullptr;
  const char* word = nullptr;
};

// Prints and logs what the row says, and raises its flags; gives -1, for a place that ends with it.
//   return report(HERE, "class-not-found", {.class_name = name});
int report(dd_site site, finding found, const subject& about = {},
           const finding_arguments& arguments = {});

// A failed call, without a subject.
int call_failed(dd_site site, const tav_ebuf& ebuf);
int call_failed(dd_site site, const tav_ebuf& ebuf, finding failure);

// What a sink receives: valid during the call.
struct finding_record {
  const finding_row& row;
  const subject& about;
  const finding_arguments& arguments;
  dd_site site;
  const char* sentence;  // the printed text without the newlines around it; "" for none
};
using finding_sink = void (*)(void* context, const finding_record& record);

// From now on the sink receives each record that is reported, after it was told; null ends that.
// Only with a sink is a record made.
void set_sink(finding_sink sink, void* context);
bool has_sink();

// The names of the entries down to the subject's, itself included, borrowed from the subject; none
// without a field, or where they would be more than `most`.
std::vector<std::string_view> path_of(const subject& about, size_t most);

}  // namespace deploy

// Shows an error buffer and where to look further.
void tav_deploy_display_ebuf(const tav_ebuf* ebuf);

#endif
