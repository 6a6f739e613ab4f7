#include "app/platform/windows/ui/window_table.h"

#include <memory>

#include "app/platform/windows/ui/dialog_window.h"

namespace platform::ui {

bool WindowTable::OnOwnThread() const {
  return userInterface == 0 || userInterface == GetCurrentThreadId();
}

void WindowTable::Add(HWND handle, DialogWindow* window, std::set<std::uint32_t> controls) {
  userInterface = GetCurrentThreadId();
  const std::lock_guard<std::mutex> guard(mutex);
  windows[handle] = {window, std::move(controls)};
}

void WindowTable::Remove(HWND handle) {
  const std::lock_guard<std::mutex> guard(mutex);
  windows.erase(handle);
}

DialogWindow* WindowTable::Find(WindowHandle handle) const {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(SystemWindow(handle));
  return found == windows.end() ? nullptr : found->second.window;
}

bool WindowTable::PostTo(HWND handle, Call act) {
  auto owned = std::make_unique<Call>(std::move(act));
  if (!PostMessageW(handle, kPostedCall, 0, reinterpret_cast<LPARAM>(owned.get()))) return false;
  static_cast<void>(owned.release());
  return true;
}

bool WindowTable::Post(WindowHandle handle, Call act) {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(SystemWindow(handle));
  return found != windows.end() && PostTo(found->first, std::move(act));
}

bool WindowTable::UpdateLater(WindowHandle handle, std::uint32_t control,
                              const ControlUpdate& update) {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(SystemWindow(handle));
  if (found == windows.end() || !found->second.controls.contains(control)) return false;
  if (!found->second.updates.Add(control, update)) return true;
  return PostTo(found->first, [](DialogWindow& window) { window.ApplyUpdates(); });
}

PendingUpdates::All WindowTable::TakeUpdates(HWND handle) {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(handle);
  return found == windows.end() ? PendingUpdates::All() : found->second.updates.Take();
}

void WindowTable::DropText(WindowHandle handle, std::uint32_t control) {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(SystemWindow(handle));
  if (found != windows.end()) found->second.updates.DropText(control);
}

void WindowTable::DropCheck(WindowHandle handle, std::uint32_t control) {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(SystemWindow(handle));
  if (found != windows.end()) found->second.updates.DropCheck(control);
}

}  // namespace platform::ui
