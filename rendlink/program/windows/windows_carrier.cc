#include "rendlink/program/windows/windows_carrier.h"

#include <cstdint>
#include <cstring>
#include <ostream>
#include <utility>
#include <vector>

#include "app/platform/windows/owned_handle.h"
#include "app/platform/windows/ui/text.h"
#include "app/platform/windows/win32.h"
#include "rendlink/files.h"
#include "rendlink/program/windows/output.h"
#include "rendlink/program/windows/windows_session.h"

namespace kelvaro::rendlink {
namespace {

using platform::OwnedHandle;
using platform::ui::Wide;

// Who has the memory: whoever comes first of a carrier that takes it and a Rendlink that ends.
enum : LONG { kWaits, kTaken, kClosed };

// What lies at its beginning; texts, each with a zero behind it, follow.
struct Head {
  LONG state;
  std::uint32_t texts;  // bytes
  // Handles of the first process; 0 for none.
  std::uint64_t output;
  std::uint64_t errors;
  std::uint64_t carrier;  // the process, which the carrier puts there
  // What became of the game.
  std::uint32_t error;  // of starting it
  std::uint32_t ended;
};

std::uint64_t Number(HANDLE handle) { return reinterpret_cast<std::uintptr_t>(handle); }
HANDLE HandleOf(std::uint64_t number) { return reinterpret_cast<HANDLE>(number); }

std::uint64_t PassedOn(DWORD which) {
  const HANDLE stream = StandardStream(which);
  DWORD mode = 0;
  // A console isn't to be had by a process that isn't on it.
  return stream && !GetConsoleMode(stream, &mode) ? Number(stream) : 0;
}

}  // namespace

class Handover {
 public:
  // With these texts, in the first process; no Head() where there is no memory.
  explicit Handover(const std::vector<std::wstring>& texts) {
    std::wstring all;
    for (const std::wstring& text : texts) all.append(text).push_back(L'\0');
    const DWORD bytes = static_cast<DWORD>(all.size() * sizeof(wchar_t));
    section = OwnedHandle(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                             sizeof(Head) + bytes, nullptr));
    Map();
    if (!head) return;
    head->texts = bytes;
    head->output = PassedOn(STD_OUTPUT_HANDLE);
    head->errors = PassedOn(STD_ERROR_HANDLE);
    std::memcpy(head + 1, all.data(), bytes);
  }
  // The carrier's; no Head() where it isn't such a section.
  explicit Handover(OwnedHandle taken) : section(std::move(taken)) {
    Map();
    MEMORY_BASIC_INFORMATION facts = {};
    if (!head || (VirtualQuery(head, &facts, sizeof facts) == sizeof facts &&
                  facts.RegionSize >= sizeof(Head) + std::uint64_t{head->texts}))
      return;
    UnmapViewOfFile(head);
    head = nullptr;
  }
  ~Handover() {
    if (head) UnmapViewOfFile(head);
  }
  Handover(const Handover&) = delete;
  Handover& operator=(const Handover&) = delete;

  Head* operator->() const { return head; }
  explicit operator bool() const { return head != nullptr; }
  HANDLE Section() const { return section.Get(); }

  std::vector<std::wstring> Texts() const {
    const std::wstring all(reinterpret_cast<const wchar_t*>(head + 1),
                           head->texts / sizeof(wchar_t));
    std::vector<std::wstring> texts;
    for (std::size_t at = 0, end; (end = all.find(L'\0', at)) != std::wstring::npos; at = end + 1)
      texts.push_back(all.substr(at, end - at));
    return texts;
  }
  // Whether this process has it now.
  bool Get(LONG state) { return InterlockedCompareExchange(&head->state, state, kWaits) == kWaits; }

 private:
  void Map() {
    if (section)
      head = static_cast<Head*>(MapViewOfFile(section.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 0));
  }

  OwnedHandle section;
  Head* head = nullptr;
};

namespace {

// One handle of another process as one of this; none for 0.
OwnedHandle TakeFrom(const OwnedHandle& process, std::uint64_t number, bool inherited) {
  HANDLE taken = nullptr;
  if (number == 0 || !DuplicateHandle(process.Get(), HandleOf(number), GetCurrentProcess(), &taken,
                                      0, inherited, DUPLICATE_SAME_ACCESS))
    return OwnedHandle();
  return OwnedHandle(taken);
}

// The game's process, or none with the error in the Head. Its output goes where that of the first
// Rendlink goes; its input is empty.
OwnedHandle StartGame(const Handover& handover, const OwnedHandle& waiting) {
  const std::vector<std::wstring> texts = handover.Texts();
  if (texts.size() != 3) {
    handover->error = ERROR_INVALID_DATA;
    return OwnedHandle();
  }
  const OwnedHandle output = TakeFrom(waiting, handover->output, true);
  const OwnedHandle errors = TakeFrom(waiting, handover->errors, true);
  SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
  const OwnedHandle input(CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      &inherited, OPEN_EXISTING, 0, nullptr));
  STARTUPINFOW start = {};
  start.cb = sizeof start;
  const BOOL passes = output || errors;
  if (passes) {
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = input.Get();
    start.hStdOutput = output.Get();
    start.hStdError = errors.Get();
  }
  std::wstring line = texts[1];
  ::PROCESS_INFORMATION made = {};
  if (!CreateProcessW(texts[0].c_str(), line.data(), nullptr, nullptr, passes, 0, nullptr,
                      texts[2].c_str(), &start, &made)) {
    handover->error = GetLastError();
    return OwnedHandle();
  }
  CloseHandle(made.hThread);
  return OwnedHandle(made.hProcess);
}

int StatusOf(HANDLE process) {
  WaitForSingleObject(process, INFINITE);
  DWORD status = kFailed;
  GetExitCodeProcess(process, &status);
  return static_cast<int>(status);
}

}  // namespace

WindowsCarrier::WindowsCarrier(std::string line, std::size_t words, std::ostream& err)
    : line(std::move(line)), words(words), err(err) {}

WindowsCarrier::~WindowsCarrier() = default;

std::string WindowsCarrier::FindProgram(const std::string& typed, std::string* reason,
                                        bool* isThere) {
  std::string found = rendlink::FindProgram(typed);
  *isThere = !found.empty();
  if (!IsFolder(found)) {
    if (found.empty()) *reason = ErrorText(ERROR_FILE_NOT_FOUND);
    return found;
  }
  *reason = ErrorText(ERROR_ACCESS_DENIED);
  return {};
}

bool WindowsCarrier::Prepare(const Game& game, std::string* args, std::string* refusal) {
  handover = std::make_unique<Handover>(std::vector<std::wstring>{
      Wide(game.program), Wide(LineBehind(line, words - game.words.size())), Wide(game.folder)});
  if (!*handover) {
    *refusal = "There is no memory in which the game could be handed over.";
    return false;
  }
  *args = "--carry " + std::to_string(GetCurrentProcessId()) + " " +
          std::to_string(Number(handover->Section()));
  return true;
}

int WindowsCarrier::Run(const Words& kelvaro) {
  platform::PROCESS_INFORMATION started;
  if (!platform::processes().CreateProcessA(kelvaro[0], ProcessLine(kelvaro), CREATE_NEW_CONSOLE,
                                            nullptr, &started))
    return Complain(err, "Kelvaro can't be started: " + ErrorText() + ".", kFailed);
  const OwnedHandle thread(platform::SystemHandle(started.hThread));
  const OwnedHandle process(platform::SystemHandle(started.hProcess));
  StatusOf(process.Get());
  if (handover->Get(kClosed))
    return Complain(err, "Kelvaro ended without having started the game", kFailed);
  return StatusOfGame();
}

int WindowsCarrier::StatusOfGame() {
  const Handover& game = *handover;
  const OwnedHandle carrier(HandleOf(game->carrier));
  const int status = StatusOf(carrier.Get());
  if (const std::uint32_t error = game->error; error != 0) {
    const bool missing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    return Complain(err, platform::ui::Bytes(game.Texts()[0]) + ": " + ErrorText(error),
                    missing ? kNotThere : kCantRun);
  }
  if (game->ended) return status;
  return Complain(err, "the game was begun, and nobody can tell how it ended", kFailed);
}

bool Carry(const std::string& process, const std::string& handle, int* status) {
  const OwnedHandle waiting(
      OpenProcess(PROCESS_DUP_HANDLE, FALSE, std::strtoul(process.c_str(), nullptr, 10)));
  if (!waiting) return false;
  Handover handover(TakeFrom(waiting, std::strtoull(handle.c_str(), nullptr, 10), false));
  HANDLE self = nullptr;
  if (!handover || !DuplicateHandle(GetCurrentProcess(), GetCurrentProcess(), waiting.Get(), &self,
                                    SYNCHRONIZE | PROCESS_QUERY_INFORMATION, FALSE, 0))
    return false;
  handover->carrier = Number(self);
  if (!handover.Get(kTaken)) return false;
  const OwnedHandle game = StartGame(handover, waiting);
  *status = kFailed;
  if (!game) return true;
  *status = StatusOf(game.Get());
  handover->ended = 1;
  return true;
}

}  // namespace kelvaro::rendlink
