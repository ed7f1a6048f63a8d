#include "tests/tools/play.h"

#include <utility>

#include "dialog/frm_weather.h"
#include "host/cls_nimbrel.h"
#include "host/mod_global.h"
#include "tests/support/gestures/gesture_player.h"
#include "tests/tools/quiet_services.h"

namespace nimbrel::gestures {
namespace {

/// Makes the host the add-in's application for as long as it lives.
class Wired {
 public:
  Wired(engine::Host& host, const platform::Locale& locale) {
    modGlobal::Wire({[&host] { return platform::Ref<Corvane8::Application>(&host); }, locale});
  }
  ~Wired() { modGlobal::Wire({}); }
  Wired(const Wired&) = delete;
  Wired& operator=(const Wired&) = delete;
};

}  // namespace

void PlayOnHost(engine::Host& host, std::vector<Gesture> script, Hands& hands,
                const platform::Locale& locale, platform::AutomationServers& servers,
                std::ostream& out, const std::function<void(toolkit::Desktop&)>& open) {
  GesturePlayer player(std::move(script), hands, out);
  const Wired wired(host, locale);
  const QuietServices services(player, servers);
  host::Seams seams;
  seams.message_box = &player;
  seams.ShowWeatherDialog = [&player] { dialog::ShowWeatherDialog(player); };
  const auto entry = platform::MakeRef<host::clsNimbrel>(std::move(seams));
  player.Play([&] {
    if (open) {
      open(player);
    } else {
      entry->Main();
    }
  });
}

}  // namespace nimbrel::gestures
