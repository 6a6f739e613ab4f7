#include "app/platform/qt/window_table.h"

#include <QCoreApplication>

#include "app/platform/qt/dialog_window.h"
#include "app/platform/threads.h"

namespace platform::qt {

bool WindowTable::OnOwnThread() const {
  return userInterface == 0 || userInterface == threads().GetCurrentThreadId();
}

WindowHandle WindowTable::Add(DialogWindow* window, std::set<std::uint32_t> controls) {
  userInterface = threads().GetCurrentThreadId();
  const std::lock_guard<std::mutex> guard(mutex);
  windows[++last] = {window, std::move(controls)};
  return last;
}

void WindowTable::Remove(WindowHandle handle) {
  const std::lock_guard<std::mutex> guard(mutex);
  windows.erase(handle);
}

DialogWindow* WindowTable::Find(WindowHandle handle) const {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(handle);
  return found == windows.end() ? nullptr : found->second.window;
}

void WindowTable::SetState(WindowHandle handle, bool visible, bool iconic) {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(handle);
  if (found == windows.end()) return;
  found->second.visible = visible;
  found->second.iconic = iconic;
}

std::vector<TopLevelWindow> WindowTable::TopLevelWindows() const {
  const std::lock_guard<std::mutex> guard(mutex);
  std::vector<TopLevelWindow> all;
  for (const auto& [handle, entry] : windows)
    all.push_back({handle, 0, entry.visible, entry.iconic});
  return all;
}

void WindowTable::PostTo(DialogWindow* window, std::function<void(DialogWindow&)> act) {
  QCoreApplication::postEvent(window, new PostedCall(std::move(act)));
}

bool WindowTable::Post(WindowHandle handle, std::function<void(DialogWindow&)> act) {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(handle);
  if (found == windows.end()) return false;
  PostTo(found->second.window, std::move(act));
  return true;
}

bool WindowTable::UpdateLater(WindowHandle handle, std::uint32_t control,
                              const ControlUpdate& update) {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(handle);
  if (found == windows.end() || !found->second.controls.contains(control)) return false;
  const bool first = found->second.updates.Add(control, update);
  if (first) PostTo(found->second.window, [](DialogWindow& window) { window.ApplyUpdates(); });
  return true;
}

PendingUpdates::All WindowTable::TakeUpdates(WindowHandle handle) {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(handle);
  return found == windows.end() ? PendingUpdates::All() : found->second.updates.Take();
}

void WindowTable::DropText(WindowHandle handle, std::uint32_t control) {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(handle);
  if (found != windows.end()) found->second.updates.DropText(control);
}

void WindowTable::DropCheck(WindowHandle handle, std::uint32_t control) {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(handle);
  if (found != windows.end()) found->second.updates.DropCheck(control);
}

}  // namespace platform::qt
