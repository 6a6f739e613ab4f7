#include "device/device_error.h"

namespace kelvaro {

namespace {
constexpr const char kNoError[] = "No Error";
}

DeviceErrorObject::DeviceErrorObject() : errorText(kNoError) {}

DeviceErrorObject::~DeviceErrorObject() = default;

void DeviceErrorObject::ClearError() {
  errorNumber = 0;
  errorText = kNoError;
}

void DeviceErrorObject::SetErrorTable(const ErrorTableEntry* table, std::uint32_t count) {
  errorTable = table;
  errorTableCount = table ? count : 0;
}

const ErrorTableEntry* DeviceErrorObject::GetErrorTable(std::uint32_t* count) const {
  if (count) *count = errorTableCount;
  return errorTable;
}

std::int32_t DeviceErrorObject::GetError(ByteString& text) const {
  text = errorText;
  return errorNumber;
}

std::int32_t DeviceErrorObject::PeekError(ByteString* text) const {
  if (text) *text = errorText;
  return errorNumber;
}

void DeviceErrorObject::SetTableError(std::int32_t number, const ByteString& extra,
                                      std::int32_t how) {
  ByteString text;
  for (std::uint32_t i = 0; i < errorTableCount; ++i) {
    if (errorTable[i].number == number) {
      text = errorTable[i].text;
      break;
    }
  }
  switch (how) {
    case kExtraQuoted:
      text.Append(", \"");
      text.Append(extra);
      text.Append("\"");
      break;
    case kExtraAfterLf:
      text.Append("\n");
      text.Append(extra);
      break;
    case kExtraAfterCrLf:
      text.Append("\r\n");
      text.Append(extra);
      break;
    default:
      text.Append(extra);
  }
  errorNumber = number;
  errorText = text;
}

void DeviceErrorObject::SetTableError(std::int32_t number, const char* extra, std::int32_t how) {
  SetTableError(number, ByteString(extra), how);
}

void DeviceErrorObject::SetErrorText(std::int32_t number, const ByteString& text) {
  errorNumber = number;
  errorText = text;
}

void DeviceErrorObject::SetErrorText(std::int32_t number, const char* text) {
  errorNumber = number;
  errorText = text;
}

}  // namespace kelvaro
