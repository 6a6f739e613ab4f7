// rendlink.exe itself, with the real kelvaro.exe and a game that notes how it was started.
#include "rendlink/resources.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "app/platform/simulation/simulation.h"
#include "player.h"
#include "rendlink/program/windows/windows_session.h"
#include "storage/profile_file.h"
#include "tests/host/files.h"
#include "tests/host/patience.h"

// Last.
#include <windows.h>

#include <objbase.h>
#include <shellapi.h>

#include "tests/rendlink/program/windows/read_shortcut.h"

namespace kelvaro::tests {
namespace {

namespace fs = std::filesystem;

// The bytes of an empty profile.
std::string ProfileBytes(const std::string& name) {
  platform::simulation::Simulation sim;
  sim.Disk().SetProgramPath("/game/kelvaro");
  ProfileFile made;
  made.profileName = ByteString(name.c_str());
  EXPECT_TRUE(made.Save());
  return sim.Disk().FileBytes("/game/Profiles/" + name + ".idprof").value_or("");
}

// For as long as shortcuts are read.
struct Com {
  Com() : is(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
  ~Com() {
    if (is) CoUninitialize();
  }
  Com(const Com&) = delete;
  Com& operator=(const Com&) = delete;
  const bool is;
};

class WindowsRendlink : public ::testing::Test {
 protected:
  WindowsRendlink() {
    ForgetSettings();
    KeepQuiet();
    fs::copy_file(KELVARO_PROGRAM, folder.In("kelvaro.exe"));
    fs::copy_file(KELVARO_RENDLINK, folder.In("rendlink.exe"));
    fs::copy_file(KELVARO_DINPUT, folder.In("dinput8.dll"));
    fs::create_directory(folder.In("My Games"));
    fs::copy_file(KELVARO_GAME, game);
    Put(folder.In("Profiles\\Race 2.idprof"), ProfileBytes("Race 2"));
  }
  ~WindowsRendlink() override { ForgetSettings(); }

  std::unique_ptr<Program> Start(const std::string& arguments) {
    return std::make_unique<Program>(folder.folder, arguments, "rendlink.exe", printed);
  }
  std::unique_ptr<Program> Play(const std::string& line) {
    return Start("--profile race -- " + line);
  }
  std::string Printed() const { return Content(printed); }
  // What the game noted; empty as long as there is nothing.
  std::string Notes() const { return Content(notes); }
  static bool KelvaroRuns() {
    return Eventually([] { return ProcessOf("kelvaro.exe") != 0; });
  }
  static bool KelvaroEnds() {
    return Eventually([] { return ProcessOf("kelvaro.exe") == 0; });
  }
  // The frontmost window of that title, once it is another one.
  static std::uintptr_t AwaitOther(const Program& program, const std::string& title,
                                   std::uintptr_t than) {
    std::uintptr_t found = 0;
    EXPECT_TRUE(Eventually([&] {
      found = program.Await(title);
      return found != than;
    })) << title;
    return found;
  }

  static constexpr std::uint32_t kTextOfBox = 0xFFFF;
  const Com com;
  TemporaryFolder folder;
  const std::string game = folder.In("My Games\\noting game.exe");
  const std::string notes = folder.In("notes.txt");
  const std::string printed = folder.In("printed.txt");
  const Variable noting{"KELVARO_GAME_NOTES", notes.c_str()};
};

TEST_F(WindowsRendlink, TheGameGetsItsLineAsItWasTypedAndItsStatusComesBack) {
  const Variable status("KELVARO_GAME_STATUS", "7");
  const std::string line =
      '"' + game + "\" -x=\"a b\"  [1] p|q \"\" \"q\\\"q\" * %PATH% ^ -- -h \xC3\xA9";
  const auto rendlink = Play(line);
  EXPECT_EQ(rendlink->AwaitEnd(), 7) << Printed();
  EXPECT_EQ(Notes(), line + "\n" + folder.folder + "\n\n");
  EXPECT_EQ(Printed().rfind("to the screen", 0), 0u) << Printed();
}

TEST_F(WindowsRendlink, TheGameStartsInTheFolderThatIsTold) {
  const auto rendlink =
      Start("--profile race --dir \"" + folder.In("My Games") + "\" -- \"" + game + '"');
  EXPECT_EQ(rendlink->AwaitEnd(), 0) << Printed();
  EXPECT_EQ(Notes(), '"' + game + "\"\n" + folder.In("My Games") + "\n\n");
}

TEST_F(WindowsRendlink, AnUnknownProfileIsToldBeforeAnythingIsStarted) {
  const auto rendlink = Start("--profile Nobody -- \"" + game + '"');
  EXPECT_EQ(rendlink->AwaitEnd(), 2);
  EXPECT_EQ(Printed(), "rendlink: There is no profile whose name begins with \"Nobody\".\n");
  EXPECT_EQ(Notes(), "");
}

TEST_F(WindowsRendlink, AGameThatCantBeRunIsToldAsAShellDoes) {
  const std::string data = Put(folder.In("data"), "text");
  const struct {
    std::string game;
    int status;
  } kRows[] = {{"no-such-game", 127}, {data, 126}, {folder.In("My Games"), 126}};
  for (const auto& row : kRows) {
    const auto rendlink = Play('"' + row.game + '"');
    EXPECT_EQ(rendlink->AwaitEnd(), row.status) << row.game;
    const std::string said = "rendlink: " + row.game + ": ";
    EXPECT_EQ(Printed().rfind(said, 0), 0u) << Printed();
    EXPECT_GT(Printed().size(), said.size() + 1) << "the system's words follow";
  }
}

TEST_F(WindowsRendlink, WithoutKelvaroBesideItNothingCanBeDone) {
  fs::remove(folder.In("kelvaro.exe"));
  for (const std::string rest : {" --target \"", " -- \""}) {
    const auto rendlink = Start("--profile race" + rest + game + '"');
    EXPECT_EQ(rendlink->AwaitEnd(), 1);
    EXPECT_EQ(Printed(), "rendlink: The program kelvaro.exe isn't in " + folder.folder +
                             ", where Rendlink lies.\n");
  }
}

// Here before the welcome, which waits for a person.
TEST_F(WindowsRendlink, WhereKelvaroEndsBeforeTheGameBeganThereIsNoStatus) {
  ForgetSettings();
  const auto rendlink = Play('"' + game + '"');
  ASSERT_TRUE(KelvaroRuns());
  Program kelvaro(ProcessOf("kelvaro.exe"));
  ASSERT_NE(kelvaro.Await("Welcome to Kelvaro"), 0u);
  kelvaro.End();
  EXPECT_EQ(rendlink->AwaitEnd(), 1);
  EXPECT_EQ(Printed(), "rendlink: Kelvaro ended without having started the game\n");
  EXPECT_EQ(Notes(), "");
}

TEST_F(WindowsRendlink, TheGameGoesOnWhenKelvaroIsGone) {
  const std::string flag = folder.In("flag");
  const Variable waits("KELVARO_GAME_WAITS", flag.c_str());
  const Variable status("KELVARO_GAME_STATUS", "4");
  const auto rendlink = Play('"' + game + '"');
  ASSERT_TRUE(Eventually([&] { return !Notes().empty(); })) << Printed();
  Program kelvaro(ProcessOf("kelvaro.exe"));
  kelvaro.End();
  ASSERT_TRUE(KelvaroEnds());
  EXPECT_TRUE(rendlink->Runs());
  Put(flag, "end");
  EXPECT_EQ(rendlink->AwaitEnd(), 4) << Printed();
}

TEST_F(WindowsRendlink, PrintsTheCommandAndStartsIt) {
  const std::string choice =
      "--profile race --target \"" + game + "\" --args \"-map \\\"My Level\\\"\"";
  EXPECT_EQ(Start(choice)->AwaitEnd(), 0) << Printed();
  EXPECT_EQ(Printed(), '"' + folder.In("kelvaro.exe") + "\" \"profile=Race 2\" \"target=" + game +
                           "\" \"args=-map [My Level]\"\n");
  EXPECT_EQ(Start(choice + " --start")->AwaitEnd(), 0) << Printed();
  EXPECT_EQ(Printed(), "");
  EXPECT_TRUE(Eventually([&] {
    return Notes() == '"' + game + "\" -map \"My Level\"\n" + folder.In("My Games") + "\n\n";
  })) << Notes();
  EXPECT_TRUE(KelvaroEnds());
}

TEST_F(WindowsRendlink, ALauncherThatIsOpenedStartsTheGame) {
  const std::string file = folder.In("J\xC3\xBCmp.lnk");
  EXPECT_EQ(Start("--profile race --target \"" + game +
                  "\" --args \"-map \\\"My Level\\\"\" --save \"" + file + '"')
                ->AwaitEnd(),
            0);
  EXPECT_EQ(Printed(), "");
  const auto held = rendlink::ReadShortcut(file);
  ASSERT_TRUE(held);
  EXPECT_EQ(held->program, folder.In("kelvaro.exe"));
  EXPECT_EQ(held->arguments, "\"profile=Race 2\" \"target=" + game + "\" \"args=-map [My Level]\"");
  EXPECT_EQ(held->comment, "Starts noting game with the profile Race 2");
  EXPECT_EQ(held->icon, game);
  EXPECT_GT(reinterpret_cast<std::intptr_t>(
                ShellExecuteA(nullptr, "open", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL)),
            32);
  EXPECT_TRUE(Eventually([&] { return !Notes().empty(); }));
  EXPECT_EQ(Notes(), '"' + game + "\" -map \"My Level\"\n" + folder.In("My Games") + "\n\n");
  EXPECT_TRUE(KelvaroEnds());
}

TEST_F(WindowsRendlink, CarryingIsForItsOwnUse) {
  EXPECT_EQ(Start("--carry 1 2")->AwaitEnd(), 1);
  EXPECT_EQ(Printed(), "rendlink: --carry is for Rendlink's own use, and nobody waits at 1\n");
}

TEST_F(WindowsRendlink, ItsWindowShowsTheCommandAndStartsIt) {
  const auto rendlink = Start("");
  const std::uintptr_t window = rendlink->Await("Rendlink");
  ASSERT_NE(window, 0u);
  EXPECT_EQ(Text(window, rendlink::kCommand), "Choose a target, which is the program to start.");
  EXPECT_EQ(Rows(window, rendlink::kPlace), 2u);
  EXPECT_EQ(RowText(window, rendlink::kPlace, 1), "Start menu");
  Enter(window, rendlink::kTarget, game);
  EXPECT_TRUE(Eventually([&] {
    return Text(window, rendlink::kCommand) ==
           '"' + folder.In("kelvaro.exe") + "\" \"profile=Race 2\" \"target=" + game + '"';
  })) << Text(window, rendlink::kCommand);
  Click(window, rendlink::kStart);
  EXPECT_TRUE(Eventually([&] { return !Notes().empty(); }));
  const std::uintptr_t box = AwaitOther(*rendlink, "Rendlink", window);
  EXPECT_EQ(Text(box, kTextOfBox), "Kelvaro was started. It starts the target.");
  Post(box, WM_CLOSE);
  ASSERT_EQ(AwaitOther(*rendlink, "Rendlink", box), window);
  Post(window, WM_CLOSE);
  EXPECT_EQ(rendlink->AwaitEnd(), 0);
  EXPECT_TRUE(KelvaroEnds());
}

TEST_F(WindowsRendlink, ItsWindowSavesALauncherAndAsksBeforeItReplacesOne) {
  const std::string file = rendlink::WindowsSession().DesktopFolder() + "\\noting game.lnk";
  fs::remove(file);
  const auto program = Start("");
  const std::uintptr_t window = program->Await("Rendlink");
  ASSERT_NE(window, 0u);
  Enter(window, rendlink::kTarget, game);
  Click(window, rendlink::kSave);
  std::uintptr_t question = program->Await("Save Launcher");
  ASSERT_NE(question, 0u);
  Click(question, IDOK);
  const std::uintptr_t box = AwaitOther(*program, "Rendlink", window);
  EXPECT_EQ(Text(box, kTextOfBox), "The launcher was saved as \"" + file + "\".");
  Post(box, WM_CLOSE);
  const auto held = rendlink::ReadShortcut(file);
  ASSERT_TRUE(held);
  EXPECT_EQ(held->arguments, "\"profile=Race 2\" \"target=" + game + '"');

  Put(file, "another's");
  ASSERT_EQ(AwaitOther(*program, "Rendlink", box), window);
  Click(window, rendlink::kSave);
  question = program->Await("Save Launcher");
  ASSERT_NE(question, 0u);
  Click(question, IDOK);
  const std::uintptr_t asked = AwaitOther(*program, "Save Launcher", question);
  Click(asked, IDNO);
  ASSERT_EQ(AwaitOther(*program, "Save Launcher", asked), question);
  Click(question, IDCANCEL);
  ASSERT_TRUE(program->AwaitGone("Save Launcher"));
  EXPECT_EQ(Content(file), "another's");
  Post(window, WM_CLOSE);
  EXPECT_EQ(program->AwaitEnd(), 0);
  fs::remove(file);
}

}  // namespace
}  // namespace kelvaro::tests
