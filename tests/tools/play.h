#pragma once

#include <functional>
#include <ostream>
#include <vector>

#include "engine/objects/host.h"
#include "platform/automation.h"
#include "platform/locale.h"
#include "tests/support/gestures/gesture_script.h"
#include "tests/support/gestures/hands.h"
#include "toolkit/desktop.h"

namespace nimbrel::gestures {

/// Plays a script on the plan that the host has open, with these hands, and writes the log to
/// `out`. Excel is whatever `servers` makes of its name. `open` shows a form on the desktop that it
/// is given; empty for the weather dialog, opened as the program does. One run at a time in a
/// process.
void PlayOnHost(engine::Host& host, std::vector<Gesture> script, Hands& hands,
                const platform::Locale& locale, platform::AutomationServers& servers,
                std::ostream& out, const std::function<void(toolkit::Desktop&)>& open = {});

}  // namespace nimbrel::gestures
