// The command. It writes with the tool's own writer, so what it writes is what the modes `field`
// and `class` do.
#include "dict/export/export.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <new>

#include "dd/database_number.h"
#include "dd/fold.h"
#include "dd/report.h"
#include "dd/values.h"
#include "dict/commands.h"
#include "dict/database_files.h"
#include "dict/definitions.h"
#include "dict/history/history.h"
#include "dict/options.h"
#include "dict/reading.h"
#include "dict/terminal/visible.h"
#include "dm/predefined.h"
#include "dparse/write/writer.h"

namespace dict {

static constexpr char MODULE[] = "tav_dict";

namespace {

struct request {
  std::string folder;
  std::string database;
  std::string at;  // a point in the journal; empty: now
};

struct exported {
  definitions all{};
  uint64_t database = 0;
  std::vector<tav_flist_t*> fields{};  // to be written
  dparse::class_outline classes{};
};

}  // namespace

// --- What is written -----------------------------------------------------------------------------

// A field that this program knows as predefined has the description that it is made with.
static bool is_as_made(tav_flist_t* field, tav_ebuf* ebuf) {
  const char* name = dd_text(field, TAV_FLD_FIELD_NAME, at(ebuf, HERE));
  const char* descr = dd_text(field, TAV_FLD_DESCR, at(ebuf, HERE));
  const auto made = dm::predefined_fields();
  return std::any_of(made.begin(), made.end(), [&](const dm::field_row& row) {
    return dd_equal(row.name, name) && std::string_view(row.descr) == descr;
  });
}

static bool is_written(tav_flist_t* field, tav_ebuf* ebuf) {
  const int32_t flags = dd_int(field, TAV_FLD_FIELD_FLAGS, at(ebuf, HERE));
  return (flags & DD_FIELD_PREDEFINED) == 0 || !is_as_made(field, ebuf);
}

static bool fetch_now(const request& asked, exported& result, dm::problem& why) {
  dm::settings settings;
  return dm::read_settings(settings, why) &&
         choose_database(asked.database, settings, result.database, why) &&
         fetch(settings, result.database, result.all, why);
}

static bool fetch_past(const request& asked, exported& result, dm::problem& why) {
  reading from;
  if (!begin_past(asked.database, from, why)) return false;
  result.database = from.database.number;
  return fetch_at(from, asked.at, result.all, why);
}

// Lists that the data manager made can be read.
static bool gather(const request& asked, exported& result, dm::problem& why) {
  if (!(asked.at.empty() ? fetch_now : fetch_past)(asked, result, why)) return false;
  tav_ebuf ebuf{};
  dd_walk walk(result.all.fields.get(), TAV_FLD_FIELD);
  while (tav_flist_t* field = walk.next(at(&ebuf, HERE))) {
    if (is_written(field, &ebuf)) result.fields.push_back(field);
  }
  result.classes = dparse::outline_classes(result.all.classes.get(), ebuf);
  if (result.classes.failure.err_code == TAV_ERR_NO_MEM) throw std::bad_alloc();
  return true;
}

// --- Texts ---------------------------------------------------------------------------------------

// What `write` puts on a stream; false after a report. What it logs is told already.
template <class Write>
static bool text_of(Write write, std::string& text) {
  char* bytes = nullptr;
  size_t size = 0;
  FILE* stream = open_memstream(&bytes, &size);
  if (stream == nullptr) throw std::bad_alloc();
  tav_ebuf ebuf{};
  const bool is_written = write(stream, &ebuf) >= 1;
  const bool is_whole = std::ferror(stream) == 0;
  const bool is_closed = std::fclose(stream) == 0;
  const std::unique_ptr<char, decltype(&std::free)> owner(bytes, std::free);
  if (!is_whole || !is_closed) throw std::bad_alloc();
  text.append(bytes, size);
  return is_written;
}

static bool text_of_fields(const std::vector<tav_flist_t*>& fields, std::string& text) {
  return text_of(
      [&](FILE* to, tav_ebuf* ebuf) { return dparseExportInterfaceFields(to, fields, ebuf); },
      text);
}

static bool text_of_interfaces(dd_list& fields, dparse::class_outline& classes, std::string& text) {
  return text_of(
      [&](FILE* to, tav_ebuf* ebuf) {
        return dparseExportInterfaceClasses(to, &fields, classes, ebuf);
      },
      text);
}

static bool text_of_implementations(dd_list& fields, dparse::class_outline& classes,
                                    std::string& text) {
  return text_of(
      [&](FILE* to, tav_ebuf* ebuf) { return dparseExportImplClasses(to, &fields, classes, ebuf); },
      text);
}

static bool cannot_be_written(dm::problem& why) {
  why.sentence =
      "The definitions cannot be written whole; find out what is wrong with 'tav_dict check'.";
  return false;
}

// --- To standard output --------------------------------------------------------------------------

// The tabs at the start of a line are the writer's.
static void print(std::string_view text) {
  if (isatty(STDOUT_FILENO) == 0) {
    std::cout << text;
    return;
  }
  while (!text.empty()) {
    const size_t own = std::min(text.find_first_not_of("\t\n"), text.size());
    const size_t end = std::min(text.find('\n', own), text.size());
    std::cout << text.substr(0, own) << visible{text.substr(own, end - own)};
    text.remove_prefix(end);
  }
}

static bool print_all(exported& all, dm::problem& why) {
  std::string text;
  if (!text_of_fields(all.fields, text) || !text_of_interfaces(all.all.fields, all.classes, text) ||
      !text_of_implementations(all.all.fields, all.classes, text)) {
    return cannot_be_written(why);
  }
  print(text);
  return true;
}

// --- To a folder ---------------------------------------------------------------------------------

// Puts the fields of one file together; files and fields keep their order.
static bool make_field_files(exported& all, std::vector<export_file>& files, dm::problem& why) {
  std::vector<std::pair<std::string, tav_flist_t*>> placed;
  tav_ebuf ebuf{};
  for (tav_flist_t* field : all.fields) {
    placed.emplace_back(file_of_field(dd_text(field, TAV_FLD_FIELD_NAME, at(&ebuf, HERE))), field);
  }
  std::stable_sort(placed.begin(), placed.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (size_t i = 0; i < placed.size();) {
    export_file& file = files.emplace_back();
    file.name = placed[i].first;
    std::vector<tav_flist_t*> fields;
    for (; i < placed.size() && placed[i].first == file.name; ++i) {
      fields.push_back(placed[i].second);
    }
    if (!text_of_fields(fields, file.text)) return cannot_be_written(why);
  }
  return true;
}

static bool make_class_file(exported& all, const dparse::outlined_class& storable,
                            export_file& file, dm::problem& why) {
  tav_ebuf ebuf{};
  const auto entries = dparse::entries_of(all.classes, storable);
  dparse::class_outline one{
      {{storable.element, 0, storable.count}}, {entries.begin(), entries.end()}, {}};
  one.failure = all.classes.failure;
  file.name = file_of_class(dd_text(storable.element, TAV_FLD_NAME, at(&ebuf, HERE)));
  return (text_of_interfaces(all.all.fields, one, file.text) &&
          text_of_implementations(all.all.fields, one, file.text)) ||
         cannot_be_written(why);
}

static bool make_files(exported& all, std::vector<export_file>& files, dm::problem& why) {
  if (!make_field_files(all, files, why)) return false;
  for (const dparse::outlined_class& storable : all.classes.classes) {
    if (storable.element == nullptr) return cannot_be_written(why);
    if (!make_class_file(all, storable, files.emplace_back(), why)) return false;
  }
  std::sort(files.begin(), files.end(),
            [](const export_file& a, const export_file& b) { return a.name < b.name; });
  const auto twice = std::adjacent_find(
      files.begin(), files.end(),
      [](const export_file& a, const export_file& b) { return a.name == b.name; });
  if (twice == files.end()) return true;
  why.sentence = dm::join({"Two long names come to the same file name ", dm::quoted(twice->name),
                           "; export without --dir."});
  return false;
}

static std::string counted_files(size_t count) {
  return std::to_string(count) + (count == 1 ? " file" : " files");
}

static bool write_all(exported& all, const std::string& folder, dm::problem& why) {
  std::vector<export_file> files;
  folder_changes changes;
  if (!make_files(all, files, why) ||
      !update_folder(folder, dd_database_text(all.database), files, changes, why))
    return false;
  std::cout << "Exported to " << visible{folder} << ": " << counted_files(changes.written)
            << " written, " << changes.deleted << " deleted, " << changes.unchanged
            << " unchanged.\n";
  return true;
}

// What the writer says ends with a line end or without.
static std::string line_of(const std::string& text) {
  return text.substr(0, text.find_last_not_of('\n') + 1);
}

static int run(const request& asked, bool to_folder) {
  exported all;
  dm::problem why;
  tav_err_set_level(0);  // the logs are about deployments: what is said here is told at once
  if (to_folder && !spares_companions(asked.folder, why)) return fail(why);
  if (!gather(asked, all, why)) return fail(why);
  std::vector<std::string> faults;
  dd_take_errors(&faults);
  const bool is_done = to_folder ? write_all(all, asked.folder, why) : print_all(all, why);
  dd_take_errors(nullptr);
  all.all.fields.leave();
  all.all.classes.leave();
  if (is_done) return DONE;
  for (const std::string& fault : faults) std::cerr << visible{line_of(fault)} << '\n';
  return fail(why);
}

void add_export(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand(
      "export", "Write all that is not predefined as definitions that can be deployed elsewhere");
  auto* folder = command->add_option(
      "--dir", asked->folder,
      "Into this folder: a file for each class and for fields whose names begin alike");
  add_database_option(*command, asked->database);
  add_at_option(*command, asked->at);
  command->callback([asked, folder, &result] { result = run(*asked, folder->count() > 0); });
}

}  // namespace dict
