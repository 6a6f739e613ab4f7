// What the simulated operations have in common: the log of calls, and the faults that are planned
// for them. Operations are known by their published names.
//
// A call is a line: the name, then those arguments that tell calls apart, in their order and parted
// by blanks, such as "timeSetEvent 10 1", "CreateThread repeat", "SetProperty 0 -32000 32000" (the
// axis by its place in EnumObjects), "RegOpenKeyA HKCU\Software" (the whole path; "?" where the
// handle isn't open). Numbers are decimal; handles and timers are numbered from 1, each apart. The
// directory's "Release DirectInput" is told from a device's "Release". Waits for objects and sent
// events, which come by the thousand, have no line; a thread's end has: "ThreadEnded repeat 0".
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/platform/direct_input.h"

namespace platform::simulation {

class Journal {
 public:
  Journal() = default;
  ~Journal();
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  // Notes the call, if calls are kept. The result that is planned for it, if one is.
  template <typename... Arguments>
  std::optional<HRESULT> Enter(std::string_view operation, const Arguments&... arguments) {
    if (logging) {
      std::string line(operation);
      ((line += ' ', line += Text(arguments)), ...);
      calls.push_back(std::move(line));
    }
    return EnterUnnoted(operation);
  }

  std::optional<HRESULT> Enter(std::string_view operation,
                               std::initializer_list<std::int64_t> arguments) {
    if (logging) {
      std::string& line = calls.emplace_back(operation);
      for (const std::int64_t argument : arguments) line += ' ' + std::to_string(argument);
    }
    return EnterUnnoted(operation);
  }

  // The same for a wait or an event sent, which isn't noted.
  std::optional<HRESULT> EnterUnnoted(std::string_view operation) {
    return plans.empty() ? std::nullopt : Planned(operation);
  }

  // Whether calls are noted, which they aren't at first.
  void LogCalls(bool log) { logging = log; }
  // In their order, those that failed included.
  const std::vector<std::string>& Calls() const { return calls; }
  void ClearCalls() { calls.clear(); }

  // The next `times` calls of that operation ("CreateThread", "CreateEventA auto", ...) fail and do
  // nothing; an operation with a result code gives `result`. A device operation for which that is a
  // success (DI_OK, DI_NOEFFECT) is carried out and then gives it. Sleep, GetTickCount,
  // GetCurrentThreadId and Release can't fail. A fault that never comes, and isn't mended, ends the
  // program with the Journal.
  void FailNext(const std::string& operation, HRESULT result = DIERR_INVALIDPARAM,
                std::uint64_t times = 1);
  // So does every call from then on, until Mend.
  void FailAlways(const std::string& operation, HRESULT result = DIERR_INVALIDPARAM) {
    FailNext(operation, result, UINT64_MAX);
  }
  void Mend(const std::string& operation) { plans.erase(operation); }

 private:
  struct Fault {
    HRESULT result = 0;
    std::uint64_t times = 0;
    bool came = false;
  };

  static std::string Text(std::string_view text) { return std::string(text); }
  static std::string Text(std::int64_t number) { return std::to_string(number); }
  std::optional<HRESULT> Planned(std::string_view operation);

  bool logging = false;
  std::vector<std::string> calls;
  std::map<std::string, Fault, std::less<>> plans;
};

}  // namespace platform::simulation
