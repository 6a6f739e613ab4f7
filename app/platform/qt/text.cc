#include "app/platform/qt/text.h"

#include <QByteArrayView>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QTextBoundaryFinder>

namespace platform::qt {
namespace {

bool DecodeUtf8(const std::string& bytes, QString* text) {
  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  *text = decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
  return !decoder.hasError();
}

}  // namespace

QString Shown(const std::string& bytes) {
  QString text;
  if (DecodeUtf8(bytes, &text)) return text;
  return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

bool IsUtf8(const std::string& bytes) {
  QString text;
  return DecodeUtf8(bytes, &text);
}

std::string Bytes(const QString& text) { return text.toStdString(); }

QString WithoutMnemonic(const QString& marked) {
  QString text;
  text.reserve(marked.size());
  for (qsizetype i = 0; i < marked.size(); ++i) {
    if (marked[i] == u'&' && ++i == marked.size()) break;
    text += marked[i];
  }
  return text;
}

QString Marked(const QString& plain) { return QString(plain).replace(u'&', QStringLiteral("&&")); }

QString Breakable(const QString& text) {
  constexpr qsizetype kLongWord = 30;
  constexpr QChar kBreak(0x200B);  // has no width
  QString broken;
  for (const QString& word : text.split(QRegularExpression(QStringLiteral("(?<=\\s)")))) {
    qsizetype start = 0;
    QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, word);
    while (word.size() > kLongWord && letters.toNextBoundary() > 0) {
      const QStringView letter = QStringView(word).mid(start, letters.position() - start);
      broken += letter;
      // A mark belongs to what stands behind it.
      if (letter != u'&' && letter != u' ') broken += kBreak;
      start = letters.position();
    }
    broken += QStringView(word).mid(start);
  }
  return broken;
}

QString AsRichText(const QString& plain) {
  QString text = plain.toHtmlEscaped();
  text.replace(u'\n', QStringLiteral("<br/>"));
  return QStringLiteral("<div style=\"white-space:pre\">") + text + QStringLiteral("</div>");
}

}  // namespace platform::qt
