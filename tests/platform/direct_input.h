// What each test of a platform's devices does with them: list, scale the axes, poll.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "app/platform/devices.h"

namespace platform {

inline std::vector<DIDEVICEINSTANCE> Listed(DirectInput& directInput) {
  std::vector<DIDEVICEINSTANCE> list;
  EXPECT_EQ(directInput.EnumDevices(
                DI8DEVCLASS_GAMECTRL,
                [&](const DIDEVICEINSTANCE& instance) {
                  list.push_back(instance);
                  return true;
                },
                DIEDFL_ATTACHEDONLY),
            DI_OK);
  return list;
}

// Each axis to -32000..32000.
inline void ScaleAxes(DirectInputDevice& device) {
  EXPECT_EQ(device.EnumObjects(
                [&](std::uint32_t id) {
                  DIPROPRANGE range;
                  range.diph.dwObj = id;
                  range.diph.dwHow = DIPH_BYID;
                  range.lMin = -32000;
                  range.lMax = 32000;
                  EXPECT_EQ(device.SetProperty(DIPROP_RANGE, range), DI_OK);
                  return true;
                },
                DIDFT_AXIS),
            DI_OK);
}

inline DIJOYSTATE2 Polled(DirectInputDevice& device) {
  EXPECT_EQ(device.Poll(), DI_OK);
  DIJOYSTATE2 state;
  EXPECT_EQ(device.GetDeviceState(sizeof state, &state), DI_OK);
  return state;
}

}  // namespace platform
