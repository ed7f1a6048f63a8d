#include "toolkit/qt/qt_text.h"

namespace nimbrel::toolkit::qt {

QString ToQt(const std::string& text) {
  return QString::fromStdString(text);
}

std::string FromQt(const QString& text) {
  return text.toStdString();
}

QString LinesToQt(const std::string& text) {
  return ToQt(text).replace(QLatin1String("\r\n"), QLatin1String("\n"));
}

QString CaptionToQt(const std::string& caption) {
  return ToQt(caption).replace(QLatin1Char('&'), QLatin1String("&&"));
}

int UnitsBefore(const QString& text, std::int32_t position) {
  int units = 0;
  for (std::int32_t seen = 0; seen < position && units < text.size(); ++seen) {
    units += text.at(units).isHighSurrogate() && units + 1 < text.size() ? 2 : 1;
  }
  return units;
}

std::int32_t CharactersBefore(const QString& text, int units) {
  std::int32_t characters = 0;
  for (int at = 0; at < units && at < text.size(); ++at) {
    characters += text.at(at).isLowSurrogate() ? 0 : 1;
  }
  return characters;
}

}  // namespace nimbrel::toolkit::qt
