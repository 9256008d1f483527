// What status says of a dictionary, in three forms.
#ifndef DICT_STATUS_STATUS_H
#define DICT_STATUS_STATUS_H

#include <cstdint>
#include <string>
#include <vector>

#include "dm/journal/record.h"

namespace dict {

struct database_status {
  std::string number;  // N.N.N.N
  int64_t fields = 0, classes = 0;
};

struct dictionary_status {
  std::string name;
  int schema_version;
  bool is_writeable, accepts_fields, accepts_classes;
  int64_t bytes = 0;
  std::vector<database_status> databases{};
  std::string identity{};         // "" where the dictionary has no journal
  dm::journal_head head{};        // the journal's last record
  int64_t deployment = 0;         // number of the last deployment; 0: there was none
  std::string deployment_time{};  // when it ended, as a record has it
};

// To standard output.
void print_text(const dictionary_status& found);
void print_json(const dictionary_status& found);
// In the text format of Prometheus, version 0.0.4.
void print_metrics(const dictionary_status& found);

}  // namespace dict

#endif
