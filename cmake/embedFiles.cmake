# cmake -DOUT=<file.cpp> -DFILES=<a>|<b>|... -P embedFiles.cmake: writes a C++ file that holds the text of the files,
# for pageFiles.h. No text may hold `)zelmPage"`, which ends a literal.
string(REPLACE "|" ";" files "${FILES}")
set(arrays "")
set(table "")
set(number 0)
foreach(file IN LISTS files)
  file(READ "${file}" text)
  get_filename_component(name "${file}" NAME)
  string(APPEND arrays "const char file${number}[] = R\"zelmPage(${text})zelmPage\";\n")
  string(APPEND table "    {\"${name}\", {file${number}, sizeof(file${number}) - 1}},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE "${OUT}" "// Made by cmake/embedFiles.cmake.
#include \"pageFiles.h\"

#ifdef __clang__
#pragma clang diagnostic ignored \"-Woverlength-strings\"
#endif

namespace zelm::tool {
namespace {

struct PageFile {
    std::string_view name;
    std::string_view text;
};

${arrays}
const PageFile files[] = {
${table}};

}  // namespace

std::string_view pageFile(std::string_view name) {
    for (const PageFile& file : files) {
        if (file.name == name) {
            return file.text;
        }
    }
    return {};
}

}  // namespace zelm::tool
")
