#include "app/platform/qt/help_viewer.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QStyle>
#include <QTextBrowser>
#include <QTextDocument>
#include <QToolBar>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>
#include <optional>

#include "app/platform/qt/text.h"

namespace platform::qt {
namespace {

constexpr char kContentsPage[] = "index.htm";
constexpr std::uint32_t kCookie = 1;

HelpViewer* current = nullptr;

// A page that isn't there is one that says so.
class Pages : public QTextBrowser {
 public:
  using QTextBrowser::QTextBrowser;

  QVariant loadResource(int type, const QUrl& name) override {
    const QUrl url = source().resolved(name);
    const bool missing = url.isLocalFile() && !QFileInfo(url.toLocalFile()).isFile();
    if (type != QTextDocument::HtmlResource || !missing) {
      return QTextBrowser::loadResource(type, name);
    }
    return QStringLiteral("<html><head><title>%1</title></head><body><h1>%1</h1><p>%2</p></body>")
        .arg(QStringLiteral("This page is missing"),
             QStringLiteral("It was looked for as \"%1\".")
                 .arg(QDir::toNativeSeparators(url.toLocalFile()))
                 .toHtmlEscaped());
  }
};

}  // namespace

class HelpWindow : public QWidget {
 public:
  HelpWindow()
      : bar(new QToolBar(this)),
        pages(new Pages(this)),
        wanted(new QLineEdit(this)),
        found(new QLabel(this)) {
    setWindowTitle(QStringLiteral("Help"));
    setWindowIcon(QApplication::windowIcon());
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(bar);
    layout->addWidget(pages);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    pages->setOpenLinks(false);
    pages->setAccessibleName(QStringLiteral("Help page"));
    connect(pages, &QTextBrowser::anchorClicked, this, [this](const QUrl& url) { Follow(url); });
    connect(pages, &QTextBrowser::sourceChanged, this, [this] {
      const QString title = pages->documentTitle();
      setWindowTitle(title.isEmpty() ? QStringLiteral("Help") : title);
    });

    QAction* const back =
        Button("Back", QStyle::SP_ArrowBack, QKeySequence::Back, [this] { pages->backward(); });
    QAction* const forward = Button("Forward", QStyle::SP_ArrowForward, QKeySequence::Forward,
                                    [this] { pages->forward(); });
    Button("Contents", QStyle::SP_DirHomeIcon, QKeySequence(Qt::ALT | Qt::Key_Home),
           [this] { Open(QString::fromLatin1(kContentsPage)); });
    bar->addSeparator();
    Button("Larger", {}, QKeySequence::ZoomIn, [this] { pages->zoomIn(); });
    Button("Smaller", {}, QKeySequence::ZoomOut, [this] { pages->zoomOut(); });
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(pages, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(pages, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    AddSearch();
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this,
            [this] { wanted->hasFocus() ? pages->setFocus() : static_cast<void>(close()); });
    const int letters = fontMetrics().averageCharWidth();
    resize(110 * letters, 40 * fontMetrics().height());
    pages->setFocus();
  }

  void Show(const QString& folder, const QString& topic) {
    root = folder;
    Open(topic);
    if (isMinimized()) showNormal();
    show();
    raise();
    activateWindow();
  }

 private:
  template <typename Act>
  QAction* Button(const char* name, std::optional<QStyle::StandardPixmap> picture,
                  const QKeySequence& key, Act act) {
    QAction* const action = bar->addAction(QString::fromLatin1(name));
    if (picture) action->setIcon(style()->standardIcon(*picture));
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, act);
    return action;
  }

  enum class Way { Forward, Back };

  void AddSearch() {
    bar->addSeparator();
    auto* const label = new QLabel(QStringLiteral("&Search "), bar);
    label->setBuddy(wanted);
    bar->addWidget(label);
    bar->addWidget(wanted);
    bar->addWidget(found);
    wanted->setAccessibleName(QStringLiteral("Search all pages"));
    wanted->setClearButtonEnabled(true);
    wanted->setMaximumWidth(24 * fontMetrics().averageCharWidth());
    connect(wanted, &QLineEdit::textEdited, found, &QLabel::clear);
    connect(wanted, &QLineEdit::returnPressed, this, [this] { Search(Way::Forward); });
    const auto key = [this](const QKeySequence& keys, auto act) {
      connect(new QShortcut(keys, this), &QShortcut::activated, this, act);
    };
    key(QKeySequence::Find, [this] {
      wanted->setFocus();
      wanted->selectAll();
    });
    key(QKeySequence(Qt::Key_F3), [this] { Search(Way::Forward); });
    key(QKeySequence(Qt::SHIFT | Qt::Key_F3), [this] { Search(Way::Back); });
  }

  // From where the reader is through all pages, and on from the other end.
  void Search(Way way) {
    const QString text = wanted->text();
    if (text.isEmpty()) return wanted->setFocus();
    const QTextDocument::FindFlags flags =
        way == Way::Back ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    if (pages->find(text, flags)) return;
    QStringList names = QDir(root).entryList({QStringLiteral("*.htm")}, QDir::Files, QDir::Name);
    if (way == Way::Back) std::reverse(names.begin(), names.end());
    const auto at = names.indexOf(pages->source().fileName());
    for (qsizetype i = 1; i <= names.size(); ++i) {
      const QString& name = names[(at + i) % names.size()];
      if (!Holds(name, text)) continue;
      Open(name);
      pages->moveCursor(way == Way::Back ? QTextCursor::End : QTextCursor::Start);
      pages->find(text, flags);
      return;
    }
    found->setText(QStringLiteral(" Not found"));
  }

  bool Holds(const QString& name, const QString& text) const {
    QFile file(root + u'/' + name);
    if (!file.open(QIODevice::ReadOnly)) return false;
    QTextDocument page;
    page.setHtml(QString::fromUtf8(file.readAll()));
    return !page.find(text).isNull();
  }

  // "Page.htm", or "Page.htm#place".
  void Open(const QString& topic) {
    QUrl url = QUrl::fromLocalFile(root + u'/' + topic.section(u'#', 0, 0));
    if (topic.contains(u'#')) url.setFragment(topic.section(u'#', 1));
    pages->setSource(url);
  }

  void Follow(const QUrl& url) {
    const QUrl whole = pages->source().resolved(url);
    if (whole.isLocalFile()) {
      pages->setSource(whole);
    } else {
      QDesktopServices::openUrl(whole);
    }
  }

  QToolBar* const bar;
  QTextBrowser* const pages;
  QLineEdit* const wanted;
  QLabel* const found;
  QString root;
};

HelpViewer::HelpViewer() { current = this; }

HelpViewer::~HelpViewer() {
  if (current == this) current = nullptr;
}

void HelpViewer::Show(const QString& file, const QString& topic) {
  if (!window) window = std::make_unique<HelpWindow>();
  window->Show(PagesOf(file), topic);
}

void HelpViewer::Close() { window.reset(); }

QString PagesOf(const QString& file) {
  const auto folder = [](const QString& path) {
    const QFileInfo info(path);
    return info.path() + u'/' + info.completeBaseName();
  };
  // A backslash may be part of a name here, too.
  const QString asItStands = folder(file);
  return QFileInfo(asItStands).isDir() ? asItStands : folder(QString(file).replace(u'\\', u'/'));
}

std::uintptr_t HelpViewer::HtmlHelp(WindowHandle, const char* file, std::uint32_t command,
                                    std::uintptr_t data) {
  if (!current) return 0;
  switch (command) {
    case HH_INITIALIZE:
      if (data) *reinterpret_cast<std::uint32_t*>(data) = kCookie;
      return 1;
    case HH_DISPLAY_TOPIC: {
      const char* const topic = reinterpret_cast<const char*>(data);
      if (!file || !topic) return 0;
      current->Show(Shown(file), Shown(topic));
      return 1;
    }
    case HH_CLOSE_ALL:
      current->Close();
      return 1;
    case HH_UNINITIALIZE:
      return 1;
    default:
      return 0;
  }
}

}  // namespace platform::qt
