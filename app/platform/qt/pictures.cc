#include "app/platform/qt/pictures.h"

#include <QFile>
#include <QImage>

namespace platform::qt {
namespace {

// The arrows of the buttons that move Controls up and down.
bool IsMask(BitmapHandle bitmap) { return bitmap == 145 || bitmap == 146; }

QString BitmapFile(BitmapHandle bitmap, int scale) {
  const QString suffix = scale == 1 ? QString() : QStringLiteral("@%1x").arg(scale);
  return QStringLiteral(":/kelvaro/bitmap/%1%2.png").arg(bitmap).arg(suffix);
}

QImage InInk(QImage image, const QColor& ink) {
  image = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(image.rect(), ink);
  return image;
}

}  // namespace

IconHandle Icons::Load(std::uint32_t id) {
  QIcon icon;
  for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
    const QString file = QStringLiteral(":/kelvaro/icon/%1/%2.png").arg(id).arg(size);
    if (QFile::exists(file)) icon.addFile(file, QSize(size, size));
  }
  if (icon.isNull()) return 0;
  icons[++last] = icon;
  return last;
}

bool Icons::Destroy(IconHandle icon) { return icons.erase(icon) > 0; }

QIcon Icons::Find(IconHandle icon) const {
  const auto found = icons.find(icon);
  return found == icons.end() ? QIcon() : found->second;
}

BitmapHandle LoadBitmap(std::uint32_t id) { return QFile::exists(BitmapFile(id, 1)) ? id : 0; }

QSize BitmapSize(BitmapHandle bitmap) {
  return bitmap ? QImage(BitmapFile(bitmap, 1)).size() : QSize();
}

void DrawBitmap(QPainter& painter, const QRect& place, BitmapHandle bitmap, const QColor& ink) {
  QSize size = BitmapSize(bitmap);
  if (size.isEmpty()) return;
  const QSize natural = size;
  size.scale(place.size(), Qt::KeepAspectRatio);
  QRect target(QPoint(), size);
  target.moveCenter(place.center());

  const qreal pixels = size.width() * painter.device()->devicePixelRatioF() / natural.width();
  QImage image(BitmapFile(bitmap, pixels <= 1 ? 1 : pixels <= 2 ? 2 : 3));
  if (IsMask(bitmap)) image = InInk(image, ink);
  painter.save();
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(target, image);
  painter.restore();
}

}  // namespace platform::qt
