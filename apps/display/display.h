#pragma once

namespace nimbrel::display {

/// Whether windows can be shown. To be asked before there is an application object, which would end
/// the process where they cannot. Tries it out in a process of its own, silently, and so has to be
/// called while this one has no other threads.
bool CanShowWindows();

}  // namespace nimbrel::display
