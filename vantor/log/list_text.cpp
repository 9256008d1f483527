#include "vantor/log/list_text.h"

#include <charconv>
#include <vector>

#include "vantor/list/node.h"
#include "vantor/log/log_text.h"

namespace vantor {

namespace {

template <class Number>
void append_number(std::string& out, Number number) {
  char digits[64];
  const auto [end, error] = std::to_chars(digits, digits + sizeof digits, number);
  out.append(digits, end);
}

template <class Number>
void append_number_at(std::string& out, const void* value) {
  Number number;
  std::memcpy(&number, value, sizeof number);
  append_number(out, number);
}

void append_poid(std::string& out, const tav_poid_t* poid) {
  const uint64_t database = tav_poid_get_db(poid);
  for (int shift = 48; shift >= 0; shift -= 16) {
    append_number(out, static_cast<uint16_t>(database >> shift));
    if (shift > 0) out += '.';
  }
  out += ' ';
  append_escaped(out, tav_poid_get_type(poid));
  out += ' ';
  append_number(out, tav_poid_get_id(poid));
}

void append_bytes(std::string& out, const tav_buf_t& buf) {
  static constexpr char HEX[] = "0123456789abcdef";
  append_number(out, buf.size);
  out += " bytes ";
  for (uint32_t i = 0; i < buf.size; ++i) {
    out += HEX[buf.data[i] >> 4];
    out += HEX[buf.data[i] & 15];
  }
}

void append_value(std::string& out, uint32_t field, const void* value) {
  switch (DD_FIELD_ID_TYPE(field)) {
    case TAV_FLDT_INT:
    case TAV_FLDT_ENUM:
      return append_number_at<int32_t>(out, value);
    case TAV_FLDT_INT64:
    case TAV_FLDT_TIMESTAMP:
      return append_number_at<int64_t>(out, value);
    case TAV_FLDT_NUM:
      return append_number_at<double>(out, value);
    case TAV_FLDT_STRING:
      return append_escaped(out, static_cast<const char*>(value));
    case TAV_FLDT_POID:
      return append_poid(out, static_cast<const tav_poid_t*>(value));
    case TAV_FLDT_DECIMAL:
      out += static_cast<const tav_decimal_t*>(value)->text();
      return;
    default:
      return append_bytes(out, *static_cast<const tav_buf_t*>(value));
  }
}

// How far the text of one list has got: the slot, and the position among the slot's elements.
struct place {
  tav_node* node;
  segment* run;
  uint32_t index = 0;
  uint32_t element = 0;
};

// Begins a line. Below 40 levels it is not indented further but says the level.
void begin_line(std::string& out, size_t depth, uint32_t field) {
  constexpr size_t DEEPEST = 40;
  out.append(INDENT * (depth < DEEPEST ? depth : DEEPEST), ' ');
  if (depth >= DEEPEST) {
    out += "(level ";
    append_number(out, depth);
    out += ") ";
  }
  out += tav_name_of_field(field);
}

// Writes the line of the field's next element and gives that element; null when there is none.
tav_node* next_element(std::string& out, place& at, uint32_t field, size_t depth) {
  int32_t id = 0;
  const tav_node* node = tav_node_next(at.node, field, &at.element, &id);
  if (node == nullptr) return nullptr;
  begin_line(out, depth, field);
  if (DD_FIELD_ID_TYPE(field) == TAV_FLDT_ARRAY) {
    out += '[';
    append_number(out, id);
    out += ']';
  }
  out += '\n';
  return const_cast<tav_node*>(node);
}

void append_scalar(std::string& out, slot& s, size_t depth) {
  begin_line(out, depth, s.field());
  out += " = ";
  append_value(out, s.field(), value_of(s));
  out += '\n';
}

// Writes fields up to the next element, whose line it writes too, and gives that element; null at
// the end of the list.
tav_node* next_below(std::string& out, place& at, size_t depth) {
  for (; at.run != nullptr; at.run = at.run->next, at.index = 0) {
    while (at.index < at.run->count) {
      slot& s = at.run->begin()[at.index];
      if (!s.is_free() && s.has_elements()) {
        if (tav_node* element = next_element(out, at, s.field(), depth)) return element;
      } else if (!s.is_free()) {
        append_scalar(out, s, depth);
      }
      ++at.index;
      at.element = 0;
    }
  }
  return nullptr;
}

}  // namespace

void append_list(std::string& out, const tav_node* list) {
  std::vector<place> way;
  tav_node* node = const_cast<tav_node*>(list);
  if (node != nullptr) way.push_back({node, &node->first});
  while (!way.empty()) {
    node = next_below(out, way.back(), way.size());
    if (node != nullptr) {
      way.push_back({node, &node->first});
    } else {
      way.pop_back();
    }
  }
}

}  // namespace vantor
