#pragma once
namespace kelvaro {
class DeviceErrorObject {
 public:
  virtual ~DeviceErrorObject() = default;
};
}  // namespace kelvaro
