#pragma once

#include <string>
#include <string_view>

namespace nimbrel::cli {

/// All that is in a text file, without the mark that UTF-8 files may begin with. Raises
/// CommandError (the file cannot be read), also for one of more than 64 MiB.
std::string ReadTextFile(const std::string& path);

/// Text of a file as it can stand in a message of one line: in quotes, cut after 60 bytes.
std::string QuotedText(std::string_view text);

}  // namespace nimbrel::cli
