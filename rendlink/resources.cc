#include "rendlink/resources.h"

#include "app/platform/desktop.h"

namespace kelvaro::rendlink {
namespace {

using platform::ControlTemplate;
using enum platform::ControlKind;
using platform::kStyleDefault;
using platform::kStyleMultiSelect;

constexpr ControlTemplate kControls[] = {
    {Label, 2000, "&Profiles", 7, 7, 286, 9},
    {ListView, kProfiles, "", 7, 17, 286, 66, kStyleMultiSelect},
    {Label, 2002, "&Target", 7, 92, 46, 9},
    {Edit, kTarget, "", 55, 90, 182, 14},
    {Button, kBrowseTarget, "&Browse...", 241, 90, 52, 14},
    {Label, 2005, "&Arguments", 7, 110, 46, 9},
    {Edit, kArguments, "", 55, 108, 238, 14},
    {Label, 2007, "&Folder", 7, 128, 46, 9},
    {Edit, kFolder, "", 55, 126, 182, 14},
    {Button, kBrowseFolder, "Br&owse...", 241, 126, 52, 14},
    {Label, 2010, "&Command", 7, 146, 286, 9},
    {TextArea, kCommand, "", 7, 156, 286, 48},
    {Label, 2012, "Save &in", 7, 214, 30, 9},
    {DropList, kPlace, "", 39, 212, 80, 14},
    {Button, kSave, "&Save...", 133, 212, 50, 14, kStyleDefault},
    {Button, kStart, "Sta&rt", 188, 212, 50, 14},
    {Button, platform::IDCANCEL, "Close", 243, 212, 50, 14},
};

}  // namespace

const platform::DialogTemplate kDialog = {
    kDialogId, "Rendlink", 300, 233, platform::kWindowMinimiseBox, kControls};

const char* ToolTip(std::uint32_t id) {
  switch (id) {
    case kProfiles:
      return "Profiles to play with. Each further one is played by an instance of Kelvaro of its "
             "own.";
    case kTarget:
      return "The program to start, such as a game.";
    case kBrowseTarget:
      return "Choose the program to start.";
    case kArguments:
      return "What the target is started with. Double quotes keep blanks together.";
    case kFolder:
      return "The folder to start the target in. Empty: the target's own.";
    case kBrowseFolder:
      return "Choose the folder to start the target in.";
    case kCommand:
      return "The command that does all this, as a shell takes it.";
    case kPlace:
      return "Where to offer to save the launcher.";
    case kSave:
      return "Save a launcher, a file that does all this when it is opened.";
    case kStart:
      return "Start Kelvaro and the target now.";
    default:
      return "";
  }
}

}  // namespace kelvaro::rendlink
