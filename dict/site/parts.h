// The data of one database while it is being put together.
#ifndef DICT_SITE_PARTS_H
#define DICT_SITE_PARTS_H

#include "dict/site/script.h"
#include "dm/folded.h"
#include "dparse/outline.h"

namespace dict {

// Texts that are told by their number.
struct numbered_texts {
  std::vector<std::string> texts{};
  std::unordered_map<std::string, uint32_t> numbers{};

  uint32_t number_of(const std::string& text);
};

struct told_table {
  std::string name;
  size_t class_number;
};
struct told_column {
  std::string name;
  size_t class_number;
  int64_t table;  // -1: that of a class above
};

// A part of the details: a file tells of the classes and fields whose names have the same hash.
struct details_file {
  std::string classes{}, fields{};  // JSON values, divided by commas
};

// Where a field is used.
struct field_users {
  std::string paths{};  // JSON values
  size_t count = 0;
};

struct site_parts {
  explicit site_parts(site_source& told) : source(told) {}

  site_source& source;
  tav_ebuf ebuf{};
  dparse::class_outline outline{};
  numbered_texts types{}, keywords{};
  std::vector<told_table> tables{};
  std::vector<told_column> columns{};
  std::map<std::string, field_users> users{};  // by folded name of a field
  std::vector<size_t> used{};                  // how often each field is, in the fields' order
  std::vector<details_file> details{};
};

// Lays out as many files as there are things for; each is about 128 of them, 256 at most.
void lay_out(site_parts& parts);
// Where a class or field is told of.
details_file& details_of(site_parts& parts, dm::change_of what, std::string_view name);
void append_value(std::string& values, std::string_view json);

// The members that tell a thing's past, in the open object.
void put_past(const site_parts& parts, data_writer& out, dm::change_of what, std::string_view name);

// The reason of a list that could not be walked; gives false.
bool cannot_be_read(dm::problem& why);

// Adds the details; false with the reason.
bool add_classes(site_parts& parts, dm::problem& why);
bool add_fields(site_parts& parts, dm::problem& why);

// The names of all, to be found: the first thing that a page reads.
void put_index(site_parts& parts, data_writer& out);
// The deployments, the newest first; what those with changes have changed is in files of its own.
void put_deployments(const site_parts& parts, const std::string& name, data_writer& out,
                     std::vector<site_file>& files);

}  // namespace dict

#endif
