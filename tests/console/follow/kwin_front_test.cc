// KWin under the test's hands, on a message bus of the test's own: what it is asked, and what its
// script says.

#include <dbus/dbus.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "console/linux/front_source.h"
#include "tests/host/files.h"
#include "tests/host/patience.h"
#include "tests/host/refused_calls.h"
#include "tests/platform/linux/bus_service.h"
#include "tests/platform/linux/own_bus.h"

namespace kelvaro::console {
namespace {

using Texts = std::vector<std::string>;

class FakeKWin {
 public:
  explicit FakeKWin(const std::string& address)
      : service(address, "org.kde.KWin", [this](DBusMessage* message) { Answer(message); }) {}

  void Refuse(const std::string& member) { refused = member; }  // before it is asked
  // Each by its name and the texts that it has.
  std::vector<Texts> Calls() {
    const std::lock_guard<std::mutex> lock(mutex);
    return calls;
  }
  // Has the script call its listener.
  void Say(const std::string& listener, const char* interface, const char* member,
           const Texts& texts) {
    DBusMessage* const call =
        dbus_message_new_method_call(listener.c_str(), "/", interface, member);
    dbus_message_set_no_reply(call, TRUE);
    for (const std::string& text : texts) {
      const char* const value = text.c_str();
      dbus_message_append_args(call, DBUS_TYPE_STRING, &value, DBUS_TYPE_INVALID);
    }
    service.Send(call);
    dbus_message_unref(call);
  }

 private:
  void Answer(DBusMessage* message) {
    if (dbus_message_get_type(message) != DBUS_MESSAGE_TYPE_METHOD_CALL) return;
    Texts call = {dbus_message_get_member(message)};
    DBusMessageIter values;
    for (bool more = dbus_message_iter_init(message, &values); more;
         more = dbus_message_iter_next(&values)) {
      const char* text = nullptr;
      dbus_message_iter_get_basic(&values, &text);
      call.emplace_back(text);
    }
    DBusMessage* const reply = call[0] == refused
                                   ? dbus_message_new_error(message, DBUS_ERROR_ACCESS_DENIED, "no")
                                   : dbus_message_new_method_return(message);
    {
      const std::lock_guard<std::mutex> lock(mutex);
      calls.push_back(call);
    }
    service.Send(reply);
    dbus_message_unref(reply);
  }

  std::string refused;
  std::mutex mutex;  // of `calls`
  std::vector<Texts> calls;
  platform::BusService service;
};

class KWinFrontTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(daemon.Address(), "");
    kwin = std::make_unique<FakeKWin>(daemon.Address());
  }

  std::unique_ptr<FrontSource> Open() { return OpenKWinFront(daemon.Address(), &error); }
  // Opens it, and takes its listener's name from its script.
  void Begin() {
    source = Open();
    ASSERT_TRUE(source) << error;
    scriptFile = kwin->Calls().at(1).at(1);
    const std::string script = tests::Content(scriptFile), begin = "var listener = \"";
    ASSERT_TRUE(script.starts_with(begin)) << script;
    listener = script.substr(begin.size(), script.find('"', begin.size()) - begin.size());
  }
  void Say(const Texts& texts) { kwin->Say(listener, "kelvaro.Follow", "Front", texts); }
  // The next news that aren't none.
  FrontNews News() {
    FrontNews news = FrontNews::None;
    tests::Eventually([&] { return (news = source->Read(&window, &error)) != FrontNews::None; });
    return news;
  }
  Texts FilesLeft() const {
    Texts files;
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(folder.In("kelvaro"), missing))
      files.push_back(entry.path().filename());
    return files;
  }

  const tests::TemporaryFolder folder;
  const tests::Variable runtime{"XDG_RUNTIME_DIR", folder.folder.c_str()};
  platform::Bus daemon;
  std::unique_ptr<FakeKWin> kwin;
  std::unique_ptr<FrontSource> source;
  std::string scriptFile;
  std::string listener;
  std::optional<FrontWindow> window;
  std::string error;
};

TEST_F(KWinFrontTest, ItsScriptIsLoadedInThePlaceOfAnEarlierOneAndUnloadedAtTheEnd) {
  Begin();
  const std::vector<Texts> begun = {
      {"unloadScript", "kelvaro-follow"}, {"loadScript", scriptFile, "kelvaro-follow"}, {"start"}};
  EXPECT_EQ(kwin->Calls(), begun);
  EXPECT_GE(source->Descriptor(), 0);
  source.reset();
  EXPECT_EQ(kwin->Calls().size(), 4u);
  EXPECT_EQ(kwin->Calls().back(), begun[0]);
  EXPECT_EQ(FilesLeft(), Texts{});
}

TEST_F(KWinFrontTest, TheWindowInFrontIsAsTheScriptSays) {
  Begin();
  EXPECT_EQ(source->Read(&window, &error), FrontNews::None);
  Say({std::to_string(getpid()), "doom", "Level 1"});
  EXPECT_EQ(News(), FrontNews::Window);
  EXPECT_EQ(window, (FrontWindow{"test_console", "doom", "Level 1"}));
  EXPECT_EQ(FilesLeft(), Texts{}) << "the script has been read";
  Say({"4294967296", "doom", "Level 2"});
  EXPECT_EQ(News(), FrontNews::Window);
  EXPECT_EQ(window, (FrontWindow{"", "doom", "Level 2"})) << "no process has that number";
  Say({"", "", ""});
  EXPECT_EQ(News(), FrontNews::Window);
  EXPECT_EQ(window, std::nullopt);
  EXPECT_EQ(source->Read(&window, &error), FrontNews::None);
}

TEST_F(KWinFrontTest, WhatElseIsSaidIsNoNews) {
  Begin();
  kwin->Say(listener, "kelvaro.Follow", "Behind", {"1", "doom", "Level 1"});
  kwin->Say(listener, "kelvaro.Other", "Front", {"1", "doom", "Level 1"});
  Say({"1", "doom"});
  Say({"", "", ""});
  EXPECT_EQ(News(), FrontNews::Window);
  EXPECT_EQ(window, std::nullopt);
}

TEST_F(KWinFrontTest, ItsEndIsTold) {
  Begin();
  kwin.reset();
  EXPECT_EQ(News(), FrontNews::Ended);
  EXPECT_EQ(error, "KWin has ended");
}

TEST_F(KWinFrontTest, TheEndOfTheBusIsItsEndToo) {
  Begin();
  daemon.Stop();
  EXPECT_EQ(News(), FrontNews::Ended);
  EXPECT_EQ(error, "KWin has ended");
}

TEST_F(KWinFrontTest, WhereItRefusesOrIsNotThereNobodyTells) {
  for (const char* member : {"unloadScript", "loadScript", "start"}) {
    kwin->Refuse(member);
    EXPECT_FALSE(Open()) << member;
    EXPECT_EQ(error, "KWin doesn't answer on the session's bus");
    EXPECT_EQ(FilesLeft(), Texts{}) << member;
  }
  kwin.reset();
  EXPECT_FALSE(Open());
  daemon.Stop();
  EXPECT_FALSE(Open());
}

TEST_F(KWinFrontTest, WhereTheScriptCanNotBeWrittenNobodyTells) {
  for (const long call : {SYS_openat, SYS_write}) {
    tests::WhereRefused({{call, ENOSPC}}, [&] { EXPECT_FALSE(Open()) << call; });
    EXPECT_EQ(FilesLeft(), Texts{}) << call;
  }
}

}  // namespace
}  // namespace kelvaro::console
