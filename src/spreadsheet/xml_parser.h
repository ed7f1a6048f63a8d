#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/package.h"

namespace nimbrel::spreadsheet {

/// Where an element's name comes from.
enum class Vocabulary {
  kSpreadsheet,    // SpreadsheetML, transitional or strict
  kRelationships,  // the relationships of a package
  kOther,
};

/// An element as it begins. All views live until the call that hands it over returns.
class XmlElement {
 public:
  XmlElement(const char* name, const char** attributes);

  Vocabulary vocabulary() const { return vocabulary_; }
  std::string_view name() const { return name_; }

  /// The value of an attribute without prefix.
  std::optional<std::string_view> Attribute(std::string_view name) const;
  /// The value of the attribute "id" of office documents' relationships (r:id, as a rule).
  std::optional<std::string_view> RelationshipId() const;

 private:
  Vocabulary vocabulary_;
  std::string_view name_;
  const char** attributes_;
};

/// What is told of the XML of a part, in the order of the text.
class XmlSink {
 public:
  virtual ~XmlSink() = default;
  virtual void OnBegin(const XmlElement& element) = 0;
  virtual void OnEnd() = 0;
  /// A run of text. One text may come in several runs.
  virtual void OnText(std::string_view text) = 0;
};

/// Reads a part of a package as XML. Raises error 1004 for what is not well-formed, has a document
/// type, is nested deeper than kMaxXmlDepth or in an encoding that is not known; and whatever the
/// sink raises. `sheet` is the sheet that the part holds, for messages; empty if it holds none.
void ParseXml(Package& package, std::string_view part, XmlSink& sink,
              const std::string& sheet = {});

/// A sink that keeps where it is in the tree as a state for each open element. Everything below an
/// element that it does not know is passed over.
///
/// State is an enumeration with kStart, outside the root, and kOther, in what is not known.
template <class State>
class XmlStates : public XmlSink {
 public:
  void OnBegin(const XmlElement& element) final {
    const State parent = states_.empty() ? State::kStart : states_.back();
    states_.push_back(parent == State::kOther ? State::kOther : Enter(parent, element));
    knows_root_ = knows_root_ || states_.front() != State::kOther;
  }
  void OnEnd() final {
    const State state = states_.back();
    states_.pop_back();
    Leave(state);
  }
  void OnText(std::string_view text) final {
    if (!states_.empty()) {
      Take(states_.back(), text);
    }
  }

  /// Whether the root was an element that the sink knows.
  bool knows_root() const { return knows_root_; }

 protected:
  /// The state in an element that begins below `parent`; kOther to pass over it.
  virtual State Enter(State parent, const XmlElement& element) = 0;
  virtual void Leave(State state) = 0;
  virtual void Take(State state, std::string_view text) = 0;

 private:
  std::vector<State> states_;
  bool knows_root_ = false;
};

}  // namespace nimbrel::spreadsheet
