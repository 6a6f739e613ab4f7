// Long sessions of a person who clicks about in the window, at a machine on which pads come and go,
// files vanish, the disk fails and loses its power, games are started by launchers of Rendlink's
// and end, and a replay hangs; the same ones for the same seed. After each act: what is shown is
// what is in memory, what is in memory is what lies on the disk unless that failed just now, nobody
// else's file has changed, what runs is what always runs, and nobody holds a lock while the program
// waits. KELVARO_SESSIONS makes it longer.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "app/platform/entry_text.h"
#include "app/platform/simulation/scheduler.h"
#include "app/platform/simulation/virtual_processes.h"
#include "app/resources/control_ids.h"
#include "keys/key_action.h"
#include "rendlink/desktop_entry.h"
#include "rendlink/profiles.h"
#include "tests/app/main_window_fixture.h"
#include "tests/console/random.h"
#include "tests/foundation/texts.h"
#include "tests/rendlink/rendlink_fixture.h"
#include "tests/storage/chunks.h"
#include "tests/storage/random_profile.h"
#include "tests/swarm/reasons.h"

namespace kelvaro {
namespace {

using namespace main_window;

using platform::IDCANCEL;
using platform::IDOK;
using platform::simulation::ProcessDescription;
using platform::simulation::SentEvent;

using Strings = std::vector<std::string>;

struct DetectBox {
  std::uint32_t box;
  std::uint32_t field;
};
constexpr DetectBox kDetectBoxes[] = {{kDetectMouseX, kMouseX},
                                      {kDetectMouseY, kMouseY},
                                      {kDetectMouseWheel, kMouseWheel},
                                      {kDetectLeftButton, kLeftButton},
                                      {kDetectMiddleButton, kMiddleButton},
                                      {kDetectRightButton, kRightButton}};

constexpr char kFolder[] = "/game/Profiles/";
constexpr char kGame[] = "/games/x/play";
constexpr char kLauncher[] = "/home/player/Desktop/play.desktop";
// ms; three threads that are waited for and then ended by force
constexpr std::uint64_t kLongestEnd = 50'000;

// Two of them give the same file name, the last ones none.
const std::initializer_list<const char*> kNames = {"Alpha", "Bravo", "Charlie", "Delta", "Echo 1",
                                                   "A:B",   "AB",    "Z/Z",     "???",   ""};

std::uint32_t Sessions() {
  const char* count = std::getenv("KELVARO_SESSIONS");
  return count ? static_cast<std::uint32_t>(std::strtoul(count, nullptr, 10)) : 12;
}

std::string FileNameOf(const std::string& name) {
  return Bytes(ProfileLibrary::ProfileFileName(TextOf(name)));
}

// As a sorted drop list has them.
bool ComesBefore(const std::string& a, const std::string& b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::toupper(static_cast<unsigned char>(x)) <
           std::toupper(static_cast<unsigned char>(y));
  });
}

class RandomSessionTest : public MainWindowTest, public testing::WithParamInterface<std::uint32_t> {
 protected:
  explicit RandomSessionTest(std::uint32_t seed = GetParam()) : random(seed) {
    WithoutProfiles();
    Preset("Show Auto-Detect Usage", 0);
    sim.KeepEvents(false);
    sim.OnEvent([this](const SentEvent& event) { See(event); });
    ProcessDescription program;
    for (const std::string& path : {std::string(kGame), own}) {
      program.path = path;
      sim.Processes().Provide(program);
      sim.Disk().PutFile(path, "program");
    }
    sim.Disk().PutFolder("/home/player/Desktop");
    for (const char* name : {"Alpha", "Bravo", "Charlie", "Foxtrot", "Golf"}) {
      StoreProfile(name, [this](ProfileFile& made) { FillProfile(&made); });
    }
  }

  // ---- The machine

  void FillProfile(ProfileFile* profile) {
    if (!random.OneIn(4)) {
      if (random.OneIn(2))
        UsePad(*profile);
      else
        UseDevice(*profile, stick);
    }
    profile->pollInterval = random.Between(1, 20);
    profile->movementSensitivity = static_cast<std::int32_t>(random.Below(51));
    profile->mouseX = MouseInput(input_kind::kAxisX, 0);
    profile->mouseAlwaysActive = random.OneIn(4);
    for (std::uint32_t n = random.Between(1, 6); n > 0; --n) {
      profile->controls.AddTail(Control());
      Control& control = *profile->controls.tail->value;
      control.controlId = profile->nextControlId++;
      control.description = ToDecimal(control.controlId, false, 1);
      control.SetButtonMask(random.Between(1, 15));
      control.activateOnPress = random.OneIn(3) ? 0 : 1;
      control.toggleMouseControls = random.OneIn(5) ? 1 : 0;
      control.repeatEnabled = random.OneIn(2) ? 1 : 0;
      control.repeatDelay = random.Between(10, 200);
      control.repeatSpeed = random.Between(10, 100);
      auto* const action = new KeyAction;
      action->ParseKeys(TextOf(random.OneOf({"a", "bcd", "<P:120>e", "<CTRL+F1>", "<LMB>"})));
      control.actions.AddTail(action);
    }
  }

  void PlayPad() {
    SimulatedDevice& device = random.OneIn(3) ? stick : pad;
    switch (random.Below(4)) {
      case 0:
        return device.Press({});
      case 1:
        return device.Press({random.Between(1, 4)});
      case 2:
        return device.Press({random.Between(1, 2), random.Between(3, 4)});
      default:
        return device.MoveAxis("Axis_X0", static_cast<std::int32_t>(random.Below(64001)) - 32000);
    }
  }
  void PlugAbout() {
    SimulatedDevice& device = random.OneIn(3) ? stick : pad;
    switch (random.Below(4)) {
      case 0:
        return device.Unplug();
      case 1:
        return device.Lose();
      default:
        device.Return();
        return device.PlugIn();
    }
  }
  void TouchTheFolder() {
    const Strings files = sim.Disk().List(kFolder);
    if (files.empty()) return;
    const std::string path =
        kFolder + files[random.Below(static_cast<std::uint32_t>(files.size()))];
    const std::string bytes = sim.Disk().FileBytes(path).value_or("");
    touched.insert(path);
    everTouched.insert(path);
    switch (random.Below(4)) {
      case 0:
        return sim.Disk().Remove(path);
      case 1:
        return sim.Disk().PutFile(
            path, bytes.substr(0, random.Below(static_cast<std::uint32_t>(bytes.size() + 1))));
      case 2:
        return sim.Disk().PutFile(path, bytes, platform::FILE_ATTRIBUTE_READONLY);
      default:
        return sim.Disk().PutFile(path, bytes);
    }
  }

  // A key of a replay, in or out of a repeat, may be the last thing that its thread ever does.
  void See(const SentEvent& event) {
    held.See(event);
    const std::string& thread = sim.Scheduler().Current().name;
    if (!hangs || event.kind != SentEvent::Kind::Key) return;
    if (thread != "notification" && thread != "repeat") return;
    hangs = false;
    platform::clock().Sleep(UINT32_MAX - 1);
  }

  std::map<std::string, std::string> Files() {
    std::map<std::string, std::string> files;
    for (const std::string& name : sim.Disk().List(kFolder)) {
      files[kFolder + name] = sim.Disk().FileBytes(kFolder + name).value_or("");
    }
    return files;
  }

  // ---- Games

  // The name of a profile for which a game is to be started; empty for none.
  std::string AskForAGame() {
    rendlink::Words words = {own};
    std::string name;
    if (random.OneIn(3)) {
      const Strings asked = LauncherProfiles();
      const auto isListed = [this](const std::string& one) { return Has(listed, one); };
      if (!asked.empty() && std::all_of(asked.begin(), asked.end(), isListed)) {
        words = LauncherWords();
        name = asked.front();
        ++launchersUsed;
      } else if (!listed.empty()) {
        name = OneListed();
        words.push_back("profile=" + name);
        if (random.OneIn(3)) words.push_back("profile=" + OneListed());
        words.push_back(std::string("target=") + kGame);
      }
    }
    screen.SetCommandLine(rendlink::ProcessLine(words));
    return name;
  }
  void ExpectTheGame(std::size_t startedBefore, std::uint32_t otherInstance) {
    AnswerBoxes();
    sim.RunFor(5000);  // the other one closes, and the further one gets its time
    AnswerBoxes();
    const auto& started = sim.Processes().Started();
    ASSERT_GT(started.size(), startedBefore);
    EXPECT_FALSE(sim.Processes().Runs(otherInstance));
    for (std::size_t n = startedBefore; n < started.size(); ++n) {
      const bool isGame = n + 1 == started.size();
      EXPECT_EQ(started[n].application, isGame ? kGame : own);
      EXPECT_TRUE(sim.Processes().Runs(started[n].id));
      (isGame ? game : further) = started[n].id;
    }
  }
  // The program ends with it, and so does the further one.
  void EndGame() {
    sim.Processes().End(game);
    for (int i = 0; i < 60 && screen.Running(); ++i) sim.RunFor(1000);
    ASSERT_FALSE(screen.Running()) << "the program outlives its game";
    ++gamesEnded;
    Restart();
  }

  // ---- Rendlink

  rendlink::Words LauncherWords() {
    const auto file = sim.Disk().FileBytes(kLauncher);
    return file ? rendlink::ExecWords(platform::ReadEntry(*file)["Exec"]) : rendlink::Words();
  }
  Strings LauncherProfiles() {
    const std::string_view key = "profile=";
    Strings names;
    for (const std::string& word : LauncherWords()) {
      if (word.starts_with(key)) names.push_back(word.substr(key.size()));
    }
    return names;
  }
  void SaveALauncher() {
    const Strings stored = rendlink::StoredProfiles();
    if (stored.empty()) return;
    const auto one = [&] {
      return stored[random.Below(static_cast<std::uint32_t>(stored.size()))];
    };
    rendlink::Launch launch{{one()}, kGame, "", ""};
    if (random.OneIn(3)) launch.profiles.push_back(one());
    rendlink::Ready ready;
    std::string refusal;
    bool isSaved = MakeReady(launch, rendlinkSession, &ready, &refusal);
    if (isSaved) {
      if (random.OneIn(2)) sim.Disk().FailInside(random.Between(1, 10), random.Below(300));
      isSaved = SaveLauncher(ready, kLauncher, rendlinkSession, &refusal);
    }
    EXPECT_EQ(isSaved, refusal.empty()) << refusal;
    if (!isSaved) return;
    EXPECT_EQ(LauncherWords(), ready.words);
    launcher = sim.Disk().FileBytes(kLauncher);
  }
  // The last one that was saved, whatever else failed.
  void CheckLauncher() { EXPECT_EQ(sim.Disk().FileBytes(kLauncher), launcher); }

  // ---- The person

  // Answers what is up, with things going on meanwhile. The captions, in order.
  Strings AnswerBoxes() {
    Strings captions;
    while (screen.BoxUp()) {
      ExpectNoLock();
      captions.push_back(screen.Box().caption);
      if (random.OneIn(4)) PlayPad();
      if (random.OneIn(4)) PlugAbout();
      if (random.OneIn(4)) sim.RunFor(random.Below(6000));
      screen.Answer(IDOK);
    }
    return captions;
  }

  void ToTab(MainWindow::Tab tab) {
    if (screen.Tab(kTabControl) != tab) screen.ChooseTab(kTabControl, tab);
  }

  // What became of the profiles' list by a choice of `name`, from its boxes.
  void AfterAChoice(std::string name, const Strings& captions) {
    for (const std::string& caption : captions) {
      if (caption != "Missing Profile Error" && caption != "File Read Error") continue;
      listed.erase(std::find(listed.begin(), listed.end(), name));
      name = listed.empty() ? "" : *std::min_element(listed.begin(), listed.end(), ComesBefore);
    }
    // What was read of the last file of all stays in memory, and nothing shows it.
    mouseShown = !name.empty();
  }
  static bool Has(const Strings& texts, const std::string& text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
  }
  static bool IsRefused(const Strings& captions) {
    return Has(captions, "Profile Already Exists") || Has(captions, "Invalid Profile File Name") ||
           Has(captions, "Profile File Already Exists") || Has(captions, "Missing Profile Name");
  }

  void ChooseProfile() {
    if (listed.empty()) return;
    const std::string name = OneListed();
    screen.Choose(kProfileList, name);
    AfterAChoice(name, AnswerBoxes());
  }
  void NewProfile() {
    const std::string before = screen.Chosen(kProfileList);
    const std::string name = random.OneOf(kNames);
    screen.Click(kNewProfile);
    if (random.OneIn(4)) sim.RunFor(random.Below(6000));
    screen.Type(new_profile::kName, name);
    if (random.OneIn(6)) return screen.Click(IDCANCEL);
    screen.Click(IDOK);
    const Strings captions = AnswerBoxes();
    if (IsRefused(captions)) return;
    if (Has(captions, "Profile Creation Error")) return AfterAChoice(before, captions);
    listed.push_back(name);
  }
  void DeleteProfile() {
    if (listed.empty()) return;
    const std::string before = screen.Chosen(kProfileList);
    screen.Click(kDeleteProfile);
    if (random.OneIn(3)) return screen.Click(IDCANCEL);
    deleted = before;
    screen.Click(IDOK);
    const Strings captions = AnswerBoxes();
    if (Has(captions, "Profile Deletion Error")) return;
    listed.erase(std::find(listed.begin(), listed.end(), before));
    if (listed.empty()) return;
    AfterAChoice(*std::min_element(listed.begin(), listed.end(), ComesBefore), captions);
  }
  void CopyOrRename(std::uint32_t button) {
    if (listed.empty()) return;
    const std::string before = screen.Chosen(kProfileList);
    const std::string name = random.OneOf(kNames);
    screen.Click(button);
    screen.Type(profile_name::kName, name);
    if (random.OneIn(6)) return screen.Click(IDCANCEL);
    screen.Click(IDOK);
    if (IsRefused(AnswerBoxes())) {
      if (name.empty()) screen.Click(IDCANCEL);
      return;
    }
    if (button == kRenameProfile) listed.erase(std::find(listed.begin(), listed.end(), before));
    listed.push_back(name);
  }
  void WorkTheMouseTab() {
    ToTab(MainWindow::kMouseTab);
    switch (random.Below(4)) {
      case 0:
        return screen.Click(kTestMode);
      case 1:
        return screen.Click(kMouseAlwaysActive);
      case 2:
        return screen.MoveSlider(ControlEngine::kMovementSensitivitySlider,
                                 static_cast<std::int32_t>(random.Below(51)));
      default:
        return screen.Click(kDetectBoxes[random.Below(6)].box);
    }
  }
  void WorkTheDeviceTab() {
    ToTab(MainWindow::kDeviceTab);
    if (random.OneIn(2)) return screen.Click(kRefreshDeviceList);
    const Strings rows = screen.Rows(kDeviceList);
    screen.Choose(kDeviceList, rows[random.Below(static_cast<std::uint32_t>(rows.size()))]);
    AnswerBoxes();
  }
  void WorkTheControlTab() {
    ToTab(MainWindow::kControlTab);
    const auto rows = static_cast<std::uint32_t>(screen.Cells(kControlList).size());
    if (rows > 0) {
      std::set<std::int32_t> chosen;
      for (std::uint32_t n = random.Between(1, 2); n > 0; --n) {
        chosen.insert(static_cast<std::int32_t>(random.Below(rows)));
      }
      screen.SelectRows(kControlList, {chosen.begin(), chosen.end()});
    }
    constexpr std::uint32_t kButtons[] = {kCopyControls, kPasteControls, kMoveUp, kMoveDown,
                                          kDeleteControls};
    screen.Click(kButtons[random.Below(rows > 20 ? 5 : 4)]);
    AnswerBoxes();
  }
  void WorkTheSettingsTab() {
    ToTab(MainWindow::kSettingsTab);
    screen.Click(kAdvanced);
    if (random.OneIn(2)) screen.Click(advanced_settings::kAutodetectDevicePlugin);
    screen.Click(random.OneIn(3) ? IDCANCEL : IDOK);
  }
  void HideAndShow() {
    screen.Minimise();
    EXPECT_FALSE(screen.Shown());
    sim.RunFor(random.Below(3000));
    PlayPad();
    screen.IconDoubleClick();
  }

  // However long its replay would still take.
  void CloseWhileAReplayHangs() {
    for (SimulatedDevice* const device : {&stick, &pad}) {
      device->Return();
      device->PlugIn();
    }
    const auto plays = [this] {
      return Device()->DeviceSelected() && OpenProfile().controls.count > 0;
    };
    for (int i = 0; i < 10 && !plays(); ++i) ChooseProfile();
    hangs = true;
    for (int i = 0; i < 40 && hangs; ++i) {
      PlayPad();
      sim.RunFor(100);
    }
    if (!hangs) ++replaysHung;
    hangs = false;
    const std::uint64_t asked = sim.Now();
    CloseAll();
    EXPECT_LE(sim.Now() - asked, kLongestEnd);
  }

  void End() {
    if (screen.Running()) {
      // A thread that is ended by force keeps what it has, which a sanitizer calls a leak.
      if (!KELVARO_SANITIZED && random.OneIn(2)) {
        CloseWhileAReplayHangs();
      } else {
        CloseAll();
      }
      ASSERT_FALSE(screen.Running());
    }
    ExpectNothingLeft();
    if (further != 0) {
      EXPECT_FALSE(sim.Processes().Runs(further));
    }
    if (game != 0) sim.Processes().End(game);
    game = further = 0;
  }

  // The program ends and begins again: its list is what the folder holds.
  void Restart() {
    End();
    unsaved = false;
    leftBehind.clear();
    held = {};  // by the system, which takes back what an ended program has down
    LinkedList<ByteString> names;
    ProfileFile().ListProfileNames(&names);
    listed = Texts(names);
    const std::string played = AskForAGame();
    const std::string last = played.empty() ? SettingText("Last Profile").value_or("") : played;
    ProcessDescription instance;
    instance.path = own;
    const std::uint32_t other = sim.Processes().Add(instance);
    const std::size_t startedBefore = sim.Processes().Started().size();
    Begin();
    std::string first;
    for (const std::string& name : listed) {
      if (name == last) first = name;
    }
    if (first.empty() && !listed.empty()) {
      first = *std::min_element(listed.begin(), listed.end(), ComesBefore);
    }
    AfterAChoice(first, AnswerBoxes());
    if (!played.empty()) ExpectTheGame(startedBefore, other);
    if (sim.Processes().Runs(other)) sim.Processes().End(other);
  }

  void Act() {
    switch (random.Below(25)) {
      case 0:
      case 1:
      case 2:
        return ChooseProfile();
      case 3:
      case 4:
        return NewProfile();
      case 5:
        return DeleteProfile();
      case 6:
      case 7:
        return CopyOrRename(kCopyProfile);
      case 8:
      case 9:
        return CopyOrRename(kRenameProfile);
      case 10:
      case 11:
      case 12:
        return WorkTheMouseTab();
      case 13:
      case 14:
        return WorkTheDeviceTab();
      case 15:
      case 16:
      case 17:
        return WorkTheControlTab();
      case 18:
        return WorkTheSettingsTab();
      case 19:
        return HideAndShow();
      case 20:
        return PlugAbout();
      case 21:
        return SaveALauncher();
      default:
        PlayPad();
        return sim.RunFor(random.OneIn(4) ? random.Below(12000) : random.Below(300));
    }
  }

  void Step() {
    if (random.OneIn(60)) return Restart();
    if (game != 0 && random.OneIn(20)) return EndGame();
    if (random.OneIn(30)) TouchTheFolder();
    if (random.OneIn(3)) PlayPad();
    const std::string name = OpenName();
    const auto files = Files();
    const bool faulty = random.OneIn(5);
    if (faulty) PlanAFault();
    deleted.clear();
    Act();
    AnswerBoxes();
    if (sim.Disk().IsStopped()) return LosePower(name, files);
    sim.Disk().Restart();
    Check(faulty, name, files);
  }
  void PlanAFault() {
    const std::uint64_t n = random.Between(1, 40);
    switch (random.Below(5)) {
      case 0:
        return sim.Disk().StopBefore(n);
      case 1:
      case 2:
        return sim.Disk().FailOperation(n);
      default:
        return sim.Disk().FailInside(n, random.Below(300));
    }
  }
  // The machine stopped within the act. Each profile is back as it was, or whole as it was to be.
  void LosePower(const std::string& nameBefore, const std::map<std::string, std::string>& before) {
    const std::string path = PathOf(OpenName());
    CloseAll();
    ASSERT_FALSE(screen.Running());
    sim.Disk().CutPower([this](std::uint32_t n) { return random.Below(n); });
    LinkedList<ByteString> names;
    ProfileFile().ListProfileNames(&names);
    CheckLauncher();
    CheckOthers(nameBefore, path, before);
    const auto isWhole = [](const std::string& file) {
      ProfileFile profile;
      return profile.Load(TextOf(file)) && profile.DamagedFile().IsEmpty();
    };
    const auto old = before.find(PathOf(nameBefore));
    if (old != before.end() && touched.count(old->first) == 0) {
      const auto now = sim.Disk().FileBytes(old->first);
      const bool isGone = !now && (deleted == nameBefore || isWhole(path));
      EXPECT_TRUE(isGone || now == old->second || isWhole(old->first)) << old->first;
    }
    ++powerCuts;
    Restart();
  }

  // ---- What holds after each act

  std::string OpenName() { return Bytes(OpenProfile().profileName); }
  static std::string PathOf(const std::string& name) { return kFolder + FileNameOf(name); }
  std::string OneListed() {
    return listed[random.Below(static_cast<std::uint32_t>(listed.size()))];
  }

  // A replay has its locks for as long as it takes, and gives them back.
  void ExpectNoLock() {
    const RecursiveLock* const locks[] = {&Device()->deviceLock, &Engine().mouseLock,
                                          &OpenProfile().profileLock,
                                          &Engine().repeatWorker.repeatLock};
    const auto isTaken = [](const RecursiveLock* lock) { return lock->IsTaken(); };
    const auto anyTaken = [&] { return std::any_of(std::begin(locks), std::end(locks), isTaken); };
    for (int i = 0; i < 8000 && anyTaken(); ++i) sim.RunFor(1);
    EXPECT_FALSE(anyTaken());
  }

  // As a save would write it now.
  std::string BytesInMemory() {
    EXPECT_TRUE(OpenProfile().SaveAs("/home/player/now"));
    const std::string bytes = sim.Disk().FileBytes("/home/player/now").value_or("");
    sim.Disk().Remove("/home/player/now");
    return bytes;
  }

  void Check(bool faulty, const std::string& nameBefore,
             const std::map<std::string, std::string>& before) {
    EXPECT_FALSE(screen.BoxUp());
    EXPECT_EQ(screen.Front(), main_window::kDialog);
    EXPECT_EQ(sim.Disk().OpenHandles(), 0u);
    EXPECT_EQ(sim.Registry().OpenHandles(), 0u);
    ExpectNoLock();
    CheckList();
    CheckLauncher();
    CheckFolder(faulty);
    const auto old = before.find(PathOf(nameBefore));
    CheckFile(faulty, nameBefore, old == before.end() ? "" : old->second);
    CheckOthers(nameBefore, PathOf(OpenName()), before);
    CheckEngine();
    CheckScreen();
    CheckWhatRuns();
  }

  // The files of profiles that the act didn't concern. What is left of a save may take the place of
  // one that can't be read.
  void CheckOthers(const std::string& nameBefore, const std::string& openNow,
                   const std::map<std::string, std::string>& before) {
    for (const auto& [path, bytes] : before) {
      if (!path.ends_with(".idprof") || path == PathOf(nameBefore) || path == openNow) continue;
      if (touched.count(path) != 0 || touched.count(path + ".tmp") != 0) continue;
      if (before.count(path + ".tmp") != 0) continue;
      EXPECT_EQ(sim.Disk().FileBytes(path), bytes) << path;
    }
  }

  // Threads, handles and what else the program has: always the same where the same is open.
  void CheckWhatRuns() {
    screen.Settle();  // its look for pads each five seconds selects one, and may be under way
    const std::vector<std::uint32_t> now = {sim.LivingThreads(), sim.OpenHandles(),
                                            sim.OpenDeviceObjects(), sim.OpenTimerPeriods()};
    const std::array open = {Device()->DeviceSelected(), game != 0, further != 0};
    EXPECT_EQ(now, running.emplace(open, now).first->second)
        << "threads, handles, device objects, timer periods";
  }

  void CheckList() {
    Strings shown = screen.Rows(kProfileList);
    EXPECT_TRUE(std::is_sorted(shown.begin(), shown.end(), ComesBefore));
    Strings expected = listed;
    std::sort(expected.begin(), expected.end());
    std::sort(shown.begin(), shown.end());
    EXPECT_EQ(shown, expected);
    EXPECT_EQ(OpenName(), screen.Chosen(kProfileList));
    if (!listed.empty()) {
      EXPECT_EQ(SettingText("Last Profile").value_or(""), OpenName());
    }
    EXPECT_EQ(Bytes(Settings().lastProfile), SettingText("Last Profile").value_or(""));
  }

  // The list shows what the folder holds, but for what a failure or somebody else left behind.
  void CheckFolder(bool faulty) {
    LinkedList<ByteString> names;
    ProfileFile().ListProfileNames(&names);
    const Strings all = Texts(names);
    const std::set<std::string> held(all.begin(), all.end());
    const std::set<std::string> shown(listed.begin(), listed.end());
    std::set<std::string> differing;
    std::set_symmetric_difference(held.begin(), held.end(), shown.begin(), shown.end(),
                                  std::inserter(differing, differing.end()));
    for (const std::string& name : differing) {
      const std::string path = PathOf(name);
      EXPECT_TRUE(faulty || leftBehind.count(name) != 0 || everTouched.count(path) != 0 ||
                  everTouched.count(path + ".tmp") != 0)
          << name << (held.count(name) != 0 ? " isn't shown" : " has no file");
    }
    leftBehind = differing;
  }

  void CheckFile(bool faulty, const std::string& nameBefore, const std::string& before) {
    const std::string name = OpenName();
    if (name.empty()) return;
    const std::string path = PathOf(name);
    const std::string now = BytesInMemory();
    const std::string stored = sim.Disk().FileBytes(path).value_or("");
    if (stored == now) {
      unsaved = false;
      touched.erase(path);
      return;
    }
    // Not what it should be only after a failure, and then whole: the old or none.
    if (name != nameBefore && !faulty) unsaved = false;
    if (faulty) unsaved = true;
    if (touched.count(path) != 0 || touched.count(path + ".tmp") != 0) return;
    EXPECT_TRUE(unsaved) << name;
    if (!stored.empty() && name == nameBefore) {
      EXPECT_EQ(stored, before) << name;
    }
  }

  void CheckEngine() {
    ProfileFile& open = OpenProfile();
    EXPECT_EQ(open.DispatchList.count, open.controls.count);
    const Control* const repeating = Engine().repeatWorker.Repeating();
    bool found = repeating == nullptr;
    std::uint32_t weight = UINT32_MAX;
    for (const Control& control : open.DispatchList) {
      if (&control == repeating) found = true;
      EXPECT_LE(control.Weight(), weight);
      weight = control.Weight();
      EXPECT_EQ(control.actionsBorrowed, 1);
    }
    EXPECT_TRUE(found) << "what repeats is gone";
    if (mouseShown) {
      EXPECT_EQ(Engine().movementFactor, open.movementSensitivity + 2);
    }
    EXPECT_EQ(reasons.Disagreement(Engine(), held), "");
    if (Device()->DeviceSelected()) {
      EXPECT_EQ(CurrentDeviceName(), Bytes(Device()->SelectedName()));
    }
  }

  void CheckScreen() {
    EXPECT_EQ(screen.Tab(kTabControl), CurrentTab());
    EXPECT_EQ(screen.Cells(kControlList).size(),
              static_cast<std::size_t>(OpenProfile().controls.count));
    if (CurrentTab() != MainWindow::kMouseTab) {
      EXPECT_FALSE(Engine().TestMode());
      EXPECT_FALSE(Engine().IsDetecting());
    }
    for (const DetectBox& detect : kDetectBoxes) {
      EXPECT_EQ(screen.Checked(detect.box), Engine().DetectedRole() == MouseRole{detect.field})
          << detect.box;
    }
    if (mouseShown) {
      EXPECT_EQ(screen.Slider(ControlEngine::kMovementSensitivitySlider),
                OpenProfile().movementSensitivity);
    }
  }

  const std::string own = sim.Disk().GetModuleFileNameA();
  Random random;
  HeldInputs held;
  swarm::Reasons reasons;
  SimulatedDevice& stick = MainWindowTest::AddPad("Stick");
  Strings listed;                    // names that the list should show
  std::set<std::string> leftBehind;  // names that are in the list or the folder alone
  std::set<std::string> everTouched;
  std::set<std::string> touched;  // files, by somebody else
  bool mouseShown = false;        // the settings of the mouse, since the last load
  bool unsaved = false;           // the open profile, by a failure
  std::string deleted;            // in this act, if it wasn't refused
  rendlink::TestSession rendlinkSession;
  std::optional<std::string> launcher;  // its bytes
  bool hangs = false;                   // the replay that sends the next key
  std::uint32_t game = 0;               // processes, 0 for none
  std::uint32_t further = 0;
  std::map<std::array<bool, 3>, std::vector<std::uint32_t>> running;
  // What has been lived through.
  int gamesEnded = 0;
  int launchersUsed = 0;
  int powerCuts = 0;
  int replaysHung = 0;
};

TEST_P(RandomSessionTest, HoldsTogether) {
  Restart();
  for (int step = 0; step < 300; ++step) {
    SCOPED_TRACE(testing::Message() << "step " << step);
    Step();
    if (HasFailure()) return;
  }
}

// A whole one, and what it sent.
class PlayedSession : public RandomSessionTest {
 public:
  explicit PlayedSession(std::uint32_t seed) : RandomSessionTest(seed) { sim.KeepEvents(true); }

  std::string Sent(bool timersSleep) {
    sim.LetTimersSleep(timersSleep);
    Restart();
    for (int step = 0; step < 200 && !HasFailure(); ++step) Step();
    CloseAll();
    return sim.EventText();
  }

  using RandomSessionTest::gamesEnded;
  using RandomSessionTest::launchersUsed;
  using RandomSessionTest::powerCuts;
  using RandomSessionTest::replaysHung;

 private:
  void TestBody() override {}
};

// Whatever the person does may be what the sleeping poll has to hear of.
TEST(RandomSessionTwice, SendsTheSameWhetherThePollsSleepOrNot) {
  std::ptrdiff_t events = 0;
  int games = 0;
  int launchers = 0;
  int powerCuts = 0;
  int hung = 0;
  // What the sanitizers find they find in each session played once, above.
  const std::uint32_t sessions = KELVARO_SANITIZED ? Sessions() / 3 : Sessions();
  for (std::uint32_t seed = 1; seed <= sessions; ++seed) {
    const std::string without = PlayedSession(seed).Sent(false);
    PlayedSession played(seed);
    const std::string with = played.Sent(true);
    ASSERT_EQ(with, without) << "seed " << seed;
    events += std::count(with.begin(), with.end(), '\n');
    games += played.gamesEnded;
    launchers += played.launchersUsed;
    powerCuts += played.powerCuts;
    hung += played.replaysHung;
  }
  EXPECT_GT(events, 100 * sessions);
  EXPECT_GT(games, 2);
  EXPECT_GT(launchers, 2);
  EXPECT_GT(powerCuts, 2);
  EXPECT_TRUE(hung > 2 || KELVARO_SANITIZED);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomSessionTest, testing::Range(1u, 1u + Sessions()));

}  // namespace
}  // namespace kelvaro
