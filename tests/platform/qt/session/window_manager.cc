#include "window_manager.h"

#include <cstdlib>
#include <memory>
#include <string_view>

namespace {

// Published values of WM_STATE.
constexpr std::uint32_t kNormal = 1;
constexpr std::uint32_t kIconic = 3;

template <typename T>
std::unique_ptr<T, decltype(&std::free)> Owned(T* memory) {
  return {memory, &std::free};
}

}  // namespace

WindowManager::WindowManager() : connection(xcb_connect(nullptr, nullptr)) {
  constexpr std::string_view name = "WM_STATE";
  const auto atom = Owned(xcb_intern_atom_reply(
      connection, xcb_intern_atom(connection, 0, name.size(), name.data()), nullptr));
  if (atom) stateAtom = atom->atom;
  const std::uint32_t events =
      XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection,
                               xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root,
                               XCB_CW_EVENT_MASK, &events);
  Handle();
}

WindowManager::~WindowManager() { xcb_disconnect(connection); }

void WindowManager::SetState(xcb_window_t window, std::uint32_t state) {
  const std::uint32_t value[] = {state, XCB_WINDOW_NONE};
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, stateAtom, stateAtom, 32, 2,
                      value);
}

void WindowManager::MakeIconic(xcb_window_t window) {
  SetState(window, kIconic);
  xcb_unmap_window(connection, window);
  xcb_flush(connection);
}

void WindowManager::Handle() {
  // An answer comes behind all events of what was done before.
  Owned(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
  while (const auto event = Owned(xcb_poll_for_event(connection))) {
    if ((event->response_type & 0x7F) == XCB_MAP_REQUEST) {
      const auto window = reinterpret_cast<xcb_map_request_event_t&>(*event).window;
      ++shown;
      SetState(window, kNormal);
      xcb_map_window(connection, window);
    } else if ((event->response_type & 0x7F) == XCB_CONFIGURE_REQUEST) {
      const auto& wish = reinterpret_cast<xcb_configure_request_event_t&>(*event);
      const std::uint32_t size[] = {wish.width, wish.height};
      xcb_configure_window(connection, wish.window,
                           XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
    } else if (event->response_type == (0x80 | XCB_UNMAP_NOTIFY)) {
      ++withdrawn;
    }
  }
  xcb_flush(connection);
}
