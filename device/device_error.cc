#include "device/device_error.h"

#include <algorithm>

namespace kelvaro {

namespace {
constexpr const char kNoError[] = "No Error";
}

DeviceErrorObject::DeviceErrorObject() : errorText(kNoError) {}

DeviceErrorObject::~DeviceErrorObject() = default;

void DeviceErrorObject::ClearError() { SetErrorText(0, kNoError); }

void DeviceErrorObject::SetErrorTable(const ErrorTableEntry* table, std::uint32_t count) {
  errorTable = table;
  errorTableCount = table ? count : 0;
}

const ErrorTableEntry* DeviceErrorObject::GetErrorTable(std::uint32_t* count) const {
  if (count) *count = errorTableCount;
  return errorTable;
}

std::int32_t DeviceErrorObject::GetError(ByteString& text) const { return PeekError(&text); }

std::int32_t DeviceErrorObject::PeekError(ByteString* text) const {
  if (text) *text = errorText;
  return errorNumber;
}

void DeviceErrorObject::SetTableError(std::int32_t number, const ByteString& extra,
                                      std::int32_t how) {
  const ErrorTableEntry* const end = errorTable + errorTableCount;
  const ErrorTableEntry* const entry = std::find_if(
      errorTable, end, [number](const ErrorTableEntry& e) { return e.number == number; });
  ByteString text(entry == end ? "" : entry->text);
  if (how == kExtraQuoted) text.Append(", \"");
  if (how == kExtraAfterLf) text.Append("\n");
  if (how == kExtraAfterCrLf) text.Append("\r\n");
  text.Append(extra);
  if (how == kExtraQuoted) text.Append("\"");
  SetErrorText(number, text);
}

void DeviceErrorObject::SetTableError(std::int32_t number, const char* extra, std::int32_t how) {
  SetTableError(number, ByteString(extra), how);
}

void DeviceErrorObject::SetErrorText(std::int32_t number, const ByteString& text) {
  errorNumber = number;
  errorText = text;
}

void DeviceErrorObject::SetErrorText(std::int32_t number, const char* text) {
  SetErrorText(number, ByteString(text));
}

}  // namespace kelvaro
