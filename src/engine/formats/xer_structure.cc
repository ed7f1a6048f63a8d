#include "engine/formats/xer_structure.h"

#include <algorithm>
#include <utility>

namespace nimbrel::engine {
namespace {

/// Deeper than any plan is; bounds the length of paths and the depth of the walk.
constexpr int kDeepest = 100;
constexpr std::size_t kLongestPath = 1000;

}  // namespace

XerStructure::XerStructure(const XerFile& file, const XerProject& project, WarningList& warnings)
    : file_(&file) {
  nodes_.push_back({project.short_name, project.short_name, {}, 0, project.line, {}, {}});
  ReadNodes(file, project);
  LinkNodes(file, warnings);
}

void XerStructure::ReadNodes(const XerFile& file, const XerProject& project) {
  bool has_top = false;
  file.ForEach("PROJWBS", [&](const XerRow& row) {
    if (row.Text("proj_id") != project.id) {
      return;
    }
    const bool is_top = row.Flag("proj_node_flag", false) && !has_top;
    const std::size_t index = is_top ? 0 : nodes_.size();
    if (!index_by_key_.emplace(row.Required("wbs_id"), index).second) {
      row.FailField("wbs_id", "a key that no other node has");
    }
    if (!is_top) {
      nodes_.emplace_back();
    }
    has_top = has_top || is_top;
    Node& node = nodes_[index];
    node.line = row.line();
    node.parent_key = is_top ? std::string_view() : row.Text("parent_wbs_id");
    node.sequence = row.Number("seq_num", 0);
    const std::string_view code = row.Text("wbs_short_name");
    const std::string_view name = row.Text("wbs_name");
    if (!code.empty()) {
      node.code = code;
    } else if (node.code.empty()) {
      node.code = row.Text("wbs_id");
    }
    node.name = name.empty() ? node.code : std::string(name);
  });
}

void XerStructure::LinkNodes(const XerFile& file, WarningList& warnings) {
  std::vector<std::size_t> parents(nodes_.size(), 0);
  for (std::size_t i = 1; i < nodes_.size(); ++i) {
    const auto parent = index_by_key_.find(nodes_[i].parent_key);
    if (parent == index_by_key_.end()) {
      warnings.Add("nodes of the breakdown structure without a node above: put under the project");
    } else {
      parents[i] = parent->second;
    }
    nodes_[parents[i]].children.push_back(i);
  }
  for (std::size_t i = 1; i < nodes_.size(); ++i) {
    int depth = 0;
    for (std::size_t above = i; above != 0; above = parents[above]) {
      if (++depth > kDeepest) {
        throw FormatError(file.name(), nodes_[i].line,
                          "expected a breakdown structure of at most 100 levels, found node " +
                              Quoted(nodes_[i].code) + " deeper or within itself");
      }
    }
  }
  for (Node& node : nodes_) {
    std::stable_sort(
        node.children.begin(), node.children.end(),
        [this](std::size_t a, std::size_t b) { return nodes_[a].sequence < nodes_[b].sequence; });
  }
}

void XerStructure::AddTo(Plan& plan, std::vector<XerTask>& tasks, UniqueNames& ids,
                         WarningList& warnings) {
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    const auto node = index_by_key_.find(tasks[i].wbs);
    if (node == index_by_key_.end() && !tasks[i].wbs.empty()) {
      warnings.Add("activities in a node that is not in the file: put under the project");
    }
    nodes_[node == index_by_key_.end() ? 0 : node->second].tasks.push_back(i);
  }
  AddNode(0, "", 0, plan, tasks, ids);
}

void XerStructure::AddNode(std::size_t index, const std::string& path, Uid parent, Plan& plan,
                           std::vector<XerTask>& tasks, UniqueNames& ids) const {
  const Node& node = nodes_[index];
  const std::string here = path.empty() ? node.code : path + "." + node.code;
  if (here.size() > kLongestPath) {
    throw FormatError(file_->name(), node.line,
                      "expected codes of at most 1000 bytes on the way to a node, found " +
                          Quoted(node.code) + " beyond that");
  }
  Task summary;
  summary.id = ids.TakeFree(here);
  summary.description = node.name;
  summary.kind = TaskKind::kSummary;
  summary.parent = parent;
  Uid inner = plan.AddTask(std::move(summary)).uid;
  // An activity that spans its node stands between the node and all else in it, so that its dates
  // are theirs.
  for (const bool spanning : {true, false}) {
    for (const std::size_t position : node.tasks) {
      XerTask& activity = tasks[position];
      if (activity.spans_its_node == spanning) {
        activity.task.parent = inner;
        activity.uid = plan.AddTask(std::move(activity.task)).uid;
        inner = spanning ? activity.uid : inner;
      }
    }
  }
  for (const std::size_t child : node.children) {
    AddNode(child, here, inner, plan, tasks, ids);
  }
}

}  // namespace nimbrel::engine
