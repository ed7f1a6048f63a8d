# cmake -DINPUT=... -DOUTPUT=... -DHEADER=... -DFUNCTION=... -P EmbedFile.cmake
# Writes a C++ source with a function of nimbrel::cli::report that gives a file's bytes.
file(READ "${INPUT}" bytes HEX)
string(REGEX REPLACE "(................................)" "\\1\n" bytes "${bytes}")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
file(WRITE "${OUTPUT}" "#include \"${HEADER}\"

namespace nimbrel::cli::report {
namespace {
constexpr unsigned char kBytes[] = {
${bytes}
};
}  // namespace

std::string_view ${FUNCTION}() {
  return {reinterpret_cast<const char*>(kBytes), sizeof kBytes};
}

}  // namespace nimbrel::cli::report
")
