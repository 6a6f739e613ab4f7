#include "app/platform/windows/windows_processes.h"

#include "app/platform/windows/last_error.h"
#include "app/platform/windows/owned_handle.h"

#include <psapi.h>
#include <tlhelp32.h>

namespace platform {
namespace {

// A library for as long as its functions are called.
class Library {
 public:
  explicit Library(const char* name) : library(LoadLibraryA(name)) {}
  ~Library() {
    if (library) FreeLibrary(library);
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  // False, with the error set, where the library or that function isn't there.
  template <typename Function>
  bool Bind(const char* name, Function* function) const {
    *function = library ? FunctionOf<Function>(library, name) : nullptr;
    return *function || Fail();
  }

 private:
  const HMODULE library;
};

struct Psapi {
  Library library{"PSAPI.dll"};
  decltype(&EnumProcesses) enumProcesses = nullptr;
  decltype(&EnumProcessModules) enumProcessModules = nullptr;
  decltype(&GetModuleFileNameExA) getModuleFileNameEx = nullptr;

  bool Bind() {
    return library.Bind("EnumProcesses", &enumProcesses) &&
           library.Bind("EnumProcessModules", &enumProcessModules) &&
           library.Bind("GetModuleFileNameExA", &getModuleFileNameEx);
  }

  // Empty where this program may not ask.
  std::string PathOf(DWORD id) const {
    const OwnedHandle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, id));
    HMODULE program = nullptr;
    DWORD needed = 0;
    char path[MAX_PATH + 1];
    if (process && enumProcessModules(process.Get(), &program, sizeof program, &needed) &&
        getModuleFileNameEx(process.Get(), program, path, sizeof path))
      return path;
    if (id == 0) return "Idle";
    return id == 8 ? "System" : std::string();
  }
};

struct Toolhelp {
  Library library{"Kernel32.dll"};
  decltype(&CreateToolhelp32Snapshot) createSnapshot = nullptr;
  decltype(&Process32First) first = nullptr;
  decltype(&Process32Next) next = nullptr;

  bool Bind() {
    return library.Bind("CreateToolhelp32Snapshot", &createSnapshot) &&
           library.Bind("Process32First", &first) && library.Bind("Process32Next", &next);
  }
};

BOOL CALLBACK AddWindow(HWND window, LPARAM list) {
  TopLevelWindow found;
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  found.window = reinterpret_cast<WindowHandle>(window);
  found.processId = process;
  found.visible = IsWindowVisible(window);
  found.iconic = IsIconic(window);
  reinterpret_cast<std::vector<TopLevelWindow>*>(list)->push_back(found);
  return TRUE;
}

}  // namespace

std::uint32_t WindowsProcesses::GetCurrentProcessId() { return ::GetCurrentProcessId(); }

bool WindowsProcesses::ListProcesses(std::vector<RunningProcess>* list) {
  list->clear();
  OSVERSIONINFOA version{};
  version.dwOSVersionInfoSize = sizeof version;
  if (!GetVersionExA(&version)) return Fail();
  return version.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS ? ListByToolhelp(list)
                                                            : ListByPsapi(list);
}

bool WindowsProcesses::ListByPsapi(std::vector<RunningProcess>* list) {
  list->clear();
  Psapi psapi;
  if (!psapi.Bind()) return false;
  DWORD size = 2048;  // bytes that are offered
  DWORD needed = 0;
  std::vector<DWORD> ids;
  for (;; size *= 2) {
    ids.resize(size);
    if (!psapi.enumProcesses(ids.data(), size, &needed)) return Fail();
    // A list that fills all of it may have been cut.
    if (needed < size) break;
  }
  ids.resize(needed / sizeof(DWORD));
  for (const DWORD id : ids) list->push_back({id, psapi.PathOf(id)});
  return true;
}

bool WindowsProcesses::ListByToolhelp(std::vector<RunningProcess>* list) {
  list->clear();
  Toolhelp toolhelp;
  if (!toolhelp.Bind()) return false;
  const OwnedHandle snapshot(toolhelp.createSnapshot(TH32CS_SNAPPROCESS, 0));
  if (!snapshot) return Fail();
  PROCESSENTRY32 entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = toolhelp.first(snapshot.Get(), &entry); more;
       more = toolhelp.next(snapshot.Get(), &entry))
    list->push_back({entry.th32ProcessID, entry.szExeFile});
  return true;
}

bool WindowsProcesses::CreateProcessA(const std::string& application,
                                      const std::string& commandLine, std::uint32_t flags,
                                      const std::string* folder, PROCESS_INFORMATION* information) {
  *information = {};
  if (HasZeroByte(application) || HasZeroByte(commandLine) || (folder && HasZeroByte(*folder)))
    return Fail(ERROR_INVALID_PARAMETER);
  STARTUPINFOA start{};
  start.cb = sizeof start;
  std::string words = commandLine;  // the system writes into it
  ::PROCESS_INFORMATION made;
  if (!::CreateProcessA(application.c_str(), words.data(), nullptr, nullptr, FALSE, flags, nullptr,
                        folder ? folder->c_str() : nullptr, &start, &made))
    return Fail();
  information->hProcess = SeamHandle(made.hProcess);
  information->hThread = SeamHandle(made.hThread);
  information->dwProcessId = made.dwProcessId;
  return true;
}

bool WindowsProcesses::EnumWindows(std::vector<TopLevelWindow>* list) {
  list->clear();
  return ::EnumWindows(AddWindow, reinterpret_cast<LPARAM>(list)) || Fail();
}

bool WindowsProcesses::PostToWindow(WindowHandle window, std::uint32_t message) {
  return PostMessageA(reinterpret_cast<HWND>(window), message, 0, 0) || Fail();
}

}  // namespace platform
