// A program with a window, as another one on a person's desktop: shown_window TITLE
#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QWidget window;
  window.setWindowTitle(QString::fromUtf8(argc > 1 ? argv[1] : ""));
  window.resize(300, 200);
  window.show();
  return QApplication::exec();
}
