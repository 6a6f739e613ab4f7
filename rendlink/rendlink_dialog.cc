#include "rendlink/rendlink_dialog.h"

#include "app/platform/controls.h"
#include "app/platform/files.h"
#include "app/platform/shell.h"
#include "app/resources/resources.h"
#include "foundation/paths.h"
#include "rendlink/files.h"
#include "rendlink/profiles.h"
#include "rendlink/resources.h"

namespace kelvaro::rendlink {
namespace {

constexpr char kTitle[] = "Rendlink";
constexpr std::int32_t kToDesktop = 0;  // rows of kPlace
constexpr std::int32_t kToMenu = 1;

}  // namespace

RendlinkDialog::RendlinkDialog(Session& session) : Dialog(kDialog), session(session) {}

void RendlinkDialog::OnInit() {
  icon = platform::desktop().LoadIconA(resources::kIcon);
  for (const bool large : {false, true}) platform::desktop().SetWindowIcon(window, icon, large);
  platform::controls().EnableToolTips(window);
  profiles = StoredProfiles();
  platform::controls().ListInsertColumn(window, kProfiles, "Profile",
                                        platform::controls().ListGetClientWidth(window, kProfiles));
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    const std::int32_t row =
        platform::controls().ListInsertItem(window, kProfiles, static_cast<std::uint32_t>(i));
    platform::controls().ListSetItemText(window, kProfiles, row, 0, profiles[i]);
  }
  if (!profiles.empty()) platform::controls().ListSelectItem(window, kProfiles, 0, true);
  for (const char* place : {"Desktop", session.Launchers().MenuName()})
    platform::controls().ComboAddString(window, kPlace, place);
  platform::controls().ComboSetCurSel(window, kPlace,
                                      session.DesktopFolder().empty() ? kToMenu : kToDesktop);
  ShowCommand();
}

void RendlinkDialog::OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) {
  using platform::Notice;
  switch (notice) {
    case Notice::Changed:
      return ShowCommand();
    // There is no notice of rows that were selected, but the list draws them.
    case Notice::Painted:
      if (id == kProfiles) ShowCommand();
      return;
    case Notice::Clicked:
      break;
    default:
      return;
  }
  switch (id) {
    case kBrowseTarget:
      return OnBrowseTarget();
    case kBrowseFolder:
      return OnBrowseFolder();
    case kSave:
      return OnSave();
    case kStart:
      return OnStart();
    default:
      return Dialog::OnNotice(id, notice, value);
  }
}

std::string RendlinkDialog::OnToolTip(std::uint32_t id) { return ToolTip(id); }

void RendlinkDialog::OnDestroy() {
  if (icon != 0) platform::desktop().DestroyIcon(icon);
}

Launch RendlinkDialog::Chosen() const {
  Launch launch;
  for (std::int32_t row = platform::controls().ListGetNextSelected(window, kProfiles, -1);
       row != platform::kNoRow;
       row = platform::controls().ListGetNextSelected(window, kProfiles, row))
    launch.profiles.push_back(
        profiles[platform::controls().ListGetItemData(window, kProfiles, row)]);
  launch.target = Bytes(Text(kTarget));
  launch.args = Bytes(Text(kArguments));
  launch.dir = Bytes(Text(kFolder));
  return launch;
}

void RendlinkDialog::ShowCommand() {
  const Launch chosen = Chosen();
  // Only if needed: it looks at files, and the field loses its selection.
  if (chosen == shown) return;
  shown = chosen;
  Ready ready;
  std::string text;
  if (MakeReady(chosen, session, &ready, &text))
    text = session.Launchers().CommandText(ready.words);
  SetText(kCommand, TextOf(text));
}

void RendlinkDialog::OnBrowseTarget() {
  std::string path = session.FullPath(Bytes(Text(kTarget)));
  if (!platform::shell().ChooseFile(window, "Target", false, path, &path)) return;
  SetText(kTarget, TextOf(path));
  ShowCommand();
}

void RendlinkDialog::OnBrowseFolder() {
  std::string path = session.FullPath(Bytes(Text(kFolder)));
  if (!platform::shell().ChooseFolder(window, "Folder", path, &path)) return;
  SetText(kFolder, TextOf(path));
  ShowCommand();
}

void RendlinkDialog::OnSave() {
  Ready ready;
  if (!CheckOrTell(&ready)) return;
  const std::string ending = session.Launchers().Ending();
  const bool toMenu = platform::controls().ComboGetCurSel(window, kPlace) == kToMenu;
  ByteString path = TextOf(toMenu ? session.MenuFolder() : session.DesktopFolder());
  // A first launcher makes its folder; where that can't be, saving says so.
  CreateFolders(path);
  if (!path.IsEmpty()) EnsureTrailingSeparator(&path);
  std::string file = Bytes(path) + Stem(ready.launch.target) + ending;
  if (!platform::shell().ChooseFile(window, "Save Launcher", true, file, &file)) return;
  if (!file.ends_with(ending)) {
    file += ending;
    // The question whether to replace a file was about another name.
    if (IsFile(file) && !Confirm("\"" + file + "\" is there already. Replace it?")) return;
  }
  std::string refusal;
  if (!SaveLauncher(ready, file, session, &refusal)) return Tell(refusal);
  Box(TextOf("The launcher was saved as \"" + file + "\"."), kTitle, platform::MB_OK);
}

void RendlinkDialog::OnStart() {
  Ready ready;
  std::string refusal;
  if (!CheckOrTell(&ready)) return;
  if (!StartNow(ready, &refusal)) return Tell(refusal);
  Box("Kelvaro was started. It starts the target.", kTitle, platform::MB_OK);
}

bool RendlinkDialog::CheckOrTell(Ready* ready) {
  std::string refusal;
  if (MakeReady(Chosen(), session, ready, &refusal)) return true;
  Tell(refusal);
  return false;
}

bool RendlinkDialog::Confirm(const std::string& question) {
  return Box(TextOf(question), kTitle, platform::MB_ICONQUESTION | platform::MB_YESNO) ==
         platform::IDYES;
}

void RendlinkDialog::Tell(const std::string& text) {
  Box(TextOf(text), kTitle, platform::MB_ICONEXCLAMATION);
}

}  // namespace kelvaro::rendlink
