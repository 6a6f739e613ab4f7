// The last error of an object, as a number and a text, with an optional table that gives numbers
// their texts. An operation that fails sets it and answers with its own result; the caller may ask
// why afterwards. No locking: the thread that runs the operations asks.
#pragma once

#include <cstdint>

#include "foundation/byte_string.h"

namespace kelvaro {

struct ErrorTableEntry {
  std::int32_t number;
  const char* text;  // null counts as empty
};

class DeviceErrorObject {
 public:
  // How SetTableError joins the extra text to that of the table. Any other value: directly.
  static constexpr std::int32_t kExtraQuoted = 1;     // , "extra"
  static constexpr std::int32_t kExtraAfterLf = 2;    // behind a line feed
  static constexpr std::int32_t kExtraAfterCrLf = 3;  // behind a carriage return and line feed

  DeviceErrorObject();
  virtual ~DeviceErrorObject();

  // Number 0 and "No Error", as at the start.
  virtual void ClearError();

  // Borrows `count` entries, which must outlive this; null or a count of 0 for no table.
  virtual void SetErrorTable(const ErrorTableEntry* table, std::uint32_t count);
  // The table, null for none; *count, unless null, gets the number of its entries.
  virtual const ErrorTableEntry* GetErrorTable(std::uint32_t* count) const;

  // The number, 0 for none; *text gets the text. Neither changes the error.
  virtual std::int32_t GetError(ByteString& text) const;
  virtual std::int32_t PeekError(ByteString* text) const;  // text may be null

  // Sets `number` and its text from the table (of several entries the first; empty without one),
  // with `extra` joined to it as `how` says. An empty `extra` still brings its quotes or line end.
  virtual void SetTableError(std::int32_t number, const ByteString& extra, std::int32_t how);
  virtual void SetTableError(std::int32_t number, const char* extra, std::int32_t how);

  virtual void SetErrorText(std::int32_t number, const ByteString& text);
  virtual void SetErrorText(std::int32_t number, const char* text);

 private:
  std::int32_t errorNumber = 0;
  ByteString errorText;
  const ErrorTableEntry* errorTable = nullptr;
  std::uint32_t errorTableCount = 0;
};

}  // namespace kelvaro
