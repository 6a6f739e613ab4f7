// The manual as a whole: its links, its pictures, and the names that it takes from the window.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "app/resources/resources.h"
#include "rendlink/resources.h"
#include "tests/host/files.h"
#include "tests/manual/page.h"

namespace kelvaro::manual {
namespace {

namespace fs = std::filesystem;

constexpr char kContents[] = "index.htm";
constexpr char kFirstSteps[] = "First Steps.htm";

struct Target {
  std::string file;
  std::string place;
};

std::vector<Target> LinksOf(const Page& page) {
  std::vector<Target> targets;
  for (const std::string& link : Attributes(page, "a", "href")) {
    const std::size_t mark = link.find('#');
    const std::string file = DecodedAddress(link.substr(0, mark));
    targets.push_back({file.empty() ? page.name : file,
                       mark == std::string::npos ? std::string() : link.substr(mark + 1)});
  }
  return targets;
}

TEST(Manual, EveryLinkLeadsToAPageAndAPlaceOfIt) {
  std::map<std::string, Page> pages;
  for (const Page& page : Pages(KELVARO_MANUAL)) pages[page.name] = page;
  EXPECT_GE(pages.size(), 14u);
  for (const auto& [name, page] : pages) {
    for (const Target& target : LinksOf(page)) {
      ASSERT_TRUE(pages.contains(target.file)) << name << " leads to " << target.file;
      if (target.place.empty()) continue;
      const std::vector<std::string> places = Attributes(pages[target.file], "a", "name");
      EXPECT_EQ(std::count(places.begin(), places.end(), target.place), 1)
          << name << " leads to " << target.file << "#" << target.place;
    }
  }
}

TEST(Manual, EveryPageIsReachedFromTheContents) {
  std::map<std::string, Page> pages;
  for (const Page& page : Pages(KELVARO_MANUAL)) pages[page.name] = page;
  std::set<std::string> reached = {kContents};
  std::vector<std::string> ahead = {kContents};
  while (!ahead.empty()) {
    const Page page = pages[ahead.back()];
    ahead.pop_back();
    for (const Target& target : LinksOf(page)) {
      if (reached.insert(target.file).second) ahead.push_back(target.file);
    }
  }
  for (const auto& [name, page] : pages) EXPECT_TRUE(reached.contains(name)) << name;
  // The contents name each page themselves.
  std::set<std::string> named = {kContents};
  for (const Target& target : LinksOf(pages[kContents])) named.insert(target.file);
  for (const auto& [name, page] : pages) EXPECT_TRUE(named.contains(name)) << name;
}

TEST(Manual, EachPageLeadsToTheContentsAndTheFiveSteps) {
  for (const Page& page : Pages(KELVARO_MANUAL)) {
    std::set<std::string> leads = {page.name};
    for (const Target& target : LinksOf(page)) leads.insert(target.file);
    EXPECT_TRUE(leads.contains(kContents)) << page.name;
    EXPECT_TRUE(leads.contains(kFirstSteps)) << page.name;
  }
  EXPECT_EQ(Between(PageNamed(kFirstSteps).html, "<h2>", "</h2>").size(), 6u) << "five, and on";
}

TEST(Manual, EveryPictureIsThereAndSaysWhatItShows) {
  std::size_t count = 0;
  for (const Page& page : Pages(KELVARO_MANUAL)) {
    const std::vector<std::string> files = Attributes(page, "img", "src");
    for (const std::string& file : files) {
      const std::string path = std::string(KELVARO_MANUAL "/") + file;
      EXPECT_EQ(tests::Content(path).substr(1, 3), "PNG") << page.name << ": " << file;
      ++count;
    }
    const std::vector<std::string> texts = Attributes(page, "img", "alt");
    EXPECT_EQ(texts.size(), files.size()) << page.name;
    for (const std::string& text : texts) EXPECT_FALSE(text.empty()) << page.name;
  }
  EXPECT_GE(count, 10u);
}

TEST(Manual, EveryPictureIsMadeByThePhotographs) {
  const std::string source = tests::Content(KELVARO_PHOTOGRAPHS);
  ASSERT_FALSE(source.empty());
  for (const Page& page : Pages(KELVARO_MANUAL)) {
    for (const std::string& file : Attributes(page, "img", "src")) {
      EXPECT_NE(source.find('"' + fs::path(file).stem().string() + '"'), std::string::npos) << file;
    }
  }
}

// What lies in the program's folder "Help" is what the window shows.
TEST(Manual, TheProgramsHelpIsTheSamePagesWithTheirPicturesAndNoOthers) {
  const std::vector<Page> pages = Pages(KELVARO_MANUAL);
  const std::vector<Page> shown = Pages(KELVARO_HELP);
  ASSERT_EQ(shown.size(), pages.size());
  std::set<std::string> pictures;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    EXPECT_EQ(shown[i].name, pages[i].name);
    EXPECT_EQ(shown[i].html, pages[i].html) << pages[i].name;
    for (const std::string& file : Attributes(pages[i], "img", "src")) {
      EXPECT_EQ(tests::Content(std::string(KELVARO_HELP "/") + file),
                tests::Content(std::string(KELVARO_MANUAL "/") + file))
          << file;
      pictures.insert(fs::path(file).filename().string());
    }
  }
  std::set<std::string> stored;
  for (const auto& entry : fs::directory_iterator(KELVARO_HELP "/../screenshots"))
    stored.insert(entry.path().filename().string());
  EXPECT_EQ(stored, pictures);
}

TEST(Manual, EachPageHasATitleAHeadingAndItsEncoding) {
  std::set<std::string> titles;
  for (const Page& page : Pages(KELVARO_MANUAL)) {
    const std::vector<std::string> title = Between(page.html, "<title>", "</title>");
    ASSERT_EQ(title.size(), 1u) << page.name;
    EXPECT_TRUE(titles.insert(title[0]).second) << title[0];
    EXPECT_EQ(Between(page.html, "<h1>", "</h1>").size(), 1u) << page.name;
    EXPECT_NE(page.html.find("charset=utf-8"), std::string::npos) << page.name;
    for (const char* element : {"p", "ul", "ol", "li", "table", "tr", "td", "th", "pre", "tt", "b",
                                "i", "a", "h1", "h2", "h3", "strong"}) {
      const std::string name = element;
      const std::size_t opened = Between(page.html, "<" + name + ">", "").size() +
                                 Between(page.html, "<" + name + " ", "").size() +
                                 Between(page.html, "<" + name + "\n", "").size();
      EXPECT_EQ(opened, Between(page.html, "</" + name + ">", "").size())
          << page.name << " " << name;
    }
  }
}

// All that stands in the windows of Kelvaro and Rendlink, without the marks of access keys.
std::vector<std::string> WordsOfTheWindows() {
  std::vector<std::string> words = {
      "-- None --",  // of the list of devices
      "Search",      // of the help itself
  };
  const auto add = [&words](const char* text) {
    std::string plain = text;
    std::erase(plain, '&');
    words.push_back(plain);
  };
  std::vector<const platform::DialogTemplate*> dialogs(resources::Dialogs().begin(),
                                                       resources::Dialogs().end());
  dialogs.push_back(&rendlink::kDialog);
  for (const platform::DialogTemplate* dialog : dialogs) {
    add(dialog->title);
    for (const platform::ControlTemplate& control : dialog->controls) add(control.text);
  }
  for (const platform::MenuItem& item : resources::FloaterMenu()) {
    if (item.text) add(item.text);
  }
  return words;
}

// <b> is for names in the windows, and <strong> for what has to be heeded.
TEST(Manual, EachNameInBoldStandsInAWindow) {
  const std::vector<std::string> words = WordsOfTheWindows();
  for (const Page& page : Pages(KELVARO_MANUAL)) {
    for (const std::string& bold : Between(page.html, "<b>", "</b>")) {
      const std::string name = OneLine(bold);
      EXPECT_TRUE(std::any_of(
          words.begin(), words.end(),
          [&](const std::string& text) { return text.find(name) != std::string::npos; }))
          << page.name << ": " << name;
    }
  }
}

TEST(Manual, SaysThatEscEndsTheProgram) {
  for (const char* name : {"index.htm", "First Steps.htm", "Notification Area.htm"}) {
    const std::string html = PageNamed(name).html;
    bool said = false;
    for (const std::string& text : Between(html, "<strong>", "</strong>"))
      said |= text.find("Esc") != std::string::npos;
    EXPECT_TRUE(said) << name;
  }
}

}  // namespace
}  // namespace kelvaro::manual
