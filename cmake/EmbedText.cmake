# SPDX-License-Identifier: GPL-3.0-or-later
# cmake -D INPUT=file -D OUTPUT=file.cpp -D NAME=identifier -P EmbedText.cmake
# Writes a C++ file that contains the input's bytes as the std::string_view lumetwin::embedded::NAME.
file(READ "${INPUT}" hexadecimal HEX)
string(REGEX REPLACE "(................................)" "\\1\n" hexadecimal "${hexadecimal}")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${hexadecimal}")
get_filename_component(name "${INPUT}" NAME)
file(WRITE "${OUTPUT}" "// Generated from ${name}. Edit that file instead.
#include <string_view>

namespace lumetwin::embedded {

static constexpr char ${NAME}_bytes[] = {
${bytes}'\\0'};

extern const std::string_view ${NAME};
const std::string_view ${NAME}(${NAME}_bytes, sizeof ${NAME}_bytes - 1);

} // namespace lumetwin::embedded
")
