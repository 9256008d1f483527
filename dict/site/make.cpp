// Puts the files of a site together.
#include <set>

#include "dict/site/pages.h"
#include "dict/site/parts.h"

namespace dict {

static std::string name_of(const site_source& source) {
  return source.database.empty() ? "files" : source.database;
}

static void put_about(const site_parts& parts, const site_file& index, data_writer& out) {
  const site_source& source = parts.source;
  put(out, "dictionary", source.dictionary);
  put(out, "database", source.database);
  put(out, "at", source.at);
  put(out, "index", index.name);
  if (source.past.begin == 0) return;
  out.Key("begin");
  out.Int64(source.past.begin);
}

static std::string add(std::vector<site_file>& files, site_file file) {
  files.push_back(std::move(file));
  return files.back().name;
}

static bool put_source(site_source& source, data_writer& out, std::vector<site_file>& files,
                       dm::problem& why) {
  const std::string name = name_of(source);
  site_parts parts(source);
  lay_out(parts);
  if (!add_classes(parts, why) || !add_fields(parts, why)) return false;
  data_page index, deployments;
  put_index(parts, index.out);
  out.StartObject();
  put_about(parts, files.emplace_back(script_of(name + "/index", index.json())), out);
  out.Key("details");
  size_t number = 0;
  put_rows(out, parts.details, [&](const details_file& file) {
    const std::string json =
        "{\"classes\":[" + file.classes + "],\"fields\":[" + file.fields + "]}";
    put(out, add(files, script_of(name + "/details/" + std::to_string(number++), json)));
  });
  if (source.has_past) {
    put_deployments(parts, name + "/deployments", deployments.out, files);
    put(out, "deployments", add(files, script_of(name + "/deployments", deployments.json())));
  }
  out.EndObject();
  return true;
}

// The pages name their parts as they lie in the sources; here each is named by its content.
static void name_part(std::string& page, std::string_view before, const std::string& name) {
  std::string quoted = "\"";
  quoted.append(before).append("\"");
  page.replace(page.find(quoted) + 1, before.size(), name);
}

static void add_pages(const std::string& data, std::vector<site_file>& files) {
  std::string page = INDEX_PAGE;
  name_part(page, "made.js", data);
  for (const page_part& part : page_parts()) {
    const std::string_view ending = part.name.substr(part.name.rfind('.'));
    name_part(page, part.name, add(files, named_by_content(part.text, ending)));
  }
  files.push_back({"index.html", std::move(page)});
}

// Equal texts have equal names.
static void drop_repeated(std::vector<site_file>& files) {
  std::set<std::string> names;
  std::erase_if(files, [&](const site_file& file) { return !names.insert(file.name).second; });
}

bool make_site(const std::string& title, std::vector<site_source>& sources,
               std::vector<site_file>& files, dm::problem& why) {
  data_page main;
  main.out.StartObject();
  put(main.out, "title", title);
  main.out.Key("databases");
  main.out.StartArray();
  for (site_source& source : sources) {
    if (!put_source(source, main.out, files, why)) return false;
  }
  main.out.EndArray();
  main.out.EndObject();
  add_pages(add(files, script_of("main", main.json())), files);
  drop_repeated(files);
  return true;
}

}  // namespace dict
