#include "host/cls_nimbrel.h"

#include <utility>

#include "host/mod_global.h"

namespace nimbrel::host {

clsNimbrel::clsNimbrel(Seams seams) : seams_(std::move(seams)) {}

void clsNimbrel::Main() {
  if (modGlobal::Application()->get_ActivePlan().IsNothing()) {
    seams_.message_box->Show("There is no active plan.", "Weather Modeling");
    return;
  }
  if (seams_.ShowWeatherDialog) {
    seams_.ShowWeatherDialog();
  }
}

void clsNimbrel::LaunchStartCorvane() {
  if (m_oCorvane.IsNothing()) {
    m_oCorvane = platform::MakeRef<clsCorvane>(seams_.handlers);
    m_oCorvane->StartCorvane();
  }
}

void clsNimbrel::LaunchStopCorvane() {
  if (!m_oCorvane.IsNothing()) {
    m_oCorvane->StopCorvane();
  }
  m_oCorvane = nullptr;
}

}  // namespace nimbrel::host
