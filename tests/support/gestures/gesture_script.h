#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/desktop.h"
#include "toolkit/gesture.h"

namespace nimbrel::gestures {

enum class GestureKind {
  kType,
  kLeave,
  kKey,
  kClick,
  kPick,
  kRow,
  kHeader,
  kDoubleClick,
  kCheck,
  kTab,
  kNode,
  kClose,
  kAnswer,
  kFile,
  kShow,
  kShowFocus,
  kShowForm,
};

/// One line of a script. Which of the fields count depends on the kind.
struct Gesture {
  GestureKind kind = GestureKind::kLeave;
  std::string line;                   ///< as it stands in the script, without the comment
  std::string control{};              ///< name of the control
  std::optional<std::string> text{};  ///< what is typed, picked, checked, clicked; path of a file
  std::int32_t number = 0;            ///< row, header and entry from 1, tab from 0
  toolkit::Key key = toolkit::Key::kEnter;
  bool on = false;
  toolkit::Answer answer = toolkit::Answer::kOk;
  std::string property{};  ///< what to show of the control; empty for all of it
};

/// A line that is no gesture. The text names the script, the line, what was found and expected.
class ScriptError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads a script: one gesture a line, "#" starts a comment outside quotes, blank lines mean
/// nothing, and lines may end with "\r\n".
///
/// - `type BOX "text"`, `leave`,
/// - `key CONTROL KEY`, the key being Enter, Escape, Tab, Up, Down, Space or Delete,
/// - `click CONTROL`, `pick LIST "entry"` or `pick LIST 2`,
/// - `row LIST 2`, `header LIST 3`, `dblclick LIST 2`, `check LIST "text" on` or `off`,
/// - `tab 2`, `node TREE "text"`, `close`,
/// - `answer Yes`, `No` or `OK`, `file "path"` or `file cancel`,
/// - `show NAME`, `show NAME.Property`, `show focus`, `show form`.
///
/// Texts have the escapes \" \\ \r \n. Raises ScriptError for the first line that is none of these;
/// `name` is the script's name in its text.
std::vector<Gesture> ParseScript(std::string_view script, const std::string& name);

}  // namespace nimbrel::gestures
