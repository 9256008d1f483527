# Writes a source file with the texts of the pages: cmake -DFROM=FOLDER -DTO=FILE -P embed.cmake
# The first is index.html, which names the others.
file(GLOB parts RELATIVE "${FROM}" "${FROM}/*.css" "${FROM}/*.js")
file(READ "${FROM}/index.html" text)
set(source "#include \"dict/site/pages.h\"\n
namespace dict {\n
const char INDEX_PAGE[] = R\"page(${text})page\";\n
static const page_part PARTS[] = {\n")
foreach(part IN LISTS parts)
  file(READ "${FROM}/${part}" text)
  string(APPEND source "    {\"${part}\", R\"page(${text})page\"},\n")
endforeach()
file(WRITE "${TO}" "${source}};\n
std::span<const page_part> page_parts() { return PARTS; }\n
}  // namespace dict\n")
