// The pages themselves (the folder site/ of the sources), which are compiled into the program.
#ifndef DICT_SITE_PAGES_H
#define DICT_SITE_PAGES_H

#include <span>
#include <string_view>

namespace dict {

extern const char INDEX_PAGE[];

// A file that the page names.
struct page_part {
  std::string_view name;
  const char* text;
};
std::span<const page_part> page_parts();

}  // namespace dict

#endif
