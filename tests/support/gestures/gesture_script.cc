#include "tests/support/gestures/gesture_script.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <limits>
#include <map>
#include <utility>

#include "platform/text.h"

namespace nimbrel::gestures {
namespace {

using toolkit::Answer;
using toolkit::Key;

/// What is wrong with a line, before it is known which line it is.
struct NoGesture {
  std::string why;
};

struct Word {
  std::string text;
  bool quoted = false;
};

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r';
}

/// The words of a line; `used` becomes the length of the line without its comment.
class LineReader {
 public:
  explicit LineReader(std::string_view line) : line_(line) {}

  std::vector<Word> Words() {
    std::vector<Word> words;
    while (SkipBlanks()) {
      words.push_back(line_[at_] == '"' ? QuotedWord() : PlainWord());
    }
    return words;
  }
  /// The line up to the comment, without blanks at its ends. Valid after Words.
  std::string Used() const { return std::string(platform::Trim(line_.substr(0, at_))); }

 private:
  /// False at the end of the line or at a comment.
  bool SkipBlanks() {
    while (at_ < line_.size() && IsBlank(line_[at_])) {
      ++at_;
    }
    return at_ < line_.size() && line_[at_] != '#';
  }

  Word PlainWord() {
    const std::size_t from = at_;
    while (at_ < line_.size() && !IsBlank(line_[at_]) && line_[at_] != '#' && line_[at_] != '"') {
      ++at_;
    }
    return {std::string(line_.substr(from, at_ - from)), false};
  }

  Word QuotedWord() {
    Word word{{}, true};
    for (++at_; at_ < line_.size() && line_[at_] != '"'; ++at_) {
      word.text += line_[at_] == '\\' ? Escaped() : line_[at_];
    }
    if (at_ == line_.size()) {
      throw NoGesture{"a text without its closing quote"};
    }
    ++at_;
    return word;
  }

  char Escaped() {
    ++at_;
    const char c = at_ < line_.size() ? line_[at_] : '\0';
    switch (c) {
      case '"':
      case '\\':
        return c;
      case 'r':
        return '\r';
      case 'n':
        return '\n';
      default:
        throw NoGesture{"a backslash with none of \" \\ r n behind it"};
    }
  }

  std::string_view line_;
  std::size_t at_ = 0;
};

/// Takes the words behind the gesture's own one after the other.
class Arguments {
 public:
  explicit Arguments(std::vector<Word> words) : words_(std::move(words)) {}

  std::string Name() { return Plain("a control's name"); }
  std::string Text() {
    if (!HasMore() || !words_[at_].quoted) {
      Expected("a text in quotes");
    }
    return words_[at_++].text;
  }
  bool NextIsText() const { return HasMore() && words_[at_].quoted; }
  std::int32_t Number() {
    const std::string word = Plain("a number");
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size() || number < 0) {
      --at_;
      Expected("a number");
    }
    return number;
  }
  template <class T>
  T OneOf(const std::map<std::string, T, std::less<>>& choices) {
    std::string names;
    for (const auto& [name, value] : choices) {
      names += (names.empty() ? "" : ", ") + name;
    }
    const auto found = choices.find(Plain("one of " + names));
    if (found == choices.end()) {
      --at_;
      Expected("one of " + names);
    }
    return found->second;
  }
  void End() const {
    if (HasMore()) {
      Expected("the end of the line");
    }
  }

 private:
  bool HasMore() const { return at_ < words_.size(); }
  std::string Plain(const std::string& what) {
    if (!HasMore() || words_[at_].quoted) {
      Expected(what);
    }
    return words_[at_++].text;
  }
  [[noreturn]] void Expected(const std::string& what) const {
    throw NoGesture{"expected " + what + ", found " +
                    (HasMore() ? '"' + words_[at_].text + '"' : "the end of the line")};
  }

  std::vector<Word> words_;
  std::size_t at_ = 1;
};

void ReadName(Gesture& gesture, Arguments& rest) {
  gesture.control = rest.Name();
}

void ReadNameAndText(Gesture& gesture, Arguments& rest) {
  gesture.control = rest.Name();
  gesture.text = rest.Text();
}

void ReadNameAndNumber(Gesture& gesture, Arguments& rest) {
  gesture.control = rest.Name();
  gesture.number = rest.Number();
}

void ReadKey(Gesture& gesture, Arguments& rest) {
  gesture.control = rest.Name();
  gesture.key = rest.OneOf<Key>({{"Enter", Key::kEnter},
                                 {"Escape", Key::kEscape},
                                 {"Tab", Key::kTab},
                                 {"Up", Key::kUp},
                                 {"Down", Key::kDown},
                                 {"Space", Key::kSpace},
                                 {"Delete", Key::kDelete}});
}

void ReadPick(Gesture& gesture, Arguments& rest) {
  gesture.control = rest.Name();
  if (rest.NextIsText()) {
    gesture.text = rest.Text();
  } else {
    gesture.number = rest.Number();
  }
}

void ReadCheck(Gesture& gesture, Arguments& rest) {
  ReadNameAndText(gesture, rest);
  gesture.on = rest.OneOf<bool>({{"on", true}, {"off", false}});
}

void ReadAnswer(Gesture& gesture, Arguments& rest) {
  gesture.answer =
      rest.OneOf<Answer>({{"Yes", Answer::kYes}, {"No", Answer::kNo}, {"OK", Answer::kOk}});
}

void ReadFile(Gesture& gesture, Arguments& rest) {
  if (rest.NextIsText()) {
    gesture.text = rest.Text();
  } else {
    rest.OneOf<bool>({{"cancel", true}});
  }
}

void ReadShow(Gesture& gesture, Arguments& rest) {
  const std::string what = rest.Name();
  if (what == "focus" || what == "form") {
    gesture.kind = what == "form" ? GestureKind::kShowForm : GestureKind::kShowFocus;
    return;
  }
  const std::size_t dot = what.find('.');
  gesture.control = what.substr(0, dot);
  if (dot != std::string::npos) {
    gesture.property = what.substr(dot + 1);
  }
  if (gesture.control.empty() || (dot != std::string::npos && gesture.property.empty())) {
    throw NoGesture{"expected NAME or NAME.Property, found \"" + what + '"'};
  }
}

void ReadNothing(Gesture& /*gesture*/, Arguments& /*rest*/) {}

struct Form {
  GestureKind kind;
  void (*read)(Gesture&, Arguments&);
};

Gesture ParseLine(std::vector<Word> words, std::string line) {
  static const std::map<std::string, Form, std::less<>> kForms = {
      {"type", {GestureKind::kType, ReadNameAndText}},
      {"leave", {GestureKind::kLeave, ReadNothing}},
      {"key", {GestureKind::kKey, ReadKey}},
      {"click", {GestureKind::kClick, ReadName}},
      {"pick", {GestureKind::kPick, ReadPick}},
      {"row", {GestureKind::kRow, ReadNameAndNumber}},
      {"header", {GestureKind::kHeader, ReadNameAndNumber}},
      {"dblclick", {GestureKind::kDoubleClick, ReadNameAndNumber}},
      {"check", {GestureKind::kCheck, ReadCheck}},
      {"tab",
       {GestureKind::kTab,
        [](Gesture& gesture, Arguments& rest) { gesture.number = rest.Number(); }}},
      {"node", {GestureKind::kNode, ReadNameAndText}},
      {"close", {GestureKind::kClose, ReadNothing}},
      {"answer", {GestureKind::kAnswer, ReadAnswer}},
      {"file", {GestureKind::kFile, ReadFile}},
      {"show", {GestureKind::kShow, ReadShow}},
  };
  const auto form = words.front().quoted ? kForms.end() : kForms.find(words.front().text);
  if (form == kForms.end()) {
    throw NoGesture{"no gesture begins with \"" + words.front().text + '"'};
  }
  Gesture gesture{.kind = form->second.kind, .line = std::move(line)};
  Arguments rest(std::move(words));
  form->second.read(gesture, rest);
  rest.End();
  return gesture;
}

}  // namespace

std::vector<Gesture> ParseScript(std::string_view script, const std::string& name) {
  std::vector<Gesture> gestures;
  for (std::size_t from = 0, number = 1; from < script.size(); ++number) {
    const std::size_t end = std::min(script.find('\n', from), script.size());
    try {
      LineReader reader(script.substr(from, end - from));
      std::vector<Word> words = reader.Words();
      if (!words.empty()) {
        gestures.push_back(ParseLine(std::move(words), reader.Used()));
      }
    } catch (const NoGesture& error) {
      throw ScriptError(name + ":" + std::to_string(number) + ": " + error.why);
    }
    from = end + 1;
  }
  return gestures;
}

}  // namespace nimbrel::gestures
