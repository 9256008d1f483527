// The differences for people: a line for each thing and value, indented by what it belongs to.
#include "dict/diff/diff.h"
#include "dict/diff/losses.h"
#include "dict/terminal/visible.h"

namespace dict {

namespace {

struct mark {
  const char* sign;
  const char* colour;
};

// In the order of the enumeration.
constexpr mark MARKS[] = {
    {"+ ", "\033[32m"}, {"~ ", "\033[33m"}, {"- ", "\033[31m"}, {"= ", "\033[2m"}};
constexpr mark REFUSED = {"! ", "\033[31m"};
constexpr char PLAIN[] = "\033[0m";

struct page {
  std::string text;
  bool coloured;
  bool marks_losses = false;
};

constexpr char LOSS[] = "  (destructive)";

}  // namespace

// Control characters become '?': a terminal would obey them.
static std::string printable(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (static_cast<unsigned char>(c) < ' ' || c == '\177') c = '?';
  }
  return result;
}

static void put_marked(page& out, size_t indent, const mark& sign, const std::string& text) {
  out.text.append(indent, ' ');
  if (out.coloured) out.text += sign.colour;
  out.text.append(sign.sign).append(visible_in_output(printable(text)));
  if (out.coloured) out.text += PLAIN;
  out.text += '\n';
}

static void put_line(page& out, size_t indent, change kind, const std::string& text) {
  put_marked(out, indent, MARKS[static_cast<size_t>(kind)], text);
}

static void put_refusal(page& out, const trial_result& tried) {
  if (tried.given != answer::REFUSED && tried.messages.empty()) return;
  put_marked(out, 0, REFUSED,
             tried.given == answer::REFUSED
                 ? "refused: 'replace' would deploy nothing of these files"
                 : "not tried: whether 'replace' would take these files is unknown");
  for (const std::string& message : tried.messages) put_marked(out, 4, REFUSED, message);
}

static const char* mark_of(const page& out, bool is_loss) {
  return out.marks_losses && is_loss ? LOSS : "";
}

static void put_value(page& out, size_t indent, const value_change& value) {
  const std::string before = value.before.empty() ? "none" : value.before;
  const std::string after = value.after.empty() ? "none" : value.after;
  const std::string attribute(value.attribute);
  if (value.is_kept) {
    put_line(out, indent, change::KEPT,
             attribute + ": " + before + " stays (the files say " + after + ")");
  } else {
    put_line(out, indent, change::CHANGED,
             attribute + ": " + before + " -> " + after + mark_of(out, is_loss(value)));
  }
}

static void put(page& out, size_t indent, const difference& d) {
  std::string head = std::string(d.what) + " " + d.name;
  if (!d.type.empty()) head += " (" + d.type + ")";
  put_line(out, indent, d.kind, head + mark_of(out, is_loss(d)));
  for (const value_change& value : d.values) put_value(out, indent + 4, value);
  for (const difference& entry : d.entries) put(out, indent + 4, entry);
}

std::string lines_of(const std::vector<difference>& found, bool coloured, bool marks_losses) {
  page out{{}, coloured, marks_losses};
  for (const difference& d : found) put(out, 0, d);
  return std::move(out.text);
}

std::string lines_of(const trial_result& tried, bool coloured) {
  page out{{}, coloured};
  put_refusal(out, tried);
  return std::move(out.text);
}

std::string as_text(const std::vector<difference>& found, const trial_result& tried,
                    bool coloured) {
  const page out{lines_of(found, coloured) + lines_of(tried, coloured), coloured};
  const difference_counts counts = count(found);
  if (counts.added + counts.changed + counts.missing == 0) return out.text + "No differences.\n";
  return out.text + std::to_string(counts.added) + " new, " + std::to_string(counts.changed) +
         " changed, " + std::to_string(counts.missing) + " missing.\n";
}

}  // namespace dict
