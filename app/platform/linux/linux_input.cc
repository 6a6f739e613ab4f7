#include "app/platform/linux/linux_input.h"

#include <errno.h>
#include <string.h>

#include "app/platform/linux/uinput_input.h"
#include "app/platform/linux/xtest_input.h"

namespace platform {

std::string UinputAdvice(int errorCode) {
  switch (errorCode) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
      return "the kernel module uinput is not loaded (run \"modprobe uinput\" as root; to have it "
             "loaded at each start copy packaging/kelvaro-modules-load.conf to "
             "/etc/modules-load.d/kelvaro.conf)";
    case EACCES:
    case EPERM:
      return "no permission to open /dev/uinput (copy packaging/60-kelvaro.rules to "
             "/etc/udev/rules.d/, run \"udevadm control --reload && udevadm trigger "
             "--sysname-match=uinput\" as root, and log in again if that isn't enough)";
    default:
      return std::string("/dev/uinput can't be used: ") + strerror(errorCode);
  }
}

std::unique_ptr<LinuxInput> OpenLinuxInput(InputChoice choice, std::string* error) {
  std::string reason;
  if (choice != InputChoice::XTest) {
    int errorCode = 0;
    if (std::unique_ptr<LinuxInput> input = UinputInput::Open(&errorCode)) return input;
    reason = UinputAdvice(errorCode);
  }
  if (choice != InputChoice::Uinput) {
    std::string without;
    if (std::unique_ptr<LinuxInput> input = XTestInput::Open({}, &without)) return input;
    reason += (reason.empty() ? "" : "; and ") + without;
  }
  if (error) *error = "can't send keys: " + reason;
  return nullptr;
}

}  // namespace platform
