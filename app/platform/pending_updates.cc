#include "app/platform/pending_updates.h"

#include <algorithm>

namespace platform {

bool PendingUpdates::Add(std::uint32_t control, const ControlUpdate& update) {
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
  return first;
}

void PendingUpdates::DropText(std::uint32_t control) {
  if (ControlUpdate* update = Find(control)) update->text.reset();
}

void PendingUpdates::DropCheck(std::uint32_t control) {
  if (ControlUpdate* update = Find(control)) update->checked.reset();
}

ControlUpdate* PendingUpdates::Find(std::uint32_t control) {
  for (auto& [id, update] : updates) {
    if (id == control) return &update;
  }
  return nullptr;
}

}  // namespace platform
