#include "app/platform/qt/window_table.h"

#include <QCoreApplication>
#include <algorithm>

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
  Updates& updates = found->second.updates;
  const bool first = updates.empty();

  ControlUpdate all = update;
  const auto former = std::find_if(updates.begin(), updates.end(),
                                   [&](const auto& entry) { return entry.first == control; });
  if (former != updates.end()) {
    if (!all.text) all.text = std::move(former->second.text);
    if (!all.checked) all.checked = former->second.checked;
    all.redraw = all.redraw || former->second.redraw;
    updates.erase(former);
  }
  updates.emplace_back(control, std::move(all));
  if (first) PostTo(found->second.window, [](DialogWindow& window) { window.ApplyUpdates(); });
  return true;
}

WindowTable::Updates WindowTable::TakeUpdates(WindowHandle handle) {
  const std::lock_guard<std::mutex> guard(mutex);
  const auto found = windows.find(handle);
  return found == windows.end() ? Updates() : std::exchange(found->second.updates, {});
}

ControlUpdate* WindowTable::FindUpdate(WindowHandle handle, std::uint32_t control) {
  const auto found = windows.find(handle);
  if (found == windows.end()) return nullptr;
  for (auto& [id, update] : found->second.updates) {
    if (id == control) return &update;
  }
  return nullptr;
}

void WindowTable::DropText(WindowHandle handle, std::uint32_t control) {
  const std::lock_guard<std::mutex> guard(mutex);
  if (ControlUpdate* update = FindUpdate(handle, control)) update->text.reset();
}

void WindowTable::DropCheck(WindowHandle handle, std::uint32_t control) {
  const std::lock_guard<std::mutex> guard(mutex);
  if (ControlUpdate* update = FindUpdate(handle, control)) update->checked.reset();
}

}  // namespace platform::qt
