#include "close_box.h"

#include <QGuiApplication>
#include <QTest>
#include <cstring>

xcb_connection_t* xConnection() {
  auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 != nullptr ? x11->connection() : nullptr;
}

xcb_atom_t internAtom(const char* name) {
  xcb_connection_t* connection = xConnection();
  xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(
      connection, xcb_intern_atom(connection, 0, static_cast<uint16_t>(std::strlen(name)), name),
      nullptr);
  const xcb_atom_t result = reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  std::free(reply);
  return result;
}

bool clickCloseBox(QWidget* window) {
  xcb_connection_t* connection = xConnection();
  if (connection == nullptr) {
    return false;
  }
  // The message a window manager sends when the user clicks a close box.
  xcb_client_message_event_t event;
  std::memset(&event, 0, sizeof event);
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = static_cast<xcb_window_t>(window->winId());
  event.type = internAtom("WM_PROTOCOLS");
  event.data.data32[0] = internAtom("WM_DELETE_WINDOW");
  event.data.data32[1] = XCB_CURRENT_TIME;
  xcb_send_event(connection, 0, event.window, XCB_EVENT_MASK_NO_EVENT,
                 reinterpret_cast<const char*>(&event));
  xcb_flush(connection);
  return QTest::qWaitFor([window] { return !window->isVisible(); }, 5000);
}
