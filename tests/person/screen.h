// A person at a simulated machine, in front of the real windows: Qt off the screen, in the
// machine's time. The program runs on the virtual thread "user interface" until it waits for the
// person; each act here is done to the dialog in front and returns once the program waits again.
// Virtual time passes meanwhile only as far as the program itself waits (a lock, a device that is
// stopped); RunFor of the Simulation lets more of it pass.
//
//   DesktopSimulation sim;
//   Screen& screen = sim.Screen();
//   screen.Start([] { return kelvaro::RunProgram(); });
//   screen.Click(main_window::kNewProfile);
//   screen.Type(new_profile::kName, "My Game");
//   screen.Click(IDOK);
//   EXPECT_EQ(screen.Chosen(main_window::kProfileList), "My Game");
//
// An act that no person could do (a click on a hidden or disabled control, typing into a window
// that a box covers, a program that no longer runs) fails the test by an exception,
// std::logic_error, that says what was wrong; so does a program that doesn't come to wait within
// five virtual minutes. Texts are bytes; a mnemonic mark is left out of what is shown. What the
// program borrows must outlive it: Leave ends one that still runs. Its many methods are the acts of
// a person, and a look for each thing that a window shows.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/controls.h"
#include "app/platform/desktop.h"
#include "app/platform/processes.h"
#include "app/platform/shell.h"

namespace platform::simulation {

class Simulation;

struct ShownMessageBox {
  WindowHandle owner = 0;
  std::string text;
  std::string caption;
  std::uint32_t type = 0;
};

// One question for a file or folder.
struct AskedPath {
  WindowHandle owner = 0;
  std::string title;
  std::string suggested;
  bool forSaving = false;
  bool folder = false;
};

// One call of the help function.
struct HelpCall {
  std::string file;
  std::uint32_t command = 0;
  std::string topic;         // of HH_DISPLAY_TOPIC
  std::uint32_t cookie = 0;  // of HH_UNINITIALIZE, and what HH_INITIALIZE gave
};

// What a canvas was asked to draw, one line a call, with rectangles as "left,top,right,bottom" and
// colours as on the seam, 00bbggrr in hexadecimal without the first two:
//   fill RECT COLOUR, frame RECT COLOUR, 3d RECT LEFTTOP RIGHTBOTTOM, focus RECT,
//   text RECT COLOUR left|centre|right top|middle|bottom "TEXT", icon X,Y PICTURE, erase RECT,
//   grip RECT
// such as "fill 0,0,10,10 ff00ff". A picture goes by its number.
using Drawing = std::vector<std::string>;

class Screen {
 public:
  explicit Screen(Simulation& machine);
  ~Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  // The groups behind the seam.
  platform::Desktop& Desktop();
  platform::Controls& Controls();
  platform::Shell& Shell();

  // --- The program

  // Runs `program` on the user interface's thread until it first waits for the person.
  void Start(std::function<std::int32_t()> program);
  bool Running() const;
  std::int32_t Result() const;  // of a program that has ended
  // Closes what is up, until the program has ended: what it borrows must outlive it.
  void Leave();
  // Lets the program go on until it waits for the person, without an act.
  void Settle();
  // How often the user interface's thread has been woken so far.
  std::uint64_t Wakes() const;

  // --- Windows

  // The number of the dialog in front, 0 when there is none. A box doesn't count.
  std::uint32_t Front() const;
  WindowHandle Window() const;                        // of it
  WindowHandle WindowOf(std::uint32_t dialog) const;  // of a dialog that runs, kNoWindow otherwise
  // Of the dialog in front.
  bool Shown() const;
  bool Minimised() const;
  bool Maximised() const;
  std::string Title() const;
  Rect Place() const;                    // on the screen
  Rect Inside() const;                   // at 0,0
  std::uint32_t Icon(bool large) const;  // the number of its picture

  void Minimise();
  void Maximise();
  void Restore();
  void Resize(std::int32_t width, std::int32_t height);  // the window, by its frame
  void MoveTo(std::int32_t x, std::int32_t y);
  void Close();  // by the close box
  // Presses the button of the mouse at a point of the inside where no control is, and tells what
  // the window said is there.
  std::int32_t HitTest(std::int32_t x, std::int32_t y);
  Drawing Paint();                                              // of the window's own background
  Drawing PaintButton(std::uint32_t id, bool pressed = false);  // of a drawn button

  // --- Message boxes

  // A box stays until it is answered: by one of the answers that were given beforehand, in their
  // order, or by Answer. A box of a thread other than the user interface's is one, too; a box while
  // no program runs gets 0 without an answer beforehand.
  void AnswerNext(std::int32_t button);
  void Answer(std::int32_t button);
  bool BoxUp() const;
  ShownMessageBox Box() const;                        // the one that is up
  const std::vector<ShownMessageBox>& Boxes() const;  // all that were shown, oldest first
  // What the person was told in boxes that nothing waits for; they need no answer here.
  const std::vector<std::string>& Told() const;

  // --- Controls of the dialog in front

  std::string Text(std::uint32_t id) const;
  bool Visible(std::uint32_t id) const;
  bool Enabled(std::uint32_t id) const;
  bool Checked(std::uint32_t id) const;
  Rect ControlPlace(std::uint32_t id) const;
  std::uint32_t Focus() const;
  std::uint32_t DefaultButton() const;  // which Enter presses where no button has the focus
  std::uint32_t Caret(std::uint32_t id) const;
  BitmapHandle Picture(std::uint32_t id) const;
  Colour TextColour(std::uint32_t id) const;
  Colour BackgroundColour(std::uint32_t id) const;
  // "Arial 14 800", with " underlined" behind it.
  std::string Font(std::uint32_t id) const;
  bool HandCursor(std::uint32_t id) const;
  // How often it was to be drawn anew since it was last asked.
  std::uint32_t Redraws(std::uint32_t id);

  // Buttons, check boxes, radio buttons, links, labels; an edit or a list takes the focus alone.
  // Gives the focus as a click does. What the program asks at the loss of focus of an edit (a box,
  // a dialog), or the focus that it puts elsewhere then, swallows the click, as it does for a
  // person; so it is with every act that gives a control the focus.
  void Click(std::uint32_t id);
  void FocusOn(std::uint32_t id);  // by Tab
  static constexpr std::uint8_t kEnter = 0x0D, kEsc = 0x1B, kF1 = 0x70;
  // A key, by its virtual key, to what has the focus.
  void Press(std::uint8_t vk, bool control = false);
  // Replaces what an edit holds, as if typed: an edit for digits takes those alone.
  void Type(std::uint32_t id, const std::string& text);

  // Drop lists.
  std::vector<std::string> Rows(std::uint32_t id) const;
  std::string Chosen(std::uint32_t id) const;  // empty for none
  std::int32_t ChosenRow(std::uint32_t id) const;
  void Choose(std::uint32_t id, const std::string& row);

  // Lists.
  std::vector<std::vector<std::string>> Cells(std::uint32_t id) const;  // by row, then column
  std::vector<std::int32_t> SelectedRows(std::uint32_t id) const;
  void SelectRows(std::uint32_t id, const std::vector<std::int32_t>& rows);
  void DoubleClickRow(std::uint32_t id, std::int32_t row);  // -1: below the rows
  std::vector<std::int32_t> ColumnWidths(std::uint32_t id) const;
  std::vector<std::int32_t> ColumnOrder(std::uint32_t id) const;
  void DragDivider(std::uint32_t id, std::int32_t column, std::int32_t width);
  void DragHeader(std::uint32_t id, std::int32_t column, std::int32_t place);

  // Tabs and sliders.
  std::vector<std::string> Tabs(std::uint32_t id) const;
  std::int32_t Tab(std::uint32_t id) const;
  void ChooseTab(std::uint32_t id, std::int32_t tab);
  std::int32_t Slider(std::uint32_t id) const;
  std::string SliderScale(std::uint32_t id) const;  // "0 to 50, a tick each 5"
  void MoveSlider(std::uint32_t id, std::int32_t position);

  // Tool tips: the text that comes up above a control, or a tab; empty for none.
  std::string Hover(std::uint32_t id);
  std::string HoverTab(std::uint32_t id, std::int32_t tab);
  std::int32_t ToolTipWidth() const;
  std::int32_t ToolTipTime() const;

  // --- The notification area

  bool IconShown() const;
  NOTIFYICONDATA NotificationIcon() const;
  std::uint32_t NotificationPicture() const;  // the number of it
  void IconDoubleClick();
  void IconRightClick();
  void IconMessage(std::uint32_t iconId, std::intptr_t mouseMessage);  // any other
  // The menu that a desktop shows for the icon on its own, "" for a separator; and its command.
  std::vector<std::string> IconMenu() const;
  void ChooseIconMenu(const std::string& text);
  bool MenuUp() const;
  std::vector<std::string> Menu() const;  // "" for a separator
  // Its command comes once TrackPopupMenu has returned.
  void ChooseMenu(const std::string& text);
  void DismissMenu();
  std::size_t MenusShown() const;

  // --- The session

  void SetCommandLine(const std::string& line);
  // What the next question for a file or folder is answered with, in order; empty, and no answer
  // beforehand: none is chosen.
  void ChooseNextPath(const std::string& path);
  const std::vector<AskedPath>& AskedPaths() const;  // all, oldest first
  const std::vector<std::string>& OpenedAddresses() const;
  std::size_t Beeps() const;
  const std::vector<HelpCall>& HelpCalls() const;
  // Whether the library "hhctrl.ocx" is there (it is at first), or another one of that name.
  void SetHelpLibrary(const std::string& name, bool there);
  const std::vector<std::string>& LoadedLibraries() const;  // names asked for, oldest first

 private:
  struct State;
  std::unique_ptr<State> state;
};

}  // namespace platform::simulation
