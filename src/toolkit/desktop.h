#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/message_box.h"

namespace nimbrel::toolkit {

class Form;

enum class Buttons { kOk, kYesNo };
enum class Answer { kOk, kYes, kNo };

/// A message box. It has no icon. All texts are UTF-8; "\r\n" and "\n" both end a line.
struct Message {
  std::string text;
  std::string title;
  Buttons buttons = Buttons::kOk;
  /// Whether it is a form's default handling that shows the text of an error.
  bool reports_error = false;
};

/// What a file dialog asks for.
struct FileRequest {
  std::string title{};
  std::string folder{};       ///< where it starts; empty for wherever the platform starts
  std::string filter_name{};  ///< such as "xls (*.xls;*.xlsx)"
  std::string pattern{};      ///< such as "*.xls;*.xlsx"
  std::string file_name{};    ///< offered; may be empty
  bool save = false;
};

/// Hears what happens on the forms of a desktop. It must not call back into the toolkit.
class EventLog {
 public:
  virtual ~EventLog() = default;

  /// An event is about to reach its handler. `control` is a control's name, or the form's own;
  /// `argument` is empty if the event has none: a text is given as it is, with `quoted` set, a
  /// number in decimal. `depth` counts the events whose handlers are running.
  struct Event {
    std::string_view control;
    std::string_view event;
    std::string_view argument;
    bool quoted = false;
    int depth = 0;
  };
  virtual void OnEvent(const Event& event) = 0;
  /// An error has reached the default handling of a form.
  virtual void OnError(std::int32_t number, const std::string& text) = 0;
};

/// Where forms are shown: the stack of modal forms, message boxes and file dialogs. A face, or a
/// test, implements the three operations that need a window system or a stand-in.
class Desktop : public platform::MessageBox {
 public:
  Desktop() = default;
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  /// Shows a message box and waits for its answer; meanwhile no form takes a gesture.
  Answer MsgBox(const std::string& text, const std::string& title, Buttons buttons = Buttons::kOk);
  /// MsgBox with OK alone.
  void Show(const std::string& text, const std::string& title) override;
  /// Shows a file dialog and gives the path, UTF-8, or the empty text if it was cancelled.
  std::string PickFile(const FileRequest& request);

  /// The form that takes gestures: the modal form shown last. Null when none is open.
  Form* Top() const { return forms_.empty() ? nullptr : forms_.back(); }
  /// Whether a message box or file dialog is open.
  bool BoxIsOpen() const { return open_boxes_ > 0; }

  /// `log` hears all events from now on and must outlive its use; null for none.
  void SetEventLog(EventLog* log) { log_ = log; }

 protected:
  /// Opens the form and takes gestures for it until it is no longer Visible. Called nested, for a
  /// form that is shown from a handler of another one.
  virtual void RunModal(Form& form) = 0;
  /// Shows the message box and waits. Must give an answer that the buttons have.
  virtual Answer ShowMessage(const Message& message) = 0;
  /// Shows the file dialog and waits; the empty text means cancelled.
  virtual std::string ShowFileDialog(const FileRequest& request) = 0;

 private:
  friend class Form;
  friend class EventScope;

  void RunForm(Form& form);
  void ReportError(std::int32_t number, const std::string& text, const std::string& title);
  Answer ShowBox(const Message& message);

  std::vector<Form*> forms_;
  EventLog* log_ = nullptr;
  int event_depth_ = 0;
  int open_boxes_ = 0;
};

/// The time in which a handler runs: tells the log at its start and counts the depth.
class EventScope {
 public:
  EventScope(Desktop& desktop, EventLog::Event event);
  ~EventScope();
  EventScope(const EventScope&) = delete;
  EventScope& operator=(const EventScope&) = delete;

 private:
  Desktop& desktop_;
};

}  // namespace nimbrel::toolkit
