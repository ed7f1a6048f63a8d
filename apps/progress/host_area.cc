#include "progress/host_area.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <cstdlib>
#include <memory>

namespace nimbrel::progress {
namespace {

struct Release {
  void operator()(void* reply) const { std::free(reply); }
};
template <class Reply>
using Owned = std::unique_ptr<Reply, Release>;

}  // namespace

QRect HostArea(std::int32_t window) {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (window == 0 || x11 == nullptr) {
    return {};
  }
  xcb_connection_t* connection = x11->connection();
  const auto id = static_cast<xcb_window_t>(window);
  const Owned<xcb_get_geometry_reply_t> size(
      xcb_get_geometry_reply(connection, xcb_get_geometry(connection, id), nullptr));
  if (!size) {
    return {};
  }
  // Its own place is told in the frame that the window manager has put around it.
  const Owned<xcb_translate_coordinates_reply_t> corner(xcb_translate_coordinates_reply(
      connection, xcb_translate_coordinates(connection, id, size->root, 0, 0), nullptr));
  if (!corner) {
    return {};
  }
  const QRectF native(corner->dst_x, corner->dst_y, size->width, size->height);
  const qreal scale = qGuiApp->devicePixelRatio();
  return QRectF(native.topLeft() / scale, native.size() / scale).toRect();
}

}  // namespace nimbrel::progress
