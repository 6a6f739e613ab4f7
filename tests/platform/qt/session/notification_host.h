// A host on the session bus that shows icons while the object is there: on a thread of its own, as
// it would be another program.
#pragma once

#include <QString>
#include <memory>
#include <string>
#include <vector>

class NotificationHost {
 public:
  // Not `showing`: there is only the watcher, and no host yet that shows what it knows.
  explicit NotificationHost(bool showing = true);
  ~NotificationHost();
  NotificationHost(const NotificationHost&) = delete;
  NotificationHost& operator=(const NotificationHost&) = delete;

  // The program that has offered an icon, empty before one has.
  QString Item() const;
  // Begins to show icons.
  void Show();
  // The next question is left without an answer.
  void MissOneQuestion();
  // While it holds them, questions are left open; they are answered afterwards.
  void HoldQuestions(bool hold);
  int Questions() const;  // that have come so far
  // What a person sees in the icon's menu, "-" for a separator, and chooses from it.
  std::vector<std::string> Menu();
  void Choose(const std::string& text);
  // What a person does to it.
  void Click();
  void RightClick();

 private:
  class Watcher;
  void Call(const char* method);
  struct Row;
  std::vector<Row> Rows();

  std::unique_ptr<Watcher> watcher;
  QString path;  // of the menu
};
