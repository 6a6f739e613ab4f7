// The windows of a simulated machine, with their controls, and the one message loop that serves
// them all: a modal dialog, a box or a menu runs it anew on the same thread, until its own end.
// Posted messages and what the person does come in the order of their coming; behind them come
// paintings, and behind these the timers. What the seam's groups and the person have in common is
// here; neither of them knows the other.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/controls.h"
#include "app/platform/desktop.h"
#include "app/platform/processes.h"
#include "app/platform/simulation/journal.h"
#include "app/platform/simulation/scheduler.h"
#include "app/platform/simulation/screen.h"

namespace platform::simulation {

// With the case of ASCII letters folded.
bool FoldsBefore(const std::string& a, const std::string& b);
bool FoldsEqual(const std::string& a, const std::string& b);

struct VirtualControl {
  struct Row {
    std::string text;
    std::int32_t data = 0;
  };
  struct Column {
    std::string text;
    std::int32_t width = 0;
  };
  struct Item {
    std::uint32_t data = 0;
    bool selected = false;
    std::vector<std::string> texts;  // by column; those behind the last are empty
  };
  struct Tab {
    std::string text;
    std::string tip;
    bool isTool = false;
  };

  bool TakesFocus() const;
  bool IsButton() const;  // that Enter presses
  bool HasText() const;
  bool Usable() const { return visible && enabled; }

  ControlKind kind = ControlKind::Label;
  std::uint32_t id = 0;
  std::uint32_t style = 0;
  std::string text;
  bool marksMnemonic = true;  // by a "&", as long as the text is the template's
  Rect place;                 // in the window's inside
  bool visible = true;
  bool enabled = true;
  bool checked = false;
  std::uint32_t caret = 0;
  bool allSelected = false;  // what is typed into the edit replaces its text
  BitmapHandle picture = 0;
  std::string face = "MS Shell Dlg";
  std::int32_t height = 11;
  std::int32_t weight = 400;
  bool underline = false;
  Colour textColour = 0;
  Colour backgroundColour = 0;
  bool handCursor = false;
  bool isTool = false;
  std::uint32_t redraws = 0;
  bool needsPaint = true;
  std::vector<Row> rows;      // of a drop list
  std::int32_t current = -1;  // its row, or the tab
  std::vector<Column> columns;
  std::vector<std::int32_t> order;  // of the columns, from left to right
  std::vector<Item> items;
  std::vector<Tab> tabs;
  std::int32_t least = 0;  // of a slider
  std::int32_t most = 100;
  std::int32_t position = 0;
  std::int32_t every = 1;
};

struct VirtualWindow {
  struct Timer {
    std::uint32_t period = 0;
    std::uint64_t due = 0;
  };

  Rect Inside() const;  // at 0,0
  Point InsideCorner() const;
  VirtualControl* Find(std::uint32_t control);
  bool Seen() const { return visible && !minimised; }

  WindowHandle handle = kNoWindow;
  const DialogTemplate* dialog = nullptr;
  WindowHandle owner = kNoWindow;
  WindowListener* listener = nullptr;
  std::string title;
  Rect place;   // with its frame
  Rect normal;  // where it is when it is neither minimised nor maximised
  bool visible = false;
  bool minimised = false;
  bool maximised = false;
  bool restoresToMaximised = false;
  bool ended = false;
  std::int32_t result = 0;
  bool needsPaint = true;
  std::uint32_t focus = 0;
  std::uint32_t defaultButton = 0;
  IconHandle largeIcon = 0;
  IconHandle smallIcon = 0;
  std::vector<VirtualControl> controls;  // as in the template, none comes or goes
  std::map<std::uint32_t, Timer> timers;
  bool hasToolTip = false;
  bool toolTipActive = false;
  bool toolTipsEnabled = false;
  std::int32_t toolTipWidth = 0;
  std::int32_t toolTipTime = 5000;
};

// A box that is up.
struct OpenBox {
  ShownMessageBox shown;
  bool modal = false;            // of the user interface's thread
  std::shared_ptr<Event> event;  // what another thread waits for
  bool answered = false;
  std::int32_t button = 0;
};

struct OpenMenu {
  struct Entry {
    std::string text;
    std::uint32_t command = 0;
  };
  static std::vector<Entry> EntriesOf(std::span<const MenuItem> items);
  std::vector<Entry> entries;
  bool up = false;
  std::int32_t chosen = -1;
};

class WindowSystem {
 public:
  WindowSystem(Scheduler& scheduler, Journal& journal);
  WindowSystem(const WindowSystem&) = delete;
  WindowSystem& operator=(const WindowSystem&) = delete;

  // --- The program
  void Start(std::function<std::int32_t()> program);
  // Outermost thread. False when it doesn't come to wait in five virtual minutes.
  bool Settle();
  bool OnUserInterface() const { return scheduler.Current().id == threadId; }

  // --- Windows
  VirtualWindow* Find(WindowHandle window) const;
  VirtualControl* Find(WindowHandle window, std::uint32_t control) const;
  VirtualControl* Find(WindowHandle window, std::uint32_t control, ControlKind kind) const;
  VirtualWindow* Newest() const;  // null for none
  WindowHandle WindowOf(std::uint32_t dialog) const;
  // All of them, oldest first.
  std::vector<TopLevelWindow> TopLevelWindows() const;

  std::int32_t RunDialog(const DialogTemplate& dialog, WindowHandle owner,
                         WindowListener& listener);
  std::int32_t RunBox(ShownMessageBox box);
  // False when there is one already.
  bool RunMenu(VirtualWindow& window, std::span<const MenuItem> items);
  // As an entry of a menu gives it.
  void PostCommand(const VirtualWindow& window, std::uint32_t command);
  bool MenuOnTop() const { return !modals.empty() && modals.back().kind == Modal::Menu; }
  bool DialogOnTop() const { return !modals.empty() && modals.back().kind == Modal::Dialog; }
  bool BoxOnTop() const { return !modals.empty() && modals.back().kind == Modal::Box; }
  // The box to be answered next, null for none: those of ended threads go.
  OpenBox* TopBox();
  // Whether a box of another thread stands in front of that window.
  bool CoveredByThread(const VirtualWindow& window);
  void Answer(OpenBox& box, std::int32_t button);
  // Until the next program starts.
  void DismissBoxesOfOtherThreads();

  // Place and state; each tells the listener what it changed.
  void Place(VirtualWindow& window, Rect place, bool limited);
  void Minimise(VirtualWindow& window);
  void Maximise(VirtualWindow& window);
  // Back from minimised or maximised; `normal`: not to a maximised state before it.
  void Restore(VirtualWindow& window, bool normal);
  void Show(VirtualWindow& window, bool visible);
  void Paint(VirtualWindow& window);  // at once, what needs it of its own background

  // --- Messages
  void Post(WindowHandle window, std::function<void()> message);
  // Lets the program look for what there is to do: any thread.
  void Wake();
  void MarkForPainting(VirtualWindow& window);
  void MarkForPainting(VirtualControl& control);

  // --- The focus, as the person moves it. False when what the program did at its loss (a box, the
  // focus put elsewhere) keeps the person's act from going on.
  bool MoveFocus(VirtualWindow& window, std::uint32_t control);
  // As the program sets it.
  void SetFocus(VirtualWindow& window, std::uint32_t control);

  // --- Controls
  void Check(VirtualWindow& window, VirtualControl& control, bool checked);
  void DrawButton(VirtualWindow& window, VirtualControl& control, bool pressed, bool focusAction);
  // With both notices of the header.
  void SetColumnWidth(VirtualWindow& window, VirtualControl& list, std::int32_t column,
                      std::int32_t width);

  Scheduler& scheduler;
  Journal& journal;

  bool running = false;
  std::int32_t result = 0;
  std::uint64_t asked = 0;  // dialogs, boxes and menus so far

  std::int32_t desktopWidth = 1024;
  std::int32_t desktopHeight = 768;
  Point pointer{512, 384};
  bool keysHeld[256] = {};

  std::deque<std::int32_t> answers;
  std::vector<ShownMessageBox> boxes;  // all that were shown
  OpenMenu menu;
  std::size_t menusShown = 0;

  struct Hook {
    HookHandle handle = 0;
    HookProc procedure = nullptr;
  };
  std::vector<Hook> hooks;  // the newest last

 private:
  struct Modal {
    enum Kind { Dialog, Box, Menu } kind;
    WindowHandle window = kNoWindow;  // of a dialog
  };
  struct Message {
    WindowHandle window = kNoWindow;
    std::function<void()> run;
  };

  VirtualWindow& Make(const DialogTemplate& dialog, WindowHandle owner, WindowListener& listener);
  void Destroy(WindowHandle window);
  void Appear(VirtualWindow& window);
  void Leave(Modal::Kind kind, WindowHandle window);
  Rect Limited(VirtualWindow& window, Rect place);
  void TellPlace(VirtualWindow& window, const Rect& before, std::uint32_t type, bool always);
  void MarkAllForPainting(VirtualWindow& window);
  void HandleOne();  // waits for it
  void WaitFor(const std::shared_ptr<Event>& event, std::uint64_t t);
  bool PaintOne();
  bool RunDueTimer();
  std::uint64_t NextTimer() const;

  std::function<std::int32_t()> program;
  std::int32_t threadId = 0;
  bool idle = false;  // the program waits for the person
  bool othersRefused = false;
  std::shared_ptr<Event> wake;
  // What is being handled stays in a list of its own, not on a stack that may be dropped.
  std::list<Message> queue;
  std::list<Message> handled;
  std::map<WindowHandle, std::unique_ptr<VirtualWindow>> windows;
  WindowHandle lastHandle = 0;
  std::vector<Modal> modals;     // the newest last
  std::list<OpenBox> openBoxes;  // the newest last
};

}  // namespace platform::simulation
