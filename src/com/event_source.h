#pragma once

#include <array>
#include <memory>
#include <vector>

#include "com/com_ptr.h"
#include "com/dispatch.h"
#include "host/corvane8.h"

namespace nimbrel::com {

/// The events that a host's Application raises, as its type library describes them.
struct EventNumbers {
  IID interface_id = {};
  /// In the order of Corvane8::ApplicationEvents.
  std::array<DISPID, 4> ids = {};
};

/// The event interface of an object of the class `class_id`: from the type library that the class
/// is registered with, else from what the object tells of its class, else from the type library
/// that the object's interface stands in. Raises error 459 where none has the four events.
EventNumbers FindEvents(IUnknown& object, REFCLSID class_id);

/// Subscriptions to the events of one host object.
class EventSource {
 public:
  EventSource(ComPtr<IUnknown> object, REFCLSID class_id, std::shared_ptr<MemberIds> ids);
  ~EventSource();
  EventSource(const EventSource&) = delete;
  EventSource& operator=(const EventSource&) = delete;

  /// Sends the events to `events`, which stays the caller's until it is unsubscribed. An error that
  /// it lets out goes to the host. Raises the errors of the host, and error 459 if it has no such
  /// events.
  void Subscribe(Corvane8::ApplicationEvents* events);
  /// Ends the last subscription of `events`; without one it does nothing. No event reaches `events`
  /// afterwards, also where the host has ended or fails at this, which raises nothing.
  void Unsubscribe(Corvane8::ApplicationEvents* events);

 private:
  class Sink;
  struct Subscription {
    Corvane8::ApplicationEvents* events;
    ComPtr<Sink> sink;
    DWORD cookie;
  };

  void End(const Subscription& subscription);
  ComPtr<IConnectionPoint> ConnectionPoint();

  ComPtr<IUnknown> object_;
  CLSID class_id_;
  std::shared_ptr<MemberIds> ids_;
  std::vector<Subscription> subscriptions_;
  bool known_ = false;
  EventNumbers numbers_;
};

}  // namespace nimbrel::com
