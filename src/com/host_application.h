#pragma once

#include <string>

#include "com/event_source.h"
#include "com/host_objects.h"

namespace nimbrel::com {

/// The programmatic identifier of the running host.
inline constexpr const char* kApplicationIdentifier = "Corvane8.Application";

/// The running host.
class HostApplication final : public Corvane8::Application, public HostObject {
 public:
  /// `object` is the host's Application, of the class `class_id`.
  HostApplication(const ComPtr<IDispatch>& object, REFCLSID class_id);

  Ref<Corvane8::Plan> get_ActivePlan() override;
  std::string get_Path() override;
  Long get_hWnd() override;
  void Subscribe(Corvane8::ApplicationEvents* events) override { events_.Subscribe(events); }
  void Unsubscribe(Corvane8::ApplicationEvents* events) override { events_.Unsubscribe(events); }

 private:
  EventSource events_;
};

/// The host's Application by its programmatic identifier: the one of the running host where that
/// has made it known. Raises error 429 if there is none.
Ref<Corvane8::Application> CreateHostApplication(
    const std::string& identifier = kApplicationIdentifier);

}  // namespace nimbrel::com
