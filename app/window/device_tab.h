// The Device tab: which device the profile uses and how often it is polled.
#pragma once

#include <cstdint>

#include "app/window/mouse_tab.h"
#include "app/window/session.h"
#include "foundation/registry_key.h"

namespace kelvaro {

constexpr char kNoDeviceText[] = "-- None --";

class DeviceTab : public Pane {
 public:
  DeviceTab(Session& session, MouseTab& mouseTab) : Pane(session), mouseTab(mouseTab) {}

  void FillDeviceList();
  void SelectDeviceInList(const platform::GUID& guid);  // the row of that device, else of none
  // Both tabs, from the profile, the engine and the device manager all at once: after anything that
  // changed more than one of them.
  void ShowMouseAndDeviceState();

  void ApplyProfileDevice();  // it comes into use, or none is when it can't
  void RefreshDeviceList();
  bool IsBeingTyped() const;  // a number of the poll interval that its field wasn't left with yet
  bool AwaitsDevice() const;  // each look of the timer could bring one into use
  // What a person is to be told of a profile whose device isn't in use; empty for nothing.
  ByteString WarningText() const;

  // Selects the device of the last time, by its name, and takes its values. False when one of these
  // is missing; true when no such device is attached.
  bool LoadLastDevice(const ByteString& name);

  void OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) override;

  std::uint32_t pollInterval = 0;  // ms; what "Defaults" goes back to

 private:
  void ShowSelectedDevice();
  void OnDeviceSelected();
  void OnIntervalLeft();
  void OnRateLeft();
  void OnDefaultRate();
  bool PollFieldsCount() const;  // whether leaving one has a meaning now
  bool ReadPollFields();         // false, after the message, when one isn't a number
  // A message about the field, which then has the focus again.
  void RefuseField(std::uint32_t fieldId, const ByteString& text, const ByteString& caption,
                   std::uint32_t type);
  void ApplyPollInterval(std::uint32_t interval);

  MouseTab& mouseTab;
  std::uint32_t intervalField = 0;
  std::uint32_t rateField = 0;
};

}  // namespace kelvaro
