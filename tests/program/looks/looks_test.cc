// What a person sees and reaches, in every dialog: nothing is clipped, nothing overlaps, all of it
// has a name for a screen reader, the Tab key comes by, and texts stand out from their background.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QFontMetrics>
#include <QLineEdit>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QTabBar>
#include <QTest>
#include <QTreeView>
#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "app/platform/qt/colours.h"
#include "app/platform/qt/text.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "tests/program/looks/stage.h"

namespace kelvaro::looks {
namespace {

using namespace main_window;

using platform::ControlKind;
using platform::ControlTemplate;
using platform::DialogTemplate;
using platform::qt::Contrast;
using platform::qt::Control;

bool IsFrame(ControlKind kind) {
  return kind == ControlKind::GroupBox || kind == ControlKind::TabControl ||
         kind == ControlKind::Box;
}

std::string Name(const DialogTemplate& dialog, const Control& control, const std::string& text) {
  return std::string(dialog.title) + ", control " + std::to_string(control.id) + " \"" + text + '"';
}

std::vector<Control*> Seen(const DialogTemplate& dialog, const DialogWindow& window) {
  std::vector<Control*> seen;
  for (const ControlTemplate& row : dialog.controls) {
    Control* const control = window.Find(row.id);
    if (control->Widget()->isVisible()) seen.push_back(control);
  }
  return seen;
}

// What the style leaves for the text of a widget.
QSize RoomForText(const Control& control) {
  QWidget* const widget = control.Widget();
  QStyleOptionButton button;
  button.initFrom(widget);
  switch (control.kind) {
    case ControlKind::Button:
      return widget->style()->subElementRect(QStyle::SE_PushButtonContents, &button, widget).size();
    case ControlKind::CheckBox:
      return widget->style()->subElementRect(QStyle::SE_CheckBoxContents, &button, widget).size();
    case ControlKind::RadioButton:
      return widget->style()
          ->subElementRect(QStyle::SE_RadioButtonContents, &button, widget)
          .size();
    default:
      return widget->size();
  }
}

void ExpectNothingClipped(const DialogTemplate& dialog, const DialogWindow& window) {
  for (const Control* control : Seen(dialog, window)) {
    const QWidget& widget = *control->Widget();
    const QFontMetrics metrics(widget.font());
    QString text = platform::qt::Shown(control->Text());
    if (control->kind == ControlKind::TextArea) continue;  // it scrolls
    if (control->kind != ControlKind::Edit) text = platform::qt::WithoutMnemonic(text);
    const std::string name = Name(dialog, *control, text.toStdString());
    if (!IsFrame(control->kind)) {
      EXPECT_TRUE(window.rect().contains(widget.geometry())) << name << " sticks out";
    }
    if (control->kind == ControlKind::TabControl) {
      const auto& bar = dynamic_cast<const QTabBar&>(*control->FocusWidget());
      EXPECT_GE(bar.width(), bar.sizeHint().width()) << name;
      continue;
    }
    if (control->kind == ControlKind::ListView) {
      const auto& list = dynamic_cast<const QAbstractItemView&>(*control->FocusWidget());
      EXPECT_GT(list.sizeHintForRow(0), metrics.height()) << name << ": a row and the line below";
      continue;
    }
    if (control->kind == ControlKind::Edit) {
      EXPECT_GE(widget.height(), metrics.height() + 4) << name << " is too low";
      continue;
    }
    if (text.isEmpty() || control->kind == ControlKind::PictureButton) continue;
    const QSize room = RoomForText(*control);
    if (control->style & platform::kStyleWrap) {
      const QRect wrapped =
          metrics.boundingRect(QRect(0, 0, room.width(), 10000), Qt::TextWordWrap, text);
      EXPECT_GE(room.height(), wrapped.height()) << name;
      EXPECT_GE(room.width(), wrapped.width()) << name;
      continue;
    }
    EXPECT_GE(room.width(), metrics.horizontalAdvance(text)) << name;
    EXPECT_GE(widget.height(), metrics.height()) << name;
  }
}

void ExpectNoOverlap(const DialogTemplate& dialog, const DialogWindow& window) {
  const std::vector<Control*> seen = Seen(dialog, window);
  for (std::size_t i = 0; i < seen.size(); ++i) {
    for (std::size_t j = i + 1; j < seen.size(); ++j) {
      const QRect one = seen[i]->Widget()->geometry();
      const QRect other = seen[j]->Widget()->geometry();
      const bool framed = (IsFrame(seen[i]->kind) && one.contains(other)) ||
                          (IsFrame(seen[j]->kind) && other.contains(one));
      EXPECT_TRUE(framed || !one.intersects(other))
          << Name(dialog, *seen[i], seen[i]->Text()) << " and "
          << Name(dialog, *seen[j], seen[j]->Text());
    }
  }
}

QAccessible::Role RoleOf(ControlKind kind) {
  using enum ControlKind;
  static const std::map<ControlKind, QAccessible::Role> roles = {
      {Link, QAccessible::Link},
      {Picture, QAccessible::Graphic},
      {Edit, QAccessible::EditableText},
      {TextArea, QAccessible::EditableText},
      {CheckBox, QAccessible::CheckBox},
      {RadioButton, QAccessible::RadioButton},
      {DropList, QAccessible::ComboBox},
      {ListView, QAccessible::Tree},
      {TabControl, QAccessible::PageTabList},
      {Slider, QAccessible::Slider},
      {GroupBox, QAccessible::Grouping},
      {Button, QAccessible::Button},
      {PictureButton, QAccessible::Button},
      {DrawnButton, QAccessible::Button},
  };
  const auto found = roles.find(kind);
  return found == roles.end() ? QAccessible::StaticText : found->second;
}

void ExpectAccessible(const DialogTemplate& dialog, DialogWindow& window) {
  std::set<QWidget*> reached;
  for (int i = 0; i < 100; ++i) {
    if (QWidget* const focused = window.focusWidget()) reached.insert(focused);
    QTest::keyClick(&window, Qt::Key_Tab);
  }
  for (const Control* control : Seen(dialog, window)) {
    if (control->kind == ControlKind::Rule || control->kind == ControlKind::Box) continue;
    const std::string name = Name(dialog, *control, control->Text());
    QAccessibleInterface* const spoken =
        QAccessible::queryAccessibleInterface(control->FocusWidget());
    ASSERT_TRUE(spoken) << name;
    if (control->kind != ControlKind::Label || !control->Text().empty()) {
      EXPECT_FALSE(spoken->text(QAccessible::Name).isEmpty()) << name << " has no name";
    }
    EXPECT_EQ(spoken->role(), RoleOf(control->kind)) << name;
    if (control->TakesFocus() && control->IsEnabled()) {
      EXPECT_TRUE(reached.count(control->FocusWidget())) << name << " is passed by the Tab key";
    }
  }
}

void ExpectReadable(const DialogTemplate& dialog, DialogWindow& window) {
  for (const Control* control : Seen(dialog, window)) {
    QWidget& widget = *control->FocusWidget();
    const bool isText = control->kind == ControlKind::Label || control->kind == ControlKind::Link ||
                        control->kind == ControlKind::Edit ||
                        control->kind == ControlKind::TextArea;
    if (!isText || control->Text().empty() || !control->IsEnabled()) continue;
    // The colours of a selection are the desktop's own.
    if (auto* const edit = dynamic_cast<QLineEdit*>(&widget)) edit->deselect();
    // Most of what is painted is background; the middle of a stroke has the ink's own colour.
    const QImage image = window.grab().toImage();
    const QRect place = control->Widget()->geometry().adjusted(3, 3, -3, -3);
    std::map<QRgb, int> counts;
    for (int y = place.top(); y <= place.bottom(); ++y) {
      for (int x = place.left(); x <= place.right(); ++x) ++counts[image.pixel(x, y)];
    }
    const auto byCount = [](const auto& one, const auto& other) {
      return one.second < other.second;
    };
    const QColor behind(std::max_element(counts.begin(), counts.end(), byCount)->first);
    double best = 0;
    for (const auto& [colour, count] : counts) best = std::max(best, Contrast(colour, behind));
    const std::string name = Name(dialog, *control, control->Text());
    EXPECT_GE(best, 4.5) << name;
    EXPECT_GE(Contrast(widget.palette().color(widget.foregroundRole()),
                       widget.palette().color(widget.backgroundRole())),
              4.5)
        << name;
  }
}

void ShowTab(const DialogWindow& window, int tab) {
  dynamic_cast<QTabBar&>(*window.Find(kTabControl)->FocusWidget()).setCurrentIndex(tab);
}

// Each tab, for a dialog that has some.
void OnEachPage(const DialogTemplate& dialog, DialogWindow& window,
                const std::function<void()>& look) {
  if (dialog.id != main_window::kDialog) return look();
  for (int tab = 0; tab < 4; ++tab) {
    ShowTab(window, tab);
    Stage::Settle(20);
    look();
  }
}

class Looks : public testing::Test {
 protected:
  ~Looks() override {
    QApplication::setFont(font);
    QApplication::setPalette(LightPalette());
  }
  static void OpenEach(const std::function<void(const DialogTemplate&, DialogWindow&)>& look) {
    for (const DialogTemplate* dialog : resources::Dialogs()) {
      Stage stage;
      EXPECT_TRUE(stage.Open(dialog->id, [&](DialogWindow& window) { look(*dialog, window); }))
          << dialog->title;
    }
  }
  const QFont font = QApplication::font();
};

TEST_F(Looks, NothingIsClippedOrOverlapsInAnySizeOfWindowOrFont) {
  for (const double points : {9.0, 13.0}) {
    QFont wanted = font;
    wanted.setPointSizeF(points);
    QApplication::setFont(wanted);
    OpenEach([](const DialogTemplate& dialog, DialogWindow& window) {
      const QSize least = window.size();
      const bool resizable = dialog.style & platform::kWindowResizable;
      std::vector<QSize> sizes = {least};
      if (resizable) {
        sizes.push_back(least + QSize(200, 100));
        sizes.push_back(QSize(1600, 1000).expandedTo(least).boundedTo(window.maximumSize()));
      }
      for (const QSize& size : sizes) {
        window.resize(size);
        Stage::Settle(20);
        OnEachPage(dialog, window, [&] {
          ExpectNothingClipped(dialog, window);
          ExpectNoOverlap(dialog, window);
        });
      }
    });
  }
}

TEST_F(Looks, EveryControlHasANameARoleAndATurnOfTheTabKey) {
  OpenEach([](const DialogTemplate& dialog, DialogWindow& window) {
    OnEachPage(dialog, window, [&] { ExpectAccessible(dialog, window); });
  });
}

// Desktops have buttons, and with them pages, that are lighter or darker than their windows.
std::vector<QPalette> Palettes() {
  std::vector<QPalette> palettes = {LightPalette(), DarkPalette()};
  for (const auto& [button, window] : {std::pair{0x31363B, 0x2A2E32},
                                       {0x555555, 0x222222},
                                       {0x000000, 0x000000},
                                       {0x3A3A3A, 0x1E1E1E},
                                       {0xD4D0C8, 0xFFFFFF}}) {
    palettes.emplace_back(QColor(button), QColor(window));
  }
  return palettes;
}

TEST_F(Looks, TextsStandOutInLightAndInDark) {
  for (const QPalette& palette : Palettes()) {
    QApplication::setPalette(palette);
    OpenEach([](const DialogTemplate& dialog, DialogWindow& window) {
      OnEachPage(dialog, window, [&] { ExpectReadable(dialog, window); });
    });
  }
}

TEST_F(Looks, TheLampOfTheTestStandsOutInLightAndInDark) {
  for (const QPalette& palette : Palettes()) {
    QApplication::setPalette(palette);
    Stage stage;
    EXPECT_TRUE(stage.Open(main_window::kDialog, [&](DialogWindow& window) {
      ShowTab(window, 1);
      Stage::Settle();
      QWidget* const button = window.Find(kTestMode)->Widget();
      const QImage image = button->grab().toImage();
      const QColor face = image.pixelColor(4, 8);
      double best = 0;
      for (int x = 5; x < 13; ++x)
        best = std::max(best, Contrast(image.pixelColor(x, button->height() / 2), face));
      // What the guidelines ask of what is no text.
      EXPECT_GE(best, 3) << face.name().toStdString();
    }));
  }
}

// The page is there, and the place in it.
void ExpectTopic(const std::string& topic) {
  const std::size_t mark = topic.find('#');
  std::ifstream page(std::string(KELVARO_HELP "/") + topic.substr(0, mark));
  const std::string text{std::istreambuf_iterator<char>(page), {}};
  EXPECT_FALSE(text.empty()) << topic;
  if (mark == std::string::npos) return;
  EXPECT_NE(text.find("<a name=\"" + topic.substr(mark + 1) + "\">"), std::string::npos) << topic;
}

std::set<std::string> TopicsOf(const DialogTemplate& dialog, DialogWindow& window) {
  std::set<std::string> topics;
  for (const Control* control : Seen(dialog, window)) {
    if (!control->TakesFocus() || !control->IsEnabled()) continue;
    control->FocusWidget()->setFocus();
    QuietShell::topic.clear();
    QTest::keyClick(&window, Qt::Key_F1);
    topics.insert(QuietShell::topic);
  }
  return topics;
}

TEST_F(Looks, F1OpensAPlaceThatTheHelpHasFromEveryControl) {
  Stage stage;
  std::set<std::string> topics;
  EXPECT_TRUE(stage.Open(main_window::kDialog, [&](DialogWindow& window) {
    OnEachPage(resources::kMainWindow, window,
               [&] { topics.merge(TopicsOf(resources::kMainWindow, window)); });
    stage.WhenUp("Define Control", [&](QWidget& dialog) {
      topics.merge(TopicsOf(resources::kDefineControl, dynamic_cast<DialogWindow&>(dialog)));
    });
    ShowTab(window, 0);
    QTest::mouseClick(window.Find(kNewControl)->FocusWidget(), Qt::LeftButton);
  }));
  for (const std::string& topic : topics) ExpectTopic(topic);
  EXPECT_EQ(topics.size(), 11u);
}

QTreeView& ListOf(const DialogWindow& window) {
  return dynamic_cast<QTreeView&>(*window.Find(kControlList)->FocusWidget());
}

TEST_F(Looks, TheColumnsSayWhatTheyShow) {
  Stage stage;
  EXPECT_TRUE(stage.Open(main_window::kDialog, [](DialogWindow& window) {
    const QAbstractItemModel& model = *ListOf(window).model();
    ASSERT_EQ(model.columnCount(), 3);
    const char* const headings[] = {"Trigger", "Action", "Description"};
    for (int column = 0; column < 3; ++column)
      EXPECT_EQ(model.headerData(column, Qt::Horizontal).toString().toStdString(),
                headings[column]);
    EXPECT_EQ(model.index(4, 0).data().toString().toStdString(), "B1");
    EXPECT_EQ(model.index(4, 2).data().toString().toStdString(), "Jump");
  }));
}

TEST_F(Looks, AControlThatIsNewOrPastedIsScrolledIntoViewUnselected) {
  Stage stage;
  Stage::AddControls(60);
  EXPECT_TRUE(stage.Open(main_window::kDialog, [&](DialogWindow& window) {
    QTreeView& list = ListOf(window);
    int rows = list.model()->rowCount();
    const auto expectSeen = [&] {
      ASSERT_EQ(list.model()->rowCount(), ++rows);
      const QRect last = list.visualRect(list.model()->index(rows - 1, 0));
      EXPECT_TRUE(list.viewport()->rect().contains(last.center()));
      EXPECT_TRUE(list.selectionModel()->selectedRows().isEmpty());
    };
    stage.WhenUp("Define Control", [](QWidget& dialog) {
      auto& define = dynamic_cast<DialogWindow&>(dialog);
      QTest::keyClicks(define.Find(define_control::kDescriptionText)->FocusWidget(),
                       QStringLiteral("new"));
      define.SendNotice(platform::IDOK, platform::Notice::Clicked, 0);
    });
    window.SendNotice(kNewControl, platform::Notice::Clicked, 0);
    expectSeen();
    list.scrollToTop();
    list.setCurrentIndex(list.model()->index(0, 0));
    window.SendNotice(kCopyControls, platform::Notice::Clicked, 0);
    window.SendNotice(kPasteControls, platform::Notice::Clicked, 0);
    expectSeen();
  }));
}

}  // namespace
}  // namespace kelvaro::looks

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  QApplication::setPalette(kelvaro::looks::LightPalette());
  return RUN_ALL_TESTS();
}
