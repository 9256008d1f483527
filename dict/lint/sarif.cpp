// SARIF 2.1.0, the standard form in which tools hand findings to forges and editors.
#include <algorithm>
#include <cstdio>
#include <map>

#include "dict/lint/excerpt.h"
#include "dict/lint/forms.h"
#include "dict/lint/places.h"
#include "dict/terminal/json.h"

namespace dict {

namespace {

constexpr size_t MOST_RESULTS = 5000;  // forges take no more
constexpr char FINGERPRINT[] = "tavLintSubject/v1";

struct page {
  const lint_report& report;
  json_page json{};
  places here{report.sources};
  places there{report.sources};
};

}  // namespace

// A name as a relative or file: address.
static std::string uri_of(const std::string& name) {
  static constexpr std::string_view PLAIN = "/-._~!$&'()*+,;=@";
  std::string uri = name.starts_with('/') ? "file://" : "";
  for (const char c : name) {
    const bool is_word = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    char code[4];
    std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(c));
    if (is_word || PLAIN.find(c) != PLAIN.npos) {
      uri += c;
    } else {
      uri += code;
    }
  }
  return uri;
}

static void put_message(json_writer& out, const char* key, const std::string& text) {
  out.Key(key);
  out.StartObject();
  put_member(out, "text", written_out(text));
  out.EndObject();
}

static void put_physical(json_writer& out, const region& at) {
  out.Key("physicalLocation");
  out.StartObject();
  out.Key("artifactLocation");
  out.StartObject();
  put_member(out, "uri", uri_of(lint::stable_name(at.file)));
  out.EndObject();
  out.Key("region");
  out.StartObject();
  put_number(out, "startLine", static_cast<int64_t>(at.line));
  put_number(out, "startColumn", static_cast<int64_t>(at.column));
  put_number(out, "endLine", static_cast<int64_t>(at.end_line));
  put_number(out, "endColumn", static_cast<int64_t>(at.end_column));
  out.EndObject();
  out.EndObject();
}

static void put_rule(json_writer& out, const lint_rule& rule) {
  out.StartObject();
  put_member(out, "id", rule.id);
  put_message(out, "shortDescription", rule.title + ".");
  if (!rule.cause.empty()) {
    put_message(out, "fullDescription", rule.cause);
    put_message(out, "help", rule.remedy.empty() ? rule.cause : rule.remedy);
  }
  out.Key("defaultConfiguration");
  out.StartObject();
  put_member(out, "level", name_of(rule.level));
  out.EndObject();
  out.EndObject();
}

static void put_related(page& to, const lint::finding& found) {
  if (found.related.empty()) return;
  int64_t id = 0;
  put_array(to.json.out, "relatedLocations", found.related,
            [&](json_writer& out, const lint::related_place& each) {
              out.StartObject();
              put_number(out, "id", ++id);
              put_physical(out, region_of(to.there, each.where));
              put_message(out, "message", each.sentence);
              out.EndObject();
            });
}

static void put_suppressions(json_writer& out, const lint::outcome& each) {
  out.Key("suppressions");
  out.StartArray();
  if (each.hidden != lint::hidden_by::NOTHING) {
    const bool is_comment = each.hidden == lint::hidden_by::COMMENT;
    out.StartObject();
    put_member(out, "kind", is_comment ? "inSource" : "external");
    if (!is_comment || !each.reason.empty())
      put_member(out, "justification",
                 is_comment ? written_out(each.reason) : "Known to the baseline.");
    out.EndObject();
  }
  out.EndArray();
}

static void put_result(page& to, const lint::outcome& each,
                       const std::map<std::string_view, int64_t>& index) {
  json_writer& out = to.json.out;
  out.StartObject();
  put_member(out, "ruleId", std::string(each.found.rule));
  const auto row = index.find(each.found.rule);
  if (row != index.end()) put_number(out, "ruleIndex", row->second);
  put_member(out, "level", name_of(each.found.told));
  put_message(out, "message", each.found.sentence);
  out.Key("locations");
  out.StartArray();
  out.StartObject();
  put_physical(out, region_of(to.here, each.found.where));
  out.EndObject();
  out.EndArray();
  put_related(to, each.found);
  out.Key("partialFingerprints");
  out.StartObject();
  put_member(out, FINGERPRINT, lint::fingerprint(each));
  out.EndObject();
  put_suppressions(out, each);
  if (!each.found.aliases.empty()) {
    out.Key("properties");
    out.StartObject();
    put_texts(out, "aliases", alias_names(each.found));
    out.EndObject();
  }
  out.EndObject();
}

static void put_driver(json_writer& out, const std::vector<const lint_rule*>& rules) {
  out.Key("tool");
  out.StartObject();
  out.Key("driver");
  out.StartObject();
  put_member(out, "name", "tav_dict lint");
  put_member(out, "version", TAV_DICT_VERSION);
  put_member(out, "semanticVersion", TAV_DICT_VERSION);
  put_array(out, "rules", rules,
            [](json_writer& to, const lint_rule* rule) { put_rule(to, *rule); });
  out.EndObject();
  out.EndObject();
}

static void put_invocation(json_writer& out, bool is_whole, uint64_t missing) {
  out.Key("invocations");
  out.StartArray();
  out.StartObject();
  put_flag(out, "executionSuccessful", is_whole);
  if (missing > 0) {
    out.Key("toolExecutionNotifications");
    out.StartArray();
    out.StartObject();
    put_member(out, "level", "warning");
    put_message(out, "message",
                std::to_string(missing) + " further findings are left out here; '--format text' " +
                    "and '--format json' tell more.");
    out.EndObject();
    out.EndArray();
  }
  out.EndObject();
  out.EndArray();
}

// Those that are told before those that are not, errors first: what is left out weighs least.
static std::vector<const lint::outcome*> chosen(const lint_report& report) {
  std::vector<const lint::outcome*> results;
  for (const lint::outcome& each : report.findings) results.push_back(&each);
  if (results.size() <= MOST_RESULTS) return results;
  std::stable_sort(results.begin(), results.end(), [](const auto* a, const auto* b) {
    const auto weight = [](const lint::outcome* one) {
      const bool is_told = one->hidden == lint::hidden_by::NOTHING;
      return (is_told ? 4 : 0) + static_cast<int>(one->found.told);
    };
    return weight(a) > weight(b);
  });
  results.resize(MOST_RESULTS);
  return results;
}

void as_sarif(const lint_report& report, const text_sink& sink) {
  page to{report};
  json_writer& out = to.json.out;
  std::vector<const lint_rule*> rules;
  std::map<std::string_view, int64_t> index;
  for (const lint_rule& rule : report.rules) {
    if (rule.level == lint::level::OFF) continue;
    index[rule.id] = static_cast<int64_t>(rules.size());
    rules.push_back(&rule);
  }
  const std::vector<const lint::outcome*> results = chosen(report);
  out.StartObject();
  put_member(out, "$schema", "https://json.schemastore.org/sarif-2.1.0.json");
  put_member(out, "version", "2.1.0");
  out.Key("runs");
  out.StartArray();
  out.StartObject();
  put_driver(out, rules);
  put_invocation(out, report.is_whole, report.left_out + report.findings.size() - results.size());
  put_member(out, "columnKind", "unicodeCodePoints");
  put_array(out, "results", results, [&](json_writer&, const lint::outcome* each) {
    put_result(to, *each, index);
    hand_over(to.json, sink);
  });
  out.EndObject();
  out.EndArray();
  out.EndObject();
  hand_over(to.json, sink);
  sink("\n");
}

}  // namespace dict
