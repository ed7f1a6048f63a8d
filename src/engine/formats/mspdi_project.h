#pragma once

#include <string>

#include "engine/formats/warning_list.h"
#include "engine/formats/xml_file.h"
#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// The file's root if it is an MSPDI project. Raises FormatError if it is none.
XmlElement MspdiProject(const XmlFile& file);

/// What the project is called: its name without the ending of a file, else the file's own name.
std::string MspdiProjectName(const XmlFile& file);

/// Reads the project's names, dates and scheduling options into the plan. The start is absent if
/// the project gives none. Raises FormatError.
void ReadMspdiProject(const XmlFile& file, Plan& plan, WarningList& warnings);

}  // namespace nimbrel::engine
