#include "dialog/new_calendar_name.h"

#include <cstddef>
#include <string>

#include "dialog/message_title.h"
#include "host/mod_global.h"
#include "platform/text.h"
#include "toolkit/form.h"

namespace nimbrel::dialog {
namespace {

constexpr std::size_t kLongestName = 15;

}  // namespace

bool TakeNewCalendarName(toolkit::TextBox& txtCalName) {
  toolkit::Desktop& desktop = txtCalName.OwnerForm().OwnerDesktop();
  txtCalName.SetText(platform::UpperCase(txtCalName.Text()));
  txtCalName.SetText(std::string(platform::FirstCharacters(txtCalName.Text(), kLongestName)));
  if (txtCalName.Text().empty()) {
    desktop.Show("Please enter a name of the calendar.", kMessageTitle);
    return false;
  }
  const auto plan = modGlobal::Application()->get_ActivePlan();
  for (const auto& calendar : plan->get_Calendars()->Elements()) {
    if (calendar->get_Name() == txtCalName.Text()) {
      desktop.Show("This calendar already exists. Please enter a new name.", kMessageTitle);
      return false;
    }
  }
  return true;
}

}  // namespace nimbrel::dialog
