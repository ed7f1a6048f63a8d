#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/formats/unique_names.h"
#include "engine/formats/warning_list.h"
#include "engine/formats/xer_project.h"
#include "engine/formats/xer_table.h"
#include "engine/formats/xer_tasks.h"
#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// The breakdown structure of one project in an XER file: a tree with the project's node on top.
class XerStructure {
 public:
  /// The file must live as long. Raises FormatError for nodes that lie within each other in a
  /// circle or too deep.
  XerStructure(const XerFile& file, const XerProject& project, WarningList& warnings);

  /// What the project is called: the name of its node, else its short name.
  std::string ProjectName() const { return nodes_.front().name; }

  /// Puts all nodes as summaries and all tasks into the plan, each node before what is in it: its
  /// tasks in their order, then the nodes below. `ids` has the tasks' IDs and gets the nodes'.
  /// Raises FormatError for a node whose path of codes is too long to be an ID.
  void AddTo(Plan& plan, std::vector<XerTask>& tasks, UniqueNames& ids, WarningList& warnings);

 private:
  struct Node {
    std::string code;
    std::string name;
    std::string_view parent_key;
    double sequence = 0;
    std::int64_t line = 0;
    std::vector<std::size_t> children;
    std::vector<std::size_t> tasks;
  };

  void ReadNodes(const XerFile& file, const XerProject& project);
  void LinkNodes(const XerFile& file, WarningList& warnings);
  void AddNode(std::size_t index, const std::string& path, Uid parent, Plan& plan,
               std::vector<XerTask>& tasks, UniqueNames& ids) const;

  const XerFile* file_;
  std::vector<Node> nodes_;  // the project's own first
  std::unordered_map<std::string_view, std::size_t> index_by_key_;
};

}  // namespace nimbrel::engine
