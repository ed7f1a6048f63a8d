#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/text.h"
#include "spreadsheet/limits.h"

struct zip;

namespace nimbrel::spreadsheet {

/// The parts of a zip package, by name. Names have no case and no leading "/". All operations raise
/// error 1004 (see RaiseReadError) for what is damaged, encrypted or too large.
class Package {
 public:
  /// `bytes` must live as long as the package; `file` names it in messages.
  Package(std::string_view bytes, std::string file);

  const std::string& file() const { return file_; }
  bool Has(std::string_view part) const { return parts_.contains(part); }

  /// Inflates a part and hands it on piece by piece. What it inflates to counts, not what its
  /// header promises.
  void Read(std::string_view part, const std::function<void(std::string_view)>& take);

  /// Count elements and attributes, and runs of text, in the XML of the parts that are read: many
  /// small parts take as long as a large one. False past kMaxXmlItems and kMaxXmlRuns.
  bool AddXmlItems(std::uint64_t items) { return (xml_items_ += items) <= kMaxXmlItems; }
  bool AddXmlRun() { return ++xml_runs_ <= kMaxXmlRuns; }

 private:
  struct Close {
    void operator()(zip* archive) const;
  };

  void CheckDirectories(std::string_view bytes) const;
  void CheckDirectory(std::string_view bytes, std::size_t end) const;
  void ListParts();

  std::string file_;
  std::unique_ptr<zip, Close> archive_;
  std::unordered_map<std::string, std::uint64_t, platform::IgnoreCaseHash,
                     platform::IgnoreCaseEqual>
      parts_;
  std::uint64_t inflated_ = 0;
  std::uint64_t xml_items_ = 0;
  std::uint64_t xml_runs_ = 0;
};

}  // namespace nimbrel::spreadsheet
