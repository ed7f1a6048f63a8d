#include "toolkit/desktop.h"

#include "toolkit/form.h"

namespace nimbrel::toolkit {
namespace {

/// Counts a value up for as long as it lives.
class Counted {
 public:
  explicit Counted(int& count) : count_(count) { ++count_; }
  ~Counted() { --count_; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

 private:
  int& count_;
};

}  // namespace

Answer Desktop::MsgBox(const std::string& text, const std::string& title, Buttons buttons) {
  return ShowBox({text, title, buttons, false});
}

void Desktop::Show(const std::string& text, const std::string& title) {
  MsgBox(text, title);
}

std::string Desktop::PickFile(const FileRequest& request) {
  const Counted open(open_boxes_);
  return ShowFileDialog(request);
}

Answer Desktop::ShowBox(const Message& message) {
  const Counted open(open_boxes_);
  return ShowMessage(message);
}

void Desktop::RunForm(Form& form) {
  forms_.push_back(&form);
  try {
    RunModal(form);
  } catch (...) {
    std::erase(forms_, &form);
    throw;
  }
  std::erase(forms_, &form);
}

void Desktop::ReportError(std::int32_t number, const std::string& text, const std::string& title) {
  if (log_ != nullptr) {
    log_->OnError(number, text);
  }
  ShowBox({text, title, Buttons::kOk, true});
}

EventScope::EventScope(Desktop& desktop, EventLog::Event event) : desktop_(desktop) {
  if (desktop_.log_ != nullptr) {
    event.depth = desktop_.event_depth_;
    desktop_.log_->OnEvent(event);
  }
  ++desktop_.event_depth_;
}

EventScope::~EventScope() {
  --desktop_.event_depth_;
}

}  // namespace nimbrel::toolkit
