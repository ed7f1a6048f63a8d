#include "spreadsheet/xml_parser.h"

#include <expat.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <memory>
#include <type_traits>

#include "spreadsheet/limits.h"
#include "spreadsheet/read_error.h"
#include "spreadsheet/text_coding.h"

namespace nimbrel::spreadsheet {
namespace {

using std::literals::operator""sv;

// What the parser puts between a namespace and a name; no namespace can hold it.
constexpr char kSeparator[] = "\n";

constexpr std::array kSpreadsheetNames = {
    "http://schemas.openxmlformats.org/spreadsheetml/2006/main"sv,
    "http://purl.oclc.org/ooxml/spreadsheetml/main"sv,
};
constexpr auto kRelationshipsName =
    "http://schemas.openxmlformats.org/package/2006/relationships"sv;
constexpr std::array kRelationshipIds = {
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships\nid"sv,
    "http://purl.oclc.org/ooxml/officeDocument/relationships\nid"sv,
};

/// Memory for one parser, up to kMaxXmlNameMemory. The library's functions for it are told nothing
/// of the parser, so what it holds is counted by thread: none runs inside another.
class ParserMemory {
 public:
  static void Begin() { held_ = 0; }

  static void* Allocate(std::size_t size) { return Resize(nullptr, size); }
  static void* Resize(void* block, std::size_t size) {
    Head* const old = block == nullptr ? nullptr : static_cast<Head*>(block) - 1;
    const std::size_t old_size = old == nullptr ? 0 : old->size;
    if (size > kMaxXmlNameMemory || held_ - old_size + size > kMaxXmlNameMemory) {
      return nullptr;
    }
    auto* const fresh = static_cast<Head*>(std::realloc(old, sizeof(Head) + size));
    if (fresh == nullptr) {
      return nullptr;
    }
    held_ = held_ - old_size + size;
    fresh->size = size;
    return fresh + 1;
  }
  static void Free(void* block) {
    if (block != nullptr) {
      Head* const head = static_cast<Head*>(block) - 1;
      held_ -= head->size;
      std::free(head);
    }
  }

 private:
  struct alignas(std::max_align_t) Head {
    std::size_t size;
  };

  static thread_local std::size_t held_;
};

thread_local std::size_t ParserMemory::held_ = 0;

struct FreeParser {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

/// Carries the parser's calls to the sink, and what the sink throws past the parser, which is not
/// made for exceptions.
class Bridge {
 public:
  Bridge(Package& package, std::string_view part, XmlSink& sink, const std::string& sheet)
      : package_(package),
        part_(part),
        sink_(sink),
        place_{.file = package.file(), .sheet = sheet} {
    static constexpr XML_Memory_Handling_Suite kMemory = {ParserMemory::Allocate,
                                                          ParserMemory::Resize, ParserMemory::Free};
    ParserMemory::Begin();
    parser_.reset(XML_ParserCreate_MM(nullptr, &kMemory, kSeparator));
    if (!parser_) {
      RaiseReadError(place_, "out of memory");
    }
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), Begin, End);
    XML_SetCharacterDataHandler(parser_.get(), Text);
    XML_SetStartDoctypeDeclHandler(parser_.get(), Doctype);
  }

  void Run() {
    package_.Read(part_, [&](std::string_view piece) { Feed(piece, false); });
    Feed({}, true);
  }

 private:
  static Bridge& Self(void* data) { return *static_cast<Bridge*>(data); }

  template <class Step>
  void Guard(Step step) {
    if (failure_) {
      return;
    }
    try {
      step();
    } catch (...) {
      failure_ = std::current_exception();
      XML_StopParser(parser_.get(), XML_FALSE);
    }
  }

  static void XMLCALL Begin(void* data, const XML_Char* name, const XML_Char** attributes) {
    Bridge& self = Self(data);
    self.Guard([&] {
      if (++self.depth_ > kMaxXmlDepth) {
        self.Raise("elements are nested deeper than " + std::to_string(kMaxXmlDepth));
      }
      const int names_and_values = XML_GetSpecifiedAttributeCount(self.parser_.get());
      if (!self.package_.AddXmlItems(1 + static_cast<std::uint64_t>(names_and_values) / 2)) {
        self.Raise("the workbook has more than " + std::to_string(kMaxXmlItems) +
                   " elements and attributes");
      }
      self.sink_.OnBegin(XmlElement(name, attributes));
    });
  }
  static void XMLCALL End(void* data, const XML_Char*) {
    Bridge& self = Self(data);
    self.Guard([&] {
      --self.depth_;
      self.sink_.OnEnd();
    });
  }
  static void XMLCALL Text(void* data, const XML_Char* text, int length) {
    Bridge& self = Self(data);
    self.Guard([&] {
      if (!self.package_.AddXmlRun()) {
        self.Raise("the workbook has more than " + std::to_string(kMaxXmlRuns) + " runs of text");
      }
      self.sink_.OnText(std::string_view(text, static_cast<std::size_t>(length)));
    });
  }
  static void XMLCALL Doctype(void* data, const XML_Char*, const XML_Char*, const XML_Char*, int) {
    Bridge& self = Self(data);
    self.Guard([&] { self.Raise("a document type is not allowed here"); });
  }

  void Feed(std::string_view piece, bool is_last) {
    const auto status = XML_Parse(parser_.get(), piece.data(), static_cast<int>(piece.size()),
                                  is_last ? XML_TRUE : XML_FALSE);
    if (failure_) {
      std::rethrow_exception(failure_);
    }
    if (status != XML_STATUS_OK) {
      const XML_Error error = XML_GetErrorCode(parser_.get());
      Raise(error == XML_ERROR_NO_MEMORY
                ? "its names take more than " + MebibytesText(kMaxXmlNameMemory)
                : XML_ErrorString(error));
    }
    // The parser begins a token anew with each piece until it has all of it.
    fed_ += piece.size();
    const auto begun = XML_GetCurrentByteIndex(parser_.get());
    if (begun >= 0 && fed_ - static_cast<std::uint64_t>(begun) > kMaxXmlTokenBytes) {
      Raise("a tag or comment is longer than " + std::to_string(kMaxXmlTokenBytes) + " bytes");
    }
  }

  [[noreturn]] void Raise(const std::string& reason) const {
    RaiseReadError(place_, "part " + Quoted(part_) + ", line " +
                               std::to_string(XML_GetCurrentLineNumber(parser_.get())) + ": " +
                               reason);
  }

  Package& package_;
  std::string_view part_;
  XmlSink& sink_;
  ReadPlace place_;
  std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeParser> parser_;
  int depth_ = 0;
  std::uint64_t fed_ = 0;
  std::exception_ptr failure_;
};

Vocabulary FindVocabulary(std::string_view space) {
  for (const auto name : kSpreadsheetNames) {
    if (space == name) {
      return Vocabulary::kSpreadsheet;
    }
  }
  return space == kRelationshipsName ? Vocabulary::kRelationships : Vocabulary::kOther;
}

}  // namespace

XmlElement::XmlElement(const char* name, const char** attributes)
    : name_(name), attributes_(attributes) {
  const auto separator = name_.find(kSeparator[0]);
  if (separator == std::string_view::npos) {
    vocabulary_ = Vocabulary::kOther;
  } else {
    vocabulary_ = FindVocabulary(name_.substr(0, separator));
    name_.remove_prefix(separator + 1);
  }
}

std::optional<std::string_view> XmlElement::Attribute(std::string_view name) const {
  for (const char** attribute = attributes_; *attribute != nullptr; attribute += 2) {
    if (name == attribute[0]) {
      return attribute[1];
    }
  }
  return std::nullopt;
}

std::optional<std::string_view> XmlElement::RelationshipId() const {
  for (const auto name : kRelationshipIds) {
    if (const auto value = Attribute(name)) {
      return value;
    }
  }
  return std::nullopt;
}

void ParseXml(Package& package, std::string_view part, XmlSink& sink, const std::string& sheet) {
  Bridge(package, part, sink, sheet).Run();
}

}  // namespace nimbrel::spreadsheet
