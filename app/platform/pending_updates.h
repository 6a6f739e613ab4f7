// What other threads want to be shown in the controls of one window, until the user interface's
// thread takes it over. What was set last is what is shown. The owner guards it by a lock.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace platform {

// What is to become of a control.
struct ControlUpdate {
  std::optional<std::string> text = std::nullopt;
  std::optional<bool> checked = std::nullopt;
  bool redraw = false;
};

class PendingUpdates {
 public:
  using All = std::vector<std::pair<std::uint32_t, ControlUpdate>>;

  // True when nothing was waiting before: then the other thread is to be told.
  bool Add(std::uint32_t control, const ControlUpdate& update);
  // Oldest first.
  All Take() { return std::exchange(updates, {}); }
  // What is set now goes over what was asked for before.
  void DropText(std::uint32_t control);
  void DropCheck(std::uint32_t control);

 private:
  ControlUpdate* Find(std::uint32_t control);

  All updates;
};

}  // namespace platform
