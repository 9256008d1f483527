// JSON that this program wrote: plans, and details in the journal. Others may have changed it.
#ifndef DICT_PARSED_JSON_H
#define DICT_PARSED_JSON_H

#include <rapidjson/document.h>

#include <string_view>

#include "dm/json_memory.h"

namespace dict {

using parsed_json =
    rapidjson::GenericDocument<rapidjson::UTF8<>, rapidjson::MemoryPoolAllocator<dm::json_memory>,
                               dm::json_memory>;
using json_value = parsed_json::ValueType;

// Null where the text is no JSON, or is nested deeper than 64 levels: this program writes a few.
parsed_json parse_json(std::string_view text);

// The member of that name; null where there is none, or the value is no object.
const json_value* find_member(const json_value& value, const char* key);

}  // namespace dict

#endif
