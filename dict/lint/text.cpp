// For people: each finding with its place, the line and a caret.
#include <algorithm>

#include "dict/lint/excerpt.h"
#include "dict/lint/forms.h"
#include "dict/lint/places.h"

namespace dict {

namespace {

constexpr char PLAIN[] = "\033[0m";
constexpr char BOLD[] = "\033[1m";
constexpr char GREEN[] = "\033[32m";
constexpr const char* COLOURS[] = {"", "\033[36m", "\033[33m", "\033[31m"};  // by lint::level
constexpr char INDENT[] = "    ";

struct page {
  const lint_report& report;
  places here{report.sources};
  places there{report.sources};  // related places
  std::string text{};
};

}  // namespace

static void put(page& out, const char* colour, std::string_view text) {
  if (out.report.is_coloured) out.text += colour;
  out.text += text;
  if (out.report.is_coloured) out.text += PLAIN;
}

static void put_head(page& out, const region& at, lint::level level, const std::string& sentence) {
  put(out, BOLD,
      written_out(at.file) + ":" + std::to_string(at.line) + ":" + std::to_string(at.column) + ":");
  out.text += ' ';
  put(out, COLOURS[static_cast<int>(level)], std::string(name_of(level)) + ":");
  out.text += ' ';
  out.text += written_out(sentence);
}

static void put_excerpt(page& out, const lint::span& at) {
  const excerpt part = excerpt_of(out.report.sources[at.source].tree.text, at.start, at.length);
  if (part.line.find_first_not_of(' ') == std::string::npos) return;
  out.text += '\n';
  out.text += INDENT + part.line + "\n" + INDENT;
  put(out, GREEN, part.caret);
}

static void put_finding(page& out, const lint::finding& found) {
  put_head(out, region_of(out.here, found.where), found.told, found.sentence);
  out.text.append(" [").append(found.rule).append("]");
  put_excerpt(out, found.where);
  out.text += '\n';
  for (const lint::related_place& each : found.related) {
    put_head(out, region_of(out.there, each.where), lint::level::NOTE, each.sentence);
    out.text += '\n';
  }
}

static std::string counted(uint64_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

static void put_sum(page& out) {
  const lint_counts counts = count(out.report);
  if (out.report.left_out > 0)
    out.text += counted(out.report.left_out, "further finding") + " not shown.\n";
  if (counts.errors + counts.warnings + counts.notes == 0) {
    out.text += out.report.is_whole ? "No findings" : "No findings in what could be read";
  } else {
    out.text += counted(counts.errors, "error") + ", " + counted(counts.warnings, "warning") +
                ", " + counted(counts.notes, "note");
  }
  if (counts.hidden > 0) out.text += " (" + std::to_string(counts.hidden) + " ignored or known)";
  out.text += ".\n";
}

void as_text(const lint_report& report, const text_sink& to) {
  page out{report};
  for (const lint::outcome& each : report.findings) {
    if (each.hidden != lint::hidden_by::NOTHING) continue;
    put_finding(out, each.found);
    to(out.text);
    out.text.clear();
  }
  put_sum(out);
  to(out.text);
}

}  // namespace dict
