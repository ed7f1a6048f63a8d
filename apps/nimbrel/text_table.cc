#include "nimbrel/text_table.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace nimbrel::cli {
namespace {

bool BeginsCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U;
}

}  // namespace

std::size_t DisplayWidth(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), BeginsCharacter));
}

std::string CutTo(const std::string& text, std::size_t width) {
  if (DisplayWidth(text) <= width || width == 0) {
    return text;
  }
  std::size_t characters = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (BeginsCharacter(text[at]) && ++characters == width) {
      return text.substr(0, at) + ".";
    }
  }
  return text;
}

std::string Padded(const std::string& text, std::size_t width) {
  const std::size_t shown = DisplayWidth(text);
  return shown >= width ? text : text + std::string(width - shown, ' ');
}

void TextTable::AddRow(std::vector<std::string> cells) {
  cells.resize(columns_.size());
  rows_.push_back({std::move(cells), false});
}

void TextTable::AddRule() {
  rows_.push_back({std::vector<std::string>(columns_.size()), true});
}

std::string TextTable::Text(int indent) const {
  std::vector<std::size_t> widths(columns_.size(), 0);
  for (const Row& row : rows_) {
    for (std::size_t column = 0; column < columns_.size(); ++column) {
      widths[column] = std::max(widths[column], DisplayWidth(row.cells[column]));
    }
  }
  std::string text;
  for (const Row& row : rows_) {
    std::string line(static_cast<std::size_t>(indent), ' ');
    for (std::size_t column = 0; column < columns_.size(); ++column) {
      line += column == 0 ? "" : "  ";
      const std::string cell = row.is_rule ? std::string(widths[column], '-') : row.cells[column];
      if (columns_[column] == Align::kRight) {
        line += std::string(widths[column] - DisplayWidth(cell), ' ') + cell;
      } else {
        line += Padded(cell, widths[column]);
      }
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + '\n';
  }
  return text;
}

}  // namespace nimbrel::cli
