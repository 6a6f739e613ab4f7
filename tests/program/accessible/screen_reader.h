// What a screen reader gets of a program and can do with it: by the accessibility bus alone, on a
// message bus of its own.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/host/home.h"
#include "tests/host/processes.h"

class QDBusMessage;

namespace kelvaro::tests {

// Where an object of a program is on the bus.
struct Place {
  std::string service, path;
};

struct Extents {
  int x = 0, y = 0, width = 0, height = 0;
};

// An object of a program, as it was when it was looked at.
struct Accessible {
  Place place;
  std::string role, name, description;
  std::set<std::string> states;  // "enabled", "focusable" and further ones that tests look at
  std::vector<std::string> interfaces;  // their last words: "Action", "EditableText"
  std::vector<std::string> actions;
  std::vector<std::string> labels;   // the names of what labels it
  std::vector<Accessible> children;  // those that are on the screen

  bool Is(const std::string& state) const { return states.contains(state); }
  bool Has(const std::string& interface) const;
  bool Can(const std::string& action) const;
  // The first below it of that role, with that name; null for none.
  const Accessible* Find(const std::string& wantedRole, const std::string& wantedName) const;
  void Visit(const std::function<void(const Accessible&)>& visit) const;
  // A line for each, for a person to read.
  std::string Text(int depth = 0) const;
};

class ScreenReader {
 public:
  // Starts the bus and tells it that a screen reader runs. The registry wants an X display.
  ScreenReader(const Home& home, const std::string& display);
  ~ScreenReader();
  ScreenReader(const ScreenReader&) = delete;
  ScreenReader& operator=(const ScreenReader&) = delete;

  bool Works() const { return works; }
  std::string BusAddress() const { return bus.Address(); }

  // The top-level window of the program of that name, with all that is on the screen of it; none
  // where it isn't on the screen itself.
  std::optional<Accessible> Window(const std::string& program, const std::string& role,
                                   const std::string& title);
  // A single object, without what is below it.
  Accessible Look(const Place& place);

  // False where the object takes no such thing.
  bool Do(const Accessible& object, const std::string& action);
  bool SetText(const Accessible& object, const std::string& text);
  std::string Text(const Accessible& object);
  bool SetValue(const Accessible& object, double value);
  double Value(const Accessible& object);
  bool IsFocused(const Accessible& object);
  // Where it is on the screen.
  Extents Where(const Accessible& object);

 private:
  Accessible Tree(const Place& place);
  std::vector<Place> Children(const Place& place);
  std::string Role(const Place& place);
  std::set<std::string> States(const Place& place);
  std::vector<std::string> Labels(const Place& place);
  std::vector<std::string> Actions(const Place& place);
  QDBusMessage Call(const Place& place, const char* interface, const char* member,
                    const std::vector<std::string>& texts = {});
  std::string Property(const Place& place, const char* interface, const char* name);

  Server bus;
  bool works = false;
};

}  // namespace kelvaro::tests
