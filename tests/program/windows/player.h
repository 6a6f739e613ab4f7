// A person before kelvaro.exe or rendlink.exe, which runs in a process and a folder of its own:
// starts it, finds its windows, clicks and reads; and their pad, which the DirectInput beside the
// program plays.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace kelvaro::tests {

// One run of the program.
class Program {
 public:
  // The one of that name in `folder`, with these arguments; what it prints goes into the file
  // `output`, where one is told.
  Program(const std::string& folder, const std::string& arguments = "",
          const std::string& name = "kelvaro.exe", const std::string& output = "");
  explicit Program(std::uint32_t process);  // that runs
  // The one of that path, which may be longer than CreateProcess takes.
  static std::unique_ptr<Program> AtAnyPath(const std::string& path,
                                            const std::string& arguments = "");
  ~Program();  // ended by force where it still runs
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Handles of windows are numbers here, 0 for none. Each waits for what it asks for.
  std::uintptr_t Await(const std::string& title) const;  // a visible window
  std::uintptr_t AwaitUnseen(const std::string& title);
  bool AwaitMenu();
  bool AwaitGone(const std::string& title);
  // A box whose text begins so.
  std::uintptr_t AwaitBox(const std::string& beginning);
  bool AwaitHidden(std::uintptr_t window);
  void End();  // by force
  bool Runs() const;
  // Its exit status; -1 where it doesn't end.
  std::int32_t AwaitEnd();

 private:
  Program(void* process, std::uint32_t id) : process(process), id(id) {}
  std::uintptr_t Find(const std::string& title, bool visible = true) const;

  void* process;
  std::uint32_t id;
};

// A process of that file's name; 0 for none.
std::uint32_t ProcessOf(const std::string& name);

// Of a window of the program.
void Click(std::uintptr_t window, std::uint32_t control);
// Clicks a check box until it is so: a click while the window is still coming to the front is lost.
bool Check(std::uintptr_t window, std::uint32_t control, bool checked);
void Enter(std::uintptr_t window, std::uint32_t control, const std::string& text);
std::string Text(std::uintptr_t window, std::uint32_t control);
std::string Title(std::uintptr_t window);
// In a drop list; false when there is no such row.
bool Choose(std::uintptr_t window, std::uint32_t list, std::uint32_t row);
std::uint32_t Rows(std::uintptr_t window, std::uint32_t list);
std::string RowText(std::uintptr_t window, std::uint32_t list, std::uint32_t row);
void Post(std::uintptr_t window, std::uint32_t message, std::uintptr_t w = 0, std::intptr_t l = 0);
struct Place {
  std::int32_t left, top, right, bottom;
  friend bool operator==(const Place&, const Place&) = default;
};
Place PlaceOf(std::uintptr_t window);
void MoveTo(std::uintptr_t window, const Place& place);
std::int32_t ColumnWidth(std::uintptr_t window, std::uint32_t list, std::int32_t column);

// Until the window has the keyboard's focus: it comes to the front once a dialog before it has
// gone.
bool AwaitFront(std::uintptr_t window);

// A window of another program that has the keyboard's focus and keeps what is typed.
class Receiver {
 public:
  Receiver();
  ~Receiver();
  Receiver(const Receiver&) = delete;
  Receiver& operator=(const Receiver&) = delete;
  // What has been typed into it. Takes the focus back where another window has it.
  std::string Typed();

 private:
  void* window;
};

// What is started with the session by that name; empty for nothing.
std::string StartedWithSession(const std::string& name);

// As long as it lives, the key of the settings may only be read.
class LockedSettings {
 public:
  LockedSettings();
  ~LockedSettings();
  LockedSettings(const LockedSettings&) = delete;
  LockedSettings& operator=(const LockedSettings&) = delete;
};
// How many values that key has.
std::uint32_t StoredSettings();

// All that the program keeps in the registry; and that the person has read the welcome.
void ForgetSettings();
void MarkAsWelcomed();
// The same under the program's former name.
void MarkAsWelcomedFormerly();
// And that no box is wanted about a profile's pad that isn't there.
void KeepQuiet();
// The pad of that name is "Only For Kelvaro".
void KeepAlone(const std::string& device);

}  // namespace kelvaro::tests
