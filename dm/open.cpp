#include "dm/open.h"

#include "vantor/data_manager.h"

namespace dm {

static bool begins(const std::string& text, std::string_view prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

static std::string bad_dictionary(const std::string& text, problem& why) {
  // The text is not repeated where it may hold a password.
  const bool server = begins(text, "postgresql://") || begins(text, "postgres://") ||
                      text.find('=') != std::string::npos;
  why.code = TAV_ERR_BAD_CONF;
  why.sentence =
      server ? join({"Configuration ", quoted(tav_conf_file()),
                     ": the dictionary is on a PostgreSQL server, which is not available in this "
                     "build; use sqlite:PATH."})
             : join({"Configuration ", quoted(tav_conf_file()), ": entry 'dictionary' is ",
                     quoted(text), "; expected sqlite:PATH."});
  return "";
}

std::string sqlite_path(const settings& settings, problem& why) {
  static constexpr std::string_view PREFIX = "sqlite:";
  if (!begins(settings.dictionary, PREFIX) || settings.dictionary.size() == PREFIX.size()) {
    return bad_dictionary(settings.dictionary, why);
  }
  const std::string path = settings.dictionary.substr(PREFIX.size());
  if (path.front() == '/') return path;
  const std::string folder = tav_conf_folder();
  return join({folder.empty() ? "." : folder, "/", path});
}

store_owner open_dictionary(const settings& settings, const open_options& options, problem& why) {
  const std::string path = sqlite_path(settings, why);
  return path.empty() ? nullptr : open_sqlite(path, options, why);
}

bool create_dictionary(const settings& settings, const fill_store& fill, std::string& name,
                       problem& why) {
  name = sqlite_path(settings, why);
  return !name.empty() && create_sqlite(name, fill, why);
}

}  // namespace dm
