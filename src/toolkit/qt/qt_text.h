#pragma once

#include <QString>
#include <cstdint>
#include <string>

namespace nimbrel::toolkit::qt {

/// Texts of the toolkit are UTF-8, and places in them count characters; Qt's are UTF-16, and places
/// count code units.
QString ToQt(const std::string& text);
std::string FromQt(const QString& text);

/// A text of several lines, whatever ends its lines.
QString LinesToQt(const std::string& text);
/// A caption for controls in which "&" would mark a shortcut: it is shown as it is.
QString CaptionToQt(const std::string& caption);

/// The code units before character `position`, and the characters before code unit `units`. Both
/// are held inside the text.
int UnitsBefore(const QString& text, std::int32_t position);
std::int32_t CharactersBefore(const QString& text, int units);

}  // namespace nimbrel::toolkit::qt
