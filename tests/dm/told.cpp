#include "told.h"

#include <algorithm>

#include "dd/types.h"

opened::opened(const dm::settings& settings, bool writes, dm::open_options options)
    : store(dm::open_dictionary(settings, options, why)) {
  EXPECT_TRUE(store != nullptr && store->calls->begin(store.get(), writes, why)) << why.sentence;
}

std::string journal_told(const dm::settings& settings, int64_t number) {
  opened from(settings);
  std::string told;
  const auto changes = [&](int64_t, const dm::journal_change& change) {
    told += dm::join({" ", std::string(1, static_cast<char>(change.how)), ":", change.name});
    return true;
  };
  const auto records = [&](const dm::journal_record& record) {
    told += dm::join(
        {std::to_string(record.number), " ", std::to_string(record.deployment), " ", record.kind});
    EXPECT_TRUE(dm::walk_changes(*from.store, {record.number, record.number}, changes, from.why));
    told += '\n';
    return true;
  };
  EXPECT_TRUE(dm::walk_records(*from.store, {number}, records, from.why)) << from.why.sentence;
  return told;
}

std::string journal_state(const dm::settings& settings, int64_t number) {
  opened from(settings);
  dm::past past;
  std::string text;
  EXPECT_TRUE(number == JOURNAL_PRESENT ||
              dm::look_back(*from.store, {1, 1, 0}, number, past, from.why))
      << from.why.sentence;
  auto field = [&](const dm::field_row& row) {
    text += dm::join({dd_type_keyword(row.type), " ", row.name, " ", std::to_string(row.number)});
    if (row.descr != nullptr) text += dm::join({" ", row.descr});
    if (row.flags != 0) text += dm::join({" ", std::to_string(row.flags)});
    return text += '\n', true;
  };
  auto storable = [&](const dm::class_row& row) {
    std::string definition = row.definition;
    std::erase(definition, '"');
    return text += definition + "\n", true;
  };
  EXPECT_TRUE(dm::past_fields(*from.store, 1, past, dm::visit<dm::field_row>(field), from.why));
  EXPECT_TRUE(dm::past_classes(*from.store, 1, past, dm::visit<dm::class_row>(storable), from.why));
  return text;
}
